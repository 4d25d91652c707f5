#pragma once
#include <cstddef>
#include <cstdint>
#include <string>

namespace velmora {

// A picture file opened by GDAL for reading, decoded into 8 bits of red, green and blue.
// Nothing is ever written beside the file.
class GdalPicture {
public:
  GdalPicture() = default;
  GdalPicture(const GdalPicture&) = delete;
  GdalPicture& operator=(const GdalPicture&) = delete;
  ~GdalPicture();

  // Opens a file (a native path) read-only; false with `why`.
  bool Open(const std::string& path, std::string& why);
  int Width() const { return width_; }
  int Height() const { return height_; }
  // Decodes the whole picture into `dst`: top row first, rows `stride` bytes apart, three
  // bytes a pixel in red, green, blue order. False with `why` on a read error.
  bool ReadRgb(uint8_t* dst, size_t stride, std::string& why);

private:
  void* ds_ = nullptr; // GDALDatasetH
  int width_ = 0, height_ = 0;
  std::string path_;
};

// True when GDAL reads TIFF and PNG here.
bool GdalCodecsReady();

} // namespace velmora
