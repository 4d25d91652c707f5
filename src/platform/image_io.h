#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace velmora {

// A device-independent copy of a picture's pixels: rows bottom-up, three bytes a pixel
// (blue, green, red), each row padded to a multiple of four bytes.
struct DibBits {
  int Width = 0, Height = 0;
  std::vector<uint8_t> Bits;
  int Stride() const { return (Width * 3 + 3) & ~3; }
};

// The bytes of a picture of width by height pixels at three bytes a pixel, rows padded to
// four bytes: what holding it costs.
inline uint64_t DibBytes(int64_t width, int64_t height) {
  if (width <= 0 || height <= 0) return 0;
  return ((uint64_t(width) * 3 + 3) & ~uint64_t(3)) * uint64_t(height);
}

// The grey of a value on the ramp from `lo` (black) to `hi` (white); 0 when the range is
// a single value.
inline uint8_t GreyRamp(double v, double lo, double hi) {
  if (!(hi > lo)) return 0;
  double g = (v - lo) / (hi - lo) * 255.0 + 0.5;
  return g <= 0 ? 0 : g >= 255 ? 255 : uint8_t(g);
}

// The pictures of a session, named by handles. The window's implementation decodes every
// format GDAL reads and encodes BMP, JPEG, PNG and TIFF; without one, no picture loads.
class ImageIO {
public:
  virtual ~ImageIO() = default;
  // True when the TIFF and PNG codecs are present.
  virtual bool CodecsReady() const { return false; }
  // Loads a picture file; 0 when it can't be decoded, with `why` ("unsupported compression
  // ...", "truncated at byte ...", "... needs N MB ...").
  virtual int Load(const std::string& path, std::string& why) {
    (void)path;
    why = "no picture decoder";
    return 0;
  }
  // A picture made from pixels; 0 on failure.
  virtual int FromBits(const DibBits& bits) {
    (void)bits;
    return 0;
  }
  virtual bool GetBits(int handle, DibBits& out) {
    (void)handle, (void)out;
    return false;
  }
  virtual bool SetBits(int handle, const DibBits& bits) {
    (void)handle, (void)bits;
    return false;
  }
  virtual int Width(int handle) const {
    (void)handle;
    return 0;
  }
  virtual int Height(int handle) const {
    (void)handle;
    return 0;
  }
  // Writes the picture to `path` by the MIME type ("image/jpeg", "image/tiff", "image/png",
  // "image/gif", "image/bmp"); JPEG takes the quality. False with `why`.
  virtual bool Save(int handle, const std::string& path, const std::string& mime, int quality,
                    std::string& why) {
    (void)handle, (void)path, (void)mime, (void)quality;
    why = "no picture encoder";
    return false;
  }
  virtual void Free(int handle) { (void)handle; }
};

} // namespace velmora
