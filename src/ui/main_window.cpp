#include "ui/main_window.h"

#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QLabel>
#include <QMenuBar>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QScreen>
#include <QStatusBar>
#include <QTimer>

#include "session/busy.h"
#include "session/commands.h"
#include "session/file_util.h"
#include "session/layer_life.h"

namespace velmora {

MainWindow::MainWindow(Session& s, QtHost& host, QWidget* parent)
    : QMainWindow(parent), s_(s), host_(host) {
  setWindowTitle("Velmora GIS");
  setAcceptDrops(true);
  host_.SetWindow(this);

  commandBar_ = new QPlainTextEdit(this);
  commandBar_->setObjectName("CommandBar");
  commandBar_->setReadOnly(true);
  commandBar_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  commandBar_->setAcceptDrops(false); // drops go to the window
  setCentralWidget(commandBar_);

  progBar_ = new QProgressBar(this);
  progBar_->setObjectName("ProgBar");
  progBar_->setRange(0, 1000);
  progBar_->setMaximumWidth(240);
  progBar_->hide();
  txtFunc_ = new QLabel(this);
  txtFunc_->setObjectName("txtFunc");
  statusBar()->addWidget(txtFunc_, 1);
  statusBar()->addPermanentWidget(progBar_);

  QMenu* file = menuBar()->addMenu("&File");
  QAction* open = file->addAction("&Open...", this, &MainWindow::OpenFiles);
  open->setShortcut(QKeySequence::Open);
  file->addSeparator();
  QAction* exit = file->addAction("E&xit", this, &QWidget::close);
  exit->setShortcut(QKeySequence::Quit);
  QMenu* tools = menuBar()->addMenu("&Tools");
  QAction* terminate =
      tools->addAction("Terminate All Running Functions", [this] { TerminateAllRunning(s_); });
  terminate->setObjectName("mnuTerminateAll");

  // The stop sequence tries again while a function still holds a layer.
  unloadTimer_ = new QTimer(this);
  unloadTimer_->setInterval(3000);
  connect(unloadTimer_, &QTimer::timeout, this, &QWidget::close);

  connect(&host_, &QtHost::logAppended, this, [this] { ShowLog(); });
  connect(&host_, &QtHost::progressChanged, this, &MainWindow::ShowProgress);
  connect(&host_, &QtHost::funcTextChanged, txtFunc_, &QLabel::setText);

  // The view size follows the screen, not the window.
  if (QScreen* sc = QGuiApplication::primaryScreen()) {
    s_.MapView.ViewW = int(sc->size().width() * 0.71);
    s_.MapView.ViewH = int(sc->size().height() * 0.67);
  }
  resize(900, 600);
  ShowLog();
}

void MainWindow::ShowLog() {
  QString text = ToQ(s_.CommandBar);
  text.replace("\r\n", "\n");
  commandBar_->setPlainText(text);
  commandBar_->moveCursor(QTextCursor::End);
  commandBar_->ensureCursorVisible();
}

void MainWindow::ShowProgress(qint64 value, qint64 max) {
  if (max <= 0) {
    progBar_->reset();
    progBar_->hide();
    return;
  }
  progBar_->show();
  progBar_->setValue(int(std::clamp<qint64>(value, 0, max) * 1000 / max));
}

void MainWindow::OpenFiles() {
  const QStringList files = QFileDialog::getOpenFileNames(
      this, "Open", ToQ(s_.LastDir),
      "All supported files (*.qmt *.shp *.dbf *.shx *.jpg *.gif *.bmp *.tif *.png *.lst *.prj);;"
      "All files (*)");
  if (files.isEmpty()) return;
  s_.LastDir = FolderOf(FromQ(files.first()));
  for (const QString& f : files) OpenAnyFile(s_, FromQ(f));
}

void MainWindow::dragEnterEvent(QDragEnterEvent* e) {
  if (e->mimeData()->hasUrls()) e->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* e) {
  const QList<QUrl> urls = e->mimeData()->urls();
  e->acceptProposedAction();
  for (const QUrl& u : urls)
    if (u.isLocalFile()) OpenAnyFile(s_, FromQ(u.toLocalFile()));
  if (ArgStrEndsInExit(s_)) QTimer::singleShot(0, this, &QWidget::close);
}

void MainWindow::closeEvent(QCloseEvent* e) {
  if (!s_.ExitUnderWay) {
    host_.WaitCursor(true);
    bool go = s_.LyrCount == 0 || ConfirmCloseProject(s_);
    host_.WaitCursor(false);
    if (!go) {
      e->ignore();
      return;
    }
    TerminateAllLyrs(s_);
    s_.ExitUnderWay = true;
  }
  if (AnyLyrBusy(s_)) {
    // A running function sees its terminate flag at its next step; try again later.
    UnlockAllLyrs(s_);
    unloadTimer_->start();
    e->ignore();
    return;
  }
  unloadTimer_->stop();
  CloseAllLyrs(s_);
  e->accept();
}

} // namespace velmora
