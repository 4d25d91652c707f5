#include "coords/display_xy.h"

#include "coords/utm_transform.h"

namespace velmora {

namespace {

bool Usable(const Session& s, int idx) {
  return idx >= 1 && size_t(idx) < s.DatumTbl.size();
}

} // namespace

XY ToDisplayXY(const Session& s, XY p, int lyrUnit) {
  if ((lyrUnit != 0) == (s.MapUnit != 0)) return p;
  if (lyrUnit == 0) {
    if (!Usable(s, s.MapCoordsIdx)) return p;
    return LatLonToUTM(s, p.Y, p.X, s.MapZone, s.MapSouth != 0, s.MapCoordsIdx);
  }
  if (!Usable(s, s.MeasCoordsIdx)) return p;
  return UTMToLatLon(s, p.X, p.Y, s.MeasZone, s.MeasSouth != 0, s.MeasCoordsIdx);
}

} // namespace velmora
