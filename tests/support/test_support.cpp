#include "test_support.h"

#include <algorithm>
#include <array>
#include <clocale>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::test {

namespace {
struct Cleanup {
  std::vector<std::string> dirs;
  ~Cleanup() {
    for (auto& d : dirs) {
      std::error_code ec;
      std::filesystem::remove_all(d, ec);
    }
  }
};
Cleanup& cleanup() {
  static Cleanup c;
  return c;
}
} // namespace

std::string TempDir(const std::string& tag) {
  std::string tmpl = (std::filesystem::temp_directory_path() / ("velmora-" + tag + "-XXXXXX"));
  std::vector<char> buf(tmpl.begin(), tmpl.end());
  buf.push_back('\0');
  std::string dir = ::mkdtemp(buf.data());
  cleanup().dirs.push_back(dir);
  return dir + "/";
}

void WriteFile(const std::string& path, const std::string& bytes) {
  std::ofstream f(path, std::ios::binary);
  f << bytes;
}

std::string ReadFile(const std::string& path) {
  std::ifstream f(path, std::ios::binary);
  std::stringstream ss;
  ss << f.rdbuf();
  return ss.str();
}

std::string RunCmd(const std::string& cmd, int* status) {
  std::string out;
  FILE* p = ::popen(cmd.c_str(), "r");
  if (!p) return out;
  std::array<char, 4096> buf;
  size_t n;
  while ((n = std::fread(buf.data(), 1, buf.size(), p)) > 0) out.append(buf.data(), n);
  int st = ::pclose(p);
  if (status) *status = WIFEXITED(st) ? WEXITSTATUS(st) : -1;
  return out;
}

std::string GdalLayer(const std::string& dir, const std::string& name,
                      const std::vector<std::string>& wkts, const std::string& options) {
  std::string csv = dir + name + ".csv", shp = dir + name + ".shp";
  {
    std::ofstream f(csv);
    f << "id,WKT\n";
    for (size_t i = 0; i < wkts.size(); ++i) f << i + 1 << ",\"" << wkts[i] << "\"\n";
  }
  int st = 0;
  RunCmd("ogr2ogr -q -f 'ESRI Shapefile' " + options + " '" + shp + "' '" + csv + "' 2>&1", &st);
  return st == 0 && std::filesystem::exists(shp) ? shp : "";
}

GermanLocale::GermanLocale() {
  ok_ = std::setlocale(LC_ALL, kName) != nullptr;
}

GermanLocale::~GermanLocale() {
  std::setlocale(LC_ALL, "C");
}

MsgAnswer RecordingHost::MsgBox(const std::string& text, const std::string& title, MsgButtons,
                                MsgAnswer dflt) {
  boxes.push_back(title + "|" + text);
  if (answers.empty()) return dflt;
  MsgAnswer a = answers.front();
  answers.erase(answers.begin());
  return a;
}

bool RecordingHost::IsDialogOpen(const std::string& caption) {
  return std::find(openDialogs.begin(), openDialogs.end(), caption) != openDialogs.end();
}

void Put16(std::string& b, size_t at, int v) {
  b[at] = char(v & 0xFF);
  b[at + 1] = char((v >> 8) & 0xFF);
}

void Put32(std::string& b, size_t at, uint32_t v) {
  for (int k = 0; k < 4; ++k) b[at + size_t(k)] = char((v >> (8 * k)) & 0xFF);
}

int64_t MtimeNs(const std::string& path) {
  struct stat st {};
  ::stat(path.c_str(), &st);
  return int64_t(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec;
}

} // namespace velmora::test
