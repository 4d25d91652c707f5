#include "edit/drag_ops.h"

#include <string>
#include <vector>

#include "edit/edit_ops.h"
#include "edit/hit_test.h"
#include "edit/journal.h"
#include "edit/journal_lines.h"
#include "edit/move_cmds.h"
#include "edit/move_ops.h"
#include "edit/pick_index.h"
#include "edit/snap_ops.h"
#include "frame/log.h"
#include "store/shp_access.h"
#include "store/shp_store.h"
#include "view/map_tools.h"

namespace velmora {

namespace {

constexpr int kShift = 1, kCtrl = 2;

bool VertexAt(const Session& s, const HitRec& h, XY& out) {
  const ShpPart* p = shpio::PartAt(shpio::RecAt(s, h.HitLyr, h.HitFeature), h.HitPart);
  if (!p || h.HitVertex < 0 || size_t(h.HitVertex) >= p->Size()) return false;
  out = p->PartPoints()[size_t(h.HitVertex)];
  return true;
}

bool InList(const Session& s, const HitRec& h) {
  for (const HitRec& m : s.Edit.MoveList)
    if (m.HitLyr == h.HitLyr && m.HitFeature == h.HitFeature && m.HitPart == h.HitPart &&
        m.HitVertex == h.HitVertex)
      return true;
  return false;
}

void Append(Session& s, const HitRec& h) {
  XY v;
  if (!VertexAt(s, h, v) || InList(s, h)) return;
  s.Edit.MoveList.push_back(h);
  s.Edit.MoveFromX.push_back(v.X);
  s.Edit.MoveFromY.push_back(v.Y);
}

void MoveEntry(Session& s, const HitRec& h, double x, double y, int keys) {
  if (keys & kCtrl)
    MoveToVertexCmd(s, h.HitLyr, h.HitFeature, h.HitPart, h.HitVertex, x, y, kCtrl,
                    s.Edit.MoveMode);
  else
    MoveVertexTo(s, h.HitLyr, h.HitFeature, h.HitPart, h.HitVertex, x, y, kMoveXY, 0, 0);
}

void RefreshChangedLyrs(Session& s) {
  for (int i = 1; i <= s.LyrCount; ++i)
    if (s.Lyr[i].Shp.ExtentStale) RecalcExtent(s, i);
}

// Scopes on selections keep the selections with the entry.
void PutSels(Session& s, int lyr, int keys, int scope) {
  if (!(keys & kCtrl)) return;
  if (scope == 2 || scope == 3) UndoPutSel(s, lyr);
  if (scope == 5)
    for (int i = 1; i <= s.LyrCount; ++i)
      if (InScopeOfAllLyrs(s, i)) UndoPutSel(s, i);
}

void Forget(Session& s) {
  s.Edit.MoveList.clear();
  s.Edit.MoveFromX.clear();
  s.Edit.MoveFromY.clear();
  s.Edit.Moved = false;
}

} // namespace

bool DragUnderWay(const Session& s) {
  return !s.Edit.MoveList.empty();
}

void GatherVertexes(Session& s, int lyr, bool shift) {
  EditVars& e = s.Edit;
  if (e.MoveList.empty()) return;
  const HitRec first = e.MoveList[0];
  if (shift) {
    if (!s.Lyr[lyr].EEditable || s.Lyr[lyr].LyrKind != 1) return;
    const int keep = s.MapView.MapTool;
    s.MapView.MapTool = 15;
    SetHitMargins(s, lyr, 1, 0);
    s.MapView.MapTool = keep;
    std::vector<int> near;
    PickCandidates(s, lyr, s.View.PickLeft, s.View.PickBottom, s.View.PickRight, s.View.PickTop,
                   s.Edit.HitNow.HitVrtMargin, near);
    for (int f : near) {
      int sp = 0, sv = 0;
      while (HitTestFeature(s, lyr, f, sp, sv) == 2) {
        const HitRec h = s.Edit.HitNow;
        Append(s, h);
        const size_t ub = e.MoveList.size() - 1;
        if ((ub > 0 && ub % 99 == 0) || ub > 120) {
          LogMsg(s, " *** Only 100 vertexes can be moved by shift Snap, Use 'Move Settings' and "
                    "Ctrl to move unlimited number of vertexes *** ");
          return;
        }
        sp = h.HitPart, sv = h.HitVertex + 1;
      }
    }
    return;
  }
  if (lyr != first.HitLyr) return;
  // A ring's two coincident ends move together.
  const ShpPart* p = shpio::PartAt(shpio::RecAt(s, lyr, first.HitFeature), first.HitPart);
  if (!p) return;
  const int n = int(shpio::LiveCount(*p));
  auto P = p->PartPoints();
  if (n < 2 || P[0].X != P[size_t(n - 1)].X || P[0].Y != P[size_t(n - 1)].Y) return;
  HitRec twin = first;
  if (first.HitVertex == 0)
    twin.HitVertex = n - 1;
  else if (first.HitVertex == n - 1)
    twin.HitVertex = 0;
  else
    return;
  Append(s, twin);
}

bool StartVertexDrag(Session& s, double x, double y, int keys) {
  Forget(s);
  EditVars& e = s.Edit;
  if (e.BlockRotate || !ValidHitLyr(s, e.EditHit)) return false;
  if (RefuseBusy(s, e.EditHit.HitLyr, "Move Vertex")) return false;
  SetPickBox(s, x, y);
  HitRec h = e.EditHit;
  h.HitKind = 2;
  Append(s, h);
  if (e.MoveList.empty()) return false;
  for (int i = 1; i <= s.LyrCount; ++i) {
    if (!s.Lyr[i].DVisable || s.Lyr[i].LyrKind == 0) continue;
    GatherVertexes(s, i, (keys & kShift) != 0);
    if ((keys & kShift) && e.MoveList.size() - 1 > 0 &&
        ((e.MoveList.size() - 1) % 99 == 0 || e.MoveList.size() - 1 > 120))
      break;
  }
  e.DownWX = e.LastWX = WorldX(s, x), e.DownWY = e.LastWY = WorldY(s, y);
  return true;
}

void VertexDragStep(Session& s, double wx, double wy, int keys) {
  EditVars& e = s.Edit;
  if (e.BlockRotate || e.MoveList.empty()) return;
  for (const HitRec& h : e.MoveList) MoveEntry(s, h, wx, wy, keys);
  e.LastWX = wx, e.LastWY = wy;
  e.Moved = true;
}

bool FinishVertexDrag(Session& s, double x, double y, int keys) {
  EditVars& e = s.Edit;
  if (e.MoveList.empty()) return false;
  const HitRec first = e.MoveList[0];
  double wx = WorldX(s, x), wy = WorldY(s, y);
  SetPickBox(s, x, y);
  double tx = wx, ty = wy;
  const bool target = SnapRelease(s, 15, first.HitLyr, first.HitFeature, first.HitPart,
                                  first.HitVertex, wx, wy, keys, tx, ty);
  const bool moved = e.Moved || x != e.DownX || y != e.DownY;
  if (!((keys & kShift) || ((keys & 4) && target) || moved)) {
    Forget(s);
    return false;
  }
  for (const HitRec& h : e.MoveList) MoveEntry(s, h, tx, ty, keys);
  // One MOVETO group per moved vertex, each naming its own layer.
  std::string redo, undo;
  const int scope = e.MoveMode;
  for (size_t i = 0; i < e.MoveList.size(); ++i) {
    const HitRec& h = e.MoveList[i];
    XY now{tx, ty};
    VertexAt(s, h, now);
    JournalLines l = MoveToLines(
        s.Lyr[h.HitLyr].Fsource,
        {{h.HitFeature, h.HitPart, h.HitVertex, e.MoveFromX[i], e.MoveFromY[i], now.X, now.Y}},
        keys, scope);
    redo += (redo.empty() ? "" : " ") + l.Redo;
    undo += (undo.empty() ? "" : " ") + l.Undo;
  }
  Journal(s, redo, undo);
  PutSels(s, first.HitLyr, keys, scope);
  RefreshChangedLyrs(s);
  if ((keys & kCtrl) && (scope == 3 || scope == 5)) RecalcExtent(s, first.HitLyr);
  e.EditHit.HitX = tx, e.EditHit.HitY = ty;
  Forget(s);
  EditDone(s, first.HitLyr);
  return true;
}

bool StartFeatureDrag(Session& s, double wx, double wy, int /*keys*/) {
  Forget(s);
  EditVars& e = s.Edit;
  if (!ValidHitLyr(s, e.EditHit)) return false;
  if (RefuseBusy(s, e.EditHit.HitLyr, "Move Feature " + std::to_string(e.EditHit.HitFeature)))
    return false;
  HitRec h = e.EditHit;
  h.HitX = wx, h.HitY = wy;
  e.MoveList.push_back(h);
  e.MoveFromX.push_back(wx);
  e.MoveFromY.push_back(wy);
  e.DownWX = e.LastWX = wx, e.DownWY = e.LastWY = wy;
  return true;
}

void FeatureDragStep(Session& s, double wx, double wy, int keys) {
  EditVars& e = s.Edit;
  if (e.MoveList.empty() || e.BlockRotate) return;
  if (wx == e.LastWX && wy == e.LastWY) return;
  const HitRec& h = e.MoveList[0];
  MoveLenVertexCmd(s, h.HitLyr, h.HitFeature, h.HitPart, e.LastWX, e.LastWY, wx, wy, keys,
                   e.MoveMode);
  e.LastWX = wx, e.LastWY = wy;
  e.Moved = true;
}

bool FinishFeatureDrag(Session& s, double wx, double wy, int keys) {
  EditVars& e = s.Edit;
  if (e.MoveList.empty()) return false;
  FeatureDragStep(s, wx, wy, keys);
  const HitRec h = e.MoveList[0];
  const double x1 = e.DownWX, y1 = e.DownWY;
  Forget(s);
  if (x1 == wx && y1 == wy) return false; // a click: nothing changed
  JournalLines l = MoveLenLines(s.Lyr[h.HitLyr].Fsource, h.HitFeature, h.HitPart, x1, y1, wx, wy,
                                keys, e.MoveMode);
  Journal(s, l.Redo, l.Undo);
  PutSels(s, h.HitLyr, keys, e.MoveMode);
  RefreshChangedLyrs(s);
  e.EditHit.HitX += wx - x1, e.EditHit.HitY += wy - y1;
  EditDone(s, h.HitLyr);
  return true;
}

void CancelDrag(Session& s) {
  EditVars& e = s.Edit;
  if (e.MoveList.empty()) return;
  const int keys = e.ShiftState;
  const HitRec first = e.MoveList[0];
  if (first.HitKind == 2) {
    for (size_t i = e.MoveList.size(); i-- > 0;)
      MoveEntry(s, e.MoveList[i], e.MoveFromX[i], e.MoveFromY[i], keys);
  } else {
    MoveLenVertexCmd(s, first.HitLyr, first.HitFeature, first.HitPart, e.LastWX, e.LastWY, e.DownWX,
                     e.DownWY, keys, e.MoveMode);
  }
  RefreshChangedLyrs(s);
  Forget(s);
}

} // namespace velmora
