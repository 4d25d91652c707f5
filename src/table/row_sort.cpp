#include "table/row_sort.h"

#include <algorithm>
#include <numeric>

#include "frame/busy.h"
#include "frame/log.h"
#include "frame/lyr_slots.h"
#include "model/file_util.h"
#include "store/dbf_internal.h"
#include "store/dbf_store.h"
#include "table/table_refresh.h"

namespace velmora {

namespace {

constexpr const char* kSortOp = "Sort Rows";

void Refuse(Session& s, int lyr) {
  const std::string name = lyr >= 1 && lyr <= s.LyrCount ? s.Lyr[lyr].LyrName : "";
  LogMsg(s, " *** " + std::string(kSortOp) + " " + name + " has been canceled *** ");
}

bool Sortable(const Session& s, int lyr) {
  if (lyr < 1 || lyr > s.LyrCount) return false;
  const LyrRec& L = s.Lyr[lyr];
  return L.LyrKind == 1 && L.EEditable && L.Dbf.DbfExists && !LyrIsBusy(s, lyr) &&
         L.Dbf.DbfRecCount == L.Shp.RecCount;
}

std::vector<uint8_t> PermuteBits(const std::vector<uint8_t>& bits,
                                 const std::vector<int32_t>& order) {
  std::vector<uint8_t> out(bits.size(), 0);
  auto get = [&](size_t r) { return r / 8 < bits.size() && (bits[r / 8] >> (r % 8) & 1); };
  if (!bits.empty() && get(0)) out[0] |= 1;
  for (size_t i = 0; i < order.size(); ++i) {
    const size_t dst = i + 1, src = size_t(order[i]) + 1;
    if (get(src) && dst / 8 < out.size()) out[dst / 8] |= uint8_t(1 << (dst % 8));
  }
  return out;
}

// Moves features, rows, bits and journalled cell edits into `order`. The layer is busy.
bool ApplyOrder(Session& s, RunningFunction& rf, const std::vector<int32_t>& order) {
  int lyr = rf.Layer();
  const int rows = int(order.size());
  // The rows in their new order go through a work table, then into the swap file.
  const int w = FindFreeWorkLyr(s);
  LyrLock(s, w, true, kSortOp);
  InitDbf(s, w);
  s.Lyr[w].Dbf.CodePage = s.Lyr[lyr].Dbf.CodePage;
  const DbfBlock& d = s.Lyr[lyr].Dbf;
  for (int f = 1; f <= d.DbfFieldCount; ++f) {
    const DbfField& fd = d.DbfFields[size_t(f)];
    std::string name;
    for (char c : fd.FieldName)
      if (c)
        name += c;
      else
        break;
    AddField(s, w, name, fd.FieldType, fd.FieldLength, fd.FieldDecimals);
  }
  const std::string tmp = TempName(FolderOf(NativePath(s.Lyr[lyr].Fsource)), "qmt");
  const std::string tmpDbf = ChangeExt(tmp, "dbf");
  auto drop = [&]() {
    CloseDbf(s, w);
    ClearLyr(s, w);
    KillFile(tmpDbf);
    KillFile(tmp);
  };
  if (tmp.empty()) return drop(), false;
  CreateDbf(s, w, tmpDbf);
  for (int i = 0; i < rows && !s.DbfErr; ++i) {
    ReadDbfRec(s, lyr, order[size_t(i)]);
    s.Lyr[w].Dbf.DbfBuf = s.Lyr[lyr].Dbf.DbfBuf;
    s.Lyr[w].Dbf.DbfBufChanged = -1;
    WriteDbfRec(s, w, i);
  }
  SetDbfRecCount(s, w, rows);
  if (s.DbfErr) return drop(), false;
  // From here on the layer changes: no yield until it is whole again.
  for (int i = 0; i < rows && !s.DbfErr; ++i) {
    ReadDbfRec(s, w, i);
    s.Lyr[lyr].Dbf.DbfBuf = s.Lyr[w].Dbf.DbfBuf;
    s.Lyr[lyr].Dbf.DbfBufChanged = -1;
    WriteDbfRecSwap(s, lyr, i);
  }
  const bool ok = s.DbfErr == 0;
  drop();
  if (!ok) return false;

  LyrRec& L = s.Lyr[lyr];
  std::vector<ShpRecord> recs;
  recs.reserve(L.Shp.ShpRecs.size());
  recs.push_back(std::move(L.Shp.ShpRecs[0]));
  for (int i = 0; i < rows; ++i)
    recs.push_back(std::move(L.Shp.ShpRecs[size_t(order[size_t(i)]) + 1]));
  for (size_t i = size_t(rows) + 1; i < L.Shp.ShpRecs.size(); ++i)
    recs.push_back(std::move(L.Shp.ShpRecs[i]));
  L.Shp.ShpRecs = std::move(recs);
  L.Shp.ShpChanged = -1;
  L.SelBits = PermuteBits(L.SelBits, order);
  L.QryBits = PermuteBits(L.QryBits, order);

  std::vector<int32_t> newPos(size_t(rows) + 1, 0); // by old record: its new record
  for (int i = 0; i < rows; ++i) newPos[size_t(order[size_t(i)]) + 1] = i + 1;
  for (DataUndoGroup& g : L.Dbf.DataUndo.UndoGroups)
    for (DataUndoItem& it : g.Items)
      if (it.Rec >= 1 && it.Rec <= rows) it.Rec = newPos[size_t(it.Rec)];
  for (HitRec* h : {&s.Edit.EditHit, &s.Edit.MenuHit, &s.Edit.HitNow})
    if (h->HitLyr == lyr && h->HitFeature >= 1 && h->HitFeature <= rows)
      h->HitFeature = newPos[size_t(h->HitFeature)];
  return true;
}

// Sort keys: numbers, dates as days and logicals by their value; texts as they read.
struct Key {
  double Num = 0;
  std::string Text;
  bool Blank = true;
};

} // namespace

bool SortRows(Session& s, int lyr, int field, bool descending, std::vector<int32_t>* before) {
  if (!Sortable(s, lyr) || field < 1 || field > s.Lyr[lyr].Dbf.DbfFieldCount) {
    Refuse(s, lyr);
    return false;
  }
  FlushTableOf(s, lyr);
  RunningFunction rf(s, lyr, kSortOp);
  if (!rf.Started()) return false;
  const int rows = s.Lyr[lyr].Dbf.DbfRecCount;
  const std::string type = GetFieldType(s, lyr, field);
  const bool numeric = type == "Numeric" || type == "Float";
  const bool date = type == "Date";
  std::vector<Key> keys(static_cast<size_t>(rows));
  for (int r = 0; r < rows; ++r) {
    ReadDbfRec(s, lyr, r);
    Key& k = keys[size_t(r)];
    k.Text = Trim(GetFieldValue(s, lyr, field));
    k.Blank = k.Text.empty();
    if (numeric && !k.Blank) k.Num = StrToDbl(s, k.Text);
    dbf::DateParts dp;
    if (date && !k.Blank && dbf::ParseDateText(k.Text, s.Locale.ShortDate, dp))
      k.Num = dp.Y * 10000.0 + dp.M * 100 + dp.D;
    if ((r & 4095) == 4095) {
      if (rf.Step(r + 1, rows)) return false;
      lyr = rf.Layer();
    }
  }
  std::vector<int32_t> order(static_cast<size_t>(rows));
  std::iota(order.begin(), order.end(), 0);
  const bool byNum = numeric || date;
  // Blanks come first ascending and last descending; equal keys keep their order.
  std::stable_sort(order.begin(), order.end(), [&](int32_t a, int32_t b) {
    const Key &x = keys[size_t(a)], &y = keys[size_t(b)];
    if (x.Blank != y.Blank) return descending ? y.Blank : x.Blank;
    if (x.Blank) return false;
    if (byNum) return descending ? x.Num > y.Num : x.Num < y.Num;
    return descending ? x.Text > y.Text : x.Text < y.Text;
  });
  keys = {};
  if (!ApplyOrder(s, rf, order)) {
    rf.Finish(false);
    Refuse(s, rf.Layer());
    return false;
  }
  if (before) *before = std::move(order);
  rf.Finish();
  RefTableDataNo(s, rf.Layer());
  s.host->MapRedraw();
  return true;
}

bool ReorderRows(Session& s, int lyr, const std::vector<int32_t>& order, bool inverse) {
  if (!Sortable(s, lyr) || int(order.size()) != s.Lyr[lyr].Dbf.DbfRecCount) {
    Refuse(s, lyr);
    return false;
  }
  std::vector<int32_t> o = order;
  if (inverse) {
    for (size_t i = 0; i < order.size(); ++i) {
      if (order[i] < 0 || size_t(order[i]) >= order.size()) return false;
      o[size_t(order[i])] = int32_t(i);
    }
  }
  FlushTableOf(s, lyr);
  RunningFunction rf(s, lyr, kSortOp);
  if (!rf.Started()) return false;
  if (!ApplyOrder(s, rf, o)) {
    rf.Finish(false);
    Refuse(s, rf.Layer());
    return false;
  }
  rf.Finish();
  RefTableDataNo(s, rf.Layer());
  s.host->MapRedraw();
  return true;
}

} // namespace velmora
