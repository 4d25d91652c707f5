#include "edit/pick_index.h"

#include <algorithm>
#include <cmath>

namespace velmora {

namespace {

constexpr int kGridFrom = 4096; // layers of fewer records are walked whole
constexpr int kWideCells = 64;  // a record over more cells goes to the wide list

bool Current(const PickGrid& g, const ShpBlock& b) {
  return g.Recs == b.ShpRecs.data() && g.RecCount == b.RecCount && g.Gen == b.BoxGen;
}

void Build(PickGrid& g, const ShpBlock& b) {
  g.Recs = b.ShpRecs.data();
  g.RecCount = b.RecCount;
  g.Gen = b.BoxGen;
  g.Start.clear(), g.Items.clear(), g.Wide.clear();
  double x0 = 0, y0 = 0, x1 = 0, y1 = 0;
  bool any = false;
  for (int i = 1; i <= b.RecCount; ++i) {
    const ShpRecord& r = b.ShpRecs[size_t(i)];
    if (r.ShapeType == 0 || !std::isfinite(r.Xmin + r.Xmax + r.Ymin + r.Ymax)) continue;
    if (!any) x0 = r.Xmin, y0 = r.Ymin, x1 = r.Xmax, y1 = r.Ymax, any = true;
    x0 = std::min(x0, r.Xmin), y0 = std::min(y0, r.Ymin);
    x1 = std::max(x1, r.Xmax), y1 = std::max(y1, r.Ymax);
  }
  // About two records a cell over the data's box.
  const double w = std::max(x1 - x0, 1e-9), h = std::max(y1 - y0, 1e-9);
  const double cells = std::max(1.0, b.RecCount / 2.0);
  g.Cell = std::max(std::sqrt(w * h / cells), std::max(w, h) / 4096);
  g.X0 = x0, g.Y0 = y0;
  g.Nx = int(std::min(4096.0, std::floor(w / g.Cell) + 1));
  g.Ny = int(std::min(4096.0, std::floor(h / g.Cell) + 1));
  auto span = [&](const ShpRecord& r, int& cx0, int& cy0, int& cx1, int& cy1) {
    cx0 = std::clamp(int((r.Xmin - g.X0) / g.Cell), 0, g.Nx - 1);
    cx1 = std::clamp(int((r.Xmax - g.X0) / g.Cell), 0, g.Nx - 1);
    cy0 = std::clamp(int((r.Ymin - g.Y0) / g.Cell), 0, g.Ny - 1);
    cy1 = std::clamp(int((r.Ymax - g.Y0) / g.Cell), 0, g.Ny - 1);
  };
  // Two passes: count, then fill (CSR).
  std::vector<int32_t> count(size_t(g.Nx) * size_t(g.Ny) + 1, 0);
  for (int pass = 0; pass < 2; ++pass) {
    for (int i = 1; i <= b.RecCount; ++i) {
      const ShpRecord& r = b.ShpRecs[size_t(i)];
      if (r.ShapeType == 0) continue;
      if (!std::isfinite(r.Xmin + r.Xmax + r.Ymin + r.Ymax)) {
        if (pass == 0) g.Wide.push_back(i);
        continue;
      }
      int cx0, cy0, cx1, cy1;
      span(r, cx0, cy0, cx1, cy1);
      if (int64_t(cx1 - cx0 + 1) * (cy1 - cy0 + 1) > kWideCells) {
        if (pass == 0) g.Wide.push_back(i);
        continue;
      }
      for (int y = cy0; y <= cy1; ++y)
        for (int x = cx0; x <= cx1; ++x) {
          size_t c = size_t(y) * size_t(g.Nx) + size_t(x);
          if (pass == 0)
            ++count[c + 1];
          else
            g.Items[size_t(g.Start[c] + count[c]++)] = i;
        }
    }
    if (pass == 0) {
      for (size_t c = 1; c < count.size(); ++c) count[c] += count[c - 1];
      g.Start = count;
      g.Items.assign(size_t(count.back()), 0);
      std::fill(count.begin(), count.end(), 0);
    }
  }
}

} // namespace

void PickCandidates(Session& s, int lyr, double l, double b, double r, double t, double margin,
                    std::vector<int>& out) {
  out.clear();
  const ShpBlock& B = s.Lyr[lyr].Shp;
  if (B.RecCount < kGridFrom) {
    for (int i = 1; i <= B.RecCount; ++i) out.push_back(i);
    return;
  }
  auto& grids = s.Edit.PickGrids;
  auto it =
      std::find_if(grids.begin(), grids.end(), [&](const PickGrid& g) { return g.Lyr == lyr; });
  if (it == grids.end()) {
    grids.push_back(PickGrid{});
    it = grids.end() - 1;
    it->Lyr = lyr;
  }
  PickGrid& g = *it;
  if (!Current(g, B)) Build(g, B);
  const double m = std::max(margin, 0.0);
  const int cx0 = std::clamp(int(std::floor((std::min(l, r) - m - g.X0) / g.Cell)), 0, g.Nx - 1);
  const int cx1 = std::clamp(int(std::floor((std::max(l, r) + m - g.X0) / g.Cell)), 0, g.Nx - 1);
  const int cy0 = std::clamp(int(std::floor((std::min(b, t) - m - g.Y0) / g.Cell)), 0, g.Ny - 1);
  const int cy1 = std::clamp(int(std::floor((std::max(b, t) + m - g.Y0) / g.Cell)), 0, g.Ny - 1);
  if (int64_t(cx1 - cx0 + 1) * (cy1 - cy0 + 1) > B.RecCount) { // a box over most of it
    for (int i = 1; i <= B.RecCount; ++i) out.push_back(i);
    return;
  }
  // A pick far outside the data still meets the border cells: the hit test decides.
  for (int y = cy0; y <= cy1; ++y)
    for (int x = cx0; x <= cx1; ++x) {
      size_t c = size_t(y) * size_t(g.Nx) + size_t(x);
      out.insert(out.end(), g.Items.begin() + g.Start[c], g.Items.begin() + g.Start[c + 1]);
    }
  out.insert(out.end(), g.Wide.begin(), g.Wide.end());
  std::sort(out.begin(), out.end());
  out.erase(std::unique(out.begin(), out.end()), out.end());
}

} // namespace velmora
