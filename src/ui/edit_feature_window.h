#pragma once
#include <QWidget>
#include <string>

#include "model/session.h"
#include "model/table_types.h"

class QLabel;
class QTableView;

namespace velmora {

class RecordModel;

// frmEditFeature, "Edit Feature Data": the fields of one feature, edited through the
// table's cell editors and its undo. Follows the picked feature of the editing tool.
class EditFeatureWindow : public QWidget {
  Q_OBJECT
public:
  explicit EditFeatureWindow(Session& s, QWidget* parent = nullptr);
  ~EditFeatureWindow() override;
  // InstIdentify: shows record `rec` of layer `lyr`; 0 clears.
  void InstIdentify(int lyr, int rec);
  // BlkEditFeature / UnBlkEditFeature: the panel of fields takes no input while blocked.
  void SetBlocked(bool blocked);
  // The shown layer changed (cells, undo): the record is read again.
  void Refresh();
  int Lyr() const;
  int Rec() const { return page_.RowRec.empty() ? 0 : page_.RowRec[0]; }
  QTableView* Panel() const { return tblpan_; }

protected:
  void closeEvent(QCloseEvent* e) override;

private:
  Session& s_;
  std::string source_;
  TblPage page_;
  RecordModel* model_;
  QTableView* tblpan_;
  QLabel* title_;
};

} // namespace velmora
