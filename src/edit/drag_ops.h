#pragma once
#include "model/session.h"

namespace velmora {

// The drags of the editor. A vertex drag (tool 15) moves every vertex of s.Edit.MoveList;
// a segment or polygon drag (tools 14, 13) moves the feature. `keys`: bit 1 Shift, bit 2
// Ctrl (the move settings' scope), bit 4 Alt. Each finished drag journals one pair.

// The press on a vertex: MoveList from EditHit and, with Shift, every vertex of the
// editable layers inside the pick box (pixel x, y), up to the limit. False when refused.
bool StartVertexDrag(Session& s, double x, double y, int keys);
// Gathers into MoveList the vertices of layer `lyr` that move with the picked one.
void GatherVertexes(Session& s, int lyr, bool shift);
// One step of the drag to world point (wx, wy).
void VertexDragStep(Session& s, double wx, double wy, int keys);
// The release at pixel (x, y): snap, final move, journal. True when something moved.
bool FinishVertexDrag(Session& s, double x, double y, int keys);

bool StartFeatureDrag(Session& s, double wx, double wy, int keys);
void FeatureDragStep(Session& s, double wx, double wy, int keys);
bool FinishFeatureDrag(Session& s, double wx, double wy, int keys);

// Escape: the drag in hand is undone and forgotten.
void CancelDrag(Session& s);
bool DragUnderWay(const Session& s);

} // namespace velmora
