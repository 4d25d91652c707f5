#pragma once
#include <QListWidget>
#include <vector>

#include "model/session.h"

namespace velmora {

// The layer list: one item per user layer in table order (row 1 on top), with its check
// box (DVisable), its icon of class 0, and its name, which the user can edit. Items are
// rebuilt from the layer table; the table is changed only through the core's operations.
class LayerListWidget : public QListWidget {
  Q_OBJECT
public:
  LayerListWidget(Session& s, QWidget* parent = nullptr);

  // Rebuilds every item from the table and selects ActiveLyr.
  void Rebuild();
  // Redraws one item from its row (MoveListItem).
  void RefreshItem(int n);
  // The selected layer numbers, from the top.
  std::vector<int> SelectedLyrs() const;
  void SelectLyrs(const std::vector<int>& rows);
  // 16 or 32 pixel icons.
  void SetLargeIcons(bool large);

signals:
  void FilesDropped(const QStringList& paths);

protected:
  void dragEnterEvent(QDragEnterEvent* e) override;
  void dragMoveEvent(QDragMoveEvent* e) override;
  void dropEvent(QDropEvent* e) override;

private:
  Session& s_;
  bool rebuilding_ = false;
  int iconSize_ = 16;
  void OnItemChanged(QListWidgetItem* item);
  void OnSelectionChanged();
  QIcon LyrIcon(int n);
};

} // namespace velmora
