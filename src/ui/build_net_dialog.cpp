#include "ui/build_net_dialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QShowEvent>
#include <QVBoxLayout>
#include <cmath>

#include "frame/busy.h"
#include "model/val.h"
#include "platform/qt/qt_host.h"

namespace velmora {

namespace {

bool IsLineType(int t) {
  return t == 3 || t == 13 || t == 23;
}

} // namespace

BuildNetDialog::BuildNetDialog(Session& s, QWidget* parent) : QDialog(parent), s_(s) {
  setWindowTitle(kCaption);
  setObjectName(kCaption);
  auto* top = new QVBoxLayout(this);
  auto* g = new QGridLayout;
  cmbLyr_ = new QComboBox(this);
  cmbLyr_->setObjectName("FrmcmbLyr");
  g->addWidget(new QLabel("Polyline Layers", this), 0, 0);
  g->addWidget(cmbLyr_, 0, 1);
  applyTol_ = new QCheckBox("Apply Tolerance", this);
  applyTol_->setObjectName("ApplyTolerance");
  tolerance_ = new QLineEdit("0.01", this);
  tolerance_->setObjectName("Tolerance");
  g->addWidget(applyTol_, 1, 0);
  g->addWidget(tolerance_, 1, 1);
  top->addLayout(g);
  top->addWidget(new QLabel("Map Unites ( 1 Meter = almost 0.00001 Decimal Degree )", this));
  progBar_ = new QProgressBar(this);
  progBar_->setObjectName("ProgBar");
  progBar_->hide();
  txtFunc_ = new QLabel(this);
  txtFunc_->setObjectName("txtFunc");
  top->addWidget(progBar_);
  top->addWidget(txtFunc_);
  auto* buttons = new QHBoxLayout;
  build_ = new QPushButton("Build", this);
  build_->setObjectName("Cmd0");
  terminate_ = new QPushButton("Terminate", this);
  terminate_->setObjectName("Cmd1");
  buttons->addWidget(build_);
  buttons->addWidget(terminate_);
  top->addLayout(buttons);
  connect(build_, &QPushButton::clicked, this, &BuildNetDialog::Build);
  connect(terminate_, &QPushButton::clicked, this, &BuildNetDialog::Terminate);
  FillLayers();
}

void BuildNetDialog::FillLayers() {
  const int keep = Layer();
  cmbLyr_->clear();
  for (int i = 1; i <= s_.LyrCount; ++i)
    if (s_.Lyr[i].LyrKind == 1 && IsLineType(s_.Lyr[i].Shp.ShpType))
      cmbLyr_->addItem(ToQ(s_.Lyr[i].LyrName), i);
  const int at = cmbLyr_->findData(keep);
  if (at >= 0) cmbLyr_->setCurrentIndex(at);
}

int BuildNetDialog::Layer() const {
  return cmbLyr_->count() ? cmbLyr_->currentData().toInt() : 0;
}

void BuildNetDialog::showEvent(QShowEvent* e) {
  FillLayers();
  // The default tolerance follows whether the map is in degrees or projected.
  const int n = Layer();
  bool degrees = false;
  if (n > 0) {
    const ShpMainHeader& h = s_.Lyr[n].Shp.ShpHeader;
    degrees = std::fabs(h.Xmin) <= 180 && std::fabs(h.Xmax) <= 180 && std::fabs(h.Ymin) <= 90 &&
              std::fabs(h.Ymax) <= 90;
  }
  tolerance_->setText(degrees ? "0.0000001" : "0.01");
  s_.Net.BuildDialogOpen = true;
  QDialog::showEvent(e);
}

void BuildNetDialog::closeEvent(QCloseEvent* e) {
  s_.Net.BuildDialogOpen = false;
  QDialog::closeEvent(e);
}

void BuildNetDialog::Build() {
  if (s_.Net.NetDialogOpen || s_.host->IsDialogOpen("Shortest Path NetWork")) {
    s_.host->MsgBox("Please close Shortest Path menu before Building Shortest NetWork ",
                    "Close menu(s) Message Box", MsgButtons::OkOnly, MsgAnswer::Ok);
    return;
  }
  const int n = Layer();
  if (n < 1 || n > s_.LyrCount) return;
  if (LyrIsBusy(s_, n)) {
    const LyrRec& l = s_.Lyr[n];
    if (s_.host->MsgBox("  Would you like to Terminate " + l.BusyFunc + " Function in layer " +
                            l.LyrName + " ?   \r\n",
                        l.LyrName + " : Build NetWork Message Box ", MsgButtons::YesNo,
                        MsgAnswer::No) == MsgAnswer::Yes)
      SetLyrTerminate(s_, n, true);
    return;
  }
  const double tol = applyTol_->isChecked() ? Val(tolerance_->text().toStdString()) : 0;
  build_->setEnabled(false);
  BuildNet(s_, n, tol, this);
  build_->setEnabled(true);
  emit Built();
}

void BuildNetDialog::Terminate() {
  const int n = Layer();
  if (n >= 1 && n <= s_.LyrCount && s_.Lyr[n].LyrBusy) SetLyrTerminate(s_, n, true);
}

void BuildNetDialog::Range(long long max) {
  progBar_->setRange(0, int(std::min<long long>(max, 2147483647)));
}
void BuildNetDialog::Value(long long v) {
  progBar_->setValue(int(std::min<long long>(v, progBar_->maximum())));
}
void BuildNetDialog::Text(const std::string& t) {
  txtFunc_->setText(ToQ(t));
}
void BuildNetDialog::Show(bool on) {
  progBar_->setVisible(on);
  txtFunc_->setVisible(true);
}

} // namespace velmora
