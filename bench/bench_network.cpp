// Networks on generated data that scripts/bench-network makes with GDAL in
// $VELMORA_NET_DIR: BuildNet on a street grid of about 250,000 segments and on a river-like
// network of about 600,000 lines, and the route search between far corners of the grid,
// the bounded search and the exact one. The peer, Shapely's STRtree query of all
// intersecting pairs on the same lines, runs in the script beside it.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>

#include "frame/lyr_slots.h"
#include "model/session.h"
#include "network/build_net.h"
#include "network/net_files.h"
#include "network/route_run.h"
#include "network/route_search.h"
#include "network/route_stops.h"
#include "session/layer_life.h"

using namespace velmora;

namespace {

std::string DataDir() {
  const char* d = std::getenv("VELMORA_NET_DIR");
  return d ? std::string(d) + "/" : std::string("/tmp/velmora-bench-network/");
}

// A session with the layer open; its number in `lyr`.
Session& Open(const std::string& name, int& lyr) {
  static Session s;
  const std::string path = DataDir() + name;
  lyr = FindLyrByFile(s, path);
  if (lyr < 1) {
    AddShape(s, path, false);
    lyr = FindLyrByFile(s, path);
  }
  return s;
}

void Build(benchmark::State& st, const char* name) {
  int lyr = 0;
  Session& s = Open(name, lyr);
  if (lyr < 1) return st.SkipWithError("no data: run scripts/bench-network");
  for (auto _ : st) BuildNet(s, lyr, 0);
  st.counters["lines"] = s.Lyr[lyr].Shp.RecCount;
  LoadNet(s, lyr);
  st.counters["links"] = double(s.Lyr[lyr].Net.NetNodes.Links.size());
}

void BM_BuildStreetGrid(benchmark::State& st) {
  Build(st, "grid.shp");
}
void BM_BuildRivers(benchmark::State& st) {
  Build(st, "rivers.shp");
}

// From the middle of the first block at the lower left to the middle of the last block at
// the upper right (the grid's streets are 100 apart).
void Route(benchmark::State& st, bool exact) {
  int lyr = 0;
  Session& s = Open("grid.shp", lyr);
  if (lyr < 1) return st.SkipWithError("no data: run scripts/bench-network");
  if (!NetFilesReady(s, lyr)) BuildNet(s, lyr, 0);
  LoadNet(s, lyr);
  const ShpMainHeader& h = s.Lyr[lyr].Shp.ShpHeader;
  const double X[2] = {h.Xmin + 50, h.Xmax - 50}, Y[2] = {h.Ymin, h.Ymax};
  for (int i = 0; i < 2; ++i) {
    if (!PickRouteStopAt(s, lyr, X[i], Y[i])) return st.SkipWithError("no stop");
    InstNet(s, i + 1, s.Edit.HitNow);
  }
  for (auto _ : st) {
    ClearLayerRoute(s, lyr);
    if ((exact ? GetExactShortestPath(s, lyr) : GetShortestPath(s, lyr)) != RouteStatus::Done)
      return st.SkipWithError("search failed");
  }
  st.SetLabel("length " + RouteLenText(s.Lyr[lyr].Net.NetRouteLen));
  st.counters["lines"] = double(s.Lyr[lyr].Net.NetRoutes.size());
}

void BM_RouteBounded(benchmark::State& st) {
  Route(st, false);
}
void BM_RouteExact(benchmark::State& st) {
  Route(st, true);
}

} // namespace

BENCHMARK(BM_BuildStreetGrid)->Unit(benchmark::kSecond)->Iterations(1);
BENCHMARK(BM_BuildRivers)->Unit(benchmark::kSecond)->Iterations(1);
BENCHMARK(BM_RouteExact)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_RouteBounded)->Unit(benchmark::kSecond)->Iterations(1);

BENCHMARK_MAIN();
