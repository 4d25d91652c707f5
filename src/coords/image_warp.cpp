#include "coords/image_warp.h"

#include <cmath>

namespace velmora {

namespace {

// The target column or row of a world coordinate, truncated; -1 when off the picture.
int Cell(double v, int size) {
  if (!(v > -1 && v < size)) return -1; // also NaN and infinities
  int i = int(v);                       // truncation, as a whole-number conversion does
  return i >= 0 && i < size ? i : -1;
}

} // namespace

void WarpImage(const Session& s, const CoordConv& c, const BgrImage& src, const WorldExtent& ext,
               BgrImage& dst, WorldExtent& outExt, const std::function<bool(int)>& step) {
  const int W = src.W, H = src.H;
  dst.W = W, dst.H = H;
  dst.Bits.assign(size_t(W) * size_t(H) * 3, 0xff);
  if (W <= 0 || H <= 0 || src.Bits.size() < size_t(W) * size_t(H) * 3) return;

  const double sx = (ext.Right - ext.Left) / W, sy = (ext.Top - ext.Bottom) / H;
  XY tl = ConvertPoint(s, c, XY{ext.Left, ext.Top});
  XY br = ConvertPoint(s, c, XY{ext.Right, ext.Bottom});
  const double X1 = tl.X, Y1 = tl.Y, X2 = br.X, Y2 = br.Y;
  const double tx = (X2 - X1) / W, ty = (Y1 - Y2) / H;
  outExt = WorldExtent{X1, Y1, X2, Y2};

  const size_t stride = size_t(W) * 3;
  for (int r = 0; r < H; ++r) {
    const uint8_t* srow = src.Bits.data() + size_t(H - 1 - r) * stride;
    for (int col = 0; col <= W - 3; ++col) {
      XY p = ConvertPoint(s, c, XY{ext.Left + col * sx, ext.Top - r * sy});
      int px = Cell((p.X - X1) / tx, W);
      int py = Cell((Y1 - p.Y) / ty, H);
      if (px < 0 || py < 0) continue;
      uint8_t* drow = dst.Bits.data() + size_t(H - 1 - py) * stride;
      for (int k = 0; k < 3 && px + k < W; ++k) {
        const uint8_t* from = srow + size_t(col + k) * 3;
        uint8_t* to = drow + size_t(px + k) * 3;
        to[0] = from[0], to[1] = from[1], to[2] = from[2];
      }
    }
    if (step && step(r)) break;
  }
}

bool ConvertImgCoords(Session& /*s*/, int /*lyr*/, const CoordConv& /*c*/,
                      const std::function<bool(int)>& /*step*/) {
  // The image store does not yet hand out its pixels; see the contract in the header.
  return false;
}

} // namespace velmora
