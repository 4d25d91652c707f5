// Whole tables made from others: new tables from field lists, "Save Dbf As" and
// "Clean DBF File".
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "frame/busy.h"
#include "frame/log.h"
#include "frame/lyr_slots.h"
#include "frame/refusal_log.h"
#include "model/companion_file.h"
#include "model/file_util.h"
#include "store/codepage.h"
#include "store/dbf_internal.h"
#include "store/dbf_store.h"
#include "store/file_copy.h"

namespace velmora {

using namespace dbf;

namespace {

constexpr int kRowsPerStep = 256; // rows between two yields of a long copy

// Appends field `f` of `src` to the table of `dst` with its name bytes as they are.
void CopyFieldDef(Session& s, int src, int f, int dst) {
  const DbfField sf = s.Lyr[src].Dbf.DbfFields[size_t(f)];
  AddField(s, dst, "", sf.FieldType, sf.FieldLength, sf.FieldDecimals);
  DbfBlock& d = s.Lyr[dst].Dbf;
  DbfField& df = d.DbfFields[d.DbfFieldCount];
  df.FieldName = {};
  std::copy(sf.FieldName.begin(), sf.FieldName.begin() + 10, df.FieldName.begin());
}

void CopyAllFieldDefs(Session& s, int src, int dst) {
  for (int f = 1; f <= s.Lyr[src].Dbf.DbfFieldCount; ++f) CopyFieldDef(s, src, f, dst);
}

// A .cpg beside a table whose code page is the layer's own, so that other programs read
// its text as this one does.
void WriteCpg(const std::string& path, int page) {
  if (!page) return;
  std::string cpg = ReplaceExt(path, "cpg");
  if (std::FILE* f = std::fopen(NativePath(cpg).c_str(), "wb")) {
    std::string t = CpgTextOf(page);
    std::fwrite(t.data(), 1, t.size(), f);
    std::fclose(f);
  }
}

void CopyCells(Session& s, int src, int dst) {
  for (int f = 0; f <= s.Lyr[src].Dbf.DbfFieldCount; ++f)
    SetFieldValue(s, dst, f, GetFieldValue(s, src, f));
}

bool RecDeleted(const Session& s, int lyr, int rec) {
  const auto& recs = s.Lyr[lyr].Shp.ShpRecs;
  return size_t(rec) < recs.size() && recs[size_t(rec)].ShapeType == 0;
}

// A work slot for the output table, named after the layer for the log.
int TakeSlot(Session& s, int lyr) {
  int slot = FindFreeWorkLyr(s);
  ClearLyr(s, slot);
  s.Lyr[slot].LyrName = s.Lyr[lyr].LyrName;
  return slot;
}

} // namespace

void NewDbfFrom(Session& s, int srcLyr, int dstLyr, const std::string& path, int mode) {
  if (!ValidLyr(s, srcLyr) || !ValidLyr(s, dstLyr)) {
    s.DbfErr = 1;
    return;
  }
  int page = s.Lyr[srcLyr].Dbf.CodePage;
  InitDbf(s, dstLyr);
  s.Lyr[dstLyr].Dbf.CodePage = page;
  for (int f = 1; f <= s.Lyr[srcLyr].Dbf.DbfFieldCount; ++f)
    if (mode == -1 || FindField(s, dstLyr, GetFieldName(s, srcLyr, f)) < 1)
      CopyFieldDef(s, srcLyr, f, dstLyr);
  CreateDbf(s, dstLyr, path);
  if (!s.DbfErr) WriteCpg(path, page);
}

void NewDbfMerged(Session& s, int lyr, const std::string& path) {
  if (!ValidLyr(s, lyr)) {
    s.DbfErr = 1;
    return;
  }
  InitDbf(s, lyr);
  for (int i = 1; i <= s.LyrCount; ++i) {
    const LyrRec& l = s.Lyr[i];
    bool selected = std::any_of(l.SelBits.begin(), l.SelBits.end(), [](uint8_t b) { return b; });
    if (i == lyr || !l.DVisable || l.LyrKind != 1 || !l.Dbf.DbfExists || !selected) continue;
    for (int f = 1; f <= l.Dbf.DbfFieldCount; ++f)
      if (FindField(s, lyr, GetFieldName(s, i, f)) < 1) CopyFieldDef(s, i, f, lyr);
  }
  CreateDbf(s, lyr, path);
}

namespace {

// A new empty table file of a unique name in `folder`, for the slot to write into; "" on
// failure.
std::string ScratchTable(const std::string& folder) {
  for (int attempt = 0; attempt < 100; ++attempt) {
    std::string tmp = TempName(folder, "qmt");
    if (tmp.empty()) return "";
    std::string dbf = ChangeExt(tmp, "dbf");
    int fd = ::open(NativePath(dbf).c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0644);
    int err = errno;
    KillFile(tmp);
    if (fd >= 0) {
      ::close(fd);
      return dbf;
    }
    if (err != EEXIST) return "";
  }
  return "";
}

// The table the slot wrote, as the contents of `fd` in the set.
bool TakeScratch(const std::string& scratch, int fd, SafeFileSet& files) {
  int src = ::open(NativePath(scratch).c_str(), O_RDONLY | O_CLOEXEC);
  struct stat st {};
  std::string why = ErrnoText(errno);
  bool ok = src >= 0 && ::fstat(src, &st) == 0 && CopyFileBytes(src, fd, uint64_t(st.st_size), why);
  if (src >= 0) ::close(src);
  if (!ok) files.Fail(scratch + ": " + why);
  return ok;
}

// Writes the rows of `lyr` chosen by `keep` through work slot `slot` into a scratch table
// beside `target`, then into `fd`. Blank rows stand for features past the table's end.
template <typename Keep>
bool CopyRowsInto(Session& s, int lyr, int slot, RunningFunction& rf, const std::string& target,
                  int fd, SafeFileSet& files, Keep keep) {
  std::string scratch = ScratchTable(FolderOf(target));
  if (scratch.empty()) {
    files.Fail(FolderOf(target) + ": " + ErrnoText(errno ? errno : EACCES));
    return false;
  }
  s.DbfErr = 0;
  CreateDbf(s, slot, scratch);
  bool ok = s.DbfErr == 0;
  int n = s.Lyr[lyr].Shp.RecCount, written = 0;
  for (int row = 0; ok && row < n; ++row) {
    if (keep(row)) {
      if (row >= s.Lyr[lyr].Dbf.DbfRecCount)
        ClearDbfBuf(s, lyr);
      else
        ReadDbfRec(s, lyr, row);
      CopyCells(s, lyr, slot);
      WriteDbfRec(s, slot, written++);
      ok = s.DbfErr == 0;
    }
    if (ok && (row + 1) % kRowsPerStep == 0 && rf.Step(row + 1, n)) {
      files.Fail("terminated");
      ok = false;
    }
  }
  int err = errno;
  if (ok) SetDbfRecCount(s, slot, written);
  ok = ok && s.DbfErr == 0;
  if (!ok && s.DbfErr) files.Fail(target + ": " + ErrnoText(err ? err : EIO));
  CloseDbf(s, slot);
  ok = ok && TakeScratch(scratch, fd, files);
  KillFile(scratch);
  return ok;
}

// Starts a copy of the layer's table into work slot `slot`: its field table and code page.
void StartCopy(Session& s, int lyr, int slot) {
  int page = s.Lyr[lyr].Dbf.CodePage;
  InitDbf(s, slot);
  s.Lyr[slot].Dbf.CodePage = page;
  CopyAllFieldDefs(s, lyr, slot);
}

} // namespace

bool WriteDbfAs(Session& s, int lyr, const std::string& path, SafeFileSet& files) {
  if (!ValidLyr(s, lyr) || !s.Lyr[lyr].Dbf.DbfExists) return true;
  std::string target = CompanionPath(path, "dbf");
  int fd = files.Open(target);
  if (fd < 0) return false;
  int page = s.Lyr[lyr].Dbf.CodePage;
  if (page) {
    int cpg = files.Open(CompanionPath(path, "cpg"));
    if (cpg < 0 || !files.Write(cpg, CpgTextOf(page))) return false;
  }
  int slot = TakeSlot(s, lyr);
  RunningFunction rf(s, slot, "Save Dbf As");
  if (!rf.Started()) {
    files.Fail("busy");
    return false;
  }
  StartCopy(s, lyr, slot);
  bool ok = CopyRowsInto(s, lyr, slot, rf, target, fd, files, [](int) { return true; });
  rf.Finish(false);
  ClearLyr(s, slot);
  return ok;
}

void SaveDbfAs(Session& s, int lyr, const std::string& path) {
  if (!ValidLyr(s, lyr) || !s.Lyr[lyr].Dbf.DbfExists) return;
  SafeFileSet files;
  if (WriteDbfAs(s, lyr, path, files) && files.Commit()) {
    LogMsg(s, "Save Dbf As " + s.Lyr[lyr].LyrName);
  } else {
    s.DbfErr = 1;
    LogCanceled(s, "Save Dbf As " + s.Lyr[lyr].LyrName, files.Error());
  }
}

bool WriteDbfClean(Session& s, int lyr, const std::string& path, SafeFileSet& files,
                   std::string& target) {
  if (!ValidLyr(s, lyr)) return false;
  target = CompanionPath(path.empty() ? s.Lyr[lyr].Fsource : path, "dbf");
  int fd = files.Open(target);
  if (fd < 0) return false;
  int slot = TakeSlot(s, lyr);
  RunningFunction rf(s, slot, "Clean DBF File");
  if (!rf.Started()) {
    files.Fail("busy");
    return false;
  }
  StartCopy(s, lyr, slot);
  bool ok = CopyRowsInto(s, lyr, slot, rf, target, fd, files,
                         [&](int row) { return !RecDeleted(s, lyr, row + 1); });
  rf.Finish(false);
  ClearLyr(s, slot);
  return ok;
}

void ApplyDbfCleaned(Session& s, int lyr, const std::string& target) {
  CloseDbf(s, lyr);
  OpenDbf(s, lyr, target);
  InitDataUndo(s, lyr); // the rows have new numbers
}

void CleanDbf(Session& s, int lyr, const std::string& path) {
  if (!ValidLyr(s, lyr)) return;
  SafeFileSet files;
  std::string target;
  if (WriteDbfClean(s, lyr, path, files, target) && files.Commit()) {
    ApplyDbfCleaned(s, lyr, target);
    LogMsg(s, "Clean DBF File " + s.Lyr[lyr].LyrName);
  } else {
    s.DbfErr = 1;
    LogCanceled(s, "Clean DBF File " + s.Lyr[lyr].LyrName, files.Error());
  }
}

} // namespace velmora
