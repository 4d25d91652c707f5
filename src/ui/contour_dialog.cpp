#include "ui/contour_dialog.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QVBoxLayout>

#include "platform/qt/qt_host.h"
#include "store/dbf_store.h"
#include "surface/contours.h"

namespace velmora {

ContourDialog::ContourDialog(Session& s, QWidget* parent)
    : SurfaceDialog(s, parent, " : Contour Surface(s) Message Box ", "NewContour") {
  setWindowTitle("Contour Surface(s) Analysis");
  setObjectName(kCaption);
  fromTin_ = new QRadioButton("Build Contours from a Tin Surface Layer", this);
  fromTin_->setObjectName("SurfaceOption2");
  option_[1]->parentWidget()->layout()->addWidget(fromTin_);
  auto* g = new QGridLayout;
  interval_ = new QLineEdit("10", this);
  interval_->setObjectName("txtInterval");
  base_ = new QLineEdit("0", this);
  base_->setObjectName("txtBase");
  g->addWidget(new QLabel("Contour Interval", this), 0, 0);
  g->addWidget(interval_, 0, 1);
  g->addWidget(new QLabel("Base Value", this), 1, 0);
  g->addWidget(base_, 1, 1);
  top_->insertLayout(2, g);
}

int ContourDialog::Method() const {
  return fromTin_->isChecked() ? 3 : SurfaceDialog::Method();
}

int ContourDialog::Run(int lyr, int criteria, int heightField, const std::string& path,
                       int method) {
  // The user's numbers in the session's decimal separator.
  const float interval = float(StrToDbl(s_, FromQ(interval_->text())));
  const float base = float(StrToDbl(s_, FromQ(base_->text())));
  return BuildContours(s_, lyr, criteria, heightField, interval, base, path, method);
}

} // namespace velmora
