// Selection through the window: the select box on the map with Shift and Ctrl, the
// selection popup, and the Find by Data dialog.
#include <gtest/gtest.h>

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMouseEvent>
#include <QPointingDevice>
#include <QPushButton>
#include <QTreeWidget>

#include "edit/journal_lines.h"
#include "frame/lyr_slots.h"
#include "platform/qt/qt_host.h"
#include "qt_app.h"
#include "query/selection.h"
#include "session/commands.h"
#include "session/layer_life.h"
#include "session/map_init.h"
#include "store/dbf_store.h"
#include "test_support.h"
#include "ui/find_data_dialog.h"
#include "ui/main_window.h"
#include "ui/map_widget.h"
#include "view/map_draw.h"

using namespace velmora;

namespace {

using velmora::test::App;

struct AppFirst {
  AppFirst() { App(); }
};

struct SelectTools : ::testing::Test, AppFirst {
  QPointingDevice mouse{"test mouse",
                        1,
                        QInputDevice::DeviceType::Mouse,
                        QPointingDevice::PointerType::Generic,
                        QInputDevice::Capability::Position,
                        1,
                        3};
  QtHost host;
  Session s{host};
  MainWindow w{s, host};
  std::string dir = test::TempDir("select tools");
  int lyr = 0;

  void Exec(const std::string& line) {
    ArgStrSplit(s, line);
    ArgStrExecute(s);
  }
  // Points 1 .. 5 at (5k, 5k) with a name and a number, and the view at 0.1 units a pixel.
  void SetUp() override {
    MapInit(s);
    w.resize(1200, 900);
    w.show();
    const std::string q = QuotedPath(dir + "wells.shp");
    Exec("MAKE LAYER " + q + " AS POINT");
    Exec("ADD FIELD " + q + " name C 10 0");
    Exec("ADD FIELD " + q + " depth N 8 2");
    Exec("OPEN LAYER " + q);
    const char* names[] = {"north", "south", "east", "west", "North"};
    for (int k = 1; k <= 5; ++k)
      Exec("ADD FEATURE " + q + " 0 " + std::to_string(5 * k) + " " + std::to_string(5 * k) +
           " name=" + names[k - 1] + " depth=" + std::to_string(k * 10));
    lyr = FindLyrByFile(s, dir + "wells.shp");
    ASSERT_EQ(lyr, 1);
    s.ActiveLyr = lyr;
    s.MapView.ViewW = 600, s.MapView.ViewH = 600;
    s.MapView.MapLeft = 0, s.MapView.MapTop = 50, s.MapView.MapFactor = 0.1;
    s.MapView.MapRight = 60, s.MapView.MapBottom = -10;
    MapDraw(s, 0, 1, nullptr, {});
  }
  void TearDown() override {
    if (auto* d = w.findChild<QWidget*>("Find by Data")) d->close();
    CloseAllLyrs(s);
    test::DropDefaultDevices();
  }
  static QPoint P(double X, double Y) {
    return QPoint(int(std::lround(X * 10)), int(std::lround((50 - Y) * 10)));
  }
  void Send(QEvent::Type type, double X, double Y, Qt::MouseButton b, Qt::MouseButtons held,
            Qt::KeyboardModifiers k) {
    MapWidget* m = w.Map();
    QMouseEvent e(type, P(X, Y), m->mapToGlobal(P(X, Y)), b, held, k, &mouse);
    QApplication::sendEvent(m, &e);
  }
  void Box(double x1, double y1, double x2, double y2, Qt::KeyboardModifiers k = {}) {
    Send(QEvent::MouseButtonPress, x1, y1, Qt::LeftButton, Qt::LeftButton, k);
    Send(QEvent::MouseMove, x2, y2, Qt::NoButton, Qt::LeftButton, k);
    Send(QEvent::MouseButtonRelease, x2, y2, Qt::LeftButton, Qt::NoButton, k);
  }
  std::vector<int> Selected() {
    std::vector<int> out;
    for (int r = 1; r <= s.Lyr[lyr].Shp.RecCount; ++r)
      if (IsSelected(s, lyr, r)) out.push_back(r);
    return out;
  }
};

TEST_F(SelectTools, BoxOnTheMapWithShiftAndCtrl) {
  auto* tool = w.findChild<QAction*>("SelectBox");
  ASSERT_NE(tool, nullptr);
  tool->trigger();
  EXPECT_EQ(s.MapView.MapTool, 7);
  Box(3, 17, 17, 3);
  EXPECT_EQ(Selected(), (std::vector<int>{1, 2, 3}));
  Box(18, 27, 27, 18, Qt::ShiftModifier);
  EXPECT_EQ(Selected(), (std::vector<int>{1, 2, 3, 4, 5}));
  Box(8, 17, 17, 8, Qt::ControlModifier);
  EXPECT_EQ(Selected(), (std::vector<int>{1, 4, 5}));
  Box(10, 10, 10, 10); // a click on the second point
  EXPECT_EQ(Selected(), std::vector<int>{2});
}

TEST_F(SelectTools, PopupOfTheSelectBoxInvertsAndClears) {
  w.findChild<QAction*>("SelectBox")->trigger();
  Box(3, 12, 12, 3);
  Send(QEvent::MouseButtonPress, 30, 30, Qt::RightButton, Qt::RightButton, {});
  QMenu* menu = w.Map()->Popup();
  ASSERT_NE(menu, nullptr);
  EXPECT_EQ(menu->objectName(), "mnuSelection");
  auto* invert = menu->findChild<QAction*>("mnuInvertSelection");
  ASSERT_NE(invert, nullptr);
  EXPECT_TRUE(menu->findChild<QAction*>("mnuCopySelectedFeaturesTo")->isEnabled());
  invert->trigger();
  menu->close();
  EXPECT_EQ(Selected(), (std::vector<int>{3, 4, 5}));
  Send(QEvent::MouseButtonPress, 30, 30, Qt::RightButton, Qt::RightButton, {});
  menu = w.Map()->Popup();
  menu->findChild<QAction*>("mnuClearSelection")->trigger();
  menu->close();
  EXPECT_TRUE(Selected().empty());
}

TEST_F(SelectTools, FindByDataDialogFindsAndListsUniqueValues) {
  w.RunSelection("mnuFindByData");
  auto* d = w.findChild<FindDataDialog*>("Find by Data");
  ASSERT_NE(d, nullptr);
  EXPECT_TRUE(d->isVisible());
  auto* fields = d->findChild<QListWidget*>("LstFld");
  const int name = FindField(s, lyr, "name"), depth = FindField(s, lyr, "depth");
  ASSERT_EQ(fields->count(), s.Lyr[lyr].Dbf.DbfFieldCount + 1);
  EXPECT_EQ(fields->item(0)->text(), "None");
  fields->setCurrentRow(name);
  d->findChild<QListWidget*>("LstRel")->setCurrentRow(0); // Like
  d->findChild<QLineEdit*>("TxtVal")->setText("north");
  d->findChild<QPushButton*>("cmdFind")->click();
  EXPECT_EQ(Selected(), (std::vector<int>{1, 5}));
  d->findChild<QCheckBox*>("Mcase")->setChecked(true);
  d->findChild<QPushButton*>("cmdFind")->click();
  EXPECT_EQ(Selected(), std::vector<int>{1});
  EXPECT_EQ(d->findChild<QLabel*>("txtFunc")->text(),
            "1 Features have been Selected in Layer wells.shp");

  fields->setCurrentRow(depth);
  d->findChild<QLineEdit*>("TxtVal")->clear();
  d->findChild<QPushButton*>("cmdUnique")->click();
  auto* unique = d->findChild<QTreeWidget*>("LstUnq");
  ASSERT_EQ(unique->topLevelItemCount(), 5);
  EXPECT_EQ(unique->topLevelItem(0)->text(1).toDouble(), 10);
  EXPECT_EQ(unique->topLevelItem(4)->text(1).toDouble(), 50);
  // A click on a value puts it into the value box; "   >=" finds from there.
  emit unique->itemClicked(unique->topLevelItem(3), 1);
  EXPECT_EQ(d->findChild<QLineEdit*>("TxtVal")->text().toDouble(), 40);
  d->findChild<QListWidget*>("LstRel")->setCurrentRow(4);
  d->findChild<QPushButton*>("cmdFind")->click();
  EXPECT_EQ(Selected(), (std::vector<int>{4, 5}));
}

} // namespace
