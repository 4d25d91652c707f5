// The TIN and contour builds on generated data. Peers: Qhull through scipy.spatial.Delaunay
// and gdal_contour, run by scripts/bench-surface on the same data in the same run; this
// program is its timing side. Without arguments it runs the Google Benchmark cases;
// "--tin FILE METHOD" and "--contour FILE INTERVAL" time one build of points read from a
// binary file of x, y, z doubles and print the seconds and the counts.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "surface/contour_cut.h"
#include "surface/tin_delaunay.h"
#include "surface/tin_matrix.h"
#include "surface/tin_points.h"

namespace {

using namespace velmora;

std::vector<TinPoint> RandomPoints(int n) {
  std::mt19937 g(11);
  std::uniform_real_distribution<double> u(0, 100000);
  std::vector<TinPoint> p;
  for (int i = 0; i < n; ++i) {
    double x = u(g), y = u(g);
    p.push_back({x, y, float(std::sin(x / 900) * 300 + std::cos(y / 1300) * 200)});
  }
  return p;
}

std::vector<TinPoint> GridPoints(int n) {
  std::vector<TinPoint> p;
  for (int r = n - 1; r >= 0; --r)
    for (int c = 0; c < n; ++c)
      p.push_back(
          {c * 30.0, r * 30.0, float(std::sin(c / 90.0) * 300 + std::cos(r / 130.0) * 200)});
  return p;
}

// The three stages on the points; returns the triangles.
int Tin(SurfaceState& st, const std::vector<TinPoint>& raw, int method) {
  st = SurfaceState{};
  for (const TinPoint& q : raw) ScanBounds(st, q.X, q.Y, q.Z);
  if (method == 1 || (method == 2 && st.TinNotGrid))
    PreparePoints(st, raw, OrderPoints(st, raw, method), method, nullptr);
  else
    StorePoints(st, raw);
  if (method == 1)
    MakeDelaunay(st, nullptr);
  else
    MakeMatrix(st, nullptr);
  return st.TinTriCount;
}

void BM_TinRandom(benchmark::State& state) {
  auto raw = RandomPoints(int(state.range(0)));
  SurfaceState st;
  for (auto _ : state) benchmark::DoNotOptimize(Tin(st, raw, 1));
  state.counters["triangles"] = st.TinTriCount;
}
BENCHMARK(BM_TinRandom)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->Iterations(1);

void BM_TinGrid(benchmark::State& state) {
  auto raw = GridPoints(int(state.range(0)));
  SurfaceState st;
  for (auto _ : state) benchmark::DoNotOptimize(Tin(st, raw, int(state.range(1))));
  state.counters["triangles"] = st.TinTriCount;
}
BENCHMARK(BM_TinGrid)
    ->Args({1201, 2})
    ->Args({301, 1})
    ->Args({1201, 1})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

std::vector<TinPoint> ReadPoints(const char* path) {
  std::ifstream f(path, std::ios::binary);
  std::vector<double> v;
  double d;
  while (f.read(reinterpret_cast<char*>(&d), sizeof d)) v.push_back(d);
  std::vector<TinPoint> p;
  for (size_t i = 0; i + 2 < v.size(); i += 3) p.push_back({v[i], v[i + 1], float(v[i + 2])});
  return p;
}

double Now() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

} // namespace

int main(int argc, char** argv) {
  if (argc >= 4 && std::strcmp(argv[1], "--tin") == 0) {
    auto raw = ReadPoints(argv[2]);
    SurfaceState st;
    double t0 = Now();
    int n = Tin(st, raw, std::atoi(argv[3]));
    std::printf("%.3f %d\n", Now() - t0, n);
    return 0;
  }
  if (argc >= 4 && std::strcmp(argv[1], "--contour") == 0) {
    // The grid's points in grid order: the matrix TIN, then the contours; with a fifth
    // argument the lines are written there as "z n x y x y ..." rows.
    auto raw = ReadPoints(argv[2]);
    const float interval = float(std::atof(argv[3]));
    SurfaceState st;
    std::vector<std::pair<float, std::vector<double>>> lines;
    double t0 = Now();
    Tin(st, raw, 2);
    IndexTriangles(st);
    for (float z : ContourLevels(st.TinMinZ, st.TinMaxZ, interval, 0)) {
      CutTriangles(st, z);
      ChainContours(st, [&](const std::vector<double>& xy) {
        lines.push_back({z, xy});
        return true;
      });
    }
    std::printf("%.3f %zu\n", Now() - t0, lines.size());
    if (argc >= 5) {
      std::FILE* f = std::fopen(argv[4], "w");
      if (!f) return 1;
      for (auto& [z, xy] : lines) {
        std::fprintf(f, "%.9g %zu", double(z), xy.size() / 2);
        for (double v : xy) std::fprintf(f, " %.17g", v);
        std::fprintf(f, "\n");
      }
      std::fclose(f);
    }
    return 0;
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
