#pragma once
#include "model/session.h"

namespace velmora {

// Where a released vertex goes. Alt squares the corner at the vertex before it; Shift
// snaps to a vertex or segment of the visible layers. True with the target in (ox, oy)
// and s.Edit.SnapHit; false (SnapHit kind 0) when there is none.
bool SnapRelease(Session& s, int tool, int lyr, int rec, int part, int vertex, double x, double y,
                 int keys, double& ox, double& oy);
// The square of Alt: the pointer turned about the previous vertex so that the corner there
// is 0, 90 or 180 degrees. False when the part is too short or nothing would change.
bool SquareVertex(Session& s, int lyr, int rec, int part, int vertex, double x, double y,
                  double& ox, double& oy);
// The first snap target in one layer: vertices and (tools 12, 14, and 15 after vertices)
// segments, never a vertex of the present drag (s.Edit.MoveList) nor the vertex drawn.
bool SnapToLayer(Session& s, int tool, int snapLyr, int lyr, int rec, int part, int vertex);

} // namespace velmora
