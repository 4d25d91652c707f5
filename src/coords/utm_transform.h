#pragma once
#include "model/session.h"
#include "model/shp_types.h"

namespace velmora {

// The two coordinate transforms of the system. Degrees and metres; `datum` indexes
// s.DatumTbl, `zone` is used only by records whose CM is kCMFromZone. An index outside the
// table gives (0, 0). Record 0 has no axes: callers pass 1 or more.

// WGS 84 (lat, lon) to the grid of record `datum`: returns (x, y). Out-of-range latitude or
// longitude gives (0, 0).
XY LatLonToUTM(const Session& s, double lat, double lon, int zone, bool south, int datum);
// Grid of record `datum` to WGS 84: returns (lon, lat), longitude first.
XY UTMToLatLon(const Session& s, double x, double y, int zone, bool south, int datum);

// True when the record carries a datum shift to WGS 84.
bool HasDatumShift(const DatumRec& d);

} // namespace velmora
