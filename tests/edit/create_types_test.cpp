// Control points (type 99) and frames (type 100) drawn with two clicks, a control point's
// row following its vertices, a new part drawn into a picked feature, and lengths and
// areas of a map in degrees measured in metres.
#include "coords/utm_transform.h"
#include "edit/draw_ops.h"
#include "edit/edit_ops.h"
#include "edit/measure_ops.h"
#include "edit/move_ops.h"
#include "edit_fixture.h"
#include "store/dbf_store.h"

using namespace velmora;
using namespace velmora::test;

namespace {

using V = std::vector<std::array<double, 4>>;

struct CreateTypes : EditFixture {
  std::string Cell(int lyr, int row, const char* field) {
    ReadDbfRec(s, lyr, row);
    std::string v = GetFieldValue(s, lyr, FindField(s, lyr, field));
    while (!v.empty() && v.front() == ' ') v.erase(v.begin());
    while (!v.empty() && v.back() == ' ') v.pop_back();
    return v;
  }
};

TEST_F(CreateTypes, AControlPointWritesItsRowAndFollowsItsVertices) {
  const int lyr = Layer("ctl", "POLYLINE", {});
  s.Lyr[lyr].Shp.ShpType = 99;
  NewDbfControl(s, lyr, dir + "ctl.dbf");
  s.ActiveLyr = lyr;
  ASSERT_TRUE(DrawClick(s, 1.5, 2.5, 0));
  EXPECT_TRUE(s.Edit.Drawing);
  EXPECT_EQ(Cell(lyr, 0, "ID"), "1");
  EXPECT_EQ(std::stod(Cell(lyr, 0, "SRC_X")), 1.5);
  EXPECT_EQ(std::stod(Cell(lyr, 0, "DIS_Y")), 2.5);
  DrawRelease(s);
  DrawFollow(s, 3, 3);
  ASSERT_TRUE(DrawClick(s, 7, 8, 0));
  EXPECT_FALSE(s.Edit.Drawing) << "two vertices complete it";
  EXPECT_EQ(Get(lyr, 1).Parts[0], (V{{1.5, 2.5, 0, 0}, {7, 8, 0, 0}}));
  EXPECT_EQ(std::stod(Cell(lyr, 0, "DIS_X")), 7);
  EXPECT_EQ(std::stod(Cell(lyr, 0, "SRC_X")), 1.5);
  // Moving the destination writes DIS_X and DIS_Y.
  MoveVertexTo(s, lyr, 1, 0, 1, 9.25, 10, kMoveXY, 0, 0);
  EXPECT_EQ(std::stod(Cell(lyr, 0, "DIS_X")), 9.25);
  EXPECT_EQ(std::stod(Cell(lyr, 0, "DIS_Y")), 10);
}

TEST_F(CreateTypes, AFrameFromTwoCorners) {
  const int lyr = Layer("mask", "MASKLAYOUT", {});
  s.ActiveLyr = lyr;
  ASSERT_TRUE(DrawClick(s, 10, 30, 0));
  DrawRelease(s);
  DrawFollow(s, 20, 20);
  ASSERT_TRUE(DrawClick(s, 40, 5, 0));
  EXPECT_FALSE(s.Edit.Drawing);
  EXPECT_EQ(Get(lyr, 1).Parts[0],
            (V{{10, 30, 0, 0}, {40, 30, 0, 0}, {40, 5, 0, 0}, {10, 5, 0, 0}, {10, 30, 0, 0}}));
  EXPECT_EQ(s.UndoCount - 1, 1);
  UndoRun(s);
  EXPECT_EQ(Get(lyr, 1).Type, 0);
  RedoRun(s);
  EXPECT_EQ(Get(lyr, 1).Type, 100);
}

TEST_F(CreateTypes, ANewPartDrawnIntoThePickedFeature) {
  const int lyr = Layer("l", "POLYLINE", {{{{0, 0}, {1, 0}}}});
  s.Edit.MenuHit = {2, 1, 0, lyr, 3, 1, 0, 1, 0, 0, 1, 0};
  ASSERT_TRUE(AddNewPartInEditingFeature(s));
  EXPECT_EQ(s.MapView.MapTool, 12);
  DrawFollow(s, 5, 5);
  ASSERT_TRUE(DrawClick(s, 5, 5, 0));
  DrawRelease(s);
  DrawFollow(s, 6, 5);
  ASSERT_TRUE(DrawClick(s, 6, 6, 0));
  DrawRelease(s);
  FinishDrawing(s);
  EXPECT_EQ(Get(lyr, 1).Parts.size(), 2u);
  EXPECT_EQ(Get(lyr, 1).Parts[1], (V{{5, 5, 0, 0}, {6, 6, 0, 0}}));
  UndoRun(s);
  UndoRun(s);
  EXPECT_TRUE(Get(lyr, 1).Parts[1].empty());
  EXPECT_EQ(Get(lyr, 1).Parts[0].size(), 2u);
}

TEST_F(CreateTypes, DegreesAreMeasuredInTheUtmZoneOfTheFirstVertex) {
  // MapInit: the map in degrees, the measure in metres of WGS 84.
  const int lyr = Layer("l", "POLYLINE", {{{{30, 10}, {30.01, 10}, {30.01, 10.01}}}});
  ASSERT_NE(s.MapUnit, s.MeasUnit);
  const XY a = LatLonToUTM(s, 10, 30, 36, false, 23), b = LatLonToUTM(s, 10, 30.01, 36, false, 23),
           c = LatLonToUTM(s, 10.01, 30.01, 36, false, 23);
  const double want = std::hypot(b.X - a.X, b.Y - a.Y) + std::hypot(c.X - b.X, c.Y - b.Y);
  FeatureMeasure m = MeasureLength(s, lyr, 1, 0);
  EXPECT_NEAR(m.Total, want, 1e-6);
  EXPECT_NEAR(m.Total, 2200, 20);
  EXPECT_NEAR(FreeDistance(s, 30, 10, 30.01, 10), std::hypot(b.X - a.X, b.Y - a.Y), 1e-6);
  // Points have no length.
  const int pts = Layer("p", "POINT", {{{{1, 1}}}});
  EXPECT_EQ(MeasureLength(s, pts, 1, 0).Total, 0);
  EXPECT_EQ(MeasureArea(s, pts, 1, 0).Total, 0);
}

} // namespace
