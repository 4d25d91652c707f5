#pragma once

#include "model/session.h"

namespace velmora {

// A finished gesture of the current tool over the pixel rectangle (zoom box or click).
void ToolGesture(Session& s, int x1, int y1, int x2, int y2);
// The map image was dragged by (dx, dy) pixels: the pan of tool 4, recorded.
void PanByPixels(Session& s, int dx, int dy);
// Arrow keys (37 left, 38 up, 39 right, 40 down) pan a quarter of the surface.
bool ArrowKeyPan(Session& s, int key);

} // namespace velmora
