#include "edit/move_ops.h"

#include <cmath>

#include "edit/journal_lines.h"
#include "store/dbf_store.h"
#include "store/shp_access.h"
#include "store/shp_bytes.h"
#include "store/shp_store.h"

namespace velmora {

using shpio::PartAt;
using shpio::RecAt;

namespace {

constexpr double kPi = 3.14159265358979;

// Which ordinates the flags reach in a record of type t.
struct Reach {
  bool x, y, m, z;
};
Reach ReachOf(int t, int flags) {
  bool zm = t == 11 || t == 13 || t == 15 || t == 18;
  bool mOnly = t == 21 || t == 23 || t == 25 || t == 28;
  return {(flags & kMoveX) != 0, (flags & kMoveY) != 0, (zm || mOnly) && (flags & kMoveM),
          zm && (flags & kMoveZ)};
}

ShpRecord* MovableRec(Session& s, int lyr, int rec) {
  if (lyr < -kWorkSlots || lyr > s.LyrCount) return nullptr;
  ShpRecord* r = RecAt(s, lyr, rec);
  return r && r->ShapeType >= 1 && r->ShapeType <= 100 ? r : nullptr;
}

// Every live vertex of the part by the offset.
void OffsetPart(ShpPart& p, const Reach& r, double dx, double dy, double dm, double dz) {
  size_t n = shpio::LiveCount(p);
  auto P = p.PartPoints();
  for (size_t i = 0; i < n; ++i) {
    if (r.x) P[i].X += dx;
    if (r.y) P[i].Y += dy;
  }
  if (r.m)
    for (size_t i = 0; i < n && i < p.PartM().size(); ++i) p.PartM()[i] += dm;
  if (r.z)
    for (size_t i = 0; i < n && i < p.PartZ().size(); ++i) p.PartZ()[i] += dz;
}

void Changed(Session& s, int lyr, int rec) {
  ShpBlock& b = s.Lyr[lyr].Shp;
  b.ShpChanged = -1;
  b.ExtentStale = -1;
  RecalcRecBox(s, lyr, rec);
  b.ShpRecs[size_t(rec)].LabelReady = 0;
}

// The offset from a named vertex to a target; false when the vertex does not exist.
bool OffsetTo(Session& s, int lyr, int rec, int part, int vertex, double x, double y, double m,
              double z, double& dx, double& dy, double& dm, double& dz) {
  ShpRecord* r = MovableRec(s, lyr, rec);
  ShpPart* p = PartAt(r, part);
  if (!p || vertex < 0 || size_t(vertex) >= p->Size()) return false;
  XY v = p->PartPoints()[size_t(vertex)];
  dx = x - v.X, dy = y - v.Y;
  dm = p->PartM().empty() ? 0 : m - p->PartM()[size_t(vertex)];
  dz = p->PartZ().empty() ? 0 : z - p->PartZ()[size_t(vertex)];
  return true;
}

// An image's frame layer moves only when it is the layer named ("(None Image)").
bool SkipsImage(const Session& s, int lyr, int refLyr) {
  return lyr != refLyr && s.Lyr[lyr].Shp.ShpType == 99;
}

template <class F> void ForRecs(Session& s, int lyr, int refLyr, int rec, bool selectedOnly, F f) {
  if (SkipsImage(s, lyr, refLyr)) return;
  const int count = s.Lyr[lyr].Shp.RecCount;
  for (int i = 1; i <= count; ++i) {
    if (selectedOnly && !IsSelected(s, lyr, i) && !(lyr == refLyr && i == rec)) continue;
    f(i);
  }
}

template <class F> void ForPartPoints(Session& s, int lyr, int rec, int part, F f) {
  ShpRecord* r = MovableRec(s, lyr, rec);
  ShpPart* p = PartAt(r, part);
  if (!p || r->ShapeType == 99) return; // control points move only vertex by vertex
  size_t n = shpio::LiveCount(*p);
  for (size_t i = 0; i < n; ++i) f(p->PartPoints()[i]);
  Changed(s, lyr, rec);
}

} // namespace

const char* MoveModeCaption(int mode) {
  static const char* const kCaptions[] = {
      "This Vertex",
      "This Part",
      "This Feature",
      "All Selected Features in editing layer",
      "All Features in editing layer",
      "All Selected Features in all Visible layers (None Image)",
      "All Features in all Visible layers (None Image)"};
  return mode >= 0 && mode <= 6 ? kCaptions[mode] : "";
}

bool IsSelected(const Session& s, int lyr, int rec) {
  const auto& b = s.Lyr[lyr].SelBits;
  size_t i = size_t(rec) / 8;
  return rec >= 0 && i < b.size() && (b[i] >> (rec % 8) & 1) != 0;
}

bool InScopeOfAllLyrs(const Session& s, int lyr) {
  return s.Lyr[lyr].DVisable && s.Lyr[lyr].LyrKind != 0;
}

void MoveVertexTo(Session& s, int lyr, int rec, int part, int vertex, double x, double y, int flags,
                  double m, double z) {
  ShpRecord* r = MovableRec(s, lyr, rec);
  ShpPart* p = PartAt(r, part);
  if (!p || vertex < 0 || size_t(vertex) >= p->Size()) return;
  Reach re = ReachOf(r->ShapeType, flags);
  XY& v = p->PartPoints()[size_t(vertex)];
  if (re.x) v.X = x;
  if (re.y) v.Y = y;
  if (re.m && !p->PartM().empty()) p->PartM()[size_t(vertex)] = m;
  if (re.z && !p->PartZ().empty()) p->PartZ()[size_t(vertex)] = z;
  const int type = r->ShapeType;
  const XY now = v;
  if (type == 100) KeepMaskRect(s, lyr, rec, vertex);
  Changed(s, lyr, rec);
  UpdateControlPt(s, lyr, rec, vertex, now.X, now.Y);
}

void KeepMaskRect(Session& s, int lyr, int rec, int vertex) {
  ShpRecord* r = MovableRec(s, lyr, rec);
  ShpPart* p = PartAt(r, 0);
  if (!p || r->ShapeType != 100 || p->Size() != 5 || vertex < 0 || vertex > 4) return;
  auto P = p->PartPoints();
  int k = vertex % 4;
  // Corners run (left, top), (right, top), (right, bottom), (left, bottom): of the two
  // neighbours of an even corner the one before shares its X, of an odd one the one after.
  int prev = (k + 3) % 4, next = (k + 1) % 4;
  int sameX = k % 2 == 0 ? prev : next, sameY = k % 2 == 0 ? next : prev;
  P[size_t(sameX)].X = P[size_t(vertex)].X;
  P[size_t(sameY)].Y = P[size_t(vertex)].Y;
  if (vertex == 4) P[0] = P[4];
  P[4] = P[0];
}

void UpdateControlPt(Session& s, int lyr, int rec, int vertex, double x, double y) {
  ShpRecord* r = MovableRec(s, lyr, rec);
  if (!r || r->ShapeType != 99 || vertex < 0 || vertex > 1) return;
  if (s.Lyr[lyr].Dbf.DbfFieldCount < 5 || rec - 1 >= s.Lyr[lyr].Dbf.DbfRecCount) return;
  ReadDbfRec(s, lyr, rec - 1);
  SetFieldValue(s, lyr, vertex == 0 ? 2 : 4, NumText(x));
  SetFieldValue(s, lyr, vertex == 0 ? 3 : 5, NumText(y));
  WriteDbfRecSwap(s, lyr, rec - 1);
  s.host->TableDataChanged(lyr);
}

void MovePartTo(Session& s, int lyr, int rec, int part, int vertex, double x, double y, int flags,
                double m, double z) {
  double dx, dy, dm, dz;
  if (OffsetTo(s, lyr, rec, part, vertex, x, y, m, z, dx, dy, dm, dz))
    MovePartBy(s, lyr, rec, part, dx, dy, flags, dm, dz);
}

void MoveFeatureTo(Session& s, int lyr, int rec, int part, int vertex, double x, double y,
                   int flags, double m, double z) {
  double dx, dy, dm, dz;
  if (OffsetTo(s, lyr, rec, part, vertex, x, y, m, z, dx, dy, dm, dz))
    MoveFeatureBy(s, lyr, rec, dx, dy, flags, dm, dz);
}

void MoveSelectedTo(Session& s, int lyr, int refLyr, int rec, int part, int vertex, double x,
                    double y, int flags, double m, double z) {
  double dx, dy, dm, dz;
  if (OffsetTo(s, refLyr, rec, part, vertex, x, y, m, z, dx, dy, dm, dz))
    MoveSelectedBy(s, lyr, refLyr, rec, dx, dy, flags, dm, dz);
}

void MoveAllTo(Session& s, int lyr, int refLyr, int rec, int part, int vertex, double x, double y,
               int flags, double m, double z) {
  double dx, dy, dm, dz;
  if (OffsetTo(s, refLyr, rec, part, vertex, x, y, m, z, dx, dy, dm, dz))
    MoveAllBy(s, lyr, refLyr, dx, dy, flags, dm, dz);
}

void MovePartBy(Session& s, int lyr, int rec, int part, double dx, double dy, int flags, double dm,
                double dz) {
  ShpRecord* r = MovableRec(s, lyr, rec);
  ShpPart* p = PartAt(r, part);
  if (!p) return;
  const bool control = r->ShapeType == 99;
  OffsetPart(*p, ReachOf(r->ShapeType, flags), dx, dy, dm, dz);
  if (r->ShapeType == 100) KeepMaskRect(s, lyr, rec, 0);
  Changed(s, lyr, rec);
  if (control) {
    for (int v = 0; v < 2 && size_t(v) < p->Size(); ++v)
      UpdateControlPt(s, lyr, rec, v, p->PartPoints()[size_t(v)].X, p->PartPoints()[size_t(v)].Y);
  }
}

void MoveFeatureBy(Session& s, int lyr, int rec, double dx, double dy, int flags, double dm,
                   double dz) {
  ShpRecord* r = MovableRec(s, lyr, rec);
  if (!r) return;
  for (int i = 0; i < r->NumParts && i < r->PartSlots(); ++i)
    MovePartBy(s, lyr, rec, i, dx, dy, flags, dm, dz);
}

void MoveSelectedBy(Session& s, int lyr, int refLyr, int rec, double dx, double dy, int flags,
                    double dm, double dz) {
  ForRecs(s, lyr, refLyr, rec, true,
          [&](int i) { MoveFeatureBy(s, lyr, i, dx, dy, flags, dm, dz); });
}

void MoveAllBy(Session& s, int lyr, int refLyr, double dx, double dy, int flags, double dm,
               double dz) {
  ForRecs(s, lyr, refLyr, 0, false,
          [&](int i) { MoveFeatureBy(s, lyr, i, dx, dy, flags, dm, dz); });
}

void ScalePoint(double& x, double& y, double px, double py, double sx, double sy) {
  x = (1 - sx) * px + sx * x;
  y = (1 - sy) * py + sy * y;
}

void RotatePoint(double& x, double& y, double px, double py, double radians) {
  const double c = std::cos(radians), sn = std::sin(radians);
  const double x0 = x, y0 = y;
  x = c * (x0 - px) - (y0 - py) * sn + px;
  y = (x0 - px) * sn + (y0 - py) * c + py;
}

void ScalePart(Session& s, int lyr, int rec, int part, double px, double py, double sx, double sy) {
  ForPartPoints(s, lyr, rec, part, [&](XY& v) { ScalePoint(v.X, v.Y, px, py, sx, sy); });
}

void ScaleFeature(Session& s, int lyr, int rec, double px, double py, double sx, double sy) {
  ShpRecord* r = MovableRec(s, lyr, rec);
  if (!r) return;
  for (int i = 0; i < r->NumParts && i < r->PartSlots(); ++i)
    ScalePart(s, lyr, rec, i, px, py, sx, sy);
}

void ScaleSelected(Session& s, int lyr, int refLyr, int rec, double px, double py, double sx,
                   double sy) {
  ForRecs(s, lyr, refLyr, rec, true, [&](int i) { ScaleFeature(s, lyr, i, px, py, sx, sy); });
}

void ScaleAll(Session& s, int lyr, int refLyr, double px, double py, double sx, double sy) {
  ForRecs(s, lyr, refLyr, 0, false, [&](int i) { ScaleFeature(s, lyr, i, px, py, sx, sy); });
}

void RotatePart(Session& s, int lyr, int rec, int part, double px, double py, double radians) {
  ForPartPoints(s, lyr, rec, part, [&](XY& v) { RotatePoint(v.X, v.Y, px, py, radians); });
}

void RotateFeature(Session& s, int lyr, int rec, double px, double py, double radians) {
  ShpRecord* r = MovableRec(s, lyr, rec);
  if (!r) return;
  for (int i = 0; i < r->NumParts && i < r->PartSlots(); ++i)
    RotatePart(s, lyr, rec, i, px, py, radians);
}

void RotateSelected(Session& s, int lyr, int refLyr, int rec, double px, double py,
                    double radians) {
  ForRecs(s, lyr, refLyr, rec, true, [&](int i) { RotateFeature(s, lyr, i, px, py, radians); });
}

void RotateAll(Session& s, int lyr, int refLyr, double px, double py, double radians) {
  ForRecs(s, lyr, refLyr, 0, false, [&](int i) { RotateFeature(s, lyr, i, px, py, radians); });
}

namespace {

// The layers of the scopes 5 and 6: every visible open layer.
template <class F> void ForScopeLyrs(Session& s, F f) {
  for (int i = 1; i <= s.LyrCount; ++i)
    if (InScopeOfAllLyrs(s, i)) f(i);
}

} // namespace

void RotateScope(Session& s, int lyr, int rec, int part, double px, double py, double radians) {
  switch (s.Edit.MoveMode) {
  case 2:
    RotateFeature(s, lyr, rec, px, py, radians);
    break;
  case 3:
    RotateSelected(s, lyr, lyr, rec, px, py, radians);
    break;
  case 4:
    RotateAll(s, lyr, lyr, px, py, radians);
    break;
  case 5:
    ForScopeLyrs(s, [&](int i) { RotateSelected(s, i, lyr, rec, px, py, radians); });
    break;
  case 6:
    ForScopeLyrs(s, [&](int i) { RotateAll(s, i, lyr, px, py, radians); });
    break;
  default:
    RotatePart(s, lyr, rec, part, px, py, radians);
  }
}

void ScaleScope(Session& s, int lyr, int rec, int part, double px, double py, double sx,
                double sy) {
  switch (s.Edit.MoveMode) {
  case 2:
    ScaleFeature(s, lyr, rec, px, py, sx, sy);
    break;
  case 3:
    ScaleSelected(s, lyr, lyr, rec, px, py, sx, sy);
    break;
  case 4:
    ScaleAll(s, lyr, lyr, px, py, sx, sy);
    break;
  case 5:
    ForScopeLyrs(s, [&](int i) { ScaleSelected(s, i, lyr, rec, px, py, sx, sy); });
    break;
  case 6:
    ForScopeLyrs(s, [&](int i) { ScaleAll(s, i, lyr, px, py, sx, sy); });
    break;
  default:
    ScalePart(s, lyr, rec, part, px, py, sx, sy);
  }
}

void SetPivot(Session& s, double x, double y) {
  s.Edit.PivotX = x, s.Edit.PivotY = y;
  s.Edit.PivotTextX = x, s.Edit.PivotTextY = y;
}

void SetRotAngle(Session& s, double degrees) {
  s.Edit.RotDegrees = degrees;
  s.Edit.RotRadians = degrees * (kPi / 180);
}

void SetScales(Session& s, double sx, double sy) {
  s.Edit.ScaleX = sx, s.Edit.ScaleY = sy;
}

double FlatAngle(double dx, double dy) {
  if (dx == 0) return dy == 0 ? 0 : 90;
  if (dy == 0) return 0;
  return std::atan(std::fabs(dy) / std::fabs(dx)) * (180.0 / kPi);
}

namespace {
// The ray's angle from the X axis, 0 .. 360, from its acute angle and its quadrant.
double FullAngle(double dx, double dy) {
  double f = FlatAngle(dx, dy);
  if (dx >= 0 && dy >= 0) return f;
  if (dx < 0 && dy >= 0) return 180 - f;
  if (dx < 0) return 180 + f;
  return 360 - f;
}
} // namespace

double AngleOf(double px, double py, double ax, double ay, double bx, double by) {
  return FullAngle(bx - px, by - py) - FullAngle(ax - px, ay - py);
}

double ScaleRatio(double p, double a, double b) {
  double r = std::fabs((b - p) / (a - p));
  return r == 0 ? 1.0 : r;
}

} // namespace velmora
