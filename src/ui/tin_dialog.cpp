#include "ui/tin_dialog.h"

#include <QLabel>
#include <QVBoxLayout>

#include "surface/tin_build.h"

namespace velmora {

TinDialog::TinDialog(Session& s, QWidget* parent)
    : SurfaceDialog(s, parent, " : Build Tin Surface(s) Message Box ", "NewTin") {
  setWindowTitle("Build Tin Surface(s)");
  setObjectName(kCaption);
  auto* note = new QLabel(
      "Building Tin Surface Analysis is a very powerfull tool, So please use it carefully. ", this);
  note->setWordWrap(true);
  top_->addWidget(note);
}

int TinDialog::Run(int lyr, int criteria, int heightField, const std::string& path, int method) {
  return BuildTin(s_, lyr, criteria, heightField, path, method);
}

} // namespace velmora
