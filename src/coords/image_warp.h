#pragma once
#include <cstdint>
#include <functional>
#include <vector>

#include "coords/coord_conv.h"

namespace velmora {

class RunningFunction;

// A 24-bit picture as the image store keeps it: rows bottom-up, 3 bytes a pixel in blue,
// green, red order, W * 3 bytes a row.
struct BgrImage {
  int W = 0, H = 0;
  std::vector<uint8_t> Bits;
};

struct WorldExtent {
  double Left = 0, Top = 0, Right = 0, Bottom = 0;
};

// Warps `src`, placed at `ext`, into a picture of the same size in the other system of `c`.
// Forward warp: each source pixel column step c (0 .. W - 3) of each row is transformed and
// the three source pixels c, c + 1, c + 2 are written to the target pixel it lands on and the
// two to its right; the rest stays white. `step(row)` runs once per row and returns true to
// stop there. `dst` and `outExt` get the target picture and its extent.
void WarpImage(const Session& s, const CoordConv& c, const BgrImage& src, const WorldExtent& ext,
               BgrImage& dst, WorldExtent& outExt, const std::function<bool(int)>& step);

// The raster side of a layer conversion: reads the image of the function's layer, warps it
// with WarpImage (one Step of `rf` a row) and puts the picture and the extent (X1, Y2, X2,
// Y1 as left, bottom, right, top) in place as the layer's image. False, with the layer as
// it was, when the image store gives no pixels or the layer went away meanwhile.
bool ConvertImgCoords(Session& s, RunningFunction& rf, const CoordConv& c);

} // namespace velmora
