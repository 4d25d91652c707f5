#include "ui/layer_props_dialog.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFontComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include "store/dbf_store.h"
#include "ui/script_page.h"

namespace velmora {

namespace {

const QStringList kLineStyles = {"Solid", "Dash", "Dot", "Dash-Dot", "Dash-Dot-Dot", "None"};
const QStringList kFillStyles = {"Solid",         "Hollow",          "Horizontal line",
                                 "Vertical line", "Upward diagonal", "Downward diagonal",
                                 "Cross",         "Diagonal cross"};

QColor ToColor(RGB3 c) {
  return QColor(c.R, c.G, c.B);
}
RGB3 FromColor(const QColor& c) {
  return RGB3{uint8_t(c.red()), uint8_t(c.green()), uint8_t(c.blue())};
}

void Paint(QPushButton* b, const QColor& c) {
  b->setProperty("colour", c);
  b->setStyleSheet(QString("background-color: %1").arg(c.name()));
}

QPushButton* ColourButton(QWidget* parent, RGB3 c) {
  auto* b = new QPushButton(parent);
  b->setFixedWidth(48);
  Paint(b, ToColor(c));
  QObject::connect(b, &QPushButton::clicked, b, [b] {
    QColor chosen = QColorDialog::getColor(b->property("colour").value<QColor>(), b);
    if (chosen.isValid()) Paint(b, chosen);
  });
  return b;
}

RGB3 ColourOf(QPushButton* b) {
  return FromColor(b->property("colour").value<QColor>());
}

QDoubleSpinBox* ScaleBox(QWidget* parent, double v) {
  auto* b = new QDoubleSpinBox(parent);
  b->setRange(0, 1e12);
  b->setDecimals(0);
  b->setPrefix("1 : ");
  b->setValue(v);
  return b;
}

} // namespace

LayerPropsDialog::PenRow LayerPropsDialog::MakePenRow(QGridLayout* g, int row, const QString& title,
                                                      const PenSpec& p) {
  PenRow r;
  g->addWidget(new QLabel(title, this), row, 0);
  r.fore = ColourButton(this, p.Fore);
  r.fill = ColourButton(this, p.Fill);
  r.style = new QComboBox(this);
  r.style->addItems(kLineStyles);
  r.style->setCurrentIndex(std::clamp(p.DrawStyle, 0, 5));
  r.width = new QSpinBox(this);
  r.width->setRange(0, 50);
  r.width->setValue(p.DrawWidth);
  r.fillStyle = new QComboBox(this);
  r.fillStyle->addItems(kFillStyles);
  r.fillStyle->setCurrentIndex(std::clamp(p.FillStyle, 0, 7));
  g->addWidget(r.fore, row, 1);
  g->addWidget(r.fill, row, 2);
  g->addWidget(r.style, row, 3);
  g->addWidget(r.width, row, 4);
  g->addWidget(r.fillStyle, row, 5);
  return r;
}

void LayerPropsDialog::ReadPenRow(const PenRow& r, PenSpec& p) {
  p.Fore = ColourOf(r.fore);
  p.Fill = ColourOf(r.fill);
  p.DrawStyle = r.style->currentIndex();
  p.DrawWidth = r.width->value();
  p.FillStyle = r.fillStyle->currentIndex();
}

LayerPropsDialog::LayerPropsDialog(Session& s, int lyr, QWidget* parent)
    : QDialog(parent), s_(s), lyr_(lyr), sym_(GetLyrSymbology(s, lyr)) {
  setWindowTitle(QString(kCaption) + " - " + QString::fromStdString(s.Lyr[lyr].LyrName));
  auto* top = new QVBoxLayout(this);

  auto* pens = new QGroupBox("Pens and brushes", this);
  auto* g = new QGridLayout(pens);
  int col = 1;
  for (const char* h : {"Line", "Fill", "Line style", "Width", "Fill style"})
    g->addWidget(new QLabel(h, this), 0, col++);
  class0_ = MakePenRow(g, 1, "Features", sym_.Class0);
  sel_ = MakePenRow(g, 2, "Selected", sym_.Selected);
  edit_ = MakePenRow(g, 3, "Under edit", sym_.Edit);
  top->addWidget(pens);

  auto* display = new QGroupBox("Display", this);
  auto* f = new QFormLayout(display);
  showVrt_ = new QCheckBox("Show vertices", this);
  showVrt_->setChecked(sym_.ShowVertices);
  vrtWidth_ = new QSpinBox(this);
  vrtWidth_->setRange(0, 50);
  vrtWidth_->setValue(sym_.VertexWidth);
  f->addRow(showVrt_, vrtWidth_);
  scaleOn_ = new QCheckBox("Show only between the scales", this);
  scaleOn_->setChecked(sym_.ScaleLimited);
  scaleMin_ = ScaleBox(this, sym_.ScaleMin);
  scaleMax_ = ScaleBox(this, sym_.ScaleMax);
  auto* scales = new QHBoxLayout;
  scales->addWidget(scaleMin_);
  scales->addWidget(scaleMax_);
  f->addRow(scaleOn_, scales);
  top->addWidget(display);

  auto* labels = new QGroupBox("Labels", this);
  auto* lf = new QFormLayout(labels);
  labelsOn_ = new QCheckBox("Show labels", this);
  labelsOn_->setChecked(sym_.Labels);
  labelField_ = new QComboBox(this);
  labelField_->addItem("(none)", 0);
  for (int i = 1; i <= s.Lyr[lyr].Dbf.DbfFieldCount; ++i)
    labelField_->addItem(QString::fromStdString(GetFieldName(s, lyr, i)), i);
  labelField_->setCurrentIndex(std::max(0, labelField_->findData(sym_.LabelField)));
  lf->addRow(labelsOn_, labelField_);
  font_ = new QFontComboBox(this);
  font_->setCurrentFont(QFont(QString::fromStdString(sym_.FontName)));
  fontSize_ = new QSpinBox(this);
  fontSize_->setRange(1, 255);
  fontSize_->setValue(sym_.FontSize);
  bold_ = new QCheckBox("Bold", this);
  bold_->setChecked(sym_.FontBold);
  italic_ = new QCheckBox("Italic", this);
  italic_->setChecked(sym_.FontItalic);
  labelColour_ = ColourButton(this, sym_.LabelColour);
  auto* fontRow = new QHBoxLayout;
  for (QWidget* w : std::initializer_list<QWidget*>{font_, fontSize_, bold_, italic_, labelColour_})
    fontRow->addWidget(w);
  lf->addRow("Font", fontRow);
  lscaleOn_ = new QCheckBox("Only between the scales", this);
  lscaleOn_->setChecked(sym_.LabelScaleLimited);
  lscaleMin_ = ScaleBox(this, sym_.LabelScaleMin);
  lscaleMax_ = ScaleBox(this, sym_.LabelScaleMax);
  auto* lscales = new QHBoxLayout;
  lscales->addWidget(lscaleMin_);
  lscales->addWidget(lscaleMax_);
  lf->addRow(lscaleOn_, lscales);
  top->addWidget(labels);
  script_ = new ScriptPage(s, lyr, this);
  top->addWidget(script_);

  auto* buttons = new QDialogButtonBox(
      QDialogButtonBox::Ok | QDialogButtonBox::Apply | QDialogButtonBox::Cancel, this);
  connect(buttons, &QDialogButtonBox::accepted, this, [this] {
    Apply();
    accept();
  });
  connect(buttons->button(QDialogButtonBox::Apply), &QPushButton::clicked, this,
          [this] { Apply(); });
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  top->addWidget(buttons);
}

void LayerPropsDialog::Apply() {
  if (lyr_ < 1 || lyr_ > s_.LyrCount) return;
  ReadPenRow(class0_, sym_.Class0);
  ReadPenRow(sel_, sym_.Selected);
  ReadPenRow(edit_, sym_.Edit);
  sym_.ShowVertices = showVrt_->isChecked();
  sym_.VertexWidth = vrtWidth_->value();
  sym_.ScaleLimited = scaleOn_->isChecked();
  sym_.ScaleMin = scaleMin_->value();
  sym_.ScaleMax = scaleMax_->value();
  sym_.Labels = labelsOn_->isChecked();
  sym_.LabelField = labelField_->currentData().toInt();
  sym_.FontName = font_->currentFont().family().toStdString();
  sym_.FontSize = fontSize_->value();
  sym_.FontBold = bold_->isChecked();
  sym_.FontItalic = italic_->isChecked();
  sym_.LabelColour = ColourOf(labelColour_);
  sym_.LabelScaleLimited = lscaleOn_->isChecked();
  sym_.LabelScaleMin = lscaleMin_->value();
  sym_.LabelScaleMax = lscaleMax_->value();
  ApplyLyrSymbology(s_, lyr_, sym_);
  script_->Apply();
}

} // namespace velmora
