#include "ui/table_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QInputDialog>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QScrollBar>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>

#include "frame/busy.h"
#include "frame/log.h"
#include "frame/lyr_slots.h"
#include "platform/qt/qt_host.h"
#include "query/selection_menu.h"
#include "session/cmds_table.h"
#include "session/layer_life.h"
#include "store/dbf_store.h"
#include "table/field_struct.h"
#include "table/run_script.h"
#include "table/table_page.h"
#include "table/table_ranges.h"
#include "ui/selection_actions.h"
#include "ui/table_dialogs.h"
#include "ui/table_model.h"

namespace velmora {

TableWindow::TableWindow(Session& s, int lyr, QWidget* parent)
    : QWidget(parent, Qt::Window), s_(s), source_(s.Lyr[lyr].Fsource), name_(s.Lyr[lyr].LyrName) {
  setObjectName("Data Table");
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowTitle(ToQ(name_ + " : Data Table"));
  auto* top = new QVBoxLayout(this);
  top->setContentsMargins(2, 2, 2, 2);
  auto* bar = new QMenuBar(this);
  top->setMenuBar(bar);

  auto* head = new QHBoxLayout;
  mode_ = new QComboBox(this);
  mode_->setObjectName("TblMode");
  mode_->addItems({"All Features", "Selected Features", "Deleted Features"});
  counter_ = new QLabel(this);
  counter_->setObjectName("Counter");
  head->addWidget(mode_);
  head->addWidget(counter_, 1);
  top->addLayout(head);

  auto* body = new QHBoxLayout;
  grid_ = new QTableView(this);
  grid_->setObjectName("Grid");
  grid_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  grid_->verticalHeader()->hide();
  grid_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                         QAbstractItemView::AnyKeyPressed);
  grid_->installEventFilter(this);
  grid_->viewport()->installEventFilter(this);
  scroller_ = new QScrollBar(Qt::Vertical, this);
  scroller_->setObjectName("Scroller");
  scroller_->setTracking(true);
  body->addWidget(grid_, 1);
  body->addWidget(scroller_);
  top->addLayout(body, 1);

  model_ = new TableModel(s_, page_, this);
  grid_->setModel(model_);
  grid_->setItemDelegate(new CellDelegate(s_, page_, grid_));
  BuildMenus(bar);

  page_.TblRows = 20;
  InstTable(s_, page_, lyr, page_.TblRows);
  s_.Lyr[lyr].TblOpen = -1;
  Reload(true);

  connect(mode_, &QComboBox::currentIndexChanged, this, [this](int m) { SetMode(m); });
  // A drag moves only the counter; the page follows when the scroller is let go.
  connect(scroller_, &QScrollBar::valueChanged, this, [this](int v) {
    if (scroller_->isSliderDown()) {
      counter_->setText(ToQ(TblCounterText(s_, page_)) + "   Record " + QString::number(v));
      return;
    }
    if (v != page_.TblFirstRec) {
      page_.TblFirstRec = v;
      LoadPage();
    }
  });
  connect(scroller_, &QScrollBar::sliderReleased, this, [this] {
    page_.TblFirstRec = scroller_->value();
    LoadPage();
  });
  connect(grid_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
          [this] { TakeRange(); });
  resize(720, 480);
}

// The grid and its model read page_, which goes before the children would.
TableWindow::~TableWindow() {
  grid_->viewport()->removeEventFilter(this);
  grid_->removeEventFilter(this);
  delete grid_;
  delete model_;
}

int TableWindow::Lyr() const {
  const int n = FindLyrByFile(s_, source_);
  return n >= 1 ? n : 0;
}

QAction* TableWindow::Action(const QString& name) const {
  return findChild<QAction*>(name);
}

void TableWindow::BuildMenus(QMenuBar* bar) {
  auto add = [this](QMenu* m, const QString& text, const QString& name, auto fn) {
    QAction* a = m->addAction(text, this, fn);
    a->setObjectName(name);
    return a;
  };

  QMenu* file = bar->addMenu("&File");
  add(file, "Save Layer", "mnuSaveLayer", [this] {
    Flush();
    if (int n = Lyr()) SaveLyrAll(s_, n);
  });
  add(file, "Layer Properties...", "mnuLayerProrperties", [this] {
    if (int n = Lyr()) emit PropertiesRequested(n);
  });
  add(file, "Print", "mnuPrint", [this] { PrintPage(); });
  file->addSeparator();
  add(file, "Close", "mnuClose", [this] { close(); });

  QMenu* edit = bar->addMenu("&Edit");
  QAction* undo = add(edit, "Undo Data Edit", "mnuUndoDataEdit", [this] {
    Flush();
    if (int n = Lyr()) UndoDataEdit(s_, n, false);
  });
  undo->setShortcut(QKeySequence::Undo);
  QAction* redo = add(edit, "Redo Data Edit", "mnuRedoDataEdit", [this] {
    Flush();
    if (int n = Lyr()) RedoDataEdit(s_, n, false);
  });
  redo->setShortcut(QKeySequence::Redo);
  edit->addSeparator();
  add(edit, "Cut Cells", "mnuCutCells", [this] {
    RangeOp([this] { CutCells(s_, page_); });
  })->setShortcut(QKeySequence::Cut);
  add(edit, "Copy Cells", "mnuCopyCells", [this] {
    RangeOp([this] { CopyCells(s_, page_); });
  })->setShortcut(QKeySequence::Copy);
  add(edit, "Past", "mnuPastCells", [this] {
    RangeOp([this] { PasteCells(s_, page_, false); });
  })->setShortcut(QKeySequence::Paste);
  add(edit, "Fill Past", "mnuFillPastCells",
      [this] { RangeOp([this] { PasteCells(s_, page_, true); }); });
  add(edit, "Clear Cells", "mnuClearCells", [this] {
    RangeOp([this] { ClearCells(s_, page_); });
  })->setShortcut(QKeySequence::Delete);
  add(edit, "Select All Cells", "mnuSelectAllCells", [this] {
    grid_->selectAll();
    if (int n = Lyr())
      page_.TblRange = {1, 1, s_.Lyr[n].Dbf.DbfRecCount, s_.Lyr[n].Dbf.DbfFieldCount};
  });
  edit->addSeparator();
  add(edit, "Fill Series...", "mnuFillSeries", [this] { FillSeriesAsk(); });
  add(edit, "Add Empty Records...", "mnuAddRecords", [this] { AddRecordsAsk(); });
  edit->addSeparator();
  add(edit, "Comnvert UTF8 to Ascii", "mnuConvertUtf8ToAscii",
      [this] { RangeOp([this] { ConvertCells(s_, page_, true); }); });
  add(edit, "Convert Ascii to UTF8", "mnuConvertAsciiToUtf8",
      [this] { RangeOp([this] { ConvertCells(s_, page_, false); }); });
  edit->addSeparator();
  add(edit, "Sort Rows Ascending", "mnuSortAscending", [this] { Sort(false); });
  add(edit, "Sort Rows Descending", "mnuSortDescending", [this] { Sort(true); });

  QMenu* fields = bar->addMenu("F&ields");
  add(fields, "Add Field...", "mnuAddField", [this] { AddFieldAsk(); });
  add(fields, "Delete Field...", "mnuDeleteField", [this] { DeleteFieldAsk(); });
  add(fields, "Rename Field...", "mnuRenameField", [this] { RenameFieldAsk(); });
  add(fields, "Change Field...", "mnuChangeField", [this] { ChangeFieldAsk(); });

  QMenu* sel = bar->addMenu("&Selection");
  auto selItem = [this, sel](const QString& text, const QString& name) {
    QAction* a = sel->addAction(text);
    a->setObjectName(name);
    connect(a, &QAction::triggered, this, [this, name] { RunSelection(FromQ(name)); });
  };
  selItem("Select Features", "mnuSelect");
  selItem("UnSelect Features", "mnuUnSelect");
  selItem("Invert Selection", "mnuInvertSelection");
  selItem("Clear Selection", "mnuClearSelection");
  selItem("Zoom to Selected", "mnuZoomtoSelected");
  sel->addSeparator();
  selItem("Delete Features", "mnuDelete");
  selItem("UnDelete Features", "mnuUnDelete");
  selItem("Remove Deleted Features", "mnuRemoveDeletedFeatures");
  sel->addSeparator();
  selItem("Cut Selected Features To...", "mnuCutSelectedFeaturesTo");
  selItem("Copy Selected Features To...", "mnuCopySelectedFeaturesTo");
  selItem("Delete Selection", "mnuDeleteSelection");
  selItem("Combine Selected Features", "mnuCombineSelectedFeatures");
  selItem("Combine Parts of Selected Features into One Part",
          "mnuCombinePartsOfSelectedFeaturesIntoOnePart");
  selItem("Close Selected Feaures Edges", "mnuCloseSelectedFeauresEdges");

  QMenu* tools = bar->addMenu("&Tools");
  add(tools, "Edit Feature Data", "mnuEditFeatureData", [this] {
    TakeRange();
    if (int n = Lyr()) {
      const int rec = std::min(page_.TblRange[0], page_.TblRange[2]);
      if (rec >= 1) emit EditFeatureRequested(n, rec);
    }
  });
  add(tools, "Run VB Script in all Recs.", "mnuRunScript", [this] { OnRunScript(); });
  tools->addSeparator();
  terminate_ = add(tools, "Terminate None", "mnuTerminate", [this] { Terminate(); });
  connect(tools, &QMenu::aboutToShow, this, [this] {
    const int n = Lyr();
    const bool busy = n && LyrIsBusy(s_, n);
    terminate_->setText(busy ? ToQ("Terminate " + s_.Lyr[n].BusyFunc) : "Terminate None");
  });
}

void TableWindow::RunSelection(const std::string& name) {
  Flush();
  TakeRange();
  const int n = Lyr();
  if (!n) return;
  s_.ActiveLyr = n;
  if (NeedsRange(name)) {
    const int a = page_.TblRange[0], b = page_.TblRange[2];
    if (std::min(a, b) < 1) return;
    RunSelectionEntry(s_, name, n, 0, std::min(a, b), std::max(a, b));
  } else {
    RunSelectionAction(this, s_, name, [] {});
  }
  if (Lyr()) Reload(false);
}

void TableWindow::OnRunScript() {
  Flush();
  const int n = Lyr();
  if (!n) return;
  RunScript(s_, n, 0, 0, false);
  if (Lyr()) Reload(false);
}

void TableWindow::Terminate() {
  const int n = Lyr();
  if (!n || !LyrIsBusy(s_, n)) return;
  const MsgAnswer a =
      s_.host->MsgBox(" Would you like to Terminate " + s_.Lyr[n].BusyFunc + " ?",
                      name_ + " : Data Table Message Box ", MsgButtons::YesNo, MsgAnswer::No);
  if (a == MsgAnswer::Yes) SetLyrTerminate(s_, n, true);
}

void TableWindow::FitRows() {
  const int rowH = std::max(1, grid_->verticalHeader()->defaultSectionSize());
  const int avail = grid_->viewport()->height();
  const int rows = std::max(1, avail / rowH);
  if (rows != page_.TblRows) {
    page_.TblRows = rows;
    LoadPage();
  }
}

void TableWindow::SyncScroller() {
  const int view = TblViewCount(s_, page_);
  QSignalBlocker b(scroller_);
  scroller_->setRange(1, std::max(1, view));
  scroller_->setPageStep(TblLargeStep(view));
  scroller_->setSingleStep(1);
  scroller_->setValue(page_.TblFirstRec);
  scroller_->setEnabled(view >= 2 && !blocked_);
  counter_->setText(ToQ(TblCounterText(s_, page_)));
}

void TableWindow::LoadPage() {
  page_.TblLayer = Lyr();
  if (!page_.TblLayer) return;
  FillPage(s_, page_);
  model_->Reset();
  SyncScroller();
}

void TableWindow::Reload(bool columns) {
  page_.TblLayer = Lyr();
  if (!page_.TblLayer) return;
  name_ = s_.Lyr[page_.TblLayer].LyrName;
  setWindowTitle(ToQ(name_ + " : Data Table"));
  const auto keep = page_.TblRange;
  RefTable(s_, page_);
  page_.TblRange = keep;
  model_->Reset();
  if (columns) {
    grid_->setColumnWidth(0, 80);
    grid_->setColumnWidth(1, 40);
    const QFontMetrics fm(grid_->font());
    for (int f = 1; f <= page_.TblFieldCount; ++f) {
      const int w = std::min(90, GetFieldWidth(s_, page_.TblLayer, f));
      const int chars = std::max<int>(w, int(GetFieldName(s_, page_.TblLayer, f).size()));
      grid_->setColumnWidth(f + 1, fm.horizontalAdvance('0') * chars + 12);
    }
  }
  SyncScroller();
}

void TableWindow::Flush() {
  page_.TblLayer = Lyr();
  if (!page_.TblLayer) return;
  // An open editor commits first, as moving to another cell would.
  QWidget* ed = QApplication::focusWidget();
  if (ed && ed != grid_ && grid_->isAncestorOf(ed))
    QMetaObject::invokeMethod(grid_, "commitData", Qt::DirectConnection, Q_ARG(QWidget*, ed));
  FlushPage(s_, page_);
  model_->Reset();
}

void TableWindow::SetBlocked(bool blocked) {
  blocked_ = blocked;
  grid_->setEnabled(!blocked);
  SyncScroller();
}

void TableWindow::SetMode(int mode) {
  if (mode_->currentIndex() != mode) {
    mode_->setCurrentIndex(mode); // comes back here through the signal
    return;
  }
  page_.TblMode = int16_t(mode);
  page_.TblFirstRec = 1;
  LoadPage();
}

void TableWindow::TakeRange() {
  const QModelIndexList sel = grid_->selectionModel()->selectedIndexes();
  if (sel.isEmpty()) {
    const QModelIndex c = grid_->currentIndex();
    if (!c.isValid()) return;
  }
  int r1 = INT32_MAX, r2 = -1, c1 = INT32_MAX, c2 = -1;
  const QModelIndexList use = sel.isEmpty() ? QModelIndexList{grid_->currentIndex()} : sel;
  for (const QModelIndex& i : use) {
    if (size_t(i.row()) >= page_.RowRec.size() || page_.RowRec[size_t(i.row())] < 1) continue;
    r1 = std::min(r1, i.row()), r2 = std::max(r2, i.row());
    c1 = std::min(c1, i.column()), c2 = std::max(c2, i.column());
  }
  if (r2 < 0) return;
  // A Shift click reaches from the cell first clicked, also on an earlier page.
  const QModelIndex cur = grid_->currentIndex();
  if ((QApplication::keyboardModifiers() & Qt::ShiftModifier) && anchor_[0] >= 1 && cur.isValid() &&
      size_t(cur.row()) < page_.RowRec.size() && page_.RowRec[size_t(cur.row())] >= 1) {
    page_.TblRange = {anchor_[0], anchor_[1], page_.RowRec[size_t(cur.row())],
                      std::max(1, cur.column() - 1)};
    return;
  }
  page_.TblRange = {page_.RowRec[size_t(r1)], std::max(1, c1 - 1), page_.RowRec[size_t(r2)],
                    std::max(1, c2 - 1)};
  anchor_ = {page_.TblRange[0], page_.TblRange[1]};
}

int TableWindow::CurrentField() const {
  const int c = grid_->currentIndex().column();
  return c >= 2 ? c - 1 : 0;
}

template <class F> void TableWindow::RangeOp(F op) {
  Flush();
  if (!page_.TblLayer) return;
  op();
  Reload();
}

void TableWindow::FillSeriesAsk() {
  Flush();
  if (!page_.TblLayer) return;
  FillSeriesDialog d(s_, FillSeriesStart(s_, page_), this);
  if (d.exec() != QDialog::Accepted) return;
  RangeOp([&] { FillSeries(s_, page_, d.Start(), d.Step(), d.Stop()); });
}

void TableWindow::AddRecordsAsk() {
  const int n = Lyr();
  if (!n) return;
  AddRecordsDialog d(name_, this);
  if (d.exec() != QDialog::Accepted) return;
  Flush();
  AddRecords(s_, Lyr(), d.Count());
  Reload();
}

void TableWindow::AddFieldAsk() {
  const int n = Lyr();
  if (!n) return;
  FieldDialog d("Add Field", "", 'C', 10, 0, true, this);
  if (d.exec() != QDialog::Accepted) return;
  Flush();
  AddFieldJournalled(s_, Lyr(), d.Name(), d.Type(), d.Width(), d.Decimals());
}

void TableWindow::DeleteFieldAsk() {
  const int n = Lyr(), f = CurrentField();
  if (!n || f < 1) return;
  const std::string field = GetFieldName(s_, n, f);
  // The values of a deleted field can't come back through undo: the user is asked first.
  if (s_.host->MsgBox(" Delete the field " + field + " and its values? This can't be undone. ",
                      name_ + " : Data Table Message Box ", MsgButtons::YesNo,
                      MsgAnswer::No) != MsgAnswer::Yes)
    return;
  Flush();
  DeleteFieldOfLyr(s_, Lyr(), field);
}

void TableWindow::RenameFieldAsk() {
  const int n = Lyr(), f = CurrentField();
  if (!n || f < 1) return;
  const std::string field = GetFieldName(s_, n, f);
  bool ok = false;
  const QString nn =
      QInputDialog::getText(this, "Rename Field", "New name", QLineEdit::Normal, ToQ(field), &ok);
  if (!ok) return;
  Flush();
  RenameFieldJournalled(s_, Lyr(), field, FromQ(nn));
}

void TableWindow::ChangeFieldAsk() {
  const int n = Lyr(), f = CurrentField();
  if (!n || f < 1) return;
  const DbfField& fd = s_.Lyr[n].Dbf.DbfFields[size_t(f)];
  const std::string field = GetFieldName(s_, n, f);
  FieldDialog d("Change Field", field, fd.FieldType, fd.FieldLength, fd.FieldDecimals, false, this);
  if (d.exec() != QDialog::Accepted) return;
  if (s_.host->MsgBox(" Values that don't fit the new type of " + field +
                          " become blank. This can't be undone. ",
                      name_ + " : Data Table Message Box ", MsgButtons::YesNo,
                      MsgAnswer::No) != MsgAnswer::Yes)
    return;
  Flush();
  ChangeFieldOfLyr(s_, Lyr(), field, d.Type(), d.Width(), d.Decimals());
}

void TableWindow::Sort(bool descending) {
  TakeRange();
  Flush();
  const int n = Lyr();
  if (!n) return;
  const int f = std::min(page_.TblRange[1], page_.TblRange[3]);
  SortRowsJournalled(s_, n, std::max(1, f), descending);
  Reload();
}

void TableWindow::PrintPage() {
  Flush();
  const int n = Lyr();
  if (!n) return;
  std::vector<std::string> lines;
  std::string head = "Record No";
  for (int f = 1; f <= page_.TblFieldCount; ++f) head += "\t" + GetFieldName(s_, n, f);
  lines.push_back(head);
  for (size_t r = 0; r < page_.RowRec.size(); ++r) {
    if (page_.RowRec[r] < 1) break;
    std::string l = std::to_string(page_.RowRec[r]);
    for (int f = 1; f <= page_.TblFieldCount; ++f) l += "\t" + PageCell(page_, int(r), f);
    lines.push_back(l);
  }
  if (s_.host->PrintTable(name_ + " : Data Table", lines))
    LogMsg(s_, "Print Data Table " + name_);
  else
    LogMsg(s_, " *** Print Data Table " + name_ + " has been canceled *** ");
}

void TableWindow::closeEvent(QCloseEvent* e) {
  Flush();
  if (int n = Lyr()) s_.Lyr[n].TblOpen = 0;
  e->accept();
}

void TableWindow::resizeEvent(QResizeEvent* e) {
  QWidget::resizeEvent(e);
  FitRows();
}

bool TableWindow::eventFilter(QObject* o, QEvent* e) {
  // The page holds the rows that fit.
  if (o == grid_->viewport() && e->type() == QEvent::Resize) FitRows();
  // The wheel and the keys beyond the page's edge move the scroller by a row.
  if (o == grid_ && e->type() == QEvent::Wheel) {
    auto* w = static_cast<QWheelEvent*>(e);
    scroller_->setValue(scroller_->value() + (w->angleDelta().y() > 0 ? -3 : 3));
    return true;
  }
  if (o == grid_ && e->type() == QEvent::KeyPress) {
    auto* k = static_cast<QKeyEvent*>(e);
    const int row = grid_->currentIndex().row();
    if (k->key() == Qt::Key_PageDown) {
      scroller_->setValue(scroller_->value() + page_.TblRows);
      return true;
    }
    if (k->key() == Qt::Key_PageUp) {
      scroller_->setValue(scroller_->value() - page_.TblRows);
      return true;
    }
    if (k->key() == Qt::Key_Down && row == int(page_.RowRec.size()) - 1) {
      scroller_->setValue(scroller_->value() + 1);
      return true;
    }
    if (k->key() == Qt::Key_Up && row == 0) {
      scroller_->setValue(scroller_->value() - 1);
      return true;
    }
  }
  return QWidget::eventFilter(o, e);
}

} // namespace velmora
