#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>

#include "model/file_util.h"
#include "platform/qt/qt_host.h"
#include "qt_app.h"
#include "session/layer_life.h"
#include "store/dbf_store.h"
#include "test_support.h"
#include "ui/layer_props_dialog.h"
#include "ui/main_window.h"
#include "ui/script_page.h"

using namespace velmora;

namespace {

struct AppFirst {
  AppFirst() { test::App(); }
};

struct ScriptUiTest : ::testing::Test, AppFirst {
  QtHost host;
  Session s{host};
  MainWindow w{s, host};
  int OpenLayer() {
    std::string dir = test::TempDir("script_ui");
    std::string shp = test::GdalLayer(dir, "pts", {"POINT (1 2)", "POINT (3 4)"});
    EXPECT_FALSE(shp.empty());
    AddShape(s, shp, false);
    s.ActiveLyr = s.LyrCount;
    return s.LyrCount;
  }
};

} // namespace

TEST_F(ScriptUiTest, ThePageWritesTheScriptIntoTheLayer) {
  int lyr = OpenLayer();
  ASSERT_GE(lyr, 1);
  LayerPropsDialog d(s, lyr);
  ASSERT_NE(d.Script(), nullptr);
  auto* text = d.findChild<QPlainTextEdit*>("VBScripttext");
  auto* file = d.findChild<QLineEdit*>("VBScriptFile");
  ASSERT_TRUE(text && file);
  text->setPlainText("id = id * 10");
  d.Script()->Apply();
  EXPECT_EQ(s.Lyr[lyr].VBScripttext, "id = id * 10");
  EXPECT_EQ(s.Lyr[lyr].VBScriptSRC, 0);
  d.findChild<QRadioButton*>("VBScriptSRC1")->setChecked(true);
  file->setText("/tmp/x.vbs");
  d.Script()->Apply();
  EXPECT_EQ(s.Lyr[lyr].VBScriptSRC, 1);
  EXPECT_EQ(s.Lyr[lyr].VBScriptFile, "/tmp/x.vbs");
}

TEST_F(ScriptUiTest, TheLayerMenuRunsTheScriptAfterTheCurrentEvent) {
  int lyr = OpenLayer();
  s.Lyr[lyr].VBScripttext = "id = id + 100";
  auto* run = w.findChild<QAction*>("mnuRunScript");
  ASSERT_NE(run, nullptr);
  run->trigger();
  ReadDbfRec(s, lyr, 0);
  EXPECT_EQ(Trim(GetFieldValue(s, lyr, 1)), "1"); // not yet: queued
  QApplication::processEvents();
  ReadDbfRec(s, lyr, 1);
  EXPECT_EQ(Trim(GetFieldValue(s, lyr, 1)), "102");
  EXPECT_EQ(s.Lyr[lyr].LyrBusy, 0);
  EXPECT_NE(w.findChild<QObject*>("VbScribtTimerM"), nullptr);
}
