#include "model/file_util.h"
#include "model/val.h"
#include "network/route_search.h"
#include "store/dbf_store.h"

namespace velmora {

double NetLineFactor(Session& s, int lyr, int feature) {
  LyrRec& l = s.Lyr[lyr];
  if (l.NuseFactor != 1 || l.NfactorField < 1 || l.NfactorField > l.Dbf.DbfFieldCount) return 1;
  ReadDbfRec(s, lyr, feature - 1);
  const std::string v = Trim(GetFieldValue(s, lyr, l.NfactorField));
  return v.empty() ? 1 : Val(v); // times 1 leaves a length exactly as it is
}

void ClearLayerRoute(Session& s, int lyr) {
  if (lyr < -kWorkSlots || lyr > s.LyrCount) return;
  s.Lyr[lyr].Net.NetRoutes.clear();
  s.Lyr[lyr].Net.NetRouteLen = 0;
}

void ClearShortestPath(Session& s) {
  for (int i = 1; i <= s.LyrCount; ++i) ClearLayerRoute(s, i);
}

} // namespace velmora
