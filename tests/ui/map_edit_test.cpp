// Editing on the window's map with the mouse: the editing tools on the toolbar, a polygon
// drawn, a vertex dragged, inserted and deleted through the popup, Escape, the map buffer
// left alone during a drag; and the same edits replayed from their journal lines.
#include <gtest/gtest.h>

#include <QAction>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPointingDevice>
#include <fstream>

#include "edit/editor.h"
#include "edit/journal_lines.h"
#include "frame/lyr_slots.h"
#include "platform/qt/qt_host.h"
#include "qt_app.h"
#include "session/commands.h"
#include "session/layer_life.h"
#include "session/map_init.h"
#include "session/undo.h"
#include "store/shp_store.h"
#include "test_support.h"
#include "ui/main_window.h"
#include "ui/map_widget.h"
#include "view/map_draw.h"

using namespace velmora;

namespace {

using velmora::test::App;

struct AppFirst {
  AppFirst() { App(); }
};

struct MapEdit : ::testing::Test, AppFirst {
  // Events carry devices of the test's own: the platform's default ones would outlive the
  // application object and fail at exit.
  QPointingDevice mouse{"test mouse",
                        1,
                        QInputDevice::DeviceType::Mouse,
                        QPointingDevice::PointerType::Generic,
                        QInputDevice::Capability::Position,
                        1,
                        3};
  QInputDevice keyboard{"test keyboard", 2, QInputDevice::DeviceType::Keyboard};
  QtHost host;
  Session s{host};
  MainWindow w{s, host};
  std::string dir = test::TempDir("map edit");
  int lyr = 0;

  void Exec(const std::string& line) {
    ArgStrSplit(s, line);
    ArgStrExecute(s);
  }
  // A polygon layer with the square (10,10)-(20,20), saved, and the window's view set to
  // 0.1 units a pixel from (0, 50).
  void SetUp() override {
    MapInit(s);
    w.resize(1200, 900);
    w.show();
    const std::string q = QuotedPath(dir + "parcels.shp");
    Exec("MAKE LAYER " + q + " AS POLYGON");
    Exec("OPEN LAYER " + q);
    Exec("ADD FEATURE " + q + " 0 10 10");
    for (const char* v : {"10 20", "20 20", "20 10", "10 10"})
      Exec("ADD VERTEX " + q + " 1 0 " + v);
    Exec("SAVE LAYER " + q);
    lyr = FindLyrByFile(s, dir + "parcels.shp");
    ASSERT_EQ(lyr, 1);
    View();
  }
  void TearDown() override {
    CloseAllLyrs(s);
    test::DropDefaultDevices();
  }
  void View() {
    s.MapView.ViewW = 600, s.MapView.ViewH = 600; // the buffer follows
    s.MapView.MapLeft = 0, s.MapView.MapTop = 50, s.MapView.MapFactor = 0.1;
    s.MapView.MapRight = s.MapView.ViewW * 0.1;
    s.MapView.MapBottom = 50 - s.MapView.ViewH * 0.1;
    MapDraw(s, 0, 1, nullptr, {});
  }
  static QPoint P(double X, double Y) {
    return QPoint(int(std::lround(X * 10)), int(std::lround((50 - Y) * 10)));
  }
  MapWidget* map() { return w.Map(); }
  void Tool(const char* name) {
    auto* a = w.findChild<QAction*>(name);
    ASSERT_NE(a, nullptr) << name;
    a->trigger();
  }
  void Send(QEvent::Type type, double X, double Y, Qt::MouseButton b, Qt::MouseButtons held,
            Qt::KeyboardModifiers k) {
    QMouseEvent e(type, P(X, Y), map()->mapToGlobal(P(X, Y)), b, held, k, &mouse);
    QApplication::sendEvent(map(), &e);
  }
  void Move(double X, double Y, Qt::MouseButtons b = Qt::NoButton, Qt::KeyboardModifiers k = {}) {
    Send(QEvent::MouseMove, X, Y, Qt::NoButton, b, k);
  }
  void Press(double X, double Y, Qt::MouseButton b = Qt::LeftButton, Qt::KeyboardModifiers k = {}) {
    Send(QEvent::MouseButtonPress, X, Y, b, b, k);
  }
  void Release(double X, double Y, Qt::MouseButton b = Qt::LeftButton,
               Qt::KeyboardModifiers k = {}) {
    Send(QEvent::MouseButtonRelease, X, Y, b, Qt::NoButton, k);
  }
  // A double click as the platform sends it: press, release, double click, release.
  void DoubleClick(double X, double Y) {
    Press(X, Y);
    Release(X, Y);
    Send(QEvent::MouseButtonDblClick, X, Y, Qt::LeftButton, Qt::LeftButton, {});
    Release(X, Y);
  }
  void Key(Qt::Key key) {
    QKeyEvent e(QEvent::KeyPress, key, Qt::NoModifier, 0, 0, 0, QString(), false, 1, &keyboard);
    QApplication::sendEvent(map(), &e);
  }
  void Click(double X, double Y, Qt::KeyboardModifiers k = {}) {
    Move(X, Y);
    Press(X, Y, Qt::LeftButton, k);
    Release(X, Y, Qt::LeftButton, k);
  }
  void Drag(double X1, double Y1, double X2, double Y2, Qt::KeyboardModifiers k = {}) {
    Move(X1, Y1);
    Press(X1, Y1, Qt::LeftButton, k);
    Move((X1 + X2) / 2, (Y1 + Y2) / 2, Qt::LeftButton, k);
    Move(X2, Y2, Qt::LeftButton, k);
    Release(X2, Y2, Qt::LeftButton, k);
  }
  XY V(int f, int v) const {
    return s.Lyr[lyr].Shp.ShpRecs.at(size_t(f)).Part(0).PartPoints()[size_t(v)];
  }
  std::vector<std::vector<XY>> Records() const {
    std::vector<std::vector<XY>> out;
    for (int f = 1; f <= s.Lyr[lyr].Shp.RecCount; ++f) {
      const ShpRecord& r = s.Lyr[lyr].Shp.ShpRecs[size_t(f)];
      std::vector<XY> pts;
      if (r.ShapeType != 0)
        for (const ShpPart& p : r.Parts())
          for (int i = 0; i < p.PartCount; ++i) pts.push_back(p.PartPoints()[size_t(i)]);
      out.push_back(pts);
    }
    return out;
  }
};

bool Same(const std::vector<std::vector<XY>>& a, const std::vector<std::vector<XY>>& b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (a[i].size() != b[i].size()) return false;
    for (size_t k = 0; k < a[i].size(); ++k)
      if (std::fabs(a[i][k].X - b[i][k].X) > 1e-9 || std::fabs(a[i][k].Y - b[i][k].Y) > 1e-9)
        return false;
  }
  return true;
}

TEST_F(MapEdit, TheEditingToolsAreOnTheToolbar) {
  for (const char* name : {"Measure", "EditFeature", "CreateFeature"}) {
    auto* a = w.findChild<QAction*>(name);
    ASSERT_NE(a, nullptr) << name;
    EXPECT_TRUE(a->isEnabled());
  }
  Tool("CreateFeature");
  EXPECT_EQ(s.MapView.MapTool, 12);
  EXPECT_EQ(s.View.MapToolKeep, 12);
  EXPECT_EQ(map()->cursor().shape(), Qt::CrossCursor);
  Tool("EditFeature");
  EXPECT_EQ(s.MapView.MapTool, 11);
}

TEST_F(MapEdit, APolygonDrawnWithTheMouse) {
  s.ActiveLyr = lyr;
  Tool("CreateFeature");
  Click(30, 30);
  Move(31, 35);
  Click(30, 40);
  Move(38, 41);
  Move(40, 40);
  DoubleClick(40, 40);
  ASSERT_EQ(s.Lyr[lyr].Shp.RecCount, 2);
  EXPECT_FALSE(s.Edit.Drawing);
  const auto recs = Records();
  ASSERT_EQ(recs[1].size(), 4u);
  EXPECT_EQ(recs[1][3].X, 30);
  EXPECT_EQ(recs[1][2].Y, 40);
  // Undo through the window's action takes the vertices back one by one.
  auto* undo = w.findChild<QAction*>("mnuUndo");
  ASSERT_TRUE(undo->isEnabled());
  for (int i = 0; i < 4; ++i) undo->trigger();
  EXPECT_EQ(s.Lyr[lyr].Shp.ShpRecs[2].ShapeType, 0);
}

TEST_F(MapEdit, DragReplayAndTheBufferUntouchedUntilRelease) {
  Tool("EditFeature");
  Click(15, 15);
  ASSERT_EQ(s.Edit.EditHit.HitKind, 3);
  Move(20, 20);
  EXPECT_EQ(s.MapView.MapTool, 15);
  EXPECT_EQ(map()->cursor().shape(), Qt::SizeBDiagCursor);
  // A drag step moves the vertex; the map buffer stays as it was until the release.
  const QImage before = map()->Image().copy();
  Press(20, 20);
  Move(24, 26, Qt::LeftButton);
  EXPECT_EQ(V(1, 2).X, 24);
  EXPECT_TRUE(map()->Image() == before);
  Release(24, 26);
  EXPECT_FALSE(map()->Image() == before);
  // Insert a vertex on the segment (10,20)-(24,26) by a double click.
  Move(17, 23);
  ASSERT_EQ(s.MapView.MapTool, 14);
  DoubleClick(17, 23);
  EXPECT_EQ(s.MapView.MapTool, 15);
  EXPECT_NEAR(V(1, 2).X, 17, 0.05);
  // Move the square's first corner with Alt: squared at the last corner (20,10).
  Move(10, 10);
  ASSERT_EQ(s.MapView.MapTool, 15);
  Drag(10, 10, 11, 10.8, Qt::AltModifier);
  const auto mouse = Records();
  ASSERT_EQ(s.UndoCount - 1, 3);

  // The same edits from their journal lines, on the layer as it was saved.
  std::string lines;
  for (int i = 1; i < s.UndoCount; ++i) lines += s.UndoList[size_t(i)].RedoLine + "\n";
  CloseAllLyrs(s);
  UndoClear(s);
  Exec("OPEN LAYER " + QuotedPath(dir + "parcels.shp"));
  lyr = FindLyrByFile(s, dir + "parcels.shp");
  ASSERT_EQ(lyr, 1);
  std::ofstream(dir + "replay.lst") << lines;
  RunLstFile(s, dir + "replay.lst");
  EXPECT_TRUE(Same(Records(), mouse));
}

TEST_F(MapEdit, ThePopupOfAVertexDeletesItAndEscapeCancelsADrag) {
  Tool("EditFeature");
  Click(15, 15);
  Move(20, 10);
  ASSERT_EQ(s.MapView.MapTool, 15);
  Press(20, 10, Qt::RightButton);
  QMenu* menu = map()->Popup();
  ASSERT_NE(menu, nullptr);
  EXPECT_EQ(menu->objectName(), "mnuEdit");
  auto* del = menu->findChild<QAction*>("mnuDeleteVertex");
  ASSERT_NE(del, nullptr);
  EXPECT_TRUE(del->isEnabled());
  EXPECT_EQ(menu->findChild<QAction*>("mnuDivideFeature")->text(), "Start Dividing Polygon");
  EXPECT_EQ(menu->findChild<QAction*>("mnuLength")->text(), "Perimeter");
  del->trigger();
  menu->close();
  EXPECT_EQ(s.Lyr[lyr].Shp.ShpRecs[1].Part(0).PartCount, 4);

  Move(10, 20);
  ASSERT_EQ(s.MapView.MapTool, 15);
  Press(10, 20);
  Move(5, 25, Qt::LeftButton);
  EXPECT_EQ(V(1, 1).X, 5);
  Key(Qt::Key_Escape);
  EXPECT_EQ(V(1, 1).X, 10);
  Release(5, 25);
  EXPECT_EQ(V(1, 1).X, 10);
  EXPECT_EQ(s.UndoCount - 1, 1) << "only the delete";
}

} // namespace
