#include "coords/utm_transform.h"

#include <cmath>

#include "coords/tm_series.h"
#include "coords/utm_zone.h"

namespace velmora {

namespace {

double CentralMeridian(const DatumRec& d, int zone) {
  return d.CM == kCMFromZone ? UTMCentralMeridian(zone) : DegToRad(d.CM);
}

} // namespace

bool HasDatumShift(const DatumRec& d) {
  return std::abs(d.TransDX) + std::abs(d.TransDY) + std::abs(d.TransDZ) + std::abs(d.TransRXRad) +
             std::abs(d.TransRYRad) + std::abs(d.TransRZRad) + std::abs(d.TransScale) !=
         0;
}

XY LatLonToUTM(const Session& s, double lat, double lon, int zone, bool south, int datum) {
  if (!(lat >= -90 && lat <= 90 && lon >= -180 && lon <= 180)) return XY{};
  if (datum < 0 || size_t(datum) >= s.DatumTbl.size()) return XY{};
  const DatumRec& d = s.DatumTbl[size_t(datum)];
  double phi = DegToRad(lat), lambda = DegToRad(lon);
  if (HasDatumShift(d)) {
    if (s.DatumTbl.size() <= size_t(kWgs84Idx)) return XY{};
    // WGS 84 to this datum: the stored shift runs the other way, so every parameter negated.
    Cart c = GeoToCart(lambda, phi, s.DatumTbl[kWgs84Idx]);
    c = BursaWolf(c, -d.TransDX, -d.TransDY, -d.TransDZ, -d.TransRXRad, -d.TransRYRad,
                  -d.TransRZRad, -d.TransScale);
    GridXY g = CartToGeo(c, d);
    lambda = g.X, phi = g.Y;
  }
  GridXY g = MapLatLonToXY(phi, lambda, CentralMeridian(d, zone), d);
  XY r{g.X * d.SF + d.FEast, g.Y * d.SF};
  // A negative y gets the southern false northing whatever the flag says.
  r.Y += (r.Y < 0 || south) ? d.FNorthS : d.FNorth;
  return r;
}

XY UTMToLatLon(const Session& s, double x, double y, int zone, bool south, int datum) {
  if (datum < 0 || size_t(datum) >= s.DatumTbl.size()) return XY{};
  const DatumRec& d = s.DatumTbl[size_t(datum)];
  // Only the flag chooses the false northing taken off.
  double xp = (x - d.FEast) / d.SF;
  double yp = (y - (south ? d.FNorthS : d.FNorth)) / d.SF;
  GridXY g = MapXYToLatLon(xp, yp, CentralMeridian(d, zone), d);
  if (HasDatumShift(d)) {
    if (s.DatumTbl.size() <= size_t(kWgs84Idx)) return XY{};
    Cart c = GeoToCart(g.X, g.Y, d);
    c = BursaWolf(c, d.TransDX, d.TransDY, d.TransDZ, d.TransRXRad, d.TransRYRad, d.TransRZRad,
                  d.TransScale);
    g = CartToGeo(c, s.DatumTbl[kWgs84Idx]);
  }
  return XY{RadToDeg(g.X), RadToDeg(g.Y)};
}

} // namespace velmora
