// The movement dialogs: frmMove by an offset and to a point, with and without the move
// settings; frmMoveSettings choosing the scope; frmRotateAngle turning about its pivot.
#include <gtest/gtest.h>

#include <QButtonGroup>
#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

#include "edit/edit_ops.h"
#include "edit/journal_lines.h"
#include "frame/lyr_slots.h"
#include "platform/qt/qt_host.h"
#include "qt_app.h"
#include "session/commands.h"
#include "session/layer_life.h"
#include "session/map_init.h"
#include "session/undo.h"
#include "test_support.h"
#include "ui/move_dialogs.h"

using namespace velmora;

namespace {

struct MoveDialogs : ::testing::Test {
  QtHost host;
  Session s{host};
  std::string dir = test::TempDir("move dialogs");
  int lyr = 0;

  void Exec(const std::string& line) {
    ArgStrSplit(s, line);
    ArgStrExecute(s);
  }
  void SetUp() override {
    test::App();
    MapInit(s);
    const std::string q = QuotedPath(dir + "l.shp");
    Exec("MAKE LAYER " + q + " AS POLYLINE");
    Exec("OPEN LAYER " + q);
    Exec("ADD FEATURE " + q + " 0 0 0");
    Exec("ADD VERTEX " + q + " 1 0 10 0");
    Exec("ADD FEATURE " + q + " 0 5 5");
    Exec("ADD VERTEX " + q + " 2 0 6 6");
    lyr = FindLyrByFile(s, dir + "l.shp");
    s.Edit.MenuHit = {2, 1, 0, lyr, 3, 1, 0, 1, 0, 0, 10, 0};
  }
  void TearDown() override {
    CloseAllLyrs(s);
    test::DropDefaultDevices();
  }
  XY V(int f, int v) { return s.Lyr[lyr].Shp.ShpRecs[size_t(f)].Part(0).PartPoints()[size_t(v)]; }
  template <class T> T* Child(QWidget& w, const char* name) {
    T* c = w.findChild<T*>(name);
    EXPECT_NE(c, nullptr) << name;
    return c;
  }
};

TEST_F(MoveDialogs, MoveDistanceMovesTheFeatureOfTheHit) {
  MoveDialog d(s, false);
  EXPECT_EQ(d.windowTitle(), "Move Distance");
  QLineEdit* x = Child<QLineEdit>(d, "Xtxt");
  QLineEdit* y = Child<QLineEdit>(d, "Ytxt");
  x->clear();
  QTest::keyClicks(x, "2a.5"); // a letter does not pass
  EXPECT_EQ(x->text(), "2.5");
  y->setText("-1");
  Child<QPushButton>(d, "Cmd1")->click();
  EXPECT_EQ(V(1, 0).X, 2.5);
  EXPECT_EQ(V(1, 1).Y, -1);
  EXPECT_EQ(V(2, 0).X, 5) << "the other feature stays";
  EXPECT_EQ(s.CommandBar.find("Move Distance Feature 1") != std::string::npos, true);
  UndoRun(s);
  EXPECT_EQ(V(1, 0).X, 0);
}

TEST_F(MoveDialogs, MoveToXYWithTheSettingsOfAllFeatures) {
  MoveSettingsDialog settings(s);
  Child<QRadioButton>(settings, "movSetOpt4")->click();
  EXPECT_EQ(s.Edit.MoveMode, 4);
  EXPECT_EQ(Child<QRadioButton>(settings, "movSetOpt4")->text(), "All Features in editing layer");
  MoveDialog d(s, true);
  EXPECT_EQ(Child<QLineEdit>(d, "Xtxt")->text(), "10");
  Child<QCheckBox>(d, "ApplymoveSettings")->setChecked(true);
  Child<QLineEdit>(d, "Xtxt")->setText("11");
  Child<QLineEdit>(d, "Ytxt")->setText("1");
  Child<QPushButton>(d, "Cmd1")->click();
  EXPECT_EQ(V(1, 1).X, 11);
  EXPECT_EQ(V(2, 0).X, 6) << "every feature of the layer by the same offset";
  EXPECT_EQ(V(2, 0).Y, 6);
  UndoRun(s);
  EXPECT_EQ(V(2, 0).X, 5);
}

TEST_F(MoveDialogs, RotateAboutThePivotOfTheDialog) {
  RotateAngleDialog d(s);
  EXPECT_EQ(Child<QLineEdit>(d, "XScaleText")->text(), "100");
  Child<QLineEdit>(d, "XPivotText")->setText("0");
  Child<QLineEdit>(d, "YPivotText")->setText("0");
  Child<QPushButton>(d, "cmd3")->click();
  Child<QLineEdit>(d, "AngleText")->setText("90");
  Child<QPushButton>(d, "cmd1")->click();
  EXPECT_NEAR(V(1, 1).X, 0, 1e-9);
  EXPECT_NEAR(V(1, 1).Y, 10, 1e-9);
  Child<QLineEdit>(d, "XScaleText")->setText("50");
  Child<QLineEdit>(d, "YScaleText")->setText("50");
  Child<QPushButton>(d, "cmd2")->click();
  EXPECT_NEAR(V(1, 1).Y, 5, 1e-9);
  EXPECT_NE(s.CommandBar.find(
                "Rotate-Scale Feature 1 in l.shp   Angle = 0   ScaleX = 50 %   ScaleY = 50 % "),
            std::string::npos);
  UndoRun(s);
  UndoRun(s);
  EXPECT_NEAR(V(1, 1).X, 10, 1e-9);
  EXPECT_NEAR(V(1, 1).Y, 0, 1e-9);
}

} // namespace
