#pragma once
#include "model/session.h"

namespace velmora {

// BUILD NETWORK <path> <tolerance>
int CmdBuildNetwork(Session& s);
// SHORTEST PATH <path> <fromX> <fromY> <toX> <toY> [EXACT]
int CmdShortestPath(Session& s);

} // namespace velmora
