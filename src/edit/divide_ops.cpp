#include "edit/divide_ops.h"

#include <string>

#include "edit/divide_cmds.h"
#include "edit/edit_ops.h"
#include "edit/journal.h"
#include "edit/journal_lines.h"
#include "frame/log.h"
#include "store/shp_access.h"
#include "store/shp_store.h"

namespace velmora {

namespace {

bool IsLine(int t) {
  return t == 3 || t == 13 || t == 23;
}
bool IsGon(int t) {
  return t == 5 || t == 15 || t == 25;
}

int LiveOf(const Session& s, const HitRec& h) {
  const ShpPart* p = shpio::PartAt(shpio::RecAt(s, h.HitLyr, h.HitFeature), h.HitPart);
  return p ? int(shpio::LiveCount(*p)) : 0;
}

XY VertexOf(const Session& s, int lyr, int rec, int part, int v) {
  const ShpPart* p = shpio::PartAt(shpio::RecAt(s, lyr, rec), part);
  return p && v >= 0 && size_t(v) < p->Size() ? p->PartPoints()[size_t(v)] : XY{};
}

std::string InLyr(const Session& s, int lyr) {
  return " in layer " + s.Lyr[lyr].LyrName;
}

} // namespace

bool DivideJournalled(Session& s, int lyr, int rec, int part, int v1, int v2) {
  const int n = s.Lyr[lyr].Shp.RecCount + 1;
  const std::string what = "Divide Feature " + std::to_string(rec);
  if (RefuseBusy(s, lyr, what)) return false;
  JournalLines l = DivideFeatureLines(s.Lyr[lyr].Fsource, rec, part, v1, v2, n);
  Journal(s, l.Redo, l.Undo);
  UndoPutRec(s, lyr, rec);
  DivideFeatureCmd(s, lyr, rec, part, v1, v2, n);
  if (s.Lyr[lyr].Shp.RecCount != n) { // nothing to cut
    UndoDropLast(s);
    return false;
  }
  LogMsg(s, what + " into " + std::to_string(rec) + " and " + std::to_string(n) + InLyr(s, lyr));
  EditDone(s, lyr);
  return true;
}

bool CombineJournalled(Session& s, int lyr, int f1, int p1, int v1, int v1b, int f2, int p2, int v2,
                       int v2b) {
  const std::string what = "Combine Feature " + std::to_string(f1) + " and " + std::to_string(f2);
  if (RefuseBusy(s, lyr, what)) return false;
  JournalLines l = CombineFeatureLines(s.Lyr[lyr].Fsource, f1, p1, v1, v1b, lyr, f2, p2, v2, v2b);
  Journal(s, l.Redo, l.Undo);
  UndoPutRec(s, lyr, f1);
  CombineFeatureCmd(s, lyr, f1, p1, v1, v1b, lyr, f2, p2, v2, v2b);
  if (!IsDeleted(s, lyr, f2)) { // the two did not meet
    UndoDropLast(s);
    LogMsg(s, " *** " + what + InLyr(s, lyr) + " has been canceled *** ");
    return false;
  }
  LogMsg(s, what + InLyr(s, lyr));
  EditDone(s, lyr);
  return true;
}

bool DivideLineOp(Session& s, const HitRec& h) {
  if (!ValidHitLyr(s, h) || !IsLine(h.HitType)) return false;
  HitRec at = h;
  if (h.HitKind == 1) { // on a segment: a vertex there first
    if (!InsertVertexOp(s, at, h.HitX, h.HitY)) return false;
  } else if (h.HitKind != 2) {
    return false;
  }
  const int n = LiveOf(s, at);
  if (at.HitVertex < 1 || at.HitVertex >= n - 1) return false;
  return DivideJournalled(s, at.HitLyr, at.HitFeature, at.HitPart, at.HitVertex, 0);
}

void StopPending(Session& s) {
  s.Edit.Pending = PendingPick::None;
  s.Edit.FirstPick = HitRec{};
}

bool StartDividePolygon(Session& s, const HitRec& h) {
  if (!ValidHitLyr(s, h) || !IsGon(h.HitType) || h.HitKind != 2) return false;
  s.Edit.Pending = PendingPick::DividePolygon;
  s.Edit.FirstPick = h;
  return true;
}

bool CanCompleteDivide(const Session& s, const HitRec& h) {
  const HitRec& a = s.Edit.FirstPick;
  if (s.Edit.Pending != PendingPick::DividePolygon || h.HitKind != 2) return false;
  if (h.HitLyr != a.HitLyr || h.HitFeature != a.HitFeature || h.HitPart != a.HitPart) return false;
  int k = LiveOf(s, h) - 1; // the ring without its closing vertex
  if (k < 4) return false;
  int v1 = a.HitVertex % k, v2 = h.HitVertex % k;
  return v1 != v2 && (v1 + 1) % k != v2 && (v2 + 1) % k != v1;
}

bool CompleteDividePolygon(Session& s, const HitRec& h) {
  if (!CanCompleteDivide(s, h)) {
    StopPending(s);
    return false;
  }
  const HitRec a = s.Edit.FirstPick;
  StopPending(s);
  return DivideJournalled(s, a.HitLyr, a.HitFeature, a.HitPart, a.HitVertex, h.HitVertex);
}

bool CombineLineOp(Session& s, const HitRec& h) {
  if (!ValidHitLyr(s, h) || !IsLine(h.HitType) || h.HitKind != 2) return false;
  const int n = LiveOf(s, h);
  if (h.HitVertex != 0 && h.HitVertex != n - 1) {
    LogMsg(s, " *** Combine Feature " + std::to_string(h.HitFeature) + InLyr(s, h.HitLyr) +
                  " has been canceled *** ");
    return false;
  }
  EditVars& e = s.Edit;
  if (e.Pending == PendingPick::CombineLine) {
    const HitRec a = e.FirstPick;
    StopPending(s);
    if (a.HitLyr != h.HitLyr || a.HitFeature == h.HitFeature) return false;
    return CombineJournalled(s, h.HitLyr, a.HitFeature, a.HitPart, a.HitVertex, 0, h.HitFeature,
                             h.HitPart, h.HitVertex, 0);
  }
  // Another line of the layer ending on the same point is the partner.
  const XY at = VertexOf(s, h.HitLyr, h.HitFeature, h.HitPart, h.HitVertex);
  const ShpBlock& b = s.Lyr[h.HitLyr].Shp;
  for (int f = 1; f <= b.RecCount; ++f) {
    const ShpRecord& r = b.ShpRecs[size_t(f)];
    if (f == h.HitFeature || !IsLine(r.ShapeType)) continue;
    for (int p = 0; p < r.NumParts && p < r.PartSlots(); ++p) {
      const int m = int(shpio::LiveCount(r.Part(p)));
      for (int v : {0, m - 1}) {
        if (m < 1) continue;
        const XY o = r.Part(p).PartPoints()[size_t(v)];
        if (o.X == at.X && o.Y == at.Y)
          return CombineJournalled(s, h.HitLyr, h.HitFeature, h.HitPart, h.HitVertex, 0, f, p, v,
                                   0);
      }
    }
  }
  e.Pending = PendingPick::CombineLine;
  e.FirstPick = h;
  return true;
}

bool StartCombinePolygon(Session& s, const HitRec& h) {
  if (!ValidHitLyr(s, h) || !IsGon(h.HitType) || h.HitKind != 1) return false;
  s.Edit.Pending = PendingPick::CombinePolygon;
  s.Edit.FirstPick = h;
  return true;
}

bool CanCompleteCombine(const Session& s, const HitRec& h) {
  const HitRec& a = s.Edit.FirstPick;
  if (s.Edit.Pending != PendingPick::CombinePolygon || h.HitKind != 1 || !IsGon(h.HitType))
    return false;
  if (h.HitLyr != a.HitLyr || h.HitFeature == a.HitFeature) return false;
  const XY a0 = VertexOf(s, a.HitLyr, a.HitFeature, a.HitPart, a.HitVertex - 1);
  const XY a1 = VertexOf(s, a.HitLyr, a.HitFeature, a.HitPart, a.HitVertex);
  const XY b0 = VertexOf(s, h.HitLyr, h.HitFeature, h.HitPart, h.HitVertex - 1);
  const XY b1 = VertexOf(s, h.HitLyr, h.HitFeature, h.HitPart, h.HitVertex);
  auto same = [](XY p, XY q) { return p.X == q.X && p.Y == q.Y; };
  return (same(a0, b0) && same(a1, b1)) || (same(a0, b1) && same(a1, b0));
}

bool CompleteCombinePolygon(Session& s, const HitRec& h) {
  if (!CanCompleteCombine(s, h)) {
    StopPending(s);
    return false;
  }
  const HitRec a = s.Edit.FirstPick;
  StopPending(s);
  return CombineJournalled(s, a.HitLyr, a.HitFeature, a.HitPart, a.HitVertex - 1, a.HitVertex,
                           h.HitFeature, h.HitPart, h.HitVertex - 1, h.HitVertex);
}

} // namespace velmora
