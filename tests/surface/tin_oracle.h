#pragma once
#include <vector>

#include "model/surface_types.h"

namespace velmora::oracle {

// The TIN exactly as the plain algorithm builds it: the text keys in a sorted list, the
// duplicate walk, and for the Delaunay method the scan over all points for every apex and
// the walk over all triangles for every edge. Slow; the product must give the same lists.
struct TinResult {
  std::vector<TinPoint> Points; // 1-based
  std::vector<TinTri> Tris;     // 1-based
};

// `bounds` holds the bounds and the grid flag after ScanBounds of every raw point.
TinResult BuildTin(const SurfaceState& bounds, const std::vector<TinPoint>& raw, int method);

} // namespace velmora::oracle
