#include <gtest/gtest.h>

#include "frame/lyr_slots.h"
#include "session/layer_list_ops.h"
#include "test_support.h"

using namespace velmora;

namespace {

struct ListFixture : ::testing::Test {
  test::RecordingHost host;
  Session s{host};
  void SetUp() override {
    s.Lyr.Resize(5);
    s.LyrCount = 5;
    for (int i = 1; i <= 5; ++i) {
      SetLyrDefaults(s, i);
      s.Lyr[i].LyrName = "L" + std::to_string(i);
    }
  }
  std::string Names() {
    std::string out;
    for (int i = 1; i <= s.LyrCount; ++i) out += s.Lyr[i].LyrName + " ";
    return out;
  }
};

} // namespace

TEST_F(ListFixture, MoveUpAndDownWalkTheSelectionAndStopAtTheEnds) {
  auto rows = MoveLyrsUp(s, {2, 4});
  EXPECT_EQ(Names(), "L2 L1 L4 L3 L5 ");
  EXPECT_EQ(rows, (std::vector<int>{1, 3}));
  rows = MoveLyrsUp(s, rows); // touches row 1: nothing
  EXPECT_EQ(Names(), "L2 L1 L4 L3 L5 ");
  rows = MoveLyrsDown(s, {3, 4});
  EXPECT_EQ(Names(), "L2 L1 L5 L4 L3 ");
  EXPECT_EQ(rows, (std::vector<int>{5, 4}));
}

TEST_F(ListFixture, ReorderSkipsABusyLayerAndRefusesWithADialogOpen) {
  s.Lyr[3].LyrBusy = -1;
  MoveLyrsUp(s, {3, 5});
  EXPECT_EQ(Names(), "L1 L2 L3 L5 L4 ");
  s.Lyr[3].LyrBusy = 0;
  host.openDialogs = {"Find by Data", "Add records"};
  MoveLyrsDown(s, {1});
  EXPECT_EQ(Names(), "L1 L2 L3 L5 L4 ");
  ASSERT_EQ(host.boxes.size(), 1u);
  EXPECT_EQ(host.boxes[0], "Close menu(s) Message Box|Please close \"Add records\", \"Find by "
                           "Data\", menu(s) before changing layers arrangement");
}

TEST_F(ListFixture, DragMovesTheSelectionToTheDropRow) {
  auto rows = MoveLyrsTo(s, {4, 5}, 1);
  EXPECT_EQ(Names(), "L4 L5 L1 L2 L3 ");
  EXPECT_EQ(rows, (std::vector<int>{1, 2}));
  rows = MoveLyrsTo(s, {1, 2}, 5);
  EXPECT_EQ(Names(), "L1 L2 L3 L4 L5 ");
}

TEST_F(ListFixture, CheckBoxOfABusyLayerGoesBackAndShowAllFollowsTheSelection) {
  s.Lyr[2].LyrBusy = -1;
  EXPECT_FALSE(SetLyrVisible(s, 2, false));
  EXPECT_EQ(s.Lyr[2].DVisable, 1);
  EXPECT_TRUE(SetLyrVisible(s, 1, false));
  EXPECT_EQ(s.ProjChanged, -1);
  s.Lyr[2].LyrBusy = 0;
  ShowLyrs(s, {3}, false); // one selected: all layers
  for (int i = 1; i <= 5; ++i) EXPECT_EQ(s.Lyr[i].DVisable, 0);
  ShowLyrs(s, {2, 4}, true); // several: those only
  EXPECT_EQ(s.Lyr[2].DVisable, 1);
  EXPECT_EQ(s.Lyr[3].DVisable, 0);
}

TEST_F(ListFixture, RenameIsRefusedOnlyByToolDialogs) {
  host.openDialogs = {"Data Table", "Layer Prorperties"};
  EXPECT_TRUE(RenameLyr(s, 2, "Roads"));
  EXPECT_EQ(host.logged.back(), "L2  to  Roads");
  host.openDialogs = {"Build Tin Surface"};
  EXPECT_FALSE(RenameLyr(s, 2, "Streets"));
  EXPECT_EQ(s.Lyr[2].LyrName, "Roads");
  EXPECT_EQ(host.logged.back(),
            " *** Please close \"Build Tin Surface\", menu(s) before Renaming Layer Name *** ");
  EXPECT_EQ(host.beeps, 1);
}
