// Point tests against the features of a layer.
#include "query/spatial_walk.h"

namespace velmora {

using namespace spatial;

namespace {

bool InBoxTol(const ShpRecord& r, XY p, double tol) {
  return InRangeTol(p.X, r.Xmin, r.Xmax, tol) && InRangeTol(p.Y, r.Ymin, r.Ymax, tol);
}

// Even-odd over all rings of three or more vertices, so that holes are holes.
bool InsideRings(const ShpRecord& r, XY p) {
  bool in = false;
  for (const ShpPart& part : r.Parts()) {
    auto v = Live(part);
    if (v.size() < 3) continue;
    for (size_t i = 0, j = v.size() - 1; i < v.size(); j = i++) {
      if ((v[i].Y > p.Y) != (v[j].Y > p.Y) &&
          p.X < (v[j].X - v[i].X) * (p.Y - v[i].Y) / (v[j].Y - v[i].Y) + v[i].X)
        in = !in;
    }
  }
  return in;
}

// The first edge within tol of p, from startPart, startVertex.
bool NearEdge(const Session& s, int layer, int feature, const ShpRecord& r, bool gon, XY p,
              CrossResult* details, double tol, int startPart, int startVertex) {
  auto parts = r.Parts();
  for (size_t k = size_t(startPart < 0 ? 0 : startPart); k < parts.size(); ++k) {
    auto v = Live(parts[k]);
    size_t n = SegCount(v, gon);
    size_t i0 = int(k) == startPart && startVertex > 0 ? size_t(startVertex) : 0;
    for (size_t i = i0; i < n; ++i) {
      XY a = v[i], b = SegEnd(v, i);
      if (!InRangeTol(p.X, a.X, b.X, tol) || !InRangeTol(p.Y, a.Y, b.Y, tol)) continue;
      if (PointNearSegDetails(p, a, b, details, tol)) {
        NoteHit(details, layer, r, feature, int(k), int(i));
        (void)s;
        return true;
      }
    }
  }
  return false;
}

} // namespace

bool PointOnPoint(const Session& s, int layer, int feature, XY p, CrossResult* details,
                  double tol) {
  const ShpRecord* r = Feat(s, layer, feature);
  if (!r || FamilyOf(r->ShapeType) != kPoint) return false;
  for (const ShpPart& part : r->Parts()) {
    auto v = Live(part);
    if (v.empty()) continue;
    if (Distance(p.X, p.Y, v[0].X, v[0].Y) > tol) return false;
    if (details) {
      details->CrossX = v[0].X;
      details->CrossY = v[0].Y;
      details->CrossKindA = details->CrossKindB = 2;
    }
    NoteHit(details, layer, *r, feature, 0, 0);
    return true;
  }
  return false;
}

bool PointOnMultipoint(const Session& s, int layer, int feature, XY p, CrossResult* details,
                       double tol, int start) {
  const ShpRecord* r = Feat(s, layer, feature);
  if (!r || FamilyOf(r->ShapeType) != kMulti) return false;
  if (!InBoxTol(*r, p, tol) || MaskRejects(s, layer, feature, p)) return false;
  // A multipoint holds its points in its one part.
  auto parts = r->Parts();
  int index = 0;
  for (size_t k = 0; k < parts.size(); ++k) {
    for (const XY& q : Live(parts[k])) {
      if (index++ < start) continue;
      if (Distance(p.X, p.Y, q.X, q.Y) > tol) continue;
      if (details) {
        details->CrossX = q.X;
        details->CrossY = q.Y;
        details->CrossKindA = details->CrossKindB = 2;
      }
      NoteHit(details, layer, *r, feature, int(k), index - 1);
      return true;
    }
  }
  return false;
}

bool PointOnLine(const Session& s, int layer, int feature, XY p, CrossResult* details, double tol,
                 int startPart, int startVertex) {
  const ShpRecord* r = Feat(s, layer, feature);
  if (!r || FamilyOf(r->ShapeType) != kLine) return false;
  if (!InBoxTol(*r, p, tol) || MaskRejects(s, layer, feature, p)) return false;
  return NearEdge(s, layer, feature, *r, false, p, details, tol, startPart, startVertex);
}

bool PointInPolygonOrEdge(const Session& s, int layer, int feature, XY p, CrossResult* details,
                          double tol, int startPart, int startVertex) {
  const ShpRecord* r = Feat(s, layer, feature);
  if (!r || FamilyOf(r->ShapeType) != kGon) return false;
  if (!InBoxTol(*r, p, tol) || MaskRejects(s, layer, feature, p)) return false;
  if (NearEdge(s, layer, feature, *r, true, p, details, tol, startPart, startVertex)) return true;
  if (!InsideRings(*r, p)) return false;
  if (details) {
    details->CrossX = p.X;
    details->CrossY = p.Y;
    details->CrossKindA = details->CrossKindB = 0;
  }
  NoteHit(details, layer, *r, feature, -1, -1);
  return true;
}

bool PointInPolygonStrict(const Session& s, int layer, int feature, XY p, CrossResult* details,
                          double tol) {
  const ShpRecord* r = Feat(s, layer, feature);
  if (!r || FamilyOf(r->ShapeType) != kGon) return false;
  if (!InBoxTol(*r, p, 0) || MaskRejects(s, layer, feature, p)) return false;
  if (NearEdge(s, layer, feature, *r, true, p, nullptr, tol, 0, 0)) return false;
  if (!InsideRings(*r, p)) return false;
  if (details) {
    details->CrossX = p.X;
    details->CrossY = p.Y;
    details->CrossKindA = details->CrossKindB = 0;
  }
  NoteHit(details, layer, *r, feature, -1, -1);
  return true;
}

bool PointInPolygonLoose(const Session& s, int layer, int feature, XY p, CrossResult* details,
                         double tol) {
  return PointInPolygonOrEdge(s, layer, feature, p, details, tol, 0, 0);
}

namespace spatial {

bool PointTest(const Session& s, int b, int fb, XY p, CrossResult* details, double tol,
               GonTest gon) {
  const ShpRecord* r = Feat(s, b, fb);
  if (!r) return false;
  switch (FamilyOf(r->ShapeType)) {
  case kPoint:
    return PointOnPoint(s, b, fb, p, details, tol);
  case kMulti:
    return PointOnMultipoint(s, b, fb, p, details, tol, 0);
  case kLine:
    return PointOnLine(s, b, fb, p, details, tol, 0, 0);
  case kGon:
    return gon == GonTest::Strict ? PointInPolygonStrict(s, b, fb, p, details, tol)
                                  : PointInPolygonLoose(s, b, fb, p, details, tol);
  default:
    return false;
  }
}

} // namespace spatial

} // namespace velmora
