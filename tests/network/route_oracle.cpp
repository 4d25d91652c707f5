#include "route_oracle.h"

#include <cmath>
#include <cstring>

#include "model/file_util.h"
#include "model/val.h"
#include "network/net_files.h"
#include "query/spatial.h"
#include "store/dbf_store.h"

namespace velmora::test {

namespace {

template <class T> T Get(const std::string& b, size_t at) {
  T v{};
  if (at + sizeof(T) <= b.size()) std::memcpy(&v, b.data() + at, sizeof(T));
  return v;
}

double Distance(double x1, double y1, double x2, double y2) {
  return std::sqrt((x2 - x1) * (x2 - x1) + (y2 - y1) * (y2 - y1));
}

struct Level {
  std::vector<NetLink> Links;
  std::vector<double> ToGoal, Cost;
  int Node = 0, EntryVertex = 0;
  std::vector<XY> PathPts;
  int PathUB = -1;
  double PathLen = 0;
  int LinkUB = -1, Cursor = 0;
};

struct Oracle {
  Session& s;
  int lyr;
  std::vector<OracleNode>& nodes;
  std::vector<Level> Levels;
  int Depth = 0;
  double Bound = 0;
  bool Found = false;
  int Steps = 0;
  double Factor = 0.001;
  OracleRoute out;

  void WalkLine(Level& L, int feature, int a, XY pa, int b, XY pb) {
    const ShpRecord& r = s.Lyr[lyr].Shp.ShpRecs[size_t(feature)];
    XY from = pa, to = pb;
    if (a > b) {
      std::swap(a, b);
      std::swap(from, to);
    }
    L.PathPts.clear();
    int last = b - 1;
    for (int p = 0; p < r.NumParts; ++p) {
      const ShpPart& part = r.Part(p);
      if (L.PathPts.empty()) L.PathPts.push_back(from);
      L.PathPts[0] = from;
      if (last > part.PartCount - 1) last = part.PartCount - 1;
      for (int v = std::max(a, 0); v <= last; ++v)
        L.PathPts.push_back(part.PartPoints()[size_t(v)]);
      L.PathPts.push_back(to);
    }
    if (L.PathPts.empty()) L.PathPts.push_back(from);
    L.PathUB = int(L.PathPts.size()) - 1;
    L.PathLen = 0;
    for (int i = 1; i <= L.PathUB; ++i)
      L.PathLen += Distance(L.PathPts[size_t(i - 1)].X, L.PathPts[size_t(i - 1)].Y,
                            L.PathPts[size_t(i)].X, L.PathPts[size_t(i)].Y);
  }

  void ComputeCost(int first, int last) {
    LyrRec& l = s.Lyr[lyr];
    for (int i = first; i <= last; ++i) {
      Level& P = Levels[size_t(i - 1)];
      Level& L = Levels[size_t(i)];
      const NetLink& from = P.Links[size_t(P.Cursor)];
      const NetLink& to = L.Links[size_t(L.Cursor)];
      WalkLine(L, L.Node, L.EntryVertex, {from.LinkX, from.LinkY}, to.LinkVertex,
               {to.LinkX, to.LinkY});
      if (l.NuseFactor == 1 && l.NfactorField >= 1 && l.NfactorField <= l.Dbf.DbfFieldCount) {
        ReadDbfRec(s, lyr, L.Node - 1);
        std::string v = Trim(GetFieldValue(s, lyr, l.NfactorField));
        if (!v.empty()) L.PathLen = L.PathLen * Val(v);
      }
      L.Cost[size_t(L.Cursor)] = P.Cost[size_t(P.Cursor)] + L.PathLen;
    }
  }

  void Remove(Level& L, int c) {
    for (int k = c; k < L.LinkUB; ++k) {
      L.Links[size_t(k)] = L.Links[size_t(k + 1)];
      L.ToGoal[size_t(k)] = L.ToGoal[size_t(k + 1)];
      L.Cost[size_t(k)] = L.Cost[size_t(k + 1)];
    }
    L.LinkUB--;
  }

  void InitLevels(const NetLink& root, const NetLink& target) {
    Found = false;
    Depth = 0;
    Levels.assign(1, Level{});
    Level& L = Levels[0];
    L.Links = {root};
    L.ToGoal = {0};
    L.Cost = {0};
    L.Cursor = 0, L.LinkUB = 0;
    L.Node = root.LinkFeature;
    L.EntryVertex = root.LinkVertex;
    Bound = Distance(root.LinkX, root.LinkY, target.LinkX, target.LinkY) * Factor;
  }

  void SaveRoute() {
    out.Routes.clear();
    for (int i = 1; i <= Depth; ++i) {
      Level& L = Levels[size_t(i)];
      if (L.PathLen > 0) {
        NetRoute r;
        r.RouteFeature = L.Node;
        r.RoutePts.assign(L.PathPts.begin(), L.PathPts.begin() + L.PathUB + 1);
        out.Routes.push_back(r);
      }
    }
    Level& T = Levels[size_t(Depth)];
    Bound = T.Cost[size_t(T.Cursor)];
    out.Len = Bound;
  }

  void SkipForward(Level& L) {
    while (L.Cursor <= L.LinkUB && L.ToGoal[size_t(L.Cursor)] + L.Cost[size_t(L.Cursor)] > Bound)
      L.Cursor++;
  }

  void Extend(const NetLink& target) {
    Depth++;
    Steps++;
    Levels.resize(size_t(Depth) + 1);
    Level& P = Levels[size_t(Depth - 1)];
    Level& L = Levels[size_t(Depth)];
    L.Node = P.Links[size_t(P.Cursor)].LinkFeature;
    OracleNode& N = nodes[size_t(L.Node)];
    L.LinkUB = N.LinkUB;
    L.Links.clear();
    if (L.LinkUB >= 0) L.Links = N.Links;
    L.ToGoal.assign(L.Links.size(), 0);
    L.Cost.assign(L.Links.size(), 0);
    // DropRouteLines
    L.EntryVertex = Levels[0].Links[0].LinkVertex;
    for (int c = 0; c <= L.LinkUB; ++c) {
      bool removed = true;
      while (removed) {
        removed = false;
        for (int j = 1; j <= Depth; ++j) {
          if (c > L.LinkUB) break;
          if (L.Links[size_t(c)].LinkFeature == Levels[size_t(j)].Node) {
            if (j == Depth - 1) L.EntryVertex = L.Links[size_t(c)].LinkVertex;
            Remove(L, c);
            removed = true;
          }
        }
      }
    }
    // MeasureLinks
    for (int c = 0; c <= L.LinkUB; ++c) {
      const NetLink& k = L.Links[size_t(c)];
      L.ToGoal[size_t(c)] = Distance(k.LinkX, k.LinkY, target.LinkX, target.LinkY);
      if (!nodes[size_t(k.LinkFeature)].Seen)
        nodes[size_t(k.LinkFeature)].Remaining = L.ToGoal[size_t(c)];
    }
    // CostLinks
    for (int c = 0; c <= L.LinkUB; ++c) {
      L.Cursor = c;
      ComputeCost(Depth, Depth);
    }
    // PruneByMemo
    L.Cursor = 0;
    for (int c = 0; c <= L.LinkUB; ++c) {
      bool again = true;
      while (again && c <= L.LinkUB) {
        again = false;
        for (const OracleNode::Memo& m : N.Memos) {
          if (c > L.LinkUB) break;
          if (m.Feature != L.Links[size_t(c)].LinkFeature) continue;
          const double cost = L.Cost[size_t(c)];
          bool drop = false;
          if (m.Factor != Factor && m.Cost < cost)
            drop = true;
          else if (m.Factor == Factor && m.Cost <= cost)
            drop = true;
          else if (nodes[size_t(L.Links[size_t(c)].LinkFeature)].Remaining + cost > Bound)
            drop = true;
          if (drop) {
            Remove(L, c);
            again = true;
          }
        }
      }
    }
    // SortLinks
    bool swapped = true;
    while (swapped) {
      swapped = false;
      for (int c = 0; c < L.LinkUB; ++c)
        if (L.ToGoal[size_t(c)] > L.ToGoal[size_t(c + 1)]) {
          std::swap(L.Links[size_t(c)], L.Links[size_t(c + 1)]);
          std::swap(L.ToGoal[size_t(c)], L.ToGoal[size_t(c + 1)]);
          std::swap(L.Cost[size_t(c)], L.Cost[size_t(c + 1)]);
          swapped = true;
        }
    }
    // DedupLinks
    for (int i = 0; i <= L.LinkUB; ++i)
      for (int j = i + 1; j <= L.LinkUB; ++j)
        if (L.Links[size_t(i)].LinkFeature == L.Links[size_t(j)].LinkFeature &&
            L.ToGoal[size_t(i)] == L.ToGoal[size_t(j)]) {
          Remove(L, j);
          j--;
        }
    L.Links.resize(size_t(L.LinkUB + 1));
    L.ToGoal.resize(size_t(L.LinkUB + 1));
    L.Cost.resize(size_t(L.LinkUB + 1));
    // Goal shortcut
    if (Depth != 1)
      for (int c = 0; c <= L.LinkUB; ++c)
        if (L.Links[size_t(c)].LinkFeature == target.LinkFeature) {
          L.Cursor = c;
          break;
        }
    // Arrival
    if (L.Node == target.LinkFeature) {
      L.Links.resize(L.Links.size() + 1);
      L.ToGoal.resize(L.ToGoal.size() + 1);
      L.Cost.resize(L.Cost.size() + 1);
      L.LinkUB++;
      for (int c = L.LinkUB; c >= 1; --c) {
        L.Links[size_t(c)] = L.Links[size_t(c - 1)];
        L.ToGoal[size_t(c)] = L.ToGoal[size_t(c - 1)];
        L.Cost[size_t(c)] = L.Cost[size_t(c - 1)];
      }
      L.Links[0] = target;
      L.Cursor = 0;
      ComputeCost(1, Depth);
      if (Found) {
        if (L.Cost[size_t(L.Cursor)] < Bound) SaveRoute();
      } else {
        Found = true;
        SaveRoute();
      }
    }
    SkipForward(Levels[size_t(Depth)]);
  }

  void RecordMemo(Level& L) {
    OracleNode& own = nodes[size_t(L.Node)];
    for (int c = 0; c <= L.LinkUB; ++c) {
      OracleNode& N = nodes[size_t(L.Links[size_t(c)].LinkFeature)];
      const double cost = L.Cost[size_t(c)];
      if (N.Seen) {
        if (Bound - cost < N.Remaining) N.Remaining = Bound - cost;
      } else {
        N.Seen = true;
        N.Remaining = Bound - cost;
      }
      bool found = false;
      for (OracleNode::Memo& m : own.Memos)
        if (m.Feature == L.Links[size_t(c)].LinkFeature) {
          m.Factor = Factor;
          if (m.Cost > cost) m.Cost = cost;
          found = true;
          break;
        }
      if (!found) own.Memos.push_back({L.Links[size_t(c)].LinkFeature, cost, Factor});
    }
  }

  void SearchPass(const NetLink& A, const NetLink& B) {
    if (A.LinkFeature == B.LinkFeature) {
      InitLevels(A, B);
      Found = true;
      Depth = 1;
      Levels.resize(2);
      Level& L = Levels[1];
      L.Node = A.LinkFeature;
      L.EntryVertex = A.LinkVertex;
      L.Links = {B};
      L.ToGoal = {0};
      L.Cost = {0};
      L.Cursor = 0, L.LinkUB = 0;
      ComputeCost(1, Depth);
      SaveRoute();
      Levels.clear();
      return;
    }
    InitLevels(B, A);
    Extend(A);
    if (Levels[size_t(Depth)].LinkUB < 0) return;
    InitLevels(A, B);
    Extend(B);
    if (Levels[size_t(Depth)].Cursor > Levels[size_t(Depth)].LinkUB) return;
    for (;;) {
      if (Depth == 0) return;
      Extend(B);
      while (Levels[size_t(Depth)].Cursor > Levels[size_t(Depth)].LinkUB && Depth != 0) {
        RecordMemo(Levels[size_t(Depth)]);
        Depth--;
        Levels.resize(size_t(Depth) + 1);
        Level& T = Levels[size_t(Depth)];
        T.Cursor++;
        SkipForward(T);
      }
      // The question at depth 999, answered "No": the pass ends.
      if (Depth % 1000 == 999) return;
    }
  }
};

} // namespace

std::vector<OracleNode> OracleLoad(const std::string& ntx, const std::string& net, int recCount) {
  std::vector<OracleNode> nodes(size_t(recCount) + 1);
  for (int i = 1; i <= recCount; ++i) {
    const size_t row = size_t(i - 1) * 8;
    const int off = Get<int32_t>(ntx, row), cnt = Get<int32_t>(ntx, row + 4);
    OracleNode& n = nodes[size_t(i)];
    n.LinkUB = cnt - 1;
    for (int k = 0; k < cnt; ++k) {
      const size_t at = size_t(off) + size_t(k) * 24;
      n.Links.push_back({Get<int32_t>(net, at), Get<double>(net, at + 4), Get<double>(net, at + 12),
                         Get<int32_t>(net, at + 20)});
    }
  }
  return nodes;
}

OracleRoute OracleSearch(Session& s, int lyr, std::vector<OracleNode>& nodes, NetLink a,
                         NetLink b) {
  Oracle o{s, lyr, nodes, {}, 0, 0, false, 0, 0.001, {}};
  for (OracleNode& n : nodes) n.Memos.clear();
  o.Steps = 0;
  o.Factor = 0.001;
  while (!o.Found && o.Factor <= 999999999.0) {
    o.SearchPass(a, b);
    o.Factor *= 1.01;
  }
  o.out.Found = o.Found;
  return o.out;
}

void OracleBuild(Session& s, int lyr, double tol, std::string& net, std::string& ntx) {
  net.clear();
  ntx.clear();
  const std::vector<ShpRecord>& recs = s.Lyr[lyr].Shp.ShpRecs;
  const int count = s.Lyr[lyr].Shp.RecCount;
  int R = 0, C = 0;
  for (int i = 1; i <= count; ++i) {
    const ShpRecord& a = recs[size_t(i)];
    const size_t row = ntx.size();
    AppendNtxRow(ntx, R * 24, 0);
    for (int j = 1; j <= count; ++j) {
      const ShpRecord& b = recs[size_t(j)];
      if (!(a.Xmax + tol >= b.Xmin && a.Ymin - tol <= b.Ymax && a.Xmin - tol <= b.Xmax &&
            a.Ymax + tol >= b.Ymin))
        continue;
      if (b.ShapeType == 0 || j == i) continue;
      for (int p = 0; p < b.NumParts; ++p) {
        const ShpPart& part = b.Part(p);
        for (int k = 1; k < part.PartCount; ++k) {
          CrossResult x;
          if (FeatureCrossSeg(s, lyr, i, part.PartPoints()[size_t(k - 1)],
                              part.PartPoints()[size_t(k)], &x, tol, 0, 0)) {
            AppendNetLink(net, {j, x.CrossX, x.CrossY, x.HitVertex + 1});
            R++, C++;
          }
        }
      }
    }
    std::memcpy(ntx.data() + row + 4, &C, 4);
    C = 0;
  }
}

} // namespace velmora::test
