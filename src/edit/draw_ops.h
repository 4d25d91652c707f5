#pragma once
#include "model/session.h"

namespace velmora {

// Creating features with tool 12, vertex by vertex, into s.Edit.DrawHit. The last vertex
// of a line or polygon under construction is a rubber vertex that follows the pointer.

// A click at world point (wx, wy): the first one makes the feature in the active layer,
// later ones fix the rubber vertex. False when refused (busy, not editable, no shape layer).
bool DrawClick(Session& s, double wx, double wy, int keys);
// The release of a click: a rubber vertex is due at the next move.
void DrawRelease(Session& s);
// The pointer moved with no button: the rubber vertex follows (made first when due).
void DrawFollow(Session& s, double wx, double wy);
// "Finish Drawing" and the double click: the rubber vertex goes, a polygon is closed.
void FinishDrawing(Session& s);
// "Add New Vertexes in Editing Part" and "Add New Part In Editing Feature" on MenuHit.
bool AddNewVertexesInEditingPart(Session& s);
bool AddNewPartInEditingFeature(Session& s);
// "Start Drawing Circle in Active Layer": toggles the circle mode.
void ToggleDrawCircle(Session& s);

} // namespace velmora
