#include <gtest/gtest.h>

#include "store/shp_store.h"
#include "table/table_page.h"
#include "table_fixture.h"

using namespace velmora;

namespace {

struct TablePage : test::TableFixture {};

void Select(Session& s, int lyr, int rec) {
  auto& b = s.Lyr[lyr].SelBits;
  if (b.size() <= size_t(rec) / 8) b.resize(size_t(rec) / 8 + 1);
  b[size_t(rec) / 8] |= uint8_t(1 << (rec % 8));
}

} // namespace

TEST_F(TablePage, AllFeaturesPageHoldsOnlyItsRows) {
  Open(30);
  TblPage p;
  InstTable(s, p, lyr, 5);
  ASSERT_EQ(p.RowRec.size(), 5u);
  EXPECT_EQ(p.RowRec[0], 1);
  EXPECT_EQ(p.TblFieldCount, 4);
  EXPECT_EQ(p.Cells.size(), 20u);
  EXPECT_EQ(Trim(PageCell(p, 0, 1)), "n0");
  EXPECT_EQ(TblViewCount(s, p), 30);
  EXPECT_EQ(TblLargeStep(30), 3);
  EXPECT_EQ(TblCounterText(s, p), "Selected Records = ( 0 out of total 30 Records )");

  p.TblFirstRec = 28; // the last page runs out of data
  FillPage(s, p);
  EXPECT_EQ(p.RowRec[0], 28);
  EXPECT_EQ(p.RowRec[2], 30);
  EXPECT_EQ(p.RowRec[3], 0);
  EXPECT_EQ(PageCell(p, 3, 1), "");
}

TEST_F(TablePage, SelectedAndDeletedModes) {
  Open(40);
  TblPage p;
  InstTable(s, p, lyr, 4);
  p.TblMode = 1;
  FillPage(s, p); // nothing selected: the counter reads 0 and the page is empty
  EXPECT_EQ(TblViewCount(s, p), 0);
  EXPECT_EQ(p.RowRec[0], 0);

  for (int r : {3, 9, 17, 33, 40}) Select(s, lyr, r);
  FillPage(s, p);
  EXPECT_EQ(TblCounterText(s, p), "Selected Records = ( 5 out of total 40 Records )");
  EXPECT_EQ(p.RowRec, (std::vector<int32_t>{3, 9, 17, 33}));
  p.TblFirstRec = 4;
  FillPage(s, p);
  EXPECT_EQ(p.RowRec, (std::vector<int32_t>{33, 40, 0, 0}));
  EXPECT_EQ(TblRecAt(s, p, 5), 40);
  EXPECT_EQ(TblRecAt(s, p, 6), 0);

  DeleteRec(s, lyr, 7, false);
  DeleteRec(s, lyr, 12, false);
  p.TblMode = 2;
  p.TblFirstRec = 1;
  FillPage(s, p);
  EXPECT_EQ(TblCounterText(s, p), "Deleted Records = ( 2 out of total 40 Records )");
  EXPECT_EQ(p.RowRec, (std::vector<int32_t>{7, 12, 0, 0}));
}

TEST_F(TablePage, TypedCellsStayOnThePageUntilFlushedAndUndo) {
  Open(3);
  TblPage p;
  InstTable(s, p, lyr, 3);
  const int val = FindField(s, lyr, "VAL");
  ASSERT_TRUE(SetPageCell(s, p, 1, val, "7.5"));
  EXPECT_EQ(p.RowSave[1], 1);
  EXPECT_EQ(Num(2), 9.0); // still in the page only
  FlushPage(s, p);
  EXPECT_EQ(p.RowSave[1], 0);
  EXPECT_EQ(Num(2), 7.5);
  UndoDataEdit(s, lyr, true);
  EXPECT_EQ(Num(2), 9.0);
  RedoDataEdit(s, lyr, true);
  EXPECT_EQ(Num(2), 7.5);

  // Not editable, or a row beyond the data: refused.
  EXPECT_FALSE(SetPageCell(s, p, 5, val, "1"));
  s.Lyr[lyr].EEditable = 0;
  EXPECT_FALSE(SetPageCell(s, p, 0, val, "1"));
}

TEST_F(TablePage, OneRecordLayer) {
  Open(1);
  TblPage p;
  InstTable(s, p, lyr, 10);
  EXPECT_EQ(TblViewCount(s, p), 1);
  EXPECT_EQ(p.RowRec[0], 1);
  EXPECT_EQ(p.RowRec[1], 0);
}
