#pragma once
#include <string>

#include "frame/lyr_slots.h"
#include "model/session.h"

namespace velmora::test {

// User rows set up by hand, as a store would leave them: /data/l<i>.shp with `recs` records.
inline void AddLayers(Session& s, int n, int recs = 5) {
  s.Lyr.Resize(n);
  s.LyrCount = n;
  for (int i = 1; i <= n; ++i) {
    SetLyrDefaults(s, i);
    s.Lyr[i].LyrName = "l" + std::to_string(i) + ".shp";
    s.Lyr[i].Fsource = "/data/l" + std::to_string(i) + ".shp";
    s.Lyr[i].LyrKind = 1;
    s.Lyr[i].Shp.RecCount = recs;
  }
}

} // namespace velmora::test
