#pragma once
#include <string>
#include <vector>

#include "model/session.h"
#include "network/route_search.h"

namespace velmora {

// "Run" of the shortest-path dialog after its busy question: clears the terminate flag and
// the layer's route, runs the search (the exact one with `exact`) between the two stops
// and logs "Get Shortest Path in Layer <name>", or the cancel line when terminated.
RouteStatus RunRoute(Session& s, int lyr, bool exact);

// The length as the dialog and the log show it.
std::string RouteLenText(double len);
// The trimmed value of field `fld` for each line of the layer's route (ListPath).
std::vector<std::string> RouteFieldValues(Session& s, int lyr, int fld);

} // namespace velmora
