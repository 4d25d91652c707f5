#include <gtest/gtest.h>

#include "qt_app.h"

#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "model/shp_types.h"
#include "test_support.h"
#include "ui/coords_convert_dialog.h"
#include "ui/coords_dialog.h"

namespace velmora {
namespace {

void EnsureApp() {
  test::App();
}

struct ConvertDialogTest : ::testing::Test {
  test::RecordingHost host;
  Session s{host};
  void SetUp() override {
    EnsureApp();
    s.Lyr.Resize(1);
    s.LyrCount = 1;
    s.Lyr[1].LyrName = "towns";
    s.Lyr[1].LyrKind = 1;
    s.Lyr[1].Shp.RecCount = 1;
    s.Lyr[1].Shp.ShpRecs.resize(2);
    s.Lyr[1].Shp.ShpRecs[1].ShapeType = 1;
    s.Lyr[1].Shp.ShpRecs[1].LabelX = 9, s.Lyr[1].Shp.ShpRecs[1].LabelY = 45;
    s.Lyr[1].Shp.ShpHeader.Xmin = 8, s.Lyr[1].Shp.ShpHeader.Xmax = 10;
    s.Lyr[1].Shp.ShpHeader.Ymin = -1, s.Lyr[1].Shp.ShpHeader.Ymax = 46;
  }
};

TEST_F(ConvertDialogTest, BadZonesShowErrorAndStartNothing) {
  CoordsConvertDialog d(s, nullptr);
  auto* geo = d.findChild<QGroupBox*>("GeoFrame2");
  ASSERT_TRUE(geo);
  auto* zone = geo->findChild<QLineEdit*>("ZoneTxt");
  auto* err = geo->findChild<QLabel*>("zoneErr");
  auto* go = d.findChild<QPushButton*>("CmdToGrid");
  ASSERT_TRUE(zone && err && go);
  EXPECT_EQ(d.findChild<QLabel*>("ZoneLbl0")->text(), "South 32");
  EXPECT_EQ(d.findChild<QLabel*>("ZoneLbl1")->text(), "North 32");
  auto* rec = d.findChild<QComboBox*>("Coordcmb");
  EXPECT_EQ(rec->itemData(0).toInt(), 1); // record 0 is not offered
  for (const char* text : {"0", "61", ""}) {
    zone->setText(text);
    go->click();
    EXPECT_FALSE(err->isHidden()) << text;
    EXPECT_EQ(err->text(), "Error");
  }
  EXPECT_EQ(s.Lyr[1].Shp.ShpRecs[1].LabelX, 9.0);
  zone->setText("32");
  go->click();
  EXPECT_TRUE(err->isHidden());
  EXPECT_NE(s.Lyr[1].Shp.ShpRecs[1].LabelX, 9.0);
  EXPECT_EQ(host.logged.back(), "Converting Coordinates System in Layer towns from Geographic "
                                "to World Geodetic System 1984 (WGS 84)");
}

TEST(CoordsDialogTest, ListsAndUnits) {
  EnsureApp();
  Session s;
  CoordsDialog d(s, nullptr);
  QList<QComboBox*> boxes = d.findChildren<QComboBox*>();
  bool sawNew = false;
  for (QComboBox* b : boxes) {
    if (b->count() > 0 && b->itemText(0) == CoordsDialog::kNewRecordText) {
      sawNew = true;
      EXPECT_EQ(b->itemData(0).toInt(), 23);
    }
    for (int i = 0; i < b->count(); ++i)
      if (b->itemData(i).isValid()) {
        EXPECT_NE(b->itemData(i).toInt(), 0) << "record 0 offered";
      }
  }
  EXPECT_TRUE(sawNew);
}

TEST(CoordsDialogTest, AddsAUserRecordWithItsShift) {
  EnsureApp();
  Session s;
  CoordsDialog d(s, nullptr);
  auto* cmb = d.findChild<QComboBox*>("MapProjCmb");
  ASSERT_TRUE(cmb);
  ASSERT_EQ(cmb->currentIndex(), 0); // the new-record row, filled from WGS 84
  d.findChild<QLineEdit*>("CrdName")->setText("Shifted");
  const char* vals[7] = {"446.448", "-125.157", "542.06", "0.15", "0.247", "0.842", "-20.489"};
  for (int i = 0; i < 7; ++i)
    d.findChild<QLineEdit*>(QString("Trans%1").arg(i + 1))->setText(vals[i]);
  d.findChild<QPushButton*>("AddRecord")->click();
  ASSERT_EQ(s.DatumTbl.size(), 25u);
  const DatumRec& r = s.DatumTbl[24];
  EXPECT_EQ(r.CrdName, "Shifted");
  EXPECT_EQ(r.SMA, 6378137.0);
  EXPECT_EQ(r.CM, 9999.0);
  EXPECT_EQ(r.TransDX, 446.448);
  EXPECT_EQ(r.TransScale, -20.489);
  EXPECT_GT(r.TransRZRad, 0.0);
  EXPECT_EQ(cmb->currentData().toInt(), 24);
  EXPECT_EQ(cmb->itemText(0), CoordsDialog::kNewRecordText);
}

} // namespace
} // namespace velmora
