#pragma once
#include <array>
#include <cstdint>
#include <vector>

#include "model/shp_types.h"

namespace velmora {

// One crossing of a line with another, as stored in .net (24 bytes on disk), and a picked
// stop of a route. LinkVertex: the index, within its part, of the first vertex of the
// crossed segment of the owning line, plus 1.
struct NetLink {
  int32_t LinkFeature = 0; // the other line; 0 for a stop not yet picked
  double LinkX = 0, LinkY = 0;
  int32_t LinkVertex = 0;
};

// The loaded network of a layer: one node a feature (1 .. NetNodeUB), its links in one
// run. Node i owns Links[First[i] .. First[i + 1]).
struct NetNodeTable {
  std::vector<NetLink> Links;
  std::vector<int64_t> First;    // NetNodeUB + 2 entries
  std::vector<double> Remaining; // estimate of the cost still needed to the goal
  std::vector<uint8_t> Seen;     // Remaining holds a measured value
  int32_t NetNodeUB = 0;
  bool Loaded = false;

  int32_t LinkUB(int node) const {
    return int32_t(First[size_t(node) + 1] - First[size_t(node)]) - 1;
  }
  const NetLink* LinksOf(int node) const { return Links.data() + First[size_t(node)]; }
};

// One line of a found route with the stretch of it that the route uses.
struct NetRoute {
  int32_t RouteFeature = 0;
  std::vector<XY> RoutePts;
};

// The network block of a layer row: the loaded files and the last route.
struct NetBlock {
  int NetFile = 0, NtxFile = 0;
  bool NetOpen = false;
  NetNodeTable NetNodes;
  std::vector<NetRoute> NetRoutes; // NetRouteCount = size
  double NetRouteLen = 0;
};

// The session's side of the shortest path: the two stops and the dialogs' flags.
struct NetVars {
  std::array<NetLink, 3> NetStops{}; // 1 From, 2 To
  int16_t NetStopIdx = 1;
  int32_t NetPickLyr = 0;
  int32_t NetLyr = 0;    // the layer of the shortest-path dialog, 0 when it is closed
  bool NetExact = false; // "Exact shortest path": the least-cost search instead of the bounded one
  int ToolBefore = 0;    // the map tool to go back to when the dialog closes
  bool NetDialogOpen = false, BuildDialogOpen = false;
};

} // namespace velmora
