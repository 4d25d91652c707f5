#include "edit/move_cmds.h"

namespace velmora {

// The movement primitives are not written yet; the commands parse and do nothing.

void MoveLenVertexCmd(Session& /*s*/, int /*lyr*/, int /*rec*/, int /*part*/, double /*x1*/,
                      double /*y1*/, double /*x2*/, double /*y2*/, int /*keys*/, int /*scope*/) {}

void MoveToVertexCmd(Session& /*s*/, int /*lyr*/, int /*rec*/, int /*part*/, int /*vertex*/,
                     double /*x*/, double /*y*/, int /*keys*/, int /*scope*/) {}

void RotateVertexCmd(Session& /*s*/, int /*lyr*/, int /*rec*/, int /*part*/, int /*vertex*/,
                     double /*px*/, double /*py*/, double /*degrees*/, int /*keys*/,
                     int /*scope*/) {}

void ScaleVertexCmd(Session& /*s*/, int /*lyr*/, int /*rec*/, int /*part*/, int /*vertex*/,
                    double /*px*/, double /*py*/, double /*sx*/, double /*sy*/, int /*keys*/,
                    int /*scope*/) {}

} // namespace velmora
