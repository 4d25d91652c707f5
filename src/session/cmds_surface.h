#pragma once
#include <string>

#include "model/session.h"

namespace velmora {

// BUILD TIN <srcPath> <outPath> <method 1|2> <height> [<criteria>]
// BUILD CONTOURS <srcPath> <outPath> <method 1|2|3> <height> <interval> <base> [<criteria>]
// <height> is a field name, Z for the shapes' own Z, or NONE; <criteria> 1 all features
// (the default), 2 the selected, 3 the unselected. The new layer is added to the map.
int RunBuildTin(Session& s);
int RunBuildContours(Session& s);
// Adds the layer a surface function made to the map. Unlike adding a layer by hand it is
// not held back by the open tool forms, the surface form among them. Its number, 0 when the
// file couldn't be opened.
int AddSurfaceLayer(Session& s, const std::string& path);

} // namespace velmora
