#pragma once
#include <QDialog>

#include "model/session.h"

class QCheckBox;
class QLineEdit;
class QButtonGroup;

namespace velmora {

// frmMoveSettings: the scope of movements with Ctrl or with "Apply Move Settings".
class MoveSettingsDialog : public QDialog {
  Q_OBJECT
public:
  MoveSettingsDialog(Session& s, QWidget* parent = nullptr);

private:
  Session& s_;
  QButtonGroup* movSetOpt_;
};

// frmMove: "Move Distance..." (by an offset) or "Move To X,Y..." (to a point) of the
// feature of the menu's hit.
class MoveDialog : public QDialog {
  Q_OBJECT
public:
  MoveDialog(Session& s, bool toXY, QWidget* parent = nullptr);

signals:
  void SettingsRequested();
  void Moved();

private:
  Session& s_;
  bool toXY_;
  QLineEdit *Xtxt_, *Ytxt_;
  QCheckBox* apply_;
};

// frmRotateAngle: rotate by an angle and scale by percents about the pivot.
class RotateAngleDialog : public QDialog {
  Q_OBJECT
public:
  RotateAngleDialog(Session& s, QWidget* parent = nullptr);
  // The texts from the session's angle, scales and pivot.
  void Fill();

signals:
  void SettingsRequested();
  void Moved();

private:
  Session& s_;
  QLineEdit *AngleText_, *XScaleText_, *YScaleText_, *XPivotText_, *YPivotText_;
};

} // namespace velmora
