// Picks on a layer large enough for the grid over its boxes: every feature found where it
// lies, and found again after it moved, was added or deleted.
#include "edit/hit_test.h"
#include "edit/move_ops.h"
#include "edit/pick_index.h"
#include "edit_fixture.h"

using namespace velmora;
using namespace velmora::test;

namespace {

struct PickIndex : EditFixture {
  int lyr = 0;
  // 80 by 80 short lines over the window, 1 unit apart.
  void SetUp() override {
    EditFixture::SetUp();
    lyr = Layer("many", "POLYLINE", {});
    for (int i = 0; i < 6400; ++i) {
      AddRec(s, lyr);
      const double x = 10 + (i % 80), y = 10 + (i / 80);
      AddVertex(s, lyr, i + 1, 0, x, y, 0, 0);
      AddVertex(s, lyr, i + 1, 0, x + 0.3, y + 0.2, 0, 0);
    }
    RecalcExtent(s, lyr);
    s.MapView.MapTool = 11;
  }
  int PickAt(double X, double Y) {
    SetPickBox(s, Px(X), Py(Y));
    return PickLayers(s, false) ? s.Edit.HitNow.HitFeature : 0;
  }
};

TEST_F(PickIndex, EveryFeatureIsFoundWhereItLies) {
  for (int i = 0; i < 6400; i += 37) {
    const double x = 10 + (i % 80), y = 10 + (i / 80);
    EXPECT_EQ(PickAt(x + 0.15, y + 0.1), i + 1) << i;
  }
  EXPECT_EQ(PickAt(8, 8), 0);
  EXPECT_EQ(PickAt(95, 5), 0);
  EXPECT_EQ(s.Edit.PickGrids.size(), 1u);
}

TEST_F(PickIndex, TheGridFollowsMovesAdditionsAndDeletions) {
  EXPECT_EQ(PickAt(10.15, 10.1), 1);
  MoveFeatureBy(s, lyr, 1, 80.5, 0.5, kMoveXY, 0, 0);
  EXPECT_EQ(PickAt(10.15, 10.1), 0);
  EXPECT_EQ(PickAt(90.65, 10.6), 1);
  AddRec(s, lyr);
  const int n = s.Lyr[lyr].Shp.RecCount;
  AddVertex(s, lyr, n, 0, 95, 95, 0, 0);
  AddVertex(s, lyr, n, 0, 96, 96, 0, 0);
  EXPECT_EQ(PickAt(95.5, 95.5), n);
  DeleteRec(s, lyr, n, true);
  EXPECT_EQ(PickAt(95.5, 95.5), 0);
  // A dragged box over the whole layer lists every live record.
  std::vector<int> all;
  PickCandidates(s, lyr, -1000, -1000, 1000, 1000, 0, all);
  EXPECT_EQ(all.size(), size_t(n - 1));
}

} // namespace
