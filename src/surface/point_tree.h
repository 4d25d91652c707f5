#pragma once
#include <cstdint>
#include <vector>

#include "model/surface_types.h"

namespace velmora {

// A static k-d tree over TinPoints 1 .. n, with the boxes of its nodes and the range of the
// point numbers below each node, for the searches of the Delaunay build.
struct PointTreeNode {
  double X0, Y0, X1, Y1;
  int32_t Lo, Hi;         // the node's points: Perm[Lo .. Hi)
  int32_t Left, Right;    // children, -1 for a leaf
  int32_t MinIdx, MaxIdx; // the smallest and largest point numbers below
};

struct PointTree {
  std::vector<int32_t> Perm;
  std::vector<PointTreeNode> Nodes; // node 0 is the root
};

PointTree BuildPointTree(const std::vector<TinPoint>& pts, int n);

} // namespace velmora
