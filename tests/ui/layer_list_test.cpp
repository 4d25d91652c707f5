// The main window over real layers: the layer list's reorder, rename and check box, the
// tool buttons, and the map that the window shows against the headless rendering.
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QImage>
#include <fstream>

#include "frame/busy.h"
#include "platform/qt/qt_canvas.h"
#include "platform/qt/qt_host.h"
#include "qt_app.h"
#include "session/layer_life.h"
#include "session/start_session.h"
#include "test_support.h"
#include "ui/layer_list_widget.h"
#include "ui/main_window.h"
#include "ui/map_widget.h"
#include "view/gestures.h"
#include "view/map_tools.h"

using namespace velmora;

namespace {

using velmora::test::App;

struct AppFirst {
  AppFirst() { App(); }
};

// A layer made by GDAL from WKT rows.
std::string Ogr(const std::string& dir, const std::string& name,
                const std::vector<std::string>& wkts) {
  return test::GdalLayer(dir, name, wkts);
}

// Message boxes answer themselves.
struct QuietHost : QtHost {
  MsgAnswer reply = MsgAnswer::Cancel; // to questions with three buttons
  MsgAnswer MsgBox(const std::string&, const std::string&, MsgButtons b, MsgAnswer dflt) override {
    return b == MsgButtons::YesNoCancel ? reply : dflt;
  }
};

struct ListTest : ::testing::Test, AppFirst {
  QuietHost host;
  Session s{host};
  MainWindow w{s, host};
  std::string dir = test::TempDir("winlist");
  ~ListTest() override { CloseAllLyrs(s); }

  QAction* Act(const char* name) { return w.findChild<QAction*>(name); }
  LayerListWidget* List() { return w.LayerList(); }
  QStringList Items() {
    QStringList out;
    for (int i = 0; i < List()->count(); ++i) out << List()->item(i)->text();
    return out;
  }
  void AddThree() {
    for (const char* n : {"a", "b", "c"}) AddShape(s, Ogr(dir, n, {"POINT (1 1)"}), false);
  }
  bool Logged(const std::string& m) { return s.CommandBar.find(m) != std::string::npos; }
};

} // namespace

TEST_F(ListTest, MoveUpAndDownReorderLayersAndSelection) {
  AddThree();
  ASSERT_EQ(Items(), (QStringList{"a.shp", "b.shp", "c.shp"}));
  EXPECT_EQ(s.ActiveLyr, 3); // the new last item is selected
  Act("mnuMoveUp")->trigger();
  EXPECT_EQ(Items(), (QStringList{"a.shp", "c.shp", "b.shp"}));
  EXPECT_EQ(s.Lyr[2].LyrName, "c.shp");
  EXPECT_EQ(List()->SelectedLyrs(), std::vector<int>{2});
  EXPECT_EQ(s.ActiveLyr, 2);
  Act("mnuMoveUp")->trigger();
  Act("mnuMoveUp")->trigger(); // at the top: nothing
  EXPECT_EQ(Items(), (QStringList{"c.shp", "a.shp", "b.shp"}));
  // Two selected move down together, walking from the bottom.
  List()->SelectLyrs({1, 2});
  Act("mnuMoveDown")->trigger();
  EXPECT_EQ(Items(), (QStringList{"b.shp", "c.shp", "a.shp"}));
  EXPECT_EQ(List()->SelectedLyrs(), (std::vector<int>{2, 3}));
}

TEST_F(ListTest, RenameIsRefusedWhileAToolDialogIsOpen) {
  AddThree();
  QAction* convert = nullptr;
  for (QAction* a : w.findChildren<QAction*>())
    if (a->text() == "Convert Vector and Raster Layer Coordinates System...") convert = a;
  ASSERT_NE(convert, nullptr);
  convert->trigger();
  List()->item(0)->setText("roads");
  EXPECT_EQ(s.Lyr[1].LyrName, "a.shp");
  EXPECT_EQ(List()->item(0)->text(), "a.shp"); // the label goes back
  EXPECT_TRUE(Logged(" *** Please close \"Convert Layer Coordinates System\", menu(s) before "
                     "Renaming Layer Name *** "));
  for (QWidget* d : QApplication::topLevelWidgets())
    if (d != &w) d->close();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  List()->item(0)->setText("roads");
  EXPECT_EQ(s.Lyr[1].LyrName, "roads");
  EXPECT_TRUE(Logged("a.shp  to  roads"));
}

TEST_F(ListTest, HidingABusyLayerPutsTheCheckBack) {
  AddThree();
  LyrLock(s, 2, true, "Build Tin Surface");
  List()->item(1)->setCheckState(Qt::Unchecked);
  EXPECT_EQ(List()->item(1)->checkState(), Qt::Checked);
  EXPECT_EQ(s.Lyr[2].DVisable, 1);
  LyrLock(s, 2, false, "");
  List()->item(1)->setCheckState(Qt::Unchecked);
  EXPECT_EQ(s.Lyr[2].DVisable, 0);
  // Hide All with one selected acts on every layer.
  List()->SelectLyrs({1});
  Act("mnuHideAll")->trigger();
  for (int i = 0; i < 3; ++i) EXPECT_EQ(List()->item(i)->checkState(), Qt::Unchecked);
  Act("mnuShowAll")->trigger();
  EXPECT_EQ(s.Lyr[2].DVisable, 1);
}

TEST_F(ListTest, ToolButtonsFollowTheSession) {
  // The no-layers state.
  for (const char* n : {"ZoomIn", "ZoomOut", "Pan", "FullExtent", "ZoomPrevious", "ZoomNext"})
    EXPECT_FALSE(Act(n)->isEnabled()) << n;
  AddShape(s, Ogr(dir, "a", {"POINT (0 0)", "POINT (10 10)"}), false);
  App().processEvents(); // the toolbar follows a shown view
  EXPECT_TRUE(Act("ZoomIn")->isEnabled());
  EXPECT_TRUE(Act("ZoomIn")->isChecked()); // the first layer presses zoom in
  EXPECT_FALSE(Act("ZoomPrevious")->isEnabled());
  Act("Pan")->trigger();
  EXPECT_EQ(s.MapView.MapTool, kToolPan);
  EXPECT_EQ(s.View.MapToolKeep, kToolPan);
  EXPECT_TRUE(Act("Pan")->isChecked());
  EXPECT_FALSE(Act("ZoomIn")->isChecked());
  Act("ZoomOut")->trigger();
  EXPECT_EQ(s.MapView.MapTool, kToolZoomOut);
  EXPECT_EQ(s.View.MapToolKeep, kToolZoomOut);
  // A zoom recorded in the history lights Zoom Previous; stepping back lights Zoom Next.
  double f = s.MapView.MapFactor;
  ToolGesture(s, 10, 10, 10, 10); // a click of zoom out
  App().processEvents();
  EXPECT_GT(s.MapView.MapFactor, f);
  EXPECT_TRUE(Act("ZoomPrevious")->isEnabled());
  Act("ZoomPrevious")->trigger();
  App().processEvents();
  EXPECT_DOUBLE_EQ(s.MapView.MapFactor, f);
  EXPECT_FALSE(Act("ZoomPrevious")->isEnabled());
  EXPECT_TRUE(Act("ZoomNext")->isEnabled());
  EXPECT_EQ(s.MapView.MapTool, kToolZoomOut); // back to the chosen tool
}

TEST_F(ListTest, TheMapIsDrawnIntoTheWindowAfterAnAdd) {
  AddShape(s, Ogr(dir, "land", {"POLYGON ((0 0,0 10,10 10,10 0,0 0))"}), false);
  const QImage& img = w.Map()->Image();
  ASSERT_EQ(img.width(), s.MapView.ViewW);
  ASSERT_EQ(img.height(), s.MapView.ViewH);
  QColor fill = QtCanvas::ToQColor(s.Lyr[1].CFillColor[0]);
  // The full extent puts the square in the middle with a margin of white around it.
  EXPECT_EQ(img.pixelColor(img.width() / 2, img.height() / 2), fill);
  EXPECT_EQ(img.pixelColor(2, 2), QColor(Qt::white));
  // A hidden layer leaves the map white.
  List()->item(0)->setCheckState(Qt::Unchecked);
  EXPECT_EQ(w.Map()->Image().pixelColor(img.width() / 2, img.height() / 2), QColor(Qt::white));
}

TEST_F(ListTest, TheWindowShowsWhatTheHeadlessRenderingDraws) {
  // The first layer holds the others' extent: the window zooms to it, the rendering to all.
  std::string lines = Ogr(dir, "lines", {"LINESTRING (-5 -5,15 12)", "LINESTRING (0 12,15 0)"});
  std::string land =
      Ogr(dir, "land", {"POLYGON ((0 0,0 10,10 10,10 0,0 0),(2 2,4 2,4 4,2 4,2 2))"});
  std::string pts = Ogr(dir, "pts", {"POINT (12 1)", "POINT (3 3)"});
  std::string lst = dir + "three.lst";
  test::WriteFile(lst,
                  "OPEN LAYER " + lines + "\nOPEN LAYER " + land + "\nOPEN LAYER " + pts + "\n");
  StartSession(s, {lst});
  ASSERT_EQ(s.LyrCount, 3);
  const QImage& img = w.Map()->Image();
  const int W = img.width(), H = img.height();
  std::string out = dir + "render.png";
  int status = 0;
  test::RunCmd(std::string("QT_QPA_PLATFORM=offscreen '") + VELMORA_BINARY + "' --render '" + out +
                   "' --size " + std::to_string(W) + "x" + std::to_string(H) + " '" + lst + "'",
               &status);
  ASSERT_EQ(status, 0);
  QImage rendered(QString::fromStdString(out));
  ASSERT_EQ(rendered.size(), img.size());
  // Colours are random per session; what is drawn where must agree pixel for pixel.
  int differ = 0, drawn = 0;
  for (int y = 0; y < H; ++y)
    for (int x = 0; x < W; ++x) {
      bool a = img.pixelColor(x, y) != QColor(Qt::white);
      bool b = rendered.pixelColor(x, y) != QColor(Qt::white);
      differ += a != b;
      drawn += a;
    }
  EXPECT_GT(drawn, W * H / 10);
  EXPECT_EQ(differ, 0);
}

TEST_F(ListTest, CloseProjectEmptiesTheWindow) {
  AddThree();
  s.ProjFile = dir + "towns.qmt";
  w.SyncUi();
  EXPECT_EQ(w.windowTitle(), "towns.qmt : Velmora GIS");
  Act("mnuCloseProject")->trigger(); // Cancel: nothing happens
  EXPECT_EQ(List()->count(), 3);
  host.reply = MsgAnswer::No;
  Act("mnuCloseProject")->trigger();
  App().processEvents();
  EXPECT_EQ(List()->count(), 0);
  EXPECT_EQ(w.windowTitle(), "Velmora GIS");
  EXPECT_FALSE(Act("ZoomIn")->isEnabled());
  EXPECT_FALSE(Act("mnuRemoveLayer")->isEnabled());
  EXPECT_TRUE(Logged("Close Project " + dir + "towns.qmt"));
  const QImage& img = w.Map()->Image();
  EXPECT_EQ(img.pixelColor(img.width() / 2, img.height() / 2), QColor(Qt::white));
}
