// The table window itself on the 1,000,000-row layer of table_layer.h: made, filled and
// shown, and a page scrolled through its scroller (offscreen). Peer: none beyond the goals
// of the table (open under 100 ms, a page under 16 ms); scripts/bench-table reports them.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QScrollBar>
#include <random>

#include "frame/lyr_slots.h"
#include "platform/qt/qt_host.h"
#include "session/layer_life.h"
#include "session/map_init.h"
#include "table_layer.h"
#include "ui/table_window.h"

using namespace velmora;
using namespace velmora::bench;

namespace {

QApplication& App() {
  static int argc = 1;
  static char name[] = "bench_table_window";
  static char* argv[] = {name, nullptr};
  static QApplication* app = new QApplication(argc, argv);
  return *app;
}

struct Opened {
  QtHost host;
  Session s{host};
  int lyr = 0;
  Opened() {
    MapInit(s);
    AddShape(s, Source(), false);
    lyr = FindLyrByFile(s, Source());
  }
  ~Opened() { CloseAllLyrs(s); }
};

void BM_OpenTableWindow(benchmark::State& state) {
  App();
  if (Source().empty()) return state.SkipWithError("ogr2ogr failed");
  Opened o;
  long long grown = 0;
  for (auto _ : state) {
    const long long before = Rss();
    auto* t = new TableWindow(o.s, o.lyr);
    t->resize(900, 700);
    t->show();
    QApplication::processEvents();
    grown = std::max(grown, Rss() - before);
    state.PauseTiming();
    t->close();
    delete t;
    QApplication::processEvents();
    state.ResumeTiming();
  }
  state.counters["rss_growth_kB"] = double(grown) / 1024;
}
BENCHMARK(BM_OpenTableWindow)->Unit(benchmark::kMillisecond);

void BM_ScrollTableWindow(benchmark::State& state) {
  App();
  if (Source().empty()) return state.SkipWithError("ogr2ogr failed");
  Opened o;
  auto* t = new TableWindow(o.s, o.lyr);
  t->resize(900, 700);
  t->show();
  QApplication::processEvents();
  std::mt19937 rng(9);
  std::uniform_int_distribution<int> at(1, 999000);
  for (auto _ : state) {
    t->Scroller()->setValue(at(rng));
    t->repaint();
  }
  delete t;
}
BENCHMARK(BM_ScrollTableWindow)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
