#pragma once
// The shortest-path search written out step by step as the route search is defined, with
// plain arrays, shifts, a linear memo and a bubble sort: the oracle the product is held to.
#include <string>
#include <vector>

#include "model/session.h"

namespace velmora::test {

struct OracleNode {
  std::vector<NetLink> Links;
  int LinkUB = -1;
  double Remaining = 0;
  bool Seen = false;
  struct Memo {
    int Feature;
    double Cost, Factor;
  };
  std::vector<Memo> Memos;
};

// LoadNet read as told: a row a feature at (i-1)*8, its records at the row's offset.
std::vector<OracleNode> OracleLoad(const std::string& ntx, const std::string& net, int recCount);

struct OracleRoute {
  std::vector<NetRoute> Routes;
  double Len = 0;
  bool Found = false;
};

// GetShortestPath over `nodes` (which keep Seen and Remaining for the next search) on the
// geometry of layer `lyr`, with the factor field when the layer uses it.
OracleRoute OracleSearch(Session& s, int lyr, std::vector<OracleNode>& nodes, NetLink a, NetLink b);

// BuildNet's quadratic walk: the bytes of .net and .ntx.
void OracleBuild(Session& s, int lyr, double tol, std::string& net, std::string& ntx);

} // namespace velmora::test
