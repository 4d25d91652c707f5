#include "edit/edit_ops.h"

#include <algorithm>

#include "edit/journal.h"
#include "edit/journal_lines.h"
#include "frame/busy.h"
#include "frame/log.h"
#include "store/shp_access.h"
#include "store/shp_store.h"

namespace velmora {

namespace {

const ShpPart* HitPart(const Session& s, const HitRec& h) {
  return shpio::PartAt(shpio::RecAt(s, h.HitLyr, h.HitFeature), h.HitPart);
}

std::string InLyr(const Session& s, int lyr) {
  return " in layer " + s.Lyr[lyr].LyrName;
}

bool IsLineOrGon(int t) {
  return t == 3 || t == 5 || t == 13 || t == 15 || t == 23 || t == 25;
}

} // namespace

bool ValidHitLyr(const Session& s, const HitRec& h) {
  return h.HitKind != 0 && h.HitLyr >= 1 && h.HitLyr <= s.LyrCount &&
         shpio::RecAt(s, h.HitLyr, h.HitFeature) != nullptr;
}

bool RefuseBusy(Session& s, int lyr, const std::string& what) {
  if (LyrIsBusy(s, lyr)) {
    LogMsg(s, " *** " + what + InLyr(s, lyr) + " has been canceled *** ");
    return true;
  }
  s.Lyr[lyr].LyrTerminate = 0;
  return false;
}

void Journal(Session& s, const std::string& redo, const std::string& undo) {
  UndoAdd(s, redo, undo);
}

void EditDone(Session& s, int lyr) {
  s.host->TableDataChanged(lyr);
  s.host->MapRedraw();
}

void SelectOnly(Session& s, int lyr, int rec) {
  auto& bits = s.Lyr[lyr].SelBits;
  std::fill(bits.begin(), bits.end(), uint8_t(0));
  size_t i = size_t(rec) / 8;
  if (rec >= 0 && i < bits.size()) bits[i] = uint8_t(bits[i] | (1u << (rec % 8)));
}

bool DeleteVertexOp(Session& s, const HitRec& h) {
  if (!ValidHitLyr(s, h)) return false;
  const ShpPart* p = HitPart(s, h);
  if (!p || h.HitVertex < 0 || size_t(h.HitVertex) >= p->Size()) return false;
  const XY v = p->PartPoints()[size_t(h.HitVertex)];
  const std::string what = "Delete Vertex " + NumText(v.X) + " , " + NumText(v.Y);
  if (RefuseBusy(s, h.HitLyr, what)) return false;
  if (s.Edit.RotateStarted && s.Edit.RotStartX == v.X && s.Edit.RotStartY == v.Y)
    s.Edit.RotateStarted = false, s.Edit.BlockRotate = 0; // its handle goes with it
  JournalLines l =
      DeleteVertexLines(s.Lyr[h.HitLyr].Fsource, h.HitFeature, h.HitPart, h.HitVertex, v.X, v.Y);
  DeleteVertices(s, h.HitLyr, h.HitFeature, h.HitPart, h.HitVertex, 1);
  RecalcExtent(s, h.HitLyr);
  LogMsg(s, what + InLyr(s, h.HitLyr));
  Journal(s, l.Redo, l.Undo);
  EditDone(s, h.HitLyr);
  return true;
}

bool DeletePartOp(Session& s, const HitRec& h) {
  if (!ValidHitLyr(s, h) || !HitPart(s, h)) return false;
  const std::string what =
      "Delete Part " + std::to_string(h.HitPart) + " in Feature " + std::to_string(h.HitFeature);
  if (RefuseBusy(s, h.HitLyr, what)) return false;
  DeletePart(s, h.HitLyr, h.HitFeature, h.HitPart, true);
  LogMsg(s, what + InLyr(s, h.HitLyr));
  JournalLines l = DeletePartLines(s.Lyr[h.HitLyr].Fsource, h.HitFeature, h.HitPart);
  Journal(s, l.Redo, l.Undo);
  EditDone(s, h.HitLyr);
  return true;
}

bool DeleteFeatureOp(Session& s, const HitRec& h) {
  if (!ValidHitLyr(s, h)) return false;
  const std::string what = "Delete Feature " + std::to_string(h.HitFeature);
  if (RefuseBusy(s, h.HitLyr, what)) return false;
  DeleteRec(s, h.HitLyr, h.HitFeature, true);
  LogMsg(s, what + InLyr(s, h.HitLyr));
  JournalLines l = DeleteFeatureLines(s.Lyr[h.HitLyr].Fsource, h.HitFeature);
  Journal(s, l.Redo, l.Undo);
  EditDone(s, h.HitLyr);
  return true;
}

namespace {

// Swaps part h.HitPart with its neighbour `step` (+1 towards the front, -1 back).
bool ShiftPart(Session& s, const HitRec& h, int step) {
  if (!ValidHitLyr(s, h)) return false;
  const ShpRecord* r = shpio::RecAt(s, h.HitLyr, h.HitFeature);
  const int other = h.HitPart + step;
  if (!IsLineOrGon(r->ShapeType) || r->NumParts < 2 || h.HitPart < 0 || other < 0 ||
      other >= r->NumParts)
    return false;
  const std::string part = std::to_string(h.HitPart), f = std::to_string(h.HitFeature);
  const std::string what = step > 0 ? "Bring Part " + part + " to front in Feature " + f
                                    : "Send Part " + part + " to back in Feature " + f;
  if (RefuseBusy(s, h.HitLyr, what)) return false;
  const std::string& path = s.Lyr[h.HitLyr].Fsource;
  // The part now stands at `other`: the undo line names it there.
  std::string redo, undo;
  if (step > 0) {
    MovePartDown(s, h.HitLyr, h.HitFeature, h.HitPart);
    redo = SendPartFrontLines(path, h.HitFeature, h.HitPart).Redo;
    undo = SendPartBackLines(path, h.HitFeature, other).Redo;
  } else {
    MovePartUp(s, h.HitLyr, h.HitFeature, h.HitPart);
    redo = SendPartBackLines(path, h.HitFeature, h.HitPart).Redo;
    undo = SendPartFrontLines(path, h.HitFeature, other).Redo;
  }
  LogMsg(s, what + InLyr(s, h.HitLyr));
  Journal(s, redo, undo);
  EditDone(s, h.HitLyr);
  return true;
}

} // namespace

bool BringPartToFrontOp(Session& s, const HitRec& h) {
  return ShiftPart(s, h, +1);
}

bool SendPartToBackOp(Session& s, const HitRec& h) {
  return ShiftPart(s, h, -1);
}

bool InvertPartOp(Session& s, const HitRec& h) {
  if (!ValidHitLyr(s, h) || !HitPart(s, h)) return false;
  if (!IsLineOrGon(h.HitType)) return false;
  const std::string what = "Invert Part " + std::to_string(h.HitPart) + " Direction in Feature " +
                           std::to_string(h.HitFeature);
  if (RefuseBusy(s, h.HitLyr, what)) return false;
  ReversePart(s, h.HitLyr, h.HitFeature, h.HitPart);
  LogMsg(s, what + InLyr(s, h.HitLyr));
  JournalLines l = InvertPartLines(s.Lyr[h.HitLyr].Fsource, h.HitFeature, h.HitPart);
  Journal(s, l.Redo, l.Undo);
  EditDone(s, h.HitLyr);
  return true;
}

bool InsertVertexOp(Session& s, HitRec& h, double x, double y) {
  if (!ValidHitLyr(s, h) || !HitPart(s, h)) return false;
  if (LyrIsBusy(s, h.HitLyr)) { // the refusal keeps the wording of the delete
    LogMsg(s, " *** Delete Vertex " + NumText(x) + " , " + NumText(y) + InLyr(s, h.HitLyr) +
                  " has been canceled *** ");
    return false;
  }
  const int at = std::max(h.HitVertex, 0);
  InsertVertexRefresh(s, h.HitLyr, h.HitFeature, h.HitPart, at, x, y, 0, 0);
  h.HitKind = 2, h.HitVertex = at, h.HitX = x, h.HitY = y;
  LogMsg(s, "Insert Vertex " + NumText(x) + " , " + NumText(y) + InLyr(s, h.HitLyr));
  JournalLines l = InsertVertexLines(s.Lyr[h.HitLyr].Fsource, h.HitFeature, h.HitPart, at, x, y);
  Journal(s, l.Redo, l.Undo);
  EditDone(s, h.HitLyr);
  return true;
}

} // namespace velmora
