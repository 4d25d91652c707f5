#include "tin_oracle.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <string>

#include "surface/tin_geometry.h"
#include "surface/tin_keys.h"

namespace velmora::oracle {

namespace {

struct Row {
  std::string Key;
  TinPoint P;
};

double RefDist(const SurfaceState& st, const TinPoint& p) {
  return TinDist(st.TinMinX, st.TinMinY, p.X, p.Y);
}

// The list control: sorted by the key's text, ascending or descending; equal keys keep the
// order they came in.
void SortList(std::vector<Row>& rows, bool descending) {
  std::stable_sort(rows.begin(), rows.end(), [&](const Row& a, const Row& b) {
    return descending ? a.Key > b.Key : a.Key < b.Key;
  });
}

std::vector<Row> LoadRows(const SurfaceState& st, const std::vector<TinPoint>& raw, int method) {
  std::vector<Row> rows;
  std::string xKey; // keeps its text when 1/X fails
  for (const TinPoint& p : raw) {
    std::string key;
    if (method == 1) {
      key = FormatKey(RefDist(st, p));
    } else {
      std::string yKey = p.Y < 0 ? "+" + FormatKey(1 / p.Y) : "-" + FormatKey(p.Y);
      if (p.X < 0)
        xKey = "-" + FormatKey(p.X);
      else if (p.X != 0)
        xKey = "+" + FormatKey(1 / p.X);
      key = yKey + " " + xKey;
    }
    rows.push_back({key, p});
  }
  SortList(rows, method == 2);
  return rows;
}

struct Tin {
  const SurfaceState& St;
  std::vector<TinPoint> P{TinPoint{}};
  std::vector<TinTri> T{TinTri{}};
  int N() const { return int(P.size()) - 1; }

  bool NotDuplicate(const TinPoint& p) const {
    const double d = RefDist(St, p);
    for (int k = N(); k >= 1; --k) {
      if (RefDist(St, P[size_t(k)]) != d) break;
      if (TinDist(p.X, p.Y, P[size_t(k)].X, P[size_t(k)].Y) < 0.005) return false;
    }
    return true;
  }

  void SortRow(int first, int last) {
    for (int i = last; i > first; --i)
      for (int k = first; k < i; ++k)
        if (P[size_t(k)].X > P[size_t(k + 1)].X) std::swap(P[size_t(k)], P[size_t(k + 1)]);
  }

  void Prepare(const std::vector<Row>& rows, int method) {
    int rowStart = 1;
    for (const Row& r : rows) {
      if (!NotDuplicate(r.P)) continue;
      P.push_back(r.P);
      int n = N();
      if (method == 2 && n >= 2 && std::fabs(P[size_t(n)].Y - P[size_t(n - 1)].Y) < 0.005) {
        SortRow(rowStart, n);
        rowStart = n + 1;
      }
    }
  }

  bool EdgeOpen(int a, int b) const {
    int count = 0;
    for (size_t t = T.size() - 1; t >= 1; --t) {
      const TinTri& x = T[t];
      bool hasA = x.A == a || x.B == a || x.C == a, hasB = x.A == b || x.B == b || x.C == b;
      if (hasA && hasB && ++count == 2) return false;
    }
    return true;
  }

  bool EmptyCircle(int start, int a, int b, int c, const TinCircle& cc) const {
    const double dc = TinDist(St.TinMinX, St.TinMinY, cc.X, cc.Y);
    for (int p = start; p <= N(); ++p) {
      if (p == a || p == b || p == c) continue;
      const TinPoint& q = P[size_t(p)];
      if (TinDist2(q.X, q.Y, cc.X, cc.Y) < cc.R2) {
        if (!TinIsRectangle(P[size_t(a)], P[size_t(b)], P[size_t(c)], q)) return false;
      } else if (std::fabs(RefDist(St, q) - dc) > 1.1 * cc.R) {
        break;
      }
    }
    for (int p = start; p >= 1; --p) {
      if (p == a || p == b || p == c) continue;
      const TinPoint& q = P[size_t(p)];
      if (TinDist2(q.X, q.Y, cc.X, cc.Y) < cc.R2) {
        if (!TinIsRectangle(P[size_t(a)], P[size_t(b)], P[size_t(c)], q)) return false;
      } else if (std::fabs(RefDist(St, q) - dc) > 1.1 * cc.R) {
        break;
      }
    }
    return true;
  }

  bool Candidate(int a, int b, int c, int d, int s) const {
    const TinPoint &pa = P[size_t(a)], &pb = P[size_t(b)], &pc = P[size_t(c)], &pd = P[size_t(d)];
    if (TinSide(pd, pa, pb) + TinSide(pc, pa, pb) != 0) return false;
    TinCircle cc;
    if (!TinCircumcircle(pa, pb, pd, cc)) return false;
    if (TinDist2(pc.X, pc.Y, cc.X, cc.Y) < cc.R2 && !TinIsRectangle(pa, pb, pc, pd)) return false;
    return EmptyCircle(s, a, b, d, cc);
  }

  void AddApex(int a, int b, int c) {
    if (!EdgeOpen(a, b)) return;
    const int s = std::min(a, b);
    int found = 0;
    for (int d = s; d <= N() && !found; ++d)
      if (d != a && d != b && d != c && Candidate(a, b, c, d, s)) found = d;
    for (int d = s; d >= 1 && !found; --d)
      if (d != a && d != b && d != c && Candidate(a, b, c, d, s)) found = d;
    if (found) T.push_back(TinTri{a, b, found});
  }

  void Delaunay() {
    const int n = N();
    if (n < 3) return;
    bool seeded = false;
    for (int i = 1; i <= n - 2 && !seeded; ++i)
      for (int j = i + 1; j <= n - 1 && !seeded; ++j)
        for (int k = j + 1; k <= n && !seeded; ++k) {
          TinCircle cc;
          if (TinCircumcircle(P[size_t(i)], P[size_t(j)], P[size_t(k)], cc) &&
              EmptyCircle(1, i, j, k, cc)) {
            T.push_back(TinTri{i, j, k});
            seeded = true;
          }
        }
    for (size_t t = 1; t < T.size(); ++t) {
      const TinTri x = T[t];
      AddApex(x.A, x.B, x.C);
      AddApex(x.B, x.C, x.A);
      AddApex(x.C, x.A, x.B);
    }
  }

  static bool Near(double a, double b) { return std::fabs(a - b) < 0.005; }

  void Matrix() {
    const int n = N();
    if (n < 4) return;
    for (int i = 1; i <= n - 1; ++i)
      for (int j = i + 2; j <= n - 1; ++j) {
        const TinPoint &pi = P[size_t(i)], &pi1 = P[size_t(i + 1)], &pj = P[size_t(j)],
                       &pj1 = P[size_t(j + 1)];
        if (Near(pj.Y, pj1.Y) && Near(pi.Y, pi1.Y) && Near(pj.X, pi.X) && Near(pj1.X, pi1.X)) {
          T.push_back(TinTri{i, i + 1, j});
          T.push_back(TinTri{i + 1, j, j + 1});
          break;
        }
      }
  }
};

} // namespace

TinResult BuildTin(const SurfaceState& bounds, const std::vector<TinPoint>& raw, int method) {
  Tin tin{bounds};
  if (method == 1 || (method == 2 && bounds.TinNotGrid)) {
    tin.Prepare(LoadRows(bounds, raw, method), method);
  } else {
    tin.P.insert(tin.P.end(), raw.begin(), raw.end());
  }
  if (method == 1) tin.Delaunay();
  if (method == 2) tin.Matrix();
  if (method == 3)
    for (int i = 1; i + 2 <= tin.N(); i += 4) tin.T.push_back(TinTri{i, i + 1, i + 2});
  return {std::move(tin.P), std::move(tin.T)};
}

} // namespace velmora::oracle
