#include "ui/layer_list_widget.h"

#include <QDragEnterEvent>
#include <QMimeData>

#include "platform/qt/qt_canvas.h"
#include "session/layer_list_ops.h"
#include "view/map_draw.h"

namespace velmora {

LayerListWidget::LayerListWidget(Session& s, QWidget* parent) : QListWidget(parent), s_(s) {
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::SelectedClicked);
  setDragDropMode(QAbstractItemView::DragDrop);
  setDefaultDropAction(Qt::MoveAction);
  setAcceptDrops(true);
  setIconSize(QSize(iconSize_, iconSize_));
  connect(this, &QListWidget::itemChanged, this, &LayerListWidget::OnItemChanged);
  connect(this, &QListWidget::itemSelectionChanged, this, &LayerListWidget::OnSelectionChanged);
}

QIcon LayerListWidget::LyrIcon(int n) {
  QIcon icon;
  for (int size : {16, 32}) {
    QImage img(size, size, QImage::Format_RGB32);
    {
      QtCanvas c(img);
      DrawLyrIcon(s_, c, n, size);
    }
    icon.addPixmap(QPixmap::fromImage(img));
  }
  return icon;
}

void LayerListWidget::SetLargeIcons(bool large) {
  iconSize_ = large ? 32 : 16;
  setIconSize(QSize(iconSize_, iconSize_));
}

void LayerListWidget::Rebuild() {
  rebuilding_ = true;
  clear();
  for (int n = 1; n <= s_.LyrCount; ++n) {
    auto* item = new QListWidgetItem(this);
    item->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsUserCheckable |
                   Qt::ItemIsEditable | Qt::ItemIsDragEnabled);
    RefreshItem(n);
  }
  if (s_.ActiveLyr >= 1 && s_.ActiveLyr <= count()) item(s_.ActiveLyr - 1)->setSelected(true);
  rebuilding_ = false;
}

void LayerListWidget::RefreshItem(int n) {
  if (n < 1 || n > count()) return;
  bool was = rebuilding_;
  rebuilding_ = true;
  const LyrRec& l = s_.Lyr[n];
  QListWidgetItem* it = item(n - 1);
  bool changed = l.Shp.ShpChanged || l.Dbf.DbfChanged;
  it->setText(QString::fromStdString(l.LyrName));
  it->setToolTip(QString::fromStdString(l.Fsource) + (changed ? " (changed)" : ""));
  QFont f = it->font();
  f.setItalic(l.LyrKind == 0);
  f.setBold(changed);
  it->setFont(f);
  it->setCheckState(l.DVisable ? Qt::Checked : Qt::Unchecked);
  it->setIcon(LyrIcon(n));
  rebuilding_ = was;
}

std::vector<int> LayerListWidget::SelectedLyrs() const {
  std::vector<int> rows;
  for (int i = 0; i < count(); ++i)
    if (item(i)->isSelected()) rows.push_back(i + 1);
  return rows;
}

void LayerListWidget::SelectLyrs(const std::vector<int>& rows) {
  rebuilding_ = true;
  clearSelection();
  for (int n : rows)
    if (n >= 1 && n <= count()) item(n - 1)->setSelected(true);
  rebuilding_ = false;
  OnSelectionChanged();
}

void LayerListWidget::OnItemChanged(QListWidgetItem* it) {
  if (rebuilding_) return;
  int n = row(it) + 1;
  if (n < 1 || n > s_.LyrCount) return;
  const LyrRec& l = s_.Lyr[n];
  bool checked = it->checkState() == Qt::Checked;
  if (checked != (l.DVisable != 0)) {
    if (!SetLyrVisible(s_, n, checked)) RefreshItem(n); // busy: the box goes back
    return;
  }
  std::string name = it->text().toStdString();
  if (name != l.LyrName && !RenameLyr(s_, n, name)) RefreshItem(n);
}

void LayerListWidget::OnSelectionChanged() {
  if (rebuilding_) return;
  QListWidgetItem* cur = currentItem();
  std::vector<int> rows = SelectedLyrs();
  int n = cur && cur->isSelected() ? row(cur) + 1 : (rows.empty() ? 0 : rows.front());
  SetActiveLyr(s_, n);
}

void LayerListWidget::dragEnterEvent(QDragEnterEvent* e) {
  if (e->mimeData()->hasUrls()) {
    e->acceptProposedAction();
    return;
  }
  QListWidget::dragEnterEvent(e);
}

void LayerListWidget::dragMoveEvent(QDragMoveEvent* e) {
  if (e->mimeData()->hasUrls()) {
    e->acceptProposedAction();
    return;
  }
  QListWidget::dragMoveEvent(e);
}

void LayerListWidget::dropEvent(QDropEvent* e) {
  if (e->mimeData()->hasUrls()) {
    QStringList paths;
    for (const QUrl& u : e->mimeData()->urls())
      if (u.isLocalFile()) paths << u.toLocalFile();
    e->acceptProposedAction();
    emit FilesDropped(paths);
    return;
  }
  // A drag of the selection inside the list: the target row from the drop point.
  QModelIndex at = indexAt(e->position().toPoint());
  int target = at.isValid() ? at.row() + 1 : count();
  e->setDropAction(Qt::IgnoreAction);
  e->accept();
  std::vector<int> rows = MoveLyrsTo(s_, SelectedLyrs(), target);
  Rebuild();
  SelectLyrs(rows);
}

} // namespace velmora
