// libFuzzer target: any bytes as a .dbf; opened, every row and field read, one cell written
// to the swap file and the table closed again. A damaged file must be refused, never read
// out of bounds.
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

#include "frame/lyr_slots.h"
#include "model/file_util.h"
#include "model/session.h"
#include "store/dbf_store.h"

using namespace velmora;

namespace {

// A folder of its own for the run, removed at exit.
struct RunFolder {
  std::string path;
  RunFolder() {
    // In memory where there is such a folder: a disk file system flushes each rewrite.
    char shm[] = "/dev/shm/fuzz-dbf-XXXXXX";
    char tmp[] = "/tmp/fuzz-dbf-XXXXXX";
    const char* d = ::mkdtemp(shm);
    if (!d) d = ::mkdtemp(tmp);
    if (!d) std::abort();
    path = std::string(d) + "/";
  }
  ~RunFolder() {
    std::error_code ec;
    std::filesystem::remove_all(path, ec);
  }
};

const std::string& Folder() {
  static const RunFolder folder;
  return folder.path;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string shp = Folder() + "t.shp";
  if (std::FILE* f = std::fopen((Folder() + "t.dbf").c_str(), "wb")) {
    if (size) std::fwrite(data, 1, size, f);
    std::fclose(f);
  }
  // One session for the whole run; the layer row starts empty for every input.
  static Session s;
  if (s.LyrCount != 1) {
    s.Lyr.Resize(1);
    s.LyrCount = 1;
  }
  ClearLyr(s, 1);
  s.Lyr[1].Fsource = shp;
  s.Lyr[1].LyrKind = 1;
  OpenDbf(s, 1, shp);
  if (s.DbfErr == 0) {
    const DbfBlock& b = s.Lyr[1].Dbf;
    int rows = b.DbfRecCount < 5000 ? b.DbfRecCount : 5000;
    for (int r = 0; r <= rows; ++r) {
      ReadDbfRec(s, 1, r);
      for (int f = -1; f <= b.DbfFieldCount + 1; ++f) {
        std::string v = GetFieldValue(s, 1, f);
        GetFieldName(s, 1, f);
        GetFieldType(s, 1, f);
        if (r == 0 && f >= 0) { // a cell written back: all the value rules run
          SetFieldValue(s, 1, f, v);
          SetFieldValue(s, 1, f, v + "9");
        }
      }
      GetRowText(s, 1);
    }
    WriteDbfRecSwap(s, 1, 0);
    FindField(s, 1, "ID");
  }
  CloseDbf(s, 1);
  return 0;
}
