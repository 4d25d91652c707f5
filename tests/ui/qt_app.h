#pragma once
#include <QApplication>

namespace velmora::test {

// The one application object of a widget test program, made on first use and never
// destroyed: Qt's own globals (the input devices of a shown window among them) may be
// gone before a static application object's destructor would run at exit.
inline QApplication& App() {
  static int argc = 1;
  static char name[] = "test_ui";
  static char* argv[] = {name, nullptr};
  static QApplication* app = new QApplication(argc, argv);
  return *app;
}

} // namespace velmora::test
