// The network dialogs: a build through FrmBuildNet, then From and To picked with tool 16,
// "Run", the length and the list of lines by the chosen field, and the two dialogs
// keeping each other out.
#include <gtest/gtest.h>

#include "qt_app.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

#include "frame/lyr_slots.h"
#include "model/file_util.h"
#include "session/layer_life.h"
#include "test_support.h"
#include "ui/build_net_dialog.h"
#include "ui/net_dialog.h"
#include "view/map_tools.h"

namespace velmora {
namespace {

struct NetDialogsTest : ::testing::Test {
  test::RecordingHost host;
  Session s{host};
  std::string dir = test::TempDir("net dialogs");
  std::string shp;
  int lyr = 0;
  void SetUp() override {
    test::App();
    s.MapView.MapTarget = 1;
    // Three streets: 1 along y 0, 2 up x 50, 3 along y 100.
    shp = test::GdalLayer(
        dir, "streets",
        {"LINESTRING (0 0,100 0)", "LINESTRING (50 -10,50 110)", "LINESTRING (0 100,100 100)"},
        "-lco SHPT=ARC");
    ASSERT_FALSE(shp.empty());
    AddShape(s, shp, false);
    lyr = FindLyrByFile(s, shp);
    // One world unit a pixel, the world's y 200 at the top of the view.
    s.MapView.MapFactor = 1, s.MapView.MapLeft = 0, s.MapView.MapTop = 200;
  }
};

TEST_F(NetDialogsTest, BuildPickRunAndClear) {
  BuildNetDialog b(s, nullptr);
  b.show();
  EXPECT_EQ(b.findChild<QLineEdit*>("Tolerance")->text(), "0.01");
  b.findChild<QPushButton*>("Cmd0")->click();
  EXPECT_TRUE(FileExists(ChangeExt(shp, "net")));
  EXPECT_EQ(host.logged.back(), "Building Shortest Path NetWork for Layer streets.shp");
  b.close();

  NetDialog d(s, nullptr);
  d.show();
  auto* fld = d.findChild<QComboBox*>("cmbFld");
  ASSERT_EQ(fld->currentText(), "ID");
  d.findChild<QPushButton*>("cmdptn1")->click();
  EXPECT_EQ(s.MapView.MapTool, kToolRouteStop);
  d.InstNet(10, 200); // (10, 0) on street 1
  EXPECT_EQ(d.findChild<QLineEdit*>("TxtX1")->text(), "10");
  EXPECT_EQ(d.findChild<QLineEdit*>("TxtFld1")->text(), "1");
  d.findChild<QPushButton*>("cmdptn2")->click();
  d.InstNet(90, 100); // (90, 100) on street 3
  EXPECT_EQ(s.Net.NetStops[2].LinkFeature, 3);
  d.findChild<QPushButton*>("cmdptn3")->click();
  EXPECT_EQ(d.findChild<QLineEdit*>("TxtRoute1")->text(), "180");
  EXPECT_EQ(d.findChild<QPlainTextEdit*>("ListPath")->toPlainText(), "1\n2\n3\n");
  EXPECT_EQ(host.logged.back(), "Get Shortest Path in Layer streets.shp");
  EXPECT_EQ(s.Lyr[lyr].Net.NetRoutes.size(), 3u);
  // The exact option finds the same here.
  d.findChild<QCheckBox*>("chkExact")->setChecked(true);
  d.findChild<QPushButton*>("cmdptn3")->click();
  EXPECT_EQ(d.findChild<QLineEdit*>("TxtRoute1")->text(), "180");
  // While this dialog is open the build is refused.
  BuildNetDialog b2(s, nullptr);
  b2.findChild<QPushButton*>("Cmd0")->click();
  EXPECT_EQ(host.boxes.back(), "Close menu(s) Message Box|Please close Shortest Path menu before "
                               "Building Shortest NetWork ");
  s.MapView.MapTool = kToolRouteStop;
  s.Net.ToolBefore = kToolPan;
  d.close();
  EXPECT_EQ(s.MapView.MapTool, kToolPan);
  EXPECT_FALSE(s.Net.NetDialogOpen);
}

TEST_F(NetDialogsTest, UnbuiltLayerAsksToBuildFirst) {
  NetDialog d(s, nullptr);
  d.show();
  d.findChild<QPushButton*>("cmdptn1")->click();
  d.InstNet(10, 200);
  d.findChild<QPushButton*>("cmdptn2")->click();
  d.InstNet(90, 100);
  d.findChild<QPushButton*>("cmdptn3")->click();
  ASSERT_FALSE(host.boxes.empty());
  EXPECT_EQ(host.boxes.back(), "streets.shp : NetWork Message Box |  Please Build Network "
                               "first\r\n Before Getting Shortest Path ");
  EXPECT_EQ(d.findChild<QLineEdit*>("TxtRoute1")->text(), "0");
}

} // namespace
} // namespace velmora
