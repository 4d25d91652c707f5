#include "edit/move_cmds.h"

#include "edit/not_ready.h"

namespace velmora {

// The movement primitives come with the editor; until then each command says so, so that a
// .lst or an undo line never passes for done.

void MoveLenVertexCmd(Session& s, int lyr, int /*rec*/, int /*part*/, double /*x1*/, double /*y1*/,
                      double /*x2*/, double /*y2*/, int /*keys*/, int /*scope*/) {
  LogNotAvailable(s, "MoveLen Vertex", lyr);
}

void MoveToVertexCmd(Session& s, int lyr, int /*rec*/, int /*part*/, int /*vertex*/, double /*x*/,
                     double /*y*/, int /*keys*/, int /*scope*/) {
  LogNotAvailable(s, "MoveTo Vertex", lyr);
}

void RotateVertexCmd(Session& s, int lyr, int /*rec*/, int /*part*/, int /*vertex*/, double /*px*/,
                     double /*py*/, double /*degrees*/, int /*keys*/, int /*scope*/) {
  LogNotAvailable(s, "Rotate Vertex", lyr);
}

void ScaleVertexCmd(Session& s, int lyr, int /*rec*/, int /*part*/, int /*vertex*/, double /*px*/,
                    double /*py*/, double /*sx*/, double /*sy*/, int /*keys*/, int /*scope*/) {
  LogNotAvailable(s, "Scale Vertex", lyr);
}

} // namespace velmora
