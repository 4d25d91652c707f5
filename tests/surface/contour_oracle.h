#pragma once
#include <vector>

#include "model/surface_types.h"

namespace velmora::oracle {

// The contour lines exactly as the plain algorithm makes them: the triangle list walked per
// level, the segments in a list sorted by their text keys, the drain, and the chain that
// scans all segments again after every extension.
struct ContourLine {
  float Z = 0;
  std::vector<double> XY;
};
std::vector<ContourLine> BuildContours(const SurfaceState& tin, float interval, float base);

} // namespace velmora::oracle
