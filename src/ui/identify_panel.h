#pragma once
#include <QDockWidget>

#include "model/session.h"

class QTreeWidget;

namespace velmora {

// "Identify Feature": the fields of the features under the pointer of tool 8, one branch
// per layer that has one. A double click on a branch opens Edit Feature on it.
class IdentifyPanel : public QDockWidget {
  Q_OBJECT
public:
  explicit IdentifyPanel(Session& s, QWidget* parent = nullptr);
  // The click of tool 8 at pixel (x, y) of the map.
  void IdentifyAt(double x, double y);
  // The layer's cells changed: the branches read their records again.
  void Refresh();
  QTreeWidget* Tree() const { return tree_; }

signals:
  void EditFeatureRequested(int lyr, int rec);

private:
  void Show();
  Session& s_;
  QTreeWidget* tree_;
  std::vector<std::pair<std::string, int>> hits_; // layer source, record
};

} // namespace velmora
