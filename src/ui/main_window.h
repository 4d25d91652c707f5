#pragma once
#include <QMainWindow>
#include <QPointer>

#include "model/session.h"
#include "platform/qt/qt_host.h"

class QAction;
class QActionGroup;
class QLabel;
class QMenu;
class QPlainTextEdit;
class QProgressBar;
class QTimer;
class QToolBar;

namespace velmora {

class LayerListWidget;
class MapWidget;
class TableWindows;

// The main window: the layer list on the left, the map surface (EditPic) in the centre,
// the command bar below, the status text, progress bar and txtFunc in the status bar, and
// the menus and toolbar. Each handler gathers the selection and calls one core operation.
class ScriptTimer;

class MainWindow : public QMainWindow {
  Q_OBJECT
public:
  MainWindow(Session& s, QtHost& host, QWidget* parent = nullptr);
  // Shows s.CommandBar with the caret at its end.
  void ShowLog();
  // Toolbar, menus, caption and status text from the session.
  void SyncUi();
  // The start-up: the program's command line through StartSession. When it ends in EXIT
  // the window closes by its own way out, which asks before unsaved edits are dropped.
  // True when the program is to end now.
  bool RunStartLine(const std::vector<std::string>& args);
  // frmMove ("MoveDistance", "MoveToXY"), frmRotateAngle or frmMoveSettings.
  void OpenMoveDialog(const QString& name);
  // An entry of the selection menus on the active layer ("mnuFindByData" opens the dialog).
  void RunSelection(const std::string& name);

  MapWidget* Map() const { return map_; }
  LayerListWidget* LayerList() const { return list_; }
  TableWindows* Tables() const { return tables_; }

protected:
  void closeEvent(QCloseEvent* e) override;
  void dragEnterEvent(QDragEnterEvent* e) override;
  void dropEvent(QDropEvent* e) override;

private:
  void BuildMenus();
  void AddNetworkMenus(QMenu* tools);
  void BuildToolbar();
  QAction* ToolAction(const QString& text, const QString& name, int tool);
  void FillLayerMenu(QMenu* m);
  void OpenFiles();
  void OpenPaths(const QStringList& paths);
  void AddLayers();
  void MakeNewLayer(const std::string& kind);
  void SaveLayers();
  // Save As of layer `n` (the active layer when 0).
  void SaveLayerAs(int n = 0);
  void SetDataSource();
  void ShowProps();
  void MoveUp();
  void MoveDown();
  void CustomScale();
  void ShowProgress(qint64 value, qint64 max);
  std::vector<int> Selected() const;

  Session& s_;
  QtHost& host_;
  MapWidget* map_;
  LayerListWidget* list_;
  QPlainTextEdit* commandBar_;
  QLabel* statusText_;
  QProgressBar* progBar_;
  QLabel* txtFunc_;
  QTimer* unloadTimer_;
  QActionGroup* tools_ = nullptr;
  QPointer<QWidget> find_; // Find by Data
  QAction* actFull_ = nullptr;
  QAction* actPrev_ = nullptr;
  QAction* actNext_ = nullptr;
  QAction* actUndo_ = nullptr;
  QAction* actRedo_ = nullptr;
  QAction* actRectify_ = nullptr;
  QAction* actUnRectify_ = nullptr;
  QMenu* scaleMenu_ = nullptr;
  QList<QAction*> lyrActions_; // need a layer
  QPointer<QWidget> props_, coords_, convert_;
  TableWindows* tables_ = nullptr;  // data tables, Edit Feature, Identify
  QPointer<QWidget> tin_, contour_; // the surface forms
  // Shows the single form of a tool, making it on first use.
  template <typename D> void ShowTool(QPointer<QWidget>& held) {
    if (!held) {
      auto* d = new D(s_, this);
      d->setAttribute(Qt::WA_DeleteOnClose);
      held = d;
    }
    held->show();
    held->raise();
  }
  ScriptTimer* scriptTimer_ = nullptr;         // VbScribtTimerM
  QPointer<QWidget> move_, rotate_, settings_; // frmMove, frmRotateAngle, frmMoveSettings
  QPointer<QWidget> buildNet_, net_;           // FrmBuildNet, frmNet
};

} // namespace velmora
