#pragma once
#include "model/session.h"

namespace velmora {

// Hit tests of the map editor. The pick box is s.View.PickLeft .. PickBottom with its
// centre PickX, PickY; the test in progress is s.Edit.HitNow.

// The pick box: pixels x-2 .. x+2 and y-2 .. y+2 in world units, with its centre.
void SetPickBox(Session& s, double x, double y);
// The pick box from a dragged pixel rectangle (the pick area of tool 11).
void SetPickRect(Session& s, double x1, double y1, double x2, double y2);
// The margins of HitNow for the present tool: `mode` 0 first hit, 1 full test, 2 `extra`
// given in map units for both; otherwise `extra` scales the segment margin.
void SetHitMargins(Session& s, int lyr, int mode, double extra);
// Tests one feature against the pick box from (startPart, startVertex); fills HitNow and
// returns its kind (0 none, 1 segment, 2 vertex, 3 inside a polygon).
int HitTestFeature(Session& s, int lyr, int rec, int startPart, int startVertex);
// Does the layer take part in picking with the present tool (Shift: tools 12, 15 take any)?
bool LyrQualifies(const Session& s, int lyr, bool shift);
// Picks across the layers, top one first and within a layer the last feature first; an
// image layer's extent gives kind 4 after a miss on its records. The hit is in HitNow.
int PickLayers(Session& s, bool shift);
// The hover of tools 11, 13, 14, 15: a full test of the picked feature at pixel (x, y)
// that sets the tool to 15, 14, 13 or 11 by the kind; returns the tool.
int HoverTest(Session& s, double x, double y);

} // namespace velmora
