#include "ui/coords_dialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>

#include "coords/convert_lyr.h"
#include "coords/prj_file.h"
#include "coords/utm_transform.h"
#include "coords/utm_zone.h"
#include "model/datum_table.h"

namespace velmora {

namespace {

QString Num(double v) {
  return QString::number(v, 'g', 15);
}

bool ReadNum(QLineEdit* e, double& v) {
  bool ok = false;
  v = e->text().trimmed().toDouble(&ok);
  if (!ok) e->setFocus();
  return ok;
}

void FillRecords(QComboBox* box, const DatumItems& items) {
  box->clear();
  for (const auto& [text, idx] : items) box->addItem(QString::fromStdString(text), idx);
}

int DataOf(const QComboBox* box) {
  return box->currentIndex() < 0 ? 0 : box->currentData().toInt();
}

} // namespace

CoordsDialog::CoordsDialog(Session& s, QWidget* parent) : QDialog(parent), s_(s) {
  setWindowTitle("Coordinates");
  auto* top = new QVBoxLayout(this);
  auto* tabs = new QTabWidget(this);
  tabs->addTab(UnitsPage(), "Map Units");
  tabs->addTab(PointPage(), "Convert Point");
  tabs->addTab(RecordsPage(), "Projection Systems");
  top->addWidget(tabs);
  auto* box = new QDialogButtonBox(QDialogButtonBox::Close, this);
  connect(box, &QDialogButtonBox::rejected, this, &QDialog::reject);
  top->addWidget(box);
  FillRecordCombos();
  LoadUnits();
}

QWidget* CoordsDialog::UnitsPage() {
  auto* page = new QWidget(this);
  auto* v = new QVBoxLayout(page);
  auto makeRow = [page](const QString& title, UnitRow& r) {
    auto* g = new QGroupBox(title, page);
    auto* f = new QFormLayout(g);
    r.unit = new QComboBox(g);
    r.unit->addItems({"Degrees", "Meters"});
    r.record = new QComboBox(g);
    r.zone = new QSpinBox(g);
    r.zone->setRange(1, 60);
    r.hemisphere = new QComboBox(g);
    r.hemisphere->addItems({"North", "South"});
    f->addRow("Units", r.unit);
    f->addRow("Coordinates System", r.record);
    f->addRow("Zone", r.zone);
    f->addRow("Hemisphere", r.hemisphere);
    return g;
  };
  v->addWidget(makeRow("Map Projection", map_));
  v->addWidget(makeRow("Measuring Projection (length, area, distance and scale)", meas_));
  auto* apply = new QPushButton("Apply", page);
  connect(apply, &QPushButton::clicked, this, [this] { ApplyUnits(); });
  v->addWidget(apply, 0, Qt::AlignRight);
  return page;
}

QWidget* CoordsDialog::PointPage() {
  auto* page = new QWidget(this);
  auto* g = new QGridLayout(page);
  pointRec_ = new QComboBox(page);
  pointZone_ = new QLineEdit(page);
  pointZoneErr_ = new QLabel("Error", page);
  pointZoneErr_->setStyleSheet("color: red");
  pointZoneErr_->hide();
  pointHemi_ = new QComboBox(page);
  pointHemi_->addItems({"North", "South"});
  lat_ = new QLineEdit(page), lon_ = new QLineEdit(page);
  x_ = new QLineEdit(page), y_ = new QLineEdit(page);
  pointAdvice_ = new QLabel(page);
  auto* toGrid = new QPushButton(">>", page);
  auto* toGeo = new QPushButton("<<", page);
  g->addWidget(new QLabel("Coordinates System", page), 0, 0);
  g->addWidget(pointRec_, 0, 1, 1, 4);
  g->addWidget(new QLabel("Zone", page), 1, 0);
  g->addWidget(pointZone_, 1, 1);
  g->addWidget(pointZoneErr_, 1, 2);
  g->addWidget(pointHemi_, 1, 3);
  g->addWidget(new QLabel("Latitude", page), 2, 0);
  g->addWidget(lat_, 2, 1);
  g->addWidget(new QLabel("X (Easting)", page), 2, 3);
  g->addWidget(x_, 2, 4);
  g->addWidget(new QLabel("Longitude", page), 3, 0);
  g->addWidget(lon_, 3, 1);
  g->addWidget(new QLabel("Y (Northing)", page), 3, 3);
  g->addWidget(y_, 3, 4);
  g->addWidget(toGrid, 2, 2);
  g->addWidget(toGeo, 3, 2);
  g->addWidget(pointAdvice_, 4, 0, 1, 5);
  connect(toGrid, &QPushButton::clicked, this, [this] { ToGrid(); });
  connect(toGeo, &QPushButton::clicked, this, [this] { ToGeographic(); });
  return page;
}

QWidget* CoordsDialog::RecordsPage() {
  auto* page = new QWidget(this);
  auto* v = new QVBoxLayout(page);
  mapProjCmb_ = new QComboBox(page);
  mapProjCmb_->setObjectName("MapProjCmb");
  v->addWidget(mapProjCmb_);
  auto* f = new QFormLayout;
  auto edit = [page] { return new QLineEdit(page); };
  crdName_ = edit(), sphName_ = edit(), sma_ = edit(), smb_ = edit(), flat_ = edit();
  fEast_ = edit(), fNorth_ = edit(), fNorthS_ = edit(), cm_ = edit(), sf_ = edit();
  latOrg_ = edit();
  crdName_->setObjectName("CrdName");
  spheroid_ = new QComboBox(page);
  f->addRow("Name", crdName_);
  f->addRow("Spheroid", spheroid_);
  f->addRow("Spheroid name", sphName_);
  f->addRow("Semi-major axis (m)", sma_);
  f->addRow("Semi-minor axis (m)", smb_);
  f->addRow("Inverse flattening (0: from the axes)", flat_);
  f->addRow("False easting (m)", fEast_);
  f->addRow("False northing, north (m)", fNorth_);
  f->addRow("False northing, south (m)", fNorthS_);
  f->addRow("Central meridian (9999: from the zone)", cm_);
  f->addRow("Scale factor", sf_);
  f->addRow("Latitude of origin", latOrg_);
  const char* transNames[7] = {"dx (m)",       "dy (m)",       "dz (m)",     "rx (seconds)",
                               "ry (seconds)", "rz (seconds)", "scale (ppm)"};
  for (size_t i = 0; i < 7; ++i) {
    trans_[i] = edit();
    trans_[i]->setObjectName(QString("Trans%1").arg(i + 1));
    f->addRow(QString("Trans(%1) %2").arg(i + 1).arg(transNames[i]), trans_[i]);
  }
  v->addLayout(f);
  auto* buttons = new QHBoxLayout;
  auto* add = new QPushButton("Add", page);
  auto* save = new QPushButton("Save", page);
  auto* remove = new QPushButton("Remove", page);
  auto* prj = new QPushButton("Load Prj Files", page);
  add->setObjectName("AddRecord");
  for (QPushButton* b : {add, save, remove, prj}) buttons->addWidget(b);
  v->addLayout(buttons);
  connect(mapProjCmb_, &QComboBox::currentIndexChanged, this, [this] { ShowRecord(); });
  connect(spheroid_, &QComboBox::activated, this, [this] {
    int i = DataOf(spheroid_);
    if (i < 1 || size_t(i) >= s_.DatumTbl.size()) return;
    const DatumRec& r = s_.DatumTbl[size_t(i)];
    sphName_->setText(QString::fromStdString(r.SphName));
    sma_->setText(Num(r.SMA));
    smb_->setText(Num(r.SMB));
    flat_->setText(Num(r.Flattining));
  });
  connect(add, &QPushButton::clicked, this, [this] { AddRecord(); });
  connect(save, &QPushButton::clicked, this, [this] { SaveRecord(); });
  connect(remove, &QPushButton::clicked, this, [this] { RemoveRecord(); });
  connect(prj, &QPushButton::clicked, this, [this] { LoadPrjFiles(); });
  return page;
}

void CoordsDialog::FillRecordCombos() {
  // The lists start at record 1: record 0 has no axes and must not reach the arithmetic.
  for (QComboBox* box : {map_.record, meas_.record, pointRec_}) {
    int keep = DataOf(box);
    FillRecords(box, FillDatumCmb(s_, 1));
    int at = box->findData(keep >= 1 ? keep : kWgs84Idx);
    box->setCurrentIndex(at >= 0 ? at : box->findData(kWgs84Idx));
  }
  FillRecords(spheroid_, FillSpheroidCmb(s_, 1));
  int keep = mapProjCmb_->currentIndex();
  mapProjCmb_->blockSignals(true);
  FillRecords(mapProjCmb_, FillDatumCmb(s_, kWgs84Idx));
  // Record 23 can't be changed: its row stands for a record still to be made.
  mapProjCmb_->setItemText(0, kNewRecordText);
  mapProjCmb_->setCurrentIndex(keep >= 0 && keep < mapProjCmb_->count() ? keep : 0);
  mapProjCmb_->blockSignals(false);
  ShowRecord();
}

void CoordsDialog::LoadUnits() {
  auto load = [](UnitRow& r, uint8_t unit, uint8_t idx, uint8_t zone, uint8_t south) {
    r.unit->setCurrentIndex(unit ? 1 : 0);
    int at = r.record->findData(int(idx));
    if (at >= 0) r.record->setCurrentIndex(at);
    r.zone->setValue(zone >= 1 && zone <= 60 ? zone : 1);
    r.hemisphere->setCurrentIndex(south ? 1 : 0);
  };
  load(map_, s_.MapUnit, s_.MapCoordsIdx, s_.MapZone, s_.MapSouth);
  load(meas_, s_.MeasUnit, s_.MeasCoordsIdx, s_.MeasZone, s_.MeasSouth);
}

void CoordsDialog::ApplyUnits() {
  auto store = [](const UnitRow& r, uint8_t& unit, uint8_t& idx, uint8_t& zone, uint8_t& south) {
    int rec = DataOf(r.record);
    unit = uint8_t(r.unit->currentIndex() == 1 ? 1 : 0);
    idx = uint8_t(rec >= 1 && rec <= 255 ? rec : kWgs84Idx); // the project keeps a byte
    zone = uint8_t(r.zone->value());
    south = uint8_t(r.hemisphere->currentIndex() == 1 ? 1 : 0);
  };
  store(map_, s_.MapUnit, s_.MapCoordsIdx, s_.MapZone, s_.MapSouth);
  store(meas_, s_.MeasUnit, s_.MeasCoordsIdx, s_.MeasZone, s_.MeasSouth);
  s_.ProjChanged = -1;
}

void CoordsDialog::ToGrid() {
  double lat, lon;
  if (!ReadNum(lat_, lat) || !ReadNum(lon_, lon)) return;
  pointAdvice_->setText(QString("Zone %1, band %2, %3")
                            .arg(UTMZone(lat, lon))
                            .arg(QString::fromStdString(UTMLetter(lat)))
                            .arg(IsSouth(lat) ? "South" : "North"));
  int zone = 0;
  if (!ZoneTextOk(pointZone_->text().toStdString(), zone)) {
    pointZoneErr_->show();
    return;
  }
  pointZoneErr_->hide();
  XY g = LatLonToUTM(s_, lat, lon, zone, pointHemi_->currentIndex() == 1, DataOf(pointRec_));
  x_->setText(QString::number(g.X, 'f', 3));
  y_->setText(QString::number(g.Y, 'f', 3));
}

void CoordsDialog::ToGeographic() {
  double x, y;
  if (!ReadNum(x_, x) || !ReadNum(y_, y)) return;
  int zone = 0;
  if (!ZoneTextOk(pointZone_->text().toStdString(), zone)) {
    pointZoneErr_->show();
    return;
  }
  pointZoneErr_->hide();
  XY ll = UTMToLatLon(s_, x, y, zone, pointHemi_->currentIndex() == 1, DataOf(pointRec_));
  lat_->setText(QString::number(ll.Y, 'f', 9));
  lon_->setText(QString::number(ll.X, 'f', 9));
}

void CoordsDialog::ShowRecord() {
  int i = DataOf(mapProjCmb_);
  if (i < 1 || size_t(i) >= s_.DatumTbl.size()) return;
  const DatumRec& r = s_.DatumTbl[size_t(i)];
  crdName_->setText(i == kWgs84Idx ? QString() : QString::fromStdString(r.CrdName));
  sphName_->setText(QString::fromStdString(r.SphName));
  sma_->setText(Num(r.SMA));
  smb_->setText(Num(r.SMB));
  flat_->setText(Num(r.Flattining));
  fEast_->setText(Num(r.FEast));
  fNorth_->setText(Num(r.FNorth));
  fNorthS_->setText(Num(r.FNorthS));
  cm_->setText(Num(r.CM));
  sf_->setText(Num(r.SF));
  latOrg_->setText(Num(r.LatOrg));
  const double t[7] = {r.TransDX, r.TransDY, r.TransDZ,   r.TransRX,
                       r.TransRY, r.TransRZ, r.TransScale};
  for (size_t k = 0; k < 7; ++k) trans_[k]->setText(Num(t[k]));
}

bool CoordsDialog::ReadRecord(DatumDef& d, DatumTrans& t) {
  d.CrdName = crdName_->text().trimmed().toStdString();
  d.SphName = sphName_->text().trimmed().toStdString();
  if (d.CrdName.empty()) {
    crdName_->setFocus();
    return false;
  }
  for (auto [e, v] : {std::pair{sma_, &d.SMA},
                      {smb_, &d.SMB},
                      {flat_, &d.Flat},
                      {fEast_, &d.FEast},
                      {fNorth_, &d.FNorth},
                      {fNorthS_, &d.FNorthS},
                      {cm_, &d.CM},
                      {sf_, &d.SF},
                      {latOrg_, &d.LatOrg}})
    if (!ReadNum(e, *v)) return false;
  if (d.SMA <= 0 || d.SMB <= 0 || d.SF == 0) {
    sma_->setFocus(); // a record without axes or scale would divide by zero
    return false;
  }
  double* tv[7] = {&t.DX, &t.DY, &t.DZ, &t.RX, &t.RY, &t.RZ, &t.Scale};
  for (size_t k = 0; k < 7; ++k)
    if (!ReadNum(trans_[k], *tv[k])) return false;
  return true;
}

void CoordsDialog::AddRecord() {
  DatumDef d;
  DatumTrans t;
  if (!ReadRecord(d, t)) return;
  AddDatum(s_, d, t);
  s_.ProjChanged = -1;
  FillRecordCombos();
  mapProjCmb_->setCurrentIndex(mapProjCmb_->count() - 1);
}

void CoordsDialog::SaveRecord() {
  int i = DataOf(mapProjCmb_);
  if (i <= kWgs84Idx) return AddRecord(); // built-in records stay as they are
  DatumDef d;
  DatumTrans t;
  if (!ReadRecord(d, t)) return;
  SetDatum(s_, i, d, t);
  s_.ProjChanged = -1;
  FillRecordCombos();
}

void CoordsDialog::RemoveRecord() {
  int i = DataOf(mapProjCmb_);
  if (i <= kWgs84Idx) return;
  if (QMessageBox::question(this, "Remove", "Remove " + mapProjCmb_->currentText() + " ?") !=
      QMessageBox::Yes)
    return;
  RemoveDatum(s_, i);
  // Unit bytes that named a later record follow it down; the removed one falls back to WGS 84.
  for (uint8_t* idx : {&s_.MapCoordsIdx, &s_.MeasCoordsIdx}) {
    if (*idx == i)
      *idx = kWgs84Idx;
    else if (*idx > i)
      --*idx;
  }
  s_.ProjChanged = -1;
  mapProjCmb_->setCurrentIndex(0);
  FillRecordCombos();
  LoadUnits();
}

void CoordsDialog::LoadPrjFiles() {
  QStringList files = QFileDialog::getOpenFileNames(
      this, "Load Prj Files", QString::fromStdString(s_.LastDir), "Projection files (*.prj)");
  if (files.isEmpty()) return;
  size_t before = s_.DatumTbl.size();
  for (const QString& f : files) LoadPrjFile(s_, f.toStdString());
  FillRecordCombos();
  if (s_.DatumTbl.size() > before) {
    s_.ProjChanged = -1;
    mapProjCmb_->setCurrentIndex(mapProjCmb_->count() - 1);
  }
}

} // namespace velmora
