#pragma once
#include "model/session.h"
#include "model/shp_types.h"

namespace velmora {

// A vertex of a layer whose coordinate kind is `lyrUnit` (0 degrees, 1 grid metres), given
// in the map's display system (s.MapUnit). Degrees go to the map's grid (MapCoordsIdx,
// MapZone, MapSouth); a grid vertex on a map in degrees is read as a point of the measuring
// projection (MeasCoordsIdx, MeasZone, MeasSouth). Same kinds, or a record below 1: as is.
XY ToDisplayXY(const Session& s, XY p, int lyrUnit);

} // namespace velmora
