#pragma once
#include <QWidget>
#include <array>
#include <string>

#include "model/session.h"
#include "model/table_types.h"

class QComboBox;
class QLabel;
class QMenuBar;
class QScrollBar;
class QTableView;
class QAction;

namespace velmora {

class TableModel;

// frmTable: the data table of one layer, captioned "<layer> : Data Table". It holds one
// page of rows (TblPage); the scroller beside the grid moves the page over the view of all,
// selected or deleted features. The layer is followed by its source path, since its number
// changes when layers are added, removed or moved.
class TableWindow : public QWidget {
  Q_OBJECT
public:
  TableWindow(Session& s, int lyr, QWidget* parent = nullptr);
  ~TableWindow() override;

  // The layer's current number, 0 when it is gone.
  int Lyr() const;
  const std::string& Source() const { return source_; }
  TblPage& Page() { return page_; }
  QTableView* Grid() const { return grid_; }
  QScrollBar* Scroller() const { return scroller_; }
  QLabel* Counter() const { return counter_; }

  // RefTable: reload after outside changes; with `columns` the column set is renewed.
  void Reload(bool columns = false);
  // FlushPage: typed rows into the store.
  void Flush();
  // BlkTable / UnBlkTable.
  void SetBlocked(bool blocked);
  // TblMode 0, 1 or 2.
  void SetMode(int mode);
  // TblRange from the grid's current selection.
  void TakeRange();
  // The menu item of this window by its name (mnuCutCells ...), for the handlers and tests.
  QAction* Action(const QString& name) const;

signals:
  // mnuEditFeatureData: Edit Feature on this record.
  void EditFeatureRequested(int lyr, int rec);
  // mnuLayerProrperties: the layer properties dialog of the layer.
  void PropertiesRequested(int lyr);

public slots:
  // A selection entry (its menu name) on this table's layer: the range entries take the
  // records of the table's range, the others act on the selection.
  void RunSelection(const std::string& name);
  // The script host's run over the records.
  void OnRunScript();

protected:
  void closeEvent(QCloseEvent* e) override;
  void resizeEvent(QResizeEvent* e) override;
  bool eventFilter(QObject* o, QEvent* e) override;

private:
  void BuildMenus(QMenuBar* bar);
  void FitRows();
  void SyncScroller();
  void LoadPage();
  // Runs a range operation on the current range: refreshes the layer number first.
  template <class F> void RangeOp(F op);
  void FillSeriesAsk();
  void AddRecordsAsk();
  void AddFieldAsk();
  void DeleteFieldAsk();
  void RenameFieldAsk();
  void ChangeFieldAsk();
  void Sort(bool descending);
  void PrintPage();
  void Terminate();
  int CurrentField() const;

  Session& s_;
  std::string source_;
  std::string name_;
  TblPage page_;
  TableModel* model_;
  QTableView* grid_;
  QScrollBar* scroller_;
  QLabel* counter_;
  QComboBox* mode_;
  QAction* terminate_ = nullptr;
  bool blocked_ = false;
  std::array<int32_t, 2> anchor_{0, 0}; // record and field a Shift click reaches from
};

} // namespace velmora
