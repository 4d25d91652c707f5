// Zone and band rules, and the behaviours of the transforms that PROJ does not share.
#include <gtest/gtest.h>

#include <cmath>

#include "coords/utm_transform.h"
#include "coords/utm_zone.h"
#include "model/datum_table.h"

namespace velmora {
namespace {

TEST(UtmRules, LatitudeBands) {
  EXPECT_EQ(UTMLetter(84), "X");
  EXPECT_EQ(UTMLetter(72), "X");
  EXPECT_EQ(UTMLetter(71.9999), "W");
  EXPECT_EQ(UTMLetter(84.0001), "Z");
  EXPECT_EQ(UTMLetter(-80.0001), "Z");
  EXPECT_EQ(UTMLetter(-80), "C");
  EXPECT_EQ(UTMLetter(0), "N");
  EXPECT_EQ(UTMLetter(-0.0001), "M");
  EXPECT_EQ(UTMLetter(std::nan("")), "Z");
  EXPECT_TRUE(IsSouth(-0.0001));
  EXPECT_FALSE(IsSouth(0));
}

TEST(UtmRules, ZonesWithNorwayAndSvalbard) {
  EXPECT_EQ(UTMZone(0, 180), 1); // normalised to -180
  EXPECT_EQ(UTMZone(0, 179.9), 60);
  EXPECT_EQ(UTMZone(0, -180), 1);
  EXPECT_EQ(UTMZone(0, 540), 1);
  EXPECT_EQ(UTMZone(45, 9), 32);
  EXPECT_EQ(UTMZone(60, 5), 32);
  EXPECT_EQ(UTMZone(60, 2.9), 31);
  EXPECT_EQ(UTMZone(64, 5), 31); // the upper bound is outside
  EXPECT_EQ(UTMZone(75, 9), 33);
  EXPECT_EQ(UTMZone(75, 8.9), 31);
  EXPECT_EQ(UTMZone(75, 21), 35);
  EXPECT_EQ(UTMZone(75, 33), 37);
  EXPECT_EQ(UTMZone(75, 42), 38);
  EXPECT_EQ(UTMZone(84, 9), 32); // Svalbard ends below 84
}

TEST(UtmRules, OutOfRangeGivesTheOrigin) {
  Session s;
  for (auto [lat, lon] :
       {std::pair{90.0001, 0.0}, {-91.0, 0.0}, {0.0, 180.5}, {0.0, -181.0}, {std::nan(""), 0.0}}) {
    XY g = LatLonToUTM(s, lat, lon, 31, false, kWgs84Idx);
    EXPECT_EQ(g.X, 0.0);
    EXPECT_EQ(g.Y, 0.0);
  }
  XY bad = LatLonToUTM(s, 10, 10, 32, false, 99); // no such record
  EXPECT_EQ(bad.X, 0.0);
  EXPECT_EQ(UTMToLatLon(s, 500000, 0, 31, false, -1).Y, 0.0);
}

TEST(UtmRules, FalseNorthingFollowsTheSignOrTheFlag) {
  Session s;
  // South of the equator with the flag off: the negative y still gets the false northing.
  XY a = LatLonToUTM(s, -10, 3, 31, false, kWgs84Idx);
  XY b = LatLonToUTM(s, -10, 3, 31, true, kWgs84Idx);
  EXPECT_EQ(a.X, b.X);
  EXPECT_EQ(a.Y, b.Y);
  EXPECT_NEAR(a.Y, 8894587.3, 1.0);
  // North with the flag on: the false northing is added anyway.
  XY n = LatLonToUTM(s, 10, 3, 31, false, kWgs84Idx);
  XY ns = LatLonToUTM(s, 10, 3, 31, true, kWgs84Idx);
  EXPECT_NEAR(ns.Y - n.Y, 1e7, 1e-6);
  // The way back looks at the flag alone: a southern value read as northern is ~10000 km off.
  XY wrong = UTMToLatLon(s, a.X, a.Y, 31, false, kWgs84Idx);
  XY right = UTMToLatLon(s, a.X, a.Y, 31, true, kWgs84Idx);
  EXPECT_NEAR(right.Y, -10, 1e-9);
  EXPECT_GT(wrong.Y, 75); // about 10000 km north of the point
}

TEST(UtmRules, ZoneArgumentOnlyCountsForZoneRecords) {
  Session s;
  XY z31 = LatLonToUTM(s, 50, 4, 31, false, kWgs84Idx);
  XY z32 = LatLonToUTM(s, 50, 4, 32, false, kWgs84Idx);
  EXPECT_GT(std::abs(z31.X - z32.X), 1000);
  DatumDef d = DatumDefOf(s.DatumTbl[kWgs84Idx]);
  d.CM = 3;
  int idx = AddDatum(s, d, DatumTrans{});
  XY c1 = LatLonToUTM(s, 50, 4, 31, false, idx);
  XY c2 = LatLonToUTM(s, 50, 4, 7, false, idx);
  EXPECT_EQ(c1.X, c2.X);
  EXPECT_EQ(c1.Y, c2.Y);
  EXPECT_EQ(c1.X, z31.X); // zone 31's meridian is 3 degrees east
}

TEST(UtmRules, DatumShiftKeepsLongitudeWithinNinetyDegrees) {
  Session s;
  int idx = AddDatum(s, DatumDefOf(s.DatumTbl[17]), DatumTrans{-87, -98, -121, 0, 0, 0, 0});
  const int zone = UTMZone(30, 120);
  XY g = LatLonToUTM(s, 30, 120, zone, false, idx);
  XY back = UTMToLatLon(s, g.X, g.Y, zone, false, idx);
  // The one-argument arc tangent folds 120 E into the other half (-60 on the local datum,
  // then projected 183 degrees off its meridian): what comes back is no longer the point.
  EXPECT_GE(back.X, -90);
  EXPECT_LE(back.X, 90);
  EXPECT_GT(std::abs(back.X - 120), 30);
  // The same point without a shift comes back whole.
  XY g0 = LatLonToUTM(s, 30, 120, zone, false, kWgs84Idx);
  XY b0 = UTMToLatLon(s, g0.X, g0.Y, zone, false, kWgs84Idx);
  EXPECT_NEAR(b0.X, 120, 1e-9);
  EXPECT_NEAR(b0.Y, 30, 1e-9);
}

TEST(UtmRules, LatitudeOfOriginMovesTheNorthing) {
  Session s;
  DatumDef d = DatumDefOf(s.DatumTbl[kWgs84Idx]);
  d.LatOrg = 40;
  d.CM = 0;
  d.FNorth = d.FNorthS = 0;
  d.SF = 1;
  int idx = AddDatum(s, d, DatumTrans{});
  XY o = LatLonToUTM(s, 40, 0, 1, false, idx);
  EXPECT_NEAR(o.X, 500000, 1e-9);
  EXPECT_NEAR(o.Y, 0, 1e-6);
  XY back = UTMToLatLon(s, 500000, 0, 1, false, idx);
  EXPECT_NEAR(back.Y, 40, 1e-9);
}

} // namespace
} // namespace velmora

#include "coords/tm_series.h"

namespace velmora {
namespace {

// The series take their sines from one sine and cosine; they must agree with the library's
// to the last few bits, on a real ellipsoid and on a flattened one where the footpoint's
// correction is too large for the short series.
TEST(UtmRules, SinesOfMultiplesAndFootpoint) {
  for (double v = -1.6; v <= 1.6; v += 0.01) {
    SinMultiples m = SinesOfMultiples(std::sin(v), std::cos(v));
    EXPECT_NEAR(m.S2, std::sin(2 * v), 1e-15);
    EXPECT_NEAR(m.S4, std::sin(4 * v), 2e-15);
    EXPECT_NEAR(m.S6, std::sin(6 * v), 4e-15);
    EXPECT_NEAR(m.S8, std::sin(8 * v), 8e-15);
  }
  Session s;
  DatumRec flat = s.DatumTbl[kWgs84Idx];
  flat.SMB = flat.SMA * 0.7;
  for (const DatumRec* d : {&s.DatumTbl[kWgs84Idx], &s.DatumTbl[1], &flat})
    for (double y = -1e7; y <= 1e7; y += 123456.7) {
      double sf, cf;
      double phi = FootpointLatitude(y, *d, sf, cf);
      EXPECT_NEAR(sf, std::sin(phi), 1e-15);
      EXPECT_NEAR(cf, std::cos(phi), 1e-15);
    }
}

} // namespace
} // namespace velmora
