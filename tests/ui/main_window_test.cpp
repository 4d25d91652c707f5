#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QUrl>

#include "frame/log.h"
#include "platform/qt/qt_host.h"
#include "qt_app.h"
#include "session/start_session.h"
#include "test_support.h"
#include "ui/main_window.h"

using namespace velmora;

namespace {

using velmora::test::App;

// The application object comes first: widgets need it when they are made.
struct AppFirst {
  AppFirst() { App(); }
};

// Drops reach the window from the platform's drag manager; the test hands them over.
struct TestWindow : MainWindow {
  using MainWindow::MainWindow;
  void Drop(QDropEvent* e) { dropEvent(e); }
};

struct WindowTest : ::testing::Test, AppFirst {
  QtHost host;
  Session s{host};
  TestWindow w{s, host};
  QPlainTextEdit* bar() { return w.findChild<QPlainTextEdit*>("CommandBar"); }
};

} // namespace

TEST_F(WindowTest, CommandBarFollowsTheLog) {
  EXPECT_EQ(w.windowTitle(), "Velmora GIS");
  StartSession(s, {});
  LogMsg(s, "Add Layer roads.shp");
  ASSERT_NE(bar(), nullptr);
  EXPECT_TRUE(bar()->isReadOnly());
  QString text = bar()->toPlainText();
  EXPECT_TRUE(text.endsWith("Add Layer roads.shp\n >>  ")) << text.toStdString();
  EXPECT_TRUE(text.startsWith(" >>  Velmora GIS"));
  EXPECT_EQ(bar()->textCursor().position(), text.size()); // the caret at the end
  // The view size follows the screen.
  EXPECT_GT(s.MapView.ViewW, 0);
}

TEST_F(WindowTest, ProgressAndCaptionOfTheRunningFunction) {
  auto* prog = w.findChild<QProgressBar*>("ProgBar");
  auto* func = w.findChild<QLabel*>("txtFunc");
  ASSERT_TRUE(prog && func);
  w.show();
  host.FuncText("Build Tin Surface");
  host.Progress(5, 10);
  EXPECT_EQ(func->text(), "Build Tin Surface");
  EXPECT_TRUE(prog->isVisible());
  EXPECT_EQ(prog->value(), 500);
  host.Progress(0, 0);
  EXPECT_FALSE(prog->isVisible());
  auto actions = w.findChildren<QAction*>("mnuTerminateAll");
  ASSERT_EQ(actions.size(), 1);
  EXPECT_EQ(actions[0]->text(), "Terminate All Running Functions");
  // Nothing runs: terminating asks nothing.
  actions[0]->trigger();
}

TEST_F(WindowTest, DroppedFilesAreOpened) {
  std::string dir = test::TempDir("drop");
  test::WriteFile(dir + "a.lst", "SELECT all\n");
  QMimeData mime;
  mime.setUrls({QUrl::fromLocalFile(ToQ(dir + "a.lst"))});
  QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
  w.Drop(&drop);
  EXPECT_TRUE(bar()->toPlainText().contains(ToQ(dir + "a.lst has been executed Successfully ")));
}

TEST(QtHostFilter, DialogFilterInQtForm) {
  EXPECT_EQ(QtFilter("Layer files (*.shp)|*.shp|All files (*.*)|*.*").toStdString(),
            "Layer files (*.shp);;All files (*)");
  EXPECT_EQ(QtFilter("Maps files (*.qmt)|*.qmt").toStdString(), "Maps files (*.qmt)");
}

TEST_F(WindowTest, ProjectMenusAndTheJournalButtons) {
  for (const char* name : {"mnuOpenProject", "mnuSaveProject", "mnuSaveProjectAs",
                           "mnuCloseProject", "mnuUndo", "mnuRedo"})
    EXPECT_NE(w.findChild<QAction*>(name), nullptr) << name;
  // An empty journal: nothing to undo or redo.
  EXPECT_FALSE(w.findChild<QAction*>("mnuUndo")->isEnabled());
  EXPECT_FALSE(w.findChild<QAction*>("mnuRedo")->isEnabled());
}
