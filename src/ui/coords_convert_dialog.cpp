#include "ui/coords_convert_dialog.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "coords/convert_lyr.h"
#include "frame/busy.h"
#include "model/datum_table.h"

namespace velmora {

namespace {

QComboBox* HemisphereBox(QWidget* parent) {
  auto* b = new QComboBox(parent);
  b->addItems({"North", "South"});
  return b;
}

} // namespace

CoordsConvertDialog::CoordsConvertDialog(Session& s, QWidget* parent) : QDialog(parent), s_(s) {
  setWindowTitle("Convert Vector and Raster Layer Coordinates System");
  auto* top = new QVBoxLayout(this);

  auto* pick = new QGridLayout;
  cmbLyr_ = new QComboBox(this);
  cmbLyr_->setObjectName("cmbLyr");
  coordCmb_ = new QComboBox(this);
  coordCmb_->setObjectName("Coordcmb");
  for (const auto& [text, idx] : FillDatumCmb(s_, 1))
    coordCmb_->addItem(QString::fromStdString(text), idx);
  coordCmb_->setCurrentIndex(coordCmb_->findData(kWgs84Idx));
  pick->addWidget(new QLabel("Layer", this), 0, 0);
  pick->addWidget(cmbLyr_, 0, 1);
  pick->addWidget(new QLabel("Coordinates System", this), 1, 0);
  pick->addWidget(coordCmb_, 1, 1);
  top->addLayout(pick);

  auto makeFrame = [this](const QString& title, const char* name, Frame& f) {
    auto* box = new QGroupBox(title, this);
    box->setObjectName(name);
    auto* g = new QGridLayout(box);
    f.zoneTxt = new QLineEdit(box);
    f.zoneTxt->setMaximumWidth(60);
    f.zoneTxt->setObjectName("ZoneTxt");
    f.hemisphere = HemisphereBox(box);
    f.hemisphere->setObjectName("Hemisphere");
    f.zoneErr = new QLabel("Error", box);
    f.zoneErr->setObjectName("zoneErr");
    f.zoneErr->setStyleSheet("color: red");
    f.zoneErr->hide();
    g->addWidget(new QLabel("Zone", box), 0, 0);
    g->addWidget(f.zoneTxt, 0, 1);
    g->addWidget(f.zoneErr, 0, 2);
    g->addWidget(new QLabel("Hemisphere", box), 1, 0);
    g->addWidget(f.hemisphere, 1, 1, 1, 2);
    connect(f.zoneTxt, &QLineEdit::textEdited, f.zoneErr, &QLabel::hide);
    return box;
  };
  auto* frames = new QHBoxLayout;
  QGroupBox* geoBox = makeFrame("Geographic", "GeoFrame2", geo_);
  auto* geoCol = new QVBoxLayout;
  geoCol->addWidget(geoBox);
  const char* zoneCaptions[2] = {"Left - Bottom Zone", "Right - Top Zone"};
  for (int i = 0; i < 2; ++i) {
    auto* row = new QHBoxLayout;
    row->addWidget(new QLabel(zoneCaptions[i], this));
    zoneLbl_[i] = new QLabel(this);
    zoneLbl_[i]->setObjectName(QString("ZoneLbl%1").arg(i));
    row->addWidget(zoneLbl_[i]);
    geoCol->addLayout(row);
  }
  frames->addLayout(geoCol);

  auto* buttons = new QVBoxLayout;
  toGeo_ = new QPushButton("<<", this);
  terminate_ = new QPushButton("Terminate", this);
  toGrid_ = new QPushButton(">>", this);
  toGeo_->setToolTip("Grid to Geographic");
  toGrid_->setToolTip("Geographic to Grid");
  toGeo_->setObjectName("CmdToGeo");
  toGrid_->setObjectName("CmdToGrid");
  terminate_->setObjectName("CmdTerminate");
  terminate_->setEnabled(false);
  buttons->addWidget(toGrid_);
  buttons->addWidget(terminate_);
  buttons->addWidget(toGeo_);
  frames->addLayout(buttons);
  frames->addWidget(makeFrame("Grid", "UtmFrame2", utm_));
  top->addLayout(frames);

  txtFunc_ = new QLabel(this);
  txtFunc_->setObjectName("txtFunc");
  txtFunc_->setWordWrap(true);
  top->addWidget(txtFunc_);
  top->addWidget(
      new QLabel("To undo Convert, Do not Save Changes and Reload layer from layers menu", this));

  connect(cmbLyr_, &QComboBox::currentIndexChanged, this, [this] { LayerChosen(); });
  connect(toGrid_, &QPushButton::clicked, this, [this] { Start(CoordDir::GeoToGrid); });
  connect(toGeo_, &QPushButton::clicked, this, [this] { Start(CoordDir::GridToGeo); });
  connect(terminate_, &QPushButton::clicked, this, [this] {
    if (running_) SetLyrTerminate(s_, running_, true);
  });
  FillLayers();
}

void CoordsConvertDialog::FillLayers() {
  cmbLyr_->clear();
  for (int i = 1; i <= s_.LyrCount; ++i)
    if (s_.Lyr[i].LyrKind == 1 || s_.Lyr[i].LyrKind == 2)
      cmbLyr_->addItem(QString::fromStdString(s_.Lyr[i].LyrName), i);
  if (s_.ActiveLyr >= 1) {
    int at = cmbLyr_->findData(s_.ActiveLyr);
    if (at >= 0) cmbLyr_->setCurrentIndex(at);
  }
  LayerChosen();
}

int CoordsConvertDialog::SelectedLayer() const {
  return cmbLyr_->currentIndex() < 0 ? 0 : cmbLyr_->currentData().toInt();
}

void CoordsConvertDialog::LayerChosen() {
  std::string lb, rt;
  CornerZones(s_, SelectedLayer(), lb, rt);
  zoneLbl_[0]->setText(QString::fromStdString(lb));
  zoneLbl_[1]->setText(QString::fromStdString(rt));
}

void CoordsConvertDialog::SetInputsEnabled(bool on) {
  for (QWidget* w :
       {static_cast<QWidget*>(cmbLyr_), static_cast<QWidget*>(coordCmb_),
        static_cast<QWidget*>(toGeo_), static_cast<QWidget*>(toGrid_),
        static_cast<QWidget*>(geo_.zoneTxt), static_cast<QWidget*>(utm_.zoneTxt),
        static_cast<QWidget*>(geo_.hemisphere), static_cast<QWidget*>(utm_.hemisphere)})
    w->setEnabled(on);
  terminate_->setEnabled(!on);
}

void CoordsConvertDialog::Start(CoordDir dir) {
  if (running_) return;
  // Geographic to grid takes the zone of the geographic side's frame, grid to geographic
  // the zone the grid is in.
  const Frame& f = dir == CoordDir::GeoToGrid ? geo_ : utm_;
  ConvertCoordsArgs a;
  a.Lyr = SelectedLayer();
  a.Datum = coordCmb_->currentIndex() < 0 ? 0 : coordCmb_->currentData().toInt();
  a.Dir = dir;
  a.ZoneText = f.zoneTxt->text().toStdString();
  a.South = f.hemisphere->currentIndex() == 1;
  f.zoneErr->hide();
  SetInputsEnabled(false);
  running_ = a.Lyr;
  txtFunc_->setText(QString::fromStdString(ConvertCoordsText(s_, a)));
  ConvertStatus st = ConvertCoordsCmd(s_, a);
  running_ = 0;
  SetInputsEnabled(true);
  switch (st) {
  case ConvertStatus::Converted:
    txtFunc_->setText(QString::fromStdString(ConvertCoordsText(s_, a)));
    break;
  case ConvertStatus::BadZone:
    f.zoneErr->show();
    txtFunc_->clear();
    break;
  case ConvertStatus::NotReady:
    txtFunc_->clear();
    break;
  case ConvertStatus::Busy:
  case ConvertStatus::Terminated:
    txtFunc_->setText(QString::fromStdString(" *** " + ConvertCoordsText(s_, a)) +
                      (dir == CoordDir::GeoToGrid ? " " : "") + "has been canceled *** ");
    break;
  }
  LayerChosen();
}

void CoordsConvertDialog::closeEvent(QCloseEvent* e) {
  // The form stays until its conversion has stopped.
  if (running_) {
    SetLyrTerminate(s_, running_, true);
    e->ignore();
    return;
  }
  QDialog::closeEvent(e);
}

} // namespace velmora
