// The record side of the store: deleting, adding and changing records, parts, vertices.
#include <algorithm>

#include "store/shp_access.h"
#include "store/shp_bytes.h"
#include "store/shp_file.h"
#include "store/shp_store.h"

namespace velmora {

using namespace shpio;

namespace shpio {
void FitPartToType(ShpPart& part, int shapeType) {
  part.SetZM(HasZ(shapeType), HasM(shapeType));
}
} // namespace shpio

namespace {

bool IsLineOrGon(int t) {
  return t == 3 || t == 5 || t == 13 || t == 15 || t == 23 || t == 25;
}

void SetSelBit(LyrRec& L, int rec, bool on) {
  size_t b = size_t(rec) / 8;
  if (b >= L.SelBits.size()) return;
  uint8_t mask = uint8_t(1u << (rec % 8));
  L.SelBits[b] = on ? uint8_t(L.SelBits[b] | mask) : uint8_t(L.SelBits[b] & ~mask);
}

// SelBits and QryBits cover every record the array can hold.
void FitBitSets(LyrRec& L) {
  size_t need = (L.Shp.ShpRecs.size() - 1 + 7) / 8 + 1;
  if (L.SelBits.size() < need) L.SelBits.resize(need, 0);
  if (L.QryBits.size() < need) L.QryBits.resize(need, 0);
}

void Touched(Session& s, int lyr) {
  s.Lyr[lyr].Shp.ShpChanged = -1;
  ++s.Lyr[lyr].Shp.BoxGen;
}

} // namespace

bool IsDeleted(const Session& s, int lyr, int rec) {
  const ShpRecord* r = RecAt(s, lyr, rec);
  return r && r->ShapeType == 0;
}

void DeleteRec(Session& s, int lyr, int rec, bool refresh) {
  ShpRecord* r = RecAt(s, lyr, rec);
  if (!r || s.Lyr[lyr].LyrKind == 0) return;
  r->ShapeType = 0;
  SetSelBit(s.Lyr[lyr], rec, false);
  Touched(s, lyr);
  if (refresh) RecalcExtent(s, lyr);
}

void UndeleteRec(Session& s, int lyr, int rec, bool refresh) {
  ShpRecord* r = RecAt(s, lyr, rec);
  if (!r) return;
  if (r->NumPoints != 0) {
    r->ShapeType = s.Lyr[lyr].Shp.ShpType;
    RecalcRecBox(s, lyr, rec);
    Touched(s, lyr);
  }
  if (refresh) RecalcExtent(s, lyr);
}

void DeletePart(Session& s, int lyr, int rec, int part, bool refresh) {
  ShpRecord* r = RecAt(s, lyr, rec);
  ShpPart* p = PartAt(r, part);
  if (!p) return;
  r->NumPoints -= p->PartCount;
  p->PartCount = 0; // the vertices stay, for an undelete
  Touched(s, lyr);
  if (r->NumPoints <= 0) {
    r->NumPoints = 0;
    DeleteRec(s, lyr, rec, false);
  } else {
    RecalcRecBox(s, lyr, rec);
  }
  if (refresh) RecalcExtent(s, lyr);
}

void UndeletePart(Session& s, int lyr, int rec, int part, bool refresh) {
  ShpRecord* r = RecAt(s, lyr, rec);
  ShpPart* p = PartAt(r, part);
  if (!p || p->PartFlag == -1) return;
  int32_t size = int32_t(p->Size());
  r->NumPoints += size - p->PartCount;
  p->PartCount = size;
  if (r->NumPoints > 0) {
    r->ShapeType = s.Lyr[lyr].Shp.ShpType;
    RecalcRecBox(s, lyr, rec);
  }
  Touched(s, lyr);
  if (refresh) RecalcExtent(s, lyr);
}

void DeletePartRange(Session& s, int lyr, int rec, int firstPart, int lastPart, bool refresh) {
  for (int p = firstPart; p <= lastPart; ++p) DeletePart(s, lyr, rec, p, false);
  if (refresh) RecalcExtent(s, lyr);
}

void DeleteVertices(Session& s, int lyr, int rec, int part, int first, int count) {
  ShpRecord* r = RecAt(s, lyr, rec);
  if (!r) return;
  if (IsPoint(r->ShapeType)) {
    DeleteRec(s, lyr, rec, false);
    return;
  }
  ShpPart* p = PartAt(r, part);
  if (!p || first < 0 || count <= 0 || size_t(first) >= p->Size()) return;
  size_t removed = std::min(size_t(count), p->Size() - size_t(first));
  int32_t liveGone = 0;
  if (p->PartCount > first)
    liveGone = int32_t(std::min<size_t>(removed, size_t(p->PartCount - first)));
  p->Erase(size_t(first), removed);
  p->PartCount -= liveGone;
  r->NumPoints -= liveGone;
  Touched(s, lyr);
  if (r->NumPoints <= 0) {
    r->NumPoints = 0;
    DeleteRec(s, lyr, rec, false);
  } else {
    RecalcRecBox(s, lyr, rec);
  }
}

void DeleteVerticesRing(Session& s, int lyr, int rec, int part, int first, int last, bool refresh) {
  if (first <= last) {
    DeleteVertices(s, lyr, rec, part, first, last - first + 1);
  } else {
    const ShpPart* p = PartAt(RecAt(s, lyr, rec), part);
    if (!p) return;
    int size = int(p->Size());
    DeleteVertices(s, lyr, rec, part, first, size - first);
    DeleteVertices(s, lyr, rec, part, 0, last + 1);
  }
  if (refresh) RecalcExtent(s, lyr);
}

void ReserveRecs(Session& s, int lyr, int extra) {
  if (extra <= 0) return;
  LyrRec& L = s.Lyr[lyr];
  if (L.Shp.ShpRecs.empty()) L.Shp.ShpRecs.resize(1);
  L.Shp.ShpRecs.resize(L.Shp.ShpRecs.size() + size_t(extra));
  FitBitSets(L);
}

void SizeRecs(Session& s, int lyr, int capacity) {
  ShpBlock& B = s.Lyr[lyr].Shp;
  // The records borrow from the arena: they go first.
  B.ShpRecs.clear();
  B.ShpRecs.shrink_to_fit();
  B.Arena.reset();
  size_t n = size_t(std::max(capacity, 0)) + 1;
  B.ShpRecs.reserve(n);
  AdviseHugePages(B.ShpRecs.data(), n * sizeof(ShpRecord));
  B.ShpRecs.resize(n);
}

void AddRec(Session& s, int lyr) {
  LyrRec& L = s.Lyr[lyr];
  ShpBlock& B = L.Shp;
  if (B.ShpRecs.empty()) B.ShpRecs.resize(1);
  if (size_t(B.RecCount) + 1 >= B.ShpRecs.size()) {
    size_t cap = B.ShpRecs.size() - 1;
    B.ShpRecs.resize(B.ShpRecs.size() + std::max<size_t>(16, cap / 2));
    FitBitSets(L);
  }
  ++B.RecCount;
  ShpRecord& r = B.ShpRecs[size_t(B.RecCount)];
  r = ShpRecord();
  r.ShapeType = B.ShpType;
  r.ResizeParts(1);
  ShpPart& p = r.Part(0);
  FitPartToType(p, B.ShpType);
  p.Resize(1);
  FitBitSets(L);
  Touched(s, lyr);
}

void CopyRecTo(Session& s, int srcLyr, int srcRec, int dstLyr, int dstRec, bool refresh) {
  const ShpRecord* src = RecAt(s, srcLyr, srcRec);
  if (!src) return;
  ShpRecord copy(*src); // before an append can move the source
  if (!RecAt(s, dstLyr, dstRec)) {
    AddRec(s, dstLyr);
    dstRec = s.Lyr[dstLyr].Shp.RecCount;
  }
  int t = s.Lyr[dstLyr].Shp.ShpType;
  copy.ShapeType = t;
  for (ShpPart& p : copy.Parts()) FitPartToType(p, t);
  if (copy.PartSlots() > copy.NumParts)
    for (int i = copy.NumParts; i < copy.PartSlots(); ++i) FitPartToType(copy.Part(i), t);
  s.Lyr[dstLyr].Shp.ShpRecs[size_t(dstRec)] = std::move(copy);
  Touched(s, dstLyr);
  if (refresh) RecalcExtent(s, dstLyr);
}

void AddPart(Session& s, int lyr, int rec) {
  ShpRecord* r = RecAt(s, lyr, rec);
  if (!r) return;
  int t = s.Lyr[lyr].Shp.ShpType;
  if (IsPoint(t) || IsMultiPoint(t)) {
    // One part holding every live vertex.
    ShpPart all;
    FitPartToType(all, t);
    for (const ShpPart& p : r->Parts())
      for (size_t i = 0; i < LiveCount(p); ++i)
        all.Insert(all.Size(), p.PartPoints()[i], p.PartZ().empty() ? 0 : p.PartZ()[i],
                   p.PartM().empty() ? 0 : p.PartM()[i]);
    if (all.Size() == 0 && r->PartSlots() > 0) all = r->Part(0);
    all.PartStart = 0;
    all.PartFlag = 0;
    all.PartCount = int32_t(std::min<size_t>(all.Size(), size_t(std::max(r->NumPoints, 0))));
    r->ResizeParts(1);
    r->Part(0) = std::move(all);
  } else {
    ShpPart& p = r->InsertPart(r->PartSlots());
    FitPartToType(p, t);
    r->NumParts = r->PartSlots();
  }
  Touched(s, lyr);
}

namespace {

// AddVertex and InsertVertex: the part's array is cut to its live vertices before the
// new one goes in, so a placeholder point never stays behind the new vertices.
void PutVertex(Session& s, int lyr, int rec, int part, int at, double x, double y, double z,
               double m) {
  ShpRecord* r = RecAt(s, lyr, rec);
  ShpPart* p = PartAt(r, part);
  if (!p) return;
  int t = s.Lyr[lyr].Shp.ShpType;
  if (r->ShapeType == 0) r->ShapeType = t;
  if (IsPoint(r->ShapeType) && r->NumPoints >= 1) return;
  FitPartToType(*p, r->ShapeType);
  size_t live = LiveCount(*p);
  if (p->Size() != live) p->Resize(live);
  size_t pos = at < 0 ? live : std::min(size_t(at), live);
  p->Insert(pos, XY{x, y}, z, m);
  p->PartCount = int32_t(live + 1);
  p->PartFlag = r->ShapeType == 31 ? p->PartFlag : 0;
  if (r->NumParts == 0) r->NumParts = std::max(r->PartSlots(), 1);
  bool first = r->NumPoints <= 0;
  r->NumPoints = std::max(r->NumPoints, 0) + 1;
  if (first) {
    r->Xmin = r->Xmax = x;
    r->Ymin = r->Ymax = y;
    r->Zmin = r->Zmax = z;
    r->Mmin = r->Mmax = m;
  } else {
    r->Xmin = std::min(r->Xmin, x), r->Xmax = std::max(r->Xmax, x);
    r->Ymin = std::min(r->Ymin, y), r->Ymax = std::max(r->Ymax, y);
    if (HasZ(r->ShapeType)) r->Zmin = std::min(r->Zmin, z), r->Zmax = std::max(r->Zmax, z);
    if (HasM(r->ShapeType)) r->Mmin = std::min(r->Mmin, m), r->Mmax = std::max(r->Mmax, m);
  }
  if (!HasZ(r->ShapeType)) r->Zmin = r->Zmax = 0;
  if (!HasM(r->ShapeType)) r->Mmin = r->Mmax = 0;
  r->LabelReady = 0;
  Touched(s, lyr);
}

} // namespace

void AddVertex(Session& s, int lyr, int rec, int part, double x, double y, double z, double m) {
  PutVertex(s, lyr, rec, part, -1, x, y, z, m);
}

void AddVertexRefresh(Session& s, int lyr, int rec, int part, double x, double y, double z,
                      double m) {
  AddVertex(s, lyr, rec, part, x, y, z, m);
  RecalcExtent(s, lyr);
}

void InsertVertex(Session& s, int lyr, int rec, int part, int at, double x, double y, double z,
                  double m) {
  PutVertex(s, lyr, rec, part, std::max(at, 0), x, y, z, m);
}

void InsertVertexRefresh(Session& s, int lyr, int rec, int part, int at, double x, double y,
                         double z, double m) {
  InsertVertex(s, lyr, rec, part, at, x, y, z, m);
  RecalcExtent(s, lyr);
}

namespace {
void CopyVertices(Session& s, int srcLyr, int srcRec, int srcPart, int first, int last, int dstLyr,
                  int dstRec, int dstPart, int at, bool backwards) {
  if (!IsLineOrGon(s.Lyr[srcLyr].Shp.ShpType) || !IsLineOrGon(s.Lyr[dstLyr].Shp.ShpType)) return;
  const ShpPart* sp = PartAt(RecAt(s, srcLyr, srcRec), srcPart);
  if (!sp || first < 0 || last < first) return;
  ShpPart src(*sp); // the destination may be the same part
  last = std::min(last, int(src.Size()) - 1);
  for (int k = 0; k <= last - first; ++k) {
    int i = backwards ? last - k : first + k;
    double z = src.PartZ().empty() ? 0 : src.PartZ()[size_t(i)];
    double m = src.PartM().empty() ? 0 : src.PartM()[size_t(i)];
    XY v = src.PartPoints()[size_t(i)];
    InsertVertex(s, dstLyr, dstRec, dstPart, at + k, v.X, v.Y, z, m);
  }
}
} // namespace

void CopyVerticesFwd(Session& s, int srcLyr, int srcRec, int srcPart, int first, int last,
                     int dstLyr, int dstRec, int dstPart, int at) {
  CopyVertices(s, srcLyr, srcRec, srcPart, first, last, dstLyr, dstRec, dstPart, at, false);
}

void CopyVerticesBack(Session& s, int srcLyr, int srcRec, int srcPart, int first, int last,
                      int dstLyr, int dstRec, int dstPart, int at) {
  CopyVertices(s, srcLyr, srcRec, srcPart, first, last, dstLyr, dstRec, dstPart, at, true);
}

void MovePartUp(Session& s, int lyr, int rec, int part) {
  ShpRecord* r = RecAt(s, lyr, rec);
  if (!r || !IsLineOrGon(r->ShapeType) || part < 1 || part >= r->NumParts) return;
  std::swap(r->Part(part), r->Part(part - 1));
  Touched(s, lyr);
}

void MovePartDown(Session& s, int lyr, int rec, int part) {
  ShpRecord* r = RecAt(s, lyr, rec);
  if (!r || !IsLineOrGon(r->ShapeType) || part < 0 || part + 1 >= r->NumParts) return;
  std::swap(r->Part(part), r->Part(part + 1));
  Touched(s, lyr);
}

void ReversePart(Session& s, int lyr, int rec, int part) {
  ShpRecord* r = RecAt(s, lyr, rec);
  ShpPart* p = PartAt(r, part);
  if (!p || !IsLineOrGon(r->ShapeType)) return;
  size_t n = LiveCount(*p);
  std::reverse(p->PartPoints().begin(), p->PartPoints().begin() + ptrdiff_t(n));
  if (!p->PartZ().empty()) std::reverse(p->PartZ().begin(), p->PartZ().begin() + ptrdiff_t(n));
  if (!p->PartM().empty()) std::reverse(p->PartM().begin(), p->PartM().begin() + ptrdiff_t(n));
  r->LabelReady = 0;
  Touched(s, lyr);
}

void ConvertLineGon(Session& s, int lyr, int oldType, int newType) {
  auto family = [](int t) {
    return t == 3 || t == 5 ? 0 : t == 13 || t == 15 ? 1 : t == 23 || t == 25 ? 2 : -1;
  };
  if (oldType == newType || family(oldType) < 0 || family(oldType) != family(newType)) return;
  ShpBlock& B = s.Lyr[lyr].Shp;
  B.ShpType = newType;
  for (int32_t i = 1; i <= B.RecCount && size_t(i) < B.ShpRecs.size(); ++i)
    if (B.ShpRecs[size_t(i)].ShapeType == oldType) B.ShpRecs[size_t(i)].ShapeType = newType;
  Touched(s, lyr);
}

} // namespace velmora
