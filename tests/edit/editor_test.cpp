// The map editor driven as the window drives it, by presses, moves, releases and double
// clicks in pixels: creating, picking, dragging with Shift, Alt and Ctrl, inserting,
// Escape, and undo and redo of each.
#include <stdexcept>

#include "edit/edit_ops.h"
#include "edit/editor.h"
#include "edit_fixture.h"

using namespace velmora;
using namespace velmora::test;

namespace {

using V = std::vector<std::array<double, 4>>;

struct Surface : EditSurface {
  int clears = 0, features = 0, segments = 0, rects = 0;
  std::vector<int> cursors;
  PopupMenu popup;
  bool throwOnFeature = false;
  void ClearOverlay() override { ++clears; }
  void OverlayRect(int, int, int, int) override { ++rects; }
  void OverlaySegment(double, double, double, double) override { ++segments; }
  void OverlayFeature(int, int) override {
    if (throwOnFeature) throw std::runtime_error("drawing failed");
    ++features;
  }
  void SetToolCursor(int tool) override { cursors.push_back(tool); }
  void ShowPopup(const PopupMenu& m) override { popup = m; }
};

struct Editor : EditFixture {
  Surface surf;
  // A click at a world point: press and release, with a move there first.
  void Click(double X, double Y, int keys = 0) {
    EditPicMove(s, surf, 0, keys, Px(X), Py(Y));
    EditPicDown(s, surf, kLeftButton, keys, Px(X), Py(Y));
    EditPicUp(s, surf, kLeftButton, keys, Px(X), Py(Y));
  }
  void Drag(double X1, double Y1, double X2, double Y2, int keys = 0) {
    EditPicMove(s, surf, 0, keys, Px(X1), Py(Y1));
    EditPicDown(s, surf, kLeftButton, keys, Px(X1), Py(Y1));
    EditPicMove(s, surf, kLeftButton, keys, Px((X1 + X2) / 2), Py((Y1 + Y2) / 2));
    EditPicMove(s, surf, kLeftButton, keys, Px(X2), Py(Y2));
    EditPicUp(s, surf, kLeftButton, keys, Px(X2), Py(Y2));
  }
  // Picks the feature at a world point with the edit tool.
  void Pick(double X, double Y) {
    ChooseEditTool(s, 11);
    Click(X, Y);
  }
  const MenuEntry& Entry(const std::string& name) {
    static MenuEntry none;
    const MenuEntry* e = surf.popup.Find(name);
    return e ? *e : none;
  }
  void RightClick(double X, double Y) {
    EditPicDown(s, surf, kRightButton, 0, Px(X), Py(Y));
    EditPicUp(s, surf, kRightButton, 0, Px(X), Py(Y));
  }
};

TEST_F(Editor, APolygonDrawnClickByClickAndFinishedByADoubleClick) {
  const int lyr = Layer("parcels", "POLYGON", {});
  s.ActiveLyr = lyr;
  ChooseEditTool(s, 12);
  Click(10, 10);
  EditPicMove(s, surf, 0, 0, Px(12), Py(15)); // the rubber vertex follows the pointer
  EXPECT_EQ(Get(lyr, 1).Parts[0].size(), 2u);
  EXPECT_EQ(Get(lyr, 1).Parts[0][1], (std::array<double, 4>{12, 15, 0, 0}));
  EXPECT_GT(surf.features, 0);
  Click(10, 20);
  Click(20, 20);
  EditPicDblClick(s, surf);
  EXPECT_FALSE(s.Edit.Drawing);
  EXPECT_EQ(Get(lyr, 1).Parts[0],
            (V{{10, 10, 0, 0}, {10, 20, 0, 0}, {20, 20, 0, 0}, {10, 10, 0, 0}}));
  EXPECT_EQ(s.Edit.EditHit.HitFeature, 1);
  EXPECT_EQ(s.UndoCount - 1, 4) << "three vertices and the closing one";
  EXPECT_EQ(s.UndoList[1].RedoLine, "ADD Vertex " + QuotedPath(Path(lyr)) + " 1 0  10 10");
  const Shape drawn = Get(lyr, 1);
  for (int i = 0; i < 4; ++i) UndoRun(s);
  EXPECT_EQ(Get(lyr, 1).Type, 0);
  for (int i = 0; i < 4; ++i) RedoRun(s);
  EXPECT_EQ(Get(lyr, 1), drawn);
}

TEST_F(Editor, ADoubleClickOnTheFirstVertexLeavesALineOfOne) {
  const int lyr = Layer("roads", "POLYLINE", {});
  s.ActiveLyr = lyr;
  ChooseEditTool(s, 12);
  Click(5, 5);
  EditPicDblClick(s, surf);
  EXPECT_EQ(Get(lyr, 1).Parts[0], (V{{5, 5, 0, 0}}));
}

TEST_F(Editor, PointsAreCompleteAtOnceAndRefusedInALayerThatCantBeEdited) {
  const int lyr = Layer("wells", "POINT", {});
  s.ActiveLyr = lyr;
  ChooseEditTool(s, 12);
  Click(5, 5);
  Click(6, 7);
  EXPECT_EQ(s.Lyr[lyr].Shp.RecCount, 2);
  EXPECT_FALSE(s.Edit.Drawing);
  EXPECT_EQ(Get(lyr, 2).Parts[0], (V{{6, 7, 0, 0}}));
  s.Lyr[lyr].EEditable = 0;
  Click(8, 8);
  EXPECT_EQ(s.Lyr[lyr].Shp.RecCount, 2);
  EXPECT_FALSE(s.Edit.MouseDown);
}

TEST_F(Editor, ACircleFromItsCentreAndAPointOnIt) {
  const int lyr = Layer("ponds", "POLYGON", {});
  s.ActiveLyr = lyr;
  ChooseEditTool(s, 12);
  RunMenuEntry(s, surf, "mnuAddNewCircleActiveLayer");
  EXPECT_TRUE(s.Edit.DrawCircle);
  Click(50, 50);
  Click(53, 54);
  EXPECT_FALSE(s.Edit.Drawing);
  EXPECT_FALSE(s.Edit.DrawCircle);
  const Shape circle = Get(lyr, 1);
  ASSERT_EQ(circle.Parts[0].size(), 73u) << "5 degree steps for a radius of 5, closed";
  EXPECT_EQ(circle.Parts[0].front(), (std::array<double, 4>{55, 50, 0, 0}));
  EXPECT_EQ(circle.Parts[0].back(), circle.Parts[0].front());
  EXPECT_EQ(LastLog(), "5Drawing Circle in Active Layer with Raduies = ");
  EXPECT_EQ(s.UndoCount - 1, 1);
  UndoRun(s);
  EXPECT_EQ(Get(lyr, 1).Type, 0);
  RedoRun(s);
  EXPECT_EQ(Get(lyr, 1), circle);
}

TEST_F(Editor, PickThenHoverThenDragARingsFirstVertex) {
  const int lyr = Layer("parcels", "POLYGON", {{kSquare}});
  Pick(15, 15);
  EXPECT_EQ(s.Edit.EditHit.HitKind, 3);
  EXPECT_EQ(s.View.EditFeature, 1);
  EditPicMove(s, surf, 0, 0, Px(10), Py(10));
  EXPECT_EQ(s.MapView.MapTool, 15);
  ASSERT_FALSE(surf.cursors.empty());
  EXPECT_EQ(surf.cursors.back(), 15);
  Drag(10, 10, 8, 7);
  EXPECT_EQ(Vertex(lyr, 1, 0, 0).X, 8);
  EXPECT_EQ(Vertex(lyr, 1, 0, 4).Y, 7) << "the closing vertex moves along";
  const std::string q = QuotedPath(Path(lyr));
  EXPECT_EQ(s.UndoList[1].RedoLine,
            "MoveTo Vertex " + q + " 1 0 0 8 7 0 0 MoveTo Vertex " + q + " 1 0 4 8 7 0 0");
  EXPECT_EQ(s.UndoList[1].UndoLine,
            "MoveTo Vertex " + q + " 1 0 0 10 10 0 0 MoveTo Vertex " + q + " 1 0 4 10 10 0 0");
  UndoRun(s);
  EXPECT_EQ(Get(lyr, 1).Parts[0][0], (std::array<double, 4>{10, 10, 0, 0}));
  EXPECT_EQ(Get(lyr, 1).Parts[0][4], (std::array<double, 4>{10, 10, 0, 0}));
  RedoRun(s);
  EXPECT_EQ(Vertex(lyr, 1, 0, 4).X, 8);
}

TEST_F(Editor, ShiftMovesASharedVertexOfTwoLayersAndSnapsOnRelease) {
  const int a = Layer("a", "POLYGON", {{kSquare}});
  const int b = Layer("b", "POLYLINE", {{{{20, 20}, {30, 30}}}, {{{40, 40}, {45, 41}}}});
  Pick(15, 15);
  EditPicMove(s, surf, 0, 0, Px(20), Py(20));
  ASSERT_EQ(s.MapView.MapTool, 15);
  // Dragged with Shift onto the vertex (40, 40) of the other line, released a little off.
  Drag(20, 20, 40.1, 39.9, kShiftKey);
  EXPECT_EQ(Vertex(a, 1, 0, 2).X, 40);
  EXPECT_EQ(Vertex(a, 1, 0, 2).Y, 40);
  EXPECT_EQ(Vertex(b, 1, 0, 0).X, 40) << "the shared vertex went along";
  UndoRun(s);
  EXPECT_EQ(Vertex(a, 1, 0, 2).X, 20);
  EXPECT_EQ(Vertex(b, 1, 0, 0).Y, 20);
}

TEST_F(Editor, ShiftGathersNoMoreThanTheLimit) {
  std::vector<std::vector<Ring>> lines;
  for (int i = 0; i < 130; ++i) lines.push_back({{{50, 50}, {60, 40 + i * 0.1}}});
  const int lyr = Layer("star", "POLYLINE", lines);
  Pick(50, 50);
  EditPicMove(s, surf, 0, 0, Px(50), Py(50));
  ASSERT_EQ(s.MapView.MapTool, 15);
  EditPicDown(s, surf, kLeftButton, kShiftKey, Px(50), Py(50));
  EXPECT_EQ(s.Edit.MoveList.size(), 100u);
  EXPECT_EQ(LastLog(), " *** Only 100 vertexes can be moved by shift Snap, Use 'Move Settings' "
                       "and Ctrl to move unlimited number of vertexes *** ");
  EditPicMove(s, surf, kLeftButton, kShiftKey, Px(52), Py(52));
  EditPicUp(s, surf, kLeftButton, 0, Px(52), Py(52));
  int moved = 0;
  for (int f = 1; f <= 130; ++f) moved += Vertex(lyr, f, 0, 0).X == 52;
  EXPECT_EQ(moved, 100);
}

TEST_F(Editor, AltSquaresTheCorner) {
  const int lyr = Layer("l", "POLYLINE", {{{{0, 0}, {10, 0}, {11, 10}}}});
  Pick(10.5, 5);
  EditPicMove(s, surf, 0, 0, Px(11), Py(10));
  ASSERT_EQ(s.MapView.MapTool, 15);
  Drag(11, 10, 11.5, 9, kAltKey);
  EXPECT_NEAR(Vertex(lyr, 1, 0, 2).X, 10, 1e-9);
  EXPECT_NEAR(Vertex(lyr, 1, 0, 2).Y, std::hypot(1.5, 9), 1e-9);
}

TEST_F(Editor, CtrlMovesTheScopeOfTheSettings) {
  const int lyr =
      Layer("l", "POLYLINE", {{{{0, 0}, {10, 0}}, {{0, 5}, {10, 5}}}, {{{20, 20}, {30, 30}}}});
  s.Edit.MoveMode = 2; // the feature
  Pick(5, 0);
  EditPicMove(s, surf, 0, 0, Px(10), Py(0));
  Drag(10, 0, 12, 1, kCtrlKey);
  EXPECT_EQ(Get(lyr, 1).Parts[1][0], (std::array<double, 4>{2, 6, 0, 0}));
  EXPECT_EQ(Vertex(lyr, 2, 0, 0).X, 20);
  UndoRun(s);
  EXPECT_EQ(Get(lyr, 1).Parts[1][0], (std::array<double, 4>{0, 5, 0, 0}));
}

TEST_F(Editor, EscapePutsADraggedVertexBack) {
  const int lyr = Layer("l", "POLYLINE", {{{{0, 0}, {10, 0}}}});
  Pick(5, 0);
  EditPicMove(s, surf, 0, 0, Px(10), Py(0));
  EditPicDown(s, surf, kLeftButton, 0, Px(10), Py(0));
  EditPicMove(s, surf, kLeftButton, 0, Px(15), Py(5));
  EXPECT_EQ(Vertex(lyr, 1, 0, 1).X, 15);
  EXPECT_TRUE(EditPicKeyDown(s, surf, 27));
  EXPECT_EQ(Vertex(lyr, 1, 0, 1).X, 10);
  EditPicUp(s, surf, kLeftButton, 0, Px(15), Py(5));
  EXPECT_EQ(Vertex(lyr, 1, 0, 1).X, 10);
  EXPECT_EQ(s.UndoCount, 1);
}

TEST_F(Editor, DraggingASegmentMovesTheFeatureAndAClickChangesNothing) {
  const int lyr = Layer("parcels", "POLYGON", {{kSquare}});
  Pick(15, 15);
  EditPicMove(s, surf, 0, 0, Px(15), Py(20));
  ASSERT_EQ(s.MapView.MapTool, 14);
  Click(15, 20);
  EXPECT_EQ(s.UndoCount, 1);
  Drag(15, 20, 18, 24);
  EXPECT_EQ(Get(lyr, 1).Parts[0][0], (std::array<double, 4>{13, 14, 0, 0}));
  EXPECT_EQ(s.UndoList[1].RedoLine,
            "MoveLen Vertex " + QuotedPath(Path(lyr)) + " 1 0 15 20 18 24 0 0");
  UndoRun(s);
  EXPECT_EQ(Get(lyr, 1).Parts[0][0], (std::array<double, 4>{10, 10, 0, 0}));
  // Inside the polygon: tool 13 drags it too.
  EditPicMove(s, surf, 0, 0, Px(15), Py(15));
  ASSERT_EQ(s.MapView.MapTool, 13);
  Drag(15, 15, 14, 15);
  EXPECT_EQ(Get(lyr, 1).Parts[0][0], (std::array<double, 4>{9, 10, 0, 0}));
}

TEST_F(Editor, ADoubleClickOnASegmentInsertsAVertexUnderThePointer) {
  const int lyr = Layer("l", "POLYLINE", {{{{0, 0}, {10, 0}}}});
  Pick(5, 0);
  EditPicMove(s, surf, 0, 0, Px(4), Py(0));
  ASSERT_EQ(s.MapView.MapTool, 14);
  EditPicDown(s, surf, kLeftButton, 0, Px(4), Py(0));
  EditPicUp(s, surf, kLeftButton, 0, Px(4), Py(0));
  EditPicDblClick(s, surf);
  EXPECT_EQ(Get(lyr, 1).Parts[0], (V{{0, 0, 0, 0}, {4, 0, 0, 0}, {10, 0, 0, 0}}));
  EXPECT_EQ(s.MapView.MapTool, 15);
  EXPECT_EQ(s.Edit.EditHit.HitVertex, 1);
  EXPECT_EQ(LastLog(), "Insert Vertex 4 , 0 in layer l.shp");
}

TEST_F(Editor, AFailureInAHandlerEndsItAndKeepsTheTool) {
  Layer("l", "POLYLINE", {{{{0, 0}, {10, 0}}}});
  Pick(5, 0);
  EditPicMove(s, surf, 0, 0, Px(10), Py(0));
  EditPicDown(s, surf, kLeftButton, 0, Px(10), Py(0));
  surf.throwOnFeature = true;
  EditPicMove(s, surf, kLeftButton, 0, Px(12), Py(0));
  EXPECT_EQ(s.MapView.MapTool, 15);
  surf.throwOnFeature = false;
  EditPicUp(s, surf, kLeftButton, 0, Px(12), Py(0));
}

TEST_F(Editor, TheMeasureToolLogsTheFreeDistance) {
  Layer("l", "POLYLINE", {{{{0, 0}, {10, 0}}}});
  s.MapUnit = 1; // a projected map measured in metres
  ChooseEditTool(s, 10);
  Drag(1, 1, 4, 5);
  EXPECT_EQ(LastLog(), "Free Distance =   5  Meter(s)");
  EXPECT_GT(surf.segments, 0);
}

TEST_F(Editor, TheEditMenuFitsItsEntriesToTheType) {
  const int lines = Layer("l", "POLYLINE", {{{{0, 0}, {10, 0}, {20, 0}}, {{0, 30}, {5, 30}}}});
  s.MapUnit = 1; // a projected map: lengths as they stand
  Pick(10, 0);
  EditPicMove(s, surf, 0, 0, Px(10), Py(0));
  RightClick(10, 0);
  EXPECT_EQ(surf.popup.Name, "mnuEdit");
  EXPECT_EQ(Entry("mnuDivideFeature").Caption, "Divide Polyline");
  EXPECT_TRUE(Entry("mnuDivideFeature").Enabled);
  EXPECT_EQ(Entry("mnuCombineFeatures").Caption, "Combine Polyline");
  EXPECT_EQ(Entry("mnuLength").Caption, "Length");
  EXPECT_FALSE(Entry("mnuArea").Enabled);
  EXPECT_TRUE(Entry("mnuDeleteVertex").Enabled);
  EXPECT_FALSE(Entry("mnuInsertVertex").Enabled);
  EXPECT_TRUE(Entry("mnuBringParttoFront").Enabled);
  EXPECT_FALSE(Entry("mnuSendParttoBack").Enabled);
  EXPECT_EQ(s.Edit.MenuHit.HitVertex, 1);
  EditPicMove(s, surf, 0, 0, Px(20), Py(0));
  RightClick(20, 0);
  EXPECT_EQ(Entry("mnuDivideFeature").Caption, "Can Not Divide Polyline at Edges");
  EXPECT_FALSE(Entry("mnuDivideFeature").Enabled);
  EditPicMove(s, surf, 0, 0, Px(15), Py(0));
  RightClick(15, 0);
  EXPECT_EQ(Entry("mnuDivideFeature").Caption, "Divide Feature");
  EXPECT_TRUE(Entry("mnuInsertVertex").Enabled);
  RunMenuEntry(s, surf, "mnuLength");
  EXPECT_EQ(LastLog(),
            "The Total Length of feature '1' =   25  Meter(s)       ,The Length of Part '0' =   "
            "20  Meter(s)");
  (void)lines;

  const int gons = Layer("g", "POLYGON", {{kSquare}});
  Pick(15, 15);
  EditPicMove(s, surf, 0, 0, Px(10), Py(10));
  RightClick(10, 10);
  EXPECT_EQ(Entry("mnuDivideFeature").Caption, "Start Dividing Polygon");
  EXPECT_EQ(Entry("mnuCombineFeatures").Caption, "Start Combining Polygon");
  EXPECT_EQ(Entry("mnuLength").Caption, "Perimeter");
  EXPECT_TRUE(Entry("mnuArea").Enabled);
  RunMenuEntry(s, surf, "mnuArea");
  EXPECT_EQ(LastLog(),
            "The Total Area of feature '1' =   100  Square Meter(s)      ,The Area of Part '0' "
            "=   100  Square Meter(s)");
  RunMenuEntry(s, surf, "mnuDivideFeature");
  EditPicMove(s, surf, 0, 0, Px(10), Py(20));
  RightClick(10, 20);
  EXPECT_EQ(Entry("mnuDivideFeature").Caption, "Stop Dividing Polygon");
  EditPicMove(s, surf, 0, 0, Px(20), Py(20));
  RightClick(20, 20);
  EXPECT_EQ(Entry("mnuDivideFeature").Caption, "Complete Dividing Polygon");
  RunMenuEntry(s, surf, "mnuDivideFeature");
  EXPECT_EQ(s.Lyr[gons].Shp.RecCount, 2);

  const int pts = Layer("p", "POINT", {{{{50, 50}}}});
  const int mps = Layer("m", "MULTIPOINTS", {{{{60, 60}, {61, 61}}}});
  Pick(50, 50);
  EditPicMove(s, surf, 0, 0, Px(50), Py(50));
  RightClick(50, 50);
  EXPECT_EQ(Entry("mnuDivideFeature").Caption, "Can not Divide Point");
  EXPECT_FALSE(Entry("mnuDivideFeature").Enabled);
  EXPECT_EQ(Entry("mnuCombineFeatures").Caption, "Can not Combine Point");
  EXPECT_FALSE(Entry("mnuLength").Enabled);
  Pick(60, 60);
  EditPicMove(s, surf, 0, 0, Px(60), Py(60));
  RightClick(60, 60);
  EXPECT_EQ(Entry("mnuDivideFeature").Caption, "Can not Divide MultiPoints");
  EXPECT_EQ(Entry("mnuCombineFeatures").Caption, "Can not Combine MultiPoints");
  (void)pts, (void)mps;
}

TEST_F(Editor, TheViewMenuOfTheCreateToolFollowsTheDrawing) {
  const int lyr = Layer("roads", "POLYLINE", {{{{0, 0}, {10, 0}}}});
  s.ActiveLyr = lyr;
  ChooseEditTool(s, 12);
  RightClick(50, 50);
  EXPECT_EQ(surf.popup.Name, "mnuView");
  EXPECT_FALSE(Entry("mnuFinishDrawing").Enabled);
  EXPECT_FALSE(Entry("mnuAddNewVertexEditingPart").Enabled) << "nothing picked";
  EXPECT_TRUE(Entry("mnuAddNewCircleActiveLayer").Enabled);
  Click(30, 30);
  RightClick(40, 40);
  EXPECT_TRUE(Entry("mnuFinishDrawing").Enabled);
  EXPECT_FALSE(Entry("mnuAddNewPartEditingFeature").Enabled);
  EXPECT_FALSE(Entry("mnuAddNewCircleActiveLayer").Checked);
  RunMenuEntry(s, surf, "mnuFinishDrawing");
  EXPECT_FALSE(s.Edit.Drawing);
  RightClick(40, 40);
  EXPECT_TRUE(Entry("mnuAddNewVertexEditingPart").Enabled);
  EXPECT_TRUE(Entry("mnuAddNewPartEditingFeature").Enabled);
  // More vertices at the end of the picked part.
  s.Edit.MenuHit = s.Edit.EditHit;
  RunMenuEntry(s, surf, "mnuAddNewVertexEditingPart");
  Click(35, 30);
  EditPicDblClick(s, surf);
  EXPECT_EQ(Get(lyr, 2).Parts[0], (V{{30, 30, 0, 0}, {35, 30, 0, 0}}));
}

TEST_F(Editor, RotateAndScaleAboutThePivotFromTheMenu) {
  const int lyr = Layer("l", "POLYLINE", {{{{10, 10}, {20, 10}}}});
  Pick(15, 10);
  EditPicMove(s, surf, 0, 0, Px(10), Py(10));
  RightClick(10, 10);
  RunMenuEntry(s, surf, "mnuSetPivotPoint");
  EXPECT_EQ(LastLog(), "Set Pivot Point to Lon or X = 10.000000000 , Lat or Y = 10.000000000");
  EditPicMove(s, surf, 0, 0, Px(20), Py(10));
  RightClick(20, 10);
  EXPECT_EQ(Entry("mnuRotateScale").Caption, "Start Rotate-Scale");
  RunMenuEntry(s, surf, "mnuRotateScale");
  // The end point: a vertex hit at (10, 30) of another feature... the pointer on the map.
  s.Edit.EditHit.HitX = 10, s.Edit.EditHit.HitY = 30;
  RightClick(20, 10);
  s.Edit.MenuHit.HitX = 10, s.Edit.MenuHit.HitY = 30;
  EXPECT_EQ(Entry("mnuRotateScale").Caption, "Complete Rotate-Scale");
  host.answers = {MsgAnswer::Yes};
  RunMenuEntry(s, surf, "mnuRotateScale");
  EXPECT_NEAR(Vertex(lyr, 1, 0, 1).X, 10, 1e-9);
  EXPECT_NEAR(Vertex(lyr, 1, 0, 1).Y, 30, 1e-9);
  EXPECT_EQ(LastLog(),
            "Rotate-Scale Feature 1 in l.shp   Angle = 90   ScaleX = 100 %   ScaleY = 200 % ");
  EXPECT_EQ(host.boxes.back(),
            " Scale with Rotate Message Box |  Would you like to Scale With Rotate  ?   ");
  UndoRun(s);
  UndoRun(s);
  EXPECT_NEAR(Vertex(lyr, 1, 0, 1).X, 20, 1e-9);
  EXPECT_NEAR(Vertex(lyr, 1, 0, 1).Y, 10, 1e-9);
}

} // namespace

namespace {

TEST_F(Editor, UndoAndAnotherToolFinishADrawingFirst) {
  const int lyr = Layer("roads", "POLYLINE", {});
  s.ActiveLyr = lyr;
  ChooseEditTool(s, 12);
  Click(1, 1);
  Click(2, 2);
  EditPicMove(s, surf, 0, 0, Px(5), Py(3)); // the rubber vertex
  ASSERT_EQ(Get(lyr, 1).Parts[0].size(), 3u);
  UndoRun(s); // finishes (the rubber vertex goes), then takes the last vertex back
  EXPECT_FALSE(s.Edit.Drawing);
  EXPECT_EQ(Get(lyr, 1).Parts[0], (V{{1, 1, 0, 0}}));
  ChooseEditTool(s, 12);
  Click(10, 10);
  Click(12, 12);
  EditPicMove(s, surf, 0, 0, Px(15), Py(3));
  ChooseEditTool(s, 11);
  EXPECT_FALSE(s.Edit.Drawing);
  EXPECT_EQ(Get(lyr, 2).Parts[0], (V{{10, 10, 0, 0}, {12, 12, 0, 0}}));
}

} // namespace
