#include "platform/gdal/gdal_picture.h"

#include <cpl_vsi.h>
#include <gdal.h>

#include "platform/gdal/gdal_bands.h"
#include "platform/gdal/gdal_errors.h"

namespace velmora {

namespace {

bool Exists(const std::string& path) {
  VSIStatBufL st;
  return VSIStatL(path.c_str(), &st) == 0;
}

uint64_t FileSize(const std::string& path) {
  VSIStatBufL st;
  return VSIStatL(path.c_str(), &st) == 0 ? uint64_t(st.st_size) : 0;
}

} // namespace

GdalPicture::~GdalPicture() {
  if (ds_) GDALClose(static_cast<GDALDatasetH>(ds_));
}

bool GdalPicture::Open(const std::string& path, std::string& why) {
  GdalInit();
  GdalErrorCatch errors;
  path_ = path;
  uint64_t size = FileSize(path);
  if (size == 0) {
    why = Exists(path) ? "empty file" : "file not found";
    return false;
  }
  GDALDatasetH ds =
      GDALOpenEx(path.c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY, nullptr, nullptr, nullptr);
  if (!ds) {
    why = errors.Why(size, "not a picture format that can be read");
    return false;
  }
  ds_ = ds;
  width_ = GDALGetRasterXSize(ds);
  height_ = GDALGetRasterYSize(ds);
  if (width_ <= 0 || height_ <= 0 || GDALGetRasterCount(ds) < 1) {
    why = "no pixels";
    return false;
  }
  return true;
}

bool GdalPicture::ReadRgb(uint8_t* dst, size_t stride, std::string& why) {
  if (!ds_) {
    why = "not open";
    return false;
  }
  GdalErrorCatch errors;
  if (DecodeRgb(static_cast<GDALDatasetH>(ds_), dst, stride, why)) return true;
  if (why.empty()) why = errors.Why(FileSize(path_), "read error");
  return false;
}

bool GdalCodecsReady() {
  GdalInit();
  return GDALGetDriverByName("GTiff") && GDALGetDriverByName("PNG");
}

} // namespace velmora
