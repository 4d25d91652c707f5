#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "coords/prj_file.h"
#include "coords/utm_transform.h"
#include "model/datum_table.h"
#include "model/file_util.h"
#include "proj_oracle.h"

namespace velmora {
namespace {

using test::Pt;

// British National Grid as GDAL writes it for ESRI, several lines, mixed case.
std::string BngPrj(const std::string& dir) {
  int status = -1;
  std::string wkt = test::RunCmd("gdalsrsinfo -o wkt_esri EPSG:27700", &status);
  EXPECT_EQ(status, 0);
  std::string path = dir + "/bng.prj";
  test::WriteFile(path, wkt);
  return path;
}

TEST(PrjFile, BritishNationalGridMatchesProjOnTheSameEllipsoid) {
  Session s;
  std::string dir = test::TempDir("prj");
  std::string prj = BngPrj(dir);
  // The layer's name is given; its .prj is found beside it.
  LoadPrjFile(s, dir + "/roads.shp");
  EXPECT_EQ(s.DatumTbl.size(), 24u) << "no roads.prj: nothing added";
  LoadPrjFile(s, dir + "/bng.shp");
  ASSERT_EQ(s.DatumTbl.size(), 25u);
  EXPECT_EQ(s.LastDir, dir + "/");
  const DatumRec& r = s.DatumTbl[24];
  EXPECT_EQ(r.CrdName, "British_National_Grid");
  EXPECT_EQ(r.SphName, "Airy_1830");
  EXPECT_EQ(r.SMA, 6377563.396);
  EXPECT_EQ(r.Flattining, 299.3249646);
  EXPECT_NEAR(r.SMB, 6356256.909, 1e-3);
  EXPECT_EQ(r.FEast, 400000.0);
  EXPECT_EQ(r.FNorth, -100000.0);
  EXPECT_EQ(r.FNorthS, -100000.0);
  EXPECT_EQ(r.CM, -2.0);
  EXPECT_EQ(r.SF, 0.9996012717);
  EXPECT_EQ(r.LatOrg, 49.0);
  EXPECT_FALSE(s.PrjStage.PrjLoading);

  // Same grid as PROJ's Transverse Mercator on Airy, with no datum shift on either side.
  std::vector<Pt> geo;
  for (double lat = 49.9; lat <= 60.9; lat += 0.5)
    for (double lon = -8.0; lon <= 1.8; lon += 0.7) geo.push_back({lon, lat});
  std::vector<Pt> grid = test::Cs2cs(
      "+proj=longlat +ellps=airy",
      "+proj=tmerc +lat_0=49 +lon_0=-2 +k=0.9996012717 +x_0=400000 +y_0=-100000 +ellps=airy", geo);
  ASSERT_EQ(grid.size(), geo.size());
  double worst = 0;
  for (size_t i = 0; i < geo.size(); ++i) {
    XY g = LatLonToUTM(s, geo[i].B, geo[i].A, 30, false, 24);
    worst = std::max(worst, std::max(std::abs(g.X - grid[i].A), std::abs(g.Y - grid[i].B)));
    XY ll = UTMToLatLon(s, grid[i].A, grid[i].B, 30, false, 24);
    EXPECT_NEAR(ll.X, geo[i].A, 1e-8);
    EXPECT_NEAR(ll.Y, geo[i].B, 1e-8);
  }
  std::printf("British National Grid: worst difference to PROJ %.3g m\n", worst);
  EXPECT_LT(worst, 1e-3);
}

TEST(PrjFile, KeywordsInSmallLettersCount) {
  Session s;
  std::string dir = test::TempDir("prj");
  test::WriteFile(dir + "/a.prj",
                  "projcs[\"Lower\",geogcs[\"g\",datum[\"d\",spheroid[\"sph\",6378137,298.257]]],"
                  "projection[\"transverse_mercator\"],parameter[\"false_easting\",500000],"
                  "parameter[\"central_meridian\",15],parameter[\"scale_factor\",0.9999],"
                  "parameter[\"latitude_of_origin\",0]]");
  LoadPrjFile(s, dir + "/a.txt");
  ASSERT_EQ(s.DatumTbl.size(), 25u);
  EXPECT_EQ(s.DatumTbl[24].CrdName, "Lower");
  EXPECT_EQ(s.DatumTbl[24].SphName, "sph");
  EXPECT_EQ(s.DatumTbl[24].CM, 15.0);
  EXPECT_EQ(s.DatumTbl[24].SF, 0.9999);
}

TEST(PrjFile, OtherProjectionsAndTextsWithoutKeywordsAddNothing) {
  Session s;
  std::string dir = test::TempDir("prj");
  int status = -1;
  test::WriteFile(dir + "/geo.prj", test::RunCmd("gdalsrsinfo -o wkt_esri EPSG:4326", &status));
  LoadPrjFile(s, dir + "/geo.shp");
  EXPECT_FALSE(s.PrjStage.PrjIsTM);
  EXPECT_EQ(s.DatumTbl.size(), 24u);

  test::WriteFile(dir + "/lcc.prj", test::RunCmd("gdalsrsinfo -o wkt_esri EPSG:2154", &status));
  LoadPrjFile(s, dir + "/lcc.shp");
  EXPECT_EQ(s.DatumTbl.size(), 24u);

  test::WriteFile(dir + "/junk.prj", "nothing here at all\n\x01\x02\"\"[[]],,,");
  LoadPrjFile(s, dir + "/junk.shp");
  EXPECT_EQ(s.DatumTbl.size(), 24u);
  test::WriteFile(dir + "/empty.prj", "");
  LoadPrjFile(s, dir + "/empty.shp");
  EXPECT_EQ(s.DatumTbl.size(), 24u);
}

TEST(PrjFile, StageKeepsValuesOfAnEarlierFile) {
  Session s;
  std::string dir = test::TempDir("prj");
  BngPrj(dir);
  LoadPrjFile(s, dir + "/bng.prj");
  ASSERT_EQ(s.DatumTbl.size(), 25u);
  // A second file that names only the projection and a false easting.
  test::WriteFile(dir + "/thin.prj",
                  "PROJECTION[\"Transverse_Mercator\"],PARAMETER[\"False_Easting\",123.5]");
  LoadPrjFile(s, dir + "/thin.prj");
  ASSERT_EQ(s.DatumTbl.size(), 26u);
  const DatumRec& r = s.DatumTbl[25];
  EXPECT_EQ(r.FEast, 123.5);
  EXPECT_EQ(r.CrdName, "British_National_Grid"); // from the earlier file
  EXPECT_EQ(r.SMA, 6377563.396);
  EXPECT_EQ(r.CM, -2.0);
  EXPECT_EQ(r.LatOrg, 49.0);
  EXPECT_EQ(r.TransDX, 0.0);
}

TEST(PrjFile, SpheroidWithoutFlatteningHasNoMinorAxis) {
  Session s;
  s.PrjStage.PrjText =
      "PROJCS[\"P\",SPHEROID[\"x\",6378137,0]],PROJECTION[\"Transverse_Mercator\"]";
  ParsePrj(s);
  EXPECT_EQ(s.PrjStage.SMA, 6378137.0);
  EXPECT_EQ(s.PrjStage.SMB, 0.0);
  EXPECT_TRUE(s.PrjStage.PrjIsTM);
  // Cut-off values leave the stage as it was.
  s.PrjStage.PrjText = "PROJCS[\"\",SPHEROID[\"y\";12] PARAMETER[\"FALSE_EASTING\";7]";
  ParsePrj(s);
  EXPECT_EQ(s.PrjStage.CrdName, "P");
  EXPECT_EQ(s.PrjStage.SphName, "y");
  EXPECT_EQ(s.PrjStage.SMA, 6378137.0);
  EXPECT_FALSE(s.PrjStage.PrjIsTM);
  EXPECT_EQ(s.PrjStage.FEast, 0.0);
  // Unit words after a value are cut off by the leading-number read.
  s.PrjStage.PrjText = "PARAMETER[\"Central_Meridian\", 9.5 deg]";
  ParsePrj(s);
  EXPECT_EQ(s.PrjStage.CM, 9.5);
}

} // namespace
} // namespace velmora

namespace velmora {
namespace {

// Scrambled texts built from the scan's own keywords and delimiters: the scan never reads
// outside the text, and without "TRANSVERSE_MERCATOR" nothing is added.
TEST(PrjFile, ScrambledTextsAreHarmless) {
  const char* pieces[] = {"PROJCS[",
                          "SPHEROID",
                          "TRANSVERSE_MERCATOR",
                          "FALSE_EASTING",
                          "FALSE_NORTHING",
                          "CENTRAL_MERIDIAN",
                          "SCALE_FACTOR",
                          "LATITUDE_OF_ORIGIN",
                          "\"",
                          ",",
                          "]",
                          "[",
                          "1e308",
                          "-",
                          "x",
                          " ",
                          "nan",
                          "0"};
  std::mt19937 rng(11);
  std::string dir = test::TempDir("prjfuzz");
  for (int round = 0; round < 3000; ++round) {
    Session s;
    std::string text;
    int n = int(rng() % 24);
    for (int i = 0; i < n; ++i) text += pieces[rng() % std::size(pieces)];
    bool tm = UCase(text).find("TRANSVERSE_MERCATOR") != std::string::npos;
    if (round % 10 == 0) {
      test::WriteFile(dir + "/f.prj", text);
      LoadPrjFile(s, dir + "/f.prj");
    } else {
      s.PrjStage.PrjText = text;
      ParsePrj(s);
      if (s.PrjStage.PrjIsTM) AddDatum(s, DatumDefOf(s.PrjStage), DatumTrans{});
    }
    EXPECT_EQ(s.DatumTbl.size(), tm ? 25u : 24u) << text;
    if (tm) LatLonToUTM(s, 10, 10, 32, false, 24); // whatever the values, no fault
  }
}

} // namespace
} // namespace velmora
