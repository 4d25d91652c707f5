#pragma once
#include <QDialog>

#include "model/session.h"
#include "network/build_net.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;

namespace velmora {

// FrmBuildNet, "Building Shortest Path NetWork": builds the network files of a line layer
// with BuildNet, showing its progress in the dialog's own bar and caption.
class BuildNetDialog : public QDialog, public NetProgress {
  Q_OBJECT
public:
  static constexpr const char* kCaption = "Building Shortest Path NetWork";
  BuildNetDialog(Session& s, QWidget* parent = nullptr);
  void FillLayers();
  // "Build" and "Terminate".
  void Build();
  void Terminate();

  // NetProgress.
  void Range(long long max) override;
  void Value(long long v) override;
  void Text(const std::string& t) override;
  void Show(bool on) override;

signals:
  void Built();

protected:
  void showEvent(QShowEvent* e) override;
  void closeEvent(QCloseEvent* e) override;

private:
  int Layer() const;
  Session& s_;
  QComboBox* cmbLyr_;
  QCheckBox* applyTol_;
  QLineEdit* tolerance_;
  QProgressBar* progBar_;
  QLabel* txtFunc_;
  QPushButton* build_;
  QPushButton* terminate_;
};

} // namespace velmora
