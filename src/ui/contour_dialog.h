#pragma once
#include "ui/surface_dialog.h"

class QLineEdit;
class QRadioButton;

namespace velmora {

// frmContour: contour lines at an interval from a base value, from the surface of a height
// layer or from a TIN layer, into a new polyline layer.
class ContourDialog : public SurfaceDialog {
  Q_OBJECT
public:
  ContourDialog(Session& s, QWidget* parent = nullptr);
  static constexpr const char* kCaption = "Contour Surface Analysis";

protected:
  int Run(int lyr, int criteria, int heightField, const std::string& path, int method) override;
  std::string Report(int written, const std::string& name) const override {
    return std::to_string(written) + " Countours have been Built Successfully to Layer " + name;
  }
  int Method() const override;

private:
  QLineEdit* interval_;
  QLineEdit* base_;
  QRadioButton* fromTin_;
};

} // namespace velmora
