#pragma once
#include <QDialog>
#include <string>

#include "model/session.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QVBoxLayout;

namespace velmora {

// What the TIN and contour forms share: the height layer, the features it takes
// (HcmdCrt), the height field (HeightField), the method (SurfaceOption), the new layer
// (ToShpLyr), "Build" and "Terminate". Each form calls its one core operation.
class SurfaceDialog : public QDialog {
  Q_OBJECT
public:
  void FillLayers();
  // The height field as the core takes it: a field number, 0 for the shapes' Z, -1 none.
  int HeightFieldChoice() const;
  int SelectedLayer() const;

protected:
  SurfaceDialog(Session& s, QWidget* parent, const std::string& busyTitle,
                const std::string& defaultName);
  void showEvent(QShowEvent* e) override;
  void closeEvent(QCloseEvent* e) override;
  // Runs the operation on the layer; returns the features written or -1.
  virtual int Run(int lyr, int criteria, int heightField, const std::string& path, int method) = 0;
  virtual int Method() const;
  // The report line of a finished run.
  virtual std::string Report(int written, const std::string& name) const = 0;

  Session& s_;
  QVBoxLayout* top_;
  QComboBox* cmbLyr_;
  QComboBox* criteria_; // HcmdCrt
  QComboBox* height_;   // HeightField
  QRadioButton* option_[2];
  QLineEdit* toShp_; // ToShpLyr
  QPushButton* build_;
  QPushButton* terminate_;
  QLabel* txtFunc_;
  int running_ = 0;

private:
  void LayerChosen();
  void Browse();
  void Build();
  std::string busyTitle_, defaultName_;
};

} // namespace velmora
