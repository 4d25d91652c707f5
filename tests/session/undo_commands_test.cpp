// The journal end to end: a layer built by command lines, edits journalled as the editing
// code journals them, undone and redone through the command language.
#include <gtest/gtest.h>

#include "edit/journal_lines.h"
#include "frame/lyr_slots.h"
#include "session/commands.h"
#include "session/layer_life.h"
#include "session/map_init.h"
#include "session/undo.h"
#include "store/shp_store.h"
#include "test_support.h"

using namespace velmora;
using namespace velmora::test;

namespace {

struct UndoCommands : ::testing::Test {
  RecordingHost host;
  Session s{host};
  std::string dir = TempDir("undo cmds");
  std::string path = dir + "roads.shp";
  int lyr = 0;

  void Exec(const std::string& line) {
    ArgStrSplit(s, line);
    ArgStrExecute(s);
  }
  // Does an edit by its redo line and journals the pair, as the editor does.
  void Edit(const JournalLines& l) {
    Exec(l.Redo);
    UndoAdd(s, l.Redo, l.Undo);
  }
  std::vector<std::pair<double, double>> Points(int f) {
    std::vector<std::pair<double, double>> v;
    const ShpRecord& r = s.Lyr[lyr].Shp.ShpRecs.at(size_t(f));
    for (const ShpPart& p : r.Parts())
      for (size_t i = 0; i < size_t(p.PartCount) && i < p.Size(); ++i)
        v.emplace_back(p.PartPoints()[i].X, p.PartPoints()[i].Y);
    return v;
  }

  void SetUp() override {
    MapInit(s);
    Randomize(s, 3);
    const std::string q = QuotedPath(path);
    Exec("MAKE LAYER " + q + " AS POLYLINE");
    Exec("OPEN LAYER " + q);
    lyr = FindLyrByFile(s, path);
    ASSERT_GT(lyr, 0);
    Exec("ADD FEATURE " + q + " 0 0 0");
    Exec("ADD VERTEX " + q + " 1 0 10 0");
    Exec("ADD VERTEX " + q + " 1 0 10 10");
    Exec("ADD FEATURE " + q + " 0 50 50");
    Exec("ADD VERTEX " + q + " 2 0 60 60");
    ASSERT_EQ(s.Lyr[lyr].Shp.RecCount, 2);
  }
  void TearDown() override { CloseAllLyrs(s); }
};

} // namespace

TEST_F(UndoCommands, DeleteFeatureAndUndeleteGoBackAndForth) {
  Edit(DeleteFeatureLines(path, 2));
  EXPECT_TRUE(IsDeleted(s, lyr, 2));
  UndoRun(s);
  EXPECT_FALSE(IsDeleted(s, lyr, 2));
  EXPECT_EQ(s.UndoPos, 0);
  RedoRun(s);
  EXPECT_TRUE(IsDeleted(s, lyr, 2));
  UndoRun(s);
  EXPECT_FALSE(IsDeleted(s, lyr, 2));
  EXPECT_EQ(Points(2), (std::vector<std::pair<double, double>>{{50, 50}, {60, 60}}));
}

TEST_F(UndoCommands, AddVertexWhileDrawingAndDeleteVertexUndoEachOther) {
  const auto before = Points(1);
  ASSERT_EQ(before.size(), 3u);
  Edit(AddVertexLines(path, 1, 0, 20.5, 10.25, 3));
  auto after = before;
  after.emplace_back(20.5, 10.25);
  EXPECT_EQ(Points(1), after);

  Edit(DeleteVertexLines(path, 1, 0, 1, 10, 0));
  EXPECT_EQ(Points(1).size(), 3u);
  UndoRun(s); // the vertex comes back in its place
  EXPECT_EQ(Points(1), after);
  UndoRun(s); // the added vertex goes
  EXPECT_EQ(Points(1), before);
  RedoRun(s);
  EXPECT_EQ(Points(1), after);
  UndoRun(s);
  EXPECT_EQ(Points(1), before);
  RedoRun(s);
  RedoRun(s);
  EXPECT_EQ(Points(1).size(), 3u);
  EXPECT_EQ(Points(1)[1], (std::pair<double, double>{10, 10}));
  EXPECT_FALSE(RedoEnabled(s));
}

TEST_F(UndoCommands, InvertPartAndANewEditAfterUndosDropsTheTail) {
  const auto before = Points(1);
  Edit(InvertPartLines(path, 1, 0));
  EXPECT_EQ(Points(1).front(), before.back());
  Edit(InsertVertexLines(path, 1, 0, 1, 5, 5));
  UndoRun(s);
  UndoRun(s);
  EXPECT_EQ(Points(1), before);
  Edit(DeleteFeatureLines(path, 1)); // the two undone entries are gone
  EXPECT_EQ(s.UndoCount, 2);
  RedoRun(s); // nothing to redo
  EXPECT_TRUE(IsDeleted(s, lyr, 1));
  UndoRun(s);
  EXPECT_FALSE(IsDeleted(s, lyr, 1));
}

TEST_F(UndoCommands, LoadRedoUndoRestoresTheSnapshotOfTheEntryAtHand) {
  const auto before = Points(1);
  // An edit no line reverses: the feature is kept in the entry and restored from it.
  JournalLines l{"Delete Vertex " + QuotedPath(path) + " 1 0 0",
                 "LoadRedoUndo Feature " + QuotedPath(path) + " 1"};
  UndoAdd(s, l.Redo, l.Undo);
  UndoPutRec(s, lyr, 1);
  Exec(l.Redo);
  EXPECT_EQ(Points(1).size(), 2u);
  // A second entry with its own snapshot of feature 2 does not disturb the first.
  UndoAdd(s, "SaveRedoUndo Feature " + QuotedPath(path) + " 2",
          "Delete Feature " + QuotedPath(path) + " 2");
  UndoPutRec(s, lyr, 2);
  UndoRun(s);
  EXPECT_TRUE(IsDeleted(s, lyr, 2));
  UndoRun(s);
  EXPECT_EQ(Points(1), before);
  RedoRun(s);
  EXPECT_EQ(Points(1).size(), 2u);
  RedoRun(s); // SAVEREDOUNDO is the same restore
  EXPECT_FALSE(IsDeleted(s, lyr, 2));
  EXPECT_EQ(Points(2), (std::vector<std::pair<double, double>>{{50, 50}, {60, 60}}));
}

TEST_F(UndoCommands, LinesOfALayerThatIsGoneDoNothing) {
  Edit(DeleteVertexLines(path, 2, 0, 0, 50, 50));
  ASSERT_EQ(Points(2).size(), 1u);
  // Save As renames the layer's file: the entry keeps the old path and names no layer.
  std::string renamed = dir + "renamed.shp";
  Exec("SAVE LAYER " + QuotedPath(path) + " AS " + QuotedPath(renamed));
  ASSERT_EQ(s.Lyr[lyr].Fsource, renamed);
  ASSERT_EQ(s.UndoCount, 2);
  UndoRun(s);
  EXPECT_EQ(Points(2), (std::vector<std::pair<double, double>>{{60, 60}}));
  EXPECT_EQ(s.UndoPos, 0);

  // Removing a layer takes its entries along: nothing is left to undo.
  Edit(DeleteFeatureLines(renamed, 2));
  ASSERT_EQ(s.UndoCount, 2);
  RemoveLyr(s, lyr, false);
  EXPECT_EQ(s.UndoCount, 1);
  EXPECT_FALSE(UndoEnabled(s));
}
