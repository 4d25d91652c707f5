#pragma once
// Walking a feature's parts, vertices and segments, for the geometry library's own files.
#include <cmath>
#include <span>

#include "model/session.h"
#include "query/spatial.h"

namespace velmora::spatial {

enum Family { kNone = 0, kPoint = 1, kLine = 3, kGon = 5, kMulti = 8 };

// Point, line, polygon or multipoint, whatever the Z and M variant; kNone for deleted
// records and for multipatches, which no predicate reads.
inline Family FamilyOf(int shapeType) {
  if (shapeType == 0 || shapeType == 31) return kNone;
  switch (shapeType % 10) {
  case 1:
    return kPoint;
  case 3:
    return kLine;
  case 5:
    return kGon;
  case 8:
    return kMulti;
  default:
    return kNone;
  }
}

// The live feature `feature` of a layer in the table, or null.
inline const ShpRecord* Feat(const Session& s, int layer, int feature) {
  if (layer < -kWorkSlots || layer > s.Lyr.Count()) return nullptr;
  const ShpBlock& B = s.Lyr[layer].Shp;
  if (feature < 1 || feature > B.RecCount || size_t(feature) >= B.ShpRecs.size()) return nullptr;
  const ShpRecord* r = &B.ShpRecs[size_t(feature)];
  return FamilyOf(r->ShapeType) == kNone ? nullptr : r;
}

// The live vertices of a part.
inline std::span<const XY> Live(const ShpPart& p) {
  size_t n = p.PartCount <= 0 ? 0 : std::min(size_t(p.PartCount), p.Size());
  return p.PartPoints().first(n);
}

// Segments of a part: vertex i to i + 1, and for a ring not closed in its file the segment
// back to its first vertex.
inline size_t SegCount(std::span<const XY> v, bool gon) {
  if (v.size() < 2) return 0;
  bool open = gon && (v.front().X != v.back().X || v.front().Y != v.back().Y);
  return v.size() - 1 + (open ? 1 : 0);
}
inline XY SegEnd(std::span<const XY> v, size_t i) {
  return v[i + 1 == v.size() ? 0 : i + 1];
}

inline bool HasVertex(const ShpRecord& r) {
  for (const ShpPart& p : r.Parts())
    if (!Live(p).empty()) return true;
  return false;
}

// The record's box, each axis in order.
struct Box {
  double x1, y1, x2, y2;
};
inline Box BoxOf(const ShpRecord& r) {
  return {Min(r.Xmin, r.Xmax), Min(r.Ymin, r.Ymax), Max(r.Xmin, r.Xmax), Max(r.Ymin, r.Ymax)};
}
inline bool BoxesMeet(const ShpRecord& a, const ShpRecord& b, double tol) {
  return RangesOverlap(a.Xmin, a.Xmax, b.Xmin, b.Xmax, tol) &&
         RangesOverlap(a.Ymin, a.Ymax, b.Ymin, b.Ymax, tol);
}

inline void NoteHit(CrossResult* d, int layer, const ShpRecord& r, int feature, int part,
                    int vertex) {
  if (!d) return;
  d->HitLyr = layer;
  d->HitType = r.ShapeType;
  d->HitFeature = feature;
  d->HitPart = part;
  d->HitVertex = vertex;
}

// Which point test a feature predicate asks of a polygon.
enum class GonTest { Strict, Loose };

// The point test of p against feature b, by b's family.
bool PointTest(const Session& s, int b, int fb, XY p, CrossResult* details, double tol,
               GonTest gon);

} // namespace velmora::spatial
