#pragma once

#include "model/session.h"

namespace velmora {

// The ways of moving the map. Each computes the window through MapTools and asks the
// host to show the new map; the ones marked so record the window in the view history.
void MapRepaint(Session& s); // same window
void MapFit(Session& s);     // window from the stored four sides
void MapFitHist(Session& s); // the same, recorded
void MapFull(Session& s);    // full extent, recorded
void MapApply(Session& s);   // the gesture of MapTool over DragX1 .. DragY2, recorded
void ZoomPrevious(Session& s);
void ZoomNext(Session& s);
// Fits the window to a scale 1 : n around the present centre, with history.
void SetMapScale(Session& s, double n);
// The stored four sides for MapFit.
void SetFitSides(Session& s, double left, double top, double right, double bottom);

} // namespace velmora
