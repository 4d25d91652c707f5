#include "surface/contour_cut.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <unordered_map>

#include "surface/tin_geometry.h"
#include "surface/tin_keys.h"

namespace velmora {

namespace {

float ZOf(const SurfaceState& st, const TinTri& t, int corner) {
  int i = corner == 1 ? t.A : corner == 2 ? t.B : t.C;
  return st.TinPoints[size_t(i)].Z;
}

bool Near(double x1, double y1, double x2, double y2) {
  return TinDist(x1, y1, x2, y2) < 0.005;
}

} // namespace

int CutTriangle(const SurfaceState& st, int t, float z, double pts[6]) {
  const TinTri& tri = st.TinTris[size_t(t)];
  const TinPoint* v[3] = {&st.TinPoints[size_t(tri.A)], &st.TinPoints[size_t(tri.B)],
                          &st.TinPoints[size_t(tri.C)]};
  int n = 0;
  for (int e = 0; e < 3; ++e) {
    const TinPoint& p = *v[e];
    const TinPoint& q = *v[(e + 1) % 3];
    if (e == 2 && n == 2 && v[1]->Z == z) n = 1;
    float dz = p.Z - q.Z;
    if (std::fabs(dz) < 0.00001f) continue;
    float r = -(q.Z - z) / dz;
    if (r >= 0 && r <= 1) {
      pts[2 * n] = q.X + (p.X - q.X) * r;
      pts[2 * n + 1] = q.Y + (p.Y - q.Y) * r;
      ++n;
    }
  }
  return n;
}

std::vector<float> ContourLevels(double minZ, double maxZ, float interval, float base) {
  std::vector<float> levels;
  float step = std::fabs(interval);
  if (step == 0) step = 1;
  if (!std::isfinite(minZ) || !std::isfinite(maxZ) || !std::isfinite(step) || !std::isfinite(base))
    return levels;
  float z = float(std::trunc((minZ - base) / step) * step + base);
  while (z <= maxZ) {
    levels.push_back(z);
    float next = z + step;
    if (!(next > z)) break; // the step is lost in the level's precision
    z = next;
  }
  return levels;
}

int32_t ZBucket(double z) {
  double t = std::trunc(z);
  return int32_t(std::clamp(t, -1000000.0, 1000000.0));
}

void IndexTriangles(SurfaceState& st) {
  const int n = st.TinTriCount;
  st.TinTriIndex.assign(size_t(n) + 1, TriIndex{});
  const int32_t lo = int32_t(std::max(std::nearbyint(st.TinMinZ), -1000000.0));
  const int32_t hi = int32_t(std::min(std::nearbyint(st.TinMaxZ), 1000000.0));
  // Heights beyond the bounds (or bounds the wrong way round) go to the end buckets.
  const int32_t b0 = std::min(lo, hi), b1 = std::max(lo, hi);
  std::vector<TriBucket> buckets(size_t(b1 - b0) + 1);
  for (int t = 1; t <= n; ++t) {
    const TinTri& tri = st.TinTris[size_t(t)];
    uint8_t mx = 1, mn = 1;
    for (uint8_t c = 2; c <= 3; ++c) {
      if (ZOf(st, tri, c) > ZOf(st, tri, mx)) mx = c;
      if (ZOf(st, tri, c) < ZOf(st, tri, mn)) mn = c;
    }
    st.TinTriIndex[size_t(t)] = TriIndex{mx, mn, 0};
    int32_t b = std::clamp(ZBucket(ZOf(st, tri, mn)), b0, b1) - b0;
    TriBucket& bk = buckets[size_t(b)];
    if (bk.First == 0)
      bk.First = t;
    else
      st.TinTriIndex[size_t(bk.Last)].NextTri = t;
    bk.Last = t;
  }
  // From the highest bucket down, each bucket's chain goes in front of the list.
  int32_t head = 0;
  for (size_t b = buckets.size(); b-- > 0;) {
    if (!buckets[b].First) continue;
    st.TinTriIndex[size_t(buckets[b].Last)].NextTri = head;
    head = buckets[b].First;
  }
  st.TinTriIndex[0].NextTri = head;
}

namespace {

struct Seg {
  RowKeyPart Y, X;
  double X1, Y1, X2, Y2;
};

bool SameAsLast(const ContourSeg& a, const Seg& b) {
  return (Near(a.X1, a.Y1, b.X1, b.Y1) && Near(a.X2, a.Y2, b.X2, b.Y2)) ||
         (Near(a.X1, a.Y1, b.X2, b.Y2) && Near(a.X2, a.Y2, b.X1, b.Y1));
}

} // namespace

void CutTriangles(SurfaceState& st, float z) {
  std::vector<Seg> segs;
  int p = 0, t = st.TinTriIndex[0].NextTri;
  while (t) {
    const TinTri& tri = st.TinTris[size_t(t)];
    const TriIndex& ix = st.TinTriIndex[size_t(t)];
    const int next = ix.NextTri;
    if (ZOf(st, tri, ix.MaxCorner) < z) {
      st.TinTriIndex[size_t(p)].NextTri = next;
      t = next;
      continue;
    }
    if (std::trunc(double(ZOf(st, tri, ix.MinCorner))) > z) break;
    double pts[6];
    int n = CutTriangle(st, t, z, pts);
    if (n >= 2 && TinDist(pts[0], pts[1], pts[2], pts[3]) >= 0.005) {
      bool ok = false;
      Seg s{RowKeyY(std::max(pts[1], pts[3])),
            RowKeyX(std::min(pts[0], pts[2]), ok),
            pts[0],
            pts[1],
            pts[2],
            pts[3]};
      segs.push_back(s);
    }
    p = t;
    t = next;
  }
  std::stable_sort(segs.begin(), segs.end(), [](const Seg& a, const Seg& b) {
    int c = CompareRowKeyPart(a.Y, b.Y);
    if (c == 0) c = CompareRowKeyPart(a.X, b.X);
    return c > 0;
  });
  st.ContourSegs.assign(1, ContourSeg{});
  for (const Seg& s : segs) {
    if (st.ContourSegs.size() > 1 && SameAsLast(st.ContourSegs.back(), s)) continue;
    st.ContourSegs.push_back(ContourSeg{-1, s.X1, s.Y1, s.X2, s.Y2});
  }
  st.ContourSegCount = int32_t(st.ContourSegs.size()) - 1;
}

namespace {

// The segment ends by cells of 0.01: every end within 0.005 of a point lies in the 3 x 3
// cells around it.
struct EndGrid {
  std::unordered_map<uint64_t, std::vector<int32_t>> Cells;
  static int64_t C(double v) { return int64_t(std::floor(v / 0.01)); }
  static uint64_t Key(int64_t cx, int64_t cy) {
    return uint64_t(cx) * 0x9E3779B97F4A7C15ULL ^ (uint64_t(cy) + 0x632BE59BD9B4E019ULL);
  }
  void Add(double x, double y, int32_t seg) {
    auto& v = Cells[Key(C(x), C(y))];
    if (v.empty() || v.back() != seg) v.push_back(seg);
  }
  template <typename F> void Near(double x, double y, F f) const {
    const int64_t cx = C(x), cy = C(y);
    for (int64_t i = cx - 1; i <= cx + 1; ++i)
      for (int64_t j = cy - 1; j <= cy + 1; ++j) {
        auto it = Cells.find(Key(i, j));
        if (it != Cells.end())
          for (int32_t s : it->second) f(s);
      }
  }
};

} // namespace

void ChainContours(SurfaceState& st, const std::function<bool(const std::vector<double>&)>& write) {
  std::vector<ContourSeg>& S = st.ContourSegs;
  const int n = st.ContourSegCount;
  EndGrid grid;
  bool finite = true;
  for (int i = 1; i <= n; ++i) {
    if (!std::isfinite(S[size_t(i)].X1 + S[size_t(i)].Y1 + S[size_t(i)].X2 + S[size_t(i)].Y2) ||
        std::fabs(S[size_t(i)].X1) > 1e15 || std::fabs(S[size_t(i)].Y1) > 1e15 ||
        std::fabs(S[size_t(i)].X2) > 1e15 || std::fabs(S[size_t(i)].Y2) > 1e15)
      finite = false;
  }
  if (finite)
    for (int i = 1; i <= n; ++i) {
      grid.Add(S[size_t(i)].X1, S[size_t(i)].Y1, i);
      grid.Add(S[size_t(i)].X2, S[size_t(i)].Y2, i);
    }
  int first = 1;
  std::deque<double> line;
  while (true) {
    while (first <= n && !S[size_t(first)].Unused) ++first;
    if (first > n) break;
    ContourSeg& f = S[size_t(first)];
    f.Unused = 0;
    line = {f.X1, f.Y1, f.X2, f.Y2};
    while (true) {
      const double ex = line[line.size() - 2], ey = line.back(), sx = line[0], sy = line[1];
      // The first unused segment, in number order, with an end near either end of the line.
      int best = 0;
      auto consider = [&](int32_t i) {
        const ContourSeg& c = S[size_t(i)];
        if (!c.Unused || (best && i >= best)) return;
        if (Near(ex, ey, c.X1, c.Y1) || Near(ex, ey, c.X2, c.Y2) || Near(sx, sy, c.X1, c.Y1) ||
            Near(sx, sy, c.X2, c.Y2))
          best = i;
      };
      if (finite) {
        grid.Near(ex, ey, consider);
        grid.Near(sx, sy, consider);
      } else {
        for (int i = 1; i <= n && !best; ++i) consider(i);
      }
      if (!best) break;
      ContourSeg& c = S[size_t(best)];
      c.Unused = 0;
      if (Near(ex, ey, c.X1, c.Y1)) {
        line.push_back(c.X2), line.push_back(c.Y2);
      } else if (Near(ex, ey, c.X2, c.Y2)) {
        line.push_back(c.X1), line.push_back(c.Y1);
      } else if (Near(sx, sy, c.X1, c.Y1)) {
        line.push_front(c.Y2), line.push_front(c.X2);
      } else {
        line.push_front(c.Y1), line.push_front(c.X1);
      }
    }
    if (line.size() > 2 && !write(std::vector<double>(line.begin(), line.end()))) return;
  }
}

} // namespace velmora
