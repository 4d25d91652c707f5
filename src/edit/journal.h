#pragma once
#include <string>

#include "model/session.h"

namespace velmora {

// The journal of geometry edits in s.UndoList, as the editing code writes it (the session
// runs it: session/undo.h). Entries in use are 1 .. UndoCount - 1;
// element 0 is never used and the array always holds one element above the last entry.
// UndoPos is the entry the next undo runs. An entry is a pair of command lines (the one
// that repeats the edit and the one that reverses it) run through the command language,
// plus a feature and a selection snapshot for edits a line can't reverse.

// Appends an entry, dropping the undone tail first.
void UndoAdd(Session& s, const std::string& redo, const std::string& undo);
// Copies feature `rec` of `lyr` into the current entry, and back.
void UndoPutRec(Session& s, int lyr, int rec);
void UndoGetRec(Session& s, int lyr, int rec);
// Keeps the layer's number and a copy of its SelBits in the current entry.
void UndoPutSel(Session& s, int lyr);
// Exchanges the layer's SelBits and the entry's copy, if the entry holds this layer.
void UndoSwapSel(Session& s, int lyr);
// Empties the journal; both items go off.
void UndoClear(Session& s);
// Discards the last entry (an edit that proved empty) and what follows it.
void UndoDropLast(Session& s);
// Drops every entry whose lines name the layer by its quoted source path.
void UndoPurgeLyr(Session& s, const std::string& fsource);
// Drops every entry whose lines hold "'<path>' <rec>": a plain search, so feature 1 also
// takes the entries of features 10 to 19.
void UndoPurgeFeature(Session& s, int lyr, int rec);
// Whether the undo and redo buttons and menu items are on.
inline bool UndoEnabled(const Session& s) {
  return s.UndoOn;
}
inline bool RedoEnabled(const Session& s) {
  return s.RedoOn;
}

} // namespace velmora
