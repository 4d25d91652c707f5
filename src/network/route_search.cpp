#include "network/route_search.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <string>
#include <unordered_map>

#include "frame/log.h"
#include "network/route_common.h"
#include "network/walk_line.h"

namespace velmora {

using netsearch::Dist;

namespace {

// A candidate way out of a line: the link with its straight-line distance to the goal and
// the cost of the route so far through it.
struct Cand {
  NetLink Link;
  double ToGoal = 0, Cost = 0;
  int64_t Slot = -1; // the memo slot of (this line, the line reached); -1 for a stop
};

// One line on the current route. Levels are kept and reused across pushes, so their
// arrays keep their capacity.
struct RouteLevel {
  std::vector<Cand> C;
  int32_t Node = 0, EntryVertex = 0;
  int32_t LinkUB = -1, Cursor = 0;
};

struct MemoEntry {
  double Cost = 0, Factor = 0;
  bool Used = false;
};

constexpr double kFactorStart = 0.001, kFactorStep = 1.01, kFactorEnd = 999999999.0;

class BoundedSearch {
public:
  BoundedSearch(Session& s, RunningFunction& rf)
      : s_(s), rf_(rf), factors_(s, rf.Layer()), A_(s.Net.NetStops[1]), B_(s.Net.NetStops[2]) {
    Refresh();
    const size_t n = size_t(nodes_->NetNodeUB) + 1;
    onRoute_.assign(n, 0);
    MemoSlots();
    firstLevel_.assign(n, 0);
    last_ = std::chrono::steady_clock::now();
  }

  bool Run() {
    for (int64_t k : memoUsed_) memo_[size_t(k)] = MemoEntry{};
    memoUsed_.clear();
    Steps = 0;
    Factor = kFactorStart;
    Found = false;
    long long pass = 0;
    while (!Found && Factor <= kFactorEnd) {
      SearchPass();
      if (stop_) return false;
      Factor *= kFactorStep;
      if (YieldNow(++pass)) return false;
    }
    return true;
  }

  double Bound = 0;
  bool Found = false;
  long long Steps = 0;
  double Factor = kFactorStart;

private:
  Session& s_;
  RunningFunction& rf_;
  netsearch::LineFactors factors_;
  const NetLink A_, B_;
  std::vector<RouteLevel> levels_;
  int depth_ = 0;
  // The memo: one entry for each line and line reached from it, kept at the first link
  // of the line's list that reaches that line. Only links of a line's own list are ever
  // looked up; the To stop that an arrival adds (the line itself) is written there and
  // never read, so it needs no entry.
  std::vector<MemoEntry> memo_;
  std::vector<int64_t> slot_, memoUsed_;
  std::vector<uint8_t> onRoute_;    // per line: levels holding it (a line is there twice at most)
  std::vector<int32_t> firstLevel_; // and the lowest of them
  const ShpBlock* shp_ = nullptr;
  NetNodeTable* nodes_ = nullptr;
  bool stop_ = false;
  bool endless_ = false; // the pass repeats one level without end
  long long backSteps_ = 0;
  std::chrono::steady_clock::time_point last_;

  // The layer's row can move while the search yields.
  void Refresh() {
    LyrRec& l = s_.Lyr[rf_.Layer()];
    shp_ = &l.Shp;
    nodes_ = &l.Net.NetNodes;
  }

  bool YieldNow(long long pass) {
    last_ = std::chrono::steady_clock::now();
    if (rf_.Step(pass, 2778)) {
      stop_ = true;
      return true;
    }
    Refresh();
    return false;
  }

  // Back-steps yield once the event loop has waited long enough; the route found does not
  // depend on how often the loop runs, only on when a terminate is seen.
  bool BackStepYield() {
    if ((++backSteps_ & 255) != 0) return false;
    if (std::chrono::steady_clock::now() - last_ < std::chrono::milliseconds(30)) return false;
    return YieldNow(0);
  }

  void MemoSlots() {
    const NetNodeTable& t = *nodes_;
    slot_.resize(t.Links.size());
    memo_.assign(t.Links.size(), MemoEntry{});
    std::unordered_map<int, int64_t> first;
    for (int n = 1; n <= t.NetNodeUB; ++n) {
      const int64_t b = t.First[size_t(n)], e = t.First[size_t(n) + 1];
      if (e - b > 16) first.clear();
      for (int64_t k = b; k < e; ++k) {
        const int f = t.Links[size_t(k)].LinkFeature;
        slot_[size_t(k)] = k;
        if (e - b > 16) {
          slot_[size_t(k)] = first.try_emplace(f, k).first->second;
          continue;
        }
        for (int64_t q = b; q < k; ++q)
          if (t.Links[size_t(q)].LinkFeature == f) {
            slot_[size_t(k)] = q;
            break;
          }
      }
    }
  }

  RouteLevel& Level(int d) { return levels_[size_t(d)]; }

  void PushNode(int node) {
    if (onRoute_[size_t(node)]++ == 0) firstLevel_[size_t(node)] = depth_;
  }
  void PopLevel() {
    const int node = Level(depth_).Node;
    if (--onRoute_[size_t(node)] == 0) firstLevel_[size_t(node)] = 0;
    --depth_;
  }
  void EraseLevels() {
    while (depth_ > 0) PopLevel();
  }

  void InitLevels(const NetLink& root, const NetLink& target) {
    Found = false;
    EraseLevels();
    if (levels_.empty()) levels_.resize(1);
    RouteLevel& L0 = Level(0);
    L0.C.assign(1, Cand{root, 0, 0});
    L0.Cursor = 0, L0.LinkUB = 0;
    L0.Node = root.LinkFeature;
    L0.EntryVertex = root.LinkVertex;
    Bound = Dist(root, target) * Factor;
  }

  // The length of level d's line from where the route enters it to candidate c, after
  // the factor of the line.
  double PathLen(int d, int c, std::vector<XY>* pts) {
    const RouteLevel& P = Level(d - 1);
    const RouteLevel& L = Level(d);
    const NetLink& from = P.C[size_t(P.Cursor)].Link;
    const NetLink& to = L.C[size_t(c)].Link;
    const double len = WalkLine(shp_->ShpRecs[size_t(L.Node)], L.EntryVertex,
                                {from.LinkX, from.LinkY}, to.LinkVertex, {to.LinkX, to.LinkY}, pts);
    return len * factors_.Of(s_, rf_.Layer(), L.Node);
  }

  double CostAt(int d, int c) {
    const RouteLevel& P = Level(d - 1);
    return P.C[size_t(P.Cursor)].Cost + PathLen(d, c, nullptr);
  }

  void SkipForward(RouteLevel& L) {
    while (L.Cursor <= L.LinkUB &&
           L.C[size_t(L.Cursor)].ToGoal + L.C[size_t(L.Cursor)].Cost > Bound)
      ++L.Cursor;
  }

  void SaveRoute() {
    std::vector<NetRoute> routes;
    for (int d = 1; d <= depth_; ++d) {
      NetRoute r;
      r.RouteFeature = Level(d).Node;
      if (PathLen(d, Level(d).Cursor, &r.RoutePts) > 0) routes.push_back(std::move(r));
    }
    const RouteLevel& top = Level(depth_);
    Bound = top.C[size_t(top.Cursor)].Cost;
    NetBlock& net = s_.Lyr[rf_.Layer()].Net;
    net.NetRoutes = std::move(routes);
    net.NetRouteLen = Bound;
  }

  void Extend(const NetLink& target) {
    ++depth_;
    ++Steps;
    if (levels_.size() <= size_t(depth_)) levels_.resize(size_t(depth_) + 1);
    RouteLevel& P = Level(depth_ - 1);
    RouteLevel& L = Level(depth_);
    L.Node = P.C[size_t(P.Cursor)].Link.LinkFeature;
    PushNode(L.Node);
    // DropRouteLines: no way back onto a line of the route; the last link back onto the
    // previous line says where this line is entered.
    L.EntryVertex = Level(0).C[0].Link.LinkVertex;
    L.C.clear();
    const NetLink* src = nodes_->LinksOf(L.Node);
    const int n = nodes_->LinkUB(L.Node) + 1;
    for (int k = 0; k < n; ++k) {
      const int f = src[k].LinkFeature;
      if (onRoute_[size_t(f)]) {
        if (firstLevel_[size_t(f)] == depth_ - 1) L.EntryVertex = src[k].LinkVertex;
        continue;
      }
      L.C.push_back(Cand{src[k], 0, 0, slot_[size_t(nodes_->First[size_t(L.Node)] + k)]});
    }
    // MeasureLinks.
    for (Cand& c : L.C) {
      c.ToGoal = Dist(c.Link, target);
      const size_t f = size_t(c.Link.LinkFeature);
      if (!nodes_->Seen[f]) nodes_->Remaining[f] = c.ToGoal;
    }
    // CostLinks.
    L.LinkUB = int32_t(L.C.size()) - 1;
    for (int c = 0; c <= L.LinkUB; ++c) {
      Cand& k = L.C[size_t(c)];
      k.Cost = CostAt(depth_, c);
      if (k.ToGoal < 0 || k.Cost < 0) LogMsg(s_, "Bad calc");
    }
    // PruneByMemo: each line holds at most one memo entry a target.
    L.Cursor = 0;
    if (!memoUsed_.empty()) {
      size_t w = 0;
      for (size_t r = 0; r < L.C.size(); ++r) {
        const Cand& k = L.C[r];
        bool drop = false;
        const MemoEntry& m = memo_[size_t(k.Slot)];
        if (m.Used) {
          if (m.Factor != Factor && m.Cost < k.Cost)
            drop = true;
          else if (m.Factor == Factor && m.Cost <= k.Cost)
            drop = true;
          else if (nodes_->Remaining[size_t(k.Link.LinkFeature)] + k.Cost > Bound)
            drop = true;
        }
        if (!drop) L.C[w++] = k;
      }
      L.C.resize(w);
    }
    // SortLinks: a stable sort by ToGoal, as the bubble sort that never swaps equals.
    if (L.C.size() <= 32) {
      for (size_t i = 1; i < L.C.size(); ++i) {
        Cand k = L.C[i];
        size_t j = i;
        for (; j > 0 && L.C[j - 1].ToGoal > k.ToGoal; --j) L.C[j] = L.C[j - 1];
        L.C[j] = k;
      }
    } else {
      std::stable_sort(L.C.begin(), L.C.end(),
                       [](const Cand& a, const Cand& b) { return a.ToGoal < b.ToGoal; });
    }
    // DedupLinks: of one line at one distance only the first stays. Equal distances stand
    // together after the sort.
    {
      size_t w = 0;
      for (size_t r = 0; r < L.C.size(); ++r) {
        bool dup = false;
        for (size_t q = w; q-- > 0 && L.C[q].ToGoal == L.C[r].ToGoal;)
          if (L.C[q].Link.LinkFeature == L.C[r].Link.LinkFeature) {
            dup = true;
            break;
          }
        if (!dup) L.C[w++] = L.C[r];
      }
      L.C.resize(w);
    }
    L.LinkUB = int32_t(L.C.size()) - 1;
    // The goal shortcut.
    if (depth_ != 1)
      for (int c = 0; c <= L.LinkUB; ++c)
        if (L.C[size_t(c)].Link.LinkFeature == target.LinkFeature) {
          L.Cursor = c;
          break;
        }
    // Arrival: the target stop goes in front; the costs of the levels below are as they
    // were computed when each was pushed, so only this one is new.
    if (L.Node == target.LinkFeature) {
      const Cand front = L.C.empty() ? Cand{} : L.C[0];
      L.C.insert(L.C.begin(), Cand{target, front.ToGoal, front.Cost});
      ++L.LinkUB;
      L.Cursor = 0;
      L.C[0].Cost = CostAt(depth_, 0);
      if (Found) {
        if (L.C[0].Cost < Bound) SaveRoute();
      } else {
        Found = true;
        SaveRoute();
      }
    }
    SkipForward(L);
    // Following the To stop of a line just arrived at pushes that line again; when its
    // stretch from the stop to itself has length 0 the new level is the old one over
    // again, without end. The walk would only stop at the question of depth 999, where
    // "No" ends the pass with the route found; so it ends here, with the same route and
    // the same memo.
    if (depth_ >= 2 && L.Node == P.Node && L.Cursor == 0) {
      const Cand& was = P.C[size_t(P.Cursor)];
      if (L.C[0].Cost == was.Cost && L.C[0].ToGoal == was.ToGoal) endless_ = true;
    }
  }

  void RecordMemo(const RouteLevel& L) {
    for (int c = 0; c <= L.LinkUB; ++c) {
      const Cand& k = L.C[size_t(c)];
      const size_t n = size_t(k.Link.LinkFeature);
      const double left = Bound - k.Cost;
      if (nodes_->Seen[n]) {
        if (left < nodes_->Remaining[n]) nodes_->Remaining[n] = left;
      } else {
        nodes_->Seen[n] = 1;
        nodes_->Remaining[n] = left;
      }
      if (k.Slot < 0) continue;
      MemoEntry& m = memo_[size_t(k.Slot)];
      if (m.Used) {
        m.Factor = Factor;
        if (m.Cost > k.Cost) m.Cost = k.Cost;
      } else {
        m = MemoEntry{k.Cost, Factor, true};
        memoUsed_.push_back(k.Slot);
      }
    }
  }

  void SearchPass() {
    const NetLink& A = A_;
    const NetLink& B = B_;
    if (A.LinkFeature == B.LinkFeature) {
      InitLevels(A, B);
      Found = true;
      // The goal alone on the line of both stops.
      ++depth_;
      if (levels_.size() <= size_t(depth_)) levels_.resize(size_t(depth_) + 1);
      RouteLevel& L = Level(1);
      L.Node = A.LinkFeature;
      PushNode(L.Node);
      L.EntryVertex = A.LinkVertex;
      L.C.assign(1, Cand{B, 0, 0});
      L.Cursor = 0, L.LinkUB = 0;
      L.C[0].Cost = CostAt(1, 0);
      SaveRoute();
      EraseLevels();
      return;
    }
    // A trial from the far end: a To line with no usable link ends the pass.
    InitLevels(B, A);
    Extend(A);
    if (Level(depth_).LinkUB < 0) return EraseLevels();
    InitLevels(A, B);
    Extend(B);
    if (Level(depth_).Cursor > Level(depth_).LinkUB) return EraseLevels();
    for (;;) {
      if (depth_ == 0) return EraseLevels();
      Extend(B);
      if (endless_) {
        endless_ = false;
        return EraseLevels();
      }
      while (Level(depth_).Cursor > Level(depth_).LinkUB && depth_ != 0) {
        RecordMemo(Level(depth_));
        PopLevel();
        RouteLevel& T = Level(depth_);
        ++T.Cursor;
        SkipForward(T);
        if (BackStepYield()) return EraseLevels();
      }
      if (depth_ % 1000 == 999) {
        const std::string& name = s_.Lyr[rf_.Layer()].LyrName;
        if (s_.host->MsgBox("     The Shortest Path route Exceeded " + std::to_string(depth_) +
                                " routes  ! \r\nWould you like to Continue Searching the "
                                "Shortest Path  ?  ",
                            name + " : NetWork Message Box ", MsgButtons::YesNo,
                            MsgAnswer::Yes) == MsgAnswer::No)
          return EraseLevels();
      }
    }
  }
};

} // namespace

RouteStatus GetShortestPath(Session& s, int lyr) {
  return netsearch::RunRouteSearch(s, lyr,
                                   [&](RunningFunction& rf) { return BoundedSearch(s, rf).Run(); });
}

} // namespace velmora
