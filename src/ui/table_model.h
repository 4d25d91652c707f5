#pragma once
#include <QAbstractTableModel>
#include <QStyledItemDelegate>

#include "model/session.h"
#include "model/table_types.h"

namespace velmora {

// The grid's view of a TblPage: "Record No", the mark column, then one column per field.
// Only the page's rows are shown; the window's scroller moves the page.
class TableModel : public QAbstractTableModel {
  Q_OBJECT
public:
  TableModel(Session& s, TblPage& page, QObject* parent = nullptr)
      : QAbstractTableModel(parent), s_(s), p_(page) {}
  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& i, int role) const override;
  QVariant headerData(int section, Qt::Orientation o, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& i) const override;
  bool setData(const QModelIndex& i, const QVariant& v, int role) override;
  // The page was filled anew (rows, cells or columns).
  void Reset();

private:
  Session& s_;
  TblPage& p_;
};

// The cell editors by field type: a date picker, a two-way choice, or a text line limited
// to the field's width that takes only number keys in a "Numeric" cell.
class CellDelegate : public QStyledItemDelegate {
  Q_OBJECT
public:
  // `transposed`: one record with its fields as rows (Edit Feature), the values in column 1.
  CellDelegate(Session& s, TblPage& page, QObject* parent = nullptr, bool transposed = false)
      : QStyledItemDelegate(parent), s_(s), p_(page), transposed_(transposed) {}
  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& o,
                        const QModelIndex& i) const override;
  void setEditorData(QWidget* editor, const QModelIndex& i) const override;
  void setModelData(QWidget* editor, QAbstractItemModel* m, const QModelIndex& i) const override;

private:
  int FieldOf(const QModelIndex& i) const { return transposed_ ? i.row() + 1 : i.column() - 1; }
  Session& s_;
  TblPage& p_;
  bool transposed_;
};

// Edit Feature's view of a one-row TblPage: a row per field, its name and its value.
class RecordModel : public QAbstractTableModel {
  Q_OBJECT
public:
  RecordModel(Session& s, TblPage& page, QObject* parent = nullptr)
      : QAbstractTableModel(parent), s_(s), p_(page) {}
  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& i, int role) const override;
  QVariant headerData(int section, Qt::Orientation o, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& i) const override;
  bool setData(const QModelIndex& i, const QVariant& v, int role) override;
  void Reset();

private:
  Session& s_;
  TblPage& p_;
};

// The Qt form of the session's short date format ("dd/mm/yyyy" -> "dd/MM/yyyy").
QString QtDateFormat(const std::string& shortDate);

} // namespace velmora
