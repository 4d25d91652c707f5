// Whole tables made from others: new tables from field lists, "Save Dbf As" and
// "Clean DBF File".
#include <algorithm>
#include <cstdio>

#include "frame/busy.h"
#include "frame/lyr_slots.h"
#include "model/file_util.h"
#include "store/codepage.h"
#include "store/dbf_internal.h"
#include "store/dbf_store.h"

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

void SaveDbfAs(Session& s, int lyr, const std::string& path) {
  if (!ValidLyr(s, lyr) || !s.Lyr[lyr].Dbf.DbfExists) return;
  int slot = TakeSlot(s, lyr);
  RunningFunction rf(s, slot, "Save Dbf As");
  if (!rf.Started()) return;
  int page = s.Lyr[lyr].Dbf.CodePage;
  InitDbf(s, slot);
  s.Lyr[slot].Dbf.CodePage = page;
  CopyAllFieldDefs(s, lyr, slot);
  CreateDbf(s, slot, path);
  if (s.DbfErr) {
    rf.Finish(false);
    ClearLyr(s, slot);
    return;
  }
  int n = s.Lyr[lyr].Shp.RecCount, written = 0;
  for (int row = 0; row < n; ++row) {
    ReadDbfRec(s, lyr, row);
    CopyCells(s, lyr, slot);
    WriteDbfRec(s, slot, row);
    ++written;
    if ((row + 1) % kRowsPerStep == 0 && rf.Step(row + 1, n)) break;
  }
  SetDbfRecCount(s, slot, written);
  CloseDbf(s, slot);
  WriteCpg(path, page);
  rf.Finish();
  ClearLyr(s, slot);
}

void CleanDbf(Session& s, int lyr, const std::string& path) {
  if (!ValidLyr(s, lyr)) return;
  int slot = TakeSlot(s, lyr);
  RunningFunction rf(s, slot, "Clean DBF File");
  if (!rf.Started()) return;
  int page = s.Lyr[lyr].Dbf.CodePage;
  InitDbf(s, slot);
  s.Lyr[slot].Dbf.CodePage = page;
  CopyAllFieldDefs(s, lyr, slot);

  std::string folder = FolderOf(path.empty() ? s.Lyr[lyr].Fsource : path);
  std::string tmp = TempName(folder, "qmt");
  if (tmp.empty()) {
    rf.Finish(false);
    ClearLyr(s, slot);
    return;
  }
  std::string newDbf = ReplaceExt(tmp, "dbf");
  CreateDbf(s, slot, tmp);
  if (s.DbfErr) {
    KillFile(tmp);
    rf.Finish(false);
    ClearLyr(s, slot);
    return;
  }

  int n = s.Lyr[lyr].Shp.RecCount, written = 0;
  for (int row = 0; row < n; ++row) {
    if (!RecDeleted(s, lyr, row + 1)) {
      if (row >= s.Lyr[lyr].Dbf.DbfRecCount)
        ClearDbfBuf(s, lyr); // more features than rows: a blank row
      else
        ReadDbfRec(s, lyr, row);
      CopyCells(s, lyr, slot);
      WriteDbfRec(s, slot, written++);
    }
    if ((row + 1) % kRowsPerStep == 0 && rf.Step(row + 1, n)) break;
  }
  SetDbfRecCount(s, slot, written);
  CloseDbf(s, slot);
  if (rf.Terminated()) { // the old table stays as it was
    KillFile(newDbf);
    KillFile(tmp);
    rf.Finish();
    ClearLyr(s, slot);
    return;
  }
  rf.Finish();
  ClearLyr(s, slot);

  std::string oldDbf = ReplaceExt(path.empty() ? s.Lyr[lyr].Fsource : path, "dbf");
  CloseDbf(s, lyr);
  KillFile(tmp);
  KillFile(oldDbf);
  std::rename(NativePath(newDbf).c_str(), NativePath(oldDbf).c_str());
  OpenDbf(s, lyr, oldDbf);
  InitDataUndo(s, lyr); // the rows have new numbers
}

} // namespace velmora
