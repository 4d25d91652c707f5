#pragma once
#include "model/session.h"
#include "model/shp_types.h"

namespace velmora {

// The two directions of a layer conversion: WGS 84 degrees to a grid of DatumTbl, or back.
enum class CoordDir { GeoToGrid, GridToGeo };

struct CoordConv {
  CoordDir Dir = CoordDir::GeoToGrid;
  int Datum = kWgs84Idx;
  int Zone = 1;
  bool South = false;
};

// One point, (x, y) in the source system to (x, y) in the target: degrees are (lon, lat).
XY ConvertPoint(const Session& s, const CoordConv& c, XY p);
// A box given by its left-top and right-bottom corners, converted corner by corner.
void ConvertBox(const Session& s, const CoordConv& c, double& xmin, double& ymin, double& xmax,
                double& ymax);
// A feature: its box, every vertex of every part, and its label anchor. Z and M stay.
void ConvertRecCoords(const Session& s, const CoordConv& c, ShpRecord& r);

} // namespace velmora
