#pragma once
#include <QGroupBox>

#include "model/session.h"

class QComboBox;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QRadioButton;

namespace velmora {

// The script page of the layer properties: the script as text (VBScripttext) or from a
// file or address (VBScriptSRC, VBScriptFile), and the lists of what a script can call
// (VBFuncListOpt picks the list), whose items a double click writes into the text.
class ScriptPage : public QGroupBox {
  Q_OBJECT
public:
  ScriptPage(Session& s, int lyr, QWidget* parent = nullptr);
  // Writes the page into the layer's row.
  void Apply();
  // Puts the caret into the script text ("Edit VB Script...").
  void FocusEditor();

private:
  Session& s_;
  int lyr_;
  QRadioButton* fromText_;
  QRadioButton* fromFile_;
  QPlainTextEdit* text_;
  QLineEdit* file_;
  QComboBox* listPick_;
  QListWidget* list_;
  void FillList(int page);
};

} // namespace velmora
