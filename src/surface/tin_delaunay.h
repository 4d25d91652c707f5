#pragma once
#include "model/surface_types.h"
#include "surface/tin_points.h"

namespace velmora {

// The Delaunay TIN by gift-wrapping over TinPoints, which stand sorted by their distance
// from the corner of the bounds. A seed triangle with an empty circle, then for each open
// edge of each triangle in turn the apex on its far side. The triangles are those of the
// plain scan over all points (first candidate in the scan order, the empty-circle test
// within its distance band), found through a point tree and an edge map.
// Stopped by `tick` or out of memory: both arrays are cleared, st.Err set, false.
bool MakeDelaunay(SurfaceState& st, const TinTick& tick);

} // namespace velmora
