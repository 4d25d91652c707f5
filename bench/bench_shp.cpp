// The shapefile store against shapelib on a 1,000,000-feature polyline layer of 10
// vertices a feature: opening (every record into memory) against a SHPReadObject loop,
// saving against a SHPWriteObject loop; and the resident memory a layer takes, per
// record and per vertex, for that layer and for a 1,000,000-point layer.
#include <benchmark/benchmark.h>
#include <shapefil.h>

#include <cstdio>
#include <filesystem>
#include <malloc.h>
#include <map>
#include <string>
#include <unistd.h>

#include "model/session.h"
#include "store/shp_store.h"

using namespace velmora;

namespace {

constexpr int kFeatures = 1'000'000;
constexpr int kVertices = 10;
const std::string kDir = "/tmp/velmora-bench-shp/";

std::string LinesPath() {
  return kDir + "lines.shp";
}
std::string PointsPath() {
  return kDir + "points.shp";
}

// Both layers are made once with shapelib and kept for later runs.
void MakeData() {
  std::filesystem::create_directories(kDir);
  if (!std::filesystem::exists(LinesPath())) {
    SHPHandle h = SHPCreate(LinesPath().c_str(), SHPT_ARC);
    double x[kVertices], y[kVertices];
    for (int i = 0; i < kFeatures; ++i) {
      for (int j = 0; j < kVertices; ++j) {
        x[j] = 500000.0 + (i % 1000) * 10.0 + j * 0.731;
        y[j] = 4000000.0 + (i / 1000) * 10.0 + ((j * 7919 + i) % 13) * 0.37;
      }
      SHPObject* o = SHPCreateSimpleObject(SHPT_ARC, kVertices, x, y, nullptr);
      SHPWriteObject(h, -1, o);
      SHPDestroyObject(o);
    }
    SHPClose(h);
  }
  if (!std::filesystem::exists(PointsPath())) {
    SHPHandle h = SHPCreate(PointsPath().c_str(), SHPT_POINT);
    for (int i = 0; i < kFeatures; ++i) {
      double x = 10.0 + (i % 1000) * 0.001, y = 50.0 + (i / 1000) * 0.001;
      SHPObject* o = SHPCreateSimpleObject(SHPT_POINT, 1, &x, &y, nullptr);
      SHPWriteObject(h, -1, o);
      SHPDestroyObject(o);
    }
    SHPClose(h);
  }
}

void OpenLayer(Session& s, const std::string& path) {
  s.Lyr.Resize(1);
  s.LyrCount = 1;
  OpenShp(s, 1, path);
  s.Lyr[1].LyrKind = 1;
}

long ResidentBytes() {
  long pages = 0, resident = 0;
  if (FILE* f = std::fopen("/proc/self/statm", "r")) {
    if (std::fscanf(f, "%ld %ld", &pages, &resident) != 2) resident = 0;
    std::fclose(f);
  }
  return resident * sysconf(_SC_PAGESIZE);
}

void BM_OpenVelmora(benchmark::State& st) {
  MakeData();
  for (auto _ : st) {
    Session s;
    OpenLayer(s, LinesPath());
    if (s.ShpErr || s.Lyr[1].Shp.RecCount != kFeatures) st.SkipWithError("open failed");
    benchmark::DoNotOptimize(s.Lyr[1].Shp.ShpRecs.data());
  }
  st.counters["records"] = kFeatures;
}

void BM_ReadShapelib(benchmark::State& st) {
  MakeData();
  for (auto _ : st) {
    SHPHandle h = SHPOpen(LinesPath().c_str(), "rb");
    int n = 0;
    SHPGetInfo(h, &n, nullptr, nullptr, nullptr);
    double sum = 0;
    for (int i = 0; i < n; ++i) {
      SHPObject* o = SHPReadObject(h, i);
      sum += o->padfX[0];
      SHPDestroyObject(o);
    }
    SHPClose(h);
    benchmark::DoNotOptimize(sum);
  }
}

void BM_SaveVelmora(benchmark::State& st) {
  MakeData();
  Session s;
  OpenLayer(s, LinesPath());
  for (auto _ : st) {
    SaveShp(s, 1, kDir + "out_velmora.shp");
    if (s.ShpErr) st.SkipWithError("save failed");
  }
}

void BM_WriteShapelib(benchmark::State& st) {
  MakeData();
  Session s; // the vertices come from memory, as ours do
  OpenLayer(s, LinesPath());
  const auto& recs = s.Lyr[1].Shp.ShpRecs;
  for (auto _ : st) {
    SHPHandle h = SHPCreate((kDir + "out_shapelib.shp").c_str(), SHPT_ARC);
    double x[kVertices], y[kVertices];
    for (int i = 1; i <= kFeatures; ++i) {
      auto pts = recs[size_t(i)].Part(0).PartPoints();
      for (size_t j = 0; j < pts.size() && j < size_t(kVertices); ++j)
        x[j] = pts[j].X, y[j] = pts[j].Y;
      SHPObject* o = SHPCreateSimpleObject(SHPT_ARC, kVertices, x, y, nullptr);
      SHPWriteObject(h, -1, o);
      SHPDestroyObject(o);
    }
    SHPClose(h);
  }
}

// Resident memory of a layer held in memory, against its .shp size.
void Memory(benchmark::State& st, const std::string& path, int verticesPerRecord) {
  MakeData();
  double perRecord = 0;
  for (auto _ : st) {
    st.PauseTiming();
    malloc_trim(0);
    long before = ResidentBytes();
    st.ResumeTiming();
    auto s = std::make_unique<Session>();
    OpenLayer(*s, path);
    st.PauseTiming();
    malloc_trim(0);
    long after = ResidentBytes();
    perRecord = double(after - before) / kFeatures;
    s.reset();
    st.ResumeTiming();
  }
  double shpPerRecord = double(std::filesystem::file_size(path)) / kFeatures;
  st.counters["bytes_per_record"] = perRecord;
  st.counters["bytes_per_vertex"] = perRecord / verticesPerRecord;
  st.counters["shp_bytes_per_record"] = shpPerRecord;
  st.counters["memory_to_shp"] = perRecord / shpPerRecord;
}

void BM_MemoryLines(benchmark::State& st) {
  Memory(st, LinesPath(), kVertices);
}
void BM_MemoryPoints(benchmark::State& st) {
  Memory(st, PointsPath(), 1);
}

BENCHMARK(BM_OpenVelmora)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_ReadShapelib)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_SaveVelmora)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_WriteShapelib)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_MemoryLines)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_MemoryPoints)->Unit(benchmark::kMillisecond)->Iterations(1);

// Prints the two speed ratios after the runs.
class RatioReporter : public benchmark::ConsoleReporter {
public:
  std::map<std::string, double> ms;
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& r : runs) ms[r.benchmark_name()] = r.GetAdjustedRealTime();
    ConsoleReporter::ReportRuns(runs);
  }
};

} // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  RatioReporter rep;
  benchmark::RunSpecifiedBenchmarks(&rep);
  auto get = [&](const std::string& prefix) {
    for (auto& [name, t] : rep.ms)
      if (name.rfind(prefix, 0) == 0) return t;
    return 0.0;
  };
  double open = get("BM_OpenVelmora"), read = get("BM_ReadShapelib");
  double save = get("BM_SaveVelmora"), write = get("BM_WriteShapelib");
  if (open > 0 && read > 0)
    std::printf("open speed-up over SHPReadObject loop: %.2fx\n", read / open);
  if (save > 0 && write > 0)
    std::printf("save speed-up over SHPWriteObject loop: %.2fx\n", write / save);
  benchmark::Shutdown();
  return 0;
}
