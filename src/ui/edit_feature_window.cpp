#include "ui/edit_feature_window.h"

#include <QCloseEvent>
#include <QHeaderView>
#include <QLabel>
#include <QTableView>
#include <QVBoxLayout>

#include "frame/lyr_slots.h"
#include "platform/qt/qt_host.h"
#include "table/table_page.h"
#include "ui/table_model.h"

namespace velmora {

EditFeatureWindow::EditFeatureWindow(Session& s, QWidget* parent)
    : QWidget(parent, Qt::Window), s_(s) {
  setObjectName("Edit Feature Data");
  setWindowTitle("Edit Feature Data");
  auto* v = new QVBoxLayout(this);
  title_ = new QLabel(this);
  tblpan_ = new QTableView(this);
  tblpan_->setObjectName("tblpan");
  tblpan_->verticalHeader()->hide();
  tblpan_->horizontalHeader()->setStretchLastSection(true);
  model_ = new RecordModel(s_, page_, this);
  tblpan_->setModel(model_);
  tblpan_->setItemDelegate(new CellDelegate(s_, page_, tblpan_, true));
  tblpan_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                           QAbstractItemView::AnyKeyPressed);
  v->addWidget(title_);
  v->addWidget(tblpan_, 1);
  page_.TblRows = 1;
  resize(360, 420);
}

// The panel and its model read page_, which goes before the children would.
EditFeatureWindow::~EditFeatureWindow() {
  delete tblpan_;
  delete model_;
}

int EditFeatureWindow::Lyr() const {
  const int n = source_.empty() ? 0 : FindLyrByFile(s_, source_);
  return n >= 1 ? n : 0;
}

void EditFeatureWindow::InstIdentify(int lyr, int rec) {
  FlushPage(s_, page_);
  if (lyr < 1 || lyr > s_.LyrCount || rec < 1) {
    source_.clear();
    page_ = TblPage{};
    page_.TblRows = 1;
    title_->clear();
    model_->Reset();
    return;
  }
  source_ = s_.Lyr[lyr].Fsource;
  page_.TblLayer = lyr;
  page_.TblMode = 0;
  page_.TblRows = 1;
  page_.TblFirstRec = rec;
  FillPage(s_, page_);
  title_->setText(ToQ(s_.Lyr[lyr].LyrName) + " : record " + QString::number(rec));
  model_->Reset();
}

void EditFeatureWindow::Refresh() {
  const int n = Lyr();
  if (!n) return InstIdentify(0, 0);
  InstIdentify(n, Rec());
}

void EditFeatureWindow::SetBlocked(bool blocked) {
  tblpan_->setEnabled(!blocked);
}

void EditFeatureWindow::closeEvent(QCloseEvent* e) {
  page_.TblLayer = Lyr();
  FlushPage(s_, page_);
  e->accept();
}

} // namespace velmora
