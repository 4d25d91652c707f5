#include "edit/rotate_scale.h"

#include <string>

#include "edit/edit_format.h"
#include "edit/edit_ops.h"
#include "edit/journal.h"
#include "edit/journal_lines.h"
#include "edit/move_cmds.h"
#include "edit/move_ops.h"
#include "frame/busy.h"
#include "frame/log.h"
#include "store/shp_access.h"
#include "store/shp_store.h"

namespace velmora {

namespace {

constexpr int kCtrl = 2;

void RefreshStale(Session& s) {
  for (int i = 1; i <= s.LyrCount; ++i)
    if (s.Lyr[i].Shp.ExtentStale) RecalcExtent(s, i);
}

void PutSels(Session& s, int lyr, int scope) {
  if (scope == 2 || scope == 3) UndoPutSel(s, lyr);
  if (scope == 5)
    for (int i = 1; i <= s.LyrCount; ++i)
      if (InScopeOfAllLyrs(s, i)) UndoPutSel(s, i);
}

bool Busy(Session& s, const HitRec& h, const std::string& what) {
  if (!LyrIsBusy(s, h.HitLyr)) return false;
  LogMsg(s, " *** " + what + std::to_string(h.HitFeature) + " has been canceled *** ");
  return true;
}

std::string RotateScaleLog(Session& s, const HitRec& h, double angle, double sx, double sy) {
  return "Rotate-Scale Feature " + std::to_string(h.HitFeature) + " in " + s.Lyr[h.HitLyr].LyrName +
         "   Angle = " + FmtPlain9(s, angle) + "   ScaleX = " + FmtPlain9(s, sx * 100) +
         " %   ScaleY = " + FmtPlain9(s, sy * 100) + " % ";
}

// Rotates at MoveMode about the pivot, with its journal pair.
void RotateJournalled(Session& s, const HitRec& h, double degrees) {
  const int scope = s.Edit.MoveMode;
  JournalLines l = RotateLines(s.Lyr[h.HitLyr].Fsource, h.HitFeature, h.HitPart, s.Edit.PivotX,
                               s.Edit.PivotY, degrees, kCtrl, scope);
  Journal(s, l.Redo, l.Undo);
  PutSels(s, h.HitLyr, scope);
  RotateVertexCmd(s, h.HitLyr, h.HitFeature, h.HitPart, 0, s.Edit.PivotX, s.Edit.PivotY, degrees,
                  kCtrl, scope);
}

void ScaleJournalled(Session& s, const HitRec& h, double sx, double sy) {
  const int scope = s.Edit.MoveMode;
  JournalLines l = ScaleLines(s.Lyr[h.HitLyr].Fsource, h.HitFeature, h.HitPart, 0, s.Edit.PivotX,
                              s.Edit.PivotY, sx, sy, kCtrl, scope);
  Journal(s, l.Redo, l.Undo);
  PutSels(s, h.HitLyr, scope);
  ScaleVertexCmd(s, h.HitLyr, h.HitFeature, h.HitPart, 0, s.Edit.PivotX, s.Edit.PivotY, sx, sy,
                 kCtrl, scope);
}

} // namespace

bool StartRotateScale(Session& s, const HitRec& h) {
  if (!ValidHitLyr(s, h)) return false;
  s.Edit.RotateStarted = true;
  s.Edit.RotStartX = h.HitX, s.Edit.RotStartY = h.HitY;
  s.Edit.BlockRotate = -1;
  return true;
}

void StopRotateScale(Session& s) {
  s.Edit.RotateStarted = false;
  s.Edit.BlockRotate = 0;
}

bool CompleteRotateScale(Session& s, const HitRec& h) {
  EditVars& e = s.Edit;
  if (!e.RotateStarted || !ValidHitLyr(s, h)) return false;
  StopRotateScale(s);
  if (Busy(s, h, "Rotate-Scale Feature ")) return false;
  double sx0 = e.RotStartX, sy0 = e.RotStartY;
  SetRotAngle(s, AngleOf(e.PivotX, e.PivotY, sx0, sy0, h.HitX, h.HitY));
  RotatePoint(sx0, sy0, e.PivotX, e.PivotY, e.RotRadians);
  const double fx = (sx0 == e.PivotX) ? 1.0 : ScaleRatio(e.PivotX, sx0, h.HitX);
  const double fy = (sy0 == e.PivotY) ? 1.0 : ScaleRatio(e.PivotY, sy0, h.HitY);
  SetScales(s, fx, fy);
  RotateJournalled(s, h, e.RotDegrees);
  double rx = 1, ry = 1;
  if (s.host->MsgBox("  Would you like to Scale With Rotate  ?   ",
                     " Scale with Rotate Message Box ", MsgButtons::YesNo,
                     MsgAnswer::No) == MsgAnswer::Yes) {
    ScaleJournalled(s, h, fx, fy);
    rx = fx, ry = fy;
  }
  RefreshStale(s);
  LogMsg(s, RotateScaleLog(s, h, e.RotDegrees, rx, ry));
  EditDone(s, h.HitLyr);
  return true;
}

bool SetPivotPoint(Session& s, bool hit, double x, double y) {
  if (!hit) {
    LogMsg(s, std::string(" *** Set Pivot Point ") + " has been canceled *** ");
    return false;
  }
  SetPivot(s, x, y);
  LogMsg(s, "Set Pivot Point to Lon or X = " + FmtGroupedFixed9(s, x) +
                " , Lat or Y = " + FmtGroupedFixed9(s, y));
  return true;
}

bool MoveDistanceOp(Session& s, const HitRec& h, double dx, double dy) {
  if (!ValidHitLyr(s, h)) return false;
  if (Busy(s, h, "Move Distance Feature ")) return false;
  const int keys = s.Edit.ApplyMoveSettings ? kCtrl : 0;
  const int scope = s.Edit.ApplyMoveSettings ? s.Edit.MoveMode : 0;
  JournalLines l = MoveLenLines(s.Lyr[h.HitLyr].Fsource, h.HitFeature, h.HitPart, h.HitX, h.HitY,
                                h.HitX + dx, h.HitY + dy, keys, scope);
  Journal(s, l.Redo, l.Undo);
  if (keys) PutSels(s, h.HitLyr, scope);
  MoveLenVertexCmd(s, h.HitLyr, h.HitFeature, h.HitPart, h.HitX, h.HitY, h.HitX + dx, h.HitY + dy,
                   keys, scope);
  RefreshStale(s);
  LogMsg(s, "Move Distance Feature " + std::to_string(h.HitFeature));
  EditDone(s, h.HitLyr);
  return true;
}

bool MoveToXYOp(Session& s, const HitRec& h, double x, double y) {
  if (!ValidHitLyr(s, h)) return false;
  if (Busy(s, h, "Move to XY Feature ")) return false;
  int keys = kCtrl, scope = s.Edit.MoveMode;
  if (!s.Edit.ApplyMoveSettings) scope = h.HitKind == 2 ? 0 : 2;
  const ShpPart* p = shpio::PartAt(shpio::RecAt(s, h.HitLyr, h.HitFeature), h.HitPart);
  const int v = h.HitKind == 2 ? h.HitVertex : 0;
  if (!p || v < 0 || size_t(v) >= p->Size()) return false;
  const XY old = p->PartPoints()[size_t(v)];
  JournalLines l = MoveToLines(s.Lyr[h.HitLyr].Fsource,
                               {{h.HitFeature, h.HitPart, v, old.X, old.Y, x, y}}, keys, scope);
  Journal(s, l.Redo, l.Undo);
  PutSels(s, h.HitLyr, scope);
  MoveToVertexCmd(s, h.HitLyr, h.HitFeature, h.HitPart, v, x, y, keys, scope);
  RefreshStale(s);
  LogMsg(s, "Move to X,Y Feature " + std::to_string(h.HitFeature));
  EditDone(s, h.HitLyr);
  return true;
}

bool RotateAngleOp(Session& s, const HitRec& h, double degrees) {
  if (!ValidHitLyr(s, h)) return false;
  if (Busy(s, h, "Rotate-Scale Feature ")) return false;
  SetRotAngle(s, degrees);
  RotateJournalled(s, h, degrees);
  RefreshStale(s);
  LogMsg(s, RotateScaleLog(s, h, degrees, 1, 1));
  EditDone(s, h.HitLyr);
  return true;
}

bool ScalePercentOp(Session& s, const HitRec& h, double xPercent, double yPercent) {
  if (!ValidHitLyr(s, h) || xPercent == 0 || yPercent == 0) return false;
  if (Busy(s, h, "Rotate-Scale Feature ")) return false;
  SetScales(s, xPercent / 100, yPercent / 100);
  ScaleJournalled(s, h, s.Edit.ScaleX, s.Edit.ScaleY);
  RefreshStale(s);
  LogMsg(s, RotateScaleLog(s, h, 0, s.Edit.ScaleX, s.Edit.ScaleY));
  EditDone(s, h.HitLyr);
  return true;
}

} // namespace velmora
