// Feature against feature: crossings, contact, inside, overlap.
#include "query/spatial_walk.h"

namespace velmora {

using namespace spatial;

namespace {

bool HasSegments(Family f) {
  return f == kLine || f == kGon;
}

// Calls fn(a, b) for each segment of the record until it returns true.
template <class Fn> bool AnySegment(const ShpRecord& r, Fn fn) {
  bool gon = FamilyOf(r.ShapeType) == kGon;
  for (const ShpPart& part : r.Parts()) {
    auto v = Live(part);
    for (size_t i = 0, n = SegCount(v, gon); i < n; ++i)
      if (fn(v[i], SegEnd(v, i))) return true;
  }
  return false;
}

template <class Fn> bool AnyVertex(const ShpRecord& r, Fn fn) {
  for (const ShpPart& part : r.Parts())
    for (const XY& q : Live(part))
      if (fn(q)) return true;
  return false;
}

// A segment of a crosses a segment of b properly.
bool ProperCrossing(const ShpRecord& a, const ShpRecord& b) {
  if (!HasSegments(FamilyOf(a.ShapeType)) || !HasSegments(FamilyOf(b.ShapeType))) return false;
  return AnySegment(a, [&](XY a1, XY a2) {
    if (!RangesOverlap(a1.X, a2.X, b.Xmin, b.Xmax, 0) ||
        !RangesOverlap(a1.Y, a2.Y, b.Ymin, b.Ymax, 0))
      return false;
    return AnySegment(b, [&](XY b1, XY b2) {
      return RangesOverlap(a1.X, a2.X, b1.X, b2.X, 0) && RangesOverlap(a1.Y, a2.Y, b1.Y, b2.Y, 0) &&
             SegCrossStrict(a1, a2, b1, b2);
    });
  });
}

// a's box lies in b's box widened by tol: every point test of a vertex of a against b
// needs it.
bool BoxWithin(const ShpRecord& a, const ShpRecord& b, double tol) {
  Box x = BoxOf(a), y = BoxOf(b);
  return x.x1 >= y.x1 - tol && x.x2 <= y.x2 + tol && x.y1 >= y.y1 - tol && x.y2 <= y.y2 + tol;
}

// Every vertex of a passes the point test against b; no segment crosses b's properly.
bool InsideWith(const Session& s, int a, int fa, int b, int fb, CrossResult* details, double tol,
                GonTest gon) {
  const ShpRecord* ra = Feat(s, a, fa);
  const ShpRecord* rb = Feat(s, b, fb);
  if (!ra || !rb || !HasVertex(*ra) || !BoxWithin(*ra, *rb, tol)) return false;
  if (AnyVertex(*ra, [&](XY q) { return !PointTest(s, b, fb, q, details, tol, gon); }))
    return false;
  return !ProperCrossing(*ra, *rb);
}

// a's vertices against b, then a's segments against b's.
bool TouchWith(const Session& s, int a, int fa, const ShpRecord& ra, int b, int fb,
               CrossResult* details, double tol) {
  if (AnyVertex(ra, [&](XY q) { return PointTest(s, b, fb, q, details, tol, GonTest::Loose); }))
    return true;
  if (!HasSegments(FamilyOf(ra.ShapeType))) return false;
  (void)a, (void)fa;
  return AnySegment(
      ra, [&](XY a1, XY a2) { return FeatureCrossSeg(s, b, fb, a1, a2, details, tol, 0, 0); });
}

} // namespace

bool FeatureCrossSeg(const Session& s, int layer, int feature, XY a, XY b, CrossResult* details,
                     double tol, int startPart, int startVertex) {
  const ShpRecord* r = Feat(s, layer, feature);
  if (!r) return false;
  Family f = FamilyOf(r->ShapeType);
  if (!HasSegments(f)) return false;
  auto parts = r->Parts();
  for (size_t k = size_t(startPart < 0 ? 0 : startPart); k < parts.size(); ++k) {
    auto v = Live(parts[k]);
    size_t n = SegCount(v, f == kGon);
    size_t i0 = int(k) == startPart && startVertex > 0 ? size_t(startVertex) : 0;
    for (size_t i = i0; i < n; ++i) {
      XY c = v[i], d = SegEnd(v, i);
      if (!RangesOverlap(a.X, b.X, c.X, d.X, tol)) continue;
      if (!RangesOverlap(a.Y, b.Y, c.Y, d.Y, tol)) continue;
      if (SegCross(a, b, c, d, details, tol)) {
        NoteHit(details, layer, *r, feature, int(k), int(i));
        return true;
      }
    }
  }
  return false;
}

bool FeaturesIntersect(const Session& s, int a, int fa, int b, int fb, CrossResult* details,
                       double tol) {
  const ShpRecord* ra = Feat(s, a, fa);
  const ShpRecord* rb = Feat(s, b, fb);
  if (!ra || !rb || !HasVertex(*ra) || !HasVertex(*rb)) return false;
  if (!BoxesMeet(*ra, *rb, tol)) return false;
  if (a == b && fa == fb) return true;
  if (TouchWith(s, a, fa, *ra, b, fb, details, tol)) return true;
  // b's vertices against a find b wholly inside polygon a, or b's points on a's segments.
  if (!HasSegments(FamilyOf(ra->ShapeType))) return false;
  return AnyVertex(*rb, [&](XY q) { return PointTest(s, a, fa, q, details, tol, GonTest::Loose); });
}

bool FeatureInside(const Session& s, int a, int fa, int b, int fb, CrossResult* details,
                   double tol) {
  return InsideWith(s, a, fa, b, fb, details, tol, GonTest::Strict);
}

bool FeatureInsideOrEdge(const Session& s, int a, int fa, int b, int fb, CrossResult* details,
                         double tol) {
  return InsideWith(s, a, fa, b, fb, details, tol, GonTest::Loose);
}

bool FeatureTouchInside(const Session& s, int a, int fa, int b, int fb, CrossResult* details,
                        double tol) {
  const ShpRecord* ra = Feat(s, a, fa);
  const ShpRecord* rb = Feat(s, b, fb);
  if (!ra || !rb || !HasVertex(*ra) || !HasVertex(*rb) || !BoxesMeet(*ra, *rb, tol)) return false;
  return TouchWith(s, a, fa, *ra, b, fb, details, tol);
}

bool FeatureOverlap(const Session& s, int a, int fa, int b, int fb, CrossResult* details,
                    double tol) {
  const ShpRecord* ra = Feat(s, a, fa);
  const ShpRecord* rb = Feat(s, b, fb);
  if (!ra || !rb || !HasVertex(*ra) || !HasVertex(*rb) || !BoxesMeet(*ra, *rb, tol)) return false;
  bool in = false, out = false;
  AnyVertex(*ra, [&](XY q) {
    if (!in && PointTest(s, b, fb, q, details, tol, GonTest::Strict))
      in = true;
    else if (!out && !PointTest(s, b, fb, q, nullptr, tol, GonTest::Loose))
      out = true;
    return in && out;
  });
  if (in && out) return true;
  return FamilyOf(rb->ShapeType) == kGon && ProperCrossing(*ra, *rb);
}

} // namespace velmora
