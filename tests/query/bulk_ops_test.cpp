#include "query/bulk_ops.h"

#include <unistd.h>

#include "model/file_util.h"

#include "query/selection.h"
#include "query/shape_convert.h"
#include "query_fixture.h"
#include "session/remove_deleted.h"
#include "session/undo.h"
#include "store/shp_access.h"

namespace velmora::test {
namespace {

struct BulkTest : QueryFixture {
  int gons = 0, lines = 0;
  void SetUp() override {
    QueryFixture::SetUp();
    gons =
        MakeOpen("gons", "WKT,name,area",
                 {"\"POLYGON ((0 0,0 1,1 1,1 0,0 0))\",one,1.5",
                  "\"POLYGON ((2 0,2 1,3 1,3 0,2 0))\",two,2.5",
                  "\"MULTIPOLYGON (((4 0,4 1,5 1,5 0,4 0)),((6 0,6 1,7 1,7 0,6 0)))\",three,3.5"});
    lines = MakeOpen("lines", "WKT,name,len",
                     {"\"LINESTRING (0 5,1 5)\",first,1", "\"LINESTRING (0 6,1 6,1 7)\",second,2"});
  }
  int Recs(int lyr) const { return s.Lyr[lyr].Shp.RecCount; }
  const ShpRecord& Rec(int lyr, int rec) const { return s.Lyr[lyr].Shp.ShpRecs[size_t(rec)]; }
  int Live(int lyr) {
    int n = 0;
    for (int r = 1; r <= Recs(lyr); ++r) n += !IsDeleted(s, lyr, r);
    return n;
  }
  std::vector<XY> Points(int lyr, int rec, int part) {
    const ShpPart& p = Rec(lyr, rec).Part(part);
    auto pts = p.PartPoints();
    return std::vector<XY>(pts.begin(), pts.begin() + long(shpio::LiveCount(p)));
  }
};

TEST_F(BulkTest, CopyIntoALineLayerGivesTheRingsAsPartsAndTheFieldsByName) {
  SelectRec(s, gons, 1);
  SelectRec(s, gons, 3);
  EXPECT_EQ(CopySelected(s, gons, lines), 2);
  ASSERT_EQ(Recs(lines), 4);
  EXPECT_EQ(Rec(lines, 3).ShapeType, 3);
  EXPECT_EQ(Rec(lines, 3).NumParts, 1);
  EXPECT_EQ(Points(lines, 3, 0).size(), 5u);
  EXPECT_EQ(Rec(lines, 4).NumParts, 2);
  EXPECT_EQ(Cell(lines, 3, "name"), "one");
  EXPECT_EQ(Cell(lines, 4, "name"), "three");
  EXPECT_EQ(Cell(lines, 4, "len"), ""); // no field of that name in the source
  EXPECT_EQ(Live(gons), 3);
  EXPECT_TRUE(Logged("Copy Selected Features gons.shp"));
  EXPECT_DOUBLE_EQ(RightExtend(s.Lyr[lines]), 7);
  // The journal takes the copies back and brings them again.
  UndoRun(s);
  EXPECT_TRUE(IsDeleted(s, lines, 3));
  EXPECT_TRUE(IsDeleted(s, lines, 4));
  EXPECT_DOUBLE_EQ(RightExtend(s.Lyr[lines]), 1);
  RedoRun(s);
  EXPECT_FALSE(IsDeleted(s, lines, 3));
  EXPECT_FALSE(IsDeleted(s, lines, 4));
}

TEST_F(BulkTest, CutDeletesTheSourcesAndUndoBringsThemBack) {
  SelectRec(s, lines, 2);
  EXPECT_EQ(CutSelected(s, lines, gons), 1);
  EXPECT_TRUE(IsDeleted(s, lines, 2));
  ASSERT_EQ(Recs(gons), 4);
  // A line of three vertices becomes a closed ring.
  const std::vector<XY> ring = Points(gons, 4, 0);
  ASSERT_EQ(ring.size(), 4u);
  EXPECT_DOUBLE_EQ(ring.back().X, ring.front().X);
  EXPECT_EQ(Cell(gons, 4, "name"), "second");
  UndoRun(s);
  EXPECT_FALSE(IsDeleted(s, lines, 2));
  EXPECT_TRUE(IsDeleted(s, gons, 4));
  RedoRun(s);
  EXPECT_TRUE(IsDeleted(s, lines, 2));
  EXPECT_FALSE(IsDeleted(s, gons, 4));
}

TEST_F(BulkTest, TypesThatCannotHoldEachOtherAreRefusedAndNothingChanges) {
  const int pts = MakeOpen("pts", "WKT,name", {"\"POINT (1 1)\",p"});
  SelectRec(s, pts, 1);
  const int undoBefore = s.UndoCount;
  EXPECT_EQ(CopySelected(s, pts, gons), -1);
  EXPECT_EQ(Recs(gons), 3);
  EXPECT_EQ(s.UndoCount, undoBefore);
  EXPECT_TRUE(Logged(" *** Copy Selected Features to gons.shp has been canceled *** "));
  EXPECT_EQ(CombineSelected(s, pts, pts), -1); // one point can't have parts
  EXPECT_EQ(Recs(pts), 1);
}

TEST_F(BulkTest, BusyDestinationRefusesAndLeavesTheSourceFree) {
  SelectRec(s, gons, 1);
  s.Lyr[lines].LyrBusy = -1;
  s.Lyr[lines].BusyFunc = "Save Layer";
  EXPECT_EQ(CopySelected(s, gons, lines), -1);
  EXPECT_TRUE(Logged(" *** Past Features lines.shp has been canceled *** "));
  EXPECT_EQ(Recs(lines), 2);
  EXPECT_EQ(s.Lyr[gons].LyrBusy, 0);
  s.Lyr[lines].LyrBusy = 0;
  EXPECT_EQ(CopySelected(s, gons, lines), 1);
  EXPECT_EQ(s.Lyr[lines].LyrBusy, 0);
}

TEST_F(BulkTest, CombineMakesOneFeatureOfAllPartsWithTheFirstAttributes) {
  SelectRec(s, gons, 2);
  SelectRec(s, gons, 3);
  EXPECT_EQ(CombineSelected(s, gons, gons), 1);
  ASSERT_EQ(Recs(gons), 4);
  EXPECT_EQ(Rec(gons, 4).NumParts, 3);
  EXPECT_EQ(Cell(gons, 4, "name"), "two");
  EXPECT_EQ(Cell(gons, 4, "area"), "2.5");
  UndoRun(s);
  EXPECT_TRUE(IsDeleted(s, gons, 4));
  // Lines can't be combined into a polygon layer.
  SelectRec(s, lines, 1);
  EXPECT_EQ(CombineSelected(s, lines, gons), -1);
}

TEST_F(BulkTest, PointsCombineIntoAMultipoint) {
  const int pts = MakeOpen("pts", "WKT,name", {"\"POINT (1 1)\",a", "\"POINT (2 2)\",b"});
  const int multi = MakeOpen("multi", "WKT,name", {"\"MULTIPOINT ((9 9),(8 8))\",m"});
  SelectRange(s, pts, 1, 2, true);
  EXPECT_EQ(CombineSelected(s, pts, multi), 1);
  ASSERT_EQ(Recs(multi), 2);
  EXPECT_EQ(Rec(multi, 2).NumParts, 1);
  EXPECT_EQ(Rec(multi, 2).NumPoints, 2);
  EXPECT_EQ(Cell(multi, 2, "name"), "a");
}

TEST_F(BulkTest, SeparateGivesEachPartAFeatureAndCombinePartsJoinsThem) {
  SelectRec(s, gons, 3);
  EXPECT_EQ(SeparateSelected(s, gons, gons), 2);
  ASSERT_EQ(Recs(gons), 5);
  EXPECT_EQ(Rec(gons, 4).NumParts, 1);
  EXPECT_EQ(Cell(gons, 5, "name"), "three");
  EXPECT_EQ(CombinePartsSelected(s, gons, lines), 1);
  ASSERT_EQ(Recs(lines), 3);
  EXPECT_EQ(Rec(lines, 3).NumParts, 1);
  EXPECT_EQ(Rec(lines, 3).NumPoints, 10);
}

TEST_F(BulkTest, DeleteSelectedAndTheRangesAreJournalled) {
  SelectRec(s, gons, 1);
  SelectRec(s, gons, 2);
  EXPECT_EQ(DeleteSelected(s, gons), 2);
  EXPECT_EQ(Live(gons), 1);
  EXPECT_EQ(SelectedCount(s, gons), 0);
  UndoRun(s);
  EXPECT_EQ(Live(gons), 3);
  EXPECT_EQ(DeleteRange(s, gons, 3, 2), 2);
  EXPECT_EQ(Live(gons), 1);
  EXPECT_EQ(UndeleteRange(s, gons, 1, 3), 2); // record 1 was not deleted
  EXPECT_EQ(Live(gons), 3);
  UndoRun(s); // takes back only the two it brought
  EXPECT_EQ(Live(gons), 1);
  EXPECT_FALSE(IsDeleted(s, gons, 1));
}

TEST_F(BulkTest, CloseSelectedEdgesClosesOpenParts) {
  SelectRec(s, lines, 2);
  EXPECT_EQ(CloseSelectedEdges(s, lines), 1);
  const std::vector<XY> p = Points(lines, 2, 0);
  ASSERT_EQ(p.size(), 4u);
  EXPECT_DOUBLE_EQ(p.back().Y, 6);
  EXPECT_EQ(CloseSelectedEdges(s, gons), 0); // nothing selected there
}

TEST_F(BulkTest, RemoveDeletedRewritesTheFilesAndKeepsTheSelectionOnItsFeatures) {
  SelectRec(s, gons, 3);
  DeleteRec(s, gons, 1, true);
  ASSERT_TRUE(RemoveDeleted(s, gons));
  EXPECT_TRUE(Logged("Remove Deleted Features in Layer gons.shp"));
  ASSERT_EQ(Recs(gons), 2);
  EXPECT_EQ(Cell(gons, 2, "name"), "three");
  EXPECT_TRUE(IsSelected(s, gons, 2));
  EXPECT_FALSE(IsSelected(s, gons, 1));
  // GDAL reads the files as two features with their rows, through the new index.
  const std::string out = RunCmd("ogrinfo -q -al '" + s.Lyr[gons].Fsource + "' 2>&1");
  EXPECT_NE(out.find("name (String) = two"), std::string::npos) << out;
  EXPECT_EQ(out.find("name (String) = one"), std::string::npos) << out;
  EXPECT_TRUE(FileExists(ChangeExt(s.Lyr[gons].Fsource, "shx")));
}

TEST_F(BulkTest, RemoveDeletedOnAReadOnlyFolderLeavesEverything) {
  const std::string ro = TempDir("query-ro");
  RunCmd("cp '" + dir + "lines.shp' '" + ro + "ro.shp'; cp '" + dir + "lines.shx' '" + ro +
         "ro.shx'; cp '" + dir + "lines.dbf' '" + ro + "ro.dbf'");
  const int n = Open(ro + "ro.shp");
  ASSERT_GT(n, 0);
  DeleteRec(s, n, 1, true);
  RunCmd("chmod 555 '" + ro + "'");
  const bool ok = RemoveDeleted(s, n);
  RunCmd("chmod 755 '" + ro + "'");
  if (geteuid() == 0) GTEST_SKIP() << "root writes anywhere";
  EXPECT_FALSE(ok);
  EXPECT_TRUE(Logged(" *** Remove Deleted Features in Layer ro.shp has been canceled *** "));
  EXPECT_EQ(Recs(n), 2);
}

TEST(ShapeConvert, KeepsWhatTheDestinationCanHold) {
  PlainPart line{{{0, 0}, {1, 0}, {1, 1}}, {0, 0, 0}, {0, 0, 0}};
  auto mp = ConvertParts({line}, 3, 8);
  ASSERT_EQ(mp.size(), 1u);
  EXPECT_EQ(mp[0].P.size(), 3u);
  auto pt = ConvertParts({line}, 3, 1);
  ASSERT_EQ(pt.size(), 1u);
  EXPECT_EQ(pt[0].P.size(), 1u);
  auto ring = ConvertParts({line}, 13, 5);
  ASSERT_EQ(ring.size(), 1u);
  EXPECT_EQ(ring[0].P.size(), 4u);
  PlainPart closed = ring[0];
  EXPECT_EQ(ConvertParts({closed}, 5, 8)[0].P.size(), 3u); // the closing vertex is left out
  PlainPart two{{{0, 0}, {1, 0}}, {0, 0}, {0, 0}};
  EXPECT_TRUE(ConvertParts({two}, 3, 5).empty()); // no ring from two vertices
  EXPECT_FALSE(CanConvertType(1, 3));
  EXPECT_FALSE(CanConvertType(11, 25));
  EXPECT_TRUE(CanConvertType(21, 8));
  EXPECT_FALSE(CanConvertType(3, 99));
}

} // namespace
} // namespace velmora::test
