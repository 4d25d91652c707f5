#include "ui/identify_panel.h"

#include <QHeaderView>
#include <QTreeWidget>

#include "frame/lyr_slots.h"
#include "platform/qt/qt_host.h"
#include "session/identify.h"

namespace velmora {

IdentifyPanel::IdentifyPanel(Session& s, QWidget* parent)
    : QDockWidget("Identify Feature", parent), s_(s) {
  setObjectName("Identify Feature");
  tree_ = new QTreeWidget(this);
  tree_->setObjectName("IdentifyTree");
  tree_->setHeaderLabels({"Field", "Value"});
  setWidget(tree_);
  connect(tree_, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem* it) {
    while (it->parent()) it = it->parent();
    const int i = it->data(0, Qt::UserRole).toInt();
    if (i < 0 || size_t(i) >= hits_.size()) return;
    const int lyr = FindLyrByFile(s_, hits_[size_t(i)].first);
    if (lyr >= 1) emit EditFeatureRequested(lyr, hits_[size_t(i)].second);
  });
}

void IdentifyPanel::IdentifyAt(double x, double y) {
  hits_.clear();
  for (const IdentifyHit& h : velmora::IdentifyAt(s_, x, y))
    hits_.emplace_back(s_.Lyr[h.Lyr].Fsource, h.Rec);
  Show();
}

void IdentifyPanel::Refresh() {
  Show();
}

void IdentifyPanel::Show() {
  tree_->clear();
  for (const auto& [source, rec] : hits_) {
    const int lyr = FindLyrByFile(s_, source);
    if (lyr < 1) continue;
    auto* top =
        new QTreeWidgetItem(tree_, {ToQ(s_.Lyr[lyr].LyrName), "Record No " + QString::number(rec)});
    for (const auto& [name, value] : RecordFields(s_, lyr, rec))
      new QTreeWidgetItem(top, {ToQ(name), ToQ(value).trimmed()});
    top->setExpanded(true);
  }
  tree_->resizeColumnToContents(0);
}

} // namespace velmora
