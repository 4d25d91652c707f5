#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace velmora {

// The image block of a layer row. The picture lives with the platform's image store and
// is named here by its handle; its pixels are copied out only while an operation runs.
struct ImgBlock {
  int32_t ImgPic = 0;       // picture handle; 0 none
  int16_t ImgOpen = 0;      // -1 once the picture and frame stand
  int16_t ImgRectified = 0; // -1 while the extent comes from control points
  double WorldLeft = 0, WorldTop = 0, WorldRight = 0, WorldBottom = 0;
  int32_t ImgWidth = 0, ImgHeight = 0;
  int16_t HasWorld = 0;
  int16_t WorldChanged = 0;
  int16_t ImgChanged = 0;
};

// The session's TIFF reader state, overwritten by each read.
struct TiffState {
  int16_t TiffErr = 0;
  int16_t TiffHasGeo = 0;
  int32_t TiffWidth = 0, TiffHeight = 0, TiffBits = 0, TiffCompression = 0;
  int32_t TiffPhotometric = 0, TiffFillOrder = 0;
  std::vector<uint32_t> TiffStrips{0}, TiffStripBytes{0};
  int32_t TiffStripCount = 0, TiffSamples = 0, TiffRowsPerStrip = 0, TiffResUnit = 0;
  std::string TiffSoftware, TiffDateTime, TiffDocName, TiffDescription;
  int32_t TiffSampleFormat = 0, TiffOrientation = 0, TiffPlanar = 0;
  double TiffXRes = 0, TiffYRes = 0;
  double TiffScale[3] = {0, 0, 0};
  double TiffTie[6] = {0, 0, 0, 0, 0, 0};
  std::vector<uint16_t> TiffGeoKeys;
  uint8_t TiffBytesPerPixel = 0;
};

} // namespace velmora
