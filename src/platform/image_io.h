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

// The pictures of a session, named by handles. The window's implementation decodes and
// encodes BMP, JPEG, GIF, PNG and TIFF; without one, no picture loads.
class ImageIO {
public:
  virtual ~ImageIO() = default;
  // True when the TIFF and PNG codecs are present.
  virtual bool CodecsReady() const { return false; }
  // Loads a picture file; 0 when it can't be decoded.
  virtual int Load(const std::string& path) {
    (void)path;
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
  // Saves by the MIME type ("image/jpeg", "image/tiff", "image/png", "image/gif",
  // "image/bmp"); JPEG takes the quality.
  virtual bool Save(int handle, const std::string& path, const std::string& mime, int quality) {
    (void)handle, (void)path, (void)mime, (void)quality;
    return false;
  }
  virtual void Free(int handle) { (void)handle; }
};

} // namespace velmora
