// The editor on the 600,000-line layer of the render benchmark (two vertices a line over
// 100,000 by 50,000 units, drawn at 1363 by 723 pixels): a hover test at the pointer, a
// pick across layers, one drag step of a vertex with the overlay redrawn, and beside them
// a full redraw of the map.
#include <benchmark/benchmark.h>

#include <QImage>
#include <random>

#include "edit/drag_ops.h"
#include "edit/hit_test.h"
#include "frame/lyr_slots.h"
#include "model/session.h"
#include "platform/qt/qt_canvas.h"
#include "store/shp_store.h"
#include "view/map_draw.h"
#include "view/map_tools.h"

using namespace velmora;

namespace {

constexpr int kLines = 600'000;

Session& Data() {
  static Session* s = [] {
    auto* p = new Session;
    Session& s = *p;
    s.Lyr.Resize(1);
    s.LyrCount = 1;
    SetLyrDefaults(s, 1);
    LyrRec& L = s.Lyr[1];
    L.LyrKind = 1;
    L.Shp.ShpType = 3;
    ReserveRecs(s, 1, kLines);
    std::mt19937 rng(1);
    std::uniform_real_distribution<double> ux(0, 100000), uy(0, 50000), ud(-80, 80);
    for (int i = 1; i <= kLines; ++i) {
      AddRec(s, 1);
      double x = ux(rng), y = uy(rng);
      AddVertex(s, 1, i, 0, x, y, 0, 0);
      AddVertex(s, 1, i, 0, x + ud(rng), y + ud(rng), 0, 0);
    }
    RecalcExtent(s, 1);
    s.MapView.ViewW = 1363, s.MapView.ViewH = 723;
    s.MapView.MapFactor = 100000.0 / 1363;
    s.MapView.MapLeft = 0, s.MapView.MapRight = 100000;
    s.MapView.MapTop = 50000, s.MapView.MapBottom = 50000 - 723 * s.MapView.MapFactor;
    s.View.ClipLeft = s.MapView.MapLeft, s.View.ClipRight = s.MapView.MapRight;
    s.View.ClipTop = s.MapView.MapTop, s.View.ClipBottom = s.MapView.MapBottom;
    return p;
  }();
  return *s;
}

// The picked feature and its first vertex in pixels.
void PickFeature(Session& s, int f, double& px, double& py) {
  const XY v = s.Lyr[1].Shp.ShpRecs[size_t(f)].Part(0).PartPoints()[0];
  s.Edit.EditHit = {2, 1, 0, 1, 3, f, 0, 0, 0, 0, v.X, v.Y};
  px = PixX(s, v.X), py = PixY(s, v.Y);
}

void BM_HoverTest(benchmark::State& st) {
  Session& s = Data();
  double px, py;
  int f = 1;
  for (auto _ : st) {
    s.MapView.MapTool = 11;
    PickFeature(s, f, px, py);
    benchmark::DoNotOptimize(HoverTest(s, px + 1, py));
    f = (f - 1 + 7919) % kLines + 1;
  }
}
BENCHMARK(BM_HoverTest)->Unit(benchmark::kMicrosecond);

void BM_PickLayers(benchmark::State& st) {
  Session& s = Data();
  std::mt19937 rng(2);
  std::uniform_int_distribution<int> x(0, 1362), y(0, 722);
  for (auto _ : st) {
    s.MapView.MapTool = 11;
    SetPickBox(s, x(rng), y(rng));
    benchmark::DoNotOptimize(PickLayers(s, false));
  }
}
BENCHMARK(BM_PickLayers)->Unit(benchmark::kMicrosecond);

void BM_DragStep(benchmark::State& st) {
  Session& s = Data();
  QImage overlay(1363, 723, QImage::Format_ARGB32_Premultiplied);
  double px, py;
  s.MapView.MapTool = 15;
  PickFeature(s, 12345, px, py);
  StartVertexDrag(s, px, py, 0);
  int step = 0;
  for (auto _ : st) {
    ++step;
    VertexDragStep(s, WorldX(s, px + step % 50), WorldY(s, py + step % 30), 0);
    overlay.fill(Qt::transparent);
    QtCanvas c(overlay);
    for (const HitRec& h : s.Edit.MoveList) DrawEditFeature(s, c, h.HitLyr, h.HitFeature, -1, -1);
    c.End();
  }
  CancelDrag(s);
}
BENCHMARK(BM_DragStep)->Unit(benchmark::kMicrosecond);

void BM_FullRedraw(benchmark::State& st) {
  Session& s = Data();
  QImage img(1363, 723, QImage::Format_RGB32);
  for (auto _ : st) {
    img.fill(Qt::white);
    QtCanvas c(img);
    MapDraw(s, 0, 2, &c, {});
    c.End();
  }
  // The share of the view that the lines inked, so that a redraw that drew nothing shows.
  long inked = 0;
  for (int y = 0; y < img.height(); ++y)
    for (int x = 0; x < img.width(); ++x) inked += img.pixel(x, y) != 0xffffffffu;
  st.counters["inked"] = double(inked) / (img.width() * img.height());
}
BENCHMARK(BM_FullRedraw)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
