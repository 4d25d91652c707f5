#pragma once
#include <vector>

#include "model/surface_types.h"

namespace velmora {

// The plane geometry of the surface functions, on scaled coordinates. Every routine here
// is evaluated exactly as written: the triangles depend on its rounding.

// The circle of the last Circumcircle: CircleR2 is the squared radius minus 0.01, so that
// the triangle's own corners test as outside.
struct TinCircle {
  double X = 0, Y = 0, R2 = 0, R = 0;
};

double TinDist(double x1, double y1, double x2, double y2);
double TinDist2(double x1, double y1, double x2, double y2);
// Sign (1, 0, -1) of the side of p against the line a-b.
int TinSide(const TinPoint& p, const TinPoint& a, const TinPoint& b);
// The direction of (dx, dy) in degrees, 0 .. 360, from its flat angle (FlatAngle), as
// AngleOf takes it.
double TinFullAngle(double dx, double dy, double flat);
// The inner angle between two directions, as Degenerate takes it, is at or below 0.
bool TinZeroAngle(double from, double to);
// Any inner angle at or below 0 degrees.
bool TinDegenerate(const TinPoint& a, const TinPoint& b, const TinPoint& c);
// False for a degenerate triangle or a circle that isn't finite.
bool TinCircumcircle(const TinPoint& a, const TinPoint& b, const TinPoint& c, TinCircle& out);
// Four co-circular points of a regular grid: the squared distances b-d, a-c and a-d, b-c
// are pairwise equal.
bool TinIsRectangle(const TinPoint& a, const TinPoint& b, const TinPoint& c, const TinPoint& d);

} // namespace velmora
