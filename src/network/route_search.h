#pragma once
#include <vector>

#include "model/session.h"

namespace velmora {

// The shortest path over a layer's loaded network between the two stops of s.Net.NetStops.

enum class RouteStatus {
  Done,     // the search ran to its end; the route, if any, is on the layer
  NotBuilt, // the layer is not of a searchable type or its network is not there
  NoStops,  // From or To is not picked on the layer
  Busy,     // the layer is busy with another function
  Canceled, // terminated by the user
};

// GetShortestPath: the iterative-deepening depth-first branch and bound. An outer loop
// raises a cost bound (a Factor times the straight-line distance, from 0.001 by 1% a
// pass); each pass walks the line graph depth first within the bound, most promising link
// first, with a memo of the costs seen at each line; the first pass that finds a route
// runs to its end and its best route is the answer. Leaves the result in the layer's
// NetRoutes and NetRouteLen. The layer is loaded with LoadNet when it isn't yet.
RouteStatus GetShortestPath(Session& s, int lyr);

// The least-cost route over the same links, stretches and factor field (Dijkstra, or A*
// when no factor field is in use): the "Exact shortest path" option.
RouteStatus GetExactShortestPath(Session& s, int lyr);

// The multiplier of a line's length from the layer's factor field: 1 when the field is not
// in use or the value is empty.
double NetLineFactor(Session& s, int lyr, int feature);

// ClearLayerRoute and ClearShortestPath (every layer).
void ClearLayerRoute(Session& s, int lyr);
void ClearShortestPath(Session& s);

} // namespace velmora
