#include "query/selection.h"

#include <algorithm>
#include <bit>

#include "edit/hit_test.h"
#include "frame/busy.h"
#include "frame/lyr_slots.h"
#include "store/shp_store.h"
#include "view/navigation.h"

namespace velmora {

namespace {

// The two fixed tables: the bit of r mod 8 for setting, its complement for clearing.
constexpr uint8_t kSetBit[8] = {1, 2, 4, 8, 16, 32, 64, 128};
constexpr uint8_t kClearBit[8] = {254, 253, 251, 247, 239, 223, 191, 127};

bool UserOrSlot(const Session& s, int lyr) {
  return lyr >= -kWorkSlots && lyr <= s.LyrCount;
}

bool BitOf(const std::vector<uint8_t>& bits, int rec) {
  size_t b = size_t(rec) >> 3;
  return rec >= 0 && b < bits.size() && (bits[b] & kSetBit[rec & 7]);
}

void PutBit(std::vector<uint8_t>& bits, int rec, bool on) {
  size_t b = size_t(rec) >> 3;
  if (rec < 0 || b >= bits.size()) return;
  bits[b] = on ? uint8_t(bits[b] | kSetBit[rec & 7]) : uint8_t(bits[b] & kClearBit[rec & 7]);
}

size_t BitBytes(const Session& s, int lyr) {
  return size_t(std::max(s.Lyr[lyr].Shp.RecCount, 0) + 7) / 8 + 1;
}

// The bits of records 1 .. RecCount within byte `i` of the set.
uint8_t RecordMask(int32_t recCount, size_t i) {
  int first = int(i * 8), last = first + 7;
  uint8_t m = 0xFF;
  if (first == 0) m &= 0xFE; // slot 0 is the frame record
  if (last > recCount) {
    int keep = recCount - first + 1; // bits 0 .. keep-1 stay
    m &= keep <= 0 ? 0 : uint8_t((1u << keep) - 1);
  }
  return m;
}

} // namespace

void FitSelBits(Session& s, int lyr) {
  if (!UserOrSlot(s, lyr)) return;
  size_t need = BitBytes(s, lyr);
  LyrRec& l = s.Lyr[lyr];
  if (l.SelBits.size() < need) l.SelBits.resize(need, 0);
  if (l.QryBits.size() < need) l.QryBits.resize(need, 0);
}

int SelectedCount(const Session& s, int lyr) {
  if (!UserOrSlot(s, lyr)) return 0;
  const auto& bits = s.Lyr[lyr].SelBits;
  const int32_t n = s.Lyr[lyr].Shp.RecCount;
  const size_t bytes = std::min(bits.size(), size_t(std::max(n, 0)) / 8 + 1);
  int count = 0;
  for (size_t i = 0; i < bytes; ++i) count += std::popcount(uint8_t(bits[i] & RecordMask(n, i)));
  return count;
}

void SelectRec(Session& s, int lyr, int rec) {
  if (!UserOrSlot(s, lyr) || IsDeleted(s, lyr, rec)) return;
  if (rec < 1 || rec > s.Lyr[lyr].Shp.RecCount) return;
  PutBit(s.Lyr[lyr].SelBits, rec, true);
  s.Query.SelDirty = -1;
}

void SelectRecAny(Session& s, int lyr, int rec) {
  if (!UserOrSlot(s, lyr)) return;
  PutBit(s.Lyr[lyr].SelBits, rec, true);
  s.Query.SelDirty = -1;
}

void UnselectRec(Session& s, int lyr, int rec) {
  if (!UserOrSlot(s, lyr)) return;
  PutBit(s.Lyr[lyr].SelBits, rec, false);
  s.Query.SelDirty = -1;
}

void ToggleRec(Session& s, int lyr, int rec) {
  if (!UserOrSlot(s, lyr) || IsDeleted(s, lyr, rec)) return;
  if (rec < 1 || rec > s.Lyr[lyr].Shp.RecCount) return;
  PutBit(s.Lyr[lyr].SelBits, rec, !BitOf(s.Lyr[lyr].SelBits, rec));
  s.Query.SelDirty = -1;
}

bool IsQrySel(const Session& s, int lyr, int rec) {
  return UserOrSlot(s, lyr) && BitOf(s.Lyr[lyr].QryBits, rec);
}

void QrySelectRec(Session& s, int lyr, int rec) {
  if (UserOrSlot(s, lyr)) PutBit(s.Lyr[lyr].QryBits, rec, true);
}

void QryUnselectRec(Session& s, int lyr, int rec) {
  if (UserOrSlot(s, lyr)) PutBit(s.Lyr[lyr].QryBits, rec, false);
}

void ClearQryBits(Session& s, int lyr) {
  if (!UserOrSlot(s, lyr)) return;
  s.Lyr[lyr].QryBits.assign(BitBytes(s, lyr), 0);
}

const std::vector<uint8_t>& DeletedBits(Session& s, int lyr) {
  static const std::vector<uint8_t> kNone;
  if (lyr < 1 || lyr > s.LyrCount) return kNone;
  auto& caches = s.Query.Deleted;
  if (caches.size() <= size_t(lyr)) caches.resize(size_t(lyr) + 1);
  DeletedBitsCache& c = caches[size_t(lyr)];
  const ShpBlock& b = s.Lyr[lyr].Shp;
  if (c.Recs == b.ShpRecs.data() && c.RecCount == b.RecCount && c.Gen == b.BoxGen &&
      c.Bits.size() == BitBytes(s, lyr))
    return c.Bits;
  c.Bits.assign(BitBytes(s, lyr), 0);
  const int32_t n = std::min<int32_t>(b.RecCount, int32_t(b.ShpRecs.size()) - 1);
  for (int32_t r = 1; r <= n; ++r)
    if (b.ShpRecs[size_t(r)].ShapeType == 0) c.Bits[size_t(r) >> 3] |= kSetBit[r & 7];
  c.Recs = b.ShpRecs.data(), c.RecCount = b.RecCount, c.Gen = b.BoxGen;
  return c.Bits;
}

void SelectionChanged(Session& s, int lyr) {
  s.Query.SelDirty = -1;
  if (lyr >= 1 && lyr <= s.LyrCount) s.host->TableDataChanged(lyr);
  s.host->MapRedraw();
}

void SelectRange(Session& s, int lyr, int first, int last, bool on) {
  if (lyr < 1 || lyr > s.LyrCount || s.Lyr[lyr].LyrKind == 0) return;
  RunningFunction rf(s, lyr, on ? "Select Features" : "UnSelect Features");
  if (!rf.Started()) return;
  FitSelBits(s, lyr);
  const int step = first <= last ? 1 : -1;
  const long long total = std::llabs((long long)last - first) + 1;
  long long done = 0;
  for (int r = first;; r += step) {
    int n = rf.Layer();
    if (on)
      SelectRec(s, n, r);
    else
      UnselectRec(s, n, r);
    if (rf.Step(++done, total)) break;
    if (r == last) break;
  }
  const int n = rf.Layer();
  rf.Finish();
  if (!rf.Gone()) SelectionChanged(s, n);
}

void InvertSelection(Session& s, int lyr) {
  if (lyr < 1 || lyr > s.LyrCount || s.Lyr[lyr].LyrKind == 0) return;
  if (LyrIsBusyMsg(s, lyr)) return;
  FitSelBits(s, lyr);
  const std::vector<uint8_t>& del = DeletedBits(s, lyr);
  auto& sel = s.Lyr[lyr].SelBits;
  const int32_t n = s.Lyr[lyr].Shp.RecCount;
  const size_t bytes = size_t(std::max(n, 0)) / 8 + 1;
  // Whole bytes at once: only the first and the last byte hold bits of no record.
  for (size_t i = 0; i < bytes; ++i) {
    uint8_t keep = RecordMask(n, i);
    uint8_t d = i < del.size() ? del[i] : 0;
    sel[i] = uint8_t(~sel[i] & ~d & keep);
  }
  std::fill(sel.begin() + long(std::min(bytes, sel.size())), sel.end(), uint8_t(0));
  SelectionChanged(s, lyr);
}

void ClearSelBits(Session& s, int lyr) {
  if (!UserOrSlot(s, lyr)) return;
  auto& sel = s.Lyr[lyr].SelBits;
  std::fill(sel.begin(), sel.end(), uint8_t(0));
  FitSelBits(s, lyr);
  s.Query.SelDirty = -1;
}

void ClearSelection(Session& s, int lyr) {
  if (!UserOrSlot(s, lyr)) return;
  ClearSelBits(s, lyr);
  SelectionChanged(s, lyr);
}

bool ZoomToSelected(Session& s, int lyr) {
  if (lyr < 1 || lyr > s.LyrCount || s.Lyr[lyr].LyrKind != 1) return false;
  const ShpBlock& b = s.Lyr[lyr].Shp;
  bool any = false;
  double l = 0, t = 0, r = 0, bo = 0;
  for (int32_t i = 1; i <= b.RecCount && size_t(i) < b.ShpRecs.size(); ++i) {
    const ShpRecord& rec = b.ShpRecs[size_t(i)];
    if (rec.ShapeType == 0 || !BitOf(s.Lyr[lyr].SelBits, i)) continue;
    if (!any) {
      l = rec.Xmin, r = rec.Xmax, bo = rec.Ymin, t = rec.Ymax;
      any = true;
    } else {
      l = std::min(l, rec.Xmin), r = std::max(r, rec.Xmax);
      bo = std::min(bo, rec.Ymin), t = std::max(t, rec.Ymax);
    }
  }
  if (!any) return false;
  if (r - l <= 0 && t - bo <= 0) { // one point: a small window around it
    const double half = std::max(s.MapView.MapFactor * 50, 1e-9);
    l -= half, r += half, bo -= half, t += half;
  }
  SetFitSides(s, l, t, r, bo);
  MapFitHist(s);
  return true;
}

int SelectByBox(Session& s, double left, double top, double right, double bottom, int keys) {
  const bool add = keys & 1, remove = (keys & 2) != 0;
  ViewVars& v = s.View;
  v.PickLeft = std::min(left, right), v.PickRight = std::max(left, right);
  v.PickBottom = std::min(top, bottom), v.PickTop = std::max(top, bottom);
  v.PickX = (v.PickLeft + v.PickRight) / 2, v.PickY = (v.PickTop + v.PickBottom) / 2;
  const bool click = v.PickLeft == v.PickRight && v.PickTop == v.PickBottom;
  const int keepTool = s.MapView.MapTool;
  s.MapView.MapTool = 7;
  int met = 0;
  auto apply = [&](int lyr, int rec) {
    ++met;
    if (remove)
      UnselectRec(s, lyr, rec);
    else
      SelectRec(s, lyr, rec);
  };
  auto takesPart = [&](int i) {
    const LyrRec& l = s.Lyr[i];
    return l.LyrKind == 1 && l.DVisable && l.SSelectable && !LyrIsBusy(s, i);
  };
  if (!add && !remove)
    for (int i = 1; i <= s.LyrCount; ++i)
      if (takesPart(i)) ClearSelBits(s, i);
  if (click) {
    // A click: a pick box of the usual size, the top feature under it.
    const double half = 2 * s.MapView.MapFactor;
    v.PickLeft -= half, v.PickRight += half, v.PickBottom -= half, v.PickTop += half;
    if (PickLayers(s, false) && s.Edit.HitNow.HitKind != 4) {
      const HitRec& h = s.Edit.HitNow;
      if (takesPart(h.HitLyr)) apply(h.HitLyr, h.HitFeature);
    }
  } else {
    for (int i = 1; i <= s.LyrCount; ++i) {
      if (!takesPart(i)) continue;
      FitSelBits(s, i);
      for (int32_t r = 1; r <= s.Lyr[i].Shp.RecCount; ++r) {
        const ShpRecord& rec = s.Lyr[i].Shp.ShpRecs[size_t(r)];
        if (rec.ShapeType == 0 || rec.Xmax < v.PickLeft || rec.Xmin > v.PickRight ||
            rec.Ymax < v.PickBottom || rec.Ymin > v.PickTop)
          continue;
        SetHitMargins(s, i, 2, 0); // the box decides, not the visible map
        if (HitTestFeature(s, i, r, 0, 0)) apply(i, r);
      }
    }
  }
  s.MapView.MapTool = keepTool;
  s.Query.SelDirty = -1;
  for (int i = 1; i <= s.LyrCount; ++i)
    if (takesPart(i)) s.host->TableDataChanged(i);
  s.host->MapRedraw();
  return met;
}

} // namespace velmora
