// The data table on a 1,000,000-row layer of 6 fields made by GDAL (ogr2ogr from a CSV):
// the first fill of a table, a page scrolled, a page of the "Selected Features" view with
// 1,000 selected records spread over the layer, and Fill Series and Add Empty Records of
// 100,000 rows each with the layer's save. The peer, GDAL's Python bindings doing the
// same edits on the same file, runs in scripts/bench-table beside this program, which
// passes the layer's path in VELMORA_BENCH_TABLE (made here when unset).
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <unistd.h>

#include "frame/lyr_slots.h"
#include "model/file_util.h"
#include "model/session.h"
#include "session/layer_life.h"
#include "session/map_init.h"
#include "table/table_page.h"
#include "table/table_ranges.h"
#include "table_layer.h"

using namespace velmora;

namespace {

using namespace velmora::bench;

// A session with the layer open (a fresh copy when `copy`, for the edits that change it).
struct Open {
  Session s;
  int lyr = 0;
  std::string path;
  explicit Open(bool copy) {
    MapInit(s);
    path = Source();
    if (copy) {
      const std::string d = FolderOf(Source()) + "copy/";
      std::system(
          ("rm -rf " + d + " && mkdir -p " + d + " && cp " + ChangeExt(Source(), "") + "* " + d)
              .c_str());
      path = d + "t.shp";
    }
    AddShape(s, path, false);
    lyr = FindLyrByFile(s, path);
    if (lyr > 0) s.Lyr[lyr].EEditable = 1;
  }
  ~Open() { CloseAllLyrs(s); }
};

void BM_OpenTable(benchmark::State& state) {
  if (Source().empty()) return state.SkipWithError("ogr2ogr failed");
  Open o(false);
  long long grown = 0;
  for (auto _ : state) {
    const long long before = Rss();
    TblPage p;
    InstTable(o.s, p, o.lyr, kPageRows);
    benchmark::DoNotOptimize(TblCounterText(o.s, p));
    grown = std::max(grown, Rss() - before);
  }
  state.counters["rss_growth_kB"] = double(grown) / 1024;
}
BENCHMARK(BM_OpenTable)->Unit(benchmark::kMillisecond);

void BM_ScrollPage(benchmark::State& state) {
  if (Source().empty()) return state.SkipWithError("ogr2ogr failed");
  Open o(false);
  TblPage p;
  InstTable(o.s, p, o.lyr, kPageRows);
  std::mt19937 rng(3);
  std::uniform_int_distribution<int> at(1, kRows - kPageRows);
  for (auto _ : state) {
    p.TblFirstRec = at(rng);
    FillPage(o.s, p);
  }
}
BENCHMARK(BM_ScrollPage)->Unit(benchmark::kMillisecond);

void BM_SelectedPage(benchmark::State& state) {
  if (Source().empty()) return state.SkipWithError("ogr2ogr failed");
  Open o(false);
  auto& bits = o.s.Lyr[o.lyr].SelBits;
  bits.assign(size_t(kRows) / 8 + 1, 0);
  for (int k = 0; k < 1000; ++k) {
    const int rec = 1 + k * (kRows / 1000) + 7; // spread over the layer
    bits[size_t(rec) / 8] |= uint8_t(1 << (rec % 8));
  }
  TblPage p;
  InstTable(o.s, p, o.lyr, kPageRows);
  p.TblMode = 1;
  std::mt19937 rng(5);
  std::uniform_int_distribution<int> at(1, 1000 - kPageRows);
  for (auto _ : state) {
    p.TblFirstRec = at(rng);
    FillPage(o.s, p);
    benchmark::DoNotOptimize(TblCounterText(o.s, p));
  }
}
BENCHMARK(BM_SelectedPage)->Unit(benchmark::kMillisecond);

// Peer: scripts/bench-table's "fill" (SetField over 100,000 features, then the save).
void BM_FillSeries100k_Save(benchmark::State& state) {
  if (Source().empty()) return state.SkipWithError("ogr2ogr failed");
  for (auto _ : state) {
    state.PauseTiming();
    Open o(true);
    TblPage p;
    p.TblLayer = o.lyr;
    p.TblRange = {1, 3, 100000, 3};
    state.ResumeTiming();
    FillSeries(o.s, p, "1", "0.5", "");
    SaveLyrAll(o.s, o.lyr);
  }
}
BENCHMARK(BM_FillSeries100k_Save)->Unit(benchmark::kMillisecond)->Iterations(3);

// Peer: scripts/bench-table's "add" (CreateFeature of 100,000 points at (0, 0), the save).
void BM_AddRecords100k_Save(benchmark::State& state) {
  if (Source().empty()) return state.SkipWithError("ogr2ogr failed");
  for (auto _ : state) {
    state.PauseTiming();
    Open o(true);
    state.ResumeTiming();
    AddRecords(o.s, o.lyr, 100000);
    SaveLyrAll(o.s, o.lyr);
  }
}
BENCHMARK(BM_AddRecords100k_Save)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace

BENCHMARK_MAIN();
