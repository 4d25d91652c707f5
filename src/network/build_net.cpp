#include "network/build_net.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <vector>

#include "frame/busy.h"
#include "frame/log.h"
#include "frame/refusal_log.h"
#include "model/safe_file.h"
#include "network/net_files.h"
#include "query/spatial.h"
#include "store/shp_access.h"

namespace velmora {

namespace {

bool IsLineType(int t) {
  return t == 3 || t == 13 || t == 23;
}

// A grid over the boxes of the live features: the candidates of a box query, a superset of
// the features whose boxes meet it. Features spanning many cells stand in one list apart.
class BoxGrid {
public:
  explicit BoxGrid(const std::vector<ShpRecord>& recs, int count) {
    double x0 = INFINITY, y0 = INFINITY, x1 = -INFINITY, y1 = -INFINITY;
    double span = 0;
    int live = 0;
    for (int j = 1; j <= count; ++j) {
      const ShpRecord& r = recs[size_t(j)];
      if (!Usable(r)) continue;
      x0 = std::min(x0, r.Xmin), y0 = std::min(y0, r.Ymin);
      x1 = std::max(x1, r.Xmax), y1 = std::max(y1, r.Ymax);
      span += std::max(r.Xmax - r.Xmin, r.Ymax - r.Ymin);
      ++live;
    }
    if (live == 0) return;
    x0_ = x0, y0_ = y0;
    const double w = x1 - x0, h = y1 - y0;
    double cell = std::sqrt(std::max(w * h, 0.0) / live);
    cell = std::max(cell, 2 * span / live); // about two features' size
    if (!(cell > 0) || !std::isfinite(cell)) cell = std::max(std::max(w, h), 1.0);
    nx_ = int(std::clamp(w / cell + 1, 1.0, 4096.0));
    ny_ = int(std::clamp(h / cell + 1, 1.0, 4096.0));
    cellW_ = std::max(w / nx_, cell), cellH_ = std::max(h / ny_, cell);
    if (!(cellW_ > 0) || !std::isfinite(cellW_)) cellW_ = 1;
    if (!(cellH_ > 0) || !std::isfinite(cellH_)) cellH_ = 1;
    start_.assign(size_t(nx_) * ny_ + 1, 0);
    for (int pass = 0; pass < 2; ++pass) {
      if (pass == 1) {
        for (size_t c = 1; c < start_.size(); ++c) start_[c] += start_[c - 1];
        items_.resize(size_t(start_.back()));
        fill_.assign(start_.begin(), start_.end() - 1);
      }
      for (int j = 1; j <= count; ++j) {
        const ShpRecord& r = recs[size_t(j)];
        if (!Usable(r)) continue;
        int cx0, cx1, cy0, cy1;
        Cells(r.Xmin, r.Ymin, r.Xmax, r.Ymax, cx0, cy0, cx1, cy1);
        if (long(cx1 - cx0 + 1) * (cy1 - cy0 + 1) > 64) {
          if (pass == 0) big_.push_back(j);
          continue;
        }
        for (int cy = cy0; cy <= cy1; ++cy)
          for (int cx = cx0; cx <= cx1; ++cx) {
            const size_t c = size_t(cy) * nx_ + size_t(cx);
            if (pass == 0)
              ++start_[c + 1];
            else
              items_[size_t(fill_[c]++)] = j;
          }
      }
    }
  }

  // The candidates for the box, in ascending order, without repeats.
  void Query(double l, double b, double r, double t, std::vector<int>& out, std::vector<int>& stamp,
             int mark) const {
    out.clear();
    if (nx_ == 0) return;
    int cx0, cx1, cy0, cy1;
    Cells(l, b, r, t, cx0, cy0, cx1, cy1);
    for (int cy = cy0; cy <= cy1; ++cy)
      for (int cx = cx0; cx <= cx1; ++cx) {
        const size_t c = size_t(cy) * nx_ + size_t(cx);
        for (int k = start_[c]; k < start_[c + 1]; ++k) {
          const int j = items_[size_t(k)];
          if (stamp[size_t(j)] != mark) stamp[size_t(j)] = mark, out.push_back(j);
        }
      }
    for (int j : big_)
      if (stamp[size_t(j)] != mark) stamp[size_t(j)] = mark, out.push_back(j);
    std::sort(out.begin(), out.end());
  }

private:
  double x0_ = 0, y0_ = 0, cellW_ = 1, cellH_ = 1;
  int nx_ = 0, ny_ = 0;
  std::vector<int> start_, items_, fill_, big_;

  static bool Usable(const ShpRecord& r) {
    return r.ShapeType != 0 && !std::isnan(r.Xmin) && !std::isnan(r.Ymin) && !std::isnan(r.Xmax) &&
           !std::isnan(r.Ymax);
  }
  // Cell numbers grow with the coordinate, so every box that meets the query shares a cell
  // with it; coordinates off the grid fall into its edge cells.
  static int CellOf(double v, double o, double size, int n) {
    double c = std::floor((v - o) / size);
    if (!(c >= 0)) return 0;
    return c > n - 1 ? n - 1 : int(c);
  }
  void Cells(double l, double b, double r, double t, int& cx0, int& cy0, int& cx1, int& cy1) const {
    cx0 = CellOf(std::min(l, r), x0_, cellW_, nx_), cx1 = CellOf(std::max(l, r), x0_, cellW_, nx_);
    cy0 = CellOf(std::min(b, t), y0_, cellH_, ny_), cy1 = CellOf(std::max(b, t), y0_, cellH_, ny_);
  }
};

// The box of a feature's vertices, as its segments are tested.
struct VertexBox {
  double l = INFINITY, b = INFINITY, r = -INFINITY, t = -INFINITY;
  explicit VertexBox(const ShpRecord& rec) {
    for (const ShpPart& p : rec.Parts()) {
      auto P = p.PartPoints();
      for (size_t v = 0, n = shpio::LiveCount(p); v < n; ++v) {
        l = std::min(l, P[v].X), r = std::max(r, P[v].X);
        b = std::min(b, P[v].Y), t = std::max(t, P[v].Y);
      }
    }
  }
  // Can segment a-b cross within tol any segment inside the box? The same comparisons as
  // the range tests of the crossing, so no crossing is ever missed.
  bool Meets(XY a, XY c, double tol) const {
    return std::min(a.X, c.X) <= r + tol && l - tol <= std::max(a.X, c.X) &&
           std::min(a.Y, c.Y) <= t + tol && b - tol <= std::max(a.Y, c.Y);
  }
};

} // namespace

bool BuildNet(Session& s, int lyr, double tolerance, NetProgress* progress) {
  if (lyr < 1 || lyr > s.LyrCount || s.Lyr[lyr].LyrKind != 1) return false;
  const std::string name = s.Lyr[lyr].LyrName;
  RunningFunction rf(s, lyr, "Build Shortest path Network", name);
  if (!rf.Started()) return false;
  const int count = s.Lyr[lyr].Shp.RecCount;
  auto show = [&](long long v, const std::string& text) {
    if (progress) {
      progress->Value(v);
      progress->Text(text);
    } else {
      s.host->FuncText(text);
    }
  };
  if (progress) {
    progress->Range(count + 1LL);
    progress->Value(0);
    progress->Text(name);
    progress->Show(true);
  }
  if (!IsLineType(s.Lyr[lyr].Shp.ShpType)) {
    if (progress) progress->Show(false);
    rf.Finish(false);
    return false;
  }
  const double tol = tolerance;
  std::string net, ntx;
  ntx.reserve(size_t(count) * kNtxRowBytes);
  std::vector<int> cand, stamp(size_t(count) + 1, 0);
  int64_t R = 0;
  bool terminated = false;
  {
    int cur = lyr;
    const std::vector<ShpRecord>* recs = &s.Lyr[lyr].Shp.ShpRecs;
    BoxGrid grid(*recs, count);
    auto last = std::chrono::steady_clock::now();
    for (int i = 1; i <= count; ++i) {
      const ShpRecord& ri = (*recs)[size_t(i)];
      const size_t rowAt = ntx.size();
      AppendNtxRow(ntx, int32_t(R * kNetRecBytes), 0);
      int32_t C = 0;
      grid.Query(ri.Xmin - tol, ri.Ymin - tol, ri.Xmax + tol, ri.Ymax + tol, cand, stamp, i);
      const VertexBox vb(ri);
      for (int j : cand) {
        const ShpRecord& rj = (*recs)[size_t(j)];
        if (!(ri.Xmax + tol >= rj.Xmin && ri.Ymin - tol <= rj.Ymax && ri.Xmin - tol <= rj.Xmax &&
              ri.Ymax + tol >= rj.Ymin))
          continue;
        if (rj.ShapeType == 0 || j == i) continue;
        for (const ShpPart& p : rj.Parts()) {
          auto P = p.PartPoints();
          for (size_t k = 1, n = shpio::LiveCount(p); k < n; ++k) {
            if (!vb.Meets(P[k - 1], P[k], tol)) continue;
            CrossResult& x = s.Loc.Cross;
            if (!FeatureCrossSeg(s, cur, i, P[k - 1], P[k], &x, tol, 0, 0)) continue;
            AppendNetLink(net, NetLink{j, x.CrossX, x.CrossY, x.HitVertex + 1});
            ++R, ++C;
          }
        }
      }
      std::memcpy(ntx.data() + rowAt + 4, &C, 4);
      // The loop yields to the window a few times a second; the files do not depend on it.
      if ((i & 255) == 0 || i == count ||
          std::chrono::steady_clock::now() - last > std::chrono::milliseconds(30)) {
        show(i,
             std::to_string(R) + "  Intersection Points have been Built successfully in " + name);
        if (rf.Step(i, count + 1LL)) {
          terminated = !rf.Gone();
          if (rf.Gone()) return false;
          break;
        }
        last = std::chrono::steady_clock::now();
        cur = rf.Layer();
        recs = &s.Lyr[cur].Shp.ShpRecs;
      }
    }
  }
  const int at = rf.Layer();
  const LyrRec& l = s.Lyr[at];
  SafeFileSet files;
  const int fdNet = files.Open(NetPathOf(l));
  const int fdNtx = fdNet < 0 ? -1 : files.Open(NtxPathOf(l));
  const bool ok = fdNet >= 0 && fdNtx >= 0 && files.Write(fdNet, net) && files.Write(fdNtx, ntx) &&
                  files.Commit();
  if (progress) progress->Show(false);
  rf.Finish(false);
  if (!ok) {
    LogCanceled(s, "Building Shortest Path NetWork", files.Error());
    return false;
  }
  // A network loaded from the old files is stale now.
  s.Lyr[at].Net.NetNodes = NetNodeTable{};
  if (terminated)
    LogMsg(s, " *** Building Shortest Path NetWork has been canceled *** ");
  else
    LogMsg(s, "Building Shortest Path NetWork for Layer " + name);
  return true;
}

} // namespace velmora
