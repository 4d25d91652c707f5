// libFuzzer target of the whole layer open: one input becomes a .shp, a .shx and a .dbf,
// opened together as OPEN LAYER does. The first four bytes give the length of the .shp
// part and the next four that of the .shx part (each modulo what is left); the bits of the
// ninth byte leave out the .shx (1) or the .dbf (2). A layer that opens has every row and
// cell read and one cell edited, and its table is written again by "Save Dbf As", which
// must open again. The user's files must come out of all this byte for byte as they went in.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>

#include "model/file_util.h"
#include "model/session.h"
#include "session/layer_life.h"
#include "store/dbf_store.h"
#include "store/shp_store.h"

namespace {

const std::string& Dir() {
  // Never destroyed: the clean-up at exit still needs it.
  static const std::string& dir = *new std::string([] {
    // Memory-backed when there is such a folder: the files are rewritten thousands of
    // times a second.
    char shm[] = "/dev/shm/velmora-fuzz-layer-XXXXXX";
    char tmp[] = "/tmp/velmora-fuzz-layer-XXXXXX";
    const char* d = ::mkdtemp(shm);
    if (!d) d = ::mkdtemp(tmp);
    if (!d) std::abort();
    std::atexit([] {
      for (const char* f : {"f.shp", "f.shx", "f.dbf", "out.dbf", "out.cpg"})
        ::unlink((Dir() + f).c_str());
      ::rmdir(Dir().c_str());
    });
    return std::string(d) + "/";
  }());
  return dir;
}

void Put(const std::string& path, const uint8_t* p, size_t n) {
  ::unlink(path.c_str());
  FILE* f = std::fopen(path.c_str(), "wb");
  if (!f) std::abort();
  if (n) std::fwrite(p, 1, n, f);
  std::fclose(f);
}

bool Same(const std::string& path, const uint8_t* p, size_t n) {
  FILE* f = std::fopen(path.c_str(), "rb");
  if (!f) return false;
  std::string got;
  char buf[4096];
  size_t k;
  while ((k = std::fread(buf, 1, sizeof buf, f)) > 0) got.append(buf, k);
  std::fclose(f);
  return got.size() == n && (n == 0 || std::memcmp(got.data(), p, n) == 0);
}

// Reads every row and cell (within bounds that keep a run fast) and edits one cell.
void Walk(velmora::Session& s, int n) {
  using namespace velmora;
  const DbfBlock& b = s.Lyr[n].Dbf;
  int rows = b.DbfRecCount < 2000 ? b.DbfRecCount : 2000;
  for (int r = -1; r <= rows; ++r) {
    ReadDbfRec(s, n, r);
    for (int f = -1; f <= b.DbfFieldCount + 1; ++f) GetFieldValue(s, n, f);
    GetRowText(s, n);
  }
  int recs = s.Lyr[n].Shp.RecCount;
  for (int r = 1; r <= recs && r <= 64; ++r) (void)RecArea(s, n, r);
  if (b.DbfFieldCount > 0 && b.DbfRecCount > 0) {
    ReadDbfRec(s, n, 0);
    SetFieldValue(s, n, 1, GetFieldValue(s, n, 1) + "7");
    WriteDbfRecSwap(s, n, 0);
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace velmora;
  if (size < 9) return 0;
  uint32_t a, b;
  std::memcpy(&a, data, 4);
  std::memcpy(&b, data + 4, 4);
  const uint8_t flags = data[8];
  data += 9;
  size -= 9;
  const size_t shpLen = a % (size + 1);
  const size_t shxLen = b % (size - shpLen + 1);
  const uint8_t* shpP = data;
  const uint8_t* shxP = data + shpLen;
  const uint8_t* dbfP = shxP + shxLen;
  const size_t dbfLen = size - shpLen - shxLen;
  const bool withShx = !(flags & 1), withDbf = !(flags & 2);

  const std::string shp = Dir() + "f.shp", shx = Dir() + "f.shx", dbf = Dir() + "f.dbf";
  const std::string out = Dir() + "out.dbf";
  Put(shp, shpP, shpLen);
  if (withShx)
    Put(shx, shxP, shxLen);
  else
    ::unlink(shx.c_str());
  if (withDbf)
    Put(dbf, dbfP, dbfLen);
  else
    ::unlink(dbf.c_str());

  // One session for the whole run: its tables are costly to build; the layers go each time.
  static Session s;
  s.MapView.MapTarget = 1; // the log is written, as in the window
  NewLyrRow(s, shp);
  if (s.LyrCount == 1) {
    Walk(s, 1);
    // Written again when that stays small: a feature count times a record length.
    const int rows = s.Lyr[1].Shp.RecCount;
    const int64_t bytes = int64_t(rows) * uint16_t(s.Lyr[1].Dbf.DbfRecLen);
    if (s.Lyr[1].Dbf.DbfExists && bytes < (4 << 20)) {
      s.DbfErr = 0;
      SaveDbfAs(s, 1, out);
      // What the writer made must read again, with every row it wrote.
      s.Lyr.Resize(2);
      s.LyrCount = 2;
      s.Lyr[2] = LyrRec{};
      s.Lyr[2].Shp.RecCount = rows;
      if (s.DbfErr == 0) {
        OpenDbf(s, 2, out);
        if (s.DbfErr != 0 || s.Lyr[2].Dbf.DbfRecCount != rows) std::abort();
      }
    }
  }
  CloseAllLyrs(s);
  s.CommandBar.clear();
  // Opening never writes the user's files; only a missing table is made.
  if (!Same(shp, shpP, shpLen)) std::abort();
  if (withShx && !Same(shx, shxP, shxLen)) std::abort();
  if (withDbf && !Same(dbf, dbfP, dbfLen)) std::abort();
  ::unlink(out.c_str());
  return 0;
}
