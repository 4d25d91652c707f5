#include "edit/snap_ops.h"

#include <cmath>

#include "edit/hit_test.h"
#include "edit/move_ops.h"
#include "edit/pick_index.h"
#include "store/shp_access.h"

namespace velmora {

namespace {

constexpr double kPi = 3.14159265358979;

// Is (lyr, rec, part, v) a vertex that moves with the present action?
bool Moving(const Session& s, int lyr, int rec, int part, int v, int mLyr, int mRec, int mPart,
            int mV) {
  if (lyr == mLyr && rec == mRec && part == mPart && v == mV) return true;
  for (const HitRec& h : s.Edit.MoveList)
    if (h.HitLyr == lyr && h.HitFeature == rec && h.HitPart == part && h.HitVertex == v)
      return true;
  return false;
}

} // namespace

bool SquareVertex(Session& s, int lyr, int rec, int part, int vertex, double x, double y,
                  double& ox, double& oy) {
  const ShpPart* p = shpio::PartAt(shpio::RecAt(s, lyr, rec), part);
  if (!p) return false;
  int n = int(shpio::LiveCount(*p));
  if (n < 3 || vertex < 0 || vertex >= n) return false;
  auto P = p->PartPoints();
  // In a closed ring the last vertex repeats the first: wrap past it.
  const bool ring = P[0].X == P[size_t(n - 1)].X && P[0].Y == P[size_t(n - 1)].Y;
  const int k = ring ? n - 1 : n;
  if (k < 3) return false;
  const int v = vertex % k;
  const int prev = (v - 1 + k) % k, prev2 = (prev - 1 + k) % k;
  const XY a = P[size_t(prev)], b = P[size_t(prev2)];
  double ang = AngleOf(a.X, a.Y, b.X, b.Y, x, y);
  while (ang > 180) ang -= 360;
  while (ang <= -180) ang += 360;
  const double mag = std::fabs(ang);
  const double want = (mag < 45 ? 0 : mag <= 135 ? 90 : 180) * (ang < 0 ? -1 : 1);
  ox = x, oy = y;
  RotatePoint(ox, oy, a.X, a.Y, (want - ang) * (kPi / 180));
  const XY own = P[size_t(vertex)];
  return !(ox == own.X && oy == own.Y);
}

bool SnapToLayer(Session& s, int tool, int snapLyr, int lyr, int rec, int part, int vertex) {
  const LyrRec& L = s.Lyr[snapLyr];
  if (L.LyrKind != 1) return false;
  const double m = L.EVertexWidth * s.MapView.MapFactor;
  const int keep = s.MapView.MapTool;
  s.MapView.MapTool = tool;
  SetHitMargins(s, snapLyr, 2, m);
  s.MapView.MapTool = keep;
  s.Edit.HitNow.HitMode = 1;
  // Tool 15 looks for vertices through the whole layer before it takes a segment.
  const int passes = tool == 15 ? 2 : 1;
  std::vector<int> near;
  PickCandidates(s, snapLyr, s.View.PickLeft, s.View.PickBottom, s.View.PickRight, s.View.PickTop,
                 m, near);
  for (int pass = 0; pass < passes; ++pass) {
    const bool segmentsCount = tool != 15 || pass == 1;
    for (int f : near) {
      int sp = 0, sv = 0;
      for (int guard = 0; guard < 100000; ++guard) {
        const int kind = HitTestFeature(s, snapLyr, f, sp, sv);
        const HitRec& h = s.Edit.HitNow;
        if (kind == 2) {
          if (!Moving(s, snapLyr, f, h.HitPart, h.HitVertex, lyr, rec, part, vertex)) {
            s.Edit.SnapHit = h;
            return true;
          }
          sp = h.HitPart, sv = h.HitVertex + 1; // past the vertex in motion
          continue;
        }
        if (kind == 1 && segmentsCount &&
            !Moving(s, snapLyr, f, h.HitPart, h.HitVertex, lyr, rec, part, vertex) &&
            !Moving(s, snapLyr, f, h.HitPart, h.HitVertex - 1, lyr, rec, part, vertex)) {
          s.Edit.SnapHit = h;
          return true;
        }
        break;
      }
    }
  }
  return false;
}

bool SnapRelease(Session& s, int tool, int lyr, int rec, int part, int vertex, double x, double y,
                 int keys, double& ox, double& oy) {
  s.Edit.SnapHit = HitRec{};
  ox = x, oy = y;
  if (keys & 4) {
    if (!SquareVertex(s, lyr, rec, part, vertex, x, y, ox, oy)) return false;
    s.Edit.SnapHit = {2, 0, 0, lyr, s.Lyr[lyr].Shp.ShpType, rec, part, vertex, 0, 0, ox, oy};
    return true;
  }
  if (!(keys & 1) || lyr < 1 || lyr > s.LyrCount) return false;
  if (!s.Lyr[lyr].SSelectable || !s.Lyr[lyr].DVisable) return false;
  for (int i = 1; i <= s.LyrCount; ++i) {
    if (!s.Lyr[i].DVisable || s.Lyr[i].LyrKind != 1) continue;
    if (SnapToLayer(s, tool, i, lyr, rec, part, vertex)) {
      ox = s.Edit.SnapHit.HitX, oy = s.Edit.SnapHit.HitY;
      return true;
    }
  }
  return false;
}

} // namespace velmora
