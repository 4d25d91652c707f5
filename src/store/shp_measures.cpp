// Boxes, extent, label anchors and the measures of lengths and areas.
#include <cmath>

#include "frame/busy.h"
#include "model/c_numbers.h"
#include "store/shp_access.h"
#include "store/shp_bytes.h"
#include "store/shp_file.h"
#include "store/shp_store.h"

namespace velmora {

using namespace shpio;

namespace {

// Every length and area is rounded to at most nine decimals, as the number shown with
// nine decimal places and read back.
double Round9(double v) {
  if (!std::isfinite(v)) return v;
  LeadingNumber(FixedText(v, 9), v);
  return v;
}

bool ClosedChain(int t) {
  return t == 5 || t == 15 || t == 25;
}
bool OpenChain(int t) {
  return t == 3 || t == 13 || t == 23 || t == 99 || t == 100;
}

double ChainLength(const ShpPart& p, int t) {
  size_t n = LiveCount(p);
  if (n < 2 || !(ClosedChain(t) || OpenChain(t))) return 0;
  auto P = p.PartPoints();
  double sum = 0;
  for (size_t i = 1; i < n; ++i) sum += std::hypot(P[i].X - P[i - 1].X, P[i].Y - P[i - 1].Y);
  if (ClosedChain(t)) sum += std::hypot(P[0].X - P[n - 1].X, P[0].Y - P[n - 1].Y);
  return sum;
}

} // namespace

void RecalcRecBox(Session& s, int lyr, int rec) {
  ShpBlock& B = s.Lyr[lyr].Shp;
  if (rec < 0 || rec > B.RecCount || size_t(rec) >= B.ShpRecs.size()) return;
  ++B.BoxGen;
  ShpRecord& r = B.ShpRecs[size_t(rec)];
  int t = r.ShapeType;
  if (t < 1 || t > 100) return;
  bool z = HasZ(t), m = HasM(t), seen = false;
  for (const ShpPart& p : r.Parts()) {
    size_t n = LiveCount(p);
    auto P = p.PartPoints();
    auto Z = p.PartZ();
    auto M = p.PartM();
    for (size_t i = 0; i < n; ++i) {
      if (!seen) {
        r.Xmin = r.Xmax = P[i].X;
        r.Ymin = r.Ymax = P[i].Y;
        if (z && i < Z.size()) r.Zmin = r.Zmax = Z[i];
        if (m && i < M.size()) r.Mmin = r.Mmax = M[i];
        seen = true;
        continue;
      }
      r.Xmin = std::min(r.Xmin, P[i].X), r.Xmax = std::max(r.Xmax, P[i].X);
      r.Ymin = std::min(r.Ymin, P[i].Y), r.Ymax = std::max(r.Ymax, P[i].Y);
      if (z && i < Z.size()) r.Zmin = std::min(r.Zmin, Z[i]), r.Zmax = std::max(r.Zmax, Z[i]);
      if (m && i < M.size()) r.Mmin = std::min(r.Mmin, M[i]), r.Mmax = std::max(r.Mmax, M[i]);
    }
  }
  if (seen && lyr >= 1) RecLabelPoint(s, lyr, rec);
}

void RebuildFrameRecord(Session& s, int lyr) {
  LyrRec& L = s.Lyr[lyr];
  ShpBlock& B = L.Shp;
  if (B.ShpRecs.empty()) B.ShpRecs.resize(1);
  ShpRecord& f = B.ShpRecs[0];
  if (f.ShapeType != 99 || f.PartSlots() < 1 || f.Part(0).Size() < 5) MakeFrameRecord(f);
  double l = LeftExtend(L), t = TopExtend(L), r = RightExtend(L), b = BottomExtend(L);
  auto P = f.Part(0).PartPoints();
  P[0] = {l, t}, P[1] = {r, t}, P[2] = {r, b}, P[3] = {l, b}, P[4] = {l, t};
  RecalcRecBox(s, lyr, 0);
}

void RecalcExtent(Session& s, int lyr) {
  LyrRec& L = s.Lyr[lyr];
  ShpBlock& B = L.Shp;
  B.ShpChanged = -1;
  B.ExtentStale = 0;
  ++B.BoxGen;
  if (lyr >= 1 && lyr <= s.LyrCount) s.host->LayerItemChanged(lyr);
  if (B.ShpType == 99) {
    // A raster's frame: its extent is set from the image, the record follows it.
    RebuildFrameRecord(s, lyr);
    return;
  }
  bool any = false;
  double x0 = 0, y0 = 0, x1 = 0, y1 = 0;
  for (int32_t i = 1; i <= B.RecCount && size_t(i) < B.ShpRecs.size(); ++i) {
    const ShpRecord& r = B.ShpRecs[size_t(i)];
    if (r.ShapeType == 0) continue;
    if (!any) {
      x0 = r.Xmin, y0 = r.Ymin, x1 = r.Xmax, y1 = r.Ymax;
      any = true;
    } else {
      x0 = std::min(x0, r.Xmin), y0 = std::min(y0, r.Ymin);
      x1 = std::max(x1, r.Xmax), y1 = std::max(y1, r.Ymax);
    }
  }
  LeftExtend(L) = x0, BottomExtend(L) = y0, RightExtend(L) = x1, TopExtend(L) = y1;
}

void RecLabelPoint(Session& s, int lyr, int rec) {
  ShpBlock& B = s.Lyr[lyr].Shp;
  if (rec < 0 || rec > B.RecCount || size_t(rec) >= B.ShpRecs.size()) return;
  ShpRecord& r = B.ShpRecs[size_t(rec)];
  int t = r.ShapeType;
  if (IsPoint(t)) {
    if (r.PartSlots() > 0 && r.Part(0).Size() > 0) {
      r.LabelX = r.Part(0).PartPoints()[0].X;
      r.LabelY = r.Part(0).PartPoints()[0].Y;
    }
  } else if (IsMultiPoint(t)) {
    r.LabelX = (r.Xmin + r.Xmax) / 2;
    r.LabelY = (r.Ymin + r.Ymax) / 2;
  } else if (ClosedChain(t)) {
    // Centroid of all rings together, relative to the first vertex for accuracy.
    bool haveOrigin = false;
    double ox = 0, oy = 0, a = 0, cx = 0, cy = 0;
    for (const ShpPart& p : r.Parts()) {
      size_t n = LiveCount(p);
      auto P = p.PartPoints();
      if (n && !haveOrigin) ox = P[0].X, oy = P[0].Y, haveOrigin = true;
      for (size_t i = 0; i < n; ++i) {
        double xa = P[i].X - ox, ya = P[i].Y - oy;
        double xb = P[(i + 1) % n].X - ox, yb = P[(i + 1) % n].Y - oy;
        double cr = xa * yb - xb * ya;
        a += cr / 2;
        cx += (xa + xb) * cr;
        cy += (ya + yb) * cr;
      }
    }
    if (a == 0) a = 1;
    r.LabelX = ox + cx / (6 * a);
    r.LabelY = oy + cy / (6 * a);
  } else if (t == 3 || t == 13 || t == 23 || t == 100) {
    // Midpoint of the longest segment; the angle (radians) with the ends in X order.
    double best = -1;
    XY a{}, b{};
    for (const ShpPart& p : r.Parts()) {
      size_t n = LiveCount(p);
      auto P = p.PartPoints();
      for (size_t i = 1; i < n; ++i) {
        double d = std::hypot(P[i].X - P[i - 1].X, P[i].Y - P[i - 1].Y);
        if (d > best) best = d, a = P[i - 1], b = P[i];
      }
    }
    if (best < 0) return; // no segment: the fields stay as they are
    if (b.X < a.X) std::swap(a, b);
    r.LabelX = (a.X + b.X) / 2;
    r.LabelY = (a.Y + b.Y) / 2;
    r.LabelAngle = std::atan2(b.Y - a.Y, b.X - a.X);
  } else {
    return;
  }
  r.LabelReady = 1;
}

double PartLengthPlain(const Session& s, int lyr, int rec, int part) {
  const ShpRecord* r = RecAt(s, lyr, rec);
  const ShpPart* p = PartAt(r, part);
  return p ? Round9(ChainLength(*p, r->ShapeType)) : 0;
}

// Until layers carry a coordinate kind of their own, layer and map coordinates agree and
// no vertex needs converting.
double PartLength(const Session& s, int lyr, int rec, int part) {
  return PartLengthPlain(s, lyr, rec, part);
}

double RecLength(const Session& s, int lyr, int rec) {
  const ShpRecord* r = RecAt(s, lyr, rec);
  if (!r) return 0;
  double sum = 0;
  for (int i = 0; i < r->NumParts && i < r->PartSlots(); ++i) sum += PartLength(s, lyr, rec, i);
  return Round9(sum);
}

double PartArea(const Session& s, int lyr, int rec, int part) {
  const ShpRecord* r = RecAt(s, lyr, rec);
  const ShpPart* p = PartAt(r, part);
  if (!p || !(r->ShapeType == 3 || r->ShapeType == 5 || r->ShapeType == 13 || r->ShapeType == 15 ||
              r->ShapeType == 23 || r->ShapeType == 25))
    return 0;
  size_t n = LiveCount(*p);
  if (n < 3) return 0;
  auto P = p->PartPoints();
  double x0 = P[0].X, y0 = P[0].Y, sum = 0;
  for (size_t i = 1; i < n; ++i) {
    size_t next = (i + 1) % n;
    sum += (P[i].X - x0) * ((P[next].Y - y0) - (P[i - 1].Y - y0));
  }
  return Round9(std::fabs(sum) / 2);
}

double RecArea(const Session& s, int lyr, int rec) {
  const ShpRecord* r = RecAt(s, lyr, rec);
  if (!r) return 0;
  double sum = 0;
  for (int i = 0; i < r->NumParts && i < r->PartSlots(); ++i) sum += PartArea(s, lyr, rec, i);
  return Round9(sum);
}

void ValidateLyrBoundaries(Session& s, int lyr) {
  RunningFunction rf(s, lyr, "Validate Layer boundaries",
                     "Validate Layer boundaries to " + s.Lyr[lyr].LyrName);
  if (!rf.Started()) return;
  int32_t count = s.Lyr[lyr].Shp.RecCount;
  for (int32_t i = 1; i <= count; ++i) {
    // The row's number may change while the function yields.
    if (i > s.Lyr[rf.Layer()].Shp.RecCount) break;
    RecalcRecBox(s, rf.Layer(), i);
    if (rf.Step(i, int64_t(count) + 1)) break;
  }
  if (!rf.Terminated()) RecalcExtent(s, rf.Layer());
  rf.Finish();
}

} // namespace velmora
