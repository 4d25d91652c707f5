// The TIN and contour forms on a point layer made by GDAL: Build makes the layer and adds it.
#include <gtest/gtest.h>

#include "qt_app.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include "session/layer_life.h"
#include "test_support.h"
#include "ui/contour_dialog.h"
#include "ui/tin_dialog.h"

namespace velmora {
namespace {

struct SurfaceDialogTest : ::testing::Test {
  test::RecordingHost host;
  Session s{host};
  std::string dir = test::TempDir("surface_ui");
  void SetUp() override {
    test::App();
    std::vector<std::string> wkts;
    for (int r = 0; r < 8; ++r)
      for (int c = 0; c < 9; ++c)
        wkts.push_back("POINT Z (" + std::to_string(100 + c * 10) + " " +
                       std::to_string(200 + r * 10) + " " + std::to_string(c * 3 + r * 2) + ")");
    std::string shp = test::GdalLayer(dir, "pts", wkts);
    ASSERT_FALSE(shp.empty());
    AddShape(s, shp, false);
    ASSERT_EQ(s.LyrCount, 1);
  }
};

TEST_F(SurfaceDialogTest, TinFormBuildsAndAddsTheLayer) {
  // The open form doesn't hold back the layer it made.
  host.openDialogs = {"Build Tin Surface"};
  TinDialog d(s, nullptr);
  d.show();
  EXPECT_EQ(d.windowTitle(), "Build Tin Surface(s)");
  auto* height = d.findChild<QComboBox*>("HeightField");
  ASSERT_TRUE(height);
  EXPECT_EQ(height->itemText(0), "Shape Z Value");
  EXPECT_EQ(height->itemText(1), "None");
  EXPECT_EQ(height->itemText(2).toLower(), "id");
  d.findChild<QLineEdit*>("ToShpLyr")->setText(QString::fromStdString(dir + "tin"));
  d.findChild<QPushButton*>("cmdBuild")->click();
  ASSERT_EQ(s.LyrCount, 2);
  EXPECT_EQ(s.Lyr[2].LyrName, "tin.shp");
  EXPECT_EQ(s.Lyr[2].Shp.RecCount, 2 * 8 * 7);
  EXPECT_EQ(d.findChild<QLabel*>("txtFunc")->text(),
            "112 Tin Surface(s) have been Built Successfully in Layer tin.shp");
}

TEST_F(SurfaceDialogTest, ContourFormFromTheNewTin) {
  {
    TinDialog d(s, nullptr);
    d.show();
    d.findChild<QRadioButton*>("SurfaceOption1")->setChecked(true); // matrix
    d.findChild<QLineEdit*>("ToShpLyr")->setText(QString::fromStdString(dir + "m.shp"));
    d.findChild<QPushButton*>("cmdBuild")->click();
  }
  ASSERT_EQ(s.LyrCount, 2);
  ContourDialog c(s, nullptr);
  c.show();
  auto* lyr = c.findChild<QComboBox*>("cmbLyr");
  lyr->setCurrentIndex(lyr->findText("m.shp"));
  c.findChild<QRadioButton*>("SurfaceOption2")->setChecked(true); // from the TIN layer
  c.findChild<QComboBox*>("HeightField")->setCurrentIndex(0);     // its Z
  c.findChild<QLineEdit*>("txtInterval")->setText("5");
  c.findChild<QLineEdit*>("ToShpLyr")->setText(QString::fromStdString(dir + "c.shp"));
  c.findChild<QPushButton*>("cmdBuild")->click();
  ASSERT_EQ(s.LyrCount, 3);
  EXPECT_EQ(s.Lyr[3].LyrName, "c.shp");
  EXPECT_GT(s.Lyr[3].Shp.RecCount, 3);
  EXPECT_TRUE(c.findChild<QLabel*>("txtFunc")->text().endsWith(
      " Countours have been Built Successfully to Layer c.shp"));
}

} // namespace
} // namespace velmora
