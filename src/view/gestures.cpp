#include "view/gestures.h"

#include <algorithm>

#include "view/map_tools.h"
#include "view/navigation.h"

namespace velmora {

void ToolGesture(Session& s, int x1, int y1, int x2, int y2) {
  MapViewRec& v = s.MapView;
  v.DragX1 = std::min(x1, x2), v.DragY1 = std::min(y1, y2);
  v.DragX2 = std::max(x1, x2), v.DragY2 = std::max(y1, y2);
  MapApply(s);
}

void PanByPixels(Session& s, int dx, int dy) {
  if (dx == 0 && dy == 0) return;
  MapViewRec& v = s.MapView;
  int keep = v.MapTool;
  v.MapTool = kToolPan;
  v.DragX1 = -dx, v.DragY1 = -dy, v.DragX2 = v.ViewW - dx, v.DragY2 = v.ViewH - dy;
  MapApply(s);
  v.MapTool = keep;
}

bool ArrowKeyPan(Session& s, int key) {
  if (s.LyrCount == 0 || s.ActiveLyr == 0) return false;
  double fx = 0, fy = 0;
  switch (key) {
  case 37:
    fx = -0.25;
    break;
  case 38:
    fy = -0.25;
    break;
  case 39:
    fx = 0.25;
    break;
  case 40:
    fy = 0.25;
    break;
  default:
    return false;
  }
  PanByPixels(s, -int(fx * s.MapView.ViewW), -int(fy * s.MapView.ViewH));
  return true;
}

} // namespace velmora
