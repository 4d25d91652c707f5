// The save of a layer's table: the old .dbf copied to a new file with the edited rows from
// the swap file put in, which replaces the old one only once it is complete.
#include <algorithm>
#include <cerrno>
#include <unistd.h>

#include "model/safe_file.h"
#include "store/dbf_internal.h"
#include "store/dbf_store.h"
#include "store/file_copy.h"

namespace velmora {

using namespace dbf;

namespace {

// The byte behind the last row of every table written here.
constexpr uint8_t kEndOfFile = 0x1A;

bool PWriteAll(int fd, const uint8_t* p, size_t n, uint64_t at) {
  while (n > 0) {
    ssize_t w = ::pwrite(fd, p, n, off_t(at));
    if (w < 0 && errno == EINTR) continue;
    if (w <= 0) {
      if (w == 0) errno = ENOSPC;
      return false;
    }
    p += w;
    n -= size_t(w);
    at += uint64_t(w);
  }
  return true;
}

// Puts the rows held in the swap file into the new table, in runs of neighbouring rows.
bool PutSwapRows(DbfBlock& b, int fd, std::string& why) {
  std::vector<int32_t> rows = b.Files->SlotRows;
  std::sort(rows.begin(), rows.end());
  const size_t len = size_t(RecLen(b));
  const size_t kRun = std::max<size_t>(1, (1u << 20) / len);
  std::vector<uint8_t> run;
  int32_t first = -1, count = 0;
  auto flush = [&]() {
    if (count == 0) return true;
    uint64_t at = uint64_t(HeaderLen(b)) + uint64_t(first) * len;
    bool ok = PWriteAll(fd, run.data(), size_t(count) * len, at);
    count = 0;
    if (!ok) why = ErrnoText(errno);
    return ok;
  };
  for (int32_t row : rows) {
    if (row < 0 || row >= b.DbfRecCount || size_t(row) >= b.SwapIndex.size()) continue;
    int32_t slot = b.SwapIndex[size_t(row)];
    if (slot < 0) continue;
    if (count > 0 && (row != first + count || size_t(count) == kRun) && !flush()) return false;
    if (count == 0) first = row;
    run.resize((size_t(count) + 1) * len);
    uint8_t* dst = run.data() + size_t(count) * len;
    if (b.Files->Swap.ReadAt(uint64_t(slot) * len, dst, len) != len) {
      why = "the swap file of the edits cannot be read";
      return false;
    }
    ++count;
  }
  return flush();
}

} // namespace

bool WriteDbfFile(Session& s, int lyr, SafeFileSet& files) {
  if (!ValidLyr(s, lyr)) return true;
  DbfBlock& b = s.Lyr[lyr].Dbf;
  if (!b.DbfChanged) return true;
  if (!EnsureDbfOpen(s, lyr)) {
    files.Fail((b.Files ? b.Files->DbfPath : s.Lyr[lyr].LyrName) + ": cannot be read");
    return false;
  }
  const std::string target = b.Files->DbfPath;
  int fd = files.Open(target);
  if (fd < 0) {
    ReleaseIfFrame(s, lyr);
    return false;
  }
  const uint64_t dataEnd = uint64_t(HeaderLen(b)) + uint64_t(b.DbfRecCount) * uint64_t(RecLen(b));
  const int64_t oldSize = b.Files->Dbf.Size();
  std::string why;
  bool ok = oldSize >= 0 &&
            CopyFileBytes(b.Files->Dbf.Fd(), fd, std::min(uint64_t(oldSize), dataEnd), why);
  if (ok && b.SwapOpen && b.Files->Swap.IsOpen()) ok = PutSwapRows(b, fd, why);
  if (ok) {
    uint32_t n = uint32_t(b.DbfRecCount);
    uint8_t count[4] = {uint8_t(n), uint8_t(n >> 8), uint8_t(n >> 16), uint8_t(n >> 24)};
    // The rows end where the header says, with the end-of-file byte behind them.
    ok = PWriteAll(fd, count, 4, 4) && PWriteAll(fd, &kEndOfFile, 1, dataEnd) &&
         ::ftruncate(fd, off_t(dataEnd + 1)) == 0;
    if (!ok) why = ErrnoText(errno);
  }
  ReleaseIfFrame(s, lyr);
  if (!ok) files.Fail(target + ": " + (why.empty() ? ErrnoText(EIO) : why));
  return ok;
}

void ApplyDbfSaved(Session& s, int lyr) {
  if (!ValidLyr(s, lyr)) return;
  DbfBlock& b = s.Lyr[lyr].Dbf;
  if (!b.DbfChanged) return;
  // The file open so far is the old one; the new one is opened for reading, as at the open.
  b.DbfOpen = 0;
  if (b.Files && b.Files->Dbf.Open(b.Files->DbfPath, WindowedFile::Mode::Read)) {
    b.DbfFile = b.Files->Dbf.Fd();
    b.DbfOpen = -1;
  }
  b.DbfChanged = 0;
  CloseSwap(s, lyr);
  ReleaseIfFrame(s, lyr);
  s.host->LayerItemChanged(lyr);
}

void SaveDbf(Session& s, int lyr) {
  if (!ValidLyr(s, lyr) || !s.Lyr[lyr].Dbf.DbfChanged) return;
  SafeFileSet files;
  if (WriteDbfFile(s, lyr, files) && files.Commit())
    ApplyDbfSaved(s, lyr);
  else
    s.DbfErr = 1;
}

} // namespace velmora
