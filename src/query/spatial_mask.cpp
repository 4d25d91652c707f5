// The raster mask: a picture of one feature, drawn thick, that rejects far points with one
// pixel read.
#include <cmath>

#include "platform/soft_canvas.h"
#include "query/spatial_walk.h"

namespace velmora {

using namespace spatial;

namespace {

constexpr int kMaskSide = 1000;

} // namespace

void BuildMask(Session& s, int layer, int feature, double tol) {
  FreeMask(s);
  RasterMask& m = s.Loc.Mask;
  const ShpRecord* r = Feat(s, layer, feature);
  if (!s.Loc.MaskOn || !r || !std::isfinite(tol) || tol < 0) return;
  Box b = BoxOf(*r);
  double w = b.x2 - b.x1, h = b.y2 - b.y1;
  if (!std::isfinite(w) || !std::isfinite(h)) return;
  double cell = Max(w, h) / kMaskSide;
  if (!(cell > 0)) return; // a single point: nothing to spare
  double pen = Min(double(kMaskSide), tol / cell * 3 + 5);
  // The pen must reach every point within tol of the feature, with room for the rounding
  // of vertices to pixels; a tolerance too large for that leaves the mask off.
  if (pen / 2 < tol / cell + 2) return;
  m.MaskCell = cell;
  m.Left = b.x1;
  m.Top = b.y2;
  m.Width = int(w / cell) + 2;
  m.Height = int(h / cell) + 2;
  SoftCanvas c(m.Width, m.Height);
  if (!c.Ok()) return;
  c.Clear(0);
  c.SetPen(1, 13, 0, int(pen));
  c.SetBrush(1, 0);
  Family f = FamilyOf(r->ShapeType);
  std::vector<PixPt> pts;
  std::vector<int> counts;
  for (const ShpPart& part : r->Parts()) {
    auto v = Live(part);
    if (v.empty()) continue;
    size_t from = pts.size();
    for (const XY& q : v) {
      XY centre{(q.X - m.Left) / cell - 0.5, (m.Top - q.Y) / cell - 0.5};
      pts.push_back({int(std::lround(centre.X)), int(std::lround(centre.Y))});
    }
    if (f == kMulti) {
      for (size_t i = from; i < pts.size(); ++i) c.Polyline(&pts[i], 1);
    } else if (f != kGon) {
      c.Polyline(pts.data() + from, pts.size() - from);
    }
    counts.push_back(int(pts.size() - from));
  }
  if (f == kGon) c.PolyPolygon(pts.data(), counts.data(), counts.size());
  // A pixel counts as reached when it or a neighbour was: the slack for rounding. The 3 by
  // 3 neighbourhood as a row pass, then a column pass.
  const auto& px = c.Pixels();
  const size_t W = size_t(m.Width), H = size_t(m.Height);
  std::vector<uint8_t> rows(W * H, 0);
  for (size_t y = 0; y < H; ++y)
    for (size_t x = 0; x < W; ++x)
      rows[y * W + x] =
          px[y * W + x] | (x > 0 ? px[y * W + x - 1] : 0) | (x + 1 < W ? px[y * W + x + 1] : 0);
  m.Covered.assign(W * H, 0);
  for (size_t y = 0; y < H; ++y)
    for (size_t x = 0; x < W; ++x)
      m.Covered[y * W + x] = rows[y * W + x] | (y > 0 ? rows[(y - 1) * W + x] : 0) |
                             (y + 1 < H ? rows[(y + 1) * W + x] : 0);
  m.MaskLyr = layer;
  m.MaskRec = feature;
  m.Active = true;
}

void FreeMask(Session& s) {
  RasterMask& m = s.Loc.Mask;
  m.Active = false;
  m.MaskLyr = m.MaskRec = 0;
  m.Covered.clear();
}

bool MaskRejects(const Session& s, int layer, int feature, XY p) {
  const RasterMask& m = s.Loc.Mask;
  if (!m.Active || m.MaskLyr != layer || m.MaskRec != feature) return false;
  double fx = std::floor((p.X - m.Left) / m.MaskCell), fy = std::floor((m.Top - p.Y) / m.MaskCell);
  if (!(fx >= 1 && fy >= 1 && fx <= kMaskSide && fy <= kMaskSide)) return false;
  PixPt q{int(fx), int(fy)};
  if (q.x >= m.Width || q.y >= m.Height) return false;
  return !m.Covered[size_t(q.y) * size_t(m.Width) + size_t(q.x)];
}

} // namespace velmora
