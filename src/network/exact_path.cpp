#include <chrono>
#include <limits>
#include <queue>

#include "network/route_common.h"
#include "network/route_search.h"
#include "network/walk_line.h"

namespace velmora {

using netsearch::Dist;

namespace {

// States are the crossings (links) by which the route steps onto the next line; the goal
// is one more state. A link k owned by line u and naming v stands for "on v, entered at
// k's point, coming from u".
class ExactSearch {
public:
  ExactSearch(Session& s, RunningFunction& rf)
      : s_(s), rf_(rf), factors_(s, rf.Layer()), A_(s.Net.NetStops[1]), B_(s.Net.NetStops[2]) {
    Refresh();
    const NetNodeTable& t = *nodes_;
    goal_ = int64_t(t.Links.size());
    owner_.resize(t.Links.size());
    for (int n = 1; n <= t.NetNodeUB; ++n)
      for (int64_t k = t.First[size_t(n)]; k < t.First[size_t(n) + 1]; ++k) owner_[size_t(k)] = n;
    g_.assign(size_t(goal_) + 1, kInf);
    pred_.assign(size_t(goal_) + 1, -2);
  }

  // False when terminated.
  bool Run() {
    const NetNodeTable& t = *nodes_;
    const int a = A_.LinkFeature;
    // From the From stop along its own line.
    if (a == B_.LinkFeature) Relax(goal_, -1, Stretch(a, A_.LinkVertex, A_, B_));
    for (int64_t m = t.First[size_t(a)]; m < t.First[size_t(a) + 1]; ++m) {
      const NetLink& L = t.Links[size_t(m)];
      if (L.LinkFeature != a) Relax(m, -1, Stretch(a, A_.LinkVertex, A_, L));
    }
    long long pops = 0;
    while (!open_.empty()) {
      const Entry e = open_.top();
      open_.pop();
      if (e.g != g_[size_t(e.k)]) continue; // superseded
      if (e.k == goal_) break;
      if ((++pops & 1023) == 0 &&
          std::chrono::steady_clock::now() - last_ > std::chrono::milliseconds(30)) {
        last_ = std::chrono::steady_clock::now();
        if (rf_.Step(0, 0)) return false;
        Refresh();
      }
      const NetLink& in = nodes_->Links[size_t(e.k)];
      const int u = owner_[size_t(e.k)], v = in.LinkFeature;
      const int ev = EntryVertex(v, u);
      if (v == B_.LinkFeature) Relax(goal_, e.k, e.g + Stretch(v, ev, in, B_));
      for (int64_t m = nodes_->First[size_t(v)]; m < nodes_->First[size_t(v) + 1]; ++m) {
        const NetLink& L = nodes_->Links[size_t(m)];
        if (L.LinkFeature == u || L.LinkFeature == v) continue;
        Relax(m, e.k, e.g + Stretch(v, ev, in, L));
      }
    }
    SaveRoute();
    return true;
  }

private:
  static constexpr double kInf = std::numeric_limits<double>::infinity();
  struct Entry {
    double f, g;
    int64_t k;
    bool operator<(const Entry& o) const { return f > o.f; } // the least f on top
  };

  Session& s_;
  RunningFunction& rf_;
  netsearch::LineFactors factors_;
  const NetLink A_, B_;
  const ShpBlock* shp_ = nullptr;
  NetNodeTable* nodes_ = nullptr;
  int64_t goal_ = 0;
  std::vector<int32_t> owner_;
  std::vector<double> g_;
  std::vector<int64_t> pred_; // -1: from the From stop; -2: not reached
  std::priority_queue<Entry> open_;
  std::chrono::steady_clock::time_point last_ = std::chrono::steady_clock::now();

  void Refresh() {
    LyrRec& l = s_.Lyr[rf_.Layer()];
    shp_ = &l.Shp;
    nodes_ = &l.Net.NetNodes;
  }

  const NetLink& At(int64_t k) const { return k == goal_ ? B_ : nodes_->Links[size_t(k)]; }

  // The straight-line distance still to go; a stretch of line is never shorter, so A*
  // stays exact unless a factor field can shrink lengths.
  double H(int64_t k) const { return factors_.Used() ? 0 : Dist(At(k), B_); }

  void Relax(int64_t k, int64_t from, double g) {
    if (!(g < g_[size_t(k)])) return;
    g_[size_t(k)] = g;
    pred_[size_t(k)] = from;
    open_.push({g + H(k), g, k});
  }

  // Where on line v the route enters from u: the last link of v back onto u, as the
  // bounded search takes it; the From stop's vertex when there is none.
  int EntryVertex(int v, int u) const {
    int ev = A_.LinkVertex;
    for (int64_t m = nodes_->First[size_t(v)]; m < nodes_->First[size_t(v) + 1]; ++m)
      if (nodes_->Links[size_t(m)].LinkFeature == u) ev = nodes_->Links[size_t(m)].LinkVertex;
    return ev;
  }

  double Stretch(int line, int entryVertex, const NetLink& from, const NetLink& to,
                 std::vector<XY>* pts = nullptr) {
    const double len = WalkLine(shp_->ShpRecs[size_t(line)], entryVertex, {from.LinkX, from.LinkY},
                                to.LinkVertex, {to.LinkX, to.LinkY}, pts);
    return len * factors_.Of(s_, rf_.Layer(), line);
  }

  void SaveRoute() {
    NetBlock& net = s_.Lyr[rf_.Layer()].Net;
    net.NetRoutes.clear();
    net.NetRouteLen = 0;
    if (pred_[size_t(goal_)] == -2) return; // no route
    std::vector<int64_t> chain;             // the crossings in route order, then the goal
    for (int64_t k = goal_; k != -1; k = pred_[size_t(k)]) chain.insert(chain.begin(), k);
    int line = A_.LinkFeature, ev = A_.LinkVertex, prevOwner = 0;
    NetLink from = A_;
    for (int64_t k : chain) {
      NetRoute r;
      r.RouteFeature = line;
      if (Stretch(line, ev, from, At(k), &r.RoutePts) > 0) net.NetRoutes.push_back(std::move(r));
      if (k == goal_) break;
      prevOwner = owner_[size_t(k)];
      from = At(k);
      line = from.LinkFeature;
      ev = EntryVertex(line, prevOwner);
    }
    net.NetRouteLen = g_[size_t(goal_)];
  }
};

} // namespace

RouteStatus GetExactShortestPath(Session& s, int lyr) {
  return netsearch::RunRouteSearch(s, lyr,
                                   [&](RunningFunction& rf) { return ExactSearch(s, rf).Run(); });
}

} // namespace velmora
