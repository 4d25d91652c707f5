#pragma once
#include <string>

#include "model/edit_types.h"
#include "model/session.h"

namespace velmora {

// The operations of the edit menu on a hit (the menu's snapshot, MenuHit). Each refuses on
// a busy layer with " *** <action> ... in layer <name> has been canceled *** ", else does
// the edit, logs it and journals its redo and undo lines. True when the edit was done.

bool DeleteVertexOp(Session& s, const HitRec& h);
bool DeletePartOp(Session& s, const HitRec& h);
bool DeleteFeatureOp(Session& s, const HitRec& h);
// Swaps the part with the next one (drawn later, so on top); lines and polygons of two or
// more parts whose part is not yet the last.
bool BringPartToFrontOp(Session& s, const HitRec& h);
bool SendPartToBackOp(Session& s, const HitRec& h);
bool InvertPartOp(Session& s, const HitRec& h);
// Inserts a vertex at (x, y) before the segment's end vertex h.HitVertex (a double click
// on a segment); on success `h` names the new vertex.
bool InsertVertexOp(Session& s, HitRec& h, double x, double y);

// Helpers shared by the editor's operations.
bool ValidHitLyr(const Session& s, const HitRec& h);
// The busy refusal: true (and the log line) when the layer is busy; else clears its
// terminate flag.
bool RefuseBusy(Session& s, int lyr, const std::string& what);
// Journals a pair and tells the window that the layer's geometry and table changed.
void Journal(Session& s, const std::string& redo, const std::string& undo);
void EditDone(Session& s, int lyr);
// Makes `rec` the layer's only selected record.
void SelectOnly(Session& s, int lyr, int rec);

} // namespace velmora
