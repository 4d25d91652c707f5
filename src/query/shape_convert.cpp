#include "query/shape_convert.h"

#include <algorithm>

#include "store/shp_access.h"
#include "store/shp_bytes.h"
#include "store/shp_store.h"

namespace velmora {

namespace {

bool Same(const XY& a, const XY& b) {
  return a.X == b.X && a.Y == b.Y;
}

bool Closed(const PlainPart& p) {
  return p.P.size() >= 2 && Same(p.P.front(), p.P.back());
}

void Push(PlainPart& p, const PlainPart& from, size_t i) {
  p.P.push_back(from.P[i]);
  p.Z.push_back(from.Z[i]);
  p.M.push_back(from.M[i]);
}

// Every vertex as one part; a ring's closing vertex is left out.
PlainPart AllVertices(const std::vector<PlainPart>& parts, bool rings) {
  PlainPart all;
  for (const PlainPart& p : parts) {
    size_t n = p.P.size();
    if (rings && Closed(p)) --n;
    for (size_t i = 0; i < n; ++i) Push(all, p, i);
  }
  return all;
}

void CloseRing(PlainPart& p) {
  if (!Closed(p)) Push(p, p, 0);
}

} // namespace

ShapeFamily FamilyOf(int t) {
  if (shpio::IsPoint(t)) return ShapeFamily::Point;
  if (shpio::IsMultiPoint(t)) return ShapeFamily::MultiPoint;
  if (t == 3 || t == 13 || t == 23) return ShapeFamily::Line;
  if (t == 5 || t == 15 || t == 25) return ShapeFamily::Polygon;
  if (t == 31 || t == 99 || t == 100) return ShapeFamily::Special;
  return ShapeFamily::None;
}

std::string FamilyWord(int t) {
  switch (FamilyOf(t)) {
  case ShapeFamily::Point:
    return "Point";
  case ShapeFamily::MultiPoint:
    return "MultiPoint";
  case ShapeFamily::Line:
    return "PolyLine";
  case ShapeFamily::Polygon:
    return "Polygon";
  case ShapeFamily::Special:
    return t == 31 ? "MultiPatch" : "type " + std::to_string(t);
  default:
    return "type " + std::to_string(t);
  }
}

bool CanConvertType(int srcType, int dstType) {
  const ShapeFamily s = FamilyOf(srcType), d = FamilyOf(dstType);
  if (s == ShapeFamily::None || d == ShapeFamily::None) return false;
  if (d == ShapeFamily::Special || s == ShapeFamily::Special) {
    if (srcType == dstType) return true;
    // A frame or a multipatch gives its outline to the plain families.
    return s == ShapeFamily::Special && d != ShapeFamily::Special;
  }
  if (s == ShapeFamily::Point) return d == ShapeFamily::Point || d == ShapeFamily::MultiPoint;
  return true;
}

std::vector<PlainPart> PlainParts(const ShpRecord& r) {
  std::vector<PlainPart> out;
  if (r.ShapeType == 0) return out;
  for (const ShpPart& p : r.Parts()) {
    const size_t n = shpio::LiveCount(p);
    if (n == 0) continue;
    PlainPart q;
    auto pts = p.PartPoints();
    q.P.assign(pts.begin(), pts.begin() + long(n));
    auto z = p.PartZ(), m = p.PartM();
    q.Z.assign(n, 0.0);
    q.M.assign(n, 0.0);
    for (size_t i = 0; i < n && i < z.size(); ++i) q.Z[i] = z[i];
    for (size_t i = 0; i < n && i < m.size(); ++i) q.M[i] = m[i];
    out.push_back(std::move(q));
  }
  return out;
}

std::vector<PlainPart> ConvertParts(std::vector<PlainPart> parts, int srcType, int dstType) {
  if (parts.empty() || !CanConvertType(srcType, dstType)) return {};
  if (srcType == dstType) return parts;
  ShapeFamily s = FamilyOf(srcType);
  const ShapeFamily d = FamilyOf(dstType);
  if (s == ShapeFamily::Special) s = srcType == 31 ? ShapeFamily::Polygon : ShapeFamily::Line;
  const bool rings = s == ShapeFamily::Polygon;
  std::vector<PlainPart> out;
  switch (d) {
  case ShapeFamily::Point: {
    PlainPart p;
    Push(p, parts.front(), 0);
    out.push_back(std::move(p));
    break;
  }
  case ShapeFamily::MultiPoint:
    out.push_back(AllVertices(parts, rings));
    break;
  case ShapeFamily::Line:
    if (s == ShapeFamily::MultiPoint) {
      if (parts.front().P.size() >= 2) out.push_back(std::move(parts.front()));
    } else {
      for (PlainPart& p : parts)
        if (p.P.size() >= 2) out.push_back(std::move(p));
    }
    break;
  case ShapeFamily::Polygon:
    if (s == ShapeFamily::MultiPoint) parts.resize(1);
    for (PlainPart& p : parts) {
      CloseRing(p);
      if (p.P.size() >= 4) out.push_back(std::move(p));
    }
    break;
  case ShapeFamily::Special: // the same type only: a copy
  case ShapeFamily::None:
    break;
  }
  return out;
}

int AppendParts(Session& s, int lyr, const std::vector<PlainPart>& parts) {
  if (parts.empty()) return 0;
  const int t = s.Lyr[lyr].Shp.ShpType;
  ShpRecord r;
  r.ShapeType = t;
  r.ResizeParts(int(parts.size()));
  int32_t total = 0;
  for (size_t i = 0; i < parts.size(); ++i) {
    const PlainPart& q = parts[i];
    ShpPart& p = r.Part(int(i));
    p.SetZM(shpio::HasZ(t), shpio::HasM(t));
    p.Resize(q.P.size());
    std::copy(q.P.begin(), q.P.end(), p.PartPoints().begin());
    auto z = p.PartZ(), m = p.PartM();
    for (size_t k = 0; k < z.size(); ++k) z[k] = q.Z[k];
    for (size_t k = 0; k < m.size(); ++k) m[k] = q.M[k];
    p.PartStart = total;
    p.PartCount = int32_t(q.P.size());
    p.PartFlag = 0;
    total += p.PartCount;
  }
  r.NumParts = int32_t(parts.size());
  r.NumPoints = total;
  AddRec(s, lyr);
  const int rec = s.Lyr[lyr].Shp.RecCount;
  s.Lyr[lyr].Shp.ShpRecs[size_t(rec)] = std::move(r);
  RecalcRecBox(s, lyr, rec);
  return rec;
}

int AppendConverted(Session& s, int srcLyr, int rec, int dstLyr) {
  const ShpRecord* r = shpio::RecAt(s, srcLyr, rec);
  if (!r || r->ShapeType == 0) return 0;
  const int st = s.Lyr[srcLyr].Shp.ShpType, dt = s.Lyr[dstLyr].Shp.ShpType;
  if (st == dt && FamilyOf(st) == ShapeFamily::Special) {
    CopyRecTo(s, srcLyr, rec, dstLyr, 0, false); // 0: appended
    return s.Lyr[dstLyr].Shp.RecCount;
  }
  return AppendParts(s, dstLyr, ConvertParts(PlainParts(*r), st, dt));
}

} // namespace velmora
