#pragma once
// What the two route searches share: the checks before a search and the factor cache.
#include <cmath>
#include <limits>
#include <vector>

#include "frame/busy.h"
#include "network/route_search.h"

namespace velmora::netsearch {

inline double Dist(double x1, double y1, double x2, double y2) {
  const double dx = x2 - x1, dy = y2 - y1;
  return std::sqrt(dx * dx + dy * dy);
}
inline double Dist(const NetLink& a, const NetLink& b) {
  return Dist(a.LinkX, a.LinkY, b.LinkX, b.LinkY);
}

// The checks of a search on a started RunningFunction: the layer's type, its network
// (loaded here when it isn't yet) and the two stops. Done means go on.
RouteStatus CheckRoute(Session& s, int lyr);

// A search from start to end under the layer's busy frame: the checks, then `run` (true
// when it finished, false when terminated).
template <class Run> RouteStatus RunRouteSearch(Session& s, int lyr, Run run) {
  if (lyr < 1 || lyr > s.LyrCount || s.Lyr[lyr].LyrKind != 1) return RouteStatus::NotBuilt;
  RunningFunction rf(s, lyr, "Get Shortest Path");
  if (!rf.Started()) return RouteStatus::Busy;
  const RouteStatus st = CheckRoute(s, lyr);
  if (st != RouteStatus::Done) {
    rf.Finish(false);
    return st;
  }
  const bool done = run(rf);
  rf.Finish(false);
  return done ? RouteStatus::Done : RouteStatus::Canceled;
}

// The factor of each line, read from the table once a search.
class LineFactors {
public:
  LineFactors(Session& s, int lyr);
  double Of(Session& s, int lyr, int feature) {
    if (!used_) return 1;
    double& f = cache_[size_t(feature)];
    if (std::isnan(f)) f = NetLineFactor(s, lyr, feature);
    return f;
  }
  bool Used() const { return used_; }

private:
  bool used_ = false;
  std::vector<double> cache_;
};

} // namespace velmora::netsearch
