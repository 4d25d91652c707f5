// The journal of cell edits: one-cell groups, groups of many cells, undo and redo.
#include "dbf_fixture.h"
#include "store/dbf_store.h"

using namespace velmora;
using namespace velmora::test;

namespace {

class CaptionHost : public RecordingHost {
public:
  std::vector<std::string> captions;
  std::vector<int> refreshed;
  void FuncText(const std::string& t) override {
    if (!t.empty()) captions.push_back(t);
  }
  void TableDataChanged(int lyr) override { refreshed.push_back(lyr); }
};

struct Journal {
  CaptionHost host;
  Session s{host};
  std::string dir = TempDir("dbf-undo");
  int lyr = 0;
  Journal() {
    lyr = AddLayerRow(s, dir + "u.shp", 3);
    NewDbfDefault(s, lyr, dir + "u.shp"); // ID "1" .. "3"
    EXPECT_EQ(s.DbfErr, 0);
    InitDataUndo(s, lyr);
  }
  // A cell edit as the table makes it: noted, then written.
  void Edit(int rec, const std::string& v) {
    NoteDataUndo(s, lyr, rec, 1);
    SetFieldValue(s, lyr, 1, v);
    WriteDbfRecSwap(s, lyr, rec - 1);
  }
  std::string Cell(int rec) {
    ReadDbfRec(s, lyr, rec - 1);
    return Trim(GetFieldValue(s, lyr, 1));
  }
  DataUndoJournal& J() { return s.Lyr[lyr].Dbf.DataUndo; }
};

} // namespace

TEST(DbfUndo, UndoRedoUndoGivesTheFirstTextBackEachTime) {
  Journal t;
  t.Edit(2, "changed");
  EXPECT_EQ(t.Cell(2), "changed");
  UndoDataEdit(t.s, t.lyr, false);
  EXPECT_EQ(t.Cell(2), "2");
  RedoDataEdit(t.s, t.lyr, false);
  EXPECT_EQ(t.Cell(2), "changed");
  UndoDataEdit(t.s, t.lyr, false);
  EXPECT_EQ(t.Cell(2), "2");
  UndoDataEdit(t.s, t.lyr, false); // nothing left: no change
  EXPECT_EQ(t.Cell(2), "2");
  EXPECT_EQ(t.J().UndoPos, 0);
  EXPECT_EQ(t.host.captions,
            (std::vector<std::string>{"Undo Data Edit", "Redo Data Edit", "Undo Data Edit"}));
  EXPECT_EQ(t.host.refreshed, (std::vector<int>{t.lyr, t.lyr, t.lyr}));
}

TEST(DbfUndo, ANewEditAfterAnUndoDropsTheRedo) {
  Journal t;
  t.Edit(1, "a");
  t.Edit(1, "b");
  UndoDataEdit(t.s, t.lyr, true);
  EXPECT_EQ(t.Cell(1), "a");
  t.Edit(3, "c");
  EXPECT_EQ(t.J().UndoTop, 2);
  EXPECT_EQ(t.J().UndoPos, 2);
  RedoDataEdit(t.s, t.lyr, true);
  EXPECT_EQ(t.Cell(1), "a");
  EXPECT_EQ(t.Cell(3), "c");
  UndoDataEdit(t.s, t.lyr, true);
  UndoDataEdit(t.s, t.lyr, true);
  EXPECT_EQ(t.Cell(1), "1");
  EXPECT_EQ(t.Cell(3), "3");
  EXPECT_TRUE(t.host.captions.empty()) << "quiet shows no progress";
}

TEST(DbfUndo, AGroupOfCellsUndoesTogether) {
  Journal t;
  BeginDataUndo(t.s, t.lyr);
  for (int rec = 1; rec <= 3; ++rec) {
    ReadDbfRec(t.s, t.lyr, rec - 1);
    AddDataUndoItem(t.s, t.lyr, rec, 1, GetFieldValue(t.s, t.lyr, 1));
    SetFieldValue(t.s, t.lyr, 1, std::string("x").append(std::to_string(rec))); // GCC 12 -Wrestrict
    WriteDbfRecSwap(t.s, t.lyr, rec - 1);
  }
  EXPECT_EQ(t.J().UndoGroups[1].ItemCount, 3);
  UndoDataEdit(t.s, t.lyr, true);
  EXPECT_EQ(t.Cell(1) + t.Cell(2) + t.Cell(3), "123");
  RedoDataEdit(t.s, t.lyr, true);
  EXPECT_EQ(t.Cell(1) + t.Cell(2) + t.Cell(3), "x1x2x3");
}

TEST(DbfUndo, AnEmptyGroupIsPassedOverButRedoStillMoves) {
  Journal t;
  BeginDataUndo(t.s, t.lyr);
  EXPECT_EQ(t.J().UndoGroups[0].ItemCount, 0);
  UndoDataEdit(t.s, t.lyr, true);
  EXPECT_EQ(t.J().UndoPos, 1) << "an empty group is not undone";
  t.J().UndoPos = 0;
  RedoDataEdit(t.s, t.lyr, true);
  EXPECT_EQ(t.J().UndoPos, 1);
  InitDataUndo(t.s, t.lyr);
  EXPECT_EQ(t.J().UndoTop, 0);
  EXPECT_EQ(t.J().UndoGroups.size(), 1u);
  AddDataUndoItem(t.s, t.lyr, 1, 1, "x"); // no group begun: nothing to add to
  EXPECT_EQ(t.J().UndoGroups[0].ItemCount, 0);
}
