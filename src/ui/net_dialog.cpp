#include "ui/net_dialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShowEvent>
#include <QVBoxLayout>

#include "frame/busy.h"
#include "model/c_numbers.h"
#include "model/file_util.h"
#include "network/net_files.h"
#include "network/route_run.h"
#include "network/route_stops.h"
#include "platform/qt/qt_host.h"
#include "store/dbf_store.h"
#include "view/map_tools.h"

namespace velmora {

NetDialog::NetDialog(Session& s, QWidget* parent) : QDialog(parent), s_(s) {
  setWindowTitle(kCaption);
  setObjectName(kCaption);
  auto* top = new QVBoxLayout(this);
  auto* g = new QGridLayout;
  cmbLyr_ = new QComboBox(this);
  cmbLyr_->setObjectName("cmbLyr");
  cmbFld_ = new QComboBox(this);
  cmbFld_->setObjectName("cmbFld");
  g->addWidget(new QLabel("Layer", this), 0, 0);
  g->addWidget(cmbLyr_, 0, 1, 1, 3);
  g->addWidget(new QLabel("Field", this), 1, 0);
  g->addWidget(cmbFld_, 1, 1, 1, 3);
  const char* captions[5] = {"", "From", "To", "Run", "Terminate"};
  for (int i = 1; i <= 4; ++i) {
    cmd_[i] = new QPushButton(captions[i], this);
    cmd_[i]->setObjectName(QString("cmdptn%1").arg(i));
  }
  for (int i = 1; i <= 2; ++i) {
    txtX_[i] = new QLineEdit(this);
    txtY_[i] = new QLineEdit(this);
    txtFld_[i] = new QLineEdit(this);
    txtX_[i]->setObjectName(QString("TxtX%1").arg(i));
    txtY_[i]->setObjectName(QString("TxtY%1").arg(i));
    txtFld_[i]->setObjectName(QString("TxtFld%1").arg(i));
    for (QLineEdit* e : {txtX_[i], txtY_[i], txtFld_[i]}) e->setReadOnly(true);
    g->addWidget(cmd_[i], 1 + i, 0);
    g->addWidget(txtX_[i], 1 + i, 1);
    g->addWidget(txtY_[i], 1 + i, 2);
    g->addWidget(txtFld_[i], 1 + i, 3);
  }
  top->addLayout(g);
  exact_ = new QCheckBox("Exact shortest path", this);
  exact_->setObjectName("chkExact");
  top->addWidget(exact_);
  auto* row = new QHBoxLayout;
  row->addWidget(cmd_[3]);
  row->addWidget(cmd_[4]);
  row->addWidget(new QLabel("Length", this));
  txtRoute_ = new QLineEdit("0", this);
  txtRoute_->setObjectName("TxtRoute1");
  txtRoute_->setReadOnly(true);
  row->addWidget(txtRoute_);
  top->addLayout(row);
  listPath_ = new QPlainTextEdit(this);
  listPath_->setObjectName("ListPath");
  listPath_->setReadOnly(true);
  top->addWidget(listPath_);
  connect(cmd_[1], &QPushButton::clicked, this, &NetDialog::From);
  connect(cmd_[2], &QPushButton::clicked, this, &NetDialog::To);
  connect(cmd_[3], &QPushButton::clicked, this, &NetDialog::Run);
  connect(cmd_[4], &QPushButton::clicked, this, &NetDialog::Terminate);
  connect(cmbLyr_, &QComboBox::currentIndexChanged, this, &NetDialog::LayerChanged);
  connect(cmbFld_, &QComboBox::currentIndexChanged, this, &NetDialog::FieldChanged);
  connect(exact_, &QCheckBox::toggled, this, [this](bool on) { s_.Net.NetExact = on; });
}

void NetDialog::FillLayers() {
  const int keep = Layer();
  QSignalBlocker block(cmbLyr_);
  cmbLyr_->clear();
  for (int i = 1; i <= s_.LyrCount; ++i) {
    const int t = s_.Lyr[i].Shp.ShpType;
    if (s_.Lyr[i].LyrKind == 1 && (t == 3 || t == 13 || t == 23))
      cmbLyr_->addItem(ToQ(s_.Lyr[i].LyrName), i);
  }
  const int at = cmbLyr_->findData(keep);
  cmbLyr_->setCurrentIndex(at >= 0 ? at : 0);
  block.unblock();
  LayerChanged();
}

int NetDialog::Layer() const {
  return cmbLyr_->count() ? cmbLyr_->currentData().toInt() : 0;
}

void NetDialog::LayerChanged() {
  const int n = Layer();
  const bool usable = n >= 1 && n <= s_.LyrCount && s_.Lyr[n].LyrKind == 1;
  {
    QSignalBlocker block(cmbFld_);
    cmbFld_->clear();
    if (!usable) {
      cmbFld_->addItem("None", 0);
    } else {
      for (int f = 1; f <= s_.Lyr[n].Dbf.DbfFieldCount; ++f)
        cmbFld_->addItem(ToQ(GetFieldName(s_, n, f)), f);
      if (cmbFld_->count() == 0) cmbFld_->addItem("None", 0);
    }
  }
  for (int i = 1; i <= 4; ++i) cmd_[i]->setEnabled(usable);
  s_.Net.NetLyr = usable ? n : 0;
  if (!usable) return;
  if (!LyrIsBusy(s_, n)) LoadNet(s_, n); // a running search holds the network it has
  s_.Net.NetStops = {};
  for (int i = 1; i <= 2; ++i) {
    txtX_[i]->clear();
    txtY_[i]->clear();
    txtFld_[i]->clear();
  }
  listPath_->clear();
}

void NetDialog::ShowStop(int idx) {
  const NetLink& k = s_.Net.NetStops[size_t(idx)];
  const int n = Layer(), f = cmbFld_->currentData().toInt();
  if (k.LinkFeature < 1 || n < 1) return;
  txtX_[idx]->setText(ToQ(GeneralText(k.LinkX, 15)));
  txtY_[idx]->setText(ToQ(GeneralText(k.LinkY, 15)));
  if (f >= 1 && f <= s_.Lyr[n].Dbf.DbfFieldCount) {
    ReadDbfRec(s_, n, k.LinkFeature - 1);
    txtFld_[idx]->setText(ToQ(Trim(GetFieldValue(s_, n, f))));
  } else {
    txtFld_[idx]->clear();
  }
}

void NetDialog::FieldChanged() {
  for (int i = 1; i <= 2; ++i) ShowStop(i);
}

void NetDialog::Pick(int idx) {
  s_.Net.NetStopIdx = int16_t(idx);
  s_.MapView.MapTool = kToolRouteStop;
  emit ToolChanged();
}
void NetDialog::From() {
  Pick(1);
}
void NetDialog::To() {
  Pick(2);
}

void NetDialog::InstNet(int x, int y) {
  const int n = Layer();
  if (n < 1 || !PickRouteStop(s_, n, x, y)) return;
  const int idx = s_.Net.NetStopIdx;
  velmora::InstNet(s_, idx, s_.Edit.HitNow);
  ShowStop(idx);
}

void NetDialog::Run() {
  const int n = Layer();
  if (n < 1 || n > s_.LyrCount) return;
  if (LyrIsBusy(s_, n)) {
    const LyrRec& l = s_.Lyr[n];
    if (s_.host->MsgBox("  Would you like to Terminate " + l.BusyFunc + " Function in layer " +
                            l.LyrName + " ?   \r\n",
                        l.LyrName + " : NetWork Message Box ", MsgButtons::YesNo,
                        MsgAnswer::No) == MsgAnswer::Yes)
      SetLyrTerminate(s_, n, true);
    return;
  }
  txtRoute_->setText("0");
  listPath_->setPlainText(" Kindly, Please Wait ");
  cmd_[3]->setEnabled(false);
  RunRoute(s_, n, exact_->isChecked());
  cmd_[3]->setEnabled(true);
  if (n > s_.LyrCount) return;
  txtRoute_->setText(ToQ(RouteLenText(s_.Lyr[n].Net.NetRouteLen)));
  QString list;
  for (const std::string& v : RouteFieldValues(s_, n, cmbFld_->currentData().toInt()))
    list += ToQ(v) + "\n";
  listPath_->setPlainText(list);
  listPath_->moveCursor(QTextCursor::End);
  emit MapChanged();
}

void NetDialog::Terminate() {
  const int n = Layer();
  if (n >= 1 && n <= s_.LyrCount && s_.Lyr[n].LyrBusy) SetLyrTerminate(s_, n, true);
}

void NetDialog::showEvent(QShowEvent* e) {
  s_.Net.NetDialogOpen = true;
  s_.Net.NetStopIdx = 1;
  s_.Net.ToolBefore =
      s_.MapView.MapTool == kToolRouteStop ? s_.View.MapToolKeep : s_.MapView.MapTool;
  FillLayers();
  QDialog::showEvent(e);
}

void NetDialog::closeEvent(QCloseEvent* e) {
  s_.Net.NetDialogOpen = false;
  s_.Net.NetLyr = 0;
  if (s_.MapView.MapTool == kToolRouteStop) s_.MapView.MapTool = s_.Net.ToolBefore;
  emit ToolChanged();
  QDialog::closeEvent(e);
}

} // namespace velmora
