// libFuzzer target of the TIFF directory reader and of the single-band image reader: the
// input is written as a .tif and read as the image layer's open reads it.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

#include "model/session.h"
#include "platform/image_io.h"
#include "view/tiff_dir.h"

namespace {

const std::string& Path() {
  static const std::string& path = *new std::string([] {
    char shm[] = "/dev/shm/velmora-fuzz-tiff-XXXXXX";
    char tmp[] = "/tmp/velmora-fuzz-tiff-XXXXXX";
    const char* d = ::mkdtemp(shm);
    if (!d) d = ::mkdtemp(tmp);
    std::atexit([] {
      ::unlink(Path().c_str());
      std::string dir = Path().substr(0, Path().rfind('/'));
      ::rmdir(dir.c_str());
    });
    return std::string(d ? d : "/tmp") + "/f.tif";
  }());
  return path;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static velmora::Session& s = *new velmora::Session();
  FILE* f = std::fopen(Path().c_str(), "wb");
  if (!f) return 0;
  if (size) std::fwrite(data, 1, size, f);
  std::fclose(f);
  velmora::ReadTiffTags(s, Path());
  velmora::DibBits bits;
  velmora::ReadIdlTiffBits(s, Path(), bits);
  return 0;
}
