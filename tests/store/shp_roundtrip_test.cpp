// Files written by GDAL open, and saved under another name they read the same in
// shapelib's shpdump; where the format leaves no choice the bytes are the same too.
#include <gtest/gtest.h>

#include "model/file_util.h"
#include "shp_test_util.h"

using namespace velmora;
using namespace velmora::test;

namespace {

struct Case {
  const char* shpt;
  std::vector<std::string> wkts;
  int type;
};

// The geometry lines of an ogrinfo listing.
std::string Geoms(const std::string& t) {
  std::string g, line;
  for (char c : t) {
    if (c != '\n') {
      line += c;
      continue;
    }
    if (line.rfind("  ", 0) == 0 && line.find("=") == std::string::npos) g += line + "\n";
    line.clear();
  }
  return g;
}

std::vector<Case> Cases() {
  return {
      {"POINT", {"POINT (1 2)", "POINT (-3.25 4.5)", "POINT (1e7 -2e-7)"}, 1},
      {"POINTZM", {"POINT ZM (1 2 3 4)", "POINT ZM (5 6 7 8)"}, 11},
      {"POINTM", {"POINT M (1 2 9)", "POINT M (3 4 10)"}, 21},
      {"ARC",
       {"LINESTRING (0 0,1 1,2 0)", "MULTILINESTRING ((0 0,1 0),(5 5,6 6,7 5))",
        "LINESTRING (10 10,11 12)"},
       3},
      {"ARCZM",
       {"LINESTRING ZM (0 0 1 10,1 1 2 11,2 0 3 12)",
        "MULTILINESTRING ZM ((0 0 0 0,1 0 1 1),(5 5 5 5,6 6 6 6))"},
       13},
      {"ARCM",
       {"LINESTRING M (0 0 1,1 1 2)", "MULTILINESTRING M ((0 0 5,1 0 6),(2 2 7,3 3 8))"},
       23},
      {"POLYGON",
       {"MULTIPOLYGON (((0 0,10 0,10 10,0 10,0 0),(2 2,2 4,4 4,4 2,2 2)),((20 20,30 20,30 30,20 "
        "20)))",
        "POLYGON ((5 5,6 5,6 6,5 5))"},
       5},
      {"POLYGONZM",
       {"POLYGON ZM ((0 0 1 2,10 0 1 2,10 10 1 2,0 0 1 2))",
        "POLYGON ZM ((0 0 5 1,1 0 6 2,1 1 7 3,0 0 5 1),(0.2 0.2 1 1,0.4 0.4 1 1,0.4 0.2 1 1,0.2 "
        "0.2 1 1))"},
       15},
      {"POLYGONM", {"POLYGON M ((0 0 1,10 0 2,10 10 3,0 0 1))"}, 25},
      {"MULTIPOINT", {"MULTIPOINT ((0 0),(1 1),(2 3))", "MULTIPOINT ((5 5))"}, 8},
      {"MULTIPOINTZM", {"MULTIPOINT ZM ((0 0 1 2),(1 1 3 4))"}, 18},
      {"MULTIPOINTM", {"MULTIPOINT M ((0 0 1),(1 1 3))"}, 28},
      {"MULTIPATCH",
       {"POLYHEDRALSURFACE Z (((0 0 0,0 1 0,1 1 0,0 0 0)),((0 0 1,1 0 1,1 1 1,0 0 1)))",
        "TIN Z (((0 0 0,1 0 0,0 1 1,0 0 0)))"},
       31},
      // Z without measures: GDAL leaves the M block out, and so does the store.
      {"ARCZ", {"LINESTRING Z (0 0 1,1 1 2)", "LINESTRING Z (4 4 4,5 5 5)"}, 13},
      {"POINTZ", {"POINT Z (1 2 3)", "POINT Z (4 5 6)"}, 11},
  };
}

} // namespace

TEST(ShpRoundTrip, EveryTypeFromGdalReadsAndWritesAsShapelibSeesIt) {
  std::string dir = TempDir("shp-rt");
  int n = 0;
  for (const Case& c : Cases()) {
    SCOPED_TRACE(std::string(c.shpt) + " #" + std::to_string(n));
    std::string name = "in" + std::to_string(n++);
    std::string src = OgrShp(dir, name, c.shpt, c.wkts);
    ASSERT_FALSE(src.empty());
    Session s;
    OpenAsLayer(s, src);
    ASSERT_EQ(s.ShpErr, 0);
    EXPECT_EQ(s.Lyr[1].Shp.ShpType, c.type);
    EXPECT_EQ(s.Lyr[1].Shp.RecCount, int(c.wkts.size()));
    EXPECT_EQ(s.Lyr[1].Shp.ShpChanged, 0);
    std::string out = dir + name + "_out.shp";
    SaveShp(s, 1, out);
    ASSERT_EQ(s.ShpErr, 0);
    std::string a = ShpDump(src), b = ShpDump(out);
    EXPECT_EQ(a.find("rror"), std::string::npos) << a;
    EXPECT_EQ(a, b);
    EXPECT_TRUE(ReadFile(src) == ReadFile(out)) << "shp bytes differ";
    EXPECT_TRUE(ReadFile(ChangeExt(src, "shx")) == ReadFile(ChangeExt(out, "shx")))
        << "shx bytes differ";
    // GDAL reads the same geometries from both.
    std::string cmd = "ogrinfo -q -al -geom=ISO_WKT '";
    EXPECT_EQ(Geoms(RunCmd(cmd + src + "'")), Geoms(RunCmd(cmd + out + "'")));
  }
}

TEST(ShpRoundTrip, NullShapesBecomeDeletedRecordsThatKeepTheirNumbers) {
  std::string dir = TempDir("shp-null");
  std::string src = OgrShp(
      dir, "n", "ARC", {"LINESTRING (0 0,1 1)", "LINESTRING EMPTY", "LINESTRING (2 2,3 3,4 2)"});
  ASSERT_FALSE(src.empty());
  Session s;
  OpenAsLayer(s, src);
  ASSERT_EQ(s.ShpErr, 0);
  ASSERT_EQ(s.Lyr[1].Shp.RecCount, 3);
  EXPECT_TRUE(IsDeleted(s, 1, 2));
  EXPECT_FALSE(IsDeleted(s, 1, 3));
  SaveShp(s, 1, dir + "n2.shp");
  ASSERT_EQ(s.ShpErr, 0);
  // shapelib sees the same three records, the second one null.
  EXPECT_EQ(ShpDump(src), ShpDump(dir + "n2.shp"));
  Session t;
  OpenAsLayer(t, dir + "n2.shp");
  ASSERT_EQ(t.ShpErr, 0);
  EXPECT_EQ(t.Lyr[1].Shp.RecCount, 3);
  EXPECT_TRUE(IsDeleted(t, 1, 2));
  EXPECT_EQ(t.Lyr[1].Shp.ShpRecs[3].Part(0).PartPoints()[2].X, 4);
}
