#pragma once
#include <QDialog>
#include <string>

class QLineEdit;
class QComboBox;
class QSpinBox;

namespace velmora {

struct Session;

// "Fill Series": StartValue, StepValue, StopValue, each a trimmed text.
class FillSeriesDialog : public QDialog {
  Q_OBJECT
public:
  FillSeriesDialog(const Session& s, const std::string& start, QWidget* parent = nullptr);
  std::string Start() const;
  std::string Step() const;
  std::string Stop() const;
  QLineEdit *StartValue, *StepValue, *StopValue;
};

// The count of "Add Empty Records...", captioned "<layer> : Add Records".
class AddRecordsDialog : public QDialog {
  Q_OBJECT
public:
  AddRecordsDialog(const std::string& lyrName, QWidget* parent = nullptr);
  int Count() const;
  QSpinBox* RecNo;
};

// A field's name, type, width and decimals, for "Add Field..." and "Change Field...".
class FieldDialog : public QDialog {
  Q_OBJECT
public:
  FieldDialog(const QString& title, const std::string& name, char type, int width, int decimals,
              bool nameEditable, QWidget* parent = nullptr);
  std::string Name() const;
  char Type() const;
  int Width() const;
  int Decimals() const;
  QLineEdit* FieldName;
  QComboBox* FieldType;
  QSpinBox *FieldWidth, *FieldDecimals;
};

} // namespace velmora
