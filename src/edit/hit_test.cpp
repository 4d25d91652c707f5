#include "edit/hit_test.h"

#include <algorithm>
#include <cmath>

#include "edit/pick_index.h"
#include "store/shp_access.h"
#include "store/shp_bytes.h"
#include "view/map_tools.h"

namespace velmora {

using shpio::LiveCount;
using shpio::PartAt;
using shpio::RecAt;

namespace {

struct Box {
  double l, r, b, t;
};

Box PickBoxOf(const Session& s) {
  const ViewVars& v = s.View;
  return {std::min(v.PickLeft, v.PickRight), std::max(v.PickLeft, v.PickRight),
          std::min(v.PickTop, v.PickBottom), std::max(v.PickTop, v.PickBottom)};
}

bool PointMeets(const Box& pb, double x, double y, double m) {
  return x + m >= pb.l && x - m <= pb.r && y + m >= pb.b && y - m <= pb.t;
}

bool BoxMeets(const Box& pb, double x0, double y0, double x1, double y1, double m) {
  return x1 + m >= pb.l && x0 - m <= pb.r && y1 + m >= pb.b && y0 - m <= pb.t;
}

// The segment a-b against the four sides of the pick box, top, bottom, left, right; the
// point on the segment nearest to the box's centre when a side is crossed.
bool SegmentMeets(const Box& pb, XY a, XY b, double m, double cx, double cy, XY& at) {
  bool hit = false;
  const double ylo = std::min(a.Y, b.Y) - m, yhi = std::max(a.Y, b.Y) + m;
  const double xlo = std::min(a.X, b.X) - m, xhi = std::max(a.X, b.X) + m;
  const double dx = b.X - a.X, dy = b.Y - a.Y;
  for (double y : {pb.t, pb.b}) { // horizontal sides
    if (hit || y < ylo || y > yhi) continue;
    if (std::fabs(dy) <= m) { // a horizontal segment: the coordinate difference decides
      hit = xhi >= pb.l - m && xlo <= pb.r + m;
    } else {
      double x = a.X + (y - a.Y) * dx / dy;
      hit = x >= pb.l - m && x <= pb.r + m && x >= xlo && x <= xhi;
    }
  }
  for (double x : {pb.l, pb.r}) { // vertical sides
    if (hit || x < xlo || x > xhi) continue;
    if (std::fabs(dx) <= m) {
      hit = yhi >= pb.b - m && ylo <= pb.t + m;
    } else {
      double y = a.Y + (x - a.X) * dy / dx;
      hit = y >= pb.b - m && y <= pb.t + m && y >= ylo && y <= yhi;
    }
  }
  if (!hit) return false;
  double len2 = dx * dx + dy * dy;
  double u = len2 > 0 ? ((cx - a.X) * dx + (cy - a.Y) * dy) / len2 : 0;
  u = std::clamp(u, 0.0, 1.0);
  at = {a.X + u * dx, a.Y + u * dy};
  return true;
}

bool IsPolygon(int t) {
  return t == 5 || t == 15 || t == 25;
}

void Found(HitRec& h, int lyr, const ShpRecord& r, int rec, int part) {
  h.HitLyr = lyr;
  h.HitFeature = rec;
  h.HitType = r.ShapeType;
  h.HitPart = part;
}

} // namespace

void SetPickBox(Session& s, double x, double y) {
  SetPickAt(s, x, y);
}

void SetPickRect(Session& s, double x1, double y1, double x2, double y2) {
  if (std::fabs(x2 - x1) < 3 && std::fabs(y2 - y1) < 3) return SetPickBox(s, x2, y2);
  ViewVars& v = s.View;
  v.PickLeft = WorldX(s, std::min(x1, x2)), v.PickRight = WorldX(s, std::max(x1, x2));
  v.PickTop = WorldY(s, std::min(y1, y2)), v.PickBottom = WorldY(s, std::max(y1, y2));
  v.PickX = (v.PickLeft + v.PickRight) / 2, v.PickY = (v.PickTop + v.PickBottom) / 2;
}

void SetHitMargins(Session& s, int lyr, int mode, double extra) {
  HitRec& h = s.Edit.HitNow;
  const LyrRec& L = s.Lyr[lyr];
  const double F = s.MapView.MapFactor, w = L.EVertexWidth * F;
  h.HitMode = uint8_t(mode);
  h.HitMargined = 1;
  h.HitVrtMargin = h.HitSegMargin = 0;
  if (mode == 2) {
    h.HitVrtMargin = h.HitSegMargin = extra;
    return;
  }
  switch (s.MapView.MapTool) {
  case 7:
  case 8:
  case 9:
  case 16:
    if (L.SSelectable) h.HitVrtMargin = L.DVrtDrawWidth * F * L.DShowVrt;
    break;
  case 11:
    if (L.EEditable) h.HitVrtMargin = w * mode;
    break;
  case 12:
  case 15:
    h.HitVrtMargin = w * mode, h.HitSegMargin = w * extra;
    break;
  case 13:
  case 14:
    if (L.EEditable) h.HitVrtMargin = w * mode, h.HitSegMargin = w * extra;
    break;
  default:
    h.HitMargined = 0;
  }
}

int HitTestFeature(Session& s, int lyr, int rec, int startPart, int startVertex) {
  HitRec& h = s.Edit.HitNow;
  h.HitKind = 0;
  const ShpRecord* r = RecAt(s, lyr, rec);
  if (!r || r->ShapeType == 0 || r->NumParts < 1 || r->PartSlots() < 1) return 0;
  const Box pb = PickBoxOf(s);
  const double vm = h.HitVrtMargin, sm = h.HitSegMargin;
  const double cx = s.View.PickX, cy = s.View.PickY;
  const int t = r->ShapeType;
  if (shpio::IsPoint(t) || shpio::IsMultiPoint(t)) {
    if (shpio::IsMultiPoint(t) && !BoxMeets(pb, r->Xmin, r->Ymin, r->Xmax, r->Ymax, vm)) return 0;
    const ShpPart& p = r->Part(0);
    size_t n = shpio::IsPoint(t) ? std::min<size_t>(LiveCount(p), 1) : LiveCount(p);
    for (size_t i = size_t(std::max(startVertex, 0)); i < n; ++i) {
      XY v = p.PartPoints()[i];
      if (!PointMeets(pb, v.X, v.Y, vm)) continue;
      h.HitKind = 2, h.HitVertex = int32_t(i), h.HitX = v.X, h.HitY = v.Y;
      Found(h, lyr, *r, rec, 0);
      return 2;
    }
    return 0;
  }
  if (!BoxMeets(pb, r->Xmin, r->Ymin, r->Xmax, r->Ymax, vm)) return 0;
  if (h.HitMode != 2) {
    const MapViewRec& mv = s.MapView;
    Box vis{std::min(mv.MapLeft, mv.MapRight), std::max(mv.MapLeft, mv.MapRight),
            std::min(mv.MapTop, mv.MapBottom), std::max(mv.MapTop, mv.MapBottom)};
    if (vis.r > vis.l && !BoxMeets(vis, r->Xmin, r->Ymin, r->Xmax, r->Ymax, 0)) return 0;
  }
  const bool gon = IsPolygon(t);
  bool segHit = false;
  for (int pi = std::max(startPart, 0); pi < r->NumParts && pi < r->PartSlots(); ++pi) {
    const ShpPart& p = r->Part(pi);
    const size_t n = LiveCount(p);
    auto P = p.PartPoints();
    bool parity = false, segHere = false;
    const size_t from = pi == startPart ? size_t(std::max(startVertex, 0)) : 0;
    for (size_t i = from; i < n; ++i) {
      if (PointMeets(pb, P[i].X, P[i].Y, vm)) {
        h.HitKind = 2, h.HitVertex = int32_t(i), h.HitX = P[i].X, h.HitY = P[i].Y;
        Found(h, lyr, *r, rec, pi);
        return 2;
      }
      if (i == 0) continue;
      const XY a = P[i - 1], b = P[i];
      XY at;
      if (!segHit && SegmentMeets(pb, a, b, sm, cx, cy, at)) {
        segHit = segHere = true;
        h.HitKind = 1, h.HitVertex = int32_t(i), h.HitX = at.X, h.HitY = at.Y;
        if (h.HitMode != 1) break;
      }
      if (gon && (a.Y > cy) != (b.Y > cy)) {
        double x = a.X + (cy - a.Y) * (b.X - a.X) / (b.Y - a.Y);
        if (x >= cx) parity = !parity;
      }
    }
    if (segHere) {
      Found(h, lyr, *r, rec, pi);
      if (h.HitMode != 1) return 1;
    } else if (!segHit && gon && parity) {
      h.HitKind = 3, h.HitX = cx, h.HitY = cy, h.HitVertex = 0;
      Found(h, lyr, *r, rec, pi);
      if (h.HitMode != 1) return 3;
    }
  }
  return h.HitKind;
}

bool LyrQualifies(const Session& s, int lyr, bool shift) {
  const LyrRec& L = s.Lyr[lyr];
  switch (s.MapView.MapTool) {
  case 12:
  case 15:
    return shift || L.EEditable;
  case 11:
  case 13:
  case 14:
    return L.EEditable;
  case 7:
    return L.SSelectable;
  default:
    return true;
  }
}

int PickLayers(Session& s, bool shift) {
  HitRec& h = s.Edit.HitNow;
  for (int lyr = 1; lyr <= s.LyrCount; ++lyr) {
    const LyrRec& L = s.Lyr[lyr];
    if (!L.DVisable || L.LyrKind == 0 || !LyrQualifies(s, lyr, shift)) continue;
    SetHitMargins(s, lyr, 1, 1);
    // The newest feature first.
    std::vector<int>& near = s.Edit.PickScratch;
    PickCandidates(s, lyr, s.View.PickLeft, s.View.PickBottom, s.View.PickRight, s.View.PickTop,
                   h.HitVrtMargin, near);
    for (size_t i = near.size(); i-- > 0;)
      if (HitTestFeature(s, lyr, near[i], 0, 0)) return h.HitKind;
    if (L.LyrKind == 2) {
      const ShpMainHeader& e = L.Shp.ShpHeader;
      const double cx = s.View.PickX, cy = s.View.PickY;
      if (cx >= std::min(e.Xmin, e.Xmax) && cx <= std::max(e.Xmin, e.Xmax) &&
          cy >= std::min(e.Ymin, e.Ymax) && cy <= std::max(e.Ymin, e.Ymax)) {
        h.HitKind = 4, h.HitLyr = lyr, h.HitFeature = 0, h.HitPart = 0, h.HitVertex = 0;
        h.HitType = L.Shp.ShpType, h.HitX = cx, h.HitY = cy;
        return 4;
      }
    }
  }
  h.HitKind = 0;
  return 0;
}

int HoverTest(Session& s, double x, double y) {
  int& tool = s.MapView.MapTool;
  if (!(tool == 11 || tool == 13 || tool == 14 || tool == 15) || s.Edit.EditHit.HitKind == 0)
    return tool;
  const HitRec e = s.Edit.EditHit;
  if (e.HitLyr < 1 || e.HitLyr > s.LyrCount || e.HitFeature < 1) return tool;
  SetPickBox(s, x, y);
  // The margins of the editing states: the vertex margin of tool 15 and segment margin.
  const int keep = tool;
  tool = 15;
  SetHitMargins(s, e.HitLyr, 1, 1);
  tool = keep;
  int kind = HitTestFeature(s, e.HitLyr, e.HitFeature, 0, 0);
  if (kind) s.Edit.EditHit = s.Edit.HitNow;
  tool = kind == 2 ? 15 : kind == 1 ? 14 : kind == 3 ? 13 : 11;
  return tool;
}

} // namespace velmora
