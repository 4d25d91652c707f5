#include "ui/find_data_dialog.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFontMetrics>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "platform/qt/qt_host.h"
#include "query/find_query.h"
#include "store/dbf_store.h"

namespace velmora {

namespace {

QGroupBox* Radios(const QString& title, const QStringList& captions, QButtonGroup*& group,
                  QWidget* parent) {
  auto* box = new QGroupBox(title, parent);
  auto* lay = new QVBoxLayout(box);
  group = new QButtonGroup(box);
  for (int i = 0; i < captions.size(); ++i) {
    auto* r = new QRadioButton(captions[i], box);
    group->addButton(r, i + 1);
    lay->addWidget(r);
  }
  group->button(1)->setChecked(true);
  return box;
}

} // namespace

FindDataDialog::FindDataDialog(Session& s, QWidget* parent) : QDialog(parent), s_(s) {
  setObjectName("Find by Data"); // its name in the lists of open dialogs
  setWindowTitle("Find by Data");
  auto* grid = new QGridLayout(this);
  cmbLyr_ = new QComboBox(this);
  cmbLyr_->setObjectName("cmbLyr");
  grid->addWidget(new QLabel("Layer", this), 0, 0);
  grid->addWidget(cmbLyr_, 0, 1, 1, 2);
  auto* mtd = Radios("Method", {"New Selection", "Add to Selection", "Clear From Selection"},
                     cmdMtd_, this);
  mtd->setObjectName("cmdMtd");
  auto* crt =
      Radios("Criteria", {"All Features", "Inside Selected Features", "Outside Selected Features"},
             cmdCrt_, this);
  crt->setObjectName("cmdCrt");
  grid->addWidget(mtd, 1, 0);
  grid->addWidget(crt, 1, 1, 1, 2);

  LstFld_ = new QListWidget(this);
  LstFld_->setObjectName("LstFld");
  LstRel_ = new QListWidget(this);
  LstRel_->setObjectName("LstRel");
  for (const std::string& r : RelationCaptions()) LstRel_->addItem(ToQ(r));
  LstRel_->setCurrentRow(0);
  LstRel_->setMaximumWidth(70);
  LstUnq_ = new QTreeWidget(this);
  LstUnq_->setObjectName("LstUnq");
  LstUnq_->setColumnCount(2);
  LstUnq_->setHeaderLabels({"Key", "Value"});
  LstUnq_->setColumnHidden(0, true);
  LstUnq_->setRootIsDecorated(false);
  grid->addWidget(new QLabel("Fields", this), 2, 0);
  grid->addWidget(new QLabel("Unique Values", this), 2, 2);
  grid->addWidget(LstFld_, 3, 0);
  grid->addWidget(LstRel_, 3, 1);
  grid->addWidget(LstUnq_, 3, 2);

  TxtVal_ = new QLineEdit(this);
  TxtVal_->setObjectName("TxtVal");
  Mcase_ = new QCheckBox("Match Case", this);
  Mcase_->setObjectName("Mcase");
  ScaleText_ = new QLineEdit(this);
  ScaleText_->setObjectName("ScaleText");
  ScaleText_->setPlaceholderText("Map scale to show the found features");
  auto* valRow = new QHBoxLayout;
  valRow->addWidget(new QLabel("Value", this));
  valRow->addWidget(TxtVal_, 1);
  valRow->addWidget(Mcase_);
  grid->addLayout(valRow, 4, 0, 1, 3);
  auto* scaleRow = new QHBoxLayout;
  scaleRow->addWidget(new QLabel("Scale 1 :", this));
  scaleRow->addWidget(ScaleText_, 1);
  grid->addLayout(scaleRow, 5, 0, 1, 3);

  txtFunc_ = new QLabel(this);
  txtFunc_->setObjectName("txtFunc");
  grid->addWidget(txtFunc_, 6, 0, 1, 3);
  auto* buttons = new QDialogButtonBox(this);
  auto* find = buttons->addButton("Find", QDialogButtonBox::ActionRole);
  find->setObjectName("cmdFind");
  auto* unique = buttons->addButton("Update Unique Values", QDialogButtonBox::ActionRole);
  unique->setObjectName("cmdUnique");
  buttons->addButton(QDialogButtonBox::Close);
  grid->addWidget(buttons, 7, 0, 1, 3);

  connect(find, &QPushButton::clicked, this, &FindDataDialog::Find);
  connect(unique, &QPushButton::clicked, this, &FindDataDialog::UpdateUniqueValues);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
  connect(cmbLyr_, &QComboBox::currentIndexChanged, this, [this] { FillFields(); });
  connect(LstUnq_, &QTreeWidget::itemClicked, this,
          [this](QTreeWidgetItem* it) { TxtVal_->setText(it->text(1)); });
  FillLayers();
}

void FindDataDialog::FillLayers() {
  const int keep = Layer();
  cmbLyr_->blockSignals(true);
  cmbLyr_->clear();
  for (int i = 1; i <= s_.LyrCount; ++i)
    if (s_.Lyr[i].LyrKind == 1) cmbLyr_->addItem(ToQ(s_.Lyr[i].LyrName), i);
  int at = cmbLyr_->findData(keep ? keep : s_.ActiveLyr);
  cmbLyr_->setCurrentIndex(at >= 0 ? at : 0);
  cmbLyr_->blockSignals(false);
  FillFields();
}

int FindDataDialog::Layer() const {
  const int n = cmbLyr_->currentData().toInt();
  return n >= 1 && n <= s_.LyrCount && s_.Lyr[n].LyrKind == 1 ? n : 0;
}

void FindDataDialog::FillFields() {
  LstFld_->clear();
  LstUnq_->clear();
  LstFld_->addItem("None");
  const int n = Layer();
  if (n)
    for (int f = 1; f <= s_.Lyr[n].Dbf.DbfFieldCount; ++f)
      LstFld_->addItem(ToQ(GetFieldName(s_, n, f)));
  LstFld_->setCurrentRow(n && s_.Lyr[n].Dbf.DbfFieldCount > 0 ? 1 : 0);
}

void FindDataDialog::Find() {
  const int n = Layer();
  if (!n) return;
  QueryTerm t;
  t.QLayer = n;
  const int field = std::max(LstFld_->currentRow(), 0);
  if (field == 0)
    t.QType = kQueryWholeRow;
  else
    t.QField = field;
  t.QRelation = std::max(LstRel_->currentRow(), 0) + 1;
  t.QValue = FromQ(TxtVal_->text());
  t.QMatchCase = Mcase_->isChecked() ? -1 : 0;
  const double scale = StrToDbl(s_, FromQ(ScaleText_->text()));
  txtFunc_->setText("Find Values in Layer " + ToQ(s_.Lyr[n].LyrName));
  const int found = FindValues(s_, n, cmdMtd_->checkedId(), cmdCrt_->checkedId(), {t}, scale);
  if (found >= 0)
    txtFunc_->setText(QString::number(found) + " Features have been Selected in Layer " +
                      ToQ(s_.Lyr[n].LyrName));
  else
    txtFunc_->setText(" *** Find Values in Layer " + ToQ(s_.Lyr[n].LyrName) +
                      " has been canceled *** ");
  emit Found();
}

void FindDataDialog::UpdateUniqueValues() {
  const int n = Layer();
  if (!n) return;
  const std::string name = s_.Lyr[n].LyrName;
  if (s_.Lyr[n].LyrBusy) {
    if (s_.host->MsgBox("  Would you like to Terminate " + s_.Lyr[n].BusyFunc +
                            " Function in layer " + name + " ?   \r\n",
                        name + " : Query Message Box ", MsgButtons::YesNo,
                        MsgAnswer::No) == MsgAnswer::Yes)
      s_.Lyr[n].LyrTerminate = -1;
    return;
  }
  txtFunc_->setText("Update Unique Values in Layer " + ToQ(name));
  const auto list = UpdateUnique(s_, n, cmdCrt_->checkedId(), std::max(LstFld_->currentRow(), 0),
                                 FromQ(TxtVal_->text()));
  LstUnq_->clear();
  int widest = 0;
  for (const auto& [key, value] : list) {
    auto* it = new QTreeWidgetItem(LstUnq_, {ToQ(key), ToQ(value)});
    (void)it;
    widest = std::max(widest, int(value.size()));
  }
  LstUnq_->setColumnWidth(1, std::max(60, QFontMetrics(font()).averageCharWidth() * (widest + 2)));
  txtFunc_->setText(QString::number(list.size()) + " Features have been updated Unique in Layer " +
                    ToQ(name));
}

} // namespace velmora
