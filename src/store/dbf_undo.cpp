// The journal of cell edits: groups of (record, field, value) that trade places with the
// cells on undo and again on redo.
#include "store/dbf_internal.h"
#include "store/dbf_store.h"

namespace velmora {

using namespace dbf;

namespace {

// Trades item `item` with its cell; false when the row could not be written.
bool ExchangeItem(Session& s, int lyr, DataUndoItem& item) {
  ReadDbfRec(s, lyr, item.Rec - 1);
  std::string now = GetFieldValue(s, lyr, item.FieldNo);
  SetFieldValue(s, lyr, item.FieldNo, item.Value);
  s.DbfErr = 0;
  WriteDbfRecSwap(s, lyr, item.Rec - 1);
  if (s.DbfErr) return false;
  item.Value = std::move(now);
  return true;
}

// Swaps each item of the group with its cell, so that the group serves the other way next.
// A row that cannot be written stops it, and the items already traded go back, so that the
// group stays whole for another try. False then.
bool Exchange(Session& s, int lyr, DataUndoGroup& g, const char* caption, bool quiet) {
  if (!quiet) s.host->FuncText(caption);
  long long n = g.ItemCount, i = 0;
  size_t done = 0;
  for (; done < g.Items.size(); ++done) {
    if (!ExchangeItem(s, lyr, g.Items[done])) break;
    if (!quiet) s.host->Progress(++i, n);
  }
  bool whole = done == g.Items.size();
  if (!whole)
    while (done-- > 0) ExchangeItem(s, lyr, g.Items[done]);
  if (!quiet) {
    s.host->Progress(0, 0);
    s.host->FuncText("");
  }
  s.host->TableDataChanged(lyr);
  if (!whole) s.DbfErr = 1;
  return whole;
}

} // namespace

void InitDataUndo(Session& s, int lyr) {
  if (!ValidLyr(s, lyr)) return;
  DataUndoJournal& j = s.Lyr[lyr].Dbf.DataUndo;
  j.UndoTop = 0;
  j.UndoPos = 0;
  j.UndoGroups.assign(1, DataUndoGroup{});
}

void BeginDataUndo(Session& s, int lyr) {
  if (!ValidLyr(s, lyr)) return;
  DataUndoJournal& j = s.Lyr[lyr].Dbf.DataUndo;
  if (j.UndoTop > j.UndoPos) j.UndoTop = j.UndoPos; // the redoable groups are gone
  j.UndoTop += 1;
  j.UndoPos = j.UndoTop;
  j.UndoGroups.resize(size_t(j.UndoTop) + 1);
  j.UndoGroups[size_t(j.UndoTop)] = DataUndoGroup{};
}

void AddDataUndoItem(Session& s, int lyr, int rec, int field, const std::string& value) {
  if (!ValidLyr(s, lyr)) return;
  DataUndoJournal& j = s.Lyr[lyr].Dbf.DataUndo;
  if (j.UndoTop < 1 || size_t(j.UndoTop) >= j.UndoGroups.size()) return; // no group begun
  DataUndoGroup& g = j.UndoGroups[size_t(j.UndoTop)];
  g.Items.push_back(DataUndoItem{rec, int16_t(field), value});
  g.ItemCount = int32_t(g.Items.size());
}

void NoteDataUndo(Session& s, int lyr, int rec, int field) {
  if (!ValidLyr(s, lyr)) return;
  BeginDataUndo(s, lyr);
  ReadDbfRec(s, lyr, rec - 1);
  AddDataUndoItem(s, lyr, rec, field, GetFieldValue(s, lyr, field));
}

void UndoDataEdit(Session& s, int lyr, bool quiet) {
  if (!ValidLyr(s, lyr)) return;
  DataUndoJournal& j = s.Lyr[lyr].Dbf.DataUndo;
  if (j.UndoPos <= 0 || size_t(j.UndoPos) >= j.UndoGroups.size()) return;
  DataUndoGroup& g = j.UndoGroups[size_t(j.UndoPos)];
  if (g.ItemCount <= 0) return;
  if (Exchange(s, lyr, g, "Undo Data Edit", quiet)) j.UndoPos -= 1;
}

void RedoDataEdit(Session& s, int lyr, bool quiet) {
  if (!ValidLyr(s, lyr)) return;
  DataUndoJournal& j = s.Lyr[lyr].Dbf.DataUndo;
  if (j.UndoPos >= j.UndoTop || size_t(j.UndoPos) + 1 >= j.UndoGroups.size()) return;
  DataUndoGroup& g = j.UndoGroups[size_t(j.UndoPos) + 1];
  if (g.ItemCount > 0 && !Exchange(s, lyr, g, "Redo Data Edit", quiet)) return;
  j.UndoPos += 1;
}

} // namespace velmora
