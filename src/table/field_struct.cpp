#include "table/field_struct.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdio>

#include "frame/busy.h"
#include "frame/log.h"
#include "frame/lyr_slots.h"
#include "frame/refusal_log.h"
#include "model/file_util.h"
#include "model/safe_file.h"
#include "store/codepage.h"
#include "store/dbf_internal.h"
#include "store/dbf_store.h"
#include "table/table_refresh.h"

namespace velmora {

namespace {

constexpr int kMaxFields = 255;   // the field count is one byte
constexpr int kMaxRecLen = 32767; // the record length is a signed 16-bit word

// A field of the new structure and where its values come from (0: a new, blank field).
struct FieldPlan {
  std::string Name;
  char Type = 'C';
  int Width = 1, Decimals = 0;
  int Src = 0;
  bool Check = false; // values are tested against the new type
};

std::string StoredName(const DbfField& f) {
  std::string n;
  for (char c : f.FieldName) {
    if (c == '\0') break;
    n += c;
  }
  return n;
}

std::vector<FieldPlan> PlanOfLyr(const Session& s, int lyr) {
  std::vector<FieldPlan> plan;
  const DbfBlock& d = s.Lyr[lyr].Dbf;
  const int n = std::min<int>(d.DbfFieldCount, int(d.DbfFields.size()) - 1);
  for (int f = 1; f <= n; ++f) {
    const DbfField& fd = d.DbfFields[size_t(f)];
    plan.push_back({StoredName(fd), fd.FieldType, fd.FieldLength, fd.FieldDecimals, f, false});
  }
  return plan;
}

// The cancel line, and the reason on a line of its own when the disk gave one.
void Refuse(Session& s, const std::string& op, int lyr, const std::string& why = "") {
  LogCanceled(s, op + " " + s.Lyr[lyr].LyrName, why);
}

bool ValidName(const std::string& n) {
  if (n.empty() || n.size() > 10) return false;
  for (char c : n)
    if (!(std::isalnum(uint8_t(c)) || c == '_')) return false;
  return true;
}

bool ValidShape(char type, int width, int decimals) {
  return FieldTypeKnown(type) && width >= 1 && width <= 255 && decimals >= 0 &&
         (decimals == 0 || decimals < width);
}

bool IsNumberText(const Session& s, const std::string& t) {
  bool digit = false;
  for (size_t i = 0; i < t.size(); ++i) {
    const char c = t[i];
    if (std::isdigit(uint8_t(c)))
      digit = true;
    else if (!(c == s.Locale.DecimalSep || ((c == '-' || c == '+') && i == 0)))
      return false;
  }
  return digit;
}

// Writes `v` into the work table's cell; false when it doesn't fit the field.
bool PutChecked(Session& s, int w, int f, const FieldPlan& fp, const std::string& v) {
  const std::string t = Trim(v);
  switch (fp.Type) {
  case 'N':
  case 'F': {
    if (!IsNumberText(s, t)) return false;
    SetFieldValue(s, w, f, t);
    const double want = StrToDbl(s, t), got = StrToDbl(s, GetFieldValue(s, w, f));
    const double tol = 0.5 * std::pow(10.0, -fp.Decimals) * 1.0001 + 1e-9 * std::fabs(want);
    return std::fabs(want - got) <= tol && !Trim(GetFieldValue(s, w, f)).empty();
  }
  case 'D': {
    dbf::DateParts d;
    if (!dbf::ParseDateText(t, s.Locale.ShortDate, d)) return false;
    SetFieldValue(s, w, f, t);
    return true;
  }
  case 'L':
    if (t.empty() || std::string("TtFfYyNn?").find(t[0]) == std::string::npos) return false;
    SetFieldValue(s, w, f, t.substr(0, 1));
    return true;
  default: {
    const int page = s.Lyr[w].Dbf.CodePage ? s.Lyr[w].Dbf.CodePage : s.Locale.CodePage;
    if (EncodeText(page, v).size() > size_t(fp.Width) &&
        EncodeText(page, t).size() > size_t(fp.Width))
      return false;
    SetFieldValue(s, w, f, EncodeText(page, v).size() > size_t(fp.Width) ? t : v);
    return true;
  }
  }
}

void DropWorkTable(Session& s, int w, const std::string& tmp, const std::string& tmpDbf) {
  CloseDbf(s, w);
  ClearLyr(s, w);
  KillFile(tmpDbf);
  KillFile(tmp);
}

// The rebuild: `plan` is the new field table. The layer is busy under `op` throughout.
bool Rebuild(Session& s, int lyr, const std::string& op, const std::vector<FieldPlan>& plan) {
  s.DbfErrText.clear(); // a reason below is this rebuild's own
  if (int(plan.size()) > kMaxFields) {
    Refuse(s, op, lyr);
    return false;
  }
  int recLen = 1;
  for (const FieldPlan& fp : plan) recLen += fp.Width;
  if (recLen > kMaxRecLen) {
    Refuse(s, op, lyr);
    return false;
  }
  FlushTableOf(s, lyr);
  RunningFunction rf(s, lyr, op);
  if (!rf.Started()) return false;

  const int w = FindFreeWorkLyr(s);
  LyrLock(s, w, true, op);
  InitDbf(s, w);
  s.Lyr[w].Dbf.CodePage = s.Lyr[lyr].Dbf.CodePage;
  for (const FieldPlan& fp : plan) AddField(s, w, fp.Name, fp.Type, fp.Width, fp.Decimals);

  const std::string source = s.Lyr[lyr].Fsource;
  const std::string tmp = TempName(FolderOf(NativePath(source)), "qmt");
  const std::string tmpDbf = ChangeExt(tmp, "dbf");
  if (!tmp.empty()) CreateDbf(s, w, tmpDbf);
  if (tmp.empty() || s.DbfErr) {
    DropWorkTable(s, w, tmp, tmpDbf);
    rf.Finish(false);
    Refuse(s, op, lyr, tmp.empty() ? "no temporary file in the layer's folder" : s.DbfErrText);
    return false;
  }

  // The layer's number may change while the function yields: rf.Layer() follows it.
  const int rows = s.Lyr[lyr].Dbf.DbfRecCount;
  long blanked = 0;
  for (int row = 0; row < rows; ++row) {
    lyr = rf.Layer();
    ReadDbfRec(s, lyr, row);
    ClearDbfBuf(s, w);
    SetFieldValue(s, w, 0, GetFieldValue(s, lyr, 0));
    for (size_t i = 0; i < plan.size(); ++i) {
      const FieldPlan& fp = plan[i];
      if (fp.Src < 1) continue;
      std::string v = GetFieldValue(s, lyr, fp.Src);
      // A blank cell stays blank: a number written from it would read as 0.
      if (Trim(v).empty()) continue;
      const int f = int(i) + 1;
      if (!fp.Check) {
        SetFieldValue(s, w, f, v);
      } else if (!PutChecked(s, w, f, fp, v)) {
        SetFieldValue(s, w, f, "");
        ++blanked;
      }
    }
    WriteDbfRec(s, w, row);
    if (s.DbfErr || rf.Step(row + 1, rows)) {
      if (s.DbfErr) {
        rf.Finish(false);
        Refuse(s, op, rf.Layer(), s.DbfErrText);
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
  const bool synced = written && SyncFile(tmpDbf);
  if (!synced) {
    const std::string why = written ? FileNameOf(tmpDbf) + ": " + ErrnoText(errno) : s.DbfErrText;
    KillFile(tmpDbf);
    KillFile(tmp);
    rf.Finish(false);
    Refuse(s, op, lyr, why);
    return false;
  }

  // The rebuilt table holds the unsaved rows of the swap file too, so the swap goes. The
  // rename replaces the old file in one step; should it fail, the new table stays beside it.
  const std::string dbfPath = ReplaceExt(source, "dbf");
  CloseDbf(s, lyr);
  bool moved = std::rename(NativePath(tmpDbf).c_str(), NativePath(dbfPath).c_str()) == 0;
  if (!moved) KillFile(tmpDbf);
  KillFile(tmp);
  const int renameErr = moved ? 0 : errno;
  OpenDbf(s, lyr, source);
  // Cell edits name fields by number, which have moved.
  InitDataUndo(s, lyr);
  if (!moved || s.DbfErr) {
    rf.Finish(false);
    Refuse(s, op, lyr, moved ? s.DbfErrText : FileNameOf(dbfPath) + ": " + ErrnoText(renameErr));
    return false;
  }
  if (blanked > 0)
    LogMsg(s, op + " " + s.Lyr[lyr].LyrName + ": " + std::to_string(blanked) +
                  " values did not fit and were left blank");
  rf.Finish();
  RefTableNo(s, lyr);
  return true;
}

bool Usable(const Session& s, int lyr) {
  return lyr >= 1 && lyr <= s.LyrCount && s.Lyr[lyr].Dbf.DbfExists;
}

} // namespace

bool FieldTypeKnown(char t) {
  return t == 'C' || t == 'N' || t == 'F' || t == 'D' || t == 'L';
}

bool AddFieldToLyr(Session& s, int lyr, const std::string& name, char typeLetter, int width,
                   int decimals) {
  if (!Usable(s, lyr)) return false;
  const std::string op = "Add Field";
  const char type = char(std::toupper(uint8_t(typeLetter)));
  if (type == 'D') width = 8, decimals = 0;
  if (type == 'L') width = 1, decimals = 0;
  const DbfBlock& d = s.Lyr[lyr].Dbf;
  if (Trim(name).empty() || !ValidShape(type, width, decimals) || d.DbfFieldCount >= kMaxFields ||
      d.DbfRecLen + width > kMaxRecLen || FindField(s, lyr, name) > 0) {
    Refuse(s, op, lyr);
    return false;
  }
  std::vector<FieldPlan> plan = PlanOfLyr(s, lyr);
  plan.push_back({Trim(name), type, width, decimals, 0, false});
  return Rebuild(s, lyr, op, plan);
}

bool DeleteFieldOfLyr(Session& s, int lyr, const std::string& name) {
  if (!Usable(s, lyr)) return false;
  const std::string op = "Delete Field";
  const int f = FindField(s, lyr, name);
  if (f < 1 || s.Lyr[lyr].Dbf.DbfFieldCount < 2) { // a table keeps one field at least
    Refuse(s, op, lyr);
    return false;
  }
  std::vector<FieldPlan> plan = PlanOfLyr(s, lyr);
  plan.erase(plan.begin() + (f - 1));
  return Rebuild(s, lyr, op, plan);
}

bool RenameFieldOfLyr(Session& s, int lyr, const std::string& name, const std::string& newName) {
  if (!Usable(s, lyr)) return false;
  const std::string op = "Rename Field";
  const int f = FindField(s, lyr, name);
  const std::string nn = Trim(newName);
  const int clash = FindField(s, lyr, nn);
  if (f < 1 || !ValidName(nn) || (clash > 0 && clash != f)) {
    Refuse(s, op, lyr);
    return false;
  }
  std::vector<FieldPlan> plan = PlanOfLyr(s, lyr);
  plan[size_t(f - 1)].Name = nn;
  return Rebuild(s, lyr, op, plan);
}

bool ChangeFieldOfLyr(Session& s, int lyr, const std::string& name, char typeLetter, int width,
                      int decimals) {
  if (!Usable(s, lyr)) return false;
  const std::string op = "Change Field";
  const char type = char(std::toupper(uint8_t(typeLetter)));
  if (type == 'D') width = 8, decimals = 0;
  if (type == 'L') width = 1, decimals = 0;
  const int f = FindField(s, lyr, name);
  if (f < 1 || !ValidShape(type, width, decimals)) {
    Refuse(s, op, lyr);
    return false;
  }
  std::vector<FieldPlan> plan = PlanOfLyr(s, lyr);
  FieldPlan& fp = plan[size_t(f - 1)];
  fp.Check = fp.Type != type || width < fp.Width || decimals != fp.Decimals;
  fp.Type = type, fp.Width = width, fp.Decimals = decimals;
  return Rebuild(s, lyr, op, plan);
}

} // namespace velmora
