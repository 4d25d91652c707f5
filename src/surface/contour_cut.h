#pragma once
#include <functional>
#include <vector>

#include "model/surface_types.h"

namespace velmora {

// The cut of the triangles with one level and the chaining of the cut segments.

// Where triangle t meets level z: up to three points, x and y pairs, in edge order (a, b),
// (b, c), (c, a); a level through the corner b with the cut of the third edge counts once.
int CutTriangle(const SurfaceState& st, int t, float z, double pts[6]);
// The levels: from Fix((TinMinZ - base) / step) * step + base up to TinMaxZ, in single
// precision; step = |interval|, 1 when 0. Stops where the level no longer rises.
std::vector<float> ContourLevels(double minZ, double maxZ, float interval, float base);
// The bucket of a whole-number height, within -1000000 .. 1000000.
int32_t ZBucket(double z);

// The triangles in one list ascending by the whole number of their lowest Z
// (TinTriIndex, index 0 the head).
void IndexTriangles(SurfaceState& st);
// The segments of level z in the order of their descending row keys, then those that
// repeat the last one dropped (SameAsLast): ContourSegs. Finished triangles leave the list.
void CutTriangles(SurfaceState& st, float z);
// Chains ContourSegs into lines and hands each line of more than one vertex to `write`.
void ChainContours(SurfaceState& st, const std::function<bool(const std::vector<double>&)>& write);

} // namespace velmora
