#pragma once
#include <functional>
#include <vector>

#include "model/surface_types.h"

namespace velmora {

// Called once a unit of work with the share of the progress it adds; true stops the stage.
using TinTick = std::function<bool(double add)>;

// TinScale for a layer extent: 100000000.0 within geographic bounds, else 1.0.
double TinScaleOf(double left, double bottom, double right, double top);
// Clears the working arrays and the bounds for a new run.
void ResetSurface(SurfaceState& st);
// Widens the bounds by one point (X and Y scaled) and follows the grid order: rows from
// north to south, west to east in a row. The i32 bounds keep their value where the
// truncated coordinate doesn't fit.
void ScanBounds(SurfaceState& st, double x, double y, double z);
// The distance from the corner of the bounds (TinMinX, TinMinY), which orders the points.
double RefDist(const SurfaceState& st, const TinPoint& p);
// The order of the points in the sorted list: method 1 ascending by the distance key,
// method 2 descending by the row key; equal keys keep their arrival order.
std::vector<int> OrderPoints(const SurfaceState& st, const std::vector<TinPoint>& raw, int method);
// Moves the rows, in list order, into TinPoints, dropping duplicates and, in method 2,
// sorting row stretches by X. False on an allocation failure (the points are cleared).
bool PreparePoints(SurfaceState& st, const std::vector<TinPoint>& raw,
                   const std::vector<int>& order, int method, const TinTick& tick);
// Method 2 in grid order and method 3: the points go into TinPoints as they arrive.
bool StorePoints(SurfaceState& st, const std::vector<TinPoint>& raw);

} // namespace velmora
