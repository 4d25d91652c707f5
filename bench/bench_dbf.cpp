// The attribute store against shapelib: reading every cell of a large table, and the cost
// of scattered cell edits and their save on tables of different sizes.
#include <benchmark/benchmark.h>
#include <shapefil.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <unistd.h>

#include "model/file_util.h"
#include "model/session.h"
#include "store/dbf_store.h"

using namespace velmora;

namespace {

constexpr int kEdits = 10000;

// The tables made, removed at exit.
struct Made {
  std::map<int, std::string> paths;
  ~Made() {
    for (auto& [rows, path] : paths) {
      std::remove(path.c_str());
      ::rmdir(FolderOf(path).c_str());
    }
  }
};

// A table of `rows` rows written by shapelib, made once per size and process:
// ID C 10, NAME C 24, VAL N 14.4, CNT N 9, DAY D 8, OK L 1.
std::string Table(int rows) {
  static Made made;
  auto it = made.paths.find(rows);
  if (it != made.paths.end()) return it->second;
  char tmpl[] = "/tmp/velmora-bench-dbf-XXXXXX";
  std::string dir = ::mkdtemp(tmpl);
  std::string path = dir + "/t.dbf";
  DBFHandle h = DBFCreate(path.c_str());
  DBFAddField(h, "ID", FTString, 10, 0);
  DBFAddField(h, "NAME", FTString, 24, 0);
  DBFAddField(h, "VAL", FTDouble, 14, 4);
  DBFAddField(h, "CNT", FTInteger, 9, 0);
  DBFAddNativeFieldType(h, "DAY", 'D', 8, 0);
  DBFAddNativeFieldType(h, "OK", 'L', 1, 0);
  char buf[32];
  for (int r = 0; r < rows; ++r) {
    DBFWriteStringAttribute(h, r, 0, std::to_string(r + 1).c_str());
    std::snprintf(buf, sizeof buf, "Street number %d", r % 9973);
    DBFWriteStringAttribute(h, r, 1, buf);
    DBFWriteDoubleAttribute(h, r, 2, (r % 100000) * 1.2345);
    DBFWriteIntegerAttribute(h, r, 3, r % 1000000);
    std::snprintf(buf, sizeof buf, "%04d%02d%02d", 1950 + r % 70, 1 + r % 12, 1 + r % 28);
    DBFWriteAttributeDirectly(h, r, 4, buf);
    DBFWriteLogicalAttribute(h, r, 5, r % 2 ? 'T' : 'F');
  }
  DBFClose(h);
  made.paths[rows] = path;
  return path;
}

struct Layer {
  Session s;
  explicit Layer(const std::string& dbf) {
    s.Lyr.Resize(1);
    s.LyrCount = 1;
    s.Lyr[1].Fsource = ReplaceExt(dbf, "shp");
    s.Lyr[1].LyrKind = 1;
    OpenDbf(s, 1, dbf);
  }
};

void BM_ReadAllVelmora(benchmark::State& st) {
  std::string path = Table(int(st.range(0)));
  Layer l(path);
  if (l.s.DbfErr) st.SkipWithError("open failed");
  const DbfBlock& b = l.s.Lyr[1].Dbf;
  for (auto _ : st) {
    size_t bytes = 0;
    for (int r = 0; r < b.DbfRecCount; ++r) {
      ReadDbfRec(l.s, 1, r);
      for (int f = 1; f <= b.DbfFieldCount; ++f) bytes += GetFieldValue(l.s, 1, f).size();
    }
    benchmark::DoNotOptimize(bytes);
  }
  st.SetItemsProcessed(st.iterations() * b.DbfRecCount * b.DbfFieldCount);
}

void BM_ReadAllShapelib(benchmark::State& st) {
  std::string path = Table(int(st.range(0)));
  DBFHandle h = DBFOpen(path.c_str(), "rb");
  int rows = DBFGetRecordCount(h), fields = DBFGetFieldCount(h);
  for (auto _ : st) {
    size_t bytes = 0;
    for (int r = 0; r < rows; ++r)
      for (int f = 0; f < fields; ++f) bytes += std::strlen(DBFReadStringAttribute(h, r, f));
    benchmark::DoNotOptimize(bytes);
  }
  st.SetItemsProcessed(st.iterations() * rows * fields);
  DBFClose(h);
}

// Row of the i-th edit: a stride prime to the row count, so 10,000 edits hit 10,000 rows.
int EditRow(int i, int rows) {
  return int((long long)i * 7919 % rows);
}

void Edit(Layer& l, int rows, long long round) {
  for (int i = 0; i < kEdits; ++i) {
    int row = EditRow(i, rows);
    ReadDbfRec(l.s, 1, row);
    SetFieldValue(l.s, 1, 3, std::to_string(round * 10000 + i) + ".5");
    WriteDbfRecSwap(l.s, 1, row);
  }
}

// 10,000 scattered cells edited into the swap file; the save is outside the timing.
void BM_EditCells(benchmark::State& st) {
  int rows = int(st.range(0));
  Layer l(Table(rows));
  long long round = 0;
  for (auto _ : st) {
    Edit(l, rows, ++round);
    st.PauseTiming();
    SaveDbf(l.s, 1);
    st.ResumeTiming();
  }
  st.SetItemsProcessed(st.iterations() * kEdits);
}

// The save of those 10,000 edited rows into the dbf.
void BM_SaveEdits(benchmark::State& st) {
  int rows = int(st.range(0));
  Layer l(Table(rows));
  long long round = 1000;
  for (auto _ : st) {
    st.PauseTiming();
    Edit(l, rows, ++round);
    st.ResumeTiming();
    SaveDbf(l.s, 1);
  }
  st.SetItemsProcessed(st.iterations() * kEdits);
}

} // namespace

BENCHMARK(BM_ReadAllVelmora)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadAllShapelib)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_EditCells)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SaveEdits)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
