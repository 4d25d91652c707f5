#include "ui/move_dialogs.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <QValidator>

#include "edit/edit_format.h"
#include "edit/move_ops.h"
#include "edit/rotate_scale.h"
#include "platform/qt/qt_host.h"
#include "store/dbf_store.h"

namespace velmora {

namespace {

// An entry box lets pass only what IsNumChar lets pass.
class NumValidator : public QValidator {
public:
  NumValidator(const Session& s, QObject* parent) : QValidator(parent), s_(s) {}
  State validate(QString& text, int&) const override {
    for (QChar c : text)
      if (c.unicode() > 127 || !IsNumChar(s_, char(c.unicode()))) return Invalid;
    return Acceptable;
  }

private:
  const Session& s_;
};

QLineEdit* NumBox(const Session& s, QWidget* parent, const char* name, const QString& text) {
  auto* e = new QLineEdit(text, parent);
  e->setObjectName(name);
  e->setValidator(new NumValidator(s, e));
  return e;
}

QPushButton* Button(QWidget* parent, const char* name, const QString& caption) {
  auto* b = new QPushButton(caption, parent);
  b->setObjectName(name);
  b->setAutoDefault(false);
  return b;
}

double Num(const Session& s, QLineEdit* e) {
  return StrToDbl(s, FromQ(e->text()));
}

} // namespace

MoveSettingsDialog::MoveSettingsDialog(Session& s, QWidget* parent) : QDialog(parent), s_(s) {
  setObjectName("frmMoveSettings");
  setWindowTitle("Move Settings");
  auto* v = new QVBoxLayout(this);
  movSetOpt_ = new QButtonGroup(this);
  for (int i = 0; i <= 6; ++i) {
    auto* r = new QRadioButton(MoveModeCaption(i), this);
    r->setObjectName(QString("movSetOpt%1").arg(i));
    movSetOpt_->addButton(r, i);
    v->addWidget(r);
  }
  movSetOpt_->button(s_.Edit.MoveMode)->setChecked(true);
  connect(movSetOpt_, &QButtonGroup::idClicked, this, [this](int id) { s_.Edit.MoveMode = id; });
  QPushButton* ok = Button(this, "cmdOK", "OK");
  v->addWidget(ok);
  connect(ok, &QPushButton::clicked, this, &QDialog::accept);
}

MoveDialog::MoveDialog(Session& s, bool toXY, QWidget* parent)
    : QDialog(parent), s_(s), toXY_(toXY) {
  setObjectName("frmMove");
  setWindowTitle(toXY ? "Move To X,Y" : "Move Distance");
  auto* f = new QFormLayout(this);
  Xtxt_ = NumBox(s, this, "Xtxt", "0");
  Ytxt_ = NumBox(s, this, "Ytxt", "0");
  const HitRec& h = s.Edit.MenuHit;
  if (toXY && h.HitKind) {
    Xtxt_->setText(ToQ(FmtPlain9(s, h.HitX)));
    Ytxt_->setText(ToQ(FmtPlain9(s, h.HitY)));
  }
  f->addRow(toXY ? "X" : "Distance X", Xtxt_);
  f->addRow(toXY ? "Y" : "Distance Y", Ytxt_);
  apply_ = new QCheckBox("Apply Move Settings", this);
  apply_->setObjectName("ApplymoveSettings");
  apply_->setChecked(s.Edit.ApplyMoveSettings);
  f->addRow(apply_);
  auto* row = new QHBoxLayout;
  QPushButton* move = Button(this, "Cmd1", "Move");
  QPushButton* settings = Button(this, "Cmd2", "Move Settings...");
  QPushButton* cancel = Button(this, "Cmd3", "Cancel");
  row->addWidget(move);
  row->addWidget(settings);
  row->addWidget(cancel);
  f->addRow(row);
  connect(move, &QPushButton::clicked, this, [this] {
    s_.Edit.ApplyMoveSettings = apply_->isChecked();
    const HitRec h = s_.Edit.MenuHit;
    bool done = toXY_ ? MoveToXYOp(s_, h, Num(s_, Xtxt_), Num(s_, Ytxt_))
                      : MoveDistanceOp(s_, h, Num(s_, Xtxt_), Num(s_, Ytxt_));
    if (done) emit Moved();
  });
  connect(settings, &QPushButton::clicked, this, &MoveDialog::SettingsRequested);
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
}

RotateAngleDialog::RotateAngleDialog(Session& s, QWidget* parent) : QDialog(parent), s_(s) {
  setObjectName("frmRotateAngle");
  setWindowTitle("Rotate and Scale");
  auto* f = new QFormLayout(this);
  AngleText_ = NumBox(s, this, "AngleText", "0");
  XScaleText_ = NumBox(s, this, "XScaleText", "100");
  YScaleText_ = NumBox(s, this, "YScaleText", "100");
  XPivotText_ = NumBox(s, this, "XPivotText", "0");
  YPivotText_ = NumBox(s, this, "YPivotText", "0");
  auto* angleRow = new QHBoxLayout;
  angleRow->addWidget(AngleText_);
  angleRow->addWidget(new QLabel("( 1 - 360 )", this));
  f->addRow("Angle", angleRow);
  f->addRow("X Scale %", XScaleText_);
  f->addRow("Y Scale %", YScaleText_);
  f->addRow("Pivot X", XPivotText_);
  f->addRow("Pivot Y", YPivotText_);
  auto* row = new QHBoxLayout;
  QPushButton* rotate = Button(this, "cmd1", "Rotate");
  QPushButton* scale = Button(this, "cmd2", "Scale");
  QPushButton* pivot = Button(this, "cmd3", "Set Pivot Point");
  QPushButton* settings = Button(this, "Cmd4", "Move Settings...");
  for (QPushButton* b : {rotate, scale, pivot, settings}) row->addWidget(b);
  f->addRow(row);
  Fill();
  connect(rotate, &QPushButton::clicked, this, [this] {
    if (RotateAngleOp(s_, s_.Edit.MenuHit, Num(s_, AngleText_))) emit Moved();
  });
  connect(scale, &QPushButton::clicked, this, [this] {
    if (ScalePercentOp(s_, s_.Edit.MenuHit, Num(s_, XScaleText_), Num(s_, YScaleText_)))
      emit Moved();
  });
  connect(pivot, &QPushButton::clicked, this,
          [this] { SetPivot(s_, Num(s_, XPivotText_), Num(s_, YPivotText_)); });
  connect(settings, &QPushButton::clicked, this, &RotateAngleDialog::SettingsRequested);
}

void RotateAngleDialog::Fill() {
  AngleText_->setText(ToQ(FmtPlain9(s_, s_.Edit.RotDegrees)));
  XScaleText_->setText(ToQ(FmtPlain9(s_, s_.Edit.ScaleX * 100)));
  YScaleText_->setText(ToQ(FmtPlain9(s_, s_.Edit.ScaleY * 100)));
  XPivotText_->setText(ToQ(FmtPlain9(s_, s_.Edit.PivotTextX)));
  YPivotText_->setText(ToQ(FmtPlain9(s_, s_.Edit.PivotTextY)));
}

} // namespace velmora
