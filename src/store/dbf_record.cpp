// The record buffer and its way between the dbf, the swap file and the save.
#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "frame/log.h"
#include "model/file_util.h"
#include "model/safe_file.h"
#include "store/dbf_internal.h"
#include "store/dbf_store.h"

namespace velmora {

using namespace dbf;

namespace {

uint64_t DbfOffset(const DbfBlock& b, int row) {
  return uint64_t(row) * uint64_t(RecLen(b)) + uint64_t(HeaderLen(b));
}

uint64_t SwapOffset(const DbfBlock& b, int slot) {
  return uint64_t(slot) * uint64_t(RecLen(b));
}

// The buffer is one byte longer than a record: the next record's flag byte comes along.
size_t BufBytes(const DbfBlock& b) {
  return std::min(b.DbfBuf.size(), size_t(RecLen(b)) + 1);
}

bool InSwap(const DbfBlock& b, int row) {
  return b.SwapOpen && size_t(row) < b.SwapIndex.size() && b.SwapIndex[size_t(row)] != -1;
}

// The user's own temporary folder, where the swap file goes when the layer's folder
// cannot take it (a read-only share, a CD, another user's folder).
std::string UserTempFolder() {
  const char* t = std::getenv("TMPDIR");
  return t && *t ? std::string(t) : std::string("/tmp");
}

bool OpenSwap(Session& s, int lyr) {
  LyrRec& l = s.Lyr[lyr];
  DbfBlock& b = l.Dbf;
  DbfFiles& files = FilesOf(b);
  if (FileMode(s) == WindowedFile::Mode::Read) {
    s.DbfErrText = "swap file: read-only";
    return false;
  }
  std::string folder = FolderOf(l.Fsource.empty() ? files.DbfPath : l.Fsource);
  std::string path = TempName(folder, "qmt");
  if (path.empty()) path = TempName(UserTempFolder(), "qmt");
  if (path.empty()) {
    s.DbfErrText = "swap file: " + ErrnoText(errno ? errno : EACCES);
    return false;
  }
  if (!files.Swap.Open(path, WindowedFile::Mode::ReadWrite)) {
    s.DbfErrText = "swap file " + path + ": " + ErrnoText(files.Swap.Error());
    KillFile(path);
    return false;
  }
  files.SwapPath = path;
  files.SlotRows.clear();
  b.SwapPath = path;
  b.SwapFile = files.Swap.Fd();
  b.SwapOpen = -1;
  b.SwapTop = -1;
  b.SwapIndex.assign(size_t(std::max(b.DbfRecCount, 0)) + 1, -1);
  return true;
}

// The end-of-file byte behind a table's last row, so that other readers see exactly the
// rows its header counts.
constexpr uint8_t kEndOfFile = 0x1A;

} // namespace

void ReadDbfRec(Session& s, int lyr, int row) {
  if (!ValidLyr(s, lyr)) return;
  DbfBlock& b = s.Lyr[lyr].Dbf;
  if (row < 0 || row >= b.DbfRecCount) return; // out of range: the buffer stays
  size_t got = 0;
  if (InSwap(b, row)) {
    b.DbfBufChanged = 0;
    got =
        b.Files->Swap.ReadAt(SwapOffset(b, b.SwapIndex[size_t(row)]), b.DbfBuf.data(), BufBytes(b));
    b.DbfCurRec = row;
  } else {
    if (!EnsureDbfOpen(s, lyr)) return;
    b.DbfBufChanged = 0;
    got = b.Files->Dbf.ReadAt(DbfOffset(b, row), b.DbfBuf.data(), BufBytes(b));
    b.DbfCurRec = row;
    ReleaseIfFrame(s, lyr);
  }
  // The spare byte may lie past the end; a row cut short is a failed read, and shows blank
  // rather than the row before.
  if (got < size_t(RecLen(b)) && got < b.DbfBuf.size()) {
    std::fill(b.DbfBuf.begin() + long(got), b.DbfBuf.end(), uint8_t(' '));
    s.DbfErr = 1;
    s.DbfErrText = "row " + std::to_string(row + 1) + " cannot be read";
  }
}

void WriteDbfRec(Session& s, int lyr, int row) {
  if (!ValidLyr(s, lyr) || row < 0) return;
  DbfBlock& b = s.Lyr[lyr].Dbf;
  if (!EnsureDbfWritable(s, lyr)) {
    s.DbfErr = 1;
    return;
  }
  // The buffer's spare byte is the next row's flag; behind the last row it is the
  // end-of-file byte, which the next row's write then covers.
  size_t n = BufBytes(b);
  if (n == size_t(RecLen(b)) + 1 &&
      (row + 1 >= b.DbfRecCount || int64_t(DbfOffset(b, row + 1)) >= b.Files->Dbf.Size()))
    b.DbfBuf[n - 1] = kEndOfFile;
  if (!b.Files->Dbf.WriteAt(DbfOffset(b, row), b.DbfBuf.data(), n)) {
    s.DbfErr = 1;
    s.DbfErrText = FileNameOf(b.Files->DbfPath) + ": " + ErrnoText(b.Files->Dbf.Error());
    return;
  }
  b.DbfCurRec = row;
  ReleaseIfFrame(s, lyr);
}

void WriteDbfRecSwap(Session& s, int lyr, int row) {
  if (!ValidLyr(s, lyr)) return;
  DbfBlock& b = s.Lyr[lyr].Dbf;
  if (!b.DbfBufChanged || row < 0 || row > b.DbfRecCount) return;
  // A row that does not reach the swap file is lost to the save: the operation is told.
  auto fail = [&] {
    s.DbfErr = 1;
    LogMsg(s, " *** Data Edit " + s.Lyr[lyr].LyrName + " has been canceled *** ");
    LogMsg(s, s.DbfErrText);
  };
  if (!b.SwapOpen && !OpenSwap(s, lyr)) return fail();
  if (b.SwapIndex.size() < size_t(b.DbfRecCount) + 1)
    b.SwapIndex.resize(size_t(b.DbfRecCount) + 1, -1);
  DbfFiles& files = *b.Files;
  int32_t& slot = b.SwapIndex[size_t(row)];
  bool fresh = slot == -1;
  if (fresh) {
    slot = ++b.SwapTop;
    files.SlotRows.push_back(row);
  }
  if (!files.Swap.WriteAt(SwapOffset(b, slot), b.DbfBuf.data(), BufBytes(b))) {
    if (fresh) { // the slot holds nothing: give it back
      slot = -1;
      --b.SwapTop;
      files.SlotRows.pop_back();
    }
    s.DbfErrText = "swap file " + files.SwapPath + ": " + ErrnoText(files.Swap.Error());
    return fail();
  }
  b.DbfChanged = -1;
  s.host->LayerItemChanged(lyr);
  // The control-point table of an image layer moves its points with it.
  if (s.Lyr[lyr].LyrKind == 2 && b.DbfFieldCount >= 5 && s.ControlRowWritten)
    s.ControlRowWritten(s, lyr, row);
}

void AddDbfRec(Session& s, int lyr, int row) {
  if (!ValidLyr(s, lyr) || row < 0) return;
  DbfBlock& b = s.Lyr[lyr].Dbf;
  ClearDbfBuf(s, lyr);
  const int32_t before = b.DbfRecCount;
  if (row >= b.DbfRecCount) {
    b.DbfRecCount = row + 1;
    if (b.SwapOpen) b.SwapIndex.resize(size_t(b.DbfRecCount) + 1, -1);
  }
  s.DbfErr = 0;
  WriteDbfRecSwap(s, lyr, row);
  if (s.DbfErr) b.DbfRecCount = before; // a row in neither file is no row
}

void ClearDbfBuf(Session& s, int lyr) {
  if (!ValidLyr(s, lyr)) return;
  DbfBlock& b = s.Lyr[lyr].Dbf;
  std::fill(b.DbfBuf.begin(), b.DbfBuf.end(), uint8_t(' '));
  b.DbfBufChanged = -1;
}

} // namespace velmora
