#include "query/selection.h"

#include "query_fixture.h"
#include "view/map_tools.h"

namespace velmora::test {
namespace {

struct SelectionTest : QueryFixture {
  int lyr = 0;
  void SetUp() override {
    QueryFixture::SetUp();
    std::vector<std::string> rows;
    for (int i = 0; i < 20; ++i)
      rows.push_back("\"POINT (" + std::to_string(i) + " " + std::to_string(i) + ")\"," +
                     std::to_string(i + 1));
    lyr = MakeOpen("pts", "WKT,id", rows);
    s.Lyr[lyr].SSelectable = 1;
  }
  std::vector<int> Selected() {
    std::vector<int> out;
    for (int r = 1; r <= s.Lyr[lyr].Shp.RecCount; ++r)
      if (IsSelected(s, lyr, r)) out.push_back(r);
    return out;
  }
};

TEST_F(SelectionTest, BitsAreSizedToTheRecordsAndCountedWithinThem) {
  EXPECT_EQ(s.Lyr[lyr].SelBits.size(), size_t(20 + 7) / 8 + 1);
  SelectRec(s, lyr, 1);
  SelectRec(s, lyr, 20);
  SelectRec(s, lyr, 21); // no such record
  SelectRecAny(s, lyr, 0);
  EXPECT_EQ(SelectedCount(s, lyr), 2); // the frame record's bit does not count
  EXPECT_EQ(s.Query.SelDirty, -1);
}

TEST_F(SelectionTest, DeletedRecordIsNeverSelected) {
  DeleteRec(s, lyr, 5, true);
  SelectRec(s, lyr, 5);
  ToggleRec(s, lyr, 5);
  EXPECT_FALSE(IsSelected(s, lyr, 5));
  SelectRec(s, lyr, 6);
  InvertSelection(s, lyr);
  EXPECT_FALSE(IsSelected(s, lyr, 5));
  EXPECT_FALSE(IsSelected(s, lyr, 6));
  EXPECT_EQ(SelectedCount(s, lyr), 18);
  InvertSelection(s, lyr);
  EXPECT_EQ(Selected(), std::vector<int>{6});
}

TEST_F(SelectionTest, DeletingASelectedRecordClearsItsBitAndTheInversionSeesIt) {
  InvertSelection(s, lyr); // builds the cache of deleted records
  DeleteRec(s, lyr, 3, true);
  EXPECT_FALSE(IsSelected(s, lyr, 3));
  ClearSelection(s, lyr);
  InvertSelection(s, lyr);
  EXPECT_FALSE(IsSelected(s, lyr, 3));
  EXPECT_EQ(SelectedCount(s, lyr), 19);
}

TEST_F(SelectionTest, RangeWalksDownwardAndLogsItsCaption) {
  SelectRange(s, lyr, 9, 4, true);
  EXPECT_EQ(Selected(), (std::vector<int>{4, 5, 6, 7, 8, 9}));
  EXPECT_TRUE(Logged("Select Features pts.shp"));
  SelectRange(s, lyr, 5, 6, false);
  EXPECT_EQ(Selected(), (std::vector<int>{4, 7, 8, 9}));
  EXPECT_TRUE(Logged("UnSelect Features pts.shp"));
  EXPECT_GT(host.yields, 6);
}

TEST_F(SelectionTest, RangeOnABusyLayerIsRefused) {
  s.Lyr[lyr].LyrBusy = -1;
  s.Lyr[lyr].BusyFunc = "Find Query";
  SelectRange(s, lyr, 1, 3, true);
  EXPECT_EQ(SelectedCount(s, lyr), 0);
  EXPECT_TRUE(Logged(" *** Select Features pts.shp has been canceled *** "));
}

TEST_F(SelectionTest, BoxSelectsWhatItMeetsShiftAddsCtrlRemoves) {
  EXPECT_EQ(SelectByBox(s, 2.5, 6.5, 6.5, 2.5, 0), 4);
  EXPECT_EQ(Selected(), (std::vector<int>{4, 5, 6, 7}));
  SelectByBox(s, 9.5, 11.5, 11.5, 9.5, 1); // Shift
  EXPECT_EQ(Selected(), (std::vector<int>{4, 5, 6, 7, 11, 12}));
  SelectByBox(s, 3.5, 5.5, 5.5, 3.5, 2); // Ctrl
  EXPECT_EQ(Selected(), (std::vector<int>{4, 7, 11, 12}));
  SelectByBox(s, 100, 101, 101, 100, 0); // nothing there: a new, empty selection
  EXPECT_EQ(SelectedCount(s, lyr), 0);
}

TEST_F(SelectionTest, BoxLeavesLayersThatCannotBeSelected) {
  s.Lyr[lyr].SSelectable = 0;
  SelectRec(s, lyr, 1);
  EXPECT_EQ(SelectByBox(s, -1, 30, 30, -1, 0), 0);
  EXPECT_EQ(Selected(), std::vector<int>{1});
}

TEST_F(SelectionTest, ZoomToSelectedFitsTheWindowAroundThem) {
  EXPECT_FALSE(ZoomToSelected(s, lyr));
  SelectRec(s, lyr, 3);
  SelectRec(s, lyr, 9);
  EXPECT_TRUE(ZoomToSelected(s, lyr));
  EXPECT_LE(s.MapView.MapLeft, 2.0);
  EXPECT_GE(s.MapView.MapRight, 8.0);
  EXPECT_LT(s.MapView.MapRight - s.MapView.MapLeft, 19.0);
}

} // namespace
} // namespace velmora::test
