// The two transforms per second in process, against PROJ's proj_trans_generic on the same
// points. Run with "--transform ARGS" it is instead the transform filter over standard input
// and output, so that scripts/bench-transform can time it against cs2cs.
#include <benchmark/benchmark.h>
#include <proj.h>

#include <cstring>
#include <iostream>
#include <random>
#include <string>
#include <vector>

#include "coords/transform_filter.h"
#include "coords/utm_transform.h"

namespace {

using velmora::XY;

constexpr int kZone = 32;
constexpr size_t kPoints = 10000;

struct Points {
  std::vector<double> lat, lon; // degrees, within 3 degrees of zone 32's meridian
  std::vector<double> x, y;     // their grid values
};

const Points& Data() {
  static const Points p = [] {
    Points d;
    std::mt19937 rng(7);
    std::uniform_real_distribution<double> lat(-79, 83), off(-3, 3);
    velmora::Session s;
    for (size_t i = 0; i < kPoints; ++i) {
      d.lat.push_back(lat(rng));
      d.lon.push_back(9 + off(rng));
      XY g = velmora::LatLonToUTM(s, d.lat.back(), d.lon.back(), kZone, false, 23);
      d.x.push_back(g.X);
      d.y.push_back(d.lat.back() < 0 ? g.Y - 1e7 : g.Y); // PROJ's northern grid throughout
    }
    return d;
  }();
  return p;
}

void BM_LatLonToUTM(benchmark::State& state) {
  velmora::Session s;
  const Points& d = Data();
  for (auto _ : state)
    for (size_t i = 0; i < kPoints; ++i)
      benchmark::DoNotOptimize(velmora::LatLonToUTM(s, d.lat[i], d.lon[i], kZone, false, 23));
  state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(kPoints));
}
BENCHMARK(BM_LatLonToUTM);

void BM_UTMToLatLon(benchmark::State& state) {
  velmora::Session s;
  const Points& d = Data();
  for (auto _ : state)
    for (size_t i = 0; i < kPoints; ++i)
      benchmark::DoNotOptimize(velmora::UTMToLatLon(s, d.x[i], d.y[i], kZone, false, 23));
  state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(kPoints));
}
BENCHMARK(BM_UTMToLatLon);

// Degrees in, grid out, as cs2cs does it: unit conversion then UTM on WGS 84.
struct ProjPipe {
  PJ_CONTEXT* ctx = proj_context_create();
  PJ* pj = proj_create(ctx, "+proj=pipeline +step +proj=unitconvert +xy_in=deg +xy_out=rad "
                            "+step +proj=utm +zone=32 +ellps=WGS84");
  ~ProjPipe() {
    proj_destroy(pj);
    proj_context_destroy(ctx);
  }
};

void ProjRun(benchmark::State& state, PJ_DIRECTION dir) {
  ProjPipe p;
  if (!p.pj) {
    state.SkipWithError("PROJ pipeline not created");
    return;
  }
  const Points& d = Data();
  const std::vector<double>& inA = dir == PJ_FWD ? d.lon : d.x;
  const std::vector<double>& inB = dir == PJ_FWD ? d.lat : d.y;
  std::vector<double> a(kPoints), b(kPoints);
  for (auto _ : state) {
    std::memcpy(a.data(), inA.data(), kPoints * sizeof(double)); // in place: fresh input
    std::memcpy(b.data(), inB.data(), kPoints * sizeof(double));
    proj_trans_generic(p.pj, dir, a.data(), sizeof(double), kPoints, b.data(), sizeof(double),
                       kPoints, nullptr, 0, 0, nullptr, 0, 0);
    benchmark::DoNotOptimize(a.data());
    benchmark::DoNotOptimize(b.data());
  }
  state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(kPoints));
}

void BM_ProjForward(benchmark::State& state) {
  ProjRun(state, PJ_FWD);
}
BENCHMARK(BM_ProjForward);

void BM_ProjInverse(benchmark::State& state) {
  ProjRun(state, PJ_INV);
}
BENCHMARK(BM_ProjInverse);

} // namespace

int main(int argc, char** argv) {
  if (argc > 1 && std::strcmp(argv[1], "--transform") == 0) {
    std::ios::sync_with_stdio(false);
    velmora::TransformOptions opt;
    std::string error;
    if (!velmora::ParseTransformArgs(std::vector<std::string>(argv + 1, argv + argc), opt, error)) {
      std::cerr << error << "\n";
      return 2;
    }
    velmora::Session s;
    return velmora::RunTransformFilter(s, std::cin, std::cout, std::cerr, opt);
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
