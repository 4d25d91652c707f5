#include "model/file_util.h"

#include <algorithm>
#include <cctype>
#include <fcntl.h>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora {

namespace {
size_t LastSep(const std::string& p) {
  return p.find_last_of("/\\");
}
} // namespace

std::string NativePath(const std::string& path) {
  std::string r = path;
  std::replace(r.begin(), r.end(), '\\', '/');
  return r;
}

bool FileExists(const std::string& path) {
  if (path.empty()) return false;
  struct stat st;
  return ::stat(NativePath(path).c_str(), &st) == 0;
}

void KillFile(const std::string& path) {
  if (!path.empty()) ::unlink(NativePath(path).c_str());
}

std::string FileNameOf(const std::string& path) {
  size_t i = LastSep(path);
  return i == std::string::npos ? path : path.substr(i + 1);
}

std::string FolderOf(const std::string& path) {
  size_t i = LastSep(path);
  return i == std::string::npos ? std::string() : path.substr(0, i + 1);
}

std::string ExtOf(const std::string& path) {
  std::string name = FileNameOf(path);
  size_t i = name.rfind('.');
  return i == std::string::npos ? std::string() : LCase(name.substr(i + 1));
}

std::string ChangeExt(const std::string& path, const std::string& ext) {
  size_t dot = path.rfind('.');
  size_t sep = LastSep(path);
  if (dot == std::string::npos || (sep != std::string::npos && dot < sep)) return path + "." + ext;
  return path.substr(0, dot + 1) + ext;
}

std::string ReplaceExt(const std::string& path, const std::string& ext) {
  // "UP.DBF" asked for as a dbf is that file: the extension keeps its case.
  if (!ext.empty() && ExtOf(path) == LCase(ext)) return path;
  return ChangeExt(path, ext);
}

std::string TempName(const std::string& folder, const std::string& prefix) {
  std::string dir = NativePath(folder);
  if (!dir.empty() && dir.back() != '/') dir += '/';
  static thread_local std::mt19937 gen{std::random_device{}()};
  for (int attempt = 0; attempt < 1000; ++attempt) {
    char buf[16];
    std::snprintf(buf, sizeof buf, "%04X", unsigned(gen() & 0xFFFF));
    std::string name = dir + prefix + buf + ".tmp";
    int fd = ::open(name.c_str(), O_CREAT | O_EXCL | O_WRONLY, 0644);
    if (fd >= 0) {
      ::close(fd);
      return name;
    }
    if (errno != EEXIST) return "";
  }
  return "";
}

uint32_t SwapBytes32(uint32_t n) {
  return __builtin_bswap32(n);
}
uint16_t SwapBytes16(uint16_t n) {
  return __builtin_bswap16(n);
}

bool ReadLStr(std::FILE* f, std::string& s) {
  uint8_t b[4];
  if (std::fread(b, 1, 4, f) != 4) return false;
  uint32_t n = uint32_t(b[0]) | uint32_t(b[1]) << 8 | uint32_t(b[2]) << 16 | uint32_t(b[3]) << 24;
  // A length the rest of the file cannot hold is a damaged file, not an allocation.
  long here = std::ftell(f);
  if (here < 0 || std::fseek(f, 0, SEEK_END) != 0) return false;
  long end = std::ftell(f);
  std::fseek(f, here, SEEK_SET);
  if (n > uint64_t(end - here)) return false;
  s.assign(n, '\0');
  return n == 0 || std::fread(s.data(), 1, n, f) == n;
}

bool WriteLStr(std::FILE* f, const std::string& s) {
  uint32_t n = uint32_t(s.size());
  uint8_t b[4] = {uint8_t(n), uint8_t(n >> 8), uint8_t(n >> 16), uint8_t(n >> 24)};
  return std::fwrite(b, 1, 4, f) == 4 && (n == 0 || std::fwrite(s.data(), 1, n, f) == n);
}

std::string UCase(std::string s) {
  for (auto& c : s) c = char(std::toupper(static_cast<unsigned char>(c)));
  return s;
}

std::string LCase(std::string s) {
  for (auto& c : s) c = char(std::tolower(static_cast<unsigned char>(c)));
  return s;
}

std::string Trim(const std::string& s) {
  size_t a = s.find_first_not_of(' ');
  if (a == std::string::npos) return "";
  size_t b = s.find_last_not_of(' ');
  return s.substr(a, b - a + 1);
}

} // namespace velmora
