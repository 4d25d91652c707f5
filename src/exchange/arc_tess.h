#pragma once
#include <vector>

#include "model/shp_types.h"

namespace velmora {

// The tessellation of circles and arcs shared by the DXF import and the map editor.

// The step in degrees for radius r: about one map unit long, kept between 1 and 5 degrees.
double ArcStep(double r);
// A full circle from (cx + r, cy), counter-clockwise by ArcStep, each point turned from the
// one before (so rounding accumulates), closed by (cx + r, cy) exactly.
std::vector<XY> TessCircle(double cx, double cy, double r);

} // namespace velmora
