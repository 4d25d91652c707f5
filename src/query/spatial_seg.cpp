// The plain geometry of numbers, points and segments.
#include <cmath>

#include "query/spatial.h"

namespace velmora {

double Distance(double x1, double y1, double x2, double y2) {
  return std::sqrt(SquaredDistance(x1, y1, x2, y2));
}

double SquaredDistance(double x1, double y1, double x2, double y2) {
  double dx = x2 - x1, dy = y2 - y1;
  return dx * dx + dy * dy;
}

double Min(double a, double b) {
  return a < b ? a : b;
}

double Max(double a, double b) {
  return a > b ? a : b;
}

bool InRangeTol(double v, double a, double b, double tol) {
  return v >= Min(a, b) - tol && v <= Max(a, b) + tol;
}

bool RangesOverlap(double a1, double a2, double b1, double b2, double tol) {
  return Min(a1, a2) <= Max(b1, b2) + tol && Min(b1, b2) - tol <= Max(a1, a2);
}

int Side(double px, double py, double ax, double ay, double bx, double by) {
  double c = (bx - ax) * (py - ay) - (by - ay) * (px - ax);
  return c > 0 ? 1 : c < 0 ? -1 : 0;
}

namespace {

uint8_t EndKind(double x, double y, XY first, XY second, double tol) {
  if (Distance(x, y, first.X, first.Y) <= tol) return 2;
  if (Distance(x, y, second.X, second.Y) <= tol) return 4;
  return 1;
}

} // namespace

bool SegCross(XY a1, XY a2, XY b1, XY b2, CrossResult* details, double tol) {
  double A1 = a2.Y - a1.Y, B1 = a1.X - a2.X, C1 = A1 * a1.X + B1 * a1.Y;
  double A2 = b2.Y - b1.Y, B2 = b1.X - b2.X, C2 = A2 * b1.X + B2 * b1.Y;
  double det = A1 * B2 - A2 * B1;
  if (det == 0) return false;
  double x = (B2 * C1 - B1 * C2) / det;
  double y = (A1 * C2 - A2 * C1) / det;
  if (!InRangeTol(x, a1.X, a2.X, tol) || !InRangeTol(y, a1.Y, a2.Y, tol) ||
      !InRangeTol(x, b1.X, b2.X, tol) || !InRangeTol(y, b1.Y, b2.Y, tol))
    return false;
  if (details) {
    details->CrossX = x;
    details->CrossY = y;
    details->CrossKindB = EndKind(x, y, b1, b2, tol);
    details->CrossKindA = EndKind(x, y, a1, a2, tol);
  }
  return true;
}

bool SegCrossStrict(XY a1, XY a2, XY b1, XY b2) {
  auto same = [](XY p, XY q) { return p.X == q.X && p.Y == q.Y; };
  if (same(a1, b1) || same(a1, b2) || same(a2, b1) || same(a2, b2)) return false;
  double dax = a2.X - a1.X, day = a2.Y - a1.Y;
  double dbx = b2.X - b1.X, dby = b2.Y - b1.Y;
  double det = dax * dby - day * dbx;
  if (det == 0) return false;
  double ex = b1.X - a1.X, ey = b1.Y - a1.Y;
  double t = (ex * dby - ey * dbx) / det; // along A
  double u = (ex * day - ey * dax) / det; // along B
  return t > 0 && t < 1 && u > 0 && u < 1;
}

XY LineIntersection(XY a1, XY a2, XY b1, XY b2) {
  double A1 = a2.Y - a1.Y, B1 = a1.X - a2.X, C1 = A1 * a1.X + B1 * a1.Y;
  double A2 = b2.Y - b1.Y, B2 = b1.X - b2.X, C2 = A2 * b1.X + B2 * b1.Y;
  double det = A1 * B2 - A2 * B1;
  if (det == 0) return {};
  return {(B2 * C1 - B1 * C2) / det, (A1 * C2 - A2 * C1) / det};
}

namespace {

// The point of a-b nearest to p.
XY Foot(XY p, XY a, XY b) {
  double dx = b.X - a.X, dy = b.Y - a.Y;
  double len2 = dx * dx + dy * dy;
  if (len2 == 0) return a;
  double t = ((p.X - a.X) * dx + (p.Y - a.Y) * dy) / len2;
  if (t <= 0) return a;
  if (t >= 1) return b;
  return {a.X + t * dx, a.Y + t * dy};
}

} // namespace

bool PointNearSeg(XY p, XY a, XY b, double tol) {
  double dx = b.X - a.X, dy = b.Y - a.Y;
  double len2 = dx * dx + dy * dy;
  if (len2 == 0) return Distance(p.X, p.Y, a.X, a.Y) <= tol;
  double t = ((p.X - a.X) * dx + (p.Y - a.Y) * dy) / len2;
  if (t >= 0 && t <= 1)
    return std::abs(dx * (p.Y - a.Y) - dy * (p.X - a.X)) / std::sqrt(len2) <= tol;
  return Min(Distance(p.X, p.Y, a.X, a.Y), Distance(p.X, p.Y, b.X, b.Y)) <= tol;
}

bool PointNearSegDetails(XY p, XY a, XY b, CrossResult* details, double tol) {
  if (!PointNearSeg(p, a, b, tol)) return false;
  if (!details) return true;
  details->CrossKindB = 2;
  XY at;
  if (Distance(p.X, p.Y, a.X, a.Y) <= tol) {
    at = a;
    details->CrossKindA = 2;
  } else if (Distance(p.X, p.Y, b.X, b.Y) <= tol) {
    at = b;
    details->CrossKindA = 4;
  } else {
    at = Foot(p, a, b);
    details->CrossKindA = 1;
  }
  details->CrossX = at.X;
  details->CrossY = at.Y;
  return true;
}

} // namespace velmora
