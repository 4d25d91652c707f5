#pragma once
#include <QDialog>
#include <array>

#include "model/datum_table.h"
#include "model/session.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QSpinBox;

namespace velmora {

// The coordinates calculator: the map's and the measuring projection (the eight unit bytes),
// a point converted both ways, and the user records of the coordinate-system table.
class CoordsDialog : public QDialog {
  Q_OBJECT
public:
  CoordsDialog(Session& s, QWidget* parent = nullptr);
  static constexpr const char* kNewRecordText = "Configure New Projection System";

private:
  struct UnitRow {
    QComboBox* unit;
    QComboBox* record;
    QSpinBox* zone;
    QComboBox* hemisphere;
  };
  Session& s_;
  UnitRow map_{}, meas_{};
  // Point conversion.
  QComboBox* pointRec_;
  QLineEdit* pointZone_;
  QLabel* pointZoneErr_;
  QComboBox* pointHemi_;
  QLineEdit *lat_, *lon_, *x_, *y_;
  QLabel* pointAdvice_;
  // Records.
  QComboBox* mapProjCmb_;
  QComboBox* spheroid_;
  QLineEdit *crdName_, *sphName_, *sma_, *smb_, *flat_, *fEast_, *fNorth_, *fNorthS_, *cm_, *sf_,
      *latOrg_;
  std::array<QLineEdit*, 7> trans_{};

  QWidget* UnitsPage();
  QWidget* PointPage();
  QWidget* RecordsPage();
  void FillRecordCombos();
  void LoadUnits();
  void ApplyUnits();
  void ToGrid();
  void ToGeographic();
  void ShowRecord();
  void AddRecord();
  void SaveRecord();
  void RemoveRecord();
  void LoadPrjFiles();
  bool ReadRecord(DatumDef& d, DatumTrans& t);
};

} // namespace velmora
