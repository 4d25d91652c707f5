#include "ui/location_dialog.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "frame/busy.h"
#include "model/val.h"
#include "platform/qt/qt_host.h"
#include "query/location.h"

namespace velmora {

namespace {

QComboBox* Combo(QWidget* parent, const char* name, const char* const* items, int n) {
  auto* c = new QComboBox(parent);
  c->setObjectName(name);
  for (int i = 0; i < n; ++i) c->addItem(items[i], i + 1);
  return c;
}

} // namespace

LocationDialog::LocationDialog(Session& s, QWidget* parent) : QDialog(parent), s_(s) {
  setWindowTitle(kCaption);
  setObjectName("frmLocation");
  auto* top = new QVBoxLayout(this);
  auto* g = new QGridLayout;
  findLyr_ = new QComboBox(this);
  findLyr_->setObjectName("frmcmbLyr");
  method_ = Combo(this, "cmdMtd", kLocationMethods, 3);
  criteria_ = Combo(this, "cmdCrt", kLocationCriteria, 3);
  relation_ = Combo(this, "cmdRel", kLocationRelations, 9);
  refLyr_ = new QComboBox(this);
  refLyr_->setObjectName("tocmbLyr");
  refCriteria_ = Combo(this, "cmdCrtTo", kLocationRefCriteria, 2);
  int row = 0;
  for (auto [label, w] : {std::pair{"Find in", findLyr_},
                          {"Method", method_},
                          {"Creteria", criteria_},
                          {"Relation", relation_},
                          {"To Layer", refLyr_},
                          {"Creteria", refCriteria_}}) {
    g->addWidget(new QLabel(label, this), row, 0);
    g->addWidget(w, row++, 1);
  }
  applyTol_ = new QCheckBox("Tolerance", this);
  applyTol_->setObjectName("ApplyTolerance");
  applyTol_->setChecked(true);
  tolerance_ = new QLineEdit(ToQ(LocationDefaultTolerance(s_)), this);
  tolerance_->setObjectName("Tolerance");
  g->addWidget(applyTol_, row, 0);
  g->addWidget(tolerance_, row++, 1);
  g->addWidget(new QLabel("Map Units ( 1 Meter = almost 0.00001 Decimal Degree )", this), row++, 0,
               1, 2);
  top->addLayout(g);

  applyTrans_ = new QCheckBox(
      "Apply data transfer by Location for Checked similar field names from layer to layer", this);
  applyTrans_->setObjectName("ApplyDataTrans");
  top->addWidget(applyTrans_);
  fieldsHeader_ = new QLabel(this);
  fieldsHeader_->setObjectName("FldNamesHeader");
  top->addWidget(fieldsHeader_);
  fields_ = new QListWidget(this);
  fields_->setObjectName("FldNames");
  fields_->setToolTip("  Apply Data Transfer by Location for Checked Similar Fields Names");
  top->addWidget(fields_);
  top->addWidget(
      new QLabel("Data Transfer is a very powerfull tool, So please use it carefully. To "
                 "undo Data Transfer, Do not Save Changes and Reload layer from layers "
                 "menu",
                 this));
  top->itemAt(top->count() - 1)->widget()->setProperty("wordWrap", true);

  auto* buttons = new QHBoxLayout;
  find_ = new QPushButton("Find", this);
  find_->setObjectName("cmdFind");
  terminate_ = new QPushButton("Terminate", this);
  terminate_->setObjectName("cmdTerminate");
  terminate_->setEnabled(false);
  buttons->addWidget(find_);
  buttons->addWidget(terminate_);
  top->addLayout(buttons);
  txtFunc_ = new QLabel(this);
  txtFunc_->setObjectName("txtFunc");
  txtFunc_->setWordWrap(true);
  top->addWidget(txtFunc_);

  connect(findLyr_, &QComboBox::currentIndexChanged, this, [this] { FillFields(); });
  connect(refLyr_, &QComboBox::currentIndexChanged, this, [this] { FillFields(); });
  connect(relation_, &QComboBox::currentIndexChanged, this, [this] { RelationChosen(); });
  connect(applyTol_, &QCheckBox::toggled, tolerance_, &QLineEdit::setEnabled);
  connect(applyTrans_, &QCheckBox::toggled, fields_, &QListWidget::setEnabled);
  connect(find_, &QPushButton::clicked, this, [this] { Find(); });
  connect(terminate_, &QPushButton::clicked, this, [this] {
    if (running_) SetLyrTerminate(s_, running_, true);
  });
  FillLayers();
  RelationChosen();
  fields_->setEnabled(false);
}

int LocationDialog::Layer(const QComboBox* c) const {
  return c->currentIndex() < 0 ? 0 : c->currentData().toInt();
}

void LocationDialog::FillLayers() {
  for (QComboBox* c : {findLyr_, refLyr_}) {
    const int was = Layer(c);
    QSignalBlocker block(c);
    c->clear();
    for (int i = 1; i <= s_.LyrCount; ++i)
      if (s_.Lyr[i].LyrKind == 1) c->addItem(ToQ(s_.Lyr[i].LyrName), i);
    if (c->count() == 0) c->addItem("None", 0);
    int at = c->findData(was > 0 ? was : s_.ActiveLyr);
    c->setCurrentIndex(at >= 0 ? at : 0);
  }
  FillFields();
}

void LocationDialog::FillFields() {
  const int from = Layer(refLyr_), to = Layer(findLyr_);
  fieldsHeader_->setText("  From layer :  " + (from ? ToQ(s_.Lyr[from].LyrName) : QString("None")) +
                         "  To    layer :  " + (to ? ToQ(s_.Lyr[to].LyrName) : QString("None")));
  fields_->clear();
  if (!from || !to) return;
  for (const std::string& name : SimilarFieldNames(s_, from, to)) {
    auto* item = new QListWidgetItem(ToQ(name), fields_);
    item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
    item->setCheckState(Qt::Unchecked);
  }
}

void LocationDialog::RelationChosen() {
  const bool positive = LocationRelationPositive(relation_->currentData().toInt());
  applyTrans_->setEnabled(positive && !running_);
  if (!positive) applyTrans_->setChecked(false);
}

LocationQuery LocationDialog::Query() const {
  LocationQuery q;
  q.FindLyr = Layer(findLyr_);
  q.RefLyr = Layer(refLyr_);
  q.Method = method_->currentData().toInt();
  q.Criteria = criteria_->currentData().toInt();
  q.Relation = relation_->currentData().toInt();
  q.RefSelectedOnly = refCriteria_->currentIndex() == 1;
  q.Tol = applyTol_->isChecked() ? Val(tolerance_->text().toStdString()) : 0;
  if (applyTrans_->isChecked() && applyTrans_->isEnabled())
    for (int i = 0; i < fields_->count(); ++i)
      if (fields_->item(i)->checkState() == Qt::Checked)
        q.TransferFields.push_back(fields_->item(i)->text().toStdString());
  return q;
}

void LocationDialog::Find() {
  if (running_) return;
  LocationQuery q = Query();
  if (!q.FindLyr || !q.RefLyr) return; // "None"
  running_ = q.FindLyr;
  find_->setEnabled(false);
  terminate_->setEnabled(true);
  txtFunc_->setText("Find by Location in Layer " + ToQ(s_.Lyr[q.FindLyr].LyrName));
  const std::string name = s_.Lyr[q.FindLyr].LyrName;
  int count = FindByLocation(s_, q);
  running_ = 0;
  find_->setEnabled(true);
  terminate_->setEnabled(false);
  if (count >= 0)
    txtFunc_->setText(QString::number(count) +
                      " Features have been Selected Successfully in Layer " + ToQ(name));
  else
    txtFunc_->setText(" *** Find by Location has been canceled *** ");
}

void LocationDialog::showEvent(QShowEvent* e) {
  if (!running_) FillLayers();
  QDialog::showEvent(e);
}

void LocationDialog::closeEvent(QCloseEvent* e) {
  // The form stays until its query has stopped.
  if (running_) {
    SetLyrTerminate(s_, running_, true);
    e->ignore();
    return;
  }
  QDialog::closeEvent(e);
}

} // namespace velmora
