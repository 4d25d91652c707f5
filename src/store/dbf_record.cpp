// The record buffer and its way between the dbf, the swap file and the save.
#include <algorithm>

#include "model/file_util.h"
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

bool OpenSwap(Session& s, int lyr) {
  LyrRec& l = s.Lyr[lyr];
  DbfBlock& b = l.Dbf;
  DbfFiles& files = FilesOf(b);
  std::string folder = FolderOf(l.Fsource.empty() ? files.DbfPath : l.Fsource);
  std::string path = TempName(folder, "qmt");
  if (path.empty()) return false;
  if (!files.Swap.Open(path, FileMode(s))) {
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

} // namespace

void ReadDbfRec(Session& s, int lyr, int row) {
  if (!ValidLyr(s, lyr)) return;
  DbfBlock& b = s.Lyr[lyr].Dbf;
  if (row < 0 || row >= b.DbfRecCount) return; // out of range: the buffer stays
  if (InSwap(b, row)) {
    b.DbfBufChanged = 0;
    b.Files->Swap.ReadAt(SwapOffset(b, b.SwapIndex[size_t(row)]), b.DbfBuf.data(), BufBytes(b));
    b.DbfCurRec = row;
    return;
  }
  if (!EnsureDbfOpen(s, lyr)) return;
  b.DbfBufChanged = 0;
  b.Files->Dbf.ReadAt(DbfOffset(b, row), b.DbfBuf.data(), BufBytes(b));
  b.DbfCurRec = row;
  ReleaseIfFrame(s, lyr);
}

void WriteDbfRec(Session& s, int lyr, int row) {
  if (!ValidLyr(s, lyr) || row < 0) return;
  DbfBlock& b = s.Lyr[lyr].Dbf;
  if (!EnsureDbfOpen(s, lyr) ||
      !b.Files->Dbf.WriteAt(DbfOffset(b, row), b.DbfBuf.data(), BufBytes(b))) {
    s.DbfErr = 1;
    return;
  }
  b.DbfCurRec = row;
  ReleaseIfFrame(s, lyr);
}

void WriteDbfRecSwap(Session& s, int lyr, int row) {
  if (!ValidLyr(s, lyr)) return;
  DbfBlock& b = s.Lyr[lyr].Dbf;
  if (!b.DbfBufChanged || row < 0 || row > b.DbfRecCount) return;
  if (!b.SwapOpen && !OpenSwap(s, lyr)) {
    s.DbfErr = 1;
    return;
  }
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
    s.DbfErr = 1;
    return;
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
  if (row >= b.DbfRecCount) {
    b.DbfRecCount = row + 1;
    if (b.SwapOpen) b.SwapIndex.resize(size_t(b.DbfRecCount) + 1, -1);
  }
  WriteDbfRecSwap(s, lyr, row);
}

void ClearDbfBuf(Session& s, int lyr) {
  if (!ValidLyr(s, lyr)) return;
  DbfBlock& b = s.Lyr[lyr].Dbf;
  std::fill(b.DbfBuf.begin(), b.DbfBuf.end(), uint8_t(' '));
  b.DbfBufChanged = -1;
}

} // namespace velmora
