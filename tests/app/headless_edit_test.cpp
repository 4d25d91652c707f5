// Movement, divide and combine lines run by `velmora --headless` from a command file on
// layers made by GDAL, saved, and read back by GDAL.
#include <gtest/gtest.h>

#include "app_support.h"

using namespace velmora::test;

namespace {

std::string Layer(const std::string& dir, const std::string& name, const std::string& type,
                  const std::string& rows) {
  WriteFile(dir + name + ".csv", "id,WKT\n" + rows);
  int st = 0;
  RunCmd("ogr2ogr -q -f 'ESRI Shapefile' -nlt " + type + " " + Quote(dir + name + ".shp") + " " +
             Quote(dir + name + ".csv") + " -oo KEEP_GEOM_COLUMNS=NO 2>&1",
         &st);
  EXPECT_EQ(st, 0);
  return dir + name + ".shp";
}

std::string Info(const std::string& shp) {
  return RunCmd("ogrinfo -ro -al -q " + Quote(shp) + " 2>&1");
}

} // namespace

TEST(HeadlessEdit, LinesMovedCombinedDividedTurnedAndScaled) {
  std::string dir = TempDir("headless edit");
  std::string shp = Layer(dir, "lines", "LINESTRING",
                          "1,\"LINESTRING (0 0,10 0,20 0)\"\n2,\"LINESTRING (20 0,20 10)\"\n");
  const std::string q = "'" + shp + "'";
  WriteFile(dir + "run.lst", "OPEN LAYER " + q + "\n" +                         //
                                 "MoveLen Vertex " + q + " 2 0 0 0 5 5 0 0\n" + // by (5, 5)
                                 "Combine Feature " + q + " 1 0 2 0 1 2 0 0 0\n" +
                                 "Divide Feature " + q + " 1 0 2 0 3\n" + "Rotate Vertex " + q +
                                 " 3 0 0 20 0 90 0 0\n" + "Scale Vertex " + q +
                                 " 1 0 0 0 0 2 1 0 0\n" + "SAVE LAYER " + q + "\n");
  int st = -1;
  Velmora("--headless " + Quote(dir + "run.lst"), &st);
  EXPECT_EQ(st, 0);
  std::string info = Info(shp);
  EXPECT_NE(info.find("LINESTRING (0 0,20 0,40 0)"), std::string::npos) << info;
  // A quarter turn by the program's pi: right to the last digits of the text.
  EXPECT_NE(info.find("LINESTRING (20 0,15.0 5.0"), std::string::npos) << info;
  EXPECT_EQ(info.find("20 10"), std::string::npos) << "feature 2 went into feature 1";
  // The new feature's row is a copy of its source's.
  EXPECT_NE(info.find("OGRFeature(lines):2\n  id (String) = 1"), std::string::npos) << info;
}

TEST(HeadlessEdit, PolygonsCombinedAlongTheirEdgeAndMovedByTheirPart) {
  std::string dir = TempDir("headless edit");
  std::string shp = Layer(dir, "parcels", "POLYGON",
                          "1,\"POLYGON ((0 0,0 10,10 10,10 0,0 0))\"\n"
                          "2,\"POLYGON ((10 0,10 10,20 10,20 0,10 0))\"\n");
  const std::string q = "'" + shp + "'";
  WriteFile(dir + "run.lst", "OPEN LAYER " + q + "\n" +                            //
                                 "Combine Feature " + q + " 1 0 2 3 1 2 0 0 1\n" + //
                                 "MoveTo Vertex " + q + " 1 0 3 10 12 2 1\n" +     // Ctrl, the part
                                 "SAVE LAYER " + q + "\n");
  int st = -1;
  Velmora("--headless " + Quote(dir + "run.lst"), &st);
  EXPECT_EQ(st, 0);
  std::string info = Info(shp);
  EXPECT_NE(info.find("POLYGON ((10 2,0 2,0 12,10 12,20 12,20 2,10 2))"), std::string::npos)
      << info;
}
