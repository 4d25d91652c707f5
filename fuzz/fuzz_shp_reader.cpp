// libFuzzer target of the shapefile reader. The input is split into a .shp and a .shx: the
// first four bytes give the length of the .shp part (modulo what is there), the top bit of
// the fifth byte says whether a .shx is written at all. A file that opens is also saved
// again, so the writer meets whatever the reader let through.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>

#include "model/session.h"
#include "store/shp_store.h"

namespace {

const std::string& Dir() {
  // Never destroyed: the clean-up at exit still needs it.
  static const std::string& dir = *new std::string([] {
    // Memory-backed when there is such a folder: the files are rewritten thousands of
    // times a second.
    char shm[] = "/dev/shm/velmora-fuzz-shp-XXXXXX";
    char tmp[] = "/tmp/velmora-fuzz-shp-XXXXXX";
    const char* d = ::mkdtemp(shm);
    if (!d) d = ::mkdtemp(tmp);
    std::atexit([] {
      for (const char* f : {"f.shp", "f.shx", "out.shp", "out.shx"}) ::unlink((Dir() + f).c_str());
      ::rmdir(Dir().c_str());
    });
    return std::string(d ? d : "/tmp") + "/";
  }());
  return dir;
}

void Put(const std::string& path, const uint8_t* p, size_t n) {
  ::unlink(path.c_str());
  FILE* f = std::fopen(path.c_str(), "wb");
  if (!f) return;
  if (n) std::fwrite(p, 1, n, f);
  std::fclose(f);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 5) return 0;
  uint32_t split;
  std::memcpy(&split, data, 4);
  bool withShx = (data[4] & 0x80) == 0;
  data += 5;
  size -= 5;
  size_t shpLen = size ? split % (size + 1) : 0;
  const std::string shp = Dir() + "f.shp", shx = Dir() + "f.shx";
  Put(shp, data, shpLen);
  if (withShx)
    Put(shx, data + shpLen, size - shpLen);
  else
    ::unlink(shx.c_str());

  // One session for the whole run: its table is costly to build; the row is cleared.
  static velmora::Session s;
  s.Lyr.Resize(1);
  s.LyrCount = 1;
  s.Lyr[1] = velmora::LyrRec{};
  velmora::OpenShp(s, 1, shp);
  if (s.ShpErr == 0) {
    s.Lyr[1].LyrKind = 1;
    int n = s.Lyr[1].Shp.RecCount;
    for (int r = 1; r <= n && r <= 64; ++r) {
      velmora::RecalcRecBox(s, 1, r);
      (void)velmora::RecLength(s, 1, r);
      (void)velmora::RecArea(s, 1, r);
    }
    velmora::SaveShp(s, 1, Dir() + "out.shp");
  }
  s.Lyr[1] = velmora::LyrRec{};
  return 0;
}
