#pragma once
#include "model/session.h"

namespace velmora {

// The four movement commands of the command language, as the interpreter hands them on
// after reading their tokens and finding the layer. `keys` is the keyboard state recorded
// with the movement (bit 2 Ctrl); with Ctrl, `scope` (0 .. 6) widens the movement from the
// named vertex or part to the part, the feature, the selection or all features of this or
// of all visible layers. Records above RecCount never reach these.

// Moves by the vector from (x1, y1) to (x2, y2).
void MoveLenVertexCmd(Session& s, int lyr, int rec, int part, double x1, double y1, double x2,
                      double y2, int keys, int scope);
// Moves vertex `vertex` (or what the scope names, by the same offset) to (x, y).
void MoveToVertexCmd(Session& s, int lyr, int rec, int part, int vertex, double x, double y,
                     int keys, int scope);
// Rotates by `degrees` about the pivot (px, py).
void RotateVertexCmd(Session& s, int lyr, int rec, int part, int vertex, double px, double py,
                     double degrees, int keys, int scope);
// Scales by (sx, sy) about the pivot (px, py).
void ScaleVertexCmd(Session& s, int lyr, int rec, int part, int vertex, double px, double py,
                    double sx, double sy, int keys, int scope);

} // namespace velmora
