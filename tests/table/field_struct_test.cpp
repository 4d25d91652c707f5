#include <gtest/gtest.h>

#include "child_run.h"
#include "frame/busy.h"
#include "frame/lyr_slots.h"
#include "model/file_util.h"
#include "session/commands.h"
#include "store/dbf_store.h"
#include "table/field_struct.h"
#include "test_support.h"

using namespace velmora;

namespace {

// A point layer with NAME C 20 and VAL N 10.2, written by GDAL.
std::string MakeLayer(const std::string& dir) {
  std::string path = dir + "pts.shp";
  std::string py = "from osgeo import ogr\n"
                   "ds = ogr.GetDriverByName('ESRI Shapefile').CreateDataSource('" +
                   path +
                   "')\n"
                   "l = ds.CreateLayer('pts', geom_type=ogr.wkbPoint)\n"
                   "f = ogr.FieldDefn('NAME', ogr.OFTString); f.SetWidth(20); l.CreateField(f)\n"
                   "f = ogr.FieldDefn('VAL', ogr.OFTReal); f.SetWidth(10); f.SetPrecision(2)\n"
                   "l.CreateField(f)\n"
                   "for i, (n, v) in enumerate([('Main Street', 1.5), ('Elm', 22.25)]):\n"
                   "  ft = ogr.Feature(l.GetLayerDefn()); ft.SetField('NAME', n)\n"
                   "  ft.SetField('VAL', v)\n"
                   "  ft.SetGeometry(ogr.CreateGeometryFromWkt('POINT (%d 1)' % i))\n"
                   "  l.CreateFeature(ft)\n"
                   "ds = None\n";
  test::WriteFile(dir + "make.py", py);
  int status = -1;
  test::RunCmd("/usr/bin/python3 " + dir + "make.py 2>&1", &status);
  EXPECT_EQ(status, 0);
  return path;
}

void AddRow(Session& s, const std::string& path) {
  s.Lyr.Resize(1);
  s.LyrCount = 1;
  SetLyrDefaults(s, 1);
  s.Lyr[1].Fsource = path;
  s.Lyr[1].LyrName = "pts.shp";
  s.Lyr[1].LyrKind = 1;
}

} // namespace

TEST(FieldStruct, RefusesABusyLayerAndImpossibleFields) {
  test::RecordingHost host;
  Session s(host);
  AddRow(s, "/data/pts.shp");
  s.Lyr[1].Dbf.DbfExists = -1;
  s.Lyr[1].Dbf.DbfFieldCount = 2;
  s.Lyr[1].Dbf.DbfRecLen = 31;
  for (int width : {0, 256}) EXPECT_FALSE(AddFieldToLyr(s, 1, "X", 'C', width, 0));
  EXPECT_FALSE(AddFieldToLyr(s, 1, "X", 'N', 5, 5));
  EXPECT_FALSE(AddFieldToLyr(s, 1, "  ", 'C', 5, 0));
  s.Lyr[1].Dbf.DbfRecLen = 32700; // the record length is a 16-bit word
  EXPECT_FALSE(AddFieldToLyr(s, 1, "X", 'C', 100, 0));
  ASSERT_EQ(host.logged.size(), 5u);
  for (const std::string& m : host.logged)
    EXPECT_EQ(m, " *** Add Field pts.shp has been canceled *** ");

  s.Lyr[1].Dbf.DbfRecLen = 31;
  LyrLock(s, 1, true, "Save Layer");
  host.logged.clear();
  EXPECT_FALSE(AddFieldToLyr(s, 1, "X", 'C', 10, 0));
  ASSERT_EQ(host.logged.size(), 2u);
  EXPECT_EQ(host.logged[1], " *** Add Field pts.shp has been canceled *** ");
  EXPECT_EQ(s.Lyr[1].BusyFunc, "Save Layer");
  EXPECT_FALSE(AddFieldToLyr(s, 2, "X", 'C', 10, 0)); // no such layer
}

TEST(FieldStruct, AddFieldRebuildsTheTableKeepingRowsAndEdits) {
  test::RecordingHost host;
  Session s(host);
  std::string dir = test::TempDir("field");
  std::string path = MakeLayer(dir);
  AddRow(s, path);
  OpenDbf(s, 1, path);
  if (!s.Lyr[1].Dbf.DbfOpen) GTEST_SKIP() << "the attribute store is not built in";

  // An unsaved edit in the swap file goes into the new table as well.
  ReadDbfRec(s, 1, 1);
  SetFieldValue(s, 1, FindField(s, 1, "NAME"), "Oak");
  WriteDbfRecSwap(s, 1, 1);

  ArgStrSplit(s, "ADD FIELD '" + path + "' Owner c 12 0");
  ArgStrExecute(s);
  EXPECT_EQ(host.logged.back(), "Add Field pts.shp");
  EXPECT_EQ(s.Lyr[1].Dbf.DbfFieldCount, 3);
  EXPECT_EQ(FindField(s, 1, "OWNER"), 3);
  EXPECT_FALSE(s.Lyr[1].LyrBusy);
  EXPECT_FALSE(s.Lyr[1].Dbf.DbfChanged);

  int status = -1;
  std::string info = test::RunCmd("ogrinfo -ro -al " + path + " 2>&1", &status);
  EXPECT_NE(info.find("Owner: String (12.0)"), std::string::npos) << info;
  EXPECT_NE(info.find("NAME (String) = Main Street"), std::string::npos) << info;
  EXPECT_NE(info.find("NAME (String) = Oak"), std::string::npos) << info;
  EXPECT_NE(info.find("VAL (Real) = 22.25"), std::string::npos) << info;
  // No temporary file is left in the folder.
  std::string ls = test::RunCmd("ls " + dir);
  EXPECT_EQ(ls.find("qmt"), std::string::npos) << ls;
}

// A disk that fills up during the rewrite: the old table keeps its bytes, the unsaved edit
// stays in the session, and the log says why under the cancel line.
TEST(FieldStruct, AFullDiskLeavesTheTableAndSaysWhy) {
  test::RecordingHost host;
  Session s(host);
  std::string dir = test::TempDir("fieldfull");
  std::string path = MakeLayer(dir);
  AddRow(s, path);
  OpenDbf(s, 1, path);
  if (!s.Lyr[1].Dbf.DbfOpen) GTEST_SKIP() << "the attribute store is not built in";
  ReadDbfRec(s, 1, 1);
  SetFieldValue(s, 1, FindField(s, 1, "NAME"), "Oak");
  WriteDbfRecSwap(s, 1, 1);
  const std::string before = test::ReadFile(dir + "pts.dbf");

  const int code = test::InChild([&] {
    test::LimitFileSize(1); // nothing new can be written
    const bool refused = !AddFieldToLyr(s, 1, "OWNER", 'C', 12, 0);
    if (!refused || host.logged.size() < 2) return 1;
    const std::string& why = host.logged.back();
    if (host.logged[host.logged.size() - 2] != " *** Add Field pts.shp has been canceled *** ")
      return 2;
    if (why.find("too large") == std::string::npos) return 3;
    ReadDbfRec(s, 1, 1);
    return Trim(GetFieldValue(s, 1, FindField(s, 1, "NAME"))) == "Oak" ? 0 : 4;
  });
  EXPECT_EQ(code, 0);
  EXPECT_EQ(test::ReadFile(dir + "pts.dbf"), before);
  // No half-written table is left beside it (the swap file of the edit stays).
  for (const auto& e : std::filesystem::directory_iterator(dir)) {
    if (e.path().extension() == ".dbf") {
      EXPECT_EQ(e.path().filename(), "pts.dbf");
    }
  }
}
