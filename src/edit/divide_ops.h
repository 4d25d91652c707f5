#pragma once
#include "model/edit_types.h"
#include "model/session.h"

namespace velmora {

// The divide and combine entries of the edit menu, on the menu's hit. Two-step entries
// keep their first pick in s.Edit.FirstPick with s.Edit.Pending.

// "Divide Polyline" at an inner vertex; "Divide Feature" on a segment inserts the vertex
// there first.
bool DivideLineOp(Session& s, const HitRec& h);
// "Start Dividing Polygon", then "Complete Dividing Polygon" at a second vertex of the ring
// ("Stop Dividing Polygon" cancels).
bool StartDividePolygon(Session& s, const HitRec& h);
bool CompleteDividePolygon(Session& s, const HitRec& h);
// Can `h` complete the two-step operation in hand?
bool CanCompleteDivide(const Session& s, const HitRec& h);
bool CanCompleteCombine(const Session& s, const HitRec& h);
// "Combine Polyline" at an end vertex: joined with the line of the layer whose end lies on
// the same point, or else with the end picked next.
bool CombineLineOp(Session& s, const HitRec& h);
// "Start Combining Polygon" on a segment, "Complete Combining Polygon" on the same edge of
// a second polygon of the layer.
bool StartCombinePolygon(Session& s, const HitRec& h);
bool CompleteCombinePolygon(Session& s, const HitRec& h);
void StopPending(Session& s);

// The journalled forms, as the entries call them.
bool DivideJournalled(Session& s, int lyr, int rec, int part, int v1, int v2);
bool CombineJournalled(Session& s, int lyr, int f1, int p1, int v1, int v1b, int f2, int p2, int v2,
                       int v2b);

} // namespace velmora
