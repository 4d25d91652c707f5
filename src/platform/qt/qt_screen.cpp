#include "platform/qt/qt_screen.h"

#include <QGuiApplication>
#include <QScreen>

namespace velmora {

namespace {

constexpr double kMetresPerInch = 0.0254;
constexpr double kTwipsPerInch = 1440;

// A screen that reports no size, or a size from a projector's table, gives densities far
// from any real screen's.
bool Believable(double dpi) {
  return dpi >= 30 && dpi <= 1200;
}

double Density(double physical, double logical) {
  if (Believable(physical)) return physical;
  if (Believable(logical)) return logical;
  return 96;
}

} // namespace

ScreenMeasures MeasuresOfDensity(double physicalX, double physicalY, double logicalX,
                                 double logicalY) {
  const double x = Density(physicalX, logicalX), y = Density(physicalY, logicalY);
  ScreenMeasures m;
  m.PixPerMeter = x / kMetresPerInch; // measured across, as the map frame's width is
  m.TwipsPerPixelX = kTwipsPerInch / x;
  m.TwipsPerPixelY = kTwipsPerInch / y;
  return m;
}

ScreenMeasures MeasureScreen(const QScreen* screen) {
  if (!screen) screen = QGuiApplication::primaryScreen();
  if (!screen) return ScreenMeasures{};
  // Both densities are in the device-independent pixels the map is drawn in.
  return MeasuresOfDensity(screen->physicalDotsPerInchX(), screen->physicalDotsPerInchY(),
                           screen->logicalDotsPerInchX(), screen->logicalDotsPerInchY());
}

} // namespace velmora
