// Find by data and a copy of the found features run by `velmora --headless` from a command
// file on layers made by GDAL, saved, and read back by GDAL.
#include <gtest/gtest.h>

#include "app_support.h"

using namespace velmora::test;

TEST(HeadlessSelect, FoundFeaturesCopiedIntoAnotherLayer) {
  std::string dir = TempDir("headless select");
  WriteFile(dir + "a.csv", "WKT,name,pop\n\"POINT (1 1)\",Alpha,10\n\"POINT (2 2)\",Beta,200\n"
                           "\"POINT (3 3)\",Gamma,3000\n");
  WriteFile(dir + "b.csv", "WKT,name\n\"MULTIPOINT ((9 9))\",seed\n");
  int st = 0;
  for (const char* n : {"a", "b"})
    RunCmd("ogr2ogr -q -f 'ESRI Shapefile' -oo AUTODETECT_TYPE=YES -oo KEEP_GEOM_COLUMNS=NO " +
               Quote(dir + n + ".shp") + " " + Quote(dir + n + ".csv") + " 2>&1",
           &st);
  ASSERT_EQ(st, 0);
  const std::string a = "'" + dir + "a.shp'", b = "'" + dir + "b.shp'";
  WriteFile(dir + "run.lst", "FIND QUERY " + a + " 1 1 pop 3 100\n" + //
                                 "COPY SELECTED " + a + " " + b + "\n" + "SAVE LAYER " + b + "\n");
  const std::string out = Velmora("--headless " + Quote(dir + "run.lst"), &st);
  EXPECT_EQ(st, 0);
  const std::string info = RunCmd("ogrinfo -ro -al -q " + Quote(dir + "b.shp") + " 2>&1");
  EXPECT_NE(info.find("name (String) = Beta"), std::string::npos) << info;
  EXPECT_NE(info.find("name (String) = Gamma"), std::string::npos) << info;
  EXPECT_EQ(info.find("Alpha"), std::string::npos) << info;
  EXPECT_NE(info.find("MULTIPOINT ((3 3))"), std::string::npos) << info;
}
