// Find by location through the program's command line: layers made by GDAL, a field
// transferred by location and saved by `velmora --headless`, read again by GDAL.
#include <gtest/gtest.h>

#include "app_support.h"

using namespace velmora::test;

namespace {

std::string Make(const std::string& dir, const std::string& name, const std::string& rows) {
  WriteFile(dir + name + ".csv", "id,county,WKT\n" + rows);
  int st = 0;
  RunCmd("ogr2ogr -q -f 'ESRI Shapefile' " + Quote(dir + name + ".shp") + " " +
             Quote(dir + name + ".csv") + " -oo KEEP_GEOM_COLUMNS=NO 2>&1",
         &st);
  EXPECT_EQ(st, 0);
  return dir + name + ".shp";
}

} // namespace

TEST(HeadlessLocation, TownsTakeTheNameOfTheirCounty) {
  std::string dir = TempDir("findloc");
  std::string counties = Make(dir, "counties",
                              "1,Alba,\"POLYGON ((0 0,0 10,10 10,10 0,0 0))\"\n"
                              "2,Borin,\"POLYGON ((10 0,10 10,20 10,20 0,10 0))\"\n");
  std::string towns = Make(dir, "towns",
                           "1,,\"POINT (3 4)\"\n"
                           "2,,\"POINT (15 5)\"\n"
                           "3,,\"POINT (30 30)\"\n");
  WriteFile(dir + "run.lst", "FIND LOCATION " + towns + " 1 1 3 " + counties +
                                 " 0 0.01 county\nSAVE LAYER " + towns + "\n");
  int st = -1;
  std::string out = Velmora("--headless " + Quote(dir + "run.lst"), &st);
  EXPECT_EQ(st, 0);
  EXPECT_NE(out.find("2 Features have been Selected Successfully in Layer towns.shp"),
            std::string::npos)
      << out;
  std::string info = RunCmd("ogrinfo -ro -al -q " + Quote(towns) + " 2>&1");
  EXPECT_NE(info.find("county (String) = Alba"), std::string::npos) << info;
  EXPECT_NE(info.find("county (String) = Borin"), std::string::npos) << info;
}
