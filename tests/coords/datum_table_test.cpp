#include <gtest/gtest.h>

#include "model/angles.h"
#include "model/datum_table.h"

namespace velmora {
namespace {

TEST(DatumTable, BuiltInRecordsAreUtmOnTheirEllipsoids) {
  Session s;
  ASSERT_EQ(s.DatumTbl.size(), 24u);
  const DatumRec& airy = s.DatumTbl[1];
  EXPECT_EQ(airy.CrdName, "Airy 1930");
  EXPECT_EQ(airy.SphName, "AA");
  EXPECT_EQ(airy.SMA, 6377563.396);
  EXPECT_EQ(airy.SMB, 6356256.909);
  EXPECT_EQ(s.DatumTbl[3].CrdName, "Bessel 1841 Ethiopia,Indonesia,Japan,Korea");
  EXPECT_EQ(s.DatumTbl[7].CrdName, "Everest Brunei & E. Malasia (Sabah & Sarawak)");
  EXPECT_EQ(s.DatumTbl[13].SMB, 6356752.3141);
  const DatumRec& wgs = s.DatumTbl[23];
  EXPECT_EQ(wgs.CrdName, "World Geodetic System 1984 (WGS 84)");
  EXPECT_EQ(wgs.SphName, "WE");
  EXPECT_EQ(wgs.SMB, 6356752.3142); // rounded to four decimals, as the grids always had it
  EXPECT_DOUBLE_EQ(wgs.Flattining, 6378137.0 / (6378137.0 - 6356752.3142));
  for (size_t i = 0; i < s.DatumTbl.size(); ++i) {
    const DatumRec& r = s.DatumTbl[i];
    EXPECT_EQ(r.FEast, 500000.0) << i;
    EXPECT_EQ(r.FNorth, 0.0) << i;
    EXPECT_EQ(r.FNorthS, 1e7) << i;
    EXPECT_EQ(r.CM, kCMFromZone) << i;
    EXPECT_EQ(r.SF, 0.9996) << i;
    EXPECT_EQ(r.LatOrg, 0.0) << i;
    EXPECT_EQ(r.TransDX + r.TransDY + r.TransDZ + r.TransRX + r.TransRY + r.TransRZ + r.TransScale,
              0.0)
        << i;
  }
  EXPECT_EQ(s.DatumTbl[0].CrdName, "Geographic");
  EXPECT_EQ(s.DatumTbl[0].SMA, 0.0);
  EXPECT_EQ(s.DatumTbl[0].Flattining, 0.0); // no axes: FlatFromAxes gives 0
}

TEST(DatumTable, AxesAndFlattening) {
  EXPECT_EQ(FlatFromAxes(0, 5), 0.0);
  EXPECT_NEAR(FlatFromAxes(6378137.0, 6356752.314245), 298.257223563, 1e-6);
  EXPECT_EQ(MinorFromFlat(6378137, 0), 0.0);
  EXPECT_NEAR(MinorFromFlat(6378137.0, 298.257223563), 6356752.314245, 1e-6);
}

TEST(DatumTable, UserRecordsAreAddedSetAndRemoved) {
  Session s;
  DatumDef d{"Mine",  "Airy_1830", 6377563.396, 6356256.909,  0, 400000,
             -100000, -100000,     -2,          0.9996012717, 49};
  int idx = AddDatum(s, d, DatumTrans{1, 2, 3, 3600, -1800, 0.5, -20});
  ASSERT_EQ(idx, 24);
  const DatumRec& r = s.DatumTbl[24];
  EXPECT_EQ(r.CrdName, "Mine");
  EXPECT_DOUBLE_EQ(r.Flattining, FlatFromAxes(6377563.396, 6356256.909));
  EXPECT_EQ(r.TransRX, 3600.0);
  EXPECT_DOUBLE_EQ(r.TransRXRad, kCoordPi / 180); // one degree, with the system's pi
  EXPECT_DOUBLE_EQ(r.TransRYRad, -kCoordPi / 360);
  EXPECT_EQ(r.TransScale, -20.0);

  // A flattening given is kept as given.
  d.Flat = 299.3249646;
  SetDatum(s, 24, d, DatumTrans{});
  EXPECT_EQ(s.DatumTbl[24].Flattining, 299.3249646);
  EXPECT_EQ(s.DatumTbl[24].TransRX, 0.0);

  // Past the end: nothing happens.
  SetDatum(s, 25, d, DatumTrans{});
  SetDatumTrans(s, 99, DatumTrans{1});
  EXPECT_EQ(s.DatumTbl.size(), 25u);

  d.CrdName = "Second";
  AddDatum(s, d, DatumTrans{});
  RemoveDatum(s, 24);
  ASSERT_EQ(s.DatumTbl.size(), 25u);
  EXPECT_EQ(s.DatumTbl[24].CrdName, "Second");
  RemoveDatum(s, 40); // out of the table
  EXPECT_EQ(s.DatumTbl.size(), 25u);
}

TEST(DatumTable, ListsCarryTheRecordIndex) {
  Session s;
  AddDatum(s, DatumDef{"User grid", "x", 6378137, 6356752, 0, 0, 0, 0, 0, 1, 0}, DatumTrans{});
  DatumItems all = FillDatumCmb(s, 1);
  ASSERT_EQ(all.size(), 24u);
  EXPECT_EQ(all.front(), (std::pair<std::string, int>{"Airy 1930", 1}));
  EXPECT_EQ(all.back(), (std::pair<std::string, int>{"User grid", 24}));
  DatumItems sph = FillSpheroidCmb(s, 1);
  ASSERT_EQ(sph.size(), 23u);
  EXPECT_EQ(sph.back().second, 23);
  EXPECT_EQ(FillDatumCmb(s, 23).size(), 2u);
}

} // namespace
} // namespace velmora
