#include "view/map_draw.h"

#include <cmath>
#include <vector>

#include "model/file_util.h"
#include "store/dbf_store.h"
#include "store/shp_store.h"
#include "view/map_tools.h"

namespace velmora {

namespace {

enum PenKind {
  kPenNone = 0,
  kPenClass = 1,
  kPenSelected = 2,
  kPenEdit = 3,
  kPenEditRev = 4,
  kPenSelPoint = 7
};

// The pen cache: a request for the pen already set does nothing. Each layer starts with
// an empty cache (a fresh context).
struct PenCache {
  int kind = kPenNone, lyr = 0, cls = 0;
};

struct DrawCtx {
  Session& s;
  Canvas& c;
  PenCache pen;
  std::vector<PixPt> pts;
  std::vector<int> counts;
};

void UsePen(DrawCtx& d, int n, int kind, int cls) {
  if (d.pen.kind == kind && d.pen.lyr == n && d.pen.cls == cls) return;
  d.pen = {kind, n, cls};
  const LyrRec& l = d.s.Lyr[n];
  size_t k = size_t(cls) < l.CForeColor.size() ? size_t(cls) : 0;
  switch (kind) {
  case kPenClass:
    if (l.CForeColor.empty()) return;
    d.c.SetPen(l.CForeColor[k], l.CDrawMode[k], l.CDrawStyle[k], l.CDrawWidth[k]);
    d.c.SetBrush(l.CFillColor[k], l.CFillStyle[k]);
    break;
  case kPenSelected:
    d.c.SetPen(l.SForeColor, l.SDrawMode, l.SDrawStyle, l.SDrawWidth);
    d.c.SetBrush(l.SFillColor, l.SFillStyle);
    break;
  case kPenEdit:
    d.c.SetPen(l.EForeColor, l.EDrawMode, l.EDrawStyle, l.EDrawWidth);
    d.c.SetBrush(l.EFillColor, l.EFillStyle);
    break;
  case kPenEditRev:
    d.c.SetPen(l.EFillColor, l.EDrawMode, l.EDrawStyle, l.EDrawWidth);
    d.c.SetBrush(l.EForeColor, l.EFillStyle);
    break;
  case kPenSelPoint:
    d.c.SetPen(l.SForeColor, 13, l.SDrawStyle, 1);
    d.c.SetBrush(l.SFillColor, l.SFillStyle);
    break;
  }
}

int Px(double v) {
  if (!(v > -1e9)) return -1000000000;
  if (!(v < 1e9)) return 1000000000;
  return int(std::lround(v));
}

PixPt ToPix(const Session& s, const XY& p) {
  return {Px(PixX(s, p.X)), Px(PixY(s, p.Y))};
}

void Square(DrawCtx& d, PixPt p, int half) {
  d.c.Rectangle(p.x - half, p.y - half, p.x + half, p.y + half);
}

bool BoxMeetsClip(const Session& s, const ShpRecord& r) {
  const ViewVars& v = s.View;
  return r.Xmax >= v.ClipLeft && r.Xmin <= v.ClipRight && r.Ymax >= v.ClipBottom &&
         r.Ymin <= v.ClipTop;
}

bool PointInClip(const Session& s, const XY& p) {
  const ViewVars& v = s.View;
  return p.X >= v.ClipLeft && p.X <= v.ClipRight && p.Y >= v.ClipBottom && p.Y <= v.ClipTop;
}

bool IsSelected(const LyrRec& l, int f) {
  size_t byte = size_t(f) / 8;
  return byte < l.SelBits.size() && (l.SelBits[byte] >> (f % 8)) & 1;
}

// The live vertices of one part, in pixels, into d.pts (appended).
void PartPixels(DrawCtx& d, const ShpPart& p) {
  auto pts = p.PartPoints();
  size_t n = std::min(size_t(p.PartCount < 0 ? 0 : p.PartCount), pts.size());
  for (size_t i = 0; i < n; ++i) d.pts.push_back(ToPix(d.s, pts[i]));
}

void DrawVertices(DrawCtx& d, const ShpRecord& r, int half) {
  for (const ShpPart& p : r.Parts()) {
    d.pts.clear();
    PartPixels(d, p);
    for (PixPt q : d.pts) Square(d, q, half);
  }
}

void DrawGeometry(DrawCtx& d, int n, const ShpRecord& r, int kind, int cls, bool selected) {
  const LyrRec& l = d.s.Lyr[n];
  switch (r.ShapeType) {
  case 1:
  case 11:
  case 21: {
    if (r.NumParts < 1 || r.Part(0).Size() < 1) return;
    const XY& p = r.Part(0).PartPoints()[0];
    if (!PointInClip(d.s, p)) return;
    PixPt q = ToPix(d.s, p);
    if (selected) {
      UsePen(d, n, kPenSelPoint, 0);
      Square(d, q, l.SDrawWidth);
    }
    UsePen(d, n, kind == kPenEdit ? kPenEdit : kPenClass, cls);
    Square(d, q, kind == kPenEdit ? l.EDrawWidth : l.CDrawWidth[size_t(cls)]);
    return;
  }
  case 8:
  case 18:
  case 28: {
    if (!BoxMeetsClip(d.s, r)) return;
    int half = kind == kPenEdit ? l.EDrawWidth : l.CDrawWidth[size_t(cls)];
    for (const ShpPart& p : r.Parts()) {
      d.pts.clear();
      PartPixels(d, p);
      for (PixPt q : d.pts) {
        if (selected) {
          UsePen(d, n, kPenSelPoint, 0);
          Square(d, q, l.SDrawWidth);
        }
        UsePen(d, n, kind == kPenEdit ? kPenEdit : kPenClass, cls);
        Square(d, q, half);
      }
    }
    return;
  }
  case 3:
  case 13:
  case 23:
  case 99: {
    if (!BoxMeetsClip(d.s, r)) return;
    UsePen(d, n, selected ? kPenSelected : kind, cls);
    for (const ShpPart& p : r.Parts()) {
      d.pts.clear();
      PartPixels(d, p);
      if (!d.pts.empty()) d.c.Polyline(d.pts.data(), d.pts.size());
    }
    return;
  }
  case 5:
  case 15:
  case 25: {
    if (!BoxMeetsClip(d.s, r)) return;
    UsePen(d, n, selected ? kPenSelected : kind, cls);
    d.pts.clear();
    d.counts.clear();
    for (const ShpPart& p : r.Parts()) {
      size_t before = d.pts.size();
      PartPixels(d, p);
      if (d.pts.size() > before) d.counts.push_back(int(d.pts.size() - before));
    }
    if (!d.counts.empty()) d.c.PolyPolygon(d.pts.data(), d.counts.data(), d.counts.size());
    return;
  }
  default:
    return; // 100: the mask is drawn by the layout
  }
}

void DrawLabel(DrawCtx& d, int n, int f) {
  LyrRec& l = d.s.Lyr[n];
  if (!l.LVisible || l.LFName <= 0) return;
  if (l.LScale && (d.s.View.MapScale < l.LScaleLMT[0] || d.s.View.MapScale > l.LScaleLMT[1]))
    return;
  // The anchor is cached on the record; an edit that did not place it leaves it to now.
  if (!l.Shp.ShpRecs[size_t(f)].LabelReady) RecLabelPoint(d.s, n, f);
  const ShpRecord& r = l.Shp.ShpRecs[size_t(f)];
  if (!r.LabelReady) return;
  XY at{r.LabelX, r.LabelY};
  if (!PointInClip(d.s, at)) return;
  if (l.LyrBusy) return; // the table must not be touched while a function owns it
  ReadDbfRec(d.s, n, f - 1);
  std::string text = Trim(GetFieldValue(d.s, n, l.LFName));
  if (text.empty()) return;
  int size = l.LFontSize;
  if (l.LSetRefereMapScale && l.LRefereMapScale > 0 && d.s.View.MapScale > 0)
    size = int(std::lround(size * l.LRefereMapScale / d.s.View.MapScale));
  if (size < 1) return;
  PixPt q = ToPix(d.s, at);
  double angle = (r.ShapeType == 3 || r.ShapeType == 13 || r.ShapeType == 23) ? r.LabelAngle : 0;
  d.c.Text(q.x, q.y, angle, text, l.LfontName, size, l.LFontBold, l.LFontItalic, l.LColor);
}

void DrawFeatureCtx(DrawCtx& d, int n, int f) {
  LyrRec& l = d.s.Lyr[n];
  if (l.LyrKind == 0 || f < 1 || f > l.Shp.RecCount || size_t(f) >= l.Shp.ShpRecs.size()) return;
  const ShpRecord& r = l.Shp.ShpRecs[size_t(f)];
  if (r.ShapeType < 1 || r.ShapeType > 100) return;
  // Only records in view cost a class lookup (a row read).
  bool point = r.ShapeType == 1 || r.ShapeType == 11 || r.ShapeType == 21;
  if (point
          ? (r.NumParts < 1 || r.Part(0).Size() < 1 || !PointInClip(d.s, r.Part(0).PartPoints()[0]))
          : !BoxMeetsClip(d.s, r))
    return;
  int cls = ClassOfFeature(d.s, n, f);
  if (size_t(cls) >= l.CForeColor.size()) cls = 0;
  DrawGeometry(d, n, r, kPenClass, cls, IsSelected(l, f));
  DrawLabel(d, n, f);
  if (l.DShowVrt == 1) {
    UsePen(d, n, kPenClass, cls);
    DrawVertices(d, r, l.DVrtDrawWidth);
  }
}

// The layer's shortest-path result over its features: plain lines, piece by piece, in the
// network pen.
void DrawRoute(DrawCtx& d, int n) {
  const LyrRec& l = d.s.Lyr[n];
  if (l.Net.NetRoutes.empty()) return;
  d.c.SetPen(l.NForeColor, l.NDrawMode, l.NDrawStyle, l.NDrawWidth);
  d.pen = {};
  for (const NetRoute& r : l.Net.NetRoutes)
    for (size_t i = 1; i < r.RoutePts.size(); ++i) {
      const PixPt seg[2] = {ToPix(d.s, r.RoutePts[i - 1]), ToPix(d.s, r.RoutePts[i])};
      d.c.Polyline(seg, 2);
    }
}

} // namespace

bool LyrVisibleAtScale(const Session& s, int n) {
  const LyrRec& l = s.Lyr[n];
  if (!l.DScale) return true;
  return !(s.View.MapScale < l.DScaleLMT[0] || s.View.MapScale > l.DScaleLMT[1]);
}

int ClassOfFeature(Session& s, int n, int f) {
  LyrRec& l = s.Lyr[n];
  if (l.CFName == 0 || l.LyrBusy) return 0;
  ReadDbfRec(s, n, f - 1);
  std::string v = Trim(GetFieldValue(s, n, l.CFName));
  for (int c = 1; c <= l.CFCount && size_t(c) < l.CFieldValues.size(); ++c)
    if (l.CFieldValues[size_t(c)] == v) return c;
  return 0;
}

void DrawFeature(Session& s, Canvas& c, int n, int f) {
  DrawCtx d{s, c, {}, {}, {}};
  DrawFeatureCtx(d, n, f);
}

void DrawLyr(Session& s, Canvas& c, int n) {
  if (!LyrVisibleAtScale(s, n)) return;
  DrawCtx d{s, c, {}, {}, {}};
  // An image layer's outline is its frame record, slot 0, in the pen of class 0.
  const ShpBlock& b = s.Lyr[n].Shp;
  if (s.Lyr[n].LyrKind == 2 && !b.ShpRecs.empty() && b.ShpRecs[0].ShapeType == 99 &&
      BoxMeetsClip(s, b.ShpRecs[0]))
    DrawGeometry(d, n, b.ShpRecs[0], kPenClass, 0, false);
  int count = s.Lyr[n].Shp.RecCount;
  for (int f = 1; f <= count; ++f) DrawFeatureCtx(d, n, f);
  DrawRoute(d, n);
}

void DrawImageLyr(Session& s, Canvas& c, int n) {
  if (!LyrVisibleAtScale(s, n)) return;
  LyrRec& l = s.Lyr[n];
  const ViewVars& v = s.View;
  double L = LeftExtend(l), T = TopExtend(l), R = RightExtend(l), B = BottomExtend(l);
  if (std::max(L, R) < v.ClipLeft || std::min(L, R) > v.ClipRight ||
      std::max(T, B) < v.ClipBottom || std::min(T, B) > v.ClipTop)
    return;
  c.StretchImage(l.Img.ImgPic, Px(PixX(s, L)), Px(PixY(s, T)), Px(PixX(s, R)), Px(PixY(s, B)));
}

void DrawEditFeature(Session& s, Canvas& c, int n, int f, int hotPart, int hotVertex) {
  LyrRec& l = s.Lyr[n];
  if (f < 1 || f > l.Shp.RecCount || size_t(f) >= l.Shp.ShpRecs.size()) return;
  DrawCtx d{s, c, {}, {}, {}};
  const ShpRecord& r = l.Shp.ShpRecs[size_t(f)];
  DrawGeometry(d, n, r, kPenEdit, 0, false);
  UsePen(d, n, kPenEdit, 0);
  DrawVertices(d, r, l.EVertexWidth);
  if (hotPart >= 0 && hotPart < r.NumParts && hotVertex >= 0 &&
      size_t(hotVertex) < r.Part(hotPart).Size()) {
    UsePen(d, n, kPenEditRev, 0);
    Square(d, ToPix(s, r.Part(hotPart).PartPoints()[size_t(hotVertex)]), l.EVertexWidth);
  }
}

void DrawLyrIcon(Session& s, Canvas& c, int n, int size) {
  LyrRec& l = s.Lyr[n];
  if (l.CForeColor.empty()) return;
  c.Clear(PackRGB(255, 255, 255));
  c.SetPen(l.CForeColor[0], l.CDrawMode[0], l.CDrawStyle[0], l.CDrawWidth[0]);
  c.SetBrush(l.CFillColor[0], l.CFillStyle[0]);
  bool small = size <= 16;
  int a = small ? 5 : 10, b = small ? 11 : 22, e = small ? 15 : 31;
  switch (l.Shp.ShpType) {
  case 1:
  case 11:
  case 21:
  case 8:
  case 18:
  case 28:
    c.Rectangle(a, a, b, b);
    break;
  case 3:
  case 13:
  case 23:
  case 100: {
    PixPt line[3] = {{0, e}, {a, a}, {e, 0}};
    c.Polyline(line, 3);
    break;
  }
  default: {
    PixPt ring[4] = {{0, 0}, {e, 0}, {e, e}, {0, e}};
    int count = 4;
    c.PolyPolygon(ring, &count, 1);
  }
  }
}

void MapDraw(Session& s, int tool, int target, Canvas* canvas, const DrawArgs& a) {
  s.MapView.MapTarget = target;
  if (!canvas && target == 1) canvas = s.host->MapBuf();
  if (canvas && (target == 1 || target == 3)) canvas->Clear(PackRGB(255, 255, 255));
  if (s.LyrCount > 0 && tool != 0)
    MapTools(s, tool, s.MapView.MapFactor, s.MapView.ViewW, s.MapView.ViewH, a.Left, a.Top, a.Right,
             a.Bottom, a.X1, a.Y1, a.X2, a.Y2);
  if (!canvas) return;
  for (int n = s.LyrCount; n >= 1; --n)
    if (s.Lyr[n].DVisable && s.Lyr[n].LyrKind == 2) DrawImageLyr(s, *canvas, n);
  for (int n = s.LyrCount; n >= 1; --n) {
    if (s.Lyr[n].DVisable && s.Lyr[n].LyrKind) DrawLyr(s, *canvas, n);
    if (target == 1 && n == s.Held.CurFeatureLyr && s.View.EditFeature > 0)
      DrawEditFeature(s, *canvas, n, s.View.EditFeature, s.View.EditHotPart, s.View.EditHotVertex);
  }
  if (target == 1) s.host->MapShow();
}

} // namespace velmora
