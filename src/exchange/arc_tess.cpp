#include "exchange/arc_tess.h"

#include <algorithm>
#include <cmath>

namespace velmora {

namespace {
constexpr double kPi = 3.14159265358979;
}

double ArcStep(double r) {
  if (!(r > 0)) return 5;
  return std::max(1.0, std::min(5.0, 360 / (2 * r * kPi)));
}

std::vector<XY> TessCircle(double cx, double cy, double r) {
  std::vector<XY> out;
  if (!std::isfinite(r) || !std::isfinite(cx) || !std::isfinite(cy) || r <= 0) return out;
  const double step = ArcStep(r), rad = step * kPi / 180;
  const double c = std::cos(rad), s = std::sin(rad);
  XY p{cx + r, cy};
  for (double a = 0; a < 360; a += step) {
    out.push_back(p);
    const double dx = p.X - cx, dy = p.Y - cy;
    p = {c * dx - s * dy + cx, s * dx + c * dy + cy};
  }
  out.push_back({cx + r, cy});
  return out;
}

} // namespace velmora
