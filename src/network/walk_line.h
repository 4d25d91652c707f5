#pragma once
#include <vector>

#include "model/shp_types.h"

namespace velmora {

// WalkLine: the stretch of a line between two positions given by vertex index (a link's
// LinkVertex), always from the lower index to the higher whatever the direction of travel.
// Links carry no part number, so every part is walked with the same indices: the path is
// the start point, then for each part its vertices in the range (the last index limited by
// the part's last vertex, a limit that stays for the parts after it) and the end point.
// Returns the planar length of the path; `pts` (when not null) gets its points.
double WalkLine(const ShpRecord& r, int a, XY pointA, int b, XY pointB, std::vector<XY>* pts);

} // namespace velmora
