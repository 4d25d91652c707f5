#pragma once
// Line layers made by GDAL for the network tests, and the networks of the oracle.
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "frame/lyr_slots.h"
#include "model/session.h"
#include "route_oracle.h"
#include "session/layer_life.h"
#include "test_support.h"

namespace velmora::test {

struct NetFixture {
  RecordingHost host;
  Session s{host};
  std::string dir = TempDir("network");

  NetFixture() { s.MapView.MapTarget = 1; }

  // A line layer of the WKT rows, opened in the session; its number.
  int Lines(const std::string& name, const std::vector<std::string>& wkts,
            const std::string& opts = "-lco SHPT=ARC") {
    const std::string shp = GdalLayer(dir, name, wkts, opts);
    if (shp.empty()) return 0;
    AddShape(s, shp, false);
    return FindLyrByFile(s, shp);
  }
};

inline std::string Num(double v) {
  char b[40];
  std::snprintf(b, sizeof b, "%.17g", v);
  return b;
}

inline std::string LineWkt(const std::vector<XY>& pts) {
  std::string w = "LINESTRING (";
  for (size_t i = 0; i < pts.size(); ++i) w += (i ? "," : "") + Num(pts[i].X) + " " + Num(pts[i].Y);
  return w + ")";
}

// A street grid: `n` horizontal and `n` vertical streets over 0 .. (n-1)*step, each cut
// into blocks (one feature a block) when `blocks`, else one feature a street with a vertex
// at every crossing.
inline std::vector<std::string> GridWkts(int n, double step, bool blocks) {
  std::vector<std::string> w;
  for (int dir = 0; dir < 2; ++dir)
    for (int a = 0; a < n; ++a) {
      std::vector<XY> pts;
      for (int b = 0; b < n; ++b)
        pts.push_back(dir ? XY{a * step, b * step} : XY{b * step, a * step});
      if (!blocks) {
        w.push_back(LineWkt(pts));
        continue;
      }
      for (int b = 1; b < n; ++b) w.push_back(LineWkt({pts[size_t(b - 1)], pts[size_t(b)]}));
    }
  return w;
}

// Random wandering lines of 2 to 6 vertices in a square of side `size`; some vertices are
// snapped to a coarse lattice so that ends meet exactly and lines touch at vertices.
inline std::vector<std::string> RandomWkts(int count, double size, unsigned seed) {
  std::mt19937 rng(seed);
  std::uniform_real_distribution<double> U(0, size), step(-size / 6, size / 6);
  std::uniform_int_distribution<int> nv(2, 6), coin(0, 3);
  std::vector<std::string> w;
  for (int i = 0; i < count; ++i) {
    std::vector<XY> pts;
    XY p{U(rng), U(rng)};
    for (int k = nv(rng); k > 0; --k) {
      XY q = p;
      if (coin(rng) == 0) q = {std::round(q.X / 10) * 10, std::round(q.Y / 10) * 10};
      pts.push_back(q);
      p = {p.X + step(rng), p.Y + step(rng)};
    }
    w.push_back(LineWkt(pts));
  }
  return w;
}

} // namespace velmora::test
