#include "view/world_file.h"

#include <charconv>
#include <cmath>
#include <fstream>
#include <utility>

#include "model/file_util.h"
#include "model/safe_file.h"
#include "store/dbf_store.h"

namespace velmora {

namespace {

// A number of a world-file line: blanks around it, an optional "+", "." as the decimal
// point (or a single "," where a comma-decimal desktop wrote one).
bool WorldNumber(std::string text, double& out) {
  size_t a = text.find_first_not_of(" \t\r\n");
  size_t b = text.find_last_not_of(" \t\r\n\x1a");
  if (a == std::string::npos) return false;
  text = text.substr(a, b - a + 1);
  if (!text.empty() && text[0] == '+') text.erase(0, 1);
  if (text.find('.') == std::string::npos && text.find(',') == text.rfind(',')) {
    size_t comma = text.find(',');
    if (comma != std::string::npos) text[comma] = '.';
  }
  const char* end = text.data() + text.size();
  auto [p, ec] = std::from_chars(text.data(), end, out);
  return ec == std::errc() && p == end && std::isfinite(out);
}

std::string Fixed13(double v) {
  if (v == 0) v = 0; // no "-0"
  char buf[64];
  auto [p, ec] = std::to_chars(buf, buf + sizeof buf, v, std::chars_format::fixed, 13);
  return ec == std::errc() ? std::string(buf, p) : std::string("0.0000000000000");
}

} // namespace

std::string WorldFileName(const std::string& path) {
  std::string ext = ExtOf(path);
  std::string padded = ext;
  while (padded.size() < 3) padded = " " + padded;
  if (padded[2] == 'w') return path;
  return ChangeExt(path, std::string() + padded[0] + padded[2] + "w");
}

void ReadWorldFile(const Session& s, const std::string& path, double& left, double& top,
                   double& right, double& bottom, int width, int height, int16_t& found) {
  (void)s;
  std::string name = WorldFileName(path);
  if (!FileExists(name)) return;
  std::ifstream f(NativePath(name), std::ios::binary);
  std::string lines[6];
  for (auto& line : lines) {
    if (!std::getline(f, line)) break;
    if (!line.empty() && line.back() == '\r') line.pop_back();
  }
  double A = 0, E = 0, C = 0, F = 0;
  if (!WorldNumber(lines[0], A) || !WorldNumber(lines[3], E) || !WorldNumber(lines[4], C) ||
      !WorldNumber(lines[5], F))
    return;
  A = std::fabs(A);
  E = std::fabs(E);
  if (A == 0 || E == 0) return; // no pixel size: the picture can't be placed by it
  left = C - A / 2;
  top = F - E / 2;
  right = width * A + left;
  bottom = top - E * height;
  found = -1;
}

std::string WorldFileText(double left, double top, double right, double bottom, int width,
                          int height) {
  if (right < left) std::swap(left, right);
  if (bottom > top) std::swap(top, bottom);
  double A = (right - left) / width;
  double E = (top - bottom) / height;
  double C = A / 2 + left;
  double F = E / 2 + top;
  return Fixed13(A) + "\r\n0\r\n0\r\n" + Fixed13(-E) + "\r\n" + Fixed13(C) + "\r\n" + Fixed13(F) +
         "\r\n";
}

bool WriteWorldFile(const std::string& path, double left, double top, double right, double bottom,
                    int width, int height, std::string* why) {
  if (width <= 0 || height <= 0) {
    if (why) *why = "no pixel size";
    return false;
  }
  return SafeWriteFile(WorldFileName(path), WorldFileText(left, top, right, bottom, width, height),
                       why);
}

} // namespace velmora
