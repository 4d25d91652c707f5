#pragma once
#include <string>

#include "edit/edit_menus.h"
#include "model/session.h"

namespace velmora {

// The selection entries of the map's mnuSelection popup and of the window's Selection menu,
// as plain data, and the core call behind each. They act on the active layer.

// Appends the entries (after a separator) with their enabled states for the active layer.
void AddSelectionEntries(const Session& s, PopupMenu& m);
// Is `name` one of those entries?
bool IsSelectionEntry(const std::string& name);
// Does the entry need a destination layer (the copies, cut, combine and separate)?
bool NeedsDestination(const std::string& name);
// Does the entry need a range of records (Select, UnSelect, Delete, UnDelete Features)?
bool NeedsRange(const std::string& name);
// Runs the entry on layer `lyr`, with `dst` for the entries that need a destination and
// `first`, `last` for those of a range. False for an entry it doesn't know (mnuFindByData is
// the window's: it opens the dialog).
bool RunSelectionEntry(Session& s, const std::string& name, int lyr, int dst = 0, int first = 0,
                       int last = 0);

} // namespace velmora
