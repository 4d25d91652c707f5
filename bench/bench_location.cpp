// Find by location on generated layers (scripts/bench-location makes them and runs
// Shapely's STRtree with prepared predicates on the same files in the same run):
// 100,000 points against 3,000 polygons (Intersect, Completely inside) and 50,000 lines
// against 50,000 lines (Intersect); the plain quadratic loops on subsets of 10,000 points
// against 300 polygons and 5,000 lines against 5,000 lines; the memory of the index.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "../tests/query/location_oracle.h"
#include "query/location.h"
#include "query/spatial_index.h"
#include "session/layer_life.h"
#include "session/map_init.h"

using namespace velmora;

namespace {

std::string Dir() {
  const char* d = std::getenv("VELMORA_LOCATION_DATA");
  return d ? std::string(d) + "/" : "/tmp/velmora-bench-location/";
}

struct Layers {
  Session s;
  bool ok = true;
  int Open(const std::string& name) {
    std::string p = Dir() + name + ".shp";
    if (!std::filesystem::exists(p)) {
      ok = false;
      return 0;
    }
    AddShape(s, p, false);
    return s.LyrCount;
  }
  Layers() { MapInit(s); }
};

Layers& L() {
  static Layers* l = new Layers;
  return *l;
}

int Lyr(const std::string& name) {
  Session& s = L().s;
  for (int i = 1; i <= s.LyrCount; ++i)
    if (s.Lyr[i].Fsource == Dir() + name + ".shp") return i;
  return L().Open(name);
}

LocationQuery Query(const std::string& find, const std::string& ref, int relation) {
  LocationQuery q;
  q.FindLyr = Lyr(find);
  q.RefLyr = Lyr(ref);
  q.Relation = relation;
  return q;
}

void BM_Product(benchmark::State& st, const char* find, const char* ref, int relation) {
  LocationQuery q = Query(find, ref, relation);
  if (!L().ok) return st.SkipWithError("no data: run scripts/bench-location");
  int found = 0;
  for (auto _ : st) found = FindByLocation(L().s, q);
  st.counters["found"] = found;
}

void BM_Literal(benchmark::State& st, const char* find, const char* ref, int relation) {
  LocationQuery q = Query(find, ref, relation);
  if (!L().ok) return st.SkipWithError("no data: run scripts/bench-location");
  int found = 0;
  for (auto _ : st) found = test::OracleFindByLocation(L().s, q, false);
  st.counters["found"] = found;
}

void BM_Index(benchmark::State& st, const char* name) {
  int lyr = Lyr(name);
  if (!L().ok) return st.SkipWithError("no data: run scripts/bench-location");
  size_t bytes = 0;
  for (auto _ : st) {
    BoxIndex ix = BuildBoxIndex(L().s, lyr);
    bytes = BoxIndexBytes(ix);
    benchmark::DoNotOptimize(ix.Nodes.data());
  }
  st.counters["bytes_per_feature"] = double(bytes) / L().s.Lyr[lyr].Shp.RecCount;
}

} // namespace

BENCHMARK_CAPTURE(BM_Product, points_polys_intersect, "points", "polys", 1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Product, points_polys_inside, "points", "polys", 3)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Product, lines_lines_intersect, "linesA", "linesB", 1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Product, sub_points_polys_intersect, "points_sub", "polys_sub", 1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Literal, sub_points_polys_intersect, "points_sub", "polys_sub", 1)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK_CAPTURE(BM_Product, sub_lines_lines_intersect, "linesA_sub", "linesB_sub", 1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Literal, sub_lines_lines_intersect, "linesA_sub", "linesB_sub", 1)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK_CAPTURE(BM_Index, points, "points")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Index, polys, "polys")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Index, lines, "linesA")->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
