#pragma once
#include "model/surface_types.h"
#include "surface/tin_points.h"

namespace velmora {

// The matrix TIN of points in grid order: for each point i the first j from i + 2 that
// makes a cell (i, i + 1, j, j + 1) gives the triangles (i, i + 1, j) and (i + 1, j, j + 1).
// False when stopped.
bool MakeMatrix(SurfaceState& st, const TinTick& tick);
// Method 3: the points of a TIN layer, four a triangle (a, b, c, a), back into triangles.
bool LoadTin(SurfaceState& st, const TinTick& tick);

} // namespace velmora
