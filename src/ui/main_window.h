#pragma once
#include <QMainWindow>

#include "platform/qt/qt_host.h"
#include "session/session.h"

class QLabel;
class QPlainTextEdit;
class QProgressBar;
class QTimer;

namespace velmora {

// The main window: for now the command bar (the session's log), the progress bar and the
// running function's caption in the status bar, opening files by menu and by drop, and
// the stop sequence on close.
class MainWindow : public QMainWindow {
  Q_OBJECT
public:
  MainWindow(Session& s, QtHost& host, QWidget* parent = nullptr);
  // Shows s.CommandBar with the caret at its end.
  void ShowLog();

protected:
  void closeEvent(QCloseEvent* e) override;
  void dragEnterEvent(QDragEnterEvent* e) override;
  void dropEvent(QDropEvent* e) override;

private:
  void OpenFiles();
  void ShowProgress(qint64 value, qint64 max);

  Session& s_;
  QtHost& host_;
  QPlainTextEdit* commandBar_;
  QProgressBar* progBar_;
  QLabel* txtFunc_;
  QTimer* unloadTimer_;
};

} // namespace velmora
