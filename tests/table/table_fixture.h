#pragma once
// A point layer made by GDAL and opened through the session, with the cell access the
// table tests share.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "frame/lyr_slots.h"
#include "model/file_util.h"
#include "session/commands.h"
#include "session/layer_life.h"
#include "session/map_init.h"
#include "store/dbf_store.h"
#include "test_support.h"

namespace velmora::test {

// A host with a clipboard.
struct ClipHost : RecordingHost {
  std::string clip;
  std::vector<int> refreshed, fieldsChanged;
  std::string ClipboardText() override { return clip; }
  void SetClipboardText(const std::string& t) override { clip = t; }
  void TableDataChanged(int lyr) override { refreshed.push_back(lyr); }
  void TableFieldsChanged(int lyr) override { fieldsChanged.push_back(lyr); }
};

// NAME C 10, VAL N 10.2, DAY D, OK L; point i at (i, i), NAME "n<i>", VAL = 10 - i.
inline std::string MakeGdalLayer(const std::string& dir, int n) {
  const std::string path = dir + "pts.shp";
  const std::string py =
      "from osgeo import ogr\n"
      "ds = ogr.GetDriverByName('ESRI Shapefile').CreateDataSource('" +
      path +
      "')\n"
      "l = ds.CreateLayer('pts', geom_type=ogr.wkbPoint)\n"
      "f = ogr.FieldDefn('NAME', ogr.OFTString); f.SetWidth(10); l.CreateField(f)\n"
      "f = ogr.FieldDefn('VAL', ogr.OFTReal); f.SetWidth(10); f.SetPrecision(2); l.CreateField(f)\n"
      "l.CreateField(ogr.FieldDefn('DAY', ogr.OFTDate))\n"
      "f = ogr.FieldDefn('OK', ogr.OFTInteger); f.SetSubType(ogr.OFSTBoolean); l.CreateField(f)\n"
      "for i in range(" +
      std::to_string(n) +
      "):\n"
      "  ft = ogr.Feature(l.GetLayerDefn()); ft.SetField('NAME', 'n%d' % i)\n"
      "  ft.SetField('VAL', 10 - i); ft.SetField('DAY', '2024/01/%02d' % (i % 28 + 1))\n"
      "  ft.SetField('OK', i % 2)\n"
      "  ft.SetGeometry(ogr.CreateGeometryFromWkt('POINT (%d %d)' % (i, i)))\n"
      "  l.CreateFeature(ft)\n"
      "ds = None\n";
  WriteFile(dir + "make.py", py);
  int status = -1;
  RunCmd("/usr/bin/python3 " + dir + "make.py 2>&1", &status);
  EXPECT_EQ(status, 0);
  return path;
}

struct TableFixture : ::testing::Test {
  ClipHost host;
  Session s{host};
  std::string dir, path;
  int lyr = 0;

  void Open(int n, const char* name = "table") {
    MapInit(s);
    dir = TempDir(name);
    path = MakeGdalLayer(dir, n);
    AddShape(s, path, false);
    lyr = FindLyrByFile(s, path);
    ASSERT_GE(lyr, 1);
    s.Lyr[lyr].EEditable = 1;
  }
  void TearDown() override { CloseAllLyrs(s); }
  std::string Cell(int rec, const std::string& field) {
    ReadDbfRec(s, lyr, rec - 1);
    return Trim(GetFieldValue(s, lyr, FindField(s, lyr, field)));
  }
  double Num(int rec, const std::string& field = "VAL") { return StrToDbl(s, Cell(rec, field)); }
  void Exec(const std::string& line) {
    ArgStrSplit(s, line);
    ArgStrExecute(s);
  }
  std::string Last() { return host.logged.empty() ? "" : host.logged.back(); }
};

} // namespace velmora::test
