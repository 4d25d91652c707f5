#include "surface/tin_delaunay.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <queue>
#include <unordered_map>

#include "edit/move_ops.h"
#include "surface/point_tree.h"
#include "surface/tin_geometry.h"

namespace velmora {

namespace {

struct Delaunay {
  SurfaceState& st;
  const std::vector<TinPoint>& P;
  int n;
  const TinTick& tick;
  std::vector<double> D; // distance of each point from the corner
  bool sorted = true;    // D ascending: the band cuts a range of point numbers
  double refX, refY;
  double errSq = 0;   // bound of the rounding of a squared distance to a circle centre
  double sideTol = 0; // bound of the rounding of TinSide, as a distance from the line
  PointTree tree;
  std::unordered_map<uint64_t, uint8_t> edges;
  long long work = 0;
  bool stop = false;

  Delaunay(SurfaceState& s, const TinTick& t)
      : st(s), P(s.TinPoints), n(s.TinPointCount), tick(t), refX(s.TinMinX), refY(s.TinMinY) {}

  static uint64_t EdgeKey(int a, int b) {
    if (a > b) std::swap(a, b);
    return (uint64_t(uint32_t(a)) << 32) | uint32_t(b);
  }
  bool EdgeOpen(int a, int b) const {
    auto it = edges.find(EdgeKey(a, b));
    return it == edges.end() || it->second < 2;
  }
  void AddTri(int a, int b, int c) {
    st.TinTris.push_back(TinTri{a, b, c});
    st.TinTriCount += 1;
    for (uint64_t k : {EdgeKey(a, b), EdgeKey(b, c), EdgeKey(c, a)}) {
      uint8_t& v = edges[k];
      if (v < 255) ++v;
    }
  }

  bool Inside(int p, const TinCircle& c) const {
    return TinDist2(P[size_t(p)].X, P[size_t(p)].Y, c.X, c.Y) < c.R2;
  }

  // The scan itself: upwards from start, then downwards, leaving a direction at the first
  // point outside the circle and outside the band.
  bool EmptyCircleScan(int start, int a, int b, int c, const TinCircle& cc) const {
    const double dc = TinDist(refX, refY, cc.X, cc.Y), band = 1.1 * cc.R;
    for (int dir : {1, -1}) {
      for (int p = start; p >= 1 && p <= n; p += dir) {
        if (p == a || p == b || p == c) continue;
        if (Inside(p, cc)) {
          if (!TinIsRectangle(P[size_t(a)], P[size_t(b)], P[size_t(c)], P[size_t(p)])) return false;
        } else if (std::fabs(D[size_t(p)] - dc) > band) {
          break;
        }
      }
    }
    return true;
  }

  // The same answer: the scan covers the point numbers between the first point leaving
  // downwards and the first leaving upwards; the points inside the circle in that range
  // come from the tree.
  bool EmptyCircle(int start, int a, int b, int c, const TinCircle& cc) {
    if (!sorted) return EmptyCircleScan(start, a, b, c, cc);
    const double dc = TinDist(refX, refY, cc.X, cc.Y), band = 1.1 * cc.R;
    // Below the band: [1, lo); above: [hi, n].
    int lo = int(std::partition_point(D.begin() + 1, D.begin() + n + 1,
                                      [&](double d) { return -(d - dc) > band; }) -
                 D.begin());
    int hi = int(std::partition_point(D.begin() + 1, D.begin() + n + 1,
                                      [&](double d) { return !(d - dc > band); }) -
                 D.begin());
    const TinPoint &pa = P[size_t(a)], &pb = P[size_t(b)], &pc = P[size_t(c)];
    // Visits p; true when the scan leaves here. `empty` turns false on a point inside.
    bool empty = true;
    auto visit = [&](int p) {
      if (p == a || p == b || p == c) return false;
      if (Inside(p, cc)) {
        if (!TinIsRectangle(pa, pb, pc, P[size_t(p)])) empty = false;
        return !empty;
      }
      return true; // outside the circle, and the caller only visits points outside the band
    };
    int up = n + 1, down = 0;
    for (int p = start; p < lo && p <= n; ++p)
      if (visit(p)) {
        up = p;
        break;
      }
    if (!empty) return false;
    if (up == n + 1)
      for (int p = std::max(start, hi); p <= n; ++p)
        if (visit(p)) {
          up = p;
          break;
        }
    if (!empty) return false;
    if (start >= hi)
      for (int p = start; p >= hi; --p)
        if (visit(p)) {
          down = p;
          break;
        }
    if (!empty) return false;
    if (down == 0)
      for (int p = std::min(start, lo - 1); p >= 1; --p)
        if (visit(p)) {
          down = p;
          break;
        }
    if (!empty) return false;
    if (up - down <= 48) {
      for (int p = down + 1; p < up; ++p)
        if (p != a && p != b && p != c && Inside(p, cc) &&
            !TinIsRectangle(pa, pb, pc, P[size_t(p)]))
          return false;
      return true;
    }
    return !AnyInside(cc, down, up, a, b, c);
  }

  bool AnyInside(const TinCircle& cc, int down, int up, int a, int b, int c) const {
    const TinPoint &pa = P[size_t(a)], &pb = P[size_t(b)], &pc = P[size_t(c)];
    const double lim = cc.R2 * (1 + 1e-9) + 1e-9;
    if (cc.R2 <= 0) return false;
    int stack[128];
    int top = 0;
    stack[top++] = 0;
    while (top) {
      const PointTreeNode& nd = tree.Nodes[size_t(stack[--top])];
      if (nd.MaxIdx <= down || nd.MinIdx >= up) continue;
      double dx = std::max({nd.X0 - cc.X, 0.0, cc.X - nd.X1});
      double dy = std::max({nd.Y0 - cc.Y, 0.0, cc.Y - nd.Y1});
      if (dx * dx + dy * dy > lim) continue;
      if (nd.Left < 0) {
        for (int i = nd.Lo; i < nd.Hi; ++i) {
          int p = tree.Perm[size_t(i)];
          if (p <= down || p >= up || p == a || p == b || p == c) continue;
          if (Inside(p, cc) && !TinIsRectangle(pa, pb, pc, P[size_t(p)])) return true;
        }
      } else {
        stack[top++] = nd.Left;
        stack[top++] = nd.Right;
      }
    }
    return false;
  }

  // Tests 1 to 4 of a candidate apex d of the edge a-b against c.
  bool ApexTest(int a, int b, int c, int d, int s) {
    const TinPoint &pa = P[size_t(a)], &pb = P[size_t(b)], &pc = P[size_t(c)], &pd = P[size_t(d)];
    if (TinSide(pd, pa, pb) + TinSide(pc, pa, pb) != 0) return false;
    TinCircle cc;
    if (!TinCircumcircle(pa, pb, pd, cc)) return false;
    double dcc = TinDist2(pc.X, pc.Y, cc.X, cc.Y);
    if (dcc < cc.R2 && !TinIsRectangle(pa, pb, pc, pd)) return false;
    return EmptyCircle(s, a, b, d, cc);
  }

  // The order of the scan: s up to n, then s - 1 down to 1.
  long long ScanPos(int d, int s) const {
    return d >= s ? d - s : (long long)(n - s + 1) + (s - d);
  }

  void AddApexScan(int a, int b, int c, int s) {
    for (int dir : {1, -1})
      for (int d = s; d >= 1 && d <= n; d += dir) {
        if (d == a || d == b || d == c) continue;
        if (ApexTest(a, b, c, d, s)) {
          AddTri(a, b, d);
          return;
        }
        if ((++work & 4095) == 0 && tick && tick(0)) {
          stop = true;
          return;
        }
      }
  }

  void AddApex(int a, int b, int c) {
    if (!EdgeOpen(a, b)) return;
    const int s = std::min(a, b);
    const TinPoint &pa = P[size_t(a)], &pb = P[size_t(b)], &pc = P[size_t(c)];
    const int sc = TinSide(pc, pa, pb);
    const double ex = pb.X - pa.X, ey = pb.Y - pa.Y, len = std::hypot(ex, ey);
    if (!sorted || sc == 0 || !(len > 0)) return AddApexScan(a, b, c, s);
    // The frame of the edge: x along it from its middle, y towards the far side.
    const double mx = (pa.X + pb.X) / 2, my = (pa.Y + pb.Y) / 2, h = len / 2;
    const double ux = ex / len, uy = ey / len;
    const double nx = sc > 0 ? -uy : uy, ny = sc > 0 ? ux : -ux;
    auto localY = [&](double x, double y) { return (x - mx) * nx + (y - my) * ny; };
    if (localY(pc.X, pc.Y) >= 0) return AddApexScan(a, b, c, s);

    // The point of the far side seen under the widest angle: its circle through a and b
    // reaches least into the far side (smallest centre offset t).
    int best = 0;
    double bestT = 0, bestY = 0, reach = INFINITY;
    using Item = std::pair<double, int>;
    std::priority_queue<Item, std::vector<Item>, std::greater<Item>> q;
    q.push({0.0, 0});
    while (!q.empty()) {
      auto [key, id] = q.top();
      q.pop();
      if (key > reach) break;
      const PointTreeNode& nd = tree.Nodes[size_t(id)];
      double ymax = std::max(
          {localY(nd.X0, nd.Y0), localY(nd.X0, nd.Y1), localY(nd.X1, nd.Y0), localY(nd.X1, nd.Y1)});
      if (ymax < -sideTol) continue;
      if (nd.Left < 0) {
        for (int i = nd.Lo; i < nd.Hi; ++i) {
          int p = tree.Perm[size_t(i)];
          if (p == a || p == b || p == c) continue;
          const TinPoint& pp = P[size_t(p)];
          double y = localY(pp.X, pp.Y);
          if (!(y > 0)) continue;
          double x = (pp.X - mx) * ux + (pp.Y - my) * uy;
          double t = (x * x + y * y - h * h) / (2 * y);
          if (!best || t < bestT) {
            best = p, bestT = t, bestY = y;
            reach = std::fabs(t) + std::sqrt(h * h + t * t);
          }
        }
      } else {
        for (int ch : {nd.Left, nd.Right}) {
          const PointTreeNode& cn = tree.Nodes[size_t(ch)];
          double dx = std::max({cn.X0 - mx, 0.0, mx - cn.X1});
          double dy = std::max({cn.Y0 - my, 0.0, my - cn.Y1});
          q.push({std::sqrt(dx * dx + dy * dy), ch});
        }
      }
    }

    // Every apex the scan could take: the far-side points near that circle, and, on a
    // short edge, the points near it whose circles are too small for the band argument.
    std::vector<int> cand;
    auto collect = [&](double cx, double cy, double rad) {
      const double lim = rad * rad;
      int stack[128];
      int top = 0;
      stack[top++] = 0;
      while (top) {
        const PointTreeNode& nd = tree.Nodes[size_t(stack[--top])];
        double dx = std::max({nd.X0 - cx, 0.0, cx - nd.X1});
        double dy = std::max({nd.Y0 - cy, 0.0, cy - nd.Y1});
        if (dx * dx + dy * dy > lim) continue;
        if (nd.Left >= 0) {
          stack[top++] = nd.Left;
          stack[top++] = nd.Right;
          continue;
        }
        for (int i = nd.Lo; i < nd.Hi; ++i) {
          int p = tree.Perm[size_t(i)];
          if (p == a || p == b || p == c) continue;
          const TinPoint& pp = P[size_t(p)];
          if (TinDist2(pp.X, pp.Y, cx, cy) <= lim && TinSide(pp, pa, pb) == -sc) cand.push_back(p);
        }
      }
    };
    if (best) {
      const double r = std::sqrt(h * h + bestT * bestT);
      const double margin = 2 * (0.01 + errSq) / bestY + 1e-7 * r + sideTol;
      collect(mx + bestT * nx, my + bestT * ny, r + margin);
    }
    if (h < 0.3) collect(mx, my, h + 0.7);
    std::sort(cand.begin(), cand.end(),
              [&](int x, int y) { return ScanPos(x, s) < ScanPos(y, s); });
    cand.erase(std::unique(cand.begin(), cand.end()), cand.end());
    for (int d : cand)
      if (ApexTest(a, b, c, d, s)) {
        AddTri(a, b, d);
        return;
      }
  }

  // The first triple i < j < k, in that order, with a circle that is empty. Most triples
  // of points on a line fail the angle test of Circumcircle; its flat angles are kept per
  // point pair here, so that a failing triple costs no arc tangent.
  bool Seed() {
    std::vector<double> fi(size_t(n) + 1), fj(size_t(n) + 1);
    auto flat = [&](int from, int to) {
      return FlatAngle(P[size_t(to)].X - P[size_t(from)].X, P[size_t(to)].Y - P[size_t(from)].Y);
    };
    for (int i = 1; i <= n - 2; ++i) {
      const TinPoint& pi = P[size_t(i)];
      for (int p = i + 1; p <= n; ++p) fi[size_t(p)] = flat(i, p);
      for (int j = i + 1; j <= n - 1; ++j) {
        const TinPoint& pj = P[size_t(j)];
        const double dxj = pj.X - pi.X, dyj = pj.Y - pi.Y;
        const double fji = TinFullAngle(dxj, dyj, fi[size_t(j)]);   // j seen from i
        const double fij = TinFullAngle(-dxj, -dyj, fi[size_t(j)]); // i seen from j
        for (int p = j + 1; p <= n; ++p) fj[size_t(p)] = flat(j, p);
        for (int k = j + 1; k <= n; ++k) {
          const TinPoint& pk = P[size_t(k)];
          const double dxi = pk.X - pi.X, dyi = pk.Y - pi.Y, dxk = pk.X - pj.X, dyk = pk.Y - pj.Y;
          const bool flatTri = TinZeroAngle(fji, TinFullAngle(dxi, dyi, fi[size_t(k)])) ||
                               TinZeroAngle(TinFullAngle(dxk, dyk, fj[size_t(k)]), fij) ||
                               TinZeroAngle(TinFullAngle(-dxi, -dyi, fi[size_t(k)]),
                                            TinFullAngle(-dxk, -dyk, fj[size_t(k)]));
          TinCircle cc;
          if (!flatTri && TinCircumcircle(pi, pj, pk, cc) && EmptyCircle(1, i, j, k, cc)) {
            AddTri(i, j, k);
            return true;
          }
          if ((++work & 65535) == 0 && tick && tick(0)) {
            stop = true;
            return false;
          }
        }
      }
    }
    return false;
  }

  void Run() {
    D.assign(size_t(n) + 1, 0.0);
    double pmax = 0;
    for (int i = 1; i <= n; ++i) {
      D[size_t(i)] = TinDist(refX, refY, P[size_t(i)].X, P[size_t(i)].Y);
      if (i > 1 && D[size_t(i)] < D[size_t(i - 1)]) sorted = false;
      pmax = std::max({pmax, std::fabs(P[size_t(i)].X), std::fabs(P[size_t(i)].Y)});
    }
    errSq = 1e-12 * pmax * pmax;
    sideTol = 1e-12 * pmax + 1e-12;
    tree = BuildPointTree(P, n);
    st.TinTris.assign(1, TinTri{});
    st.TinTriCount = 0;
    edges.reserve(size_t(n) * 4);
    if (n < 3 || !Seed()) return;
    for (int t = 1; t <= st.TinTriCount && !stop; ++t) {
      const TinTri tri = st.TinTris[size_t(t)];
      AddApex(tri.A, tri.B, tri.C);
      if (!stop) AddApex(tri.B, tri.C, tri.A);
      if (!stop) AddApex(tri.C, tri.A, tri.B);
      if (tick && tick(1)) stop = true;
    }
  }
};

} // namespace

bool MakeDelaunay(SurfaceState& st, const TinTick& tick) {
  bool stopped = false;
  try {
    Delaunay d(st, tick);
    d.Run();
    stopped = d.stop;
  } catch (const std::bad_alloc&) {
    stopped = true;
  }
  if (stopped || st.Err) {
    st.TinPoints = {};
    st.TinPointCount = 0;
    st.TinTris = {};
    st.TinTriCount = 0;
    st.Err = true;
    return false;
  }
  st.TinTris.shrink_to_fit();
  return true;
}

} // namespace velmora
