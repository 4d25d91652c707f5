#pragma once
#include "model/edit_types.h"
#include "model/session.h"

namespace velmora {

// The movement operations of the edit menu and of the dialogs frmMove and frmRotateAngle.
// Each refuses on a busy layer, journals its pair and logs as the dialogs do.

// "Start Rotate-Scale": notes the hit as the start point. False without a hit.
bool StartRotateScale(Session& s, const HitRec& h);
// "Complete Rotate-Scale": the hit is the end point; rotates about the pivot and, when the
// user says Yes, scales. True when it ran.
bool CompleteRotateScale(Session& s, const HitRec& h);
// "Stop Rotate-Scale": nothing changes.
void StopRotateScale(Session& s);
// "Set Pivot Point" at the pointer's last world point; `hit` false gives the refusal.
bool SetPivotPoint(Session& s, bool hit, double x, double y);

// frmMove "Move": by (dx, dy) or to (x, y). With ApplyMoveSettings the scope is MoveMode;
// otherwise the hit names it: the feature, or for "Move To" on a vertex the vertex.
bool MoveDistanceOp(Session& s, const HitRec& h, double dx, double dy);
bool MoveToXYOp(Session& s, const HitRec& h, double x, double y);
// frmRotateAngle "Rotate" by degrees and "Scale" by percent, about the pivot, at MoveMode.
bool RotateAngleOp(Session& s, const HitRec& h, double degrees);
bool ScalePercentOp(Session& s, const HitRec& h, double xPercent, double yPercent);

} // namespace velmora
