#include <gtest/gtest.h>

#include "qt_app.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

#include "session/layer_life.h"
#include "session/map_init.h"
#include "store/dbf_store.h"
#include "test_support.h"
#include "ui/location_dialog.h"

namespace velmora {
namespace {

bool Selected(const Session& s, int lyr, int r) {
  size_t i = size_t(r) / 8;
  return i < s.Lyr[lyr].SelBits.size() && (s.Lyr[lyr].SelBits[i] >> (r % 8)) & 1;
}

std::string Trimmed(std::string t) {
  while (!t.empty() && t.back() == ' ') t.pop_back();
  return t;
}

struct LocationDialogTest : ::testing::Test {
  test::RecordingHost host;
  Session s{host};
  std::string dir = test::TempDir("locdlg");
  int counties = 0, towns = 0, roads = 0, rivers = 0;
  void SetUp() override {
    test::App();
    MapInit(s);
    // Two counties side by side; one town in the left one.
    AddShape(s,
             test::GdalLayer(
                 dir, "counties",
                 {"POLYGON ((0 0,0 10,10 10,10 0,0 0))", "POLYGON ((10 0,10 10,20 10,20 0,10 0))"},
                 "-lco SHPT=POLYGON"),
             false);
    AddShape(s, test::GdalLayer(dir, "towns", {"POINT (3 4)", "POINT (30 30)"}), false);
    AddShape(s,
             test::GdalLayer(dir, "roads", {"LINESTRING (0 5,20 5)", "LINESTRING (0 30,10 30)"},
                             "-lco SHPT=ARC"),
             false);
    AddShape(s, test::GdalLayer(dir, "rivers", {"LINESTRING (15 -5,15 25)"}, "-lco SHPT=ARC"),
             false);
    ASSERT_EQ(s.LyrCount, 4);
    counties = 1, towns = 2, roads = 3, rivers = 4;
  }
  void TearDown() override {
    while (s.LyrCount > 0) RemoveLyr(s, s.LyrCount, false);
  }
  void Choose(LocationDialog& d, const char* combo, int data) {
    auto* c = d.findChild<QComboBox*>(combo);
    ASSERT_TRUE(c);
    int at = c->findData(data);
    ASSERT_GE(at, 0) << combo;
    c->setCurrentIndex(at);
  }
};

TEST_F(LocationDialogTest, SelectsTheCountiesThatContainATown) {
  LocationDialog d(s);
  EXPECT_EQ(d.windowTitle(), "Find and Data Transfer by Location");
  EXPECT_EQ(d.findChild<QLineEdit*>("Tolerance")->text(), "0.0000001");
  EXPECT_EQ(d.findChild<QComboBox*>("cmdRel")->count(), 9);
  Choose(d, "frmcmbLyr", counties);
  Choose(d, "tocmbLyr", towns);
  Choose(d, "cmdRel", 7);
  d.findChild<QPushButton*>("cmdFind")->click();
  EXPECT_TRUE(Selected(s, counties, 1));
  EXPECT_FALSE(Selected(s, counties, 2));
  EXPECT_EQ(d.findChild<QLabel*>("txtFunc")->text(),
            "1 Features have been Selected Successfully in Layer " +
                QString::fromStdString(s.Lyr[counties].LyrName));
  EXPECT_EQ(host.logged.back(), "Find by Location in Layer " + s.Lyr[counties].LyrName);
}

TEST_F(LocationDialogTest, SelectsTheRoadsThatCrossARiverAndTransfersAField) {
  LocationDialog d(s);
  Choose(d, "frmcmbLyr", roads);
  Choose(d, "tocmbLyr", rivers);
  Choose(d, "cmdRel", 1);
  auto* fields = d.findChild<QListWidget*>("FldNames");
  auto ids = fields->findItems("ID", Qt::MatchFixedString);
  ASSERT_EQ(ids.size(), 1);
  auto* trans = d.findChild<QCheckBox*>("ApplyDataTrans");
  trans->setChecked(true);
  ids[0]->setCheckState(Qt::Checked);
  d.findChild<QPushButton*>("cmdFind")->click();
  EXPECT_TRUE(Selected(s, roads, 1));
  EXPECT_FALSE(Selected(s, roads, 2));
  ReadDbfRec(s, roads, 0);
  EXPECT_EQ(Trimmed(GetFieldValue(s, roads, 1)), "1"); // the river's id
  ReadDbfRec(s, roads, 1);
  EXPECT_EQ(Trimmed(GetFieldValue(s, roads, 1)), "2"); // untouched
  // A complement relation offers no transfer.
  Choose(d, "cmdRel", 2);
  EXPECT_FALSE(trans->isEnabled());
  EXPECT_FALSE(trans->isChecked());
}

TEST_F(LocationDialogTest, NoneFindsNothing) {
  while (s.LyrCount > 0) RemoveLyr(s, s.LyrCount, false);
  LocationDialog d(s);
  EXPECT_EQ(d.findChild<QComboBox*>("frmcmbLyr")->currentText(), "None");
  size_t logged = host.logged.size();
  d.findChild<QPushButton*>("cmdFind")->click();
  EXPECT_EQ(host.logged.size(), logged);
}

} // namespace
} // namespace velmora
