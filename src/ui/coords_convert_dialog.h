#pragma once
#include <QDialog>

#include "coords/coord_conv.h"
#include "model/session.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace velmora {

// "Convert Vector and Raster Layer Coordinates System": rewrites one open layer between
// WGS 84 degrees and a grid record, in place. The work is ConvertCoordsCmd's.
class CoordsConvertDialog : public QDialog {
  Q_OBJECT
public:
  CoordsConvertDialog(Session& s, QWidget* parent = nullptr);
  // The name the open-dialog checks know this form by.
  static constexpr const char* kCaption = "Convert Layer Coordinates System";
  // Refills the layer list, e.g. after layers were added or removed.
  void FillLayers();

protected:
  void closeEvent(QCloseEvent* e) override;

private:
  struct Frame {
    QLineEdit* zoneTxt;
    QComboBox* hemisphere;
    QLabel* zoneErr;
  };
  Session& s_;
  QComboBox* cmbLyr_;
  QComboBox* coordCmb_;
  Frame geo_{}, utm_{};
  QLabel* zoneLbl_[2];
  QPushButton* toGeo_;     // "<<"
  QPushButton* terminate_; // "Terminate"
  QPushButton* toGrid_;    // ">>"
  QLabel* txtFunc_;
  int running_ = 0; // the layer under conversion, 0 when none

  int SelectedLayer() const;
  void LayerChosen();
  void Start(CoordDir dir);
  void SetInputsEnabled(bool on);
};

} // namespace velmora
