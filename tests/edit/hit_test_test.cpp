// Hit tests: vertex before segment, polygons and their holes by the ray's parity, the
// three modes, points and multipoints, picking across layers and images' extents.
#include "edit/hit_test.h"
#include "edit_fixture.h"

using namespace velmora;
using namespace velmora::test;

namespace {

struct HitTests : EditFixture {
  int Test(int lyr, int f, double X, double Y, int mode = 1) {
    SetPickBox(s, Px(X), Py(Y));
    SetHitMargins(s, lyr, mode, 1);
    return HitTestFeature(s, lyr, f, 0, 0);
  }
};

TEST_F(HitTests, APixelPickBoxAroundThePointer) {
  SetPickBox(s, 100, 200);
  EXPECT_NEAR(s.View.PickLeft, 9.8, 1e-12);
  EXPECT_NEAR(s.View.PickRight, 10.2, 1e-12);
  EXPECT_NEAR(s.View.PickTop, 80.2, 1e-12);
  EXPECT_NEAR(s.View.PickX, 10, 1e-12);
  EXPECT_NEAR(s.View.PickY, 80, 1e-12);
}

TEST_F(HitTests, MarginsByToolAndLayer) {
  const int lyr = Layer("l", "POLYLINE", {{{{0, 0}, {1, 1}}}});
  s.Lyr[lyr].EVertexWidth = 5;
  s.MapView.MapTool = 11;
  SetHitMargins(s, lyr, 1, 1);
  EXPECT_DOUBLE_EQ(s.Edit.HitNow.HitVrtMargin, 0.5);
  EXPECT_EQ(s.Edit.HitNow.HitSegMargin, 0);
  s.MapView.MapTool = 14;
  SetHitMargins(s, lyr, 0, 2);
  EXPECT_EQ(s.Edit.HitNow.HitVrtMargin, 0);
  EXPECT_DOUBLE_EQ(s.Edit.HitNow.HitSegMargin, 1.0);
  s.Lyr[lyr].EEditable = 0;
  SetHitMargins(s, lyr, 1, 1);
  EXPECT_EQ(s.Edit.HitNow.HitVrtMargin, 0);
  s.MapView.MapTool = 12; // always
  SetHitMargins(s, lyr, 1, 1);
  EXPECT_DOUBLE_EQ(s.Edit.HitNow.HitVrtMargin, 0.5);
  s.MapView.MapTool = 7; // a selecting tool with vertices hidden
  SetHitMargins(s, lyr, 1, 1);
  EXPECT_EQ(s.Edit.HitNow.HitVrtMargin, 0);
  s.Lyr[lyr].DShowVrt = 1;
  SetHitMargins(s, lyr, 1, 1);
  EXPECT_DOUBLE_EQ(s.Edit.HitNow.HitVrtMargin, 0.2);
  SetHitMargins(s, lyr, 2, 3);
  EXPECT_EQ(s.Edit.HitNow.HitVrtMargin, 3);
  EXPECT_EQ(s.Edit.HitNow.HitSegMargin, 3);
}

TEST_F(HitTests, AVertexWinsOverASegmentHitFirst) {
  const int lyr = Layer("g", "POLYGON", {{kSquare}});
  s.MapView.MapTool = 14;
  // Near vertex 2 (20, 20): the segment 1-2 is met first, the vertex takes over in mode 1.
  EXPECT_EQ(Test(lyr, 1, 19.8, 20), 2);
  EXPECT_EQ(s.Edit.HitNow.HitVertex, 2);
  EXPECT_EQ(s.Edit.HitNow.HitX, 20);
  // Mode 0 stops at the segment: vertex margin 0 and the vertex outside the pick box.
  EXPECT_EQ(Test(lyr, 1, 19.5, 20, 0), 1);
  EXPECT_EQ(s.Edit.HitNow.HitVertex, 2);
  // On a segment: the index of its end vertex and the point on it.
  EXPECT_EQ(Test(lyr, 1, 15, 20.1), 1);
  EXPECT_EQ(s.Edit.HitNow.HitVertex, 2);
  EXPECT_NEAR(s.Edit.HitNow.HitX, 15, 1e-9);
  EXPECT_NEAR(s.Edit.HitNow.HitY, 20, 1e-9);
  EXPECT_EQ(s.Edit.HitNow.HitFeature, 1);
  EXPECT_EQ(s.Edit.HitNow.HitType, 5);
  // A vertical and a horizontal segment both.
  EXPECT_EQ(Test(lyr, 1, 10.1, 15), 1);
  EXPECT_EQ(s.Edit.HitNow.HitVertex, 1);
  EXPECT_EQ(Test(lyr, 1, 15, 9.9), 1);
  EXPECT_EQ(s.Edit.HitNow.HitVertex, 4);
  // Inside, outside.
  EXPECT_EQ(Test(lyr, 1, 15, 15), 3);
  EXPECT_EQ(s.Edit.HitNow.HitX, 15);
  EXPECT_EQ(Test(lyr, 1, 25, 15), 0);
  // A slanted segment.
  const int line = Layer("l", "POLYLINE", {{{{0, 0}, {30, 10}}}});
  EXPECT_EQ(Test(line, 1, 15, 5), 1);
  EXPECT_EQ(Test(line, 1, 15, 6), 0);
}

TEST_F(HitTests, AClickInAHoleHitsThroughTheHolesRing) {
  const Ring outer = {{0, 0}, {0, 30}, {30, 30}, {30, 0}, {0, 0}};
  const Ring hole = {{10, 10}, {20, 10}, {20, 20}, {10, 20}, {10, 10}};
  const int lyr = Layer("g", "POLYGON", {{outer, hole}});
  s.MapView.MapTool = 13;
  EXPECT_EQ(Test(lyr, 1, 15, 15), 3);
  EXPECT_EQ(s.Edit.HitNow.HitPart, 1) << "the last part that holds the point wins";
  EXPECT_EQ(Test(lyr, 1, 5, 5), 3);
  EXPECT_EQ(s.Edit.HitNow.HitPart, 0);
  EXPECT_EQ(Test(lyr, 1, 20, 10), 2);
  EXPECT_EQ(s.Edit.HitNow.HitPart, 1);
}

TEST_F(HitTests, PointsMultipointsAndFeaturesOutOfRange) {
  const int pts = Layer("p", "POINT", {{{{5, 5}}}});
  const int mp = Layer("m", "MULTIPOINTS", {{{{5, 5}, {8, 8}}}});
  s.MapView.MapTool = 11;
  EXPECT_EQ(Test(pts, 1, 5.3, 5), 2);
  EXPECT_EQ(s.Edit.HitNow.HitVertex, 0);
  EXPECT_EQ(Test(pts, 1, 6, 5), 0);
  EXPECT_EQ(Test(mp, 1, 8, 8.2), 2);
  EXPECT_EQ(s.Edit.HitNow.HitVertex, 1);
  EXPECT_EQ(Test(mp, 2, 5, 5), 0);
  EXPECT_EQ(Test(mp, 0, 5, 5), 0);
  EXPECT_EQ(Test(mp, -3, 5, 5), 0);
  // A deleted feature is no hit.
  DeleteRec(s, pts, 1, true);
  EXPECT_EQ(Test(pts, 1, 5, 5), 0);
}

TEST_F(HitTests, AFeatureOffTheMapIsNoHitUnlessTheMarginsAreGiven) {
  const int lyr = Layer("l", "POLYLINE", {{{{150, 150}, {160, 160}}}});
  s.MapView.MapTool = 11;
  EXPECT_EQ(Test(lyr, 1, 150, 150), 0);
  EXPECT_EQ(Test(lyr, 1, 150, 150, 2), 2);
}

TEST_F(HitTests, PickingTakesTheTopLayerAndTheNewestFeature) {
  const int top = Layer("top", "POLYLINE", {{{{0, 0}, {50, 50}}}, {{{0, 50}, {50, 0}}}});
  const int under = Layer("under", "POINT", {{{{25, 25}}}});
  (void)under;
  s.MapView.MapTool = 11;
  SetPickBox(s, Px(25), Py(25));
  EXPECT_EQ(PickLayers(s, false), 1);
  EXPECT_EQ(s.Edit.HitNow.HitLyr, top);
  EXPECT_EQ(s.Edit.HitNow.HitFeature, 2);
  // A layer that can't be edited is passed over in tool 11; Shift takes any in tool 12.
  s.Lyr[top].EEditable = 0;
  EXPECT_EQ(PickLayers(s, false), 2);
  EXPECT_EQ(s.Edit.HitNow.HitLyr, under);
  s.Lyr[under].EEditable = 0;
  EXPECT_EQ(PickLayers(s, false), 0);
  s.MapView.MapTool = 12;
  EXPECT_EQ(PickLayers(s, true), 1);
  // Hidden layers are passed over.
  s.Lyr[top].DVisable = 0;
  EXPECT_EQ(PickLayers(s, true), 2);
}

TEST_F(HitTests, AnImageLayersExtentIsKindFour) {
  const int img = Layer("img", "POLYLINE", {});
  s.Lyr[img].LyrKind = 2;
  s.Lyr[img].Shp.ShpHeader.Xmin = 10, s.Lyr[img].Shp.ShpHeader.Xmax = 40;
  s.Lyr[img].Shp.ShpHeader.Ymin = 10, s.Lyr[img].Shp.ShpHeader.Ymax = 40;
  s.MapView.MapTool = 11;
  SetPickBox(s, Px(20), Py(30));
  EXPECT_EQ(PickLayers(s, false), 4);
  EXPECT_EQ(s.Edit.HitNow.HitLyr, img);
  EXPECT_EQ(s.Edit.HitNow.HitFeature, 0);
  SetPickBox(s, Px(50), Py(30));
  EXPECT_EQ(PickLayers(s, false), 0);
}

TEST_F(HitTests, HoverSetsTheToolsOfEditing) {
  const int lyr = Layer("g", "POLYGON", {{kSquare}});
  s.MapView.MapTool = 11;
  EXPECT_EQ(HoverTest(s, Px(10), Py(10)), 11) << "nothing picked yet";
  s.Edit.EditHit = {3, 1, 0, lyr, 5, 1, 0, 0, 0, 0, 15, 15};
  EXPECT_EQ(HoverTest(s, Px(10), Py(10)), 15);
  EXPECT_EQ(s.Edit.EditHit.HitKind, 2);
  EXPECT_EQ(HoverTest(s, Px(15), Py(10)), 14);
  EXPECT_EQ(HoverTest(s, Px(15), Py(15)), 13);
  EXPECT_EQ(HoverTest(s, Px(50), Py(50)), 11);
  EXPECT_EQ(s.Edit.EditHit.HitFeature, 1) << "a miss keeps the pick";
}

} // namespace
