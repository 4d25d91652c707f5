#pragma once
// Layers made by GDAL's ogr2ogr from CSV rows (a WKT column and typed fields), opened into a
// session with a recording host, and the command language to drive them.
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "frame/lyr_slots.h"
#include "session/commands.h"
#include "session/layer_life.h"
#include "session/map_init.h"
#include "store/dbf_store.h"
#include "store/shp_store.h"
#include "test_support.h"

namespace velmora::test {

struct QueryFixture : ::testing::Test {
  RecordingHost host;
  Session s{host};
  std::string dir = TempDir("query");

  void SetUp() override {
    MapInit(s);
    s.MapView.ViewW = 1000, s.MapView.ViewH = 1000;
    s.MapView.MapTarget = 1; // the log is written
  }
  void TearDown() override { CloseAllLyrs(s); }

  // A shapefile from `rows`, each "WKT|field values ..." after the header "WKT,<fields>";
  // the field types are detected by GDAL (integers and reals become numeric fields).
  std::string Make(const std::string& name, const std::string& header,
                   const std::vector<std::string>& rows, const std::string& options = "") {
    const std::string csv = dir + name + ".csv", shp = dir + name + ".shp";
    {
      std::ofstream f(csv);
      f << header << "\n";
      for (const std::string& r : rows) f << r << "\n";
    }
    int st = 0;
    RunCmd("ogr2ogr -q -f 'ESRI Shapefile' -oo AUTODETECT_TYPE=YES -oo KEEP_GEOM_COLUMNS=NO " +
               options + " '" + shp + "' '" + csv + "' 2>&1",
           &st);
    EXPECT_EQ(st, 0) << name;
    return shp;
  }
  int Open(const std::string& shp) {
    AddShape(s, shp, false);
    const int n = FindLyrByFile(s, shp);
    EXPECT_GT(n, 0) << shp;
    return n;
  }
  int MakeOpen(const std::string& name, const std::string& header,
               const std::vector<std::string>& rows, const std::string& options = "") {
    return Open(Make(name, header, rows, options));
  }
  void Exec(const std::string& line) {
    ArgStrSplit(s, line);
    ArgStrExecute(s);
  }
  std::string Q(int lyr) const { return "'" + s.Lyr[lyr].Fsource + "'"; }
  std::string LastLog() const { return host.logged.empty() ? "" : host.logged.back(); }
  bool Logged(const std::string& text) const {
    for (const std::string& l : host.logged)
      if (l == text) return true;
    return false;
  }
  std::string Cell(int lyr, int rec, const std::string& field) {
    ReadDbfRec(s, lyr, rec - 1);
    std::string v = GetFieldValue(s, lyr, FindField(s, lyr, field));
    while (!v.empty() && v.back() == ' ') v.pop_back();
    while (!v.empty() && v.front() == ' ') v.erase(v.begin());
    return v;
  }
};

} // namespace velmora::test
