#include <gtest/gtest.h>

#include "view/gestures.h"
#include "view/map_tools.h"
#include "view/navigation.h"

using namespace velmora;

namespace {

// A session with one visible layer whose extent is set by hand.
void OneLayer(Session& s, double l, double b, double r, double t) {
  s.Lyr.Resize(1);
  s.LyrCount = 1;
  LyrRec& L = s.Lyr[1];
  L.LyrKind = 1;
  L.DVisable = 1;
  L.Shp.RecCount = 1;
  L.Shp.ShpHeader.Xmin = l, L.Shp.ShpHeader.Ymin = b;
  L.Shp.ShpHeader.Xmax = r, L.Shp.ShpHeader.Ymax = t;
}

void View(Session& s, int w, int h) {
  s.MapView.ViewW = w;
  s.MapView.ViewH = h;
}

void Gesture(Session& s, int tool, double x1, double y1, double x2, double y2) {
  s.MapView.MapTool = tool;
  s.MapView.DragX1 = x1, s.MapView.DragY1 = y1, s.MapView.DragX2 = x2, s.MapView.DragY2 = y2;
  MapApply(s);
}

} // namespace

TEST(MapTools, FullExtentLeavesTwentyPercentMarginOnTheLimitingSide) {
  Session s;
  OneLayer(s, 0, 0, 100, 50);
  View(s, 200, 100);
  MapFull(s);
  const MapViewRec& v = s.MapView;
  EXPECT_DOUBLE_EQ(v.MapFactor, 0.625);
  EXPECT_DOUBLE_EQ(v.MapLeft, -12.5);
  EXPECT_DOUBLE_EQ(v.MapRight, 112.5);
  EXPECT_DOUBLE_EQ(v.MapBottom, -6.25);
  EXPECT_DOUBLE_EQ(v.MapTop, 56.25);
  EXPECT_DOUBLE_EQ(s.View.ClipLeft, -12.5);
  // World to pixel and back.
  EXPECT_DOUBLE_EQ(PixX(s, 0), 20);
  EXPECT_DOUBLE_EQ(PixY(s, 50), 10);
  EXPECT_DOUBLE_EQ(WorldX(s, 20), 0);
}

TEST(MapTools, LayerWithExchangedExtentsCountsTheSame) {
  Session s;
  OneLayer(s, 100, 50, 0, 0);
  View(s, 200, 100);
  MapFull(s);
  EXPECT_DOUBLE_EQ(s.MapView.MapLeft, -12.5);
  EXPECT_DOUBLE_EQ(s.MapView.MapTop, 56.25);
}

TEST(MapTools, ZoomInClickHalvesAndZoomOutGrowsByTheViewOnEachSide) {
  Session s;
  OneLayer(s, 0, 0, 100, 50);
  View(s, 200, 100);
  MapFull(s);
  Gesture(s, kToolZoomIn, 100, 50, 100, 50);
  EXPECT_DOUBLE_EQ(s.MapView.MapFactor, 0.3125);
  EXPECT_DOUBLE_EQ((s.MapView.MapLeft + s.MapView.MapRight) / 2, 50);
  EXPECT_DOUBLE_EQ((s.MapView.MapTop + s.MapView.MapBottom) / 2, 25);
  // A click widens to the view on each side of it: twice the window.
  Gesture(s, kToolZoomOut, 100, 50, 100, 50);
  EXPECT_DOUBLE_EQ(s.MapView.MapFactor, 0.625);
  // A box of the whole view widens to three times the window.
  Gesture(s, kToolZoomOut, 0, 0, 200, 100);
  EXPECT_DOUBLE_EQ(s.MapView.MapFactor, 1.875);
}

TEST(MapTools, ZoomInAtTheLimitChangesNothing) {
  Session s;
  OneLayer(s, 0, 0, 1, 1);
  View(s, 100, 100);
  s.View.PixPerMeter = 3780;
  MapFull(s);
  double left = s.MapView.MapLeft, factor = s.MapView.MapFactor;
  for (int i = 0; i < 200 && s.MapView.MapFactor > 0; ++i) {
    factor = s.MapView.MapFactor;
    left = s.MapView.MapLeft;
    Gesture(s, kToolZoomIn, 10, 10, 10, 10);
    if (s.MapView.MapFactor == factor) break;
  }
  EXPECT_GT(s.View.PixPerMeter * factor, 0.0001);
  EXPECT_EQ(s.MapView.MapFactor, factor);
  EXPECT_EQ(s.MapView.MapLeft, left); // not even the centre moves
}

TEST(MapTools, OnePointLayerGetsTheFloorFactor) {
  Session s;
  OneLayer(s, 5, 5, 5, 5);
  View(s, 100, 100);
  MapFull(s);
  EXPECT_DOUBLE_EQ(s.MapView.MapFactor, 0.00015 / s.View.PixPerMeter);
  EXPECT_DOUBLE_EQ((s.MapView.MapLeft + s.MapView.MapRight) / 2, 5);
}

TEST(MapTools, EmptyDataBoxIsTheViewWidthSquare) {
  Session s;
  s.Lyr.Resize(1);
  s.LyrCount = 1; // a layer that doesn't count: not visible
  View(s, 100, 80);
  MapTools(s, kToolFit, 1, 100, 80, 0, 0, 0, 0, 0, 0, 0, 0);
  // The box (0, 0) .. (100, 100) fitted into 100 by 80: factor 1.25.
  EXPECT_DOUBLE_EQ(s.MapView.MapFactor, 1.25);
}

TEST(MapTools, PanKeepsTheFactorAndPickMakesABoxAroundAClick) {
  Session s;
  OneLayer(s, 0, 0, 100, 50);
  View(s, 200, 100);
  MapFull(s);
  double f = s.MapView.MapFactor, scale = s.View.MapScale;
  Gesture(s, kToolPan, -10, 0, 190, 100);
  EXPECT_DOUBLE_EQ(s.MapView.MapFactor, f);
  EXPECT_DOUBLE_EQ(s.MapView.MapLeft, -12.5 - 10 * f);
  EXPECT_DOUBLE_EQ(s.View.MapScale, scale);

  MapTools(s, kToolIdentify, f, 200, 100, s.MapView.MapLeft, s.MapView.MapTop, 0, 0, 50, 50, 50,
           50);
  EXPECT_DOUBLE_EQ(s.View.PickRight - s.View.PickLeft, 4 * f);
  EXPECT_DOUBLE_EQ(s.View.PickX, s.MapView.MapLeft + 50 * f);
}

TEST(MapTools, ScaleUsesTheShorterWorldSideAndDegreesCountAsMetres) {
  Session s;
  OneLayer(s, 0, 0, 1000, 500);
  View(s, 1000, 500);
  s.MapUnit = 1;
  s.MeasUnit = 1;
  SetFitSides(s, 0, 500, 1000, 0);
  MapFit(s);
  // 500 pixels at 15 twips a pixel are 0.1322 m of screen: 1 : 3780.
  EXPECT_DOUBLE_EQ(s.View.MapScale, 3780);
  s.MapUnit = 0;
  CalcMapScale(s);
  EXPECT_DOUBLE_EQ(s.View.MapScale, 3780 * 111000.0);

  s.MapUnit = 1;
  SetMapScale(s, 10000);
  EXPECT_NEAR(s.View.MapScale, 10000, 1);
  EXPECT_NEAR((s.MapView.MapLeft + s.MapView.MapRight) / 2, 500, 1e-9);
}

TEST(ViewHistory, PreviousNextAndANewViewDropsTheTail) {
  Session s;
  OneLayer(s, 0, 0, 100, 50);
  View(s, 200, 100);
  MapFull(s);
  double full = s.MapView.MapFactor;
  Gesture(s, kToolZoomIn, 100, 50, 100, 50);
  Gesture(s, kToolZoomIn, 100, 50, 100, 50);
  EXPECT_EQ(s.ViewCount, 3);
  EXPECT_TRUE(s.View.ZoomPrevEnabled);
  EXPECT_FALSE(s.View.ZoomNextEnabled);
  ZoomPrevious(s);
  ZoomPrevious(s);
  EXPECT_EQ(s.ViewPos, 0);
  EXPECT_DOUBLE_EQ(s.MapView.MapFactor, full);
  EXPECT_FALSE(s.View.ZoomPrevEnabled);
  ZoomNext(s);
  EXPECT_EQ(s.ViewPos, 1);
  EXPECT_DOUBLE_EQ(s.MapView.MapFactor, full / 2);
  Gesture(s, kToolZoomOut, 100, 50, 100, 50);
  EXPECT_EQ(s.ViewCount, 3);
  EXPECT_FALSE(s.View.ZoomNextEnabled);
  // The same window again is not recorded.
  MapRepaint(s);
  ViewPush(s);
  EXPECT_EQ(s.ViewCount, 3);
}

TEST(MapTools, StatusTextFormats) {
  Session s;
  OneLayer(s, 0, 0, 1, 1);
  s.MapUnit = 1;
  s.MapZone = 33;
  s.View.MapScale = 1234567;
  std::string t = WorldStatusText(s, 1234.5, -0.25);
  EXPECT_NE(t.find("  Map Unit = Meters 33 North"), std::string::npos);
  EXPECT_NE(t.find("  Lon or X  = 1,234.500000000"), std::string::npos);
  EXPECT_NE(t.find("  Lat or Y   = -0.250000000"), std::string::npos);
  EXPECT_NE(t.find("  Scale      = 1 : 1,234,567"), std::string::npos);
  s.Locale.DecimalSep = ',';
  EXPECT_NE(WorldStatusText(s, 1234.5, 0).find("1.234,500000000"), std::string::npos);
}

TEST(Gestures, DragPansWithTheImageAndArrowsPanAQuarter) {
  Session s;
  OneLayer(s, 0, 0, 100, 50);
  View(s, 200, 100);
  MapFull(s);
  double f = s.MapView.MapFactor, left = s.MapView.MapLeft, top = s.MapView.MapTop;
  // Dragging the image 20 pixels right and 10 down shows what lay left and above.
  PanByPixels(s, 20, 10);
  EXPECT_DOUBLE_EQ(s.MapView.MapLeft, left - 20 * f);
  EXPECT_DOUBLE_EQ(s.MapView.MapTop, top + 10 * f);
  EXPECT_EQ(s.MapView.MapTool, 1);
  EXPECT_FALSE(ArrowKeyPan(s, 39)); // no active layer
  s.ActiveLyr = 1;
  left = s.MapView.MapLeft;
  EXPECT_TRUE(ArrowKeyPan(s, 39));
  EXPECT_DOUBLE_EQ(s.MapView.MapLeft, left + 50 * f);
  // A box drawn from its bottom right corner zooms in as well.
  s.MapView.MapTool = kToolZoomIn;
  ToolGesture(s, 150, 75, 50, 25);
  EXPECT_DOUBLE_EQ(s.MapView.MapFactor, f / 2);
}
