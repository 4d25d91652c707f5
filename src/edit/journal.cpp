#include "edit/journal.h"

#include <utility>

#include "edit/journal_lines.h"
#include "store/shp_store.h"

namespace velmora {

namespace {

UndoEntry* Current(Session& s) {
  if (s.UndoPos < 1 || size_t(s.UndoPos) >= s.UndoList.size()) return nullptr;
  return &s.UndoList[size_t(s.UndoPos)];
}

// The items after a purge or a drop, by rules applied in this order; a position of 1
// leaves undo as it was.
void SetItems(Session& s) {
  if (s.UndoPos == 0) s.UndoOn = false;
  if (s.UndoPos < s.UndoCount - 1) s.RedoOn = true;
  if (s.UndoPos > 1) s.UndoOn = true;
  if (s.UndoPos == s.UndoCount - 1) s.RedoOn = false;
}

// Keeps the entries that hold no line containing `text`.
void Purge(Session& s, const std::string& text) {
  if (text.empty() || s.UndoCount < 2) return;
  const int32_t last = s.UndoCount - 1;
  int32_t kept = 0;
  for (int32_t i = 1; i <= last && size_t(i) < s.UndoList.size(); ++i) {
    UndoEntry& e = s.UndoList[size_t(i)];
    if (e.UndoLine.find(text) != std::string::npos || e.RedoLine.find(text) != std::string::npos) {
      s.UndoCount -= 1;
      if (kept + 1 <= s.UndoPos) s.UndoPos -= 1; // its place in the new list
      continue;
    }
    ++kept;
    if (kept != i) s.UndoList[size_t(kept)] = std::move(e);
  }
  s.UndoList.resize(size_t(s.UndoCount) + 1);
  s.UndoList[size_t(s.UndoCount)] = UndoEntry{};
  SetItems(s);
}

} // namespace

void UndoAdd(Session& s, const std::string& redo, const std::string& undo) {
  if (s.UndoPos < s.UndoCount - 1) { // a redo tail: overwritten from here
    s.UndoCount = s.UndoPos + 1;
    s.RedoOn = false;
  }
  s.UndoList.resize(size_t(s.UndoCount) + 1);
  UndoEntry& e = s.UndoList[size_t(s.UndoCount)];
  e = UndoEntry{};
  e.RedoLine = redo;
  e.UndoLine = undo;
  s.UndoCount += 1;
  s.UndoPos = s.UndoCount - 1;
  s.UndoOn = true;
  s.ShpFileRead = UndoPurgeLyr; // from the first entry on, a file read anew drops its entries
  s.UndoList.resize(size_t(s.UndoCount) + 1);
  s.UndoList[size_t(s.UndoCount)] = UndoEntry{};
  s.UndoList[size_t(s.UndoPos)].UndoSel.assign(size_t(s.LyrCount) + 1, UndoSelSlot{});
}

void UndoPutRec(Session& s, int lyr, int rec) {
  UndoEntry* e = Current(s);
  if (!e || lyr < -kWorkSlots || lyr > s.LyrCount) return;
  const auto& recs = s.Lyr[lyr].Shp.ShpRecs;
  if (rec < 0 || size_t(rec) >= recs.size()) return;
  e->UndoRec = recs[size_t(rec)];
}

void UndoGetRec(Session& s, int lyr, int rec) {
  UndoEntry* e = Current(s);
  if (!e || lyr < 1 || lyr > s.LyrCount) return;
  ShpBlock& b = s.Lyr[lyr].Shp;
  if (rec < 1 || size_t(rec) >= b.ShpRecs.size()) return;
  b.ShpRecs[size_t(rec)] = e->UndoRec;
  b.ShpChanged = -1;
  RecalcExtent(s, lyr);
}

void UndoPutSel(Session& s, int lyr) {
  UndoEntry* e = Current(s);
  if (!e || lyr < 1 || lyr > s.LyrCount) return;
  if (size_t(lyr) >= e->UndoSel.size()) e->UndoSel.resize(size_t(lyr) + 1);
  UndoSelSlot& slot = e->UndoSel[size_t(lyr)];
  slot.SelLyr = lyr;
  slot.SelSnap = s.Lyr[lyr].SelBits;
}

void UndoSwapSel(Session& s, int lyr) {
  UndoEntry* e = Current(s);
  if (!e || lyr < 1 || lyr > s.LyrCount) return;
  for (UndoSelSlot& slot : e->UndoSel) {
    if (slot.SelLyr != lyr) continue;
    std::swap(slot.SelSnap, s.Lyr[lyr].SelBits);
    return;
  }
}

void UndoClear(Session& s) {
  s.UndoList.assign(2, UndoEntry{});
  s.UndoPos = 1, s.UndoCount = 1;
  s.UndoOn = false, s.RedoOn = false;
}

void UndoDropLast(Session& s) {
  if (s.UndoPos > 0) s.UndoPos -= 1;
  s.UndoCount = s.UndoPos + 1;
  s.UndoList.resize(size_t(s.UndoCount) + 1);
  s.UndoList[size_t(s.UndoCount)] = UndoEntry{};
  SetItems(s);
}

void UndoPurgeLyr(Session& s, const std::string& fsource) {
  Purge(s, QuotedPath(fsource));
}

void UndoPurgeFeature(Session& s, int lyr, int rec) {
  if (lyr < 1 || lyr > s.LyrCount) return;
  Purge(s, QuotedPath(s.Lyr[lyr].Fsource) + " " + std::to_string(rec));
}

} // namespace velmora
