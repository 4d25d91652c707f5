#pragma once
#include <string>

#include "model/session.h"

namespace velmora {

// Tool codes of the map.
enum MapToolCode {
  kToolRepaint = 0,
  kToolFit = 1,
  kToolZoomIn = 2,
  kToolZoomOut = 3,
  kToolPan = 4,
  kToolSelectBox = 7,
  kToolIdentify = 8,
  kToolHyperLink = 9,
  kToolMeasure = 10,
  kToolEditFeature = 11,
  kToolCreateFeature = 12,
  kToolRouteStop = 16,
  kToolFull = 17,
  kToolCentre = 18,
};

// Turns a tool code and a pixel rectangle into a new world window. Sides all 0: the
// window is computed from the data.
void MapTools(Session& s, int tool, double factor, int w, int h, double left, double top,
              double right, double bottom, double x1, double y1, double x2, double y2);
// The window from the data box of the visible layers, or false when no layer counts.
bool DataExtent(const Session& s, double& l, double& t, double& r, double& b);
void CalcMapScale(Session& s);
// The scale number of a window of w by h pixels over the given world sides.
double ScaleOfWindow(const Session& s, int w, int h, double left, double top, double right,
                     double bottom);
// The texts of the "Map Scale" menu, in order, and their numbers.
const char* const* MapScaleTexts(int& count);
double MapScaleValue(int index);

// Records the present window in the view history when it differs from the entry at ViewPos.
void ViewPush(Session& s);
void ViewHistClear(Session& s);

// World and pixel.
inline double PixX(const Session& s, double X) {
  return (X - s.MapView.MapLeft) / s.MapView.MapFactor;
}
inline double PixY(const Session& s, double Y) {
  return (s.MapView.MapTop - Y) / s.MapView.MapFactor;
}
inline double WorldX(const Session& s, double x) {
  return s.MapView.MapLeft + x * s.MapView.MapFactor;
}
inline double WorldY(const Session& s, double y) {
  return s.MapView.MapTop - y * s.MapView.MapFactor;
}

// The pick box of 2 pixels around a pixel.
void SetPickAt(Session& s, double x, double y);

// The three lines of the status text.
std::string StatusText(const Session& s);
// Status from a pixel of the view, and from a world point.
std::string ScaleStatusText(Session& s, double x, double y);
std::string WorldStatusText(Session& s, double X, double Y);

} // namespace velmora
