// Divide and combine: a line cut at an inner vertex, a polygon cut along the line between
// two of its vertices, two lines joined at chosen ends, two polygons joined along the edge
// they share. The undo lines restore the edited feature from the journal's snapshot.
#include "edit/divide_cmds.h"

#include <algorithm>
#include <vector>

#include "edit/journal.h"
#include "store/dbf_store.h"
#include "store/shp_access.h"
#include "store/shp_store.h"

namespace velmora {

using shpio::LiveCount;
using shpio::PartAt;
using shpio::RecAt;

namespace {

struct Vtx {
  XY p;
  double z = 0, m = 0;
};
using Chain = std::vector<Vtx>;

bool IsLine(int t) {
  return t == 3 || t == 13 || t == 23;
}
bool IsGon(int t) {
  return t == 5 || t == 15 || t == 25;
}

Chain ChainOf(const ShpPart& p) {
  Chain c;
  size_t n = LiveCount(p);
  for (size_t i = 0; i < n; ++i)
    c.push_back({p.PartPoints()[i], p.PartZ().empty() ? 0 : p.PartZ()[i],
                 p.PartM().empty() ? 0 : p.PartM()[i]});
  return c;
}

bool Same(const XY& a, const XY& b) {
  return a.X == b.X && a.Y == b.Y;
}

// A ring without its closing vertex.
Chain OpenRing(Chain c) {
  if (c.size() > 1 && Same(c.front().p, c.back().p)) c.pop_back();
  return c;
}

void CloseRing(Chain& c) {
  if (!c.empty() && !Same(c.front().p, c.back().p)) c.push_back(c.front());
}

// Writes the chain into part `part` of the record, which must exist.
void PutChain(ShpRecord& r, int part, const Chain& c) {
  ShpPart& p = r.Part(part);
  p.Resize(c.size());
  for (size_t i = 0; i < c.size(); ++i) {
    p.PartPoints()[i] = c[i].p;
    if (!p.PartZ().empty()) p.PartZ()[i] = c[i].z;
    if (!p.PartM().empty()) p.PartM()[i] = c[i].m;
  }
  p.PartCount = int32_t(c.size());
  p.PartFlag = 0;
}

void Recount(ShpRecord& r) {
  int n = 0;
  for (const ShpPart& p : r.Parts()) n += p.PartCount;
  r.NumPoints = n;
  r.LabelReady = 0;
}

// A record of the layer's type holding the given chains as its parts.
ShpRecord RecordOf(const Session& s, int lyr, const std::vector<Chain>& parts) {
  ShpRecord r;
  r.ShapeType = s.Lyr[lyr].Shp.ShpType;
  r.ResizeParts(int(parts.size()));
  const int t = r.ShapeType;
  const bool z = t == 11 || t == 13 || t == 15 || t == 18;
  const bool m = z || t == 21 || t == 23 || t == 25 || t == 28;
  for (size_t i = 0; i < parts.size(); ++i) {
    r.Part(int(i)).SetZM(z, m);
    PutChain(r, int(i), parts[i]);
  }
  Recount(r);
  return r;
}

// Puts a new record in slot `n`: appended (with a copy of the source row) when it is one
// past the last, written over a record the undo left deleted otherwise.
bool PlaceNew(Session& s, int lyr, int src, int n, ShpRecord rec) {
  ShpBlock& b = s.Lyr[lyr].Shp;
  if (n == b.RecCount + 1) {
    AddRec(s, lyr);
    if (b.RecCount != n) return false;
    AddDbfRec(s, lyr, n - 1);
    if (s.Lyr[lyr].Dbf.DbfFieldCount > 0) CopyRow(s, lyr, src - 1, lyr, n - 1, true);
  } else if (n < 1 || n > b.RecCount) {
    return false;
  }
  b.ShpRecs[size_t(n)] = std::move(rec);
  RecalcRecBox(s, lyr, n);
  b.ShpChanged = -1;
  return true;
}

} // namespace

void DivideFeatureCmd(Session& s, int lyr, int rec, int part, int v1, int v2, int n) {
  ShpRecord* r = RecAt(s, lyr, rec);
  const ShpPart* p = PartAt(r, part);
  if (!p || part >= r->NumParts || r->ShapeType == 0) return;
  Chain c = ChainOf(*p);
  const int t = r->ShapeType;
  std::vector<Chain> keep, give;
  if (IsLine(t)) {
    // At an inner vertex: the feature keeps the parts before and the chain up to the
    // vertex, the new one takes the chain from it and the parts after.
    if (v1 < 1 || size_t(v1) + 1 >= c.size()) return;
    for (int i = 0; i < part; ++i) keep.push_back(ChainOf(r->Part(i)));
    keep.push_back(Chain(c.begin(), c.begin() + v1 + 1));
    give.push_back(Chain(c.begin() + v1, c.end()));
    for (int i = part + 1; i < r->NumParts && i < r->PartSlots(); ++i)
      give.push_back(ChainOf(r->Part(i)));
  } else if (IsGon(t)) {
    // Along the line from v1 to v2: the feature keeps v1 .. v2 and the other parts (its
    // holes), the new one takes v2 .. v1 round the end of the ring.
    Chain ring = OpenRing(c);
    const int k = int(ring.size());
    if (k < 4) return;
    v1 %= k, v2 %= k;
    if (v1 < 0 || v2 < 0 || v1 == v2 || (v1 + 1) % k == v2 || (v2 + 1) % k == v1) return;
    Chain a, b;
    for (int i = v1;; i = (i + 1) % k) {
      a.push_back(ring[size_t(i)]);
      if (i == v2) break;
    }
    for (int i = v2;; i = (i + 1) % k) {
      b.push_back(ring[size_t(i)]);
      if (i == v1) break;
    }
    CloseRing(a), CloseRing(b);
    for (int i = 0; i < r->NumParts && i < r->PartSlots(); ++i)
      keep.push_back(i == part ? a : ChainOf(r->Part(i)));
    give.push_back(b);
  } else {
    return;
  }
  ShpRecord mine = RecordOf(s, lyr, keep);
  if (!PlaceNew(s, lyr, rec, n, RecordOf(s, lyr, give))) return;
  s.Lyr[lyr].Shp.ShpRecs[size_t(rec)] = std::move(mine);
  RecalcRecBox(s, lyr, rec);
  RecalcExtent(s, lyr);
}

void UndivideFeatureCmd(Session& s, int lyr, int rec, int n) {
  if (!RecAt(s, lyr, rec)) return;
  UndoGetRec(s, lyr, rec);
  if (RecAt(s, lyr, n)) DeleteRec(s, lyr, n, false);
  RecalcExtent(s, lyr);
}

void CombineFeatureCmd(Session& s, int lyr, int rec1, int part1, int v1, int v1b, int lyr2,
                       int rec2, int part2, int v2, int v2b) {
  ShpRecord* r1 = RecAt(s, lyr, rec1);
  ShpRecord* r2 = RecAt(s, lyr2, rec2);
  if (!r1 || !r2 || (lyr == lyr2 && rec1 == rec2) || r1->ShapeType == 0 || r2->ShapeType == 0)
    return;
  const ShpPart* p1 = PartAt(r1, part1);
  const ShpPart* p2 = PartAt(r2, part2);
  if (!p1 || !p2 || part1 >= r1->NumParts || part2 >= r2->NumParts) return;
  const int t = r1->ShapeType;
  Chain a = ChainOf(*p1), b = ChainOf(*p2);
  Chain joined;
  if (IsLine(t) && IsLine(r2->ShapeType)) {
    // Each chosen vertex is an end of its chain: 0 or the last.
    const int lastA = int(a.size()) - 1, lastB = int(b.size()) - 1;
    if (lastA < 0 || lastB < 0 || (v1 != 0 && v1 != lastA) || (v2 != 0 && v2 != lastB)) return;
    if (v1 == 0) std::reverse(a.begin(), a.end()); // the join comes at the end of a
    if (v2 != 0) std::reverse(b.begin(), b.end()); // and at the start of b
    joined = a;
    size_t from = !joined.empty() && !b.empty() && Same(joined.back().p, b.front().p) ? 1 : 0;
    joined.insert(joined.end(), b.begin() + ptrdiff_t(from), b.end());
    if (v1 == 0) std::reverse(joined.begin(), joined.end()); // a keeps its direction
  } else if (IsGon(t) && IsGon(r2->ShapeType)) {
    // The shared edge runs v1 -> v1b in the first ring and v2 - v2b in the second.
    Chain A = OpenRing(a), B = OpenRing(b);
    const int ka = int(A.size()), kb = int(B.size());
    if (ka < 3 || kb < 3) return;
    v1 %= ka, v1b %= ka, v2 %= kb, v2b %= kb;
    if (v1 < 0 || v1b < 0 || v2 < 0 || v2b < 0) return;
    if ((v1 + 1) % ka != v1b) std::swap(v1, v1b);
    if ((v1 + 1) % ka != v1b) return;
    if ((v2 + 1) % kb != v2b) std::swap(v2, v2b);
    if ((v2 + 1) % kb != v2b) return;
    const XY e0 = A[size_t(v1)].p, e1 = A[size_t(v1b)].p;
    const bool opposite = Same(B[size_t(v2b)].p, e0) && Same(B[size_t(v2)].p, e1);
    const bool alike = Same(B[size_t(v2)].p, e0) && Same(B[size_t(v2b)].p, e1);
    if (!opposite && !alike) return;
    // Round A from the edge's end to its start, then round B away from the edge.
    for (int i = v1b;; i = (i + 1) % ka) {
      joined.push_back(A[size_t(i)]);
      if (i == v1) break;
    }
    if (opposite) // B meets A's start at v2b and walks on forward to v2
      for (int i = (v2b + 1) % kb; i != v2; i = (i + 1) % kb) joined.push_back(B[size_t(i)]);
    else // B meets it at v2 and walks backward to v2b
      for (int i = (v2 - 1 + kb) % kb; i != v2b; i = (i - 1 + kb) % kb)
        joined.push_back(B[size_t(i)]);
    CloseRing(joined);
  } else {
    return;
  }
  std::vector<Chain> parts;
  for (int i = 0; i < r1->NumParts && i < r1->PartSlots(); ++i)
    parts.push_back(i == part1 ? joined : ChainOf(r1->Part(i)));
  for (int i = 0; i < r2->NumParts && i < r2->PartSlots(); ++i)
    if (i != part2 && r2->Part(i).PartCount > 0) parts.push_back(ChainOf(r2->Part(i)));
  ShpRecord out = RecordOf(s, lyr, parts);
  s.Lyr[lyr].Shp.ShpRecs[size_t(rec1)] = std::move(out);
  s.Lyr[lyr].Shp.ShpChanged = -1;
  RecalcRecBox(s, lyr, rec1);
  DeleteRec(s, lyr2, rec2, false);
  RecalcExtent(s, lyr);
  if (lyr2 != lyr) RecalcExtent(s, lyr2);
}

void UncombineFeatureCmd(Session& s, int lyr, int rec, int n) {
  // `rec` is the feature that was taken in, `n` the one that took it.
  if (!RecAt(s, lyr, n)) return;
  UndoGetRec(s, lyr, n);
  if (IsDeleted(s, lyr, rec)) UndeleteRec(s, lyr, rec, false);
  RecalcExtent(s, lyr);
}

} // namespace velmora
