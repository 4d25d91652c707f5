#include "edit/draw_ops.h"

#include <cmath>

#include "edit/edit_ops.h"
#include "edit/hit_test.h"
#include "edit/journal.h"
#include "edit/journal_lines.h"
#include "edit/move_ops.h"
#include "edit/snap_ops.h"
#include "exchange/arc_tess.h"
#include "frame/busy.h"
#include "frame/log.h"
#include "store/dbf_store.h"
#include "store/shp_access.h"
#include "store/shp_bytes.h"
#include "store/shp_store.h"

namespace velmora {

namespace {

bool IsGon(int t) {
  return t == 5 || t == 15 || t == 25;
}

const ShpPart* DrawPart(const Session& s) {
  const HitRec& d = s.Edit.DrawHit;
  if (d.HitLyr < 1 || d.HitLyr > s.LyrCount) return nullptr;
  return shpio::PartAt(shpio::RecAt(s, d.HitLyr, d.HitFeature), d.HitPart);
}

int LastVertex(const Session& s) {
  const ShpPart* p = DrawPart(s);
  return p ? int(shpio::LiveCount(*p)) - 1 : -1;
}

// Appends a vertex to the drawn part and journals it as the drawing code does.
void AddDrawnVertex(Session& s, double x, double y) {
  HitRec& d = s.Edit.DrawHit;
  AddVertex(s, d.HitLyr, d.HitFeature, d.HitPart, x, y, 0, 0);
  d.HitVertex = LastVertex(s);
  d.HitX = x, d.HitY = y;
  JournalLines l =
      AddVertexLines(s.Lyr[d.HitLyr].Fsource, d.HitFeature, d.HitPart, x, y, d.HitVertex);
  Journal(s, l.Redo, l.Undo);
}

// Fields 1 to 5 of a control point's row: its number, then X, Y, X, Y.
void WriteControlRow(Session& s, int lyr, int rec, int first, double x, double y) {
  if (s.Lyr[lyr].Dbf.DbfFieldCount < 5) return;
  ReadDbfRec(s, lyr, rec - 1);
  if (first == 1) SetFieldValue(s, lyr, 1, std::to_string(rec));
  SetFieldValue(s, lyr, first == 1 ? 2 : 4, NumText(x));
  SetFieldValue(s, lyr, first == 1 ? 3 : 5, NumText(y));
  if (first == 1) SetFieldValue(s, lyr, 4, NumText(x)), SetFieldValue(s, lyr, 5, NumText(y));
  WriteDbfRecSwap(s, lyr, rec - 1);
}

// The drawing is done: the feature becomes the picked one.
void Complete(Session& s) {
  EditVars& e = s.Edit;
  e.Drawing = 0;
  e.DrawPending = 0;
  e.EditHit = e.DrawHit;
  if (e.EditHit.HitKind == 0) e.EditHit.HitKind = 2;
  RecalcExtent(s, e.DrawHit.HitLyr);
  s.Held.CurFeatureLyr = e.DrawHit.HitLyr;
  s.View.EditFeature = e.DrawHit.HitFeature;
  EditDone(s, e.DrawHit.HitLyr);
}

// The second corner of a frame (type 100): the closed rectangle of the two corners.
void CompleteFrame(Session& s) {
  const HitRec& d = s.Edit.DrawHit;
  const ShpPart* p = DrawPart(s);
  if (!p || shpio::LiveCount(*p) < 2) return;
  const XY a = p->PartPoints()[0], b = p->PartPoints()[1];
  const double l = std::min(a.X, b.X), r = std::max(a.X, b.X);
  const double t = std::max(a.Y, b.Y), bo = std::min(a.Y, b.Y);
  DeleteVertices(s, d.HitLyr, d.HitFeature, d.HitPart, 0, 2);
  UndeleteRec(s, d.HitLyr, d.HitFeature, false);
  for (XY v : {XY{l, t}, XY{r, t}, XY{r, bo}, XY{l, bo}, XY{l, t}})
    AddVertex(s, d.HitLyr, d.HitFeature, d.HitPart, v.X, v.Y, 0, 0);
  // Two ADD lines can't give the frame back: the last entry keeps the record.
  UndoDropLast(s);
  UndoDropLast(s);
  JournalLines jl = NewFeatureLines(s.Lyr[d.HitLyr].Fsource, d.HitFeature);
  Journal(s, jl.Redo, jl.Undo);
}

void CompleteCircle(Session& s) {
  HitRec& d = s.Edit.DrawHit;
  const ShpPart* p = DrawPart(s);
  if (!p || shpio::LiveCount(*p) < 2) return;
  const XY c = p->PartPoints()[0], e = p->PartPoints()[1];
  const double r = std::hypot(e.X - c.X, e.Y - c.Y);
  if (r <= 0) return;
  for (XY v : TessCircle(c.X, c.Y, r))
    AddVertex(s, d.HitLyr, d.HitFeature, d.HitPart, v.X, v.Y, 0, 0);
  DeleteVertices(s, d.HitLyr, d.HitFeature, d.HitPart, 0, 1);
  DeleteVertices(s, d.HitLyr, d.HitFeature, d.HitPart, 0, 1);
  // The centre and the radius point were journalled as vertices; the circle replaces them.
  UndoDropLast(s);
  UndoDropLast(s);
  JournalLines l = NewFeatureLines(s.Lyr[d.HitLyr].Fsource, d.HitFeature);
  Journal(s, l.Redo, l.Undo);
  LogMsg(s, NumText(r) + "Drawing Circle in Active Layer with Raduies = ");
  s.Edit.DrawCircle = 0;
}

} // namespace

bool DrawClick(Session& s, double wx, double wy, int keys) {
  EditVars& e = s.Edit;
  if (!e.Drawing) {
    const int lyr = s.ActiveLyr;
    if (lyr < 1 || lyr > s.LyrCount || s.Lyr[lyr].LyrKind != 1 || !s.Lyr[lyr].EEditable ||
        LyrIsBusy(s, lyr))
      return false;
    const int type = s.Lyr[lyr].Shp.ShpType;
    double x = wx, y = wy;
    SnapRelease(s, 12, lyr, 0, 0, 0, wx, wy, keys & 1, x, y);
    AddRec(s, lyr);
    const int rec = s.Lyr[lyr].Shp.RecCount;
    AddDbfRec(s, lyr, rec - 1);
    e.Drawing = 1, e.DrawPending = 0;
    e.DrawHit = HitRec{};
    e.DrawHit.HitKind = 2, e.DrawHit.HitLyr = lyr, e.DrawHit.HitType = type;
    e.DrawHit.HitFeature = rec, e.DrawHit.HitPart = 0, e.DrawHit.HitVertex = 0;
    AddDrawnVertex(s, x, y);
    SelectOnly(s, lyr, rec);
    if (shpio::IsPoint(type)) {
      Complete(s);
    } else if (type == 99) {
      WriteControlRow(s, lyr, rec, 1, x, y);
    }
    return true;
  }
  const HitRec& d = e.DrawHit;
  if (d.HitLyr < 1 || d.HitLyr > s.LyrCount || LyrIsBusy(s, d.HitLyr)) return false;
  double x = wx, y = wy;
  SnapRelease(s, 12, d.HitLyr, d.HitFeature, d.HitPart, LastVertex(s), wx, wy, keys & 1, x, y);
  if (!e.DrawPending) { // the rubber vertex is the one fixed here
    const int last = LastVertex(s);
    if (last >= 0) DeleteVertices(s, d.HitLyr, d.HitFeature, d.HitPart, last, 1);
    UndeleteRec(s, d.HitLyr, d.HitFeature, false);
  }
  e.DrawPending = 0;
  AddDrawnVertex(s, x, y);
  const int type = d.HitType;
  if (type == 99) {
    WriteControlRow(s, d.HitLyr, d.HitFeature, 4, x, y);
    Complete(s);
  } else if (type == 100) {
    CompleteFrame(s);
    Complete(s);
  } else if (e.DrawCircle) {
    CompleteCircle(s);
    Complete(s);
  }
  return true;
}

void DrawRelease(Session& s) {
  if (s.Edit.Drawing) s.Edit.DrawPending = 1;
}

void DrawFollow(Session& s, double wx, double wy) {
  EditVars& e = s.Edit;
  if (!e.Drawing) return;
  const HitRec& d = e.DrawHit;
  if (d.HitLyr < 1 || d.HitLyr > s.LyrCount) return;
  if (e.DrawPending) {
    AddVertex(s, d.HitLyr, d.HitFeature, d.HitPart, wx, wy, 0, 0);
    e.DrawPending = 0;
    return;
  }
  const int last = LastVertex(s);
  if (last > d.HitVertex)
    MoveVertexTo(s, d.HitLyr, d.HitFeature, d.HitPart, last, wx, wy, kMoveXY, 0, 0);
}

void FinishDrawing(Session& s) {
  EditVars& e = s.Edit;
  if (!e.Drawing) return;
  HitRec& d = e.DrawHit;
  if (d.HitLyr < 1 || d.HitLyr > s.LyrCount) {
    e.Drawing = 0;
    return;
  }
  const int last = LastVertex(s);
  if (!e.DrawPending && last > d.HitVertex) {
    DeleteVertices(s, d.HitLyr, d.HitFeature, d.HitPart, last, 1);
    UndeleteRec(s, d.HitLyr, d.HitFeature, false);
  }
  e.DrawPending = 0;
  const ShpPart* p = DrawPart(s);
  if (IsGon(d.HitType) && p && shpio::LiveCount(*p) >= 3) {
    const XY a = p->PartPoints()[0], b = p->PartPoints()[shpio::LiveCount(*p) - 1];
    if (a.X != b.X || a.Y != b.Y) AddDrawnVertex(s, a.X, a.Y);
  }
  Complete(s);
}

bool AddNewVertexesInEditingPart(Session& s) {
  EditVars& e = s.Edit;
  const HitRec h = e.MenuHit;
  if (!ValidHitLyr(s, h) || shpio::IsPoint(h.HitType) || IsDeleted(s, h.HitLyr, h.HitFeature))
    return false;
  if (RefuseBusy(s, h.HitLyr, "Add New Vertexes in Feature " + std::to_string(h.HitFeature)))
    return false;
  e.DrawHit = h;
  const ShpPart* p = DrawPart(s);
  if (!p || shpio::LiveCount(*p) == 0) return false;
  int last = int(shpio::LiveCount(*p)) - 1;
  // A closed ring opens at its end; Finish closes it again.
  if (IsGon(h.HitType) && last >= 3) {
    const XY a = p->PartPoints()[0], b = p->PartPoints()[size_t(last)];
    if (a.X == b.X && a.Y == b.Y) {
      JournalLines l =
          DeleteVertexLines(s.Lyr[h.HitLyr].Fsource, h.HitFeature, h.HitPart, last, b.X, b.Y);
      DeleteVertices(s, h.HitLyr, h.HitFeature, h.HitPart, last, 1);
      Journal(s, l.Redo, l.Undo);
      --last;
    }
  }
  e.DrawHit.HitVertex = last;
  e.Drawing = 1, e.DrawPending = 1;
  s.MapView.MapTool = 12;
  return true;
}

bool AddNewPartInEditingFeature(Session& s) {
  EditVars& e = s.Edit;
  const HitRec h = e.MenuHit;
  if (!ValidHitLyr(s, h) || shpio::IsPoint(h.HitType) || shpio::IsMultiPoint(h.HitType) ||
      IsDeleted(s, h.HitLyr, h.HitFeature))
    return false;
  if (RefuseBusy(s, h.HitLyr, "Add New Part In Feature " + std::to_string(h.HitFeature)))
    return false;
  AddPart(s, h.HitLyr, h.HitFeature);
  const ShpRecord* r = shpio::RecAt(s, h.HitLyr, h.HitFeature);
  e.DrawHit = h;
  e.DrawHit.HitPart = r->NumParts - 1;
  e.DrawHit.HitVertex = -1;
  e.Drawing = 1, e.DrawPending = 1;
  s.MapView.MapTool = 12;
  return true;
}

void ToggleDrawCircle(Session& s) {
  s.Edit.DrawCircle = s.Edit.DrawCircle ? 0 : -1;
}

} // namespace velmora
