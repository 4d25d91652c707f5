#include <gtest/gtest.h>

#include "session/cmds_table.h"
#include "session/undo.h"
#include "store/shp_store.h"
#include "table/row_sort.h"
#include "table_fixture.h"

using namespace velmora;

namespace {

struct RowSort : test::TableFixture {
  double X(int rec) { return s.Lyr[lyr].Shp.ShpRecs[size_t(rec)].Part(0).PartPoints()[0].X; }
  bool Sel(int rec) {
    const auto& b = s.Lyr[lyr].SelBits;
    return size_t(rec) / 8 < b.size() && (b[size_t(rec) / 8] >> (rec % 8) & 1);
  }
};

} // namespace

TEST_F(RowSort, RowsAndFeaturesMoveTogether) {
  Open(6, "sort");
  s.Lyr[lyr].SelBits.assign(2, 0);
  s.Lyr[lyr].SelBits[0] = uint8_t(1 << 2); // record 2: n1, at x = 1
  // VAL runs 10 .. 5: ascending reverses the layer.
  Exec("SORT ROWS '" + path + "' VAL ASCENDING");
  EXPECT_EQ(Last(), "Sort Rows pts.shp");
  for (int r = 1; r <= 6; ++r) {
    EXPECT_EQ(Num(r), 4 + r);
    EXPECT_EQ(X(r), 6 - r); // the point of record n<i> is at x = i
    EXPECT_EQ(Cell(r, "NAME"), "n" + std::to_string(6 - r));
  }
  EXPECT_TRUE(Sel(5));
  EXPECT_FALSE(Sel(2));
  EXPECT_TRUE(s.Lyr[lyr].Shp.ShpChanged);

  Exec("SORT ROWS '" + path + "' NAME DESCENDING");
  EXPECT_EQ(Cell(1, "NAME"), "n5");
  EXPECT_EQ(X(1), 5);
}

TEST_F(RowSort, JournalledSortUndoesAndRedoes) {
  Open(5, "sortundo");
  s.MapView.MapTarget = 1;
  ASSERT_TRUE(SortRowsJournalled(s, lyr, FindField(s, lyr, "VAL"), false));
  EXPECT_EQ(Cell(1, "NAME"), "n4");
  UndoRun(s);
  for (int r = 1; r <= 5; ++r) {
    EXPECT_EQ(Cell(r, "NAME"), "n" + std::to_string(r - 1));
    EXPECT_EQ(X(r), r - 1);
  }
  RedoRun(s);
  EXPECT_EQ(Cell(1, "NAME"), "n4");
  EXPECT_EQ(X(1), 4);
}

TEST_F(RowSort, CellUndoFollowsItsRecord) {
  Open(3, "sortcell");
  ReadDbfRec(s, lyr, 0);
  NoteDataUndo(s, lyr, 1, 1);
  ReadDbfRec(s, lyr, 0);
  SetFieldValue(s, lyr, 1, "first");
  WriteDbfRecSwap(s, lyr, 0);
  ASSERT_TRUE(SortRows(s, lyr, FindField(s, lyr, "VAL"), false, nullptr));
  EXPECT_EQ(Cell(3, "NAME"), "first");
  UndoDataEdit(s, lyr, true);
  EXPECT_EQ(Cell(3, "NAME"), "n0");
}

TEST_F(RowSort, RefusedWhenNotEditable) {
  Open(3, "sortro");
  s.Lyr[lyr].EEditable = 0;
  Exec("SORT ROWS '" + path + "' VAL ASCENDING");
  EXPECT_EQ(Last(), " *** Sort Rows pts.shp has been canceled *** ");
  EXPECT_EQ(Cell(1, "NAME"), "n0");
  Exec("SORT ROWS '" + path + "' VAL SIDEWAYS");
  EXPECT_EQ(Last(), " *** Sort Rows pts.shp has been canceled *** ");
}

TEST_F(RowSort, AddedAndRenamedFieldsUndoAndRedo) {
  Open(3, "fieldundo");
  s.MapView.MapTarget = 1;
  ASSERT_TRUE(AddFieldJournalled(s, lyr, "Owner", 'C', 12, 0));
  ASSERT_TRUE(RenameFieldJournalled(s, lyr, "NAME", "TITLE"));
  EXPECT_EQ(FindField(s, lyr, "OWNER"), 5);
  UndoRun(s);
  EXPECT_EQ(FindField(s, lyr, "NAME"), 1);
  EXPECT_EQ(Cell(2, "NAME"), "n1");
  UndoRun(s);
  EXPECT_EQ(FindField(s, lyr, "OWNER"), -1);
  EXPECT_EQ(s.Lyr[lyr].Dbf.DbfFieldCount, 4);
  RedoRun(s);
  RedoRun(s);
  EXPECT_EQ(FindField(s, lyr, "OWNER"), 5);
  EXPECT_EQ(FindField(s, lyr, "TITLE"), 1);
}
