#include "surface/tin_geometry.h"

#include <cmath>

#include "edit/move_ops.h"

namespace velmora {

double TinDist2(double x1, double y1, double x2, double y2) {
  return (x1 - x2) * (x1 - x2) + (y1 - y2) * (y1 - y2);
}

double TinDist(double x1, double y1, double x2, double y2) {
  return std::sqrt(TinDist2(x1, y1, x2, y2));
}

int TinSide(const TinPoint& p, const TinPoint& a, const TinPoint& b) {
  double v = (b.Y - a.Y) * p.X - (b.X - a.X) * p.Y - ((b.Y - a.Y) * a.X - (b.X - a.X) * a.Y);
  return v > 0 ? 1 : v < 0 ? -1 : 0;
}

double TinFullAngle(double dx, double dy, double f) {
  if (dx >= 0 && dy >= 0) return f;
  if (dx < 0 && dy >= 0) return 180 - f;
  if (dx < 0) return 180 + f;
  return 360 - f;
}

bool TinZeroAngle(double from, double to) {
  double x = std::fabs(to - from);
  return (x < 360 - x ? x : 360 - x) <= 0;
}

namespace {
double InnerAngle(const TinPoint& p, const TinPoint& a, const TinPoint& b) {
  double x = std::fabs(AngleOf(p.X, p.Y, a.X, a.Y, b.X, b.Y));
  return x < 360 - x ? x : 360 - x;
}
} // namespace

bool TinDegenerate(const TinPoint& a, const TinPoint& b, const TinPoint& c) {
  return InnerAngle(a, b, c) <= 0 || InnerAngle(b, c, a) <= 0 || InnerAngle(c, a, b) <= 0;
}

bool TinCircumcircle(const TinPoint& a, const TinPoint& b, const TinPoint& c, TinCircle& out) {
  if (TinDegenerate(a, b, c)) return false;
  const double x1 = a.X, y1 = a.Y, x2 = b.X, y2 = b.Y, x3 = c.X, y3 = c.Y;
  const double s1 = x1 * x1 + y1 * y1, s2 = x2 * x2 + y2 * y2, s3 = x3 * x3 + y3 * y3;
  const double dx = (y3 - y2) * x1 + (y1 - y3) * x2 + (y2 - y1) * x3;
  const double dy = (x3 - x2) * y1 + (x1 - x3) * y2 + (x2 - x1) * y3;
  const double cx = (s1 * (y3 - y2) + s2 * (y1 - y3) + s3 * (y2 - y1)) / (2 * dx);
  const double cy = (s1 * (x3 - x2) + s2 * (x1 - x3) + s3 * (x2 - x1)) / (2 * dy);
  const double r2 = TinDist2(x3, y3, cx, cy) - 0.01;
  if (!std::isfinite(cx) || !std::isfinite(cy) || !std::isfinite(r2)) return false;
  out.X = cx, out.Y = cy, out.R2 = r2;
  // A circle smaller than the shrink has no inside; its band is empty too.
  out.R = r2 > 0 ? std::sqrt(r2) : 0;
  return true;
}

bool TinIsRectangle(const TinPoint& a, const TinPoint& b, const TinPoint& c, const TinPoint& d) {
  return TinDist2(b.X, b.Y, d.X, d.Y) == TinDist2(a.X, a.Y, c.X, c.Y) &&
         TinDist2(a.X, a.Y, d.X, d.Y) == TinDist2(b.X, b.Y, c.X, c.Y);
}

} // namespace velmora
