#include <gtest/gtest.h>

#include <algorithm>

#include "frame/busy.h"
#include "store/shp_store.h"
#include "table/table_page.h"
#include "table/table_ranges.h"
#include "table/utf_cells.h"
#include "table_fixture.h"

using namespace velmora;

namespace {

struct TableRanges : test::TableFixture {
  TblPage p;
  void Range(int r1, const char* f1, int r2, const char* f2) {
    p.TblLayer = lyr;
    p.TblRows = 5;
    p.TblRange = {r1, FindField(s, lyr, f1), r2, FindField(s, lyr, f2)};
  }
};

} // namespace

TEST_F(TableRanges, CopyGivesTabsAndLineBreaks) {
  Open(4);
  Range(3, "VAL", 2, "NAME"); // reversed corners are put in order
  ASSERT_TRUE(CopyCells(s, p));
  EXPECT_EQ(host.clip, "n1        \t      9.00\r\nn2        \t      8.00\r\n");
}

TEST_F(TableRanges, CutSetsNumbersToZeroAndUndoBringsThemBack) {
  Open(3);
  Range(1, "NAME", 2, "VAL");
  ASSERT_TRUE(CutCells(s, p));
  EXPECT_EQ(Cell(1, "NAME"), "");
  EXPECT_EQ(Num(2), 0.0);
  EXPECT_EQ(Num(3), 8.0);
  EXPECT_EQ(Last(), "Cut Cells pts.shp");
  EXPECT_EQ(std::count(host.logged.begin(), host.logged.end(), "Cut Cells pts.shp"), 1);
  EXPECT_EQ(host.clip.substr(0, 3), "n0 ");
  EXPECT_EQ(host.clip.size() - host.clip.rfind("\r\n"), 2u);
  UndoDataEdit(s, lyr, true); // one group for the whole range
  EXPECT_EQ(Cell(1, "NAME"), "n0");
  EXPECT_EQ(Num(2), 9.0);
}

TEST_F(TableRanges, PasteAndFillPaste) {
  Open(8);
  Range(2, "VAL", 6, "VAL");
  ASSERT_TRUE(PasteText(s, p, "42", false)); // "Past" fills one cell
  EXPECT_EQ(Num(2), 42.0);
  EXPECT_EQ(Num(3), 8.0);
  ASSERT_TRUE(PasteText(s, p, "5", true)); // "Fill Past" tiles the range
  for (int r = 2; r <= 6; ++r) EXPECT_EQ(Num(r), 5.0);
  EXPECT_EQ(Num(7), 4.0);

  // More cells than the range has fields lose the rest; fewer leave the rest alone; any
  // number of line breaks between lines; "Past" runs past the range's end.
  Range(1, "NAME", 1, "VAL");
  ASSERT_TRUE(PasteText(s, p, "a\t1\tx\r\n\r\nb\nc\t3", false));
  EXPECT_EQ(Cell(1, "NAME"), "a");
  EXPECT_EQ(Num(1), 1.0);
  EXPECT_EQ(Cell(2, "NAME"), "b");
  EXPECT_EQ(Num(2), 5.0);
  EXPECT_EQ(Cell(3, "NAME"), "c");
  EXPECT_EQ(Num(3), 3.0);
  EXPECT_EQ(Cell(4, "NAME"), "n3");
  // A number wider than its field and a bad date are cut by the store, never a crash.
  Range(1, "VAL", 1, "DAY");
  ASSERT_TRUE(PasteText(s, p, "123456789012345\tnot a date", false));
  EXPECT_EQ(s.Lyr[lyr].Dbf.DbfRecCount, 8);
  // An empty clipboard empties the first cell only.
  Range(5, "NAME", 6, "NAME");
  ASSERT_TRUE(PasteText(s, p, "", false));
  EXPECT_EQ(Cell(5, "NAME"), "");
  EXPECT_EQ(Cell(6, "NAME"), "n5");
}

TEST_F(TableRanges, FillSeriesNumbersStopAndDates) {
  Open(10);
  Range(1, "VAL", 10, "VAL");
  ASSERT_TRUE(FillSeries(s, p, "1", "2", "6"));
  EXPECT_EQ(Num(1), 1.0);
  EXPECT_EQ(Num(2), 3.0);
  EXPECT_EQ(Num(3), 5.0);
  EXPECT_EQ(Num(4), 7.0); // untouched
  const int groups = s.Lyr[lyr].Dbf.DataUndo.UndoTop;
  EXPECT_TRUE(FillSeries(s, p, "1", "0", "")); // step 0: nothing
  EXPECT_EQ(s.Lyr[lyr].Dbf.DataUndo.UndoTop, groups);
  EXPECT_EQ(Num(1), 1.0);

  ASSERT_TRUE(FillSeries(s, p, "10", "-0.5", ""));
  EXPECT_EQ(Num(10), 5.5);

  Range(1, "DAY", 3, "DAY");
  ASSERT_TRUE(FillSeries(s, p, "30/12/2023", "1", ""));
  EXPECT_EQ(Cell(1, "DAY"), "30/12/2023");
  EXPECT_EQ(Cell(3, "DAY"), "01/01/2024");
  EXPECT_EQ(FillSeriesStart(s, p), "30/12/2023");
}

TEST_F(TableRanges, SelectedModeWalksOnlySelectedRecords) {
  Open(6);
  s.Lyr[lyr].SelBits.assign(2, 0);
  s.Lyr[lyr].SelBits[0] = uint8_t(1 << 2 | 1 << 5);
  Range(1, "VAL", 6, "VAL");
  p.TblMode = 1;
  EXPECT_EQ(StrToDbl(s, FillSeriesStart(s, p)), 9.0);
  ASSERT_TRUE(ClearCells(s, p));
  EXPECT_EQ(Num(2), 0.0);
  EXPECT_EQ(Num(5), 0.0);
  EXPECT_EQ(Num(1), 10.0);
  EXPECT_EQ(Num(3), 8.0);
}

TEST_F(TableRanges, BusyLayerIsRefusedAndUnchanged) {
  Open(3);
  Range(1, "VAL", 3, "VAL");
  LyrLock(s, lyr, true, "Other");
  EXPECT_FALSE(FillSeries(s, p, "1", "1", ""));
  EXPECT_EQ(Last(), " *** Fill Series to layer pts.shp has been canceled *** ");
  EXPECT_EQ(Num(1), 10.0);
  EXPECT_FALSE(AddRecords(s, lyr, 2));
  EXPECT_EQ(Last(), " *** Append Records to layer pts.shp has been canceled *** ");
  LyrLock(s, lyr, false, "");
}

TEST_F(TableRanges, CancelKeepsTheRecordsDoneInOneGroup) {
  Open(10);
  Range(1, "VAL", 10, "VAL");
  struct Stopper : test::ClipHost {
    Session* s = nullptr;
    int lyr = 0, n = 0;
    void Yield() override {
      if (++n == 3) SetLyrTerminate(*s, lyr, true);
    }
  } stopper;
  s.host = &stopper;
  stopper.s = &s, stopper.lyr = lyr;
  FillSeries(s, p, "100", "1", "");
  s.host = &host;
  int changed = 0;
  for (int r = 1; r <= 10; ++r) changed += Num(r) == 99 + r;
  EXPECT_GE(changed, 1);
  EXPECT_LT(changed, 10);
  UndoDataEdit(s, lyr, true);
  for (int r = 1; r <= 10; ++r) EXPECT_EQ(Num(r), 11 - r);
}

TEST_F(TableRanges, AddRecordsGivesOneVertexAtTheOrigin) {
  Open(3);
  s.Lyr[lyr].Shp.ShpHeader.Xmin = 0; // the points run 0 .. 2
  ASSERT_TRUE(AddRecords(s, lyr, 2));
  EXPECT_EQ(s.Lyr[lyr].Shp.RecCount, 5);
  EXPECT_EQ(s.Lyr[lyr].Dbf.DbfRecCount, 5);
  const ShpRecord& r = s.Lyr[lyr].Shp.ShpRecs[5];
  EXPECT_EQ(r.NumPoints, 1);
  EXPECT_EQ(r.Part(0).PartPoints()[0].X, 0);
  EXPECT_EQ(Cell(5, "NAME"), "");
  EXPECT_EQ(Last(), "Add Records pts.shp");
}

TEST(UtfCells, TwoByteSequencesBothWays) {
  const std::string bytes = "caf\xC3\xA9 \xD8\xB3";
  EXPECT_TRUE(IsUtf8Text(bytes));
  EXPECT_FALSE(IsUtf8Text("caf\xE9 x"));
  EXPECT_FALSE(IsUtf8Text("plain"));
  EXPECT_FALSE(IsUtf8Text("ab\xC3")); // the last character is left out
  const std::u32string w = Utf8ToWide(bytes);
  EXPECT_EQ(w, (std::u32string{'c', 'a', 'f', 0xE9, ' ', 0x633}));
  EXPECT_EQ(WideToUtf8(w), bytes);
  EXPECT_EQ(WideToUtf8(std::u32string{'a', 0x4E2D}), "a"); // 2048 and above are dropped
}

TEST_F(TableRanges, ConvertCellsRoundTrip) {
  Open(2);
  ReadDbfRec(s, lyr, 0);
  SetFieldValue(s, lyr, 1, "caf\xC3\x83\xC2\xA9"); // "café" as UTF-8 bytes seen in 1252
  WriteDbfRecSwap(s, lyr, 0);
  Range(1, "NAME", 2, "NAME");
  ASSERT_TRUE(ConvertCells(s, p, true));
  EXPECT_EQ(Cell(1, "NAME"), "caf\xC3\xA9");
  EXPECT_EQ(Cell(2, "NAME"), "n1"); // nothing to convert
  ASSERT_TRUE(ConvertCells(s, p, false));
  EXPECT_EQ(Cell(1, "NAME"), "caf\xC3\x83\xC2\xA9");
}
