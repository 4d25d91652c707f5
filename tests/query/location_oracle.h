#pragma once
// The plain loops of find by location, kept as the oracle of the indexed product: every
// reference feature against every find feature (or the other way round for the two
// "contain" relations), each pair through the relation's predicate, in record order.
#include "query/location.h"
#include "query/spatial.h"

namespace velmora::test {

inline bool OracleBit(const std::vector<uint8_t>& b, int r) {
  size_t i = size_t(r) / 8;
  return i < b.size() && (b[i] >> (r % 8)) & 1;
}
inline void OracleSet(std::vector<uint8_t>& b, int r, bool on) {
  size_t i = size_t(r) / 8;
  if (i >= b.size()) b.resize(i + 1, 0);
  uint8_t m = uint8_t(1u << (r % 8));
  b[i] = on ? uint8_t(b[i] | m) : uint8_t(b[i] & ~m);
}

// Returns the count of marks; `mask` builds the raster mask of each outer feature.
inline int OracleFindByLocation(Session& s, const LocationQuery& q, bool mask) {
  const int find = q.FindLyr, ref = q.RefLyr, rel = q.Relation;
  const double tol = q.Tol;
  auto takes = [&](int f) {
    return q.Criteria == 1 || (q.Criteria == 2) == OracleBit(s.Lyr[find].SelBits, f);
  };
  auto refTakes = [&](int g) { return !q.RefSelectedOnly || OracleBit(s.Lyr[ref].SelBits, g); };
  const bool transfer = !q.TransferFields.empty() && LocationRelationPositive(rel);
  s.Lyr[find].QryBits.assign(size_t(s.Lyr[find].Shp.RecCount + 7) / 8 + 1, 0);
  const int nf = s.Lyr[find].Shp.RecCount, ng = s.Lyr[ref].Shp.RecCount;
  const bool before = s.Loc.MaskOn;
  s.Loc.MaskOn = mask;
  if (!LocationFindOuter(rel)) {
    for (int g = 1; g <= ng; ++g) {
      if (!refTakes(g)) continue;
      BuildMask(s, ref, g, tol);
      for (int f = 1; f <= nf; ++f) {
        if (!takes(f)) continue;
        if (!LocationPredicate(s, rel, find, f, ref, g, tol)) continue;
        OracleSet(s.Lyr[find].QryBits, f, true);
        if (transfer) TransferData(s, ref, g, find, f, q.TransferFields);
      }
      FreeMask(s);
    }
  } else {
    for (int f = 1; f <= nf; ++f) {
      if (!takes(f)) continue;
      BuildMask(s, find, f, tol);
      for (int g = 1; g <= ng; ++g) {
        if (!refTakes(g) || !LocationPredicate(s, rel, find, f, ref, g, tol)) continue;
        OracleSet(s.Lyr[find].QryBits, f, true);
        if (transfer) TransferData(s, ref, g, find, f, q.TransferFields);
        break;
      }
      FreeMask(s);
    }
  }
  s.Loc.MaskOn = before;
  auto& Q = s.Lyr[find].QryBits;
  if (!LocationRelationPositive(rel))
    for (int f = 1; f <= nf; ++f)
      if (s.Lyr[find].Shp.ShpRecs[size_t(f)].ShapeType != 0 && takes(f))
        OracleSet(Q, f, !OracleBit(Q, f));
  int count = 0;
  auto& S = s.Lyr[find].SelBits;
  for (int f = 1; f <= nf; ++f) {
    bool m = OracleBit(Q, f);
    count += m;
    if (q.Method == 1)
      OracleSet(S, f, m);
    else if (m)
      OracleSet(S, f, q.Method == 2);
  }
  return count;
}

} // namespace velmora::test
