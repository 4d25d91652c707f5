#include "session/lyr_files.h"

#include "model/file_util.h"

namespace velmora {

int FindLyrOnFiles(const Session& s, const std::string& path) {
  const std::string want = UCase(NativePath(ReplaceExt(path, "shp")));
  for (int i = 1; i <= s.LyrCount; ++i) {
    const std::string& src = s.Lyr[i].Fsource;
    if (!src.empty() && UCase(NativePath(ReplaceExt(src, "shp"))) == want) return i;
  }
  return 0;
}

} // namespace velmora
