#include "ui/script_page.h"

#include <QComboBox>
#include <QFileDialog>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "platform/qt/qt_host.h"
#include "store/dbf_store.h"

namespace velmora {

namespace {

// The lists offered beside the editor: the layer's fields, the members of QMTVBS, the
// language's functions and its statements.
const char* const kListNames[] = {"Fields", "Layer and record functions", "VBScript functions",
                                  "Statements"};

const char* const kMembers[] = {"GetLayerNo()",
                                "SetLayerNo n",
                                "GetRecNo()",
                                "SetRecNo n",
                                "IsSelected(0, 0)",
                                "SelectIt 0, 0",
                                "UnSelectIt 0, 0",
                                "IsDeleted(0, 0)",
                                "DeleteIt 0, 0",
                                "UnDeleteIt 0, 0",
                                "BOF(0)",
                                "EOF(0)",
                                "RecNo(0)",
                                "LayerName(0)",
                                "PartsCount(0, 0)",
                                "VertexesCount(0, 0, 0)",
                                "RecordsCount(0)",
                                "Length(0, 0)",
                                "Area(0, 0)",
                                "GetMaxX(0, 0)",
                                "GetMaxY(0, 0)",
                                "GetMaxM(0, 0)",
                                "GetMaxZ(0, 0)",
                                "GetMinX(0, 0)",
                                "GetMinY(0, 0)",
                                "GetMinM(0, 0)",
                                "GetMinZ(0, 0)",
                                "MoveToMaxX v, 0, 0",
                                "MoveToMinX v, 0, 0",
                                "MoveToMaxY v, 0, 0",
                                "MoveToMinY v, 0, 0",
                                "MoveToMaxM v, 0, 0",
                                "MoveToMinM v, 0, 0",
                                "MoveToMaxZ v, 0, 0",
                                "MoveToMinZ v, 0, 0",
                                "AddVertex x, y, z, m, 0, 0, 0",
                                "GetVertexX(0, 0, 0, 0)",
                                "GetVertexY(0, 0, 0, 0)",
                                "GetVertexM(0, 0, 0, 0)",
                                "GetVertexZ(0, 0, 0, 0)",
                                "MoveToVertexX v, 0, 0, 0, 0",
                                "MoveToVertexY v, 0, 0, 0, 0",
                                "MoveToVertexM v, 0, 0, 0, 0",
                                "MoveToVertexZ v, 0, 0, 0, 0",
                                "Intersect(0, 0, rec2, lyr2)",
                                "Inside(0, 0, rec2, lyr2)",
                                "GetFieldValue(\"name\", 0, 0)",
                                "Degrees(dd)",
                                "Minutes(dd)",
                                "Seconds(dd)",
                                "EncryptStr(text)"};

const char* const kFunctions[] = {"Abs()",
                                  "Array()",
                                  "Asc()",
                                  "Atn()",
                                  "CBool()",
                                  "CByte()",
                                  "CCur()",
                                  "CDate()",
                                  "CDbl()",
                                  "Chr()",
                                  "CInt()",
                                  "CLng()",
                                  "Cos()",
                                  "CSng()",
                                  "CStr()",
                                  "Date",
                                  "DateAdd(\"d\", n, d)",
                                  "DateDiff(\"d\", d1, d2)",
                                  "DatePart(\"m\", d)",
                                  "DateSerial(y, m, d)",
                                  "DateValue()",
                                  "Day()",
                                  "Eval()",
                                  "Exp()",
                                  "Filter()",
                                  "Fix()",
                                  "FormatCurrency()",
                                  "FormatDateTime()",
                                  "FormatNumber(n, 2)",
                                  "FormatPercent()",
                                  "Hex()",
                                  "Hour()",
                                  "InputBox(\"prompt\")",
                                  "InStr(s, find)",
                                  "InStrRev(s, find)",
                                  "Int()",
                                  "IsArray()",
                                  "IsDate()",
                                  "IsEmpty()",
                                  "IsNull()",
                                  "IsNumeric()",
                                  "IsObject()",
                                  "Join()",
                                  "LBound()",
                                  "LCase()",
                                  "Left(s, n)",
                                  "Len()",
                                  "Log()",
                                  "LTrim()",
                                  "Mid(s, start, n)",
                                  "Minute()",
                                  "Month()",
                                  "MonthName()",
                                  "MsgBox \"text\"",
                                  "Now",
                                  "Oct()",
                                  "Replace(s, find, with)",
                                  "Right(s, n)",
                                  "Rnd",
                                  "Round(n, 2)",
                                  "RTrim()",
                                  "Second()",
                                  "Sgn()",
                                  "Sin()",
                                  "Space()",
                                  "Split(s, \",\")",
                                  "Sqr()",
                                  "StrComp()",
                                  "String(n, c)",
                                  "StrReverse()",
                                  "Tan()",
                                  "Time",
                                  "TimeSerial(h, m, s)",
                                  "TimeValue()",
                                  "Trim()",
                                  "TypeName()",
                                  "UBound()",
                                  "UCase()",
                                  "VarType()",
                                  "Weekday()",
                                  "WeekdayName()",
                                  "Year()"};

const char* const kStatements[] = {"If  Then\n\nEnd If",
                                   "If  Then\n\nElse\n\nEnd If",
                                   "Select Case \n  Case \n\n  Case Else\n\nEnd Select",
                                   "For i = 1 To n\n\nNext",
                                   "For Each x In arr\n\nNext",
                                   "Do While \n\nLoop",
                                   "Dim ",
                                   "Const  = ",
                                   "On Error Resume Next",
                                   "Function f()\n\nEnd Function",
                                   "Sub s()\n\nEnd Sub",
                                   "Set re = New RegExp\nre.Pattern = \"\"\nre.Global = True"};

} // namespace

ScriptPage::ScriptPage(Session& s, int lyr, QWidget* parent)
    : QGroupBox("VB Script", parent), s_(s), lyr_(lyr) {
  const LyrRec& l = s.Lyr[lyr];
  auto* top = new QVBoxLayout(this);
  auto* srcRow = new QHBoxLayout;
  fromText_ = new QRadioButton("Script text", this);
  fromFile_ = new QRadioButton("Script file or address", this);
  fromText_->setObjectName("VBScriptSRC0");
  fromFile_->setObjectName("VBScriptSRC1");
  (l.VBScriptSRC ? fromFile_ : fromText_)->setChecked(true);
  file_ = new QLineEdit(ToQ(l.VBScriptFile), this);
  file_->setObjectName("VBScriptFile");
  auto* browse = new QPushButton("...", this);
  srcRow->addWidget(fromText_);
  srcRow->addWidget(fromFile_);
  srcRow->addWidget(file_, 1);
  srcRow->addWidget(browse);
  top->addLayout(srcRow);

  auto* body = new QHBoxLayout;
  text_ = new QPlainTextEdit(ToQ(l.VBScripttext), this);
  text_->setObjectName("VBScripttext");
  text_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  text_->setMinimumHeight(140);
  body->addWidget(text_, 3);
  auto* side = new QVBoxLayout;
  listPick_ = new QComboBox(this);
  listPick_->setObjectName("VBFuncListOpt");
  for (const char* n : kListNames) listPick_->addItem(n);
  list_ = new QListWidget(this);
  side->addWidget(listPick_);
  side->addWidget(list_);
  body->addLayout(side, 1);
  top->addLayout(body);

  connect(browse, &QPushButton::clicked, this, [this] {
    QString p = QFileDialog::getOpenFileName(this, "VB Script File", ToQ(s_.LastDir),
                                             "VB Script (*.vbs *.txt);;All (*)");
    if (p.isEmpty()) return;
    file_->setText(p);
    fromFile_->setChecked(true);
  });
  connect(listPick_, &QComboBox::currentIndexChanged, this, [this](int i) { FillList(i); });
  connect(list_, &QListWidget::itemDoubleClicked, this, [this](QListWidgetItem* it) {
    text_->insertPlainText(it->data(Qt::UserRole).toString());
    text_->setFocus();
  });
  int page = std::min<int>(l.VBFuncListOpt, int(std::size(kListNames)) - 1);
  listPick_->setCurrentIndex(page);
  FillList(page);
}

void ScriptPage::FillList(int page) {
  list_->clear();
  auto add = [&](const QString& shown, const QString& inserted) {
    auto* it = new QListWidgetItem(shown, list_);
    it->setData(Qt::UserRole, inserted);
  };
  if (page == 0) {
    if (lyr_ >= 1 && lyr_ <= s_.LyrCount)
      for (int f = 1; f <= s_.Lyr[lyr_].Dbf.DbfFieldCount; ++f) {
        QString n = ToQ(GetFieldName(s_, lyr_, f)).trimmed();
        add(n, n);
      }
  } else if (page == 1) {
    for (const char* m : kMembers) add(m, m);
  } else if (page == 2) {
    for (const char* m : kFunctions) add(m, m);
  } else {
    for (const char* m : kStatements) add(QString(m).section('\n', 0, 0), m);
  }
}

void ScriptPage::Apply() {
  if (lyr_ < 1 || lyr_ > s_.LyrCount) return;
  LyrRec& l = s_.Lyr[lyr_];
  uint8_t src = fromFile_->isChecked() ? 1 : 0;
  std::string text = FromQ(text_->toPlainText()), file = FromQ(file_->text()).c_str();
  if (src != l.VBScriptSRC || text != l.VBScripttext || file != l.VBScriptFile) s_.ProjChanged = -1;
  if (file != l.VBScriptFile) l.VBScriptDownload.clear();
  l.VBScriptSRC = src;
  l.VBScripttext = text;
  l.VBScriptFile = file;
  l.VBFuncListOpt = uint8_t(listPick_->currentIndex());
}

void ScriptPage::FocusEditor() {
  fromText_->setChecked(fromText_->isChecked() || file_->text().isEmpty());
  text_->setFocus();
}

} // namespace velmora
