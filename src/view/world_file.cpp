#include "view/world_file.h"

#include <cmath>
#include <cstdio>
#include <fstream>
#include <utility>

#include "model/file_util.h"
#include "store/dbf_store.h"

namespace velmora {

std::string WorldFileName(const std::string& path) {
  std::string ext = ExtOf(path);
  std::string padded = ext;
  while (padded.size() < 3) padded = " " + padded;
  if (padded[2] == 'w') return path;
  return ChangeExt(path, std::string() + padded[0] + padded[2] + "w");
}

void ReadWorldFile(const Session& s, const std::string& path, double& left, double& top,
                   double& right, double& bottom, int width, int height, int16_t& found) {
  std::string name = WorldFileName(path);
  if (!FileExists(name)) return;
  std::ifstream f(NativePath(name), std::ios::binary);
  std::string lines[6];
  for (auto& line : lines) {
    if (!std::getline(f, line)) break;
    if (!line.empty() && line.back() == '\r') line.pop_back();
  }
  double A = std::fabs(StrToDbl(s, lines[0]));
  double E = std::fabs(StrToDbl(s, lines[3]));
  double C = StrToDbl(s, lines[4]);
  double F = StrToDbl(s, lines[5]);
  left = C - A / 2;
  top = F - E / 2;
  right = width * A + left;
  bottom = top - E * height;
  found = -1;
}

bool WriteWorldFile(const std::string& path, double left, double top, double right, double bottom,
                    int width, int height) {
  if (right < left) std::swap(left, right);
  if (bottom > top) std::swap(top, bottom);
  double A = (right - left) / width;
  double E = (top - bottom) / height;
  double C = A / 2 + left;
  double F = E / 2 + top;
  std::FILE* f = std::fopen(NativePath(WorldFileName(path)).c_str(), "wb");
  if (!f) return false;
  // Numbers are written with "." whatever the session's separator.
  std::fprintf(f, "%.13f\r\n0\r\n0\r\n%.13f\r\n%.13f\r\n%.13f\r\n", A, E == 0 ? 0.0 : -E, C, F);
  return std::fclose(f) == 0;
}

} // namespace velmora
