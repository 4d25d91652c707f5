// The transforms against PROJ (cs2cs) as an independent oracle.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "coords/utm_transform.h"
#include "model/datum_table.h"
#include "proj_oracle.h"

namespace velmora {
namespace {

using test::Cs2cs;
using test::Pt;

struct Sample {
  int Zone;
  double Lat, Lon;
};

// Every zone, latitudes of both halves up to the grid's limits, up to 3 degrees either side
// of the central meridian.
std::vector<Sample> ZoneSamples(bool south) {
  std::vector<Sample> out;
  const double northLats[] = {0.0, 0.5, 12.3, 33.3, 47.9, 61.2, 72.5, 84.0};
  const double southLats[] = {-0.5, -12.3, -33.3, -47.9, -61.2, -72.5, -80.0};
  const double offsets[] = {-3.0, -2.2, -0.7, 0.0, 0.9, 2.5, 3.0};
  for (int zone = 1; zone <= 60; ++zone) {
    double cm = zone * 6 - 183;
    for (double lat : south ? std::vector<double>(std::begin(southLats), std::end(southLats))
                            : std::vector<double>(std::begin(northLats), std::end(northLats)))
      for (double off : offsets) {
        double lon = cm + off;
        if (lon < -180 || lon > 180) continue; // outside the range the transform takes
        out.push_back({zone, lat, lon});
      }
  }
  return out;
}

std::string UtmDef(int zone, bool south) {
  return "+proj=utm +zone=" + std::to_string(zone) + (south ? " +south" : "") + " +datum=WGS84";
}

// Forward and inverse on record 23, one hemisphere, against cs2cs zone by zone.
void CheckHemisphere(bool south) {
  Session s;
  std::vector<Sample> samples = ZoneSamples(south);
  double worstX = 0, worstY = 0, worstLat = 0, worstLon = 0;
  for (int zone = 1; zone <= 60; ++zone) {
    std::vector<Pt> geo;
    for (const Sample& sm : samples)
      if (sm.Zone == zone) geo.push_back({sm.Lon, sm.Lat});
    std::vector<Pt> grid = Cs2cs("+proj=longlat +datum=WGS84", UtmDef(zone, south), geo);
    ASSERT_EQ(grid.size(), geo.size()) << "cs2cs failed, zone " << zone;
    std::vector<Pt> back = Cs2cs(UtmDef(zone, south), "+proj=longlat +datum=WGS84", grid);
    ASSERT_EQ(back.size(), grid.size());
    for (size_t i = 0; i < geo.size(); ++i) {
      XY g = LatLonToUTM(s, geo[i].B, geo[i].A, zone, south, kWgs84Idx);
      worstX = std::max(worstX, std::abs(g.X - grid[i].A));
      worstY = std::max(worstY, std::abs(g.Y - grid[i].B));
      EXPECT_NEAR(g.X, grid[i].A, 1e-3) << "zone " << zone << " lat " << geo[i].B;
      EXPECT_NEAR(g.Y, grid[i].B, 1e-3) << "zone " << zone << " lat " << geo[i].B;
      XY ll = UTMToLatLon(s, grid[i].A, grid[i].B, zone, south, kWgs84Idx);
      worstLon = std::max(worstLon, std::abs(ll.X - back[i].A));
      worstLat = std::max(worstLat, std::abs(ll.Y - back[i].B));
      EXPECT_NEAR(ll.X, back[i].A, 1e-8) << "zone " << zone << " lat " << geo[i].B;
      EXPECT_NEAR(ll.Y, back[i].B, 1e-8) << "zone " << zone << " lat " << geo[i].B;
    }
  }
  std::printf("%s: worst forward |dx| %.3g m, |dy| %.3g m; inverse |dlat| %.3g, |dlon| %.3g deg\n",
              south ? "south" : "north", worstX, worstY, worstLat, worstLon);
}

TEST(UtmVsProj, Wgs84AllZonesNorth) {
  CheckHemisphere(false);
}

TEST(UtmVsProj, Wgs84AllZonesSouth) {
  CheckHemisphere(true);
}

// A user record on the Airy ellipsoid with the Ordnance Survey's seven parameters to WGS 84.
// PROJ applies the exact Helmert transformation (and its exact inverse) with heights; this
// system negates the parameters for the way back, chains the three lines (each uses the
// results of the one before) and drops the height. Measured over Great Britain on a half-degree
// grid the two differ by at most 2.6 mm forward and 4.2e-8 degree inverse: that is the size of
// the difference the chained formula implies, and the bounds below leave it some room.
TEST(UtmVsProj, SevenParameterShiftAgainstTowgs84) {
  Session s;
  int idx = AddDatum(s, DatumDefOf(s.DatumTbl[1]),
                     DatumTrans{446.448, -125.157, 542.06, 0.15, 0.247, 0.842, -20.489});
  s.DatumTbl[size_t(idx)].CrdName = "OSGB on UTM";
  std::vector<Pt> geo;
  for (double lat = 50.0; lat <= 58.5; lat += 0.5)
    for (double lon = -6.0; lon <= -0.5; lon += 0.5) geo.push_back({lon, lat});
  const std::string utm30 =
      "+proj=utm +zone=30 +ellps=airy +towgs84=446.448,-125.157,542.06,0.15,0.247,0.842,-20.489";
  std::vector<Pt> grid = Cs2cs("+proj=longlat +datum=WGS84", utm30, geo);
  ASSERT_EQ(grid.size(), geo.size());
  double worstFwd = 0, worstInv = 0;
  for (size_t i = 0; i < geo.size(); ++i) {
    XY g = LatLonToUTM(s, geo[i].B, geo[i].A, 30, false, idx);
    worstFwd = std::max(worstFwd, std::hypot(g.X - grid[i].A, g.Y - grid[i].B));
    XY ll = UTMToLatLon(s, grid[i].A, grid[i].B, 30, false, idx);
    worstInv = std::max(worstInv, std::max(std::abs(ll.X - geo[i].A), std::abs(ll.Y - geo[i].B)));
  }
  std::printf("seven parameters: worst forward %.4f m, worst inverse %.3g deg\n", worstFwd,
              worstInv);
  EXPECT_LT(worstFwd, 0.005);
  EXPECT_LT(worstInv, 1e-7);
  // The shift is really applied: without it the grid moves by about a hundred metres.
  XY plain = LatLonToUTM(s, 52, -2, 30, false, 1);
  XY shifted = LatLonToUTM(s, 52, -2, 30, false, idx);
  EXPECT_GT(std::hypot(plain.X - shifted.X, plain.Y - shifted.Y), 50.0);
}

} // namespace
} // namespace velmora
