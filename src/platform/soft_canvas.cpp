#include "platform/soft_canvas.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <new>

namespace velmora {

SoftCanvas::SoftCanvas(int width, int height) {
  if (width <= 0 || height <= 0 || size_t(width) * size_t(height) > (size_t(1) << 26)) return;
  try {
    px_.assign(size_t(width) * size_t(height), 0);
  } catch (const std::bad_alloc&) {
    return;
  }
  w_ = width;
  h_ = height;
}

void SoftCanvas::Clear(Colour c) {
  std::fill(px_.begin(), px_.end(), uint8_t(c ? 1 : 0));
}

void SoftCanvas::SetPen(Colour, int drawMode, int style, int width) {
  penOn_ = style != 5 && drawMode != 11;
  radius_ = std::max(width, 1) / 2.0;
}

void SoftCanvas::SetBrush(Colour, int fillStyle) {
  brushOn_ = fillStyle != 1;
}

void SoftCanvas::Span(int y, double lo, double hi) {
  if (y < 0 || y >= h_ || !(lo <= hi)) return;
  double a = std::max(std::ceil(lo), 0.0), b = std::min(std::floor(hi), double(w_ - 1));
  if (a > b) return;
  uint8_t* row = px_.data() + size_t(y) * size_t(w_);
  std::fill(row + size_t(a), row + size_t(b) + 1, uint8_t(1));
}

// Every centre within the pen's radius of a-b: row by row, the one interval of the convex
// capsule (the two end discs and the band between them).
void SoftCanvas::Segment(PixPt pa, PixPt pb) {
  const double r = radius_;
  const double ax = pa.x, ay = pa.y, dx = double(pb.x) - pa.x, dy = double(pb.y) - pa.y;
  const double len2 = dx * dx + dy * dy, len = std::sqrt(len2);
  int y0 = int(std::floor(std::min(ay, ay + dy) - r)),
      y1 = int(std::ceil(std::max(ay, ay + dy) + r));
  y0 = std::max(y0, 0);
  y1 = std::min(y1, h_ - 1);
  for (int y = y0; y <= y1; ++y) {
    double lo = INFINITY, hi = -INFINITY;
    auto disc = [&](double cx, double cy) {
      double h2 = r * r - (y - cy) * (y - cy);
      if (h2 < 0) return;
      double h = std::sqrt(h2);
      lo = std::min(lo, cx - h);
      hi = std::max(hi, cx + h);
    };
    disc(ax, ay);
    disc(ax + dx, ay + dy);
    if (len2 > 0) {
      // c0 + c1 * x within [lo, hi] for: the projection 0 .. len2, the offset -r*len .. r*len.
      double bl = -INFINITY, bh = INFINITY;
      auto limit = [&](double c0, double c1, double mn, double mx) {
        if (c1 == 0) {
          if (c0 < mn || c0 > mx) bl = INFINITY;
          return;
        }
        double u = (mn - c0) / c1, v = (mx - c0) / c1;
        bl = std::max(bl, std::min(u, v));
        bh = std::min(bh, std::max(u, v));
      };
      double ey = y - ay;
      limit(-ax * dx + ey * dy, dx, 0, len2);
      limit(dx * ey + ax * dy, -dy, -r * len, r * len);
      if (bl <= bh) {
        lo = std::min(lo, bl);
        hi = std::max(hi, bh);
      }
    }
    Span(y, lo, hi);
  }
}

void SoftCanvas::Polyline(const PixPt* pts, size_t n) {
  if (!penOn_ || px_.empty() || n == 0) return;
  if (n == 1) Segment(pts[0], pts[0]);
  for (size_t i = 0; i + 1 < n; ++i) Segment(pts[i], pts[i + 1]);
}

void SoftCanvas::PolyPolygon(const PixPt* pts, const int* counts, size_t rings) {
  if (px_.empty()) return;
  if (brushOn_) {
    int ymin = h_, ymax = -1;
    size_t total = 0;
    for (size_t k = 0; k < rings; ++k) total += size_t(std::max(counts[k], 0));
    for (size_t i = 0; i < total; ++i) {
      ymin = std::min(ymin, pts[i].y);
      ymax = std::max(ymax, pts[i].y);
    }
    ymin = std::max(ymin, 0);
    ymax = std::min(ymax, h_ - 1);
    std::vector<double> xs;
    for (int y = ymin; y <= ymax; ++y) {
      xs.clear();
      size_t at = 0;
      for (size_t k = 0; k < rings; ++k) {
        size_t n = size_t(std::max(counts[k], 0));
        for (size_t i = 0, j = n ? n - 1 : 0; i < n; j = i++) {
          PixPt p = pts[at + i], q = pts[at + j];
          if ((p.y > y) != (q.y > y))
            xs.push_back(p.x + double(q.x - p.x) * (y - p.y) / double(q.y - p.y));
        }
        at += n;
      }
      std::sort(xs.begin(), xs.end());
      for (size_t i = 0; i + 1 < xs.size(); i += 2) Span(y, xs[i], xs[i + 1]);
    }
  }
  // The outline with the pen, as the window's polygons have.
  size_t at = 0;
  for (size_t k = 0; k < rings; ++k) {
    size_t n = size_t(std::max(counts[k], 0));
    Polyline(pts + at, n);
    if (n > 1) Polyline(std::array<PixPt, 2>{pts[at + n - 1], pts[at]}.data(), 2);
    at += n;
  }
}

void SoftCanvas::Rectangle(int x1, int y1, int x2, int y2) {
  if (!brushOn_ && !penOn_) return;
  for (int y = std::min(y1, y2); y < std::max(y1, y2); ++y)
    Span(y, std::min(x1, x2), std::max(x1, x2) - 1);
}

} // namespace velmora
