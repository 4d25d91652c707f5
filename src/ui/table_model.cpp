#include "ui/table_model.h"

#include <QBrush>
#include <QComboBox>
#include <QDateEdit>
#include <QLineEdit>
#include <QValidator>

#include "platform/qt/qt_host.h"
#include "store/dbf_store.h"
#include "table/table_page.h"

namespace velmora {

namespace {

// Keys of a "Numeric" cell: digits, "-", the decimal separator.
class NumValidator : public QValidator {
public:
  NumValidator(const Session& s, QObject* parent) : QValidator(parent), s_(s) {}
  State validate(QString& text, int&) const override {
    for (QChar c : text)
      if (c.unicode() > 127 || !IsNumChar(s_, char(c.unicode()))) return Invalid;
    return Acceptable;
  }

private:
  const Session& s_;
};

} // namespace

QString QtDateFormat(const std::string& shortDate) {
  QString f;
  for (char c : shortDate) f += c == 'm' ? QChar('M') : QChar(c);
  return f;
}

int TableModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : int(p_.RowRec.size());
}

int TableModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : 2 + p_.TblFieldCount;
}

QVariant TableModel::data(const QModelIndex& i, int role) const {
  if (!i.isValid() || size_t(i.row()) >= p_.RowRec.size()) return {};
  const int rec = p_.RowRec[size_t(i.row())];
  const int lyr = p_.TblLayer;
  if (role == Qt::DisplayRole || role == Qt::EditRole) {
    if (i.column() == 0) return rec > 0 ? QVariant(rec) : QVariant(QString());
    if (i.column() == 1) return p_.RowSave[size_t(i.row())] ? QString("save") : QString();
    return ToQ(PageCell(p_, i.row(), i.column() - 1));
  }
  if (role == Qt::BackgroundRole && i.column() == 0 && rec > 0 && lyr >= 1 && lyr <= s_.LyrCount) {
    // Selection and deletion show on the record number.
    if (RecDeleted(s_, lyr, rec)) return QBrush(QColor(240, 150, 150));
    if (RecSelected(s_, lyr, rec)) return QBrush(QColor(255, 230, 90));
  }
  if (role == Qt::TextAlignmentRole && i.column() >= 2 && lyr >= 1 && lyr <= s_.LyrCount &&
      GetFieldType(s_, lyr, i.column() - 1) == "Numeric")
    return int(Qt::AlignRight | Qt::AlignVCenter);
  return {};
}

QVariant TableModel::headerData(int section, Qt::Orientation o, int role) const {
  if (role != Qt::DisplayRole) return {};
  if (o == Qt::Vertical) return {};
  if (section == 0) return QString("Record No");
  if (section == 1) return QString();
  const int lyr = p_.TblLayer;
  if (lyr < 1 || lyr > s_.LyrCount) return {};
  return ToQ(GetFieldName(s_, lyr, section - 1));
}

Qt::ItemFlags TableModel::flags(const QModelIndex& i) const {
  Qt::ItemFlags f = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
  if (i.column() >= 2 && !p_.TblBusy && CellEditable(s_, p_, i.row())) f |= Qt::ItemIsEditable;
  return f;
}

bool TableModel::setData(const QModelIndex& i, const QVariant& v, int role) {
  if (role != Qt::EditRole || i.column() < 2 || p_.TblBusy) return false;
  if (!SetPageCell(s_, p_, i.row(), i.column() - 1, FromQ(v.toString()))) return false;
  emit dataChanged(index(i.row(), 1), index(i.row(), columnCount() - 1));
  return true;
}

void TableModel::Reset() {
  beginResetModel();
  endResetModel();
}

QWidget* CellDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& o,
                                    const QModelIndex& i) const {
  const int lyr = p_.TblLayer, f = FieldOf(i);
  const std::string type = GetFieldType(s_, lyr, f);
  if (type == "Date") {
    auto* d = new QDateEdit(parent);
    d->setCalendarPopup(true);
    d->setDisplayFormat(QtDateFormat(s_.Locale.ShortDate));
    return d;
  }
  if (type == "Logical") {
    auto* c = new QComboBox(parent);
    c->addItems({"T", "F"});
    return c;
  }
  auto* e = qobject_cast<QLineEdit*>(QStyledItemDelegate::createEditor(parent, o, i));
  if (!e) e = new QLineEdit(parent);
  e->setMaxLength(GetFieldWidth(s_, lyr, f));
  if (type == "Numeric") e->setValidator(new NumValidator(s_, e));
  return e;
}

void CellDelegate::setEditorData(QWidget* editor, const QModelIndex& i) const {
  const QString v = i.data(Qt::EditRole).toString().trimmed();
  if (auto* d = qobject_cast<QDateEdit*>(editor)) {
    QDate date = QDate::fromString(v, QtDateFormat(s_.Locale.ShortDate));
    d->setDate(date.isValid() ? date : QDate::currentDate());
  } else if (auto* c = qobject_cast<QComboBox*>(editor)) {
    c->setCurrentIndex(
        v.startsWith('F', Qt::CaseInsensitive) || v.startsWith('N', Qt::CaseInsensitive) ? 1 : 0);
  } else if (auto* e = qobject_cast<QLineEdit*>(editor)) {
    e->setText(i.data(Qt::EditRole).toString());
  }
}

void CellDelegate::setModelData(QWidget* editor, QAbstractItemModel* m,
                                const QModelIndex& i) const {
  if (auto* d = qobject_cast<QDateEdit*>(editor))
    m->setData(i, d->date().toString(QtDateFormat(s_.Locale.ShortDate)));
  else if (auto* c = qobject_cast<QComboBox*>(editor))
    m->setData(i, c->currentText());
  else if (auto* e = qobject_cast<QLineEdit*>(editor))
    m->setData(i, e->text());
}

int RecordModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() || p_.RowRec.empty() || p_.RowRec[0] < 1 ? 0 : p_.TblFieldCount;
}

int RecordModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : 2;
}

QVariant RecordModel::data(const QModelIndex& i, int role) const {
  if (!i.isValid() || (role != Qt::DisplayRole && role != Qt::EditRole)) return {};
  const int lyr = p_.TblLayer;
  if (i.column() == 0)
    return lyr >= 1 && lyr <= s_.LyrCount ? ToQ(GetFieldName(s_, lyr, i.row() + 1)) : QString();
  return ToQ(PageCell(p_, 0, i.row() + 1));
}

QVariant RecordModel::headerData(int section, Qt::Orientation o, int role) const {
  if (role != Qt::DisplayRole || o != Qt::Horizontal) return {};
  return section == 0 ? QString("Field") : QString("Value");
}

Qt::ItemFlags RecordModel::flags(const QModelIndex& i) const {
  Qt::ItemFlags f = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
  if (i.column() == 1 && CellEditable(s_, p_, 0)) f |= Qt::ItemIsEditable;
  return f;
}

bool RecordModel::setData(const QModelIndex& i, const QVariant& v, int role) {
  if (role != Qt::EditRole || i.column() != 1) return false;
  if (!SetPageCell(s_, p_, 0, i.row() + 1, FromQ(v.toString()))) return false;
  // Edit Feature writes at once, so that the map and the table see the value.
  FlushPage(s_, p_);
  emit dataChanged(i, i);
  return true;
}

void RecordModel::Reset() {
  beginResetModel();
  endResetModel();
}

} // namespace velmora
