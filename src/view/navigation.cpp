#include "view/navigation.h"

#include "view/map_draw.h"
#include "view/map_tools.h"

namespace velmora {

namespace {

void Draw(Session& s, int tool, const DrawArgs& a) {
  MapDraw(s, tool, 1, nullptr, a);
}

DrawArgs Window(const Session& s) {
  const MapViewRec& v = s.MapView;
  DrawArgs a;
  a.Left = v.MapLeft, a.Top = v.MapTop, a.Right = v.MapRight, a.Bottom = v.MapBottom;
  return a;
}

DrawArgs FitSides(const Session& s) {
  DrawArgs a;
  a.Left = s.View.FitLeft, a.Top = s.View.FitTop, a.Right = s.View.FitRight,
  a.Bottom = s.View.FitBottom;
  return a;
}

void StepHistory(Session& s, int to) {
  // The whole stored record comes back, but the view keeps its present size and target.
  int w = s.MapView.ViewW, h = s.MapView.ViewH, target = s.MapView.MapTarget;
  s.ViewPos = to;
  s.MapView = s.ViewHist[size_t(to)];
  s.MapView.ViewW = w, s.MapView.ViewH = h, s.MapView.MapTarget = target;
  SetFitSides(s, s.MapView.MapLeft, s.MapView.MapTop, s.MapView.MapRight, s.MapView.MapBottom);
  Draw(s, 1, FitSides(s));
  s.View.ZoomPrevEnabled = s.ViewPos > 0;
  s.View.ZoomNextEnabled = s.ViewPos < s.ViewCount - 1;
  s.MapView.MapTool = s.View.MapToolKeep;
}

} // namespace

void SetFitSides(Session& s, double left, double top, double right, double bottom) {
  s.View.FitLeft = left, s.View.FitTop = top, s.View.FitRight = right, s.View.FitBottom = bottom;
}

void MapRepaint(Session& s) {
  Draw(s, 0, Window(s));
}

void MapFit(Session& s) {
  Draw(s, 1, FitSides(s));
}

void MapFitHist(Session& s) {
  MapFit(s);
  ViewPush(s);
}

void MapFull(Session& s) {
  SetFitSides(s, 0, 0, 0, 0);
  Draw(s, 17, DrawArgs{});
  ViewPush(s);
}

void MapApply(Session& s) {
  DrawArgs a = Window(s);
  const MapViewRec& v = s.MapView;
  a.X1 = v.DragX1, a.Y1 = v.DragY1, a.X2 = v.DragX2, a.Y2 = v.DragY2;
  Draw(s, v.MapTool, a);
  ViewPush(s);
}

void ZoomPrevious(Session& s) {
  if (s.ViewPos > 0) StepHistory(s, s.ViewPos - 1);
}

void ZoomNext(Session& s) {
  if (s.ViewPos < s.ViewCount - 1) StepHistory(s, s.ViewPos + 1);
}

void SetMapScale(Session& s, double n) {
  const MapViewRec& v = s.MapView;
  double w = v.ViewW * s.View.TwipsPerPixelX / 56700.0 * n;
  double h = v.ViewH * s.View.TwipsPerPixelY / 56700.0 * n;
  if (s.MapUnit != s.MeasUnit) w /= 111000.0, h /= 111000.0;
  double cx = (v.MapLeft + v.MapRight) / 2, cy = (v.MapTop + v.MapBottom) / 2;
  SetFitSides(s, cx - w / 2, cy + h / 2, cx + w / 2, cy - h / 2);
  MapFitHist(s);
}

} // namespace velmora
