#include "query/bulk_ops.h"

#include <memory>

#include "edit/journal.h"
#include "edit/journal_lines.h"
#include "frame/busy.h"
#include "frame/log.h"
#include "frame/refusal_log.h"
#include "query/selection.h"
#include "query/shape_convert.h"
#include "store/dbf_store.h"
#include "store/shp_access.h"
#include "store/shp_bytes.h"
#include "store/shp_store.h"

namespace velmora {

namespace {

bool ShapeLyr(const Session& s, int lyr) {
  return lyr >= 1 && lyr <= s.LyrCount && s.Lyr[lyr].LyrKind == 1;
}

bool HasTable(const Session& s, int lyr) {
  return s.Lyr[lyr].Dbf.DbfFieldCount > 0 && !s.Lyr[lyr].Dbf.DbfBuf.empty();
}

// The busy frame over a source and, when it is another layer, a destination ("Past
// Features"). The destination is marked first so that the source's caption stands.
class TwoLayerFrame {
public:
  TwoLayerFrame(Session& s, int src, int dst, const std::string& op, const std::string& caption) {
    if (dst != src) {
      dst_ = std::make_unique<RunningFunction>(s, dst, "Past Features");
      if (!dst_->Started()) return;
    }
    src_ = std::make_unique<RunningFunction>(s, src, op, caption);
  }
  bool Started() const { return src_ && src_->Started(); }
  int Src() const { return src_->Layer(); }
  int Dst() const { return dst_ ? dst_->Layer() : src_->Layer(); }
  bool Gone() const { return src_->Gone() || (dst_ && dst_->Gone()); }
  bool Step(long long i, long long max) {
    bool stop = src_->Step(i, max);
    if (dst_) stop = dst_->Step(i, max) || stop;
    return stop;
  }
  void Finish() {
    if (dst_) dst_->Finish(false);
    src_->Finish();
  }

private:
  std::unique_ptr<RunningFunction> dst_, src_;
};

// The selected records that are not deleted, in order.
std::vector<int> SelectedRecs(const Session& s, int lyr) {
  std::vector<int> out;
  const int32_t n = s.Lyr[lyr].Shp.RecCount;
  for (int r = 1; r <= n; ++r)
    if (IsSelected(s, lyr, r) && !IsDeleted(s, lyr, r)) out.push_back(r);
  return out;
}

std::vector<uint8_t> EmptyBits(const Session& s, int lyr) {
  return std::vector<uint8_t>(size_t(std::max(s.Lyr[lyr].Shp.RecCount, 0) + 7) / 8 + 1, 0);
}

void SetBit(std::vector<uint8_t>& bits, int rec) {
  if (rec >= 0 && size_t(rec) / 8 < bits.size()) bits[size_t(rec) / 8] |= uint8_t(1u << (rec % 8));
}

bool BitSet(const std::vector<uint8_t>& bits, int rec) {
  return rec >= 0 && size_t(rec) / 8 < bits.size() && (bits[size_t(rec) / 8] >> (rec % 8)) & 1;
}

// Appends a journal entry and keeps `bits` as its snapshot of the layer.
void JournalSnap(Session& s, int lyr, const std::string& redo, const std::string& undo,
                 std::vector<uint8_t> bits) {
  UndoAdd(s, redo, undo);
  UndoEntry& e = s.UndoList[size_t(s.UndoPos)];
  if (e.UndoSel.size() <= size_t(lyr)) e.UndoSel.resize(size_t(lyr) + 1);
  e.UndoSel[size_t(lyr)] = UndoSelSlot{lyr, std::move(bits)};
}

const std::vector<uint8_t>* Snapshot(const Session& s, int lyr) {
  if (s.UndoPos < 1 || size_t(s.UndoPos) >= s.UndoList.size()) return nullptr;
  for (const UndoSelSlot& slot : s.UndoList[size_t(s.UndoPos)].UndoSel)
    if (slot.SelLyr == lyr) return &slot.SelSnap;
  return nullptr;
}

std::string RangeText(int a, int b) {
  return " " + std::to_string(a) + " " + std::to_string(b);
}

void JournalRange(Session& s, int dst, int first, int last) {
  const std::string p = QuotedPath(s.Lyr[dst].Fsource);
  UndoAdd(s, "UnDelete Records " + p + RangeText(first, last),
          "Delete Records " + p + RangeText(first, last));
}

// The extents again after a bulk edit, and the window told.
void Done(Session& s, int a, int b) {
  for (int n : {a, b}) {
    if (!ShapeLyr(s, n)) continue;
    s.Lyr[n].Shp.ExtentStale = -1;
    RecalcExtent(s, n);
    s.host->TableDataChanged(n);
  }
  s.Query.SelDirty = -1;
  s.host->MapRedraw();
}

// The common checks of an operation from `src` into `dst`; false after the refusal line.
bool Admit(Session& s, int src, int dst, const std::string& caption, bool typesOk) {
  if (!ShapeLyr(s, src) || !ShapeLyr(s, dst)) {
    LogCanceled(s, caption, "the layer is not an open shape layer");
    return false;
  }
  if (!typesOk) {
    const int st = s.Lyr[src].Shp.ShpType, dt = s.Lyr[dst].Shp.ShpType;
    LogCanceled(s, caption,
                "the " + FamilyWord(dt) + " layer " + s.Lyr[dst].LyrName + " can't hold the " +
                    FamilyWord(st) + " features of layer " + s.Lyr[src].LyrName);
    return false;
  }
  return true;
}

enum class Copying { Copy, Cut, Separate, CombineParts };

// Copy, cut, separate and combine-parts: per selected record, features appended to `dst`.
int PerRecord(Session& s, int src, int dst, Copying how) {
  static const char* const kOps[] = {"Copy Selected Features", "Cut Selected Features",
                                     "Separate Selected Features",
                                     "Combine Parts of Selected Features"};
  const std::string op = kOps[int(how)];
  const std::string caption = op + " to " + (ShapeLyr(s, dst) ? s.Lyr[dst].LyrName : std::string());
  if (!Admit(s, src, dst, caption,
             ShapeLyr(s, src) && ShapeLyr(s, dst) &&
                 CanConvertType(s.Lyr[src].Shp.ShpType, s.Lyr[dst].Shp.ShpType)))
    return -1;
  TwoLayerFrame f(s, src, dst, op, caption);
  if (!f.Started()) return -1;
  const std::vector<int> recs = SelectedRecs(s, src);
  ReserveRecs(s, dst, int(recs.size()));
  const auto pairs = HasTable(s, src) && HasTable(s, dst) ? FieldPairs(s, src, dst)
                                                          : std::vector<std::pair<int, int>>{};
  const bool attrs = HasTable(s, dst);
  const int first = s.Lyr[dst].Shp.RecCount + 1;
  std::vector<uint8_t> cut = EmptyBits(s, src);
  int made = 0;
  for (size_t i = 0; i < recs.size(); ++i) {
    const int a = f.Src(), b = f.Dst(), rec = recs[i];
    const int st = s.Lyr[a].Shp.ShpType, dt = s.Lyr[b].Shp.ShpType;
    const ShpRecord* r = shpio::RecAt(s, a, rec);
    if (r && r->ShapeType != 0) {
      std::vector<std::vector<PlainPart>> features;
      std::vector<PlainPart> parts = PlainParts(*r);
      if (how == Copying::Copy || how == Copying::Cut) {
        features.push_back(ConvertParts(std::move(parts), st, dt));
      } else if (how == Copying::Separate) {
        const bool points = FamilyOf(st) == ShapeFamily::MultiPoint;
        for (PlainPart& p : parts) {
          if (!points) {
            features.push_back(ConvertParts({std::move(p)}, st, dt));
            continue;
          }
          for (size_t k = 0; k < p.P.size(); ++k) {
            PlainPart one{{p.P[k]}, {p.Z[k]}, {p.M[k]}};
            features.push_back(ConvertParts({std::move(one)}, st, dt));
          }
        }
      } else {
        PlainPart joined;
        for (const PlainPart& p : parts) {
          joined.P.insert(joined.P.end(), p.P.begin(), p.P.end());
          joined.Z.insert(joined.Z.end(), p.Z.begin(), p.Z.end());
          joined.M.insert(joined.M.end(), p.M.begin(), p.M.end());
        }
        features.push_back(ConvertParts({std::move(joined)}, st, dt));
      }
      bool any = false;
      for (const auto& parts1 : features) {
        const int n = AppendParts(s, b, parts1);
        if (!n) continue;
        any = true;
        ++made;
        if (attrs) CopyRecAttr(s, a, rec, b, n, pairs);
      }
      if (any && how == Copying::Cut) {
        DeleteRec(s, a, rec, false);
        SetBit(cut, rec);
      }
    }
    if (f.Step(long(i) + 1, long(recs.size()))) break;
  }
  const bool gone = f.Gone();
  const int a = gone ? 0 : f.Src(), b = gone ? 0 : f.Dst();
  f.Finish();
  if (gone) return made;
  if (made > 0) {
    const int last = s.Lyr[b].Shp.RecCount;
    if (how == Copying::Cut) {
      const std::string ps = QuotedPath(s.Lyr[a].Fsource), pd = QuotedPath(s.Lyr[b].Fsource);
      JournalSnap(s, a, "Cut Snapshot " + ps + " " + pd + RangeText(first, last),
                  "UnCut Snapshot " + ps + " " + pd + RangeText(first, last), std::move(cut));
    } else {
      JournalRange(s, b, first, last);
    }
  }
  Done(s, a, b);
  return made;
}

// Deletes or brings back the records of a range, journalled by the snapshot of those that
// changed.
int ChangeRange(Session& s, int lyr, int first, int last, bool del) {
  if (!ShapeLyr(s, lyr)) return -1;
  RunningFunction rf(s, lyr, del ? "Delete Features" : "UnDelete Features");
  if (!rf.Started()) return -1;
  std::vector<uint8_t> changed = EmptyBits(s, lyr);
  const int step = first <= last ? 1 : -1;
  const long long total = std::llabs((long long)last - first) + 1;
  long long done = 0;
  int count = 0;
  for (int r = first;; r += step) {
    const int n = rf.Layer();
    if (r >= 1 && r <= s.Lyr[n].Shp.RecCount && IsDeleted(s, n, r) != del) {
      if (del)
        DeleteRec(s, n, r, false);
      else
        UndeleteRec(s, n, r, false);
      if (IsDeleted(s, n, r) == del) SetBit(changed, r), ++count;
    }
    if (rf.Step(++done, total) || r == last) break;
  }
  const bool gone = rf.Gone();
  const int n = rf.Layer();
  rf.Finish();
  if (gone) return count;
  if (count > 0) {
    const std::string p = QuotedPath(s.Lyr[n].Fsource);
    const std::string d = "Delete Snapshot " + p, u = "UnDelete Snapshot " + p;
    JournalSnap(s, n, del ? d : u, del ? u : d, std::move(changed));
  }
  Done(s, n, n);
  return count;
}

} // namespace

std::vector<std::pair<int, int>> FieldPairs(const Session& s, int src, int dst) {
  std::vector<std::pair<int, int>> out;
  for (int f = 1; f <= s.Lyr[src].Dbf.DbfFieldCount; ++f) {
    const int g = FindField(s, dst, GetFieldName(s, src, f));
    if (g > 0) out.emplace_back(f, g);
  }
  return out;
}

void CopyRecAttr(Session& s, int src, int rec, int dst, int dstRec,
                 const std::vector<std::pair<int, int>>& pairs) {
  if (!HasTable(s, dst)) return;
  DbfBlock& d = s.Lyr[dst].Dbf;
  const int row = dstRec - 1;
  if (row >= d.DbfRecCount) {
    AddDbfRec(s, dst, row);
    if (s.DbfErr) return;
  } else {
    ReadDbfRec(s, dst, row);
  }
  if (HasTable(s, src)) {
    ReadDbfRec(s, src, rec - 1);
    for (const auto& [f, g] : pairs) SetFieldValue(s, dst, g, GetFieldValue(s, src, f));
  }
  d.DbfBufChanged = -1;
  s.Lyr[dst].Shp.ShpChanged = -1;
  WriteDbfRecSwap(s, dst, row);
}

void CopyRecAttr(Session& s, int src, int rec, int dst, int dstRec) {
  CopyRecAttr(s, src, rec, dst, dstRec, FieldPairs(s, src, dst));
}

int CopySelected(Session& s, int src, int dst) {
  return PerRecord(s, src, dst, Copying::Copy);
}

int CutSelected(Session& s, int src, int dst) {
  return PerRecord(s, src, dst, Copying::Cut);
}

int SeparateSelected(Session& s, int src, int dst) {
  return PerRecord(s, src, dst, Copying::Separate);
}

int CombinePartsSelected(Session& s, int src, int dst) {
  return PerRecord(s, src, dst, Copying::CombineParts);
}

int CombineSelected(Session& s, int src, int dst) {
  const std::string op = "Combine Selected Features";
  const std::string caption = op + " to " + (ShapeLyr(s, dst) ? s.Lyr[dst].LyrName : std::string());
  bool typesOk = false;
  if (ShapeLyr(s, src) && ShapeLyr(s, dst)) {
    const int st = s.Lyr[src].Shp.ShpType, dt = s.Lyr[dst].Shp.ShpType;
    const ShapeFamily sf = FamilyOf(st), df = FamilyOf(dt);
    // The family is the type's last digit; tens 10 and 20 are the Z and M variants.
    typesOk = df != ShapeFamily::Point && df != ShapeFamily::Special &&
              (st % 10 == dt % 10 || (df == ShapeFamily::MultiPoint && sf == ShapeFamily::Point));
  }
  if (!Admit(s, src, dst, caption, typesOk)) return -1;
  TwoLayerFrame f(s, src, dst, op, caption);
  if (!f.Started()) return -1;
  const std::vector<int> recs = SelectedRecs(s, src);
  std::vector<PlainPart> all;
  for (size_t i = 0; i < recs.size(); ++i) {
    const int a = f.Src(), b = f.Dst();
    const ShpRecord* r = shpio::RecAt(s, a, recs[i]);
    if (r && r->ShapeType != 0) {
      auto parts = ConvertParts(PlainParts(*r), s.Lyr[a].Shp.ShpType, s.Lyr[b].Shp.ShpType);
      for (PlainPart& p : parts) all.push_back(std::move(p));
    }
    if (f.Step(long(i) + 1, long(recs.size()))) break;
  }
  const bool gone = f.Gone();
  int made = 0;
  if (!gone && !all.empty()) {
    const int a = f.Src(), b = f.Dst();
    if (FamilyOf(s.Lyr[b].Shp.ShpType) == ShapeFamily::MultiPoint) {
      PlainPart one;
      for (const PlainPart& p : all) {
        one.P.insert(one.P.end(), p.P.begin(), p.P.end());
        one.Z.insert(one.Z.end(), p.Z.begin(), p.Z.end());
        one.M.insert(one.M.end(), p.M.begin(), p.M.end());
      }
      all = {std::move(one)};
    }
    ReserveRecs(s, b, 1);
    const int n = AppendParts(s, b, all);
    if (n) {
      made = 1;
      CopyRecAttr(s, a, recs.front(), b, n);
      const std::string p = QuotedPath(s.Lyr[b].Fsource);
      const std::string num = " " + std::to_string(n);
      UndoAdd(s, "UNDelete Feature " + p + num, "Delete Feature " + p + num);
    }
  }
  const int a = gone ? 0 : f.Src(), b = gone ? 0 : f.Dst();
  f.Finish();
  if (!gone) Done(s, a, b);
  return made;
}

int DeleteSelected(Session& s, int lyr) {
  if (!ShapeLyr(s, lyr)) return -1;
  RunningFunction rf(s, lyr, "Delete Selected Features");
  if (!rf.Started()) return -1;
  const std::vector<int> recs = SelectedRecs(s, lyr);
  std::vector<uint8_t> gone = EmptyBits(s, lyr);
  int count = 0;
  for (size_t i = 0; i < recs.size(); ++i) {
    const int n = rf.Layer();
    DeleteRec(s, n, recs[i], false);
    SetBit(gone, recs[i]);
    ++count;
    if (rf.Step(long(i) + 1, long(recs.size()))) break;
  }
  const bool closed = rf.Gone();
  const int n = rf.Layer();
  rf.Finish();
  if (closed) return count;
  if (count > 0) {
    const std::string p = QuotedPath(s.Lyr[n].Fsource);
    JournalSnap(s, n, "Delete Snapshot " + p, "UnDelete Snapshot " + p, std::move(gone));
  }
  Done(s, n, n);
  return count;
}

int CloseSelectedEdges(Session& s, int lyr) {
  if (!ShapeLyr(s, lyr)) return -1;
  const ShapeFamily fam = FamilyOf(s.Lyr[lyr].Shp.ShpType);
  if (fam != ShapeFamily::Line && fam != ShapeFamily::Polygon) {
    LogCanceled(s, "Close Selected Features Edges " + s.Lyr[lyr].LyrName,
                "only lines and polygons have edges to close");
    return -1;
  }
  RunningFunction rf(s, lyr, "Close Selected Features Edges");
  if (!rf.Started()) return -1;
  const std::vector<int> recs = SelectedRecs(s, lyr);
  int count = 0;
  for (size_t i = 0; i < recs.size(); ++i) {
    const int n = rf.Layer();
    ShpRecord* r = shpio::RecAt(s, n, recs[i]);
    bool changed = false;
    for (int p = 0; r && p < r->NumParts; ++p) {
      const ShpPart& part = r->Part(p);
      const size_t live = shpio::LiveCount(part);
      if (live < 2) continue;
      const XY a = part.PartPoints()[0], b = part.PartPoints()[live - 1];
      if (a.X == b.X && a.Y == b.Y) continue;
      const double z = part.PartZ().empty() ? 0 : part.PartZ()[0];
      const double m = part.PartM().empty() ? 0 : part.PartM()[0];
      AddVertex(s, n, recs[i], p, a.X, a.Y, z, m);
      r = shpio::RecAt(s, n, recs[i]);
      changed = true;
    }
    if (changed) ++count;
    if (rf.Step(long(i) + 1, long(recs.size()))) break;
  }
  const bool closed = rf.Gone();
  const int n = rf.Layer();
  rf.Finish();
  if (!closed) Done(s, n, n);
  return count;
}

int DeleteRange(Session& s, int lyr, int first, int last) {
  return ChangeRange(s, lyr, first, last, true);
}

int UndeleteRange(Session& s, int lyr, int first, int last) {
  return ChangeRange(s, lyr, first, last, false);
}

void DeleteRecords(Session& s, int lyr, int first, int last, bool del) {
  if (!ShapeLyr(s, lyr)) return;
  if (first > last) std::swap(first, last);
  first = std::max(first, 1);
  last = std::min(last, s.Lyr[lyr].Shp.RecCount);
  for (int r = first; r <= last; ++r) {
    if (del)
      DeleteRec(s, lyr, r, false);
    else
      UndeleteRec(s, lyr, r, false);
  }
  RecalcExtent(s, lyr);
}

void SnapshotRecords(Session& s, int lyr, bool del) {
  if (!ShapeLyr(s, lyr)) return;
  const std::vector<uint8_t>* bits = Snapshot(s, lyr);
  if (!bits) return;
  const std::vector<uint8_t> keep = *bits; // the entry may not move, but the copy is cheap
  const int32_t n = s.Lyr[lyr].Shp.RecCount;
  for (int r = 1; r <= n; ++r) {
    if (!BitSet(keep, r)) continue;
    if (del)
      DeleteRec(s, lyr, r, false);
    else
      UndeleteRec(s, lyr, r, false);
  }
  RecalcExtent(s, lyr);
}

void CutSnapshot(Session& s, int src, int dst, int first, int last, bool redo) {
  if (!ShapeLyr(s, src) || !ShapeLyr(s, dst)) return;
  SnapshotRecords(s, src, redo);
  DeleteRecords(s, dst, first, last, !redo);
}

} // namespace velmora
