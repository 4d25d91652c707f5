#pragma once
#include "ui/surface_dialog.h"

namespace velmora {

// frmTinSurf, "Build Tin Surface(s)": the TIN of a height layer into a new polygon layer.
class TinDialog : public SurfaceDialog {
  Q_OBJECT
public:
  TinDialog(Session& s, QWidget* parent = nullptr);
  static constexpr const char* kCaption = "Build Tin Surface";

protected:
  int Run(int lyr, int criteria, int heightField, const std::string& path, int method) override;
  std::string Report(int written, const std::string& name) const override {
    return std::to_string(written) + " Tin Surface(s) have been Built Successfully in Layer " +
           name;
  }
};

} // namespace velmora
