#pragma once
#include <cstdint>

namespace velmora {

// The image block of a layer row: the picture, the world-file values, the TIFF state.
struct ImgBlock {
  int32_t PicHandle = 0;
  int16_t ImgRectified = 0;
  int16_t WorldChanged = 0;
  int16_t ImgChanged = 0;
};

} // namespace velmora
