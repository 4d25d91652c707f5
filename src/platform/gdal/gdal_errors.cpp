#include "platform/gdal/gdal_errors.h"

#include <cctype>

#include <cpl_conv.h>
#include <cpl_error.h>
#include <gdal.h>

namespace velmora {

namespace {

void CPL_STDCALL Collect(CPLErr level, CPLErrorNum, const char* msg) {
  if (level < CE_Failure || !msg) return;
  auto* catcher = static_cast<GdalErrorCatch*>(CPLGetErrorHandlerUserData());
  if (catcher) catcher->Keep(msg);
}

bool LooksShort(std::string m) {
  for (char& c : m) c = char(std::tolower(static_cast<unsigned char>(c)));
  for (const char* word : {"premature end", "read error", "unexpected end", "truncat",
                           "not enough data", "short read", "end of file", "eof"})
    if (m.find(word) != std::string::npos) return true;
  return false;
}

} // namespace

GdalErrorCatch::GdalErrorCatch() {
  CPLPushErrorHandlerEx(Collect, this);
}

GdalErrorCatch::~GdalErrorCatch() {
  CPLPopErrorHandler();
}

void GdalErrorCatch::Keep(const char* msg) {
  if (first_.empty()) first_ = msg;
}

std::string GdalErrorCatch::Why(uint64_t fileSize, const std::string& fallback) const {
  if (LooksShort(first_)) return "truncated at byte " + std::to_string(fileSize);
  return first_.empty() ? fallback : first_;
}

void GdalInit() {
  static const bool done = [] {
    CPLSetConfigOption("GDAL_PAM_ENABLED", "NO");
    CPLSetConfigOption("GDAL_ERROR_ON_LIBJPEG_WARNING", "TRUE");
    GDALSetCacheMax64(GIntBig(64) << 20);
    GDALAllRegister();
    return true;
  }();
  (void)done;
}

} // namespace velmora
