#pragma once
#include "model/session.h"

namespace velmora {

// BUILD NETWORK <path> <tolerance>
int CmdBuildNetwork(Session& s);
// SHORTEST PATH <path> <fromX> <fromY> <toX> <toY> [EXACT]
int CmdShortestPath(Session& s);
// CLEAR SHORTEST PATH: the routes of every layer.
int CmdClearShortestPath(Session& s);

} // namespace velmora
