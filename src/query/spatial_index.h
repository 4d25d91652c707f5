#pragma once
// A packed R-tree over the boxes of a layer's records, built once for a query. Boxes are
// kept as floats rounded outward, so a search finds every record whose exact box meets
// the searched one (and at most a few more, which the exact tests then drop).
#include <cstddef>
#include <cstdint>
#include <vector>

#include "model/session.h"

namespace velmora {

struct BoxIndex {
  struct Node {
    float x1, y1, x2, y2;
    uint32_t first; // leaves: first entry in Ids; inner nodes: first child in Nodes
    uint32_t count; // entries or children; the top bit marks a leaf
  };
  std::vector<Node> Nodes;  // the root last
  std::vector<int32_t> Ids; // record numbers, in leaf order
  uint32_t BoxGen = 0;      // the layer's BoxGen when built
  int32_t RecCount = 0;
};

// Every live record of the layer (a box with NaN meets nothing and is left out).
BoxIndex BuildBoxIndex(const Session& s, int lyr);
// The records whose box meets x1..x2, y1..y2 (any order), appended to `out` unsorted.
void SearchBoxIndex(const BoxIndex& ix, double x1, double y1, double x2, double y2,
                    std::vector<int32_t>& out);
// Memory held by the index.
size_t BoxIndexBytes(const BoxIndex& ix);

} // namespace velmora
