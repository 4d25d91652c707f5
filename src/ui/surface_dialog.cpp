#include "ui/surface_dialog.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QFileDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QShowEvent>
#include <QVBoxLayout>

#include "frame/busy.h"
#include "frame/lyr_slots.h"
#include "model/file_util.h"
#include "platform/qt/qt_host.h"
#include "session/cmds_surface.h"
#include "store/dbf_store.h"
#include "store/shp_bytes.h"

namespace velmora {

SurfaceDialog::SurfaceDialog(Session& s, QWidget* parent, const std::string& busyTitle,
                             const std::string& defaultName)
    : QDialog(parent), s_(s), busyTitle_(busyTitle), defaultName_(defaultName) {
  top_ = new QVBoxLayout(this);
  auto* g = new QGridLayout;
  cmbLyr_ = new QComboBox(this);
  cmbLyr_->setObjectName("cmbLyr");
  criteria_ = new QComboBox(this);
  criteria_->setObjectName("HcmdCrt");
  criteria_->addItems({"All Features", "Selected Features only", "Unselected Features only"});
  height_ = new QComboBox(this);
  height_->setObjectName("HeightField");
  g->addWidget(new QLabel("Height Layer", this), 0, 0);
  g->addWidget(cmbLyr_, 0, 1);
  g->addWidget(new QLabel("Features", this), 1, 0);
  g->addWidget(criteria_, 1, 1);
  g->addWidget(new QLabel("Height Field", this), 2, 0);
  g->addWidget(height_, 2, 1);
  top_->addLayout(g);

  auto* box = new QGroupBox(this);
  auto* bl = new QVBoxLayout(box);
  option_[0] = new QRadioButton("Build Surface by Delaunay Triangulation Method", box);
  option_[1] = new QRadioButton("Build Surface by Matrix Triangulation Method", box);
  for (int i = 0; i < 2; ++i) {
    option_[i]->setObjectName(QString("SurfaceOption%1").arg(i));
    bl->addWidget(option_[i]);
  }
  option_[0]->setChecked(true);
  top_->addWidget(box);

  auto* out = new QHBoxLayout;
  toShp_ = new QLineEdit(this);
  toShp_->setObjectName("ToShpLyr");
  auto* browse = new QPushButton("...", this);
  out->addWidget(new QLabel("New Layer", this));
  out->addWidget(toShp_);
  out->addWidget(browse);
  top_->addLayout(out);

  auto* buttons = new QHBoxLayout;
  build_ = new QPushButton("Build", this);
  build_->setObjectName("cmdBuild");
  terminate_ = new QPushButton("Terminate", this);
  terminate_->setObjectName("cmdTerminate");
  terminate_->setEnabled(false);
  buttons->addWidget(build_);
  buttons->addWidget(terminate_);
  top_->addLayout(buttons);
  txtFunc_ = new QLabel(this);
  txtFunc_->setObjectName("txtFunc");
  txtFunc_->setWordWrap(true);
  top_->addWidget(txtFunc_);

  connect(cmbLyr_, &QComboBox::currentIndexChanged, this, [this] { LayerChosen(); });
  connect(browse, &QPushButton::clicked, this, [this] { Browse(); });
  connect(build_, &QPushButton::clicked, this, [this] { Build(); });
  connect(terminate_, &QPushButton::clicked, this, [this] {
    if (running_ >= 1 && running_ <= s_.LyrCount) SetLyrTerminate(s_, running_, true);
  });
}

void SurfaceDialog::FillLayers() {
  cmbLyr_->clear();
  for (int i = 1; i <= s_.LyrCount; ++i)
    if (s_.Lyr[i].LyrKind == 1) cmbLyr_->addItem(ToQ(s_.Lyr[i].LyrName), i);
  int at = cmbLyr_->findData(s_.ActiveLyr);
  if (at >= 0) cmbLyr_->setCurrentIndex(at);
  LayerChosen();
}

int SurfaceDialog::SelectedLayer() const {
  int n = cmbLyr_->currentIndex() < 0 ? 0 : cmbLyr_->currentData().toInt();
  return n >= 1 && n <= s_.LyrCount ? n : 0;
}

int SurfaceDialog::HeightFieldChoice() const {
  return height_->currentIndex() < 0 ? -1 : height_->currentData().toInt();
}

int SurfaceDialog::Method() const {
  return option_[1]->isChecked() ? 2 : 1;
}

void SurfaceDialog::LayerChosen() {
  height_->clear();
  const int n = SelectedLayer();
  if (!n) return;
  if (shpio::HasZ(s_.Lyr[n].Shp.ShpType)) height_->addItem("Shape Z Value", 0);
  height_->addItem("None", -1);
  for (int f = 1; f <= s_.Lyr[n].Dbf.DbfFieldCount; ++f)
    height_->addItem(ToQ(GetFieldName(s_, n, f)), f);
}

void SurfaceDialog::Browse() {
  QString dflt = ToQ(s_.LastDir + defaultName_ + ".shp");
  QString path =
      QFileDialog::getSaveFileName(this, "Make New Shape Layer", dflt,
                                   QtFilter("Layer files (*.shp)|*.shp|All files (*.*)|*.*"));
  if (!path.isEmpty()) toShp_->setText(path);
}

void SurfaceDialog::Build() {
  if (running_) return;
  const int lyr = SelectedLayer();
  std::string path = FromQ(toShp_->text().trimmed());
  if (!lyr || path.empty()) return;
  if (ExtOf(path).empty()) path += ".shp";
  if (LyrIsBusy(s_, lyr)) {
    const LyrRec& l = s_.Lyr[lyr];
    if (s_.host->MsgBox("  Would you like to Terminate " + l.BusyFunc + " Function in layer " +
                            l.LyrName + " ?   ",
                        l.LyrName + busyTitle_, MsgButtons::YesNo, MsgAnswer::No) == MsgAnswer::Yes)
      SetLyrTerminate(s_, lyr, true);
    return;
  }
  running_ = lyr;
  build_->setEnabled(false);
  terminate_->setEnabled(true);
  const int written = Run(lyr, criteria_->currentIndex() + 1, HeightFieldChoice(), path, Method());
  running_ = 0;
  build_->setEnabled(true);
  terminate_->setEnabled(false);
  if (written >= 0) {
    AddSurfaceLayer(s_, path);
    txtFunc_->setText(ToQ(Report(written, FileNameOf(ReplaceExt(path, "shp")))));
  }
  FillLayers();
}

void SurfaceDialog::showEvent(QShowEvent* e) {
  if (!running_) FillLayers();
  QDialog::showEvent(e);
}

void SurfaceDialog::closeEvent(QCloseEvent* e) {
  // The form stays until its function has stopped.
  if (running_) {
    if (running_ <= s_.LyrCount) SetLyrTerminate(s_, running_, true);
    e->ignore();
    return;
  }
  QDialog::closeEvent(e);
}

} // namespace velmora
