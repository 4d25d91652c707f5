#include "network/route_common.h"

#include "network/net_files.h"

namespace velmora::netsearch {

RouteStatus CheckRoute(Session& s, int lyr) {
  LyrRec& l = s.Lyr[lyr];
  const bool current = l.Net.NetNodes.Loaded && l.Net.NetNodes.NetNodeUB == l.Shp.RecCount;
  if (!NetFilesReady(s, lyr) || (!current && !LoadNet(s, lyr))) {
    s.host->MsgBox("  Please Build Network first\r\n Before Getting Shortest Path ",
                   s.Lyr[lyr].LyrName + " : NetWork Message Box ", MsgButtons::OkOnly,
                   MsgAnswer::Ok);
    return RouteStatus::NotBuilt;
  }
  const int ub = l.Net.NetNodes.NetNodeUB;
  for (int i = 1; i <= 2; ++i) {
    const NetLink& k = s.Net.NetStops[size_t(i)];
    if (k.LinkFeature < 1 || k.LinkFeature > ub || !std::isfinite(k.LinkX) ||
        !std::isfinite(k.LinkY))
      return RouteStatus::NoStops;
  }
  return RouteStatus::Done;
}

LineFactors::LineFactors(Session& s, int lyr) {
  const LyrRec& l = s.Lyr[lyr];
  used_ = l.NuseFactor == 1 && l.NfactorField >= 1 && l.NfactorField <= l.Dbf.DbfFieldCount;
  if (used_) cache_.assign(size_t(l.Shp.RecCount) + 1, std::numeric_limits<double>::quiet_NaN());
}

} // namespace velmora::netsearch
