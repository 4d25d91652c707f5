#include "view/map_tools.h"

#include <algorithm>
#include <cmath>

#include "model/num_format.h"

namespace velmora {

namespace {

constexpr double kZoomLimit = 0.0001;    // PixPerMeter * factor at the finest zoom
constexpr double kFloorFactor = 0.00015; // the factor a point-sized layer gets, in metres
constexpr double kTwipsPerMetre = 56700.0;
constexpr double kMetresPerDegree = 111000.0;

bool Counts(const LyrRec& l) {
  return l.DVisable == 1 && l.LyrKind > 0 && (l.Shp.RecCount > 0 || l.LyrKind == 2);
}

// Sets the window centred on the box (L, T, R, B) at factor f.
void CentreWindow(MapViewRec& v, double f, int w, int h, double L, double T, double R, double B) {
  v.MapFactor = f;
  v.MapRight = R + (w * f + L - R) / 2;
  v.MapLeft = L - (w * f + L - R) / 2;
  v.MapBottom = B + (T - h * f - B) / 2;
  v.MapTop = T - (T - h * f - B) / 2;
}

void ClipToWindow(Session& s) {
  s.View.ClipLeft = s.MapView.MapLeft;
  s.View.ClipRight = s.MapView.MapRight;
  s.View.ClipTop = s.MapView.MapTop;
  s.View.ClipBottom = s.MapView.MapBottom;
}

} // namespace

bool DataExtent(const Session& s, double& L, double& T, double& R, double& B) {
  bool any = false;
  if (s.View.GpsFollow) {
    L = R = s.View.GpsX;
    T = B = s.View.GpsY;
    any = true;
  }
  for (int i = 1; i <= s.LyrCount; ++i) {
    const LyrRec& l = s.Lyr[i];
    if (!Counts(l)) continue;
    const ShpMainHeader& h = l.Shp.ShpHeader;
    double ll = std::min(h.Xmin, h.Xmax), rr = std::max(h.Xmin, h.Xmax);
    double bb = std::min(h.Ymin, h.Ymax), tt = std::max(h.Ymin, h.Ymax);
    if (!any) {
      L = ll, R = rr, B = bb, T = tt;
      any = true;
    } else {
      L = std::min(L, ll), R = std::max(R, rr), B = std::min(B, bb), T = std::max(T, tt);
    }
  }
  return any;
}

void MapTools(Session& s, int tool, double F, int w, int h, double L, double T, double R, double B,
              double x1, double y1, double x2, double y2) {
  MapViewRec& v = s.MapView;
  s.View.LastAction = tool;
  v.ViewW = w;
  v.ViewH = h;
  if (w <= 0 || h <= 0) return;

  if (L == 0 && T == 0 && R == 0 && B == 0) {
    DataExtent(s, L, T, R, B);
    if (L == 0 && T == 0 && R == 0 && B == 0) {
      L = 0, B = 0, T = R = v.ViewW;
      v.MapFactor = 1;
      F = 1;
    }
  }

  bool rescale = false;
  switch (tool) {
  case kToolFull:
  case kToolFit: {
    double margin = tool == kToolFull ? 1.25 : 1.0;
    double fx = (R - L) * margin / w, fy = (T - B) * margin / h;
    double f = (tool == kToolFull || v.MapTarget == 1) ? std::max(fx, fy) : fy;
    if (!(s.View.PixPerMeter * f > kZoomLimit)) f = kFloorFactor / s.View.PixPerMeter;
    CentreWindow(v, f, w, h, L, T, R, B);
    rescale = true;
    break;
  }
  case kToolZoomIn:
  case kToolZoomOut:
  case kToolCentre: {
    if (tool == kToolZoomIn && x1 == x2 && y1 == y2) {
      x1 -= w / 4.0, y1 -= h / 4.0, x2 += w / 4.0, y2 += h / 4.0;
    } else if (tool == kToolZoomOut) {
      x1 -= w, y1 -= h, x2 += w, y2 += h;
    } else if (tool == kToolCentre) {
      x1 -= w / 2.0, y1 -= h / 2.0, x2 = x1 + w, y2 = y1 + h;
    }
    double r = F * x2 + v.MapLeft, l = F * x1 + v.MapLeft;
    double b = v.MapTop - F * y2, t = v.MapTop - F * y1;
    double f = std::max((r - l) / w, (t - b) / h);
    if (s.View.PixPerMeter * f > kZoomLimit) CentreWindow(v, f, w, h, l, t, r, b);
    rescale = true;
    break;
  }
  case kToolPan:
    v.MapRight = F * x2 + L;
    v.MapLeft = F * x1 + L;
    v.MapBottom = T - F * y2;
    v.MapTop = T - F * y1;
    break;
  case kToolSelectBox:
  case kToolIdentify:
  case kToolHyperLink:
  case kToolEditFeature:
  case 13:
  case 14:
  case 15:
  case kToolRouteStop:
    if (x1 == x2 && y1 == y2 && F != 0) x1 -= 2, y1 -= 2, x2 += 2, y2 += 2;
    s.View.PickRight = F * x2 + L;
    s.View.PickLeft = F * x1 + L;
    s.View.PickBottom = T - F * y2;
    s.View.PickTop = T - F * y1;
    s.View.PickX = (s.View.PickLeft + s.View.PickRight) / 2;
    s.View.PickY = (s.View.PickTop + s.View.PickBottom) / 2;
    return;
  default:
    return;
  }
  ClipToWindow(s);
  if (rescale) CalcMapScale(s);
}

void SetPickAt(Session& s, double x, double y) {
  double F = s.MapView.MapFactor, L = s.MapView.MapLeft, T = s.MapView.MapTop;
  s.View.PickLeft = F * (x - 2) + L;
  s.View.PickRight = F * (x + 2) + L;
  s.View.PickTop = T - F * (y - 2);
  s.View.PickBottom = T - F * (y + 2);
  s.View.PickX = (s.View.PickLeft + s.View.PickRight) / 2;
  s.View.PickY = (s.View.PickTop + s.View.PickBottom) / 2;
}

double ScaleOfWindow(const Session& s, int w, int h, double left, double top, double right,
                     double bottom) {
  if (w <= 0 || h <= 0) return 0;
  double dx = std::fabs(right - left), dy = std::fabs(top - bottom);
  if (s.MapUnit != s.MeasUnit) dx *= kMetresPerDegree, dy *= kMetresPerDegree;
  // The side that is shorter in world terms sets the scale.
  double scale = dx >= dy ? dy / (s.View.TwipsPerPixelY * h / kTwipsPerMetre)
                          : dx / (s.View.TwipsPerPixelX * w / kTwipsPerMetre);
  return std::round(scale);
}

void CalcMapScale(Session& s) {
  const MapViewRec& v = s.MapView;
  s.View.MapScale = s.LyrCount == 0 ? 0
                                    : ScaleOfWindow(s, v.ViewW, v.ViewH, v.MapLeft, v.MapTop,
                                                    v.MapRight, v.MapBottom);
}

namespace {
constexpr const char* kScaleTexts[] = {
    "1 : 1,000",  "1 : 2,500",  "1 : 5,000",   "1 : 10,000",  "1 : 15,000",  "1 : 20,000",
    "1 : 25,000", "1 : 50,000", "1 : 100,000", "1 : 250,000", "1 : 500,000", "1 : 1,000,000"};
constexpr double kScaleValues[] = {1000,  2500,  5000,   10000,  15000,  20000,
                                   25000, 50000, 100000, 250000, 500000, 1000000};
} // namespace

const char* const* MapScaleTexts(int& count) {
  count = int(std::size(kScaleTexts));
  return kScaleTexts;
}

double MapScaleValue(int index) {
  return index >= 0 && index < int(std::size(kScaleValues)) ? kScaleValues[index] : 0;
}

void ViewHistClear(Session& s) {
  s.ViewHist.clear();
  s.ViewPos = 0;
  s.ViewCount = 0;
  s.View.ZoomPrevEnabled = s.View.ZoomNextEnabled = false;
}

void ViewPush(Session& s) {
  const MapViewRec& v = s.MapView;
  if (s.ViewCount > 0) {
    const MapViewRec& at = s.ViewHist[size_t(s.ViewPos)];
    bool differs = (at.MapLeft != v.MapLeft && at.MapRight != v.MapRight) ||
                   (at.MapTop != v.MapTop && at.MapBottom != v.MapBottom);
    if (!differs) return;
    s.ViewHist.resize(size_t(s.ViewPos) + 1);
    s.ViewHist.push_back(v);
    s.ViewPos += 1;
    s.ProjChanged = -1;
  } else {
    s.ViewHist.assign(1, v);
    s.ViewPos = 0;
  }
  s.ViewCount = int32_t(s.ViewHist.size());
  s.View.ZoomPrevEnabled = s.ViewPos > 0;
  s.View.ZoomNextEnabled = s.ViewPos < s.ViewCount - 1;
}

std::string StatusText(const Session& s) {
  std::string unit;
  if (s.LyrCount > 0)
    unit = std::string(s.MapUnit == 0 ? "Degrees" : "Meters") + " " + std::to_string(s.MapZone) +
           " " + (s.MapSouth ? "South" : "North");
  return "  Map Unit = " + unit + "\n" + "  Lon or X  = " + FormatGrouped(s, s.View.CursorX, 9) +
         "\n" + "  Lat or Y   = " + FormatGrouped(s, s.View.CursorY, 9) + "\n" +
         "  Scale      = 1 : " + FormatGrouped(s, s.View.MapScale, 0);
}

std::string ScaleStatusText(Session& s, double x, double y) {
  s.View.CursorX = WorldX(s, x);
  s.View.CursorY = WorldY(s, y);
  return StatusText(s);
}

std::string WorldStatusText(Session& s, double X, double Y) {
  s.View.CursorX = X;
  s.View.CursorY = Y;
  return StatusText(s);
}

} // namespace velmora
