#pragma once
#include <QDialog>

#include "model/session.h"

class QCheckBox;
class QComboBox;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace velmora {

// frmNet, "Shortest Path NetWork": picks From and To on a line layer with tool 16, runs
// the route search and lists the lines of the route by a chosen field.
class NetDialog : public QDialog {
  Q_OBJECT
public:
  static constexpr const char* kCaption = "Shortest Path NetWork";
  NetDialog(Session& s, QWidget* parent = nullptr);
  void FillLayers();
  // InstNet: the map's click in tool 16 at pixel (x, y) fills the current stop on a hit.
  void InstNet(int x, int y);
  // cmdptn 1 "From", 2 "To", 3 "Run", 4 "Terminate".
  void From();
  void To();
  void Run();
  void Terminate();

signals:
  // The map must be drawn again (a route was found or cleared) or its tool changed.
  void MapChanged();
  void ToolChanged();

protected:
  void showEvent(QShowEvent* e) override;
  void closeEvent(QCloseEvent* e) override;

private:
  int Layer() const;
  void LayerChanged();
  void FieldChanged();
  void ShowStop(int idx);
  void Pick(int idx);
  Session& s_;
  QComboBox* cmbLyr_;
  QComboBox* cmbFld_;
  QCheckBox* exact_;
  QPushButton* cmd_[5] = {};
  QLineEdit* txtX_[3] = {};
  QLineEdit* txtY_[3] = {};
  QLineEdit* txtFld_[3] = {};
  QLineEdit* txtRoute_;
  QPlainTextEdit* listPath_;
};

} // namespace velmora
