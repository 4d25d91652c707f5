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

#include <QInputDevice>
#include <QPointingDevice>

namespace velmora::test {

// Mouse and key events made without a platform device use default devices that Qt would
// delete only after the application object at exit, where they fail: a test that sends
// such events drops them at its end.
inline void DropDefaultDevices() {
  delete QPointingDevice::primaryPointingDevice();
  delete QInputDevice::primaryKeyboard();
}

} // namespace velmora::test
