#include "edit/measure_ops.h"

#include <cmath>
#include <vector>

#include "coords/utm_transform.h"
#include "coords/utm_zone.h"
#include "edit/edit_format.h"
#include "frame/log.h"
#include "store/shp_access.h"

namespace velmora {

namespace {

bool IsGon(int t) {
  return t == 5 || t == 15 || t == 25;
}
bool HasLength(int t) {
  return t == 3 || t == 13 || t == 23 || IsGon(t) || t == 99 || t == 100;
}

// The conversion to metres, its zone fixed by the first point.
struct MeasConv {
  bool on = false;
  int zone = 0;
  bool south = false;
};

MeasConv ConvFor(const Session& s, XY first) {
  MeasConv c;
  if (s.MapUnit == s.MeasUnit || s.MapUnit != 0) return c;
  c.on = true;
  c.zone = UTMZone(first.Y, first.X);
  c.south = IsSouth(first.Y);
  return c;
}

XY Conv(const Session& s, const MeasConv& c, XY p) {
  if (!c.on) return p;
  return LatLonToUTM(s, p.Y, p.X, c.zone, c.south, s.MeasCoordsIdx);
}

std::vector<XY> PartPts(const Session& s, const ShpPart& p, const MeasConv& c) {
  std::vector<XY> out;
  size_t n = shpio::LiveCount(p);
  for (size_t i = 0; i < n; ++i) out.push_back(Conv(s, c, p.PartPoints()[i]));
  return out;
}

double Length(const std::vector<XY>& v, bool closed) {
  double sum = 0;
  for (size_t i = 1; i < v.size(); ++i) sum += std::hypot(v[i].X - v[i - 1].X, v[i].Y - v[i - 1].Y);
  if (closed && v.size() > 2 && (v.front().X != v.back().X || v.front().Y != v.back().Y))
    sum += std::hypot(v.front().X - v.back().X, v.front().Y - v.back().Y);
  return sum;
}

double Area(const std::vector<XY>& v) {
  double sum = 0;
  for (size_t i = 0; i < v.size(); ++i) {
    const XY& a = v[i];
    const XY& b = v[(i + 1) % v.size()];
    sum += a.X * b.Y - b.X * a.Y;
  }
  return std::fabs(sum) / 2;
}

template <class F>
FeatureMeasure Measure(const Session& s, int lyr, int rec, int part, bool needsGon, F f) {
  FeatureMeasure m;
  const ShpRecord* r = shpio::RecAt(s, lyr, rec);
  if (!r || !HasLength(r->ShapeType) || (needsGon && !IsGon(r->ShapeType))) return m;
  MeasConv c;
  bool haveFirst = false;
  for (int i = 0; i < r->NumParts && i < r->PartSlots(); ++i) {
    const ShpPart& p = r->Part(i);
    if (!haveFirst && shpio::LiveCount(p) > 0) c = ConvFor(s, p.PartPoints()[0]), haveFirst = true;
    double v = f(PartPts(s, p, c), r->ShapeType);
    m.Total += v;
    if (i == part) m.Part = v;
  }
  return m;
}

} // namespace

FeatureMeasure MeasureLength(const Session& s, int lyr, int rec, int part) {
  return Measure(s, lyr, rec, part, false,
                 [](const std::vector<XY>& v, int t) { return Length(v, IsGon(t)); });
}

FeatureMeasure MeasureArea(const Session& s, int lyr, int rec, int part) {
  return Measure(s, lyr, rec, part, true, [](const std::vector<XY>& v, int) { return Area(v); });
}

double FreeDistance(const Session& s, double x1, double y1, double x2, double y2) {
  MeasConv c = ConvFor(s, {x1, y1});
  XY a = Conv(s, c, {x1, y1}), b = Conv(s, c, {x2, y2});
  return std::hypot(b.X - a.X, b.Y - a.Y);
}

void LogLength(Session& s, const HitRec& h) {
  if (h.HitLyr < 1 || h.HitLyr > s.LyrCount) return;
  FeatureMeasure m = MeasureLength(s, h.HitLyr, h.HitFeature, h.HitPart);
  const bool gon = IsGon(h.HitType);
  const std::string f = std::to_string(h.HitFeature), p = std::to_string(h.HitPart);
  LogMsg(s,
         std::string(gon ? "The Total Perimeter of feature '" : "The Total Length of feature '") +
             f + "' =   " + FmtGrouped9(s, m.Total) + "  Meter(s)" +
             (gon ? "       ,The Perimeter of Part '" : "       ,The Length of Part '") + p +
             "' =   " + FmtGrouped9(s, m.Part) + "  Meter(s)");
}

void LogArea(Session& s, const HitRec& h) {
  if (h.HitLyr < 1 || h.HitLyr > s.LyrCount) return;
  FeatureMeasure m = MeasureArea(s, h.HitLyr, h.HitFeature, h.HitPart);
  LogMsg(s, "The Total Area of feature '" + std::to_string(h.HitFeature) +
                "' =   " + FmtGrouped9(s, m.Total) + "  Square Meter(s)" +
                "      ,The Area of Part '" + std::to_string(h.HitPart) +
                "' =   " + FmtGrouped9(s, m.Part) + "  Square Meter(s)");
}

void LogFreeDistance(Session& s, double x1, double y1, double x2, double y2) {
  LogMsg(s, "Free Distance =   " + FmtGrouped9(s, FreeDistance(s, x1, y1, x2, y2)) + "  Meter(s)");
}

} // namespace velmora
