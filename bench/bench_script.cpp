// The script host against Python with GDAL's bindings: a script of three field assignments,
// an If and a string function over 1,000,000 records of the same .dbf, and the parse of a
// 1,000-line script. The tables are made at run time in a temporary folder.
#include <benchmark/benchmark.h>
#include <shapefil.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

#include "model/session.h"
#include "session/layer_life.h"
#include "table/run_script.h"
#include "vbs/ast.h"
#include "vbs/interp.h"

using namespace velmora;

namespace {

constexpr int kRows = 1000000;

const char* const kScript = "If VAL > 50000 Then\r\n"
                            "  NAME = UCase(Left(NAME, 10))\r\n"
                            "Else\r\n"
                            "  NAME = Replace(NAME, \"Street\", \"St\")\r\n"
                            "End If\r\n"
                            "VAL = VAL * 2\r\n"
                            "CNT = CNT + 1\r\n";

// The same computation for the peer.
const char* const kPython = R"(import sys, time
from osgeo import ogr
ds = ogr.Open(sys.argv[1], 1)
l = ds.GetLayer(0)
t = time.time()
for f in l:
    val = f.GetFieldAsDouble('VAL')
    name = f.GetFieldAsString('NAME')
    if val > 50000:
        name = name[:10].upper()
    else:
        name = name.replace('Street', 'St')
    f.SetField('NAME', name)
    f.SetField('VAL', val * 2)
    f.SetField('CNT', f.GetFieldAsInteger('CNT') + 1)
    l.SetFeature(f)
ds = None
print(time.time() - t)
)";

struct Dir {
  std::string path;
  Dir() {
    char tmpl[] = "/tmp/velmora-bench-script-XXXXXX";
    path = ::mkdtemp(tmpl);
  }
  ~Dir() { std::filesystem::remove_all(path); }
};

Dir& TheDir() {
  static Dir d;
  return d;
}

// A point layer of kRows records written by shapelib: NAME C 24, VAL N 14.4, CNT N 9.
std::string MakeLayer(const std::string& name) {
  std::string base = TheDir().path + "/" + name;
  SHPHandle shp = SHPCreate(base.c_str(), SHPT_POINT);
  DBFHandle dbf = DBFCreate(base.c_str());
  DBFAddField(dbf, "NAME", FTString, 24, 0);
  DBFAddField(dbf, "VAL", FTDouble, 14, 4);
  DBFAddField(dbf, "CNT", FTInteger, 9, 0);
  char buf[32];
  for (int r = 0; r < kRows; ++r) {
    double x = r % 1000, y = r / 1000;
    SHPObject* o = SHPCreateSimpleObject(SHPT_POINT, 1, &x, &y, nullptr);
    SHPWriteObject(shp, -1, o);
    SHPDestroyObject(o);
    std::snprintf(buf, sizeof buf, "Street number %d", r % 9973);
    DBFWriteStringAttribute(dbf, r, 0, buf);
    DBFWriteDoubleAttribute(dbf, r, 1, (r % 100000) * 1.2345);
    DBFWriteIntegerAttribute(dbf, r, 2, r % 1000000);
  }
  DBFClose(dbf);
  SHPClose(shp);
  return base + ".shp";
}

void BM_RunScript_1M(benchmark::State& state) {
  std::string path = MakeLayer("ours");
  for (auto _ : state) {
    state.PauseTiming();
    Session s;
    AddShape(s, path, false);
    s.Lyr[1].VBScripttext = kScript;
    state.ResumeTiming();
    bool ok = RunScript(s, 1, 0, 0, false);
    state.PauseTiming();
    if (!ok) state.SkipWithError("RunScript failed");
    for (int i = 1; i <= s.LyrCount; ++i) s.Lyr[i].Dbf.DbfChanged = 0; // nothing to save
    CloseAllLyrs(s);
    state.ResumeTiming();
  }
  state.counters["records"] = kRows;
}
BENCHMARK(BM_RunScript_1M)->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();

void BM_PythonGdalPeer_1M(benchmark::State& state) {
  std::string path = MakeLayer("peer");
  std::string py = TheDir().path + "/peer.py";
  std::ofstream(py) << kPython;
  for (auto _ : state) {
    std::string cmd = "/usr/bin/python3 " + py + " " + path.substr(0, path.size() - 4) + ".dbf > " +
                      TheDir().path + "/peer.out";
    auto t0 = std::chrono::steady_clock::now();
    int rc = std::system(cmd.c_str());
    auto t1 = std::chrono::steady_clock::now();
    if (rc != 0) state.SkipWithError("python3 with GDAL failed");
    state.SetIterationTime(std::chrono::duration<double>(t1 - t0).count());
  }
  state.counters["records"] = kRows;
}
BENCHMARK(BM_PythonGdalPeer_1M)->Unit(benchmark::kMillisecond)->Iterations(1)->UseManualTime();

std::string ThousandLines() {
  std::string t = "Option Explicit\r\nDim total, i, s\r\n";
  int lines = 2;
  for (int k = 0; lines < 1000; ++k) {
    t += "Function F" + std::to_string(k) + "(a, b)\r\n";
    t += "  If a > b Then\r\n    F" + std::to_string(k) + " = a & \"-\" & Left(b, 3)\r\n";
    t += "  ElseIf a = b Then\r\n    F" + std::to_string(k) + " = (a + b) * 2 / 3\r\n";
    t += "  Else\r\n    For i = 1 To 10 : total = total + i Mod 3 : Next\r\n  End If\r\n";
    t += "End Function\r\n";
    lines += 9;
  }
  return t;
}

void BM_Parse1000Lines(benchmark::State& state) {
  std::string text = ThousandLines();
  for (auto _ : state) {
    vbs::Program p;
    vbs::Error e;
    bool ok = vbs::Parse(text, p, e);
    benchmark::DoNotOptimize(ok);
    if (!ok) state.SkipWithError("syntax error");
  }
}
BENCHMARK(BM_Parse1000Lines)->Unit(benchmark::kMillisecond);

// The engine alone: a loop of arithmetic, string work and calls.
void BM_EngineLoop(benchmark::State& state) {
  const std::string script = "Function Sq(x)\r\nSq = x * x\r\nEnd Function\r\n"
                             "For i = 1 To 100000\r\n  t = t + Sq(i Mod 10)\r\n"
                             "  If Len(s) > 50 Then s = \"\" Else s = s & \"a\"\r\nNext\r\n";
  for (auto _ : state) {
    vbs::Interp in;
    if (!in.ExecuteStatement(script)) state.SkipWithError("script failed");
  }
  state.SetItemsProcessed(state.iterations() * 100000);
}
BENCHMARK(BM_EngineLoop)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
