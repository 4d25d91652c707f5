#include "coords/image_warp.h"

#include <algorithm>

#include "frame/busy.h"
#include "platform/image_io.h"
#include "view/raster_layer.h"

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

bool ConvertImgCoords(Session& s, RunningFunction& rf, const CoordConv& c) {
  ImageIO* io = s.host->Images();
  LyrRec& l = s.Lyr[rf.Layer()]; // only until the warp yields
  const int pic = l.Img.ImgPic;
  DibBits dib;
  if (!io || !pic || !io->GetBits(pic, dib)) return false;
  // The store's rows are padded to four bytes; the warp's are not.
  BgrImage src;
  src.W = dib.Width, src.H = dib.Height;
  src.Bits.resize(size_t(src.W) * 3 * size_t(src.H));
  for (int y = 0; y < src.H; ++y)
    std::copy_n(&dib.Bits[size_t(y) * size_t(dib.Stride())], size_t(src.W) * 3,
                &src.Bits[size_t(y) * size_t(src.W) * 3]);
  WorldExtent ext{LeftExtend(l), TopExtend(l), RightExtend(l), BottomExtend(l)};
  BgrImage dst;
  WorldExtent out;
  // Progress in hundredths of the picture's rows.
  const long long rows = std::max(1, src.H);
  s.host->Progress(0, 100);
  WarpImage(s, c, src, ext, dst, out,
            [&rf, rows](int row) { return rf.Step(int((row + 1) * 100 / rows), 100); });
  if (rf.Gone() || dst.W != dib.Width || dst.H != dib.Height) return false;
  const int lyr = rf.Layer();
  if (s.Lyr[lyr].Img.ImgPic != pic) return false;
  for (int y = 0; y < dst.H; ++y)
    std::copy_n(&dst.Bits[size_t(y) * size_t(dst.W) * 3], size_t(dst.W) * 3,
                &dib.Bits[size_t(y) * size_t(dib.Stride())]);
  if (!io->SetBits(pic, dib)) return false;
  {
    LyrRec& after = s.Lyr[lyr];
    LeftExtend(after) = out.Left, TopExtend(after) = out.Top;
    RightExtend(after) = out.Right, BottomExtend(after) = out.Bottom;
    after.Img.ImgChanged = -1;
    after.Img.WorldChanged = -1;
  }
  RebuildImgFrame(s, lyr);
  return true;
}

} // namespace velmora
