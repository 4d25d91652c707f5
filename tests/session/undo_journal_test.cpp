// The journal's bookkeeping: positions, the two items, purges and snapshots.
#include <gtest/gtest.h>

#include "cmd_test_util.h"
#include "edit/journal_lines.h"
#include "session/map_init.h"
#include "session/undo.h"
#include "test_support.h"

using namespace velmora;
using namespace velmora::test;

namespace {

struct Journal : ::testing::Test {
  RecordingHost host;
  Session s{host};
  void SetUp() override {
    MapInit(s);
    AddLayers(s, 2);
  }
  // Entry i's redo line; entries are made with lines that name no layer, so they run as
  // nothing.
  std::string Redo(int i) const { return s.UndoList.at(size_t(i)).RedoLine; }
  void Add(const std::string& tag) { UndoAdd(s, "redo " + tag, "undo " + tag); }
};

} // namespace

TEST_F(Journal, StartsEmptyWithBothItemsOff) {
  EXPECT_EQ(s.UndoPos, 1);
  EXPECT_EQ(s.UndoCount, 1);
  EXPECT_EQ(s.UndoList.size(), 2u);
  EXPECT_FALSE(UndoEnabled(s));
  EXPECT_FALSE(RedoEnabled(s));
}

TEST_F(Journal, UndoRedoUndoAndANewEditDropsTheTail) {
  Add("a"), Add("b"), Add("c");
  EXPECT_EQ(s.UndoCount, 4);
  EXPECT_EQ(s.UndoPos, 3);
  EXPECT_EQ(s.UndoList.size(), 5u) << "one element above the last entry";
  EXPECT_TRUE(UndoEnabled(s));
  EXPECT_FALSE(RedoEnabled(s));

  UndoRun(s);
  UndoRun(s);
  EXPECT_EQ(s.UndoPos, 1);
  EXPECT_TRUE(RedoEnabled(s));
  RedoRun(s);
  EXPECT_EQ(s.UndoPos, 2);
  UndoRun(s);
  UndoRun(s);
  EXPECT_EQ(s.UndoPos, 0);
  EXPECT_FALSE(UndoEnabled(s));
  UndoRun(s); // nothing left to undo
  EXPECT_EQ(s.UndoPos, 0);
  RedoRun(s); // after undo of the first entry, redo runs it again
  EXPECT_EQ(s.UndoPos, 1);
  EXPECT_TRUE(UndoEnabled(s));
  EXPECT_TRUE(RedoEnabled(s));

  Add("d"); // b and c are gone
  EXPECT_EQ(s.UndoCount, 3);
  EXPECT_EQ(s.UndoPos, 2);
  EXPECT_EQ(Redo(1), "redo a");
  EXPECT_EQ(Redo(2), "redo d");
  EXPECT_FALSE(RedoEnabled(s));
  RedoRun(s);
  EXPECT_EQ(s.UndoPos, 2);

  UndoDropLast(s); // d proved empty
  EXPECT_EQ(s.UndoCount, 2);
  EXPECT_EQ(s.UndoPos, 1);
  EXPECT_EQ(s.UndoList.size(), 3u);

  UndoClear(s);
  EXPECT_EQ(s.UndoPos, 1);
  EXPECT_EQ(s.UndoCount, 1);
  EXPECT_FALSE(UndoEnabled(s));
}

TEST_F(Journal, PurgeOfALayerKeepsThePositionOnTheSameEntry) {
  const std::string a = s.Lyr[1].Fsource, b = s.Lyr[2].Fsource;
  auto del = [&](const std::string& p, int f) {
    JournalLines l = DeleteFeatureLines(p, f);
    UndoAdd(s, l.Redo, l.Undo);
  };
  del(a, 1), del(b, 1), del(a, 2), del(b, 2), del(a, 3);
  // Two undone: the next undo would run entry 3 (a, 2).
  s.UndoPos = 3;
  UndoPurgeLyr(s, b);
  EXPECT_EQ(s.UndoCount, 4);
  EXPECT_EQ(s.UndoPos, 2);
  EXPECT_EQ(Redo(1), "Delete Feature '" + a + "' 1");
  EXPECT_EQ(Redo(2), "Delete Feature '" + a + "' 2");
  EXPECT_EQ(Redo(3), "Delete Feature '" + a + "' 3");
  EXPECT_EQ(s.UndoList.size(), 5u);
  EXPECT_TRUE(UndoEnabled(s));
  EXPECT_TRUE(RedoEnabled(s));

  UndoPurgeLyr(s, a);
  EXPECT_EQ(s.UndoCount, 1);
  EXPECT_EQ(s.UndoPos, 0);
  EXPECT_FALSE(UndoEnabled(s));
  EXPECT_FALSE(RedoEnabled(s));
  // The search is on the quoted path: a path that only begins like it stays.
  del(a + "x", 1);
  UndoPurgeLyr(s, a);
  EXPECT_EQ(s.UndoCount, 2);
}

TEST_F(Journal, PurgeOfAFeatureIsAPlainSearch) {
  const std::string a = s.Lyr[1].Fsource;
  for (int f : {1, 12, 2, 10, 21}) {
    JournalLines l = DeleteFeatureLines(a, f);
    UndoAdd(s, l.Redo, l.Undo);
  }
  UndoPurgeFeature(s, 1, 1); // takes 1, 12 and 10 along
  ASSERT_EQ(s.UndoCount, 3);
  EXPECT_EQ(Redo(1), "Delete Feature '" + a + "' 2");
  EXPECT_EQ(Redo(2), "Delete Feature '" + a + "' 21");
  EXPECT_EQ(s.UndoPos, 2);
}

TEST_F(Journal, SnapshotsBelongToTheCurrentEntry) {
  s.Lyr[1].SelBits = {0x01, 0x00};
  s.Lyr[2].SelBits = {0x0F};
  UndoAdd(s, "r", "u");
  EXPECT_EQ(s.UndoList[1].UndoSel.size(), 3u) << "LyrCount + 1 slots";
  UndoPutSel(s, 1);
  s.Lyr[1].SelBits = {0x80, 0x01};
  UndoSwapSel(s, 2); // not held: nothing
  EXPECT_EQ(s.Lyr[2].SelBits, (std::vector<uint8_t>{0x0F}));
  UndoSwapSel(s, 1);
  EXPECT_EQ(s.Lyr[1].SelBits, (std::vector<uint8_t>{0x01, 0x00}));
  UndoSwapSel(s, 1);
  EXPECT_EQ(s.Lyr[1].SelBits, (std::vector<uint8_t>{0x80, 0x01}));
  UndoAdd(s, "r2", "u2");
  UndoSwapSel(s, 1); // the new entry holds no selection
  EXPECT_EQ(s.Lyr[1].SelBits, (std::vector<uint8_t>{0x80, 0x01}));
}

TEST(JournalLines, EachOperationComposesItsPair) {
  const std::string p = "/d/a b.shp";
  JournalLines l = DeleteVertexLines(p, 3, 0, 2, 1.5, -2.25);
  EXPECT_EQ(l.Redo, "Delete Vertex '/d/a b.shp' 3 0 2");
  EXPECT_EQ(l.Undo, "Insert Vertex '/d/a b.shp' 3 0 2 1.5 -2.25");
  EXPECT_EQ(InsertVertexLines(p, 3, 0, 2, 1.5, 2).Redo, "Insert Vertex '/d/a b.shp' 3 0 2 1.5 2");
  l = AddVertexLines(p, 4, 1, 500000.125, 4000000, 7);
  EXPECT_EQ(l.Redo, "ADD Vertex '/d/a b.shp' 4 1  500000.125 4000000");
  EXPECT_EQ(l.Undo, "Delete Vertex '/d/a b.shp' 4 1 7");
  EXPECT_EQ(DeletePartLines(p, 1, 2).Undo, "UnDelete Part '/d/a b.shp' 1 2");
  EXPECT_EQ(DeleteFeatureLines(p, 9).Undo, "UNDelete Feature '/d/a b.shp' 9");
  EXPECT_EQ(NewFeatureLines(p, 9).Redo, "UNDelete Feature '/d/a b.shp' 9");
  EXPECT_EQ(DivideFeatureLines(p, 2, 0, 5, 0, 11).Redo, "Divide Feature '/d/a b.shp' 2 0 5 0 11");
  EXPECT_EQ(DivideFeatureLines(p, 2, 0, 5, 0, 11).Undo, "UnDivide Feature '/d/a b.shp' 2 11");
  l = CombineFeatureLines(p, 1, 0, 3, 0, 2, 6, 0, 0, 0);
  EXPECT_EQ(l.Redo, "Combine Feature '/d/a b.shp' 1 0 3 0 2 6 0 0 0");
  EXPECT_EQ(l.Undo, "UnCombine Feature '/d/a b.shp' 6 1");
  EXPECT_EQ(SendPartBackLines(p, 1, 1).Undo, "SendPart Front '/d/a b.shp' 1 1");
  EXPECT_EQ(InvertPartLines(p, 1, 1).Undo, InvertPartLines(p, 1, 1).Redo);
  l = MoveToLines(p, {{1, 0, 0, 0, 0, 5, 6}, {1, 0, 1, 1, 1, 7, 8}}, 2, 1);
  EXPECT_EQ(l.Redo,
            "MoveTo Vertex '/d/a b.shp' 1 0 0 5 6 2 1 MoveTo Vertex '/d/a b.shp' 1 0 1 7 8 2 1");
  EXPECT_EQ(l.Undo,
            "MoveTo Vertex '/d/a b.shp' 1 0 0 0 0 2 1 MoveTo Vertex '/d/a b.shp' 1 0 1 1 1 2 1");
  EXPECT_EQ(MoveLenLines(p, 1, 0, 0, 0, 3, 4, 0, 0).Undo,
            "MoveLen Vertex '/d/a b.shp' 1 0 3 4 0 0 0 0");
  EXPECT_EQ(RotateLines(p, 1, 0, 10, 20, 45, 2, 4).Undo,
            "Rotate Vertex '/d/a b.shp' 1 0 0 10 20 -45 2 4");
  EXPECT_EQ(ScaleLines(p, 1, 0, 0, 0, 0, 2, 4, 0, 0).Undo,
            "Scale Vertex '/d/a b.shp' 1 0 0 0 0 0.5 0.25 0 0");
  EXPECT_EQ(QuotedPath("/it's.shp"), "'/it''s.shp'");
  EXPECT_EQ(NumText(0.1 + 0.2), "0.3");
  EXPECT_EQ(NumText(1e20), "1E+20");
}
