#include "edit/move_cmds.h"

#include "edit/journal.h"
#include "edit/move_ops.h"

namespace velmora {

namespace {

constexpr int kCtrl = 2;
constexpr double kDegToRad = 3.14159265358979 / 180;

// Runs `f` with the layer's selection swapped for the snapshot of the journal entry at hand
// (when the entry holds one), so that a replay meets the selection of the original edit.
template <class F> void WithEntrySel(Session& s, int lyr, F f) {
  UndoSwapSel(s, lyr);
  f();
  UndoSwapSel(s, lyr);
}

// The other visible open layers first, the named one last: its vertex gives the offset of
// the "...To" forms and must not move before the others have taken it.
template <class F> void OverAllLyrs(Session& s, int lyr, F f) {
  for (int i = 1; i <= s.LyrCount; ++i)
    if (i != lyr && InScopeOfAllLyrs(s, i)) f(i);
  f(lyr);
}

// Rotate and scale go through the dispatchers on MoveMode, set from the line for the call.
template <class F> void WithMode(Session& s, int lyr, int mode, F f) {
  const int keep = s.Edit.MoveMode;
  s.Edit.MoveMode = mode;
  if (mode == 3) {
    WithEntrySel(s, lyr, f);
  } else if (mode == 5) {
    for (int i = 1; i <= s.LyrCount; ++i)
      if (InScopeOfAllLyrs(s, i)) UndoSwapSel(s, i);
    f();
    for (int i = 1; i <= s.LyrCount; ++i)
      if (InScopeOfAllLyrs(s, i)) UndoSwapSel(s, i);
  } else {
    f();
  }
  s.Edit.MoveMode = keep;
}

} // namespace

void MoveLenVertexCmd(Session& s, int lyr, int rec, int part, double x1, double y1, double x2,
                      double y2, int keys, int scope) {
  const double dx = x2 - x1, dy = y2 - y1;
  const int mode = keys & kCtrl ? scope : 0;
  switch (mode) {
  case 1:
    MovePartBy(s, lyr, rec, part, dx, dy, kMoveXY, 0, 0);
    break;
  case 2:
  case 3:
    WithEntrySel(s, lyr, [&] { MoveSelectedBy(s, lyr, lyr, rec, dx, dy, kMoveXY, 0, 0); });
    break;
  case 4:
    MoveAllBy(s, lyr, lyr, dx, dy, kMoveXY, 0, 0);
    break;
  case 5:
    OverAllLyrs(s, lyr, [&](int i) {
      WithEntrySel(s, i, [&] { MoveSelectedBy(s, i, lyr, rec, dx, dy, kMoveXY, 0, 0); });
    });
    break;
  case 6:
    OverAllLyrs(s, lyr, [&](int i) { MoveAllBy(s, i, lyr, dx, dy, kMoveXY, 0, 0); });
    break;
  default: // the drag of a segment or a polygon moves its feature
    MoveFeatureBy(s, lyr, rec, dx, dy, kMoveXY, 0, 0);
  }
}

void MoveToVertexCmd(Session& s, int lyr, int rec, int part, int vertex, double x, double y,
                     int keys, int scope) {
  const int mode = keys & kCtrl ? scope : 0;
  switch (mode) {
  case 1:
    MovePartTo(s, lyr, rec, part, vertex, x, y, kMoveXY, 0, 0);
    break;
  case 2:
    MoveFeatureTo(s, lyr, rec, part, vertex, x, y, kMoveXY, 0, 0);
    break;
  case 3:
    WithEntrySel(s, lyr,
                 [&] { MoveSelectedTo(s, lyr, lyr, rec, part, vertex, x, y, kMoveXY, 0, 0); });
    break;
  case 4:
    MoveAllTo(s, lyr, lyr, rec, part, vertex, x, y, kMoveXY, 0, 0);
    break;
  case 5:
    OverAllLyrs(s, lyr, [&](int i) {
      WithEntrySel(s, i,
                   [&] { MoveSelectedTo(s, i, lyr, rec, part, vertex, x, y, kMoveXY, 0, 0); });
    });
    break;
  case 6:
    OverAllLyrs(s, lyr,
                [&](int i) { MoveAllTo(s, i, lyr, rec, part, vertex, x, y, kMoveXY, 0, 0); });
    break;
  default:
    MoveVertexTo(s, lyr, rec, part, vertex, x, y, kMoveXY, 0, 0);
  }
}

void RotateVertexCmd(Session& s, int lyr, int rec, int part, int /*vertex*/, double px, double py,
                     double degrees, int keys, int scope) {
  WithMode(s, lyr, keys & kCtrl ? scope : 1,
           [&] { RotateScope(s, lyr, rec, part, px, py, degrees * kDegToRad); });
}

void ScaleVertexCmd(Session& s, int lyr, int rec, int part, int /*vertex*/, double px, double py,
                    double sx, double sy, int keys, int scope) {
  WithMode(s, lyr, keys & kCtrl ? scope : 1,
           [&] { ScaleScope(s, lyr, rec, part, px, py, sx, sy); });
}

} // namespace velmora
