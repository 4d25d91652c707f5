#pragma once
#include <QDialog>

#include "model/session.h"

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QTreeWidget;

namespace velmora {

// "Find by Data": selects the records of a layer whose field compares with a value. The
// choices stay while the dialog is open; "Find" runs FindValues, "Update Unique Values" fills
// the list of the field's values, a click on one of which copies it into the value.
class FindDataDialog : public QDialog {
  Q_OBJECT
public:
  FindDataDialog(Session& s, QWidget* parent = nullptr);
  // The layers again (after layers were added, removed or moved).
  void FillLayers();

signals:
  void Found();

private:
  int Layer() const;
  void FillFields();
  void Find();
  void UpdateUniqueValues();

  Session& s_;
  QComboBox* cmbLyr_;
  QButtonGroup* cmdMtd_;
  QButtonGroup* cmdCrt_;
  QListWidget* LstFld_;
  QListWidget* LstRel_;
  QTreeWidget* LstUnq_;
  QLineEdit* TxtVal_;
  QCheckBox* Mcase_;
  QLineEdit* ScaleText_;
  QLabel* txtFunc_;
};

} // namespace velmora
