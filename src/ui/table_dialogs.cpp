#include "ui/table_dialogs.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QRegularExpressionValidator>
#include <QSpinBox>

#include "model/session.h"
#include "platform/qt/qt_host.h"

namespace velmora {

namespace {

QDialogButtonBox* Buttons(QDialog* d) {
  auto* b = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, d);
  QObject::connect(b, &QDialogButtonBox::accepted, d, &QDialog::accept);
  QObject::connect(b, &QDialogButtonBox::rejected, d, &QDialog::reject);
  return b;
}

} // namespace

FillSeriesDialog::FillSeriesDialog(const Session& s, const std::string& start, QWidget* parent)
    : QDialog(parent) {
  setWindowTitle("Fill Series");
  setObjectName("Fill Series");
  auto* form = new QFormLayout(this);
  // Keys a number or a date can have.
  const QString sep = QRegularExpression::escape(QString(QChar(s.Locale.DecimalSep)));
  auto* keys = new QRegularExpressionValidator(QRegularExpression("[0-9/.:" + sep + "+-]*"), this);
  StartValue = new QLineEdit(ToQ(start), this);
  StepValue = new QLineEdit("1", this);
  StopValue = new QLineEdit(this);
  for (QLineEdit* e : {StartValue, StepValue, StopValue}) e->setValidator(keys);
  StartValue->setObjectName("StartValue");
  StepValue->setObjectName("StepValue");
  StopValue->setObjectName("StopValue");
  form->addRow("Start Value", StartValue);
  form->addRow("Step Value", StepValue);
  form->addRow("Stop Value", StopValue);
  form->addRow(Buttons(this));
}

std::string FillSeriesDialog::Start() const {
  return FromQ(StartValue->text().trimmed());
}
std::string FillSeriesDialog::Step() const {
  return FromQ(StepValue->text().trimmed());
}
std::string FillSeriesDialog::Stop() const {
  return FromQ(StopValue->text().trimmed());
}

AddRecordsDialog::AddRecordsDialog(const std::string& lyrName, QWidget* parent) : QDialog(parent) {
  setWindowTitle(ToQ(lyrName + " : Add Records"));
  setObjectName("Add records");
  auto* form = new QFormLayout(this);
  RecNo = new QSpinBox(this);
  RecNo->setObjectName("RecNo");
  RecNo->setRange(1, 100000000);
  RecNo->setValue(1);
  form->addRow("Records", RecNo);
  form->addRow(Buttons(this));
}

int AddRecordsDialog::Count() const {
  return RecNo->value();
}

FieldDialog::FieldDialog(const QString& title, const std::string& name, char type, int width,
                         int decimals, bool nameEditable, QWidget* parent)
    : QDialog(parent) {
  setWindowTitle(title);
  auto* form = new QFormLayout(this);
  FieldName = new QLineEdit(ToQ(name), this);
  FieldName->setMaxLength(10);
  FieldName->setValidator(
      new QRegularExpressionValidator(QRegularExpression("[A-Za-z0-9_]*"), this));
  FieldName->setEnabled(nameEditable);
  FieldType = new QComboBox(this);
  FieldType->addItems({"Character", "Numeric", "Float", "Date", "Logical"});
  const QString letters = "CNFDL";
  FieldType->setCurrentIndex(std::max<int>(0, int(letters.indexOf(QChar(type)))));
  FieldWidth = new QSpinBox(this);
  FieldWidth->setRange(1, 255);
  FieldWidth->setValue(width);
  FieldDecimals = new QSpinBox(this);
  FieldDecimals->setRange(0, 254);
  FieldDecimals->setValue(decimals);
  form->addRow("Name", FieldName);
  form->addRow("Type", FieldType);
  form->addRow("Width", FieldWidth);
  form->addRow("Decimals", FieldDecimals);
  form->addRow(Buttons(this));
}

std::string FieldDialog::Name() const {
  return FromQ(FieldName->text().trimmed());
}
char FieldDialog::Type() const {
  return "CNFDL"[std::clamp(FieldType->currentIndex(), 0, 4)];
}
int FieldDialog::Width() const {
  return FieldWidth->value();
}
int FieldDialog::Decimals() const {
  return FieldDecimals->value();
}

} // namespace velmora
