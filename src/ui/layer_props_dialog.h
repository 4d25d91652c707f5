#pragma once
#include <QDialog>

#include "view/lyr_symbology.h"

class QComboBox;
class QSpinBox;
class QCheckBox;
class QDoubleSpinBox;
class QPushButton;
class QFontComboBox;
class QGridLayout;

namespace velmora {

class ScriptPage;

// "Layer Prorperties": the pens, vertices, scale limits and labels of one layer.
class LayerPropsDialog : public QDialog {
  Q_OBJECT
public:
  LayerPropsDialog(Session& s, int lyr, QWidget* parent = nullptr);
  static constexpr const char* kCaption = "Layer Prorperties";
  ScriptPage* Script() const { return script_; }

private:
  struct PenRow {
    QPushButton* fore;
    QPushButton* fill;
    QComboBox* style;
    QSpinBox* width;
    QComboBox* fillStyle;
  };
  Session& s_;
  int lyr_;
  LyrSymbology sym_;
  PenRow class0_{}, sel_{}, edit_{};
  QCheckBox* showVrt_;
  QSpinBox* vrtWidth_;
  QCheckBox* scaleOn_;
  QDoubleSpinBox* scaleMin_;
  QDoubleSpinBox* scaleMax_;
  QCheckBox* labelsOn_;
  QComboBox* labelField_;
  QFontComboBox* font_;
  QSpinBox* fontSize_;
  QCheckBox* bold_;
  QCheckBox* italic_;
  QPushButton* labelColour_;
  QCheckBox* lscaleOn_;
  QDoubleSpinBox* lscaleMin_;
  QDoubleSpinBox* lscaleMax_;
  ScriptPage* script_;

  PenRow MakePenRow(QGridLayout* g, int row, const QString& title, const PenSpec& p);
  void ReadPenRow(const PenRow& r, PenSpec& p);
  void Apply();
};

} // namespace velmora
