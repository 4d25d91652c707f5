#pragma once
#include "model/session.h"

namespace velmora {

// BUILD TIN <srcPath> <outPath> <method 1|2> <height> [<criteria>]
// BUILD CONTOURS <srcPath> <outPath> <method 1|2|3> <height> <interval> <base> [<criteria>]
// <height> is a field name, Z for the shapes' own Z, or NONE; <criteria> 1 all features
// (the default), 2 the selected, 3 the unselected. The new layer is added to the map.
int RunBuildTin(Session& s);
int RunBuildContours(Session& s);

} // namespace velmora
