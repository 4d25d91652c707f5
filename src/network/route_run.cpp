#include "network/route_run.h"

#include "frame/busy.h"
#include "frame/log.h"
#include "frame/refusal_log.h"
#include "model/c_numbers.h"
#include "model/file_util.h"
#include "store/dbf_store.h"

namespace velmora {

RouteStatus RunRoute(Session& s, int lyr, bool exact) {
  if (lyr < 1 || lyr > s.LyrCount || s.Lyr[lyr].LyrKind != 1) return RouteStatus::NotBuilt;
  if (LyrIsBusy(s, lyr)) return RouteStatus::Busy;
  SetLyrTerminate(s, lyr, false);
  ClearLayerRoute(s, lyr);
  const std::string name = s.Lyr[lyr].LyrName;
  const int16_t keep = s.Net.NetStopIdx;
  const RouteStatus st = exact ? GetExactShortestPath(s, lyr) : GetShortestPath(s, lyr);
  s.Net.NetStopIdx = keep;
  switch (st) {
  case RouteStatus::Done:
    LogMsg(s, "Get Shortest Path in Layer " + name);
    break;
  case RouteStatus::Canceled:
    LogMsg(s, " *** Get Shortest Path in Layer " + name + " has been canceled *** ");
    break;
  case RouteStatus::NoStops:
    LogCanceled(s, "Get Shortest Path in Layer " + name, "pick From and To on the layer first");
    break;
  default:
    break;
  }
  return st;
}

std::string RouteLenText(double len) {
  return GeneralText(len, 15);
}

std::vector<std::string> RouteFieldValues(Session& s, int lyr, int fld) {
  std::vector<std::string> out;
  if (lyr < 1 || lyr > s.LyrCount) return out;
  const bool hasField = fld >= 1 && fld <= s.Lyr[lyr].Dbf.DbfFieldCount;
  for (const NetRoute& r : s.Lyr[lyr].Net.NetRoutes) {
    if (!hasField) {
      out.push_back(std::to_string(r.RouteFeature));
      continue;
    }
    ReadDbfRec(s, lyr, r.RouteFeature - 1);
    out.push_back(Trim(GetFieldValue(s, lyr, fld)));
  }
  return out;
}

} // namespace velmora
