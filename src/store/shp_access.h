#pragma once
// Checked access to a layer's records and parts for the store's own operations.
#include <algorithm>

#include "model/session.h"

namespace velmora::shpio {

// Record `rec` of the layer, 1 .. RecCount; null outside.
inline ShpRecord* RecAt(Session& s, int lyr, int rec) {
  ShpBlock& B = s.Lyr[lyr].Shp;
  if (rec < 1 || rec > B.RecCount || size_t(rec) >= B.ShpRecs.size()) return nullptr;
  return &B.ShpRecs[size_t(rec)];
}
inline const ShpRecord* RecAt(const Session& s, int lyr, int rec) {
  const ShpBlock& B = s.Lyr[lyr].Shp;
  if (rec < 1 || rec > B.RecCount || size_t(rec) >= B.ShpRecs.size()) return nullptr;
  return &B.ShpRecs[size_t(rec)];
}
// Part `part` of a record; null outside the part array.
inline ShpPart* PartAt(ShpRecord* r, int part) {
  return r && part >= 0 && part < r->PartSlots() ? &r->Part(part) : nullptr;
}
inline const ShpPart* PartAt(const ShpRecord* r, int part) {
  return r && part >= 0 && part < r->PartSlots() ? &r->Part(part) : nullptr;
}
// Live vertices of a part that the array really holds.
inline size_t LiveCount(const ShpPart& p) {
  return p.PartCount <= 0 ? 0 : std::min(size_t(p.PartCount), p.Size());
}

} // namespace velmora::shpio
