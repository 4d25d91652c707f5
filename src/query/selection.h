#pragma once
#include "edit/move_ops.h" // IsSelected(s, lyr, rec), which the movement code shares
#include "model/session.h"

namespace velmora {

// A layer's selection (SelBits) and the second set of the nested find (QryBits): one bit
// per record number, record r in byte r / 8, bit r mod 8. Records are 1-based. Every change
// of SelBits raises s.Query.SelDirty.

// The number of selected records: a count over the bytes of the set.
int SelectedCount(const Session& s, int lyr);
// Sets the bit unless the record is deleted.
void SelectRec(Session& s, int lyr, int rec);
// Sets the bit without the deleted test (a clean save moves bits this way).
void SelectRecAny(Session& s, int lyr, int rec);
void UnselectRec(Session& s, int lyr, int rec);
// Inverts the bit, unless the record is deleted.
void ToggleRec(Session& s, int lyr, int rec);

bool IsQrySel(const Session& s, int lyr, int rec);
void QrySelectRec(Session& s, int lyr, int rec);
void QryUnselectRec(Session& s, int lyr, int rec);
void ClearQryBits(Session& s, int lyr);

// The bit sets sized to the layer's records, (RecCount + 7) / 8 + 1 bytes at the least.
void FitSelBits(Session& s, int lyr);
// The deleted records of the layer as a bit set, rebuilt only after its records changed.
const std::vector<uint8_t>& DeletedBits(Session& s, int lyr);

// "Select Features" and "UnSelect Features": records first .. last, also walking downward
// when first > last, under the busy frame with a yield and cancel test after each.
void SelectRange(Session& s, int lyr, int first, int last, bool on);
// "Invert Selection": every record not deleted changes its bit. It and ClearSelection tell
// the table and the map (SelectionChanged); ClearSelBits only empties the set.
void InvertSelection(Session& s, int lyr);
void ClearSelection(Session& s, int lyr);
void ClearSelBits(Session& s, int lyr);
// The map window fitted to the boxes of the selected features (recorded in the history);
// false when nothing is selected.
bool ZoomToSelected(Session& s, int lyr);

// The select box of tool 7 over the world rectangle: every feature of the visible,
// selectable shape layers that the box meets. `keys` bit 1 (Shift) adds to the selection,
// bit 2 (Ctrl) removes from it, neither makes the box the new selection. A box of no size
// (a click) takes only the top feature under it. Returns the features the box met.
int SelectByBox(Session& s, double left, double top, double right, double bottom, int keys);

// After a change of selection: the layer's open table and the map are told.
void SelectionChanged(Session& s, int lyr);

} // namespace velmora
