#pragma once
#include "model/session.h"

namespace velmora {

// Picking the stops of a route with tool 16: the hit test of the map runs against the one
// layer of the shortest-path dialog, last feature first.

// The hit at pixel (x, y) of the map on a line of `lyr`; true with the hit in HitNow.
bool PickRouteStop(Session& s, int lyr, double x, double y);
// The same at a world point, as a click there would pick it.
bool PickRouteStopAt(Session& s, int lyr, double X, double Y);
// InstNet: the hit becomes stop `idx` (1 From, 2 To): its feature, point and vertex.
void InstNet(Session& s, int idx, const HitRec& hit);

} // namespace velmora
