#include "surface/tin_matrix.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace velmora {

namespace {

bool Near(double a, double b) {
  return std::fabs(a - b) < 0.005;
}

// Points sorted by X, then by number: the candidates j of a point i share its X within
// 0.005, a run of this order; within one X they stand by number.
struct ByX {
  std::vector<int32_t> Order;    // point numbers
  std::vector<int32_t> Pos;      // position of each point in Order
  std::vector<int32_t> GroupEnd; // per position: one past the last position of its X
  std::vector<int32_t> GroupBeg; // per position: the first position of its X
};

} // namespace

bool MakeMatrix(SurfaceState& st, const TinTick& tick) {
  const int n = st.TinPointCount;
  const std::vector<TinPoint>& P = st.TinPoints;
  try {
    st.TinTris.assign(1, TinTri{});
    st.TinTriCount = 0;
    if (n < 4) return true;
    ByX bx;
    bx.Order.resize(size_t(n));
    for (int i = 0; i < n; ++i) bx.Order[size_t(i)] = i + 1;
    std::sort(bx.Order.begin(), bx.Order.end(), [&](int a, int b) {
      return P[size_t(a)].X != P[size_t(b)].X ? P[size_t(a)].X < P[size_t(b)].X : a < b;
    });
    bx.Pos.resize(size_t(n) + 1);
    for (int k = 0; k < n; ++k) bx.Pos[size_t(bx.Order[size_t(k)])] = k;
    auto xAt = [&](int k) { return P[size_t(bx.Order[size_t(k)])].X; };
    bx.GroupBeg.resize(size_t(n));
    bx.GroupEnd.resize(size_t(n));
    for (int k = 0; k < n; ++k)
      bx.GroupBeg[size_t(k)] = k > 0 && xAt(k - 1) == xAt(k) ? bx.GroupBeg[size_t(k - 1)] : k;
    for (int k = n - 1; k >= 0; --k)
      bx.GroupEnd[size_t(k)] =
          k + 1 < n && xAt(k + 1) == xAt(k) ? bx.GroupEnd[size_t(k + 1)] : k + 1;
    for (int i = 1; i <= n - 1; ++i) {
      if (tick && tick(1)) return false;
      const TinPoint &pi = P[size_t(i)], &pi1 = P[size_t(i + 1)];
      if (!Near(pi.Y, pi1.Y)) continue; // no j can make a cell
      // The run of points whose X lies within 0.005 of this one's.
      int k0 = bx.GroupBeg[size_t(bx.Pos[size_t(i)])], k1 = bx.GroupEnd[size_t(k0)] - 1;
      while (k0 > 0 && Near(xAt(k0 - 1), pi.X)) k0 = bx.GroupBeg[size_t(k0 - 1)];
      while (k1 + 1 < n && Near(xAt(k1 + 1), pi.X)) k1 = bx.GroupEnd[size_t(k1 + 1)] - 1;
      int found = 0;
      // Each stretch of equal X is in number order: its first j from i + 2 on is its best.
      for (int k = k0; k <= k1;) {
        const int e = bx.GroupEnd[size_t(k)] - 1;
        auto first = std::lower_bound(bx.Order.begin() + k, bx.Order.begin() + e + 1, i + 2);
        for (auto it = first; it != bx.Order.begin() + e + 1; ++it) {
          int j = *it;
          if (j > n - 1 || (found && j >= found)) break;
          const TinPoint &pj = P[size_t(j)], &pj1 = P[size_t(j + 1)];
          if (Near(pj.Y, pj1.Y) && Near(pj1.X, pi1.X)) {
            found = j;
            break;
          }
        }
        k = e + 1;
      }
      if (found) {
        st.TinTris.push_back(TinTri{i, i + 1, found});
        st.TinTris.push_back(TinTri{i + 1, found, found + 1});
        st.TinTriCount += 2;
      }
    }
    st.TinTris.shrink_to_fit();
    return true;
  } catch (const std::bad_alloc&) {
    st.TinTris = {};
    st.TinTriCount = 0;
    st.Err = true;
    return false;
  }
}

bool LoadTin(SurfaceState& st, const TinTick& tick) {
  try {
    st.TinTris.assign(1, TinTri{});
    st.TinTriCount = 0;
    for (int i = 1; i + 2 <= st.TinPointCount; i += 4) {
      st.TinTris.push_back(TinTri{i, i + 1, i + 2});
      st.TinTriCount += 1;
      if (tick && tick(1)) return false;
    }
    return true;
  } catch (const std::bad_alloc&) {
    st.TinTris = {};
    st.TinTriCount = 0;
    st.Err = true;
    return false;
  }
}

} // namespace velmora
