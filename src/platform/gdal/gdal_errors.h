#pragma once
#include <cstdint>
#include <string>

namespace velmora {

// Keeps GDAL's messages off the terminal while it lives and holds the first error, so a
// refusal can say why.
class GdalErrorCatch {
public:
  GdalErrorCatch();
  ~GdalErrorCatch();
  GdalErrorCatch(const GdalErrorCatch&) = delete;
  GdalErrorCatch& operator=(const GdalErrorCatch&) = delete;

  // The reason of a failure on a file of `fileSize` bytes: a short read is "truncated at
  // byte N"; else GDAL's first error, or `fallback` when it gave none.
  std::string Why(uint64_t fileSize, const std::string& fallback) const;
  const std::string& First() const { return first_; }
  void Keep(const char* msg);

private:
  std::string first_;
};

// Registers GDAL's drivers once, with its block cache kept small (a picture is read once,
// row band by row band), side-car files off, and libjpeg's warnings taken as errors so a
// cut JPEG is refused rather than shown half grey.
void GdalInit();

} // namespace velmora
