#pragma once
#include <cstdint>
#include <vector>

#include "model/session.h"

namespace velmora {

// "Sort Rows Ascending", "Sort Rows Descending": the layer's records ordered by the values
// of `field`, features and rows moving together so that a record keeps its number tied to
// its geometry; selection bits and cell edits of the journal follow their features. The
// sorted rows go to the swap file, so the .dbf is untouched until the layer is saved.
// Needs an editable layer that isn't busy. `before` gets the old record of each new
// position (0-based rows), for an undo. False when refused.
bool SortRows(Session& s, int lyr, int field, bool descending, std::vector<int32_t>* before);
// Puts the rows in the order `order` (new row i takes old row order[i]); with `inverse`
// the order is undone instead. Used by the undo and redo of a sort.
bool ReorderRows(Session& s, int lyr, const std::vector<int32_t>& order, bool inverse);

} // namespace velmora
