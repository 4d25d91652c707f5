// The dialogs of a script: MsgBox with VBScript's button sets and answers, InputBox.
#include <QInputDialog>
#include <QMessageBox>

#include "platform/qt/qt_host.h"

namespace velmora {

int QtHost::ScriptMsgBox(const std::string& prompt, int buttons, const std::string& title) {
  using B = QMessageBox::StandardButton;
  struct Set {
    QMessageBox::StandardButtons buttons;
    B dflt[3];
  };
  static const Set kSets[] = {
      {QMessageBox::Ok, {B::Ok, B::Ok, B::Ok}},
      {QMessageBox::Ok | QMessageBox::Cancel, {B::Ok, B::Cancel, B::Cancel}},
      {QMessageBox::Abort | QMessageBox::Retry | QMessageBox::Ignore,
       {B::Abort, B::Retry, B::Ignore}},
      {QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, {B::Yes, B::No, B::Cancel}},
      {QMessageBox::Yes | QMessageBox::No, {B::Yes, B::No, B::No}},
      {QMessageBox::Retry | QMessageBox::Cancel, {B::Retry, B::Cancel, B::Cancel}},
  };
  int set = buttons & 7;
  if (set > 5) set = 0;
  QMessageBox::Icon icon = QMessageBox::NoIcon;
  switch (buttons & 0x70) {
  case 16:
    icon = QMessageBox::Critical;
    break;
  case 32:
    icon = QMessageBox::Question;
    break;
  case 48:
    icon = QMessageBox::Warning;
    break;
  case 64:
    icon = QMessageBox::Information;
    break;
  }
  QMessageBox box(icon, ToQ(title.empty() ? std::string("VBScript") : title), ToQ(prompt),
                  kSets[set].buttons, window_.data());
  box.setDefaultButton(kSets[set].dflt[std::min((buttons >> 8) & 3, 2)]);
  switch (box.exec()) {
  case QMessageBox::Ok:
    return 1;
  case QMessageBox::Cancel:
    return 2;
  case QMessageBox::Abort:
    return 3;
  case QMessageBox::Retry:
    return 4;
  case QMessageBox::Ignore:
    return 5;
  case QMessageBox::Yes:
    return 6;
  case QMessageBox::No:
    return 7;
  default:
    return set == 0 ? 1 : 2;
  }
}

bool QtHost::ScriptInputBox(const std::string& prompt, const std::string& title,
                            const std::string& dflt, std::string& answer, bool& cancelled) {
  bool ok = false;
  QString t =
      QInputDialog::getText(window_.data(), ToQ(title.empty() ? std::string("VBScript") : title),
                            ToQ(prompt), QLineEdit::Normal, ToQ(dflt), &ok);
  cancelled = !ok;
  answer = ok ? FromQ(t) : std::string();
  return true;
}

} // namespace velmora
