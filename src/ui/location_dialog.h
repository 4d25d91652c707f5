#pragma once
#include <QDialog>

#include "model/session.h"
#include "query/location.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace velmora {

// frmLocation, "Find and Data Transfer by Location": selects features of one layer by
// their relation to the features of another, optionally copying the checked fields of
// the same name across. The work is FindByLocation's.
class LocationDialog : public QDialog {
  Q_OBJECT
public:
  explicit LocationDialog(Session& s, QWidget* parent = nullptr);
  static constexpr const char* kCaption = "Find and Data Transfer by Location";
  // Refills both layer lists, keeping the choices that still stand.
  void FillLayers();
  // The query as the controls now stand.
  LocationQuery Query() const;

protected:
  void showEvent(QShowEvent* e) override;
  void closeEvent(QCloseEvent* e) override;

private:
  Session& s_;
  QComboBox *findLyr_, *method_, *criteria_, *relation_, *refLyr_, *refCriteria_;
  QCheckBox *applyTol_, *applyTrans_;
  QLineEdit* tolerance_;
  QListWidget* fields_;
  QLabel *fieldsHeader_, *txtFunc_;
  QPushButton *find_, *terminate_;
  int running_ = 0; // the find layer while the query runs

  int Layer(const QComboBox* c) const;
  void FillFields();
  void RelationChosen();
  void Find();
};

} // namespace velmora
