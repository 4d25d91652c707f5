// The table's commands from a command file, end to end.
#include <gtest/gtest.h>

#include "app_support.h"

using namespace velmora::test;

TEST(HeadlessTable, FillSortRenameAndSaveFromAList) {
  const std::string dir = TempDir("app table");
  const std::string shp = dir + "pts.shp";
  WriteFile(dir + "make.py",
            "from osgeo import ogr\n"
            "ds = ogr.GetDriverByName('ESRI Shapefile').CreateDataSource('" +
                shp +
                "')\n"
                "l = ds.CreateLayer('pts', geom_type=ogr.wkbPoint)\n"
                "f = ogr.FieldDefn('NAME', ogr.OFTString); f.SetWidth(8); l.CreateField(f)\n"
                "f = ogr.FieldDefn('VAL', ogr.OFTReal); f.SetWidth(8); f.SetPrecision(1)\n"
                "l.CreateField(f)\n"
                "for i in range(4):\n"
                "  ft = ogr.Feature(l.GetLayerDefn()); ft.SetField('NAME', 'n%d' % i)\n"
                "  ft.SetGeometry(ogr.CreateGeometryFromWkt('POINT (%d 0)' % i))\n"
                "  l.CreateFeature(ft)\n"
                "ds = None\n");
  int status = -1;
  RunCmd("/usr/bin/python3 " + Quote(dir + "make.py"), &status);
  ASSERT_EQ(status, 0);
  const std::string q = Quote(shp);
  WriteFile(dir + "t.lst", "FILL SERIES " + q + " VAL 1 4 2.5 1\n" + "SORT ROWS " + q +
                               " VAL DESCENDING\n" + "RENAME FIELD " + q + " NAME TITLE\n" +
                               "ADD RECORDS " + q + " 1\n" + "SAVE LAYER " + q + "\n");
  const std::string out = Velmora("--headless " + Quote(dir + "t.lst"), &status);
  EXPECT_EQ(status, 0);
  for (const char* m :
       {"Fill Series pts.shp", "Sort Rows pts.shp", "Rename Field pts.shp", "Add Records pts.shp"})
    EXPECT_NE(out.find(m), std::string::npos) << m << "\n" << out;
  const std::string info = RunCmd("ogrinfo -ro -al " + Quote(shp) + " 2>&1", &status);
  EXPECT_NE(info.find("Feature Count: 5"), std::string::npos) << info;
  // The first feature is now the one of the highest value: n3 at (3, 0).
  const size_t f0 = info.find("OGRFeature(pts):0");
  ASSERT_NE(f0, std::string::npos) << info;
  const std::string first = info.substr(f0, 140);
  EXPECT_NE(first.find("TITLE (String) = n3"), std::string::npos) << first;
  EXPECT_NE(first.find("VAL (Real) = 5.5"), std::string::npos) << first;
  EXPECT_NE(first.find("POINT (3 0)"), std::string::npos) << first;
}
