#pragma once
#include <QApplication>

namespace velmora::test {

// The one application object of a widget test program, made on first use.
inline QApplication& App() {
  static int argc = 1;
  static char name[] = "test_ui";
  static char* argv[] = {name, nullptr};
  static QApplication app(argc, argv);
  return app;
}

} // namespace velmora::test
