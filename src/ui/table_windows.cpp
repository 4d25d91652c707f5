#include "ui/table_windows.h"

#include <QMainWindow>

#include "platform/qt/qt_host.h"
#include "session/identify.h"
#include "ui/edit_feature_window.h"
#include "ui/identify_panel.h"
#include "ui/table_window.h"

namespace velmora {

TableWindows::TableWindows(Session& s, QtHost& host, QMainWindow* main)
    : QObject(main), s_(s), main_(main) {
  connect(&host, &QtHost::tableDataChanged, this, &TableWindows::DataChanged);
  connect(&host, &QtHost::tableFieldsChanged, this, &TableWindows::FieldsChanged);
  connect(&host, &QtHost::tableBlocked, this, &TableWindows::Blocked);
  connect(
      &host, &QtHost::tableFlushRequested, this,
      [this](int lyr) {
        if (TableWindow* t = TableOf(lyr)) t->Flush();
      },
      Qt::DirectConnection);
  connect(&host, &QtHost::tableClosed, this, [this](int lyr) {
    if (TableWindow* t = TableOf(lyr)) t->close();
    if (editFeature_ && editFeature_->Lyr() == lyr) editFeature_->InstIdentify(0, 0);
  });
}

EditFeatureWindow* TableWindows::EditFeature() const {
  return editFeature_.data();
}

IdentifyPanel* TableWindows::Identifier() const {
  return identify_.data();
}

TableWindow* TableWindows::TableOf(int lyr) const {
  if (lyr < 1 || lyr > s_.LyrCount) return nullptr;
  auto it = tables_.find(s_.Lyr[lyr].Fsource);
  return it == tables_.end() ? nullptr : it->second.data();
}

TableWindow* TableWindows::OpenTable(int lyr) {
  if (lyr < 1 || lyr > s_.LyrCount || s_.Lyr[lyr].LyrKind != 1 || !s_.Lyr[lyr].Dbf.DbfExists)
    return nullptr;
  if (TableWindow* t = TableOf(lyr)) {
    t->raise();
    t->activateWindow();
    return t;
  }
  auto* t = new TableWindow(s_, lyr, main_);
  tables_[s_.Lyr[lyr].Fsource] = t;
  connect(t, &TableWindow::EditFeatureRequested, this,
          [this](int l, int rec) { ShowEditFeature(l, rec); });
  connect(t, &TableWindow::PropertiesRequested, this, &TableWindows::PropertiesRequested);
  t->show();
  return t;
}

EditFeatureWindow* TableWindows::ShowEditFeature(int lyr, int rec) {
  if (!editFeature_) {
    editFeature_ = new EditFeatureWindow(s_, main_);
    editFeature_->setAttribute(Qt::WA_DeleteOnClose);
  }
  editFeature_->InstIdentify(lyr, rec);
  editFeature_->SetBlocked(false);
  editFeature_->show();
  editFeature_->raise();
  return editFeature_;
}

void TableWindows::EditHitChanged() {
  // An edit on the map may have changed cells or the selection that the tables show.
  for (auto& [source, t] : tables_)
    if (t) t->Reload();
  if (!editFeature_) return;
  const HitRec& h = s_.Edit.EditHit;
  if (h.HitKind != 0 && h.HitLyr >= 1 && h.HitFeature >= 1) {
    if (h.HitLyr != editFeature_->Lyr() || h.HitFeature != editFeature_->Rec())
      editFeature_->InstIdentify(h.HitLyr, h.HitFeature);
    editFeature_->SetBlocked(false);
  } else {
    editFeature_->SetBlocked(true);
  }
}

void TableWindows::Identify(double x, double y) {
  if (!identify_) {
    identify_ = new IdentifyPanel(s_, main_);
    main_->addDockWidget(Qt::RightDockWidgetArea, identify_);
    connect(identify_, &IdentifyPanel::EditFeatureRequested, this,
            [this](int l, int rec) { ShowEditFeature(l, rec); });
  }
  identify_->show();
  identify_->IdentifyAt(x, y);
}

void TableWindows::HyperLink(double x, double y) {
  FollowHyperLink(s_, x, y);
}

void TableWindows::DataChanged(int lyr) {
  if (TableWindow* t = TableOf(lyr)) t->Reload();
  if (editFeature_ && editFeature_->Lyr() == lyr) editFeature_->Refresh();
  if (identify_ && identify_->isVisible()) identify_->Refresh();
}

void TableWindows::FieldsChanged(int lyr) {
  if (TableWindow* t = TableOf(lyr)) t->Reload(true);
  if (editFeature_ && editFeature_->Lyr() == lyr) editFeature_->Refresh();
  if (identify_ && identify_->isVisible()) identify_->Refresh();
}

void TableWindows::Blocked(int lyr, bool blocked) {
  if (TableWindow* t = TableOf(lyr)) t->SetBlocked(blocked);
  if (editFeature_ && editFeature_->Lyr() == lyr) editFeature_->SetBlocked(blocked);
}

} // namespace velmora
