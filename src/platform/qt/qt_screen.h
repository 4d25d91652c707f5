#pragma once

class QScreen;

namespace velmora {

// What the map needs to know of the screen: pixels per metre, and twips (1/1440 inch) per
// pixel across and down. Without a screen, 96 pixels an inch.
struct ScreenMeasures {
  double PixPerMeter = 96 / 0.0254;
  double TwipsPerPixelX = 15, TwipsPerPixelY = 15;
};

// From the pixel densities across and down, in pixels an inch: the screen's real density
// where it is known and believable, else the density the desktop works with.
ScreenMeasures MeasuresOfDensity(double physicalX, double physicalY, double logicalX,
                                 double logicalY);
// The measures of `screen` (the primary screen when null, 96 dpi when there is none).
ScreenMeasures MeasureScreen(const QScreen* screen);

} // namespace velmora
