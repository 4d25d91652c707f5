#include "contour_oracle.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <string>

#include "surface/contour_cut.h"
#include "surface/tin_geometry.h"
#include "surface/tin_keys.h"

namespace velmora::oracle {

namespace {

struct Row {
  std::string Key;
  double X1, Y1, X2, Y2;
};

bool Near(double x1, double y1, double x2, double y2) {
  return TinDist(x1, y1, x2, y2) < 0.005;
}

std::string SegKey(double x1, double y1, double x2, double y2) {
  double y = std::max(y1, y2), x = std::min(x1, x2);
  std::string yKey = y >= 0 ? "-" + FormatKey(y) : "+" + FormatKey(1 / y);
  std::string xKey; // 1/0 leaves it empty
  if (x < 0)
    xKey = "-" + FormatKey(x);
  else if (x != 0)
    xKey = "+" + FormatKey(1 / x);
  return yKey + " " + xKey;
}

} // namespace

std::vector<ContourLine> BuildContours(const SurfaceState& tin, float interval, float base) {
  std::vector<ContourLine> out;
  const int n = tin.TinTriCount;
  auto z = [&](int t, int corner) {
    const TinTri& x = tin.TinTris[size_t(t)];
    return tin.TinPoints[size_t(corner == 1 ? x.A : corner == 2 ? x.B : x.C)].Z;
  };
  // The list by buckets of whole-number lowest Z, each bucket in triangle order.
  std::vector<int> maxC(size_t(n) + 1), minC(size_t(n) + 1);
  std::vector<std::pair<int32_t, int>> order;
  const int32_t lo = int32_t(std::max(std::nearbyint(tin.TinMinZ), -1000000.0));
  const int32_t hi = int32_t(std::min(std::nearbyint(tin.TinMaxZ), 1000000.0));
  for (int t = 1; t <= n; ++t) {
    int mx = 1, mn = 1;
    for (int c = 2; c <= 3; ++c) {
      if (z(t, c) > z(t, mx)) mx = c;
      if (z(t, c) < z(t, mn)) mn = c;
    }
    maxC[size_t(t)] = mx, minC[size_t(t)] = mn;
    order.push_back({std::clamp(ZBucket(z(t, mn)), std::min(lo, hi), std::max(lo, hi)), t});
  }
  std::stable_sort(order.begin(), order.end(), [](auto& a, auto& b) { return a.first < b.first; });
  std::vector<int> list;
  for (auto& o : order) list.push_back(o.second);

  for (float level : ContourLevels(tin.TinMinZ, tin.TinMaxZ, interval, base)) {
    std::vector<Row> rows;
    std::vector<int> kept;
    size_t i = 0;
    for (; i < list.size(); ++i) {
      int t = list[i];
      if (z(t, maxC[size_t(t)]) < level) continue; // leaves the list for good
      if (std::trunc(double(z(t, minC[size_t(t)]))) > level) break;
      kept.push_back(t);
      double p[6];
      int k = CutTriangle(tin, t, level, p);
      if (k >= 2 && TinDist(p[0], p[1], p[2], p[3]) >= 0.005)
        rows.push_back({SegKey(p[0], p[1], p[2], p[3]), p[0], p[1], p[2], p[3]});
    }
    kept.insert(kept.end(), list.begin() + long(i), list.end());
    list = kept;
    std::stable_sort(rows.begin(), rows.end(),
                     [](const Row& a, const Row& b) { return a.Key > b.Key; });
    std::vector<ContourSeg> segs;
    for (const Row& r : rows) {
      if (!segs.empty()) {
        const ContourSeg& l = segs.back();
        if ((Near(l.X1, l.Y1, r.X1, r.Y1) && Near(l.X2, l.Y2, r.X2, r.Y2)) ||
            (Near(l.X1, l.Y1, r.X2, r.Y2) && Near(l.X2, l.Y2, r.X1, r.Y1)))
          continue;
      }
      segs.push_back({-1, r.X1, r.Y1, r.X2, r.Y2});
    }
    while (true) {
      auto first = std::find_if(segs.begin(), segs.end(), [](auto& s) { return s.Unused; });
      if (first == segs.end()) break;
      first->Unused = 0;
      std::deque<double> line = {first->X1, first->Y1, first->X2, first->Y2};
      bool grown = true;
      while (grown) {
        grown = false;
        for (ContourSeg& c : segs) {
          if (!c.Unused) continue;
          double ex = line[line.size() - 2], ey = line.back(), sx = line[0], sy = line[1];
          if (Near(ex, ey, c.X1, c.Y1)) {
            line.push_back(c.X2), line.push_back(c.Y2);
          } else if (Near(ex, ey, c.X2, c.Y2)) {
            line.push_back(c.X1), line.push_back(c.Y1);
          } else if (Near(sx, sy, c.X1, c.Y1)) {
            line.push_front(c.Y2), line.push_front(c.X2);
          } else if (Near(sx, sy, c.X2, c.Y2)) {
            line.push_front(c.Y1), line.push_front(c.X1);
          } else {
            continue;
          }
          c.Unused = 0;
          grown = true;
          break;
        }
      }
      if (line.size() > 2) out.push_back({level, std::vector<double>(line.begin(), line.end())});
    }
  }
  return out;
}

} // namespace velmora::oracle
