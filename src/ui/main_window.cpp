#include "ui/main_window.h"

#include <QActionGroup>
#include <QCloseEvent>
#include <QDockWidget>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QInputDialog>
#include <QLabel>
#include <QMenuBar>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QScreen>
#include <QStatusBar>
#include <QStyle>
#include <QTimer>
#include <QToolBar>
#include <algorithm>

#include "edit/editor.h"
#include "frame/busy.h"
#include "frame/log.h"
#include "model/file_util.h"
#include "network/route_search.h"
#include "platform/qt/qt_screen.h"
#include "session/commands.h"
#include "session/layer_life.h"
#include "session/layer_list_ops.h"
#include "session/layer_menus.h"
#include "session/project.h"
#include "session/start_session.h"
#include "session/undo.h"
#include "store/shp_store.h"
#include "ui/build_net_dialog.h"
#include "ui/contour_dialog.h"
#include "ui/coords_convert_dialog.h"
#include "ui/coords_dialog.h"
#include "ui/find_data_dialog.h"
#include "ui/layer_list_widget.h"
#include "ui/layer_props_dialog.h"
#include "ui/location_dialog.h"
#include "ui/map_widget.h"
#include "ui/move_dialogs.h"
#include "ui/net_dialog.h"
#include "ui/script_page.h"
#include "ui/script_timer.h"
#include "ui/selection_actions.h"
#include "ui/table_windows.h"
#include "ui/tin_dialog.h"
#include "ui/tool_icons.h"
#include "view/map_toolbar.h"
#include "view/map_tools.h"
#include "view/navigation.h"
#include "view/raster_layer.h"

namespace velmora {

MainWindow::MainWindow(Session& s, QtHost& host, QWidget* parent)
    : QMainWindow(parent), s_(s), host_(host) {
  setWindowTitle("Velmora GIS");
  setAcceptDrops(true);
  host_.SetWindow(this);

  // The view size follows the screen, not the window; the map's scale follows the screen's
  // real pixel density.
  if (QScreen* sc = QGuiApplication::primaryScreen()) {
    s_.MapView.ViewW = int(sc->size().width() * 0.71);
    s_.MapView.ViewH = int(sc->size().height() * 0.67);
  }
  const ScreenMeasures screen = MeasureScreen(nullptr);
  s_.View.PixPerMeter = screen.PixPerMeter;
  s_.View.TwipsPerPixelX = screen.TwipsPerPixelX;
  s_.View.TwipsPerPixelY = screen.TwipsPerPixelY;

  map_ = new MapWidget(s_, this);
  map_->setObjectName("EditPic");
  map_->SetImages(&host_.images);
  setCentralWidget(map_);

  list_ = new LayerListWidget(s_, this);
  list_->setObjectName("LayerList");
  auto* layersDock = new QDockWidget("Layers", this);
  layersDock->setObjectName("LayersDock");
  layersDock->setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable);
  layersDock->setWidget(list_);
  addDockWidget(Qt::LeftDockWidgetArea, layersDock);

  commandBar_ = new QPlainTextEdit(this);
  commandBar_->setObjectName("CommandBar");
  commandBar_->setReadOnly(true);
  commandBar_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  commandBar_->setAcceptDrops(false); // drops go to the window
  auto* logDock = new QDockWidget("Command Bar", this);
  logDock->setObjectName("CommandDock");
  logDock->setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable);
  logDock->setWidget(commandBar_);
  addDockWidget(Qt::BottomDockWidgetArea, logDock);
  resizeDocks({layersDock}, {270}, Qt::Horizontal);
  resizeDocks({logDock}, {130}, Qt::Vertical);

  statusText_ = new QLabel(this);
  statusText_->setObjectName("StatusBar");
  QFont small = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  small.setPointSizeF(small.pointSizeF() * 0.8);
  statusText_->setFont(small);
  progBar_ = new QProgressBar(this);
  progBar_->setObjectName("ProgBar");
  progBar_->setRange(0, 1000);
  progBar_->setMaximumWidth(240);
  progBar_->hide();
  txtFunc_ = new QLabel(this);
  txtFunc_->setObjectName("txtFunc");
  statusBar()->addWidget(statusText_);
  statusBar()->addWidget(txtFunc_, 1);
  statusBar()->addPermanentWidget(progBar_);

  tables_ = new TableWindows(s_, host_, this);
  // A script run writes rows: the open table's page goes into the store first.
  s_.Script.FlushPage = [](Session& s, int lyr) { s.host->FlushTable(lyr); };
  BuildToolbar();
  BuildMenus();

  // The stop sequence tries again while a function still holds a layer.
  scriptTimer_ = new ScriptTimer(s_, this);
  unloadTimer_ = new QTimer(this);
  unloadTimer_->setInterval(3000);
  connect(unloadTimer_, &QTimer::timeout, this, &QWidget::close);

  host_.mapBuf = [this] { return map_->MapBuf(); };
  host_.mapShow = [this] { map_->MapShow(); };
  connect(&host_, &QtHost::logAppended, this, [this] { ShowLog(); });
  connect(&host_, &QtHost::progressChanged, this, &MainWindow::ShowProgress);
  connect(&host_, &QtHost::funcTextChanged, txtFunc_, &QLabel::setText);
  connect(&host_, &QtHost::mapRedrawRequested, this, [this] { MapRepaint(s_); });
  connect(&host_, &QtHost::layerListChanged, this, [this] {
    list_->Rebuild();
    SyncUi();
  });
  connect(&host_, &QtHost::layerItemChanged, list_, &LayerListWidget::RefreshItem);
  // Queued: a recorded view enters the history only after it has been shown.
  connect(map_, &MapWidget::ViewChanged, this, &MainWindow::SyncUi, Qt::QueuedConnection);
  connect(map_, &MapWidget::StatusTextChanged, statusText_, &QLabel::setText);
  connect(map_, &MapWidget::Edited, this, [this] {
    if (auto* r = qobject_cast<RotateAngleDialog*>(rotate_.data())) r->Fill();
    SyncUi();
  });
  connect(map_, &MapWidget::Edited, tables_, &TableWindows::EditHitChanged);
  connect(map_, &MapWidget::FeaturePicked, this, [this](int tool, int x, int y) {
    if (tool == kToolIdentify) tables_->Identify(x, y);
    if (tool == kToolHyperLink) tables_->HyperLink(x, y);
  });
  connect(tables_, &TableWindows::PropertiesRequested, this, [this](int n) {
    s_.ActiveLyr = n;
    ShowProps();
  });
  connect(list_, &QListWidget::itemDoubleClicked, this,
          [this](QListWidgetItem* it) { tables_->OpenTable(list_->row(it) + 1); });
  connect(map_, &MapWidget::DialogRequested, this, &MainWindow::OpenMoveDialog);
  connect(map_, &MapWidget::SelectionRequested, this,
          [this](const QString& name) { RunSelection(FromQ(name)); });
  connect(map_, &MapWidget::ViewCommandRequested, this, [this](const QString& name) {
    if (name == "mnuFullExtent" && s_.LyrCount > 0) MapFull(s_);
    if (name == "mnuZoomPrevious") ZoomPrevious(s_);
    if (name == "mnuZoomNext") ZoomNext(s_);
    SyncUi();
  });
  connect(list_, &LayerListWidget::FilesDropped, this, &MainWindow::OpenPaths);
  connect(list_, &QListWidget::itemSelectionChanged, this, &MainWindow::SyncUi);

  // Room for the whole view beside the list, within the screen.
  QSize want(s_.MapView.ViewW + 290, s_.MapView.ViewH + 300);
  if (QScreen* sc = QGuiApplication::primaryScreen()) want = want.boundedTo(sc->availableSize());
  resize(want);
  SyncUi();
  ShowLog();
}

QAction* MainWindow::ToolAction(const QString& text, const QString& name, int tool) {
  auto* a = new QAction(text, this);
  a->setObjectName(name);
  a->setCheckable(true);
  a->setData(tool);
  tools_->addAction(a);
  connect(a, &QAction::triggered, this, [this, tool] {
    ChooseEditTool(s_, tool); // a drawing in hand is finished first
    map_->ClearOverlay();
    map_->UpdateCursor();
    SyncUi();
  });
  return a;
}

void MainWindow::BuildToolbar() {
  tools_ = new QActionGroup(this);
  tools_->setExclusionPolicy(QActionGroup::ExclusionPolicy::ExclusiveOptional);
  actFull_ = new QAction("Full Extent", this);
  actFull_->setObjectName("FullExtent");
  actFull_->setIcon(MakeToolIcon(ToolIcon::FullExtent));
  connect(actFull_, &QAction::triggered, this, [this] {
    if (s_.LyrCount > 0) MapFull(s_);
  });
  QAction* zoomIn = ToolAction("Zoom In", "ZoomIn", kToolZoomIn);
  zoomIn->setIcon(MakeToolIcon(ToolIcon::ZoomIn));
  QAction* zoomOut = ToolAction("Zoom Out", "ZoomOut", kToolZoomOut);
  zoomOut->setIcon(MakeToolIcon(ToolIcon::ZoomOut));
  QAction* pan = ToolAction("Pan", "Pan", kToolPan);
  pan->setIcon(MakeToolIcon(ToolIcon::Pan));
  QAction* selectBox = ToolAction("Select Box", "SelectBox", kToolSelectBox);
  selectBox->setIcon(MakeToolIcon(ToolIcon::SelectBox));
  QAction* measure = ToolAction("Measure", "Measure", kToolMeasure);
  measure->setIcon(MakeToolIcon(ToolIcon::Measure));
  QAction* editFeature = ToolAction("Edit Feature", "EditFeature", kToolEditFeature);
  editFeature->setIcon(MakeToolIcon(ToolIcon::EditFeature));
  QAction* createFeature = ToolAction("Create Feature", "CreateFeature", kToolCreateFeature);
  createFeature->setIcon(MakeToolIcon(ToolIcon::CreateFeature));
  QAction* identify = ToolAction("Identify", "Identify", kToolIdentify);
  QAction* hyperLink = ToolAction("HyperLink", "HyperLink", kToolHyperLink);
  actPrev_ = new QAction("Zoom Previous", this);
  actPrev_->setObjectName("ZoomPrevious");
  actPrev_->setIcon(MakeToolIcon(ToolIcon::ZoomPrevious));
  connect(actPrev_, &QAction::triggered, this, [this] {
    ZoomPrevious(s_);
    map_->UpdateCursor();
    SyncUi();
  });
  actNext_ = new QAction("Zoom Next", this);
  actNext_->setObjectName("ZoomNext");
  actNext_->setIcon(MakeToolIcon(ToolIcon::ZoomNext));
  connect(actNext_, &QAction::triggered, this, [this] {
    ZoomNext(s_);
    map_->UpdateCursor();
    SyncUi();
  });
  actUndo_ = new QAction("Undo", this);
  actUndo_->setObjectName("mnuUndo");
  actUndo_->setShortcut(QKeySequence::Undo);
  actUndo_->setIcon(style()->standardIcon(QStyle::SP_ArrowBack));
  connect(actUndo_, &QAction::triggered, this, [this] {
    UndoRun(s_);
    SyncUi();
  });
  actRedo_ = new QAction("Redo", this);
  actRedo_->setObjectName("mnuRedo");
  actRedo_->setShortcut(QKeySequence::Redo);
  actRedo_->setIcon(style()->standardIcon(QStyle::SP_ArrowForward));
  connect(actRedo_, &QAction::triggered, this, [this] {
    RedoRun(s_);
    SyncUi();
  });
  QAction* terminate = new QAction("Terminate All Running Functions", this);
  terminate->setObjectName("mnuTerminateAll");
  terminate->setIcon(MakeToolIcon(ToolIcon::Terminate));
  connect(terminate, &QAction::triggered, this, [this] { TerminateAllRunning(s_); });

  QToolBar* tb = addToolBar("Map Tools");
  tb->setObjectName("Toolbar");
  tb->setMovable(false);
  tb->setIconSize(QSize(24, 24));
  tb->setToolButtonStyle(Qt::ToolButtonIconOnly); // the texts are the tool tips
  tb->addAction(actFull_);
  tb->addSeparator();
  tb->addAction(zoomIn);
  tb->addAction(zoomOut);
  tb->addAction(pan);
  tb->addAction(selectBox);
  tb->addAction(measure);
  tb->addSeparator();
  tb->addAction(editFeature);
  tb->addAction(createFeature);
  tb->addAction(identify);
  tb->addAction(hyperLink);
  tb->addSeparator();
  tb->addAction(actPrev_);
  tb->addAction(actNext_);
  tb->addSeparator();
  tb->addAction(actUndo_);
  tb->addAction(actRedo_);
  tb->addSeparator();
  tb->addAction(terminate);
}

void MainWindow::BuildMenus() {
  QMenu* file = menuBar()->addMenu("&File");
  QAction* newProj = file->addAction("&New Project", this, [this] { NewProject(s_); });
  newProj->setObjectName("mnuNewProject");
  QAction* open = file->addAction("&Open...", this, &MainWindow::OpenFiles);
  open->setShortcut(QKeySequence::Open);
  QAction* openProj = file->addAction("Open &Project...", this, [this] {
    OpenProjectMenu(s_, [this] {
      QString path = QFileDialog::getOpenFileName(this, kOpenProjectTitle, ToQ(s_.LastDir),
                                                  QtFilter(kProjectFilter));
      return FromQ(path);
    });
    SyncUi();
  });
  openProj->setObjectName("mnuOpenProject");
  QAction* saveProj = file->addAction("&Save Project", this, [this] {
    SaveProjectMenu(s_);
    SyncUi();
  });
  saveProj->setObjectName("mnuSaveProject");
  saveProj->setShortcut(QKeySequence::Save);
  QAction* saveProjAs = file->addAction("Save Project &As...", this, [this] {
    SaveProjectAsMenu(s_);
    SyncUi();
  });
  saveProjAs->setObjectName("mnuSaveProjectAs");
  QAction* closeProj = file->addAction("&Close Project", this, [this] {
    if (!CloseProjectMenu(s_)) return;
    for (QWidget* w : {props_.data(), coords_.data(), convert_.data()})
      if (w) w->close();
  });
  closeProj->setObjectName("mnuCloseProject");
  file->addSeparator();
  QAction* exit = file->addAction("E&xit", this, &QWidget::close);
  exit->setShortcut(QKeySequence::Quit);

  QMenu* edit = menuBar()->addMenu("&Edit");
  edit->addAction(actUndo_);
  edit->addAction(actRedo_);

  FillLayerMenu(menuBar()->addMenu("&Layer"));

  QMenu* view = menuBar()->addMenu("&View");
  view->addAction(actFull_);
  for (QAction* a : tools_->actions()) view->addAction(a);
  view->addAction(actPrev_);
  view->addAction(actNext_);
  view->addSeparator();
  scaleMenu_ = view->addMenu("Map Scale");
  int count = 0;
  const char* const* texts = MapScaleTexts(count);
  for (int i = 0; i < count; ++i)
    scaleMenu_->addAction(texts[i], this, [this, i] {
      if (s_.LyrCount > 0) SetMapScale(s_, MapScaleValue(i));
    });
  scaleMenu_->addSeparator();
  scaleMenu_->addAction("Custom Scale...", this, &MainWindow::CustomScale);

  QMenu* selection = menuBar()->addMenu("&Selection");
  selection->setObjectName("mnuSelectionMain");
  FillSelectionMenu(selection, s_, [this](const std::string& name) { RunSelection(name); });

  QMenu* tools = menuBar()->addMenu("&Tools");
  tools->addAction(findChild<QAction*>("mnuTerminateAll"));
  tools->addAction("Edit Feature Data", this, [this] {
    const HitRec& h = s_.Edit.EditHit;
    tables_->ShowEditFeature(h.HitKind ? h.HitLyr : 0, h.HitKind ? h.HitFeature : 0);
  });
  tools->addSeparator();
  tools->addAction("Coordinates...", this, [this] {
    if (!coords_) {
      auto* d = new CoordsDialog(s_, this);
      d->setAttribute(Qt::WA_DeleteOnClose);
      coords_ = d;
    }
    coords_->show();
    coords_->raise();
  });
  QAction* geoXY = tools->addAction("Find and Data Transfer by Location...", this, [this] {
    auto* d = findChild<LocationDialog*>();
    if (!d) {
      d = new LocationDialog(s_, this);
      d->setAttribute(Qt::WA_DeleteOnClose);
    }
    d->show();
    d->raise();
  });
  geoXY->setObjectName("mnuGeoXY");
  tools->addAction("Convert Vector and Raster Layer Coordinates System...", this, [this] {
    if (!convert_) {
      auto* d = new CoordsConvertDialog(s_, this);
      d->setObjectName("Convert Layer Coordinates System"); // its name in the dialog lists
      d->setAttribute(Qt::WA_DeleteOnClose);
      convert_ = d;
    }
    convert_->show();
    convert_->raise();
  });
  tools->addSeparator();
  tools->addAction("Build Tin Surface(s)...", this, [this] { ShowTool<TinDialog>(tin_); });
  tools->addAction("Contour Surface(s) Analysis...", this,
                   [this] { ShowTool<ContourDialog>(contour_); });
  AddNetworkMenus(tools);
}

void MainWindow::AddNetworkMenus(QMenu* tools) {
  QAction* build = tools->addAction("Build Shortest Path NetWork...", this, [this] {
    if (!buildNet_) {
      auto* d = new BuildNetDialog(s_, this);
      d->setAttribute(Qt::WA_DeleteOnClose);
      connect(d, &BuildNetDialog::Built, this, &MainWindow::SyncUi);
      buildNet_ = d;
    }
    buildNet_->show();
    buildNet_->raise();
  });
  build->setObjectName("mnuBuildNetWork");
  QAction* path = tools->addAction("Shortest Path NetWork...", this, [this] {
    if (s_.host->IsDialogOpen(BuildNetDialog::kCaption)) {
      s_.host->MsgBox("Please close Building NetWork menu before Getting Shortest Path ",
                      "Close menu(s) Message Box", MsgButtons::OkOnly, MsgAnswer::Ok);
      return;
    }
    if (!net_) {
      auto* d = new NetDialog(s_, this);
      d->setAttribute(Qt::WA_DeleteOnClose);
      connect(d, &NetDialog::MapChanged, this, [this] { MapRepaint(s_); });
      connect(d, &NetDialog::ToolChanged, map_, &MapWidget::UpdateCursor);
      connect(map_, &MapWidget::RouteStopClicked, d, &NetDialog::InstNet);
      net_ = d;
    }
    net_->show();
    net_->raise();
  });
  path->setObjectName("mnuShortestPath");
  QAction* clear = tools->addAction("Clear Shortest Path", this, [this] {
    ClearShortestPath(s_);
    LogMsg(s_, "Clear Shortest Path");
    MapRepaint(s_);
  });
  clear->setObjectName("mnuClearShortestPath");
}

void MainWindow::FillLayerMenu(QMenu* m) {
  auto add = [&](const QString& text, const QString& name, auto fn, bool needsLyr = true) {
    QAction* a = m->addAction(text, this, fn);
    a->setObjectName(name);
    if (needsLyr) lyrActions_ << a;
    list_->addAction(a);
    return a;
  };
  auto sep = [&] {
    m->addSeparator();
    auto* s = new QAction(this);
    s->setSeparator(true);
    list_->addAction(s);
  };
  add(
      "Add Layer...", "mnuAddLayer", [this] { AddLayers(); }, false);
  QMenu* make = m->addMenu("Make New Layer");
  for (const std::string& kind : NewLyrKinds())
    make->addAction(ToQ(kind), this, [this, kind] { MakeNewLayer(kind); });
  list_->addAction(make->menuAction());
  sep();
  add("Save", "mnuSaveLayer", [this] {
    for (int n : Selected()) {
      SaveLyrAll(s_, n);
      // A layer on files that can't be written may still go elsewhere.
      if (AskSaveAsInstead(s_, n)) SaveLayerAs(n);
    }
  });
  add("Save As...", "mnuSaveLayerAs", [this] { SaveLayerAs(); });
  sep();
  add("Remove", "mnuRemoveLayer", [this] { RemoveSelectedLyrs(s_, Selected()); });
  add("ReLoad Layer", "mnuReloadLayer", [this] { ReloadSelectedLyrs(s_, Selected()); });
  add("Set Layer Data Source...", "mnuSetDataSource", [this] { SetDataSource(); });
  add("Validate Layer boundaries", "mnuValidate", [this] {
    for (int n : Selected()) ValidateLyrBoundaries(s_, n);
  });
  add("Properties...", "mnuProperties", [this] { ShowProps(); });
  add("Open Attribute Table", "mnuOpenAttributeTable", [this] {
    for (int n : Selected()) tables_->OpenTable(n);
  });
  add("Edit VB Script...", "mnuEditScript", [this] {
    ShowProps();
    if (auto* d = qobject_cast<LayerPropsDialog*>(props_.data())) d->Script()->FocusEditor();
  });
  add("Run VB Script in all Recs.", "mnuRunScript", [this] {
    if (s_.ActiveLyr > 0) scriptTimer_->RunSoon(s_.ActiveLyr);
  });
  sep();
  add("Move Up", "mnuMoveUp", [this] { MoveUp(); });
  add("Move Down", "mnuMoveDown", [this] { MoveDown(); });
  add("Show All", "mnuShowAll", [this] { ShowLyrs(s_, Selected(), true); });
  add("Hide All", "mnuHideAll", [this] { ShowLyrs(s_, Selected(), false); });
  sep();
  actRectify_ = add("Rectify", "mnuRectify", [this] {
    if (s_.ActiveLyr > 0) RectifyImage(s_, s_.ActiveLyr);
    SyncUi();
  });
  actUnRectify_ = add("UnRectify", "mnuUnRectify", [this] {
    if (s_.ActiveLyr > 0) UnRectifyImage(s_, s_.ActiveLyr);
    SyncUi();
  });
  add("Auto Balance Image", "mnuAutoBalance", [this] {
    if (s_.ActiveLyr > 0 && s_.Lyr[s_.ActiveLyr].LyrKind == 2) AutoBalanceImage(s_, s_.ActiveLyr);
  });
  list_->setContextMenuPolicy(Qt::ActionsContextMenu);
}

std::vector<int> MainWindow::Selected() const {
  std::vector<int> rows = list_->SelectedLyrs();
  if (rows.empty() && s_.ActiveLyr >= 1 && s_.ActiveLyr <= s_.LyrCount)
    rows.push_back(s_.ActiveLyr);
  return rows;
}

void MainWindow::OpenMoveDialog(const QString& name) {
  QPointer<QWidget>& slot = name == "frmMoveSettings"  ? settings_
                            : name == "frmRotateAngle" ? rotate_
                                                       : move_;
  if (slot) slot->close();
  QDialog* d = nullptr;
  auto moved = [this] {
    map_->ClearOverlay();
    SyncUi();
  };
  if (name == "frmMoveSettings") {
    d = new MoveSettingsDialog(s_, this);
  } else if (name == "frmRotateAngle") {
    auto* r = new RotateAngleDialog(s_, this);
    connect(r, &RotateAngleDialog::Moved, this, moved);
    connect(r, &RotateAngleDialog::SettingsRequested, this,
            [this] { OpenMoveDialog("frmMoveSettings"); });
    d = r;
  } else {
    auto* m = new MoveDialog(s_, name == "MoveToXY", this);
    connect(m, &MoveDialog::Moved, this, moved);
    connect(m, &MoveDialog::SettingsRequested, this, [this] { OpenMoveDialog("frmMoveSettings"); });
    d = m;
  }
  d->setAttribute(Qt::WA_DeleteOnClose);
  slot = d;
  d->show();
}

void MainWindow::RunSelection(const std::string& name) {
  RunSelectionAction(this, s_, name, [this] {
    if (!find_) {
      auto* d = new FindDataDialog(s_, this);
      d->setAttribute(Qt::WA_DeleteOnClose);
      connect(d, &FindDataDialog::Found, this, &MainWindow::SyncUi);
      find_ = d;
    } else {
      static_cast<FindDataDialog*>(find_.data())->FillLayers();
    }
    find_->show();
    find_->raise();
  });
  map_->ClearOverlay();
  SyncUi();
}

void MainWindow::SyncUi() {
  ToolbarState t = GetToolbarState(s_);
  for (QAction* a : tools_->actions()) {
    a->setEnabled(t.HasLayers);
    a->setChecked(t.HasLayers && a->data().toInt() == t.Tool);
  }
  actFull_->setEnabled(t.HasLayers);
  actPrev_->setEnabled(t.ZoomPrev);
  actNext_->setEnabled(t.ZoomNext);
  actUndo_->setEnabled(UndoEnabled(s_));
  actRedo_->setEnabled(RedoEnabled(s_));
  scaleMenu_->setEnabled(t.HasLayers);
  for (QAction* a : lyrActions_) a->setEnabled(t.HasLayers);
  LyrMenus lm = ApplyLyrMenus(s_, s_.ActiveLyr);
  actRectify_->setEnabled(lm.Rectify);
  actUnRectify_->setEnabled(lm.UnRectify);
  QString status = ToQ(StatusText(s_));
  statusText_->setText(status);
  setWindowTitle(ToQ(WindowCaption(s_)));
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
  OpenPaths(files);
}

void MainWindow::OpenPaths(const QStringList& paths) {
  for (const QString& f : paths) OpenAnyFile(s_, FromQ(f));
  SyncUi();
  if (ArgStrEndsInExit(s_)) QTimer::singleShot(0, this, &QWidget::close);
}

void MainWindow::AddLayers() {
  const QStringList files =
      QFileDialog::getOpenFileNames(this, "Add Layer", ToQ(s_.LastDir), QtFilter(kLyrFilesFilter));
  for (const QString& f : files) AddShape(s_, FromQ(f), false);
}

void MainWindow::MakeNewLayer(const std::string& kind) {
  if (DialogsBlock(s_, "making New layer")) return;
  QString dflt = ToQ(s_.LastDir + NewLyrDefaultName(kind) + ".shp");
  QString path =
      QFileDialog::getSaveFileName(this, ToQ(NewLyrTitle(kind)), dflt, QtFilter(kNewLyrFilter));
  if (path.isEmpty()) return;
  std::string p = FromQ(path);
  if (ExtOf(p).empty()) p += ".shp";
  MakeNewLyr(s_, p, ShapeTypeOfKind(kind), kind, true);
}

void MainWindow::SaveLayerAs(int n) {
  if (n == 0) n = s_.ActiveLyr;
  if (n < 1 || n > s_.LyrCount) return;
  QString path = QFileDialog::getSaveFileName(this, "Save Layer As", ToQ(s_.Lyr[n].Fsource),
                                              QtFilter(kLyrFilesFilter));
  if (!path.isEmpty()) SaveLyrAs(s_, n, FromQ(path));
}

void MainWindow::SetDataSource() {
  std::vector<int> rows = Selected();
  if (rows.empty()) return;
  QString path = QFileDialog::getOpenFileName(this, ToQ(DataSourceTitle(s_, rows)), ToQ(s_.LastDir),
                                              QtFilter(kLyrFilesFilter));
  if (!path.isEmpty()) SetSelectedDataSource(s_, rows, FromQ(path));
}

void MainWindow::ShowProps() {
  int n = s_.ActiveLyr;
  if (n < 1 || n > s_.LyrCount) return;
  if (props_) props_->close();
  auto* d = new LayerPropsDialog(s_, n, this);
  d->setObjectName(LayerPropsDialog::kCaption); // its name in the dialog lists
  d->setAttribute(Qt::WA_DeleteOnClose);
  props_ = d;
  d->show();
}

void MainWindow::MoveUp() {
  std::vector<int> rows = MoveLyrsUp(s_, list_->SelectedLyrs());
  list_->SelectLyrs(rows);
}

void MainWindow::MoveDown() {
  std::vector<int> rows = MoveLyrsDown(s_, list_->SelectedLyrs());
  list_->SelectLyrs(rows);
}

void MainWindow::CustomScale() {
  if (s_.LyrCount == 0) return;
  bool ok = false;
  double n = QInputDialog::getDouble(this, "Custom Scale", "Map Scale  1 : ", s_.View.MapScale, 1,
                                     1e12, 0, &ok);
  if (ok) SetMapScale(s_, n);
}

void MainWindow::dragEnterEvent(QDragEnterEvent* e) {
  if (e->mimeData()->hasUrls()) e->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* e) {
  const QList<QUrl> urls = e->mimeData()->urls();
  e->acceptProposedAction();
  QStringList paths;
  for (const QUrl& u : urls)
    if (u.isLocalFile()) paths << u.toLocalFile();
  OpenPaths(paths);
}

bool MainWindow::RunStartLine(const std::vector<std::string>& args) {
  return StartSession(s_, args) && close();
}

void MainWindow::closeEvent(QCloseEvent* e) {
  if (!s_.ExitUnderWay) {
    host_.WaitCursor(true);
    list_->setFocus();
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
  for (QWidget* w : {props_.data(), coords_.data(), convert_.data()})
    if (w) w->close();
  CloseAllLyrs(s_);
  e->accept();
}

} // namespace velmora
