#include "network/route_stops.h"

#include <cmath>
#include <vector>

#include "edit/hit_test.h"
#include "edit/pick_index.h"
#include "view/map_tools.h"

namespace velmora {

namespace {

bool IsLine(int t) {
  return t == 3 || t == 13 || t == 23;
}

bool PickInBox(Session& s, int lyr) {
  if (lyr < 1 || lyr > s.LyrCount || s.Lyr[lyr].LyrKind != 1) return false;
  HitRec& h = s.Edit.HitNow;
  const uint8_t tool = s.MapView.MapTool;
  s.MapView.MapTool = kToolRouteStop; // the margins of the selecting tools
  SetHitMargins(s, lyr, 1, 1);
  s.MapView.MapTool = tool;
  std::vector<int> near;
  PickCandidates(s, lyr, s.View.PickLeft, s.View.PickBottom, s.View.PickRight, s.View.PickTop,
                 h.HitVrtMargin, near);
  for (size_t i = near.size(); i-- > 0;)
    if (HitTestFeature(s, lyr, near[i], 0, 0) && IsLine(h.HitType)) return true;
  h.HitKind = 0;
  return false;
}

} // namespace

bool PickRouteStop(Session& s, int lyr, double x, double y) {
  SetPickBox(s, x, y);
  return PickInBox(s, lyr);
}

bool PickRouteStopAt(Session& s, int lyr, double X, double Y) {
  const double F = s.MapView.MapFactor;
  if (F > 0 && std::isfinite(F)) return PickRouteStop(s, lyr, PixX(s, X), PixY(s, Y));
  // No window yet: a box of no size at the point.
  ViewVars& v = s.View;
  v.PickLeft = v.PickRight = v.PickX = X;
  v.PickTop = v.PickBottom = v.PickY = Y;
  return PickInBox(s, lyr);
}

void InstNet(Session& s, int idx, const HitRec& hit) {
  if (idx < 1 || idx > 2) return;
  NetLink& k = s.Net.NetStops[size_t(idx)];
  k.LinkFeature = hit.HitFeature;
  k.LinkX = hit.HitX;
  k.LinkY = hit.HitY;
  k.LinkVertex = hit.HitVertex;
  s.Net.NetPickLyr = hit.HitLyr;
}

} // namespace velmora
