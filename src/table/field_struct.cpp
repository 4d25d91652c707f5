#include "table/field_struct.h"

#include <cstdio>

#include "frame/busy.h"
#include "frame/log.h"
#include "frame/lyr_slots.h"
#include "model/file_util.h"
#include "model/safe_file.h"
#include "store/dbf_store.h"

namespace velmora {

namespace {

constexpr int kMaxFields = 255;   // the field count is one byte
constexpr int kMaxRecLen = 32767; // the record length is a signed 16-bit word
constexpr const char* kOp = "Add Field";

std::string StoredName(const DbfField& f) {
  std::string n;
  for (char c : f.FieldName) {
    if (c == '\0') break;
    n += c;
  }
  return n;
}

void DropWorkTable(Session& s, int w, const std::string& tmp, const std::string& tmpDbf) {
  CloseDbf(s, w);
  ClearLyr(s, w);
  KillFile(tmpDbf);
  KillFile(tmp);
}

} // namespace

bool AddFieldToLyr(Session& s, int lyr, const std::string& name, char typeLetter, int width,
                   int decimals) {
  if (lyr < 1 || lyr > s.LyrCount || !s.Lyr[lyr].Dbf.DbfExists) return false;
  const DbfBlock& d = s.Lyr[lyr].Dbf;
  const int oldFields = d.DbfFieldCount;
  if (Trim(name).empty() || width < 1 || width > 255 || decimals < 0 || decimals >= width ||
      oldFields >= kMaxFields || d.DbfRecLen + width > kMaxRecLen) {
    LogMsg(s, " *** " + std::string(kOp) + " " + s.Lyr[lyr].LyrName + " has been canceled *** ");
    return false;
  }

  RunningFunction rf(s, lyr, kOp);
  if (!rf.Started()) return false;

  // The new structure in a work slot: the old fields with their stored names, then the new.
  const int w = FindFreeWorkLyr(s);
  LyrLock(s, w, true, kOp);
  InitDbf(s, w);
  for (int f = 1; f <= oldFields; ++f) {
    const DbfField& fd = s.Lyr[lyr].Dbf.DbfFields[size_t(f)];
    AddField(s, w, StoredName(fd), fd.FieldType, fd.FieldLength, fd.FieldDecimals);
  }
  AddField(s, w, name, typeLetter, width, decimals);

  const std::string source = s.Lyr[lyr].Fsource;
  const std::string tmp = TempName(FolderOf(NativePath(source)), "qmt");
  const std::string tmpDbf = ChangeExt(tmp, "dbf");
  if (!tmp.empty()) CreateDbf(s, w, tmpDbf);
  if (tmp.empty() || s.DbfErr) {
    DropWorkTable(s, w, tmp, tmpDbf);
    rf.Finish(false);
    LogMsg(s, " *** " + std::string(kOp) + " " + s.Lyr[lyr].LyrName + " has been canceled *** ");
    return false;
  }

  // The layer's number may change while the function yields: rf.Layer() follows it.
  const int rows = s.Lyr[lyr].Dbf.DbfRecCount;
  for (int row = 0; row < rows; ++row) {
    lyr = rf.Layer();
    ReadDbfRec(s, lyr, row);
    ClearDbfBuf(s, w);
    for (int f = 0; f <= oldFields; ++f) {
      std::string v = GetFieldValue(s, lyr, f);
      // A blank cell stays blank: a number written from it would read as 0.
      if (f > 0 && Trim(v).empty()) continue;
      SetFieldValue(s, w, f, v);
    }
    WriteDbfRec(s, w, row);
    if (s.DbfErr || rf.Step(row + 1, rows)) {
      if (s.DbfErr) {
        rf.Finish(false);
        LogMsg(s, " *** " + std::string(kOp) + " " + s.Lyr[rf.Layer()].LyrName +
                      " has been canceled *** ");
      }
      DropWorkTable(s, w, tmp, tmpDbf);
      return false;
    }
  }
  SetDbfRecCount(s, w, rows);
  const bool written = s.DbfErr == 0;
  CloseDbf(s, w);
  ClearLyr(s, w);
  lyr = rf.Layer();
  // The new table reaches the disk before it takes the old one's name.
  if (!written || !SyncFile(tmpDbf)) {
    KillFile(tmpDbf);
    KillFile(tmp);
    rf.Finish(false);
    LogMsg(s, " *** " + std::string(kOp) + " " + s.Lyr[lyr].LyrName + " has been canceled *** ");
    return false;
  }

  // The rebuilt table holds the unsaved rows of the swap file too, so the swap goes. The
  // rename replaces the old file in one step; should it fail, the new table stays beside it.
  const std::string dbfPath = ReplaceExt(source, "dbf");
  CloseDbf(s, lyr);
  bool moved = std::rename(NativePath(tmpDbf).c_str(), NativePath(dbfPath).c_str()) == 0;
  if (!moved) KillFile(tmpDbf);
  KillFile(tmp);
  OpenDbf(s, lyr, source);
  if (!moved || s.DbfErr) {
    rf.Finish(false);
    LogMsg(s, " *** " + std::string(kOp) + " " + s.Lyr[lyr].LyrName + " has been canceled *** ");
    return false;
  }
  rf.Finish();
  return true;
}

} // namespace velmora
