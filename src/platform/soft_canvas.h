#pragma once
#include <cstdint>
#include <vector>

#include "platform/canvas.h"

namespace velmora {

// A monochrome drawing surface in memory with a pixel read: whatever the pen or the brush
// reaches is set. Pixel (x, y) has its centre at the whole coordinate (x, y); a pen of
// width w covers every centre within w / 2 of the line, and a fill covers the centres
// inside the rings (even-odd). Used where the core needs a picture it can read back,
// without a window.
class SoftCanvas : public Canvas {
public:
  // False from Ok() when the size is not positive or too large to allocate.
  SoftCanvas(int width, int height);
  bool Ok() const { return !px_.empty(); }
  bool Pixel(int x, int y) const {
    return x >= 0 && y >= 0 && x < w_ && y < h_ && px_[size_t(y) * size_t(w_) + size_t(x)];
  }
  const std::vector<uint8_t>& Pixels() const { return px_; }

  int Width() const override { return w_; }
  int Height() const override { return h_; }
  void Clear(Colour c) override;
  void SetPen(Colour c, int drawMode, int style, int width) override;
  void SetBrush(Colour c, int fillStyle) override;
  void Polyline(const PixPt* pts, size_t n) override;
  void PolyPolygon(const PixPt* pts, const int* counts, size_t rings) override;
  void Rectangle(int x1, int y1, int x2, int y2) override;
  void Text(int, int, double, const std::string&, const std::string&, int, bool, bool,
            Colour) override {}

private:
  void Segment(PixPt a, PixPt b);
  void Span(int y, double lo, double hi);

  int w_ = 0, h_ = 0;
  std::vector<uint8_t> px_;
  bool penOn_ = true, brushOn_ = true;
  double radius_ = 0.5;
};

} // namespace velmora
