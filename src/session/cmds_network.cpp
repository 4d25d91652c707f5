#include "session/cmds_network.h"

#include "frame/busy.h"
#include "frame/log.h"
#include "frame/refusal_log.h"
#include "network/build_net.h"
#include "network/net_files.h"
#include "network/route_run.h"
#include "network/route_search.h"
#include "network/route_stops.h"
#include "session/word_cmds.h"

namespace velmora {

int CmdBuildNetwork(Session& s) {
  const int lyr = WordCmdLyr(s, 2, true);
  double tol = 0;
  if (lyr < 1 || !WordCmdNum(s, 3, tol) || tol < 0) {
    LogCanceled(s, "Building Shortest Path NetWork",
                lyr < 1 ? "no line layer at " + (s.ArgStr.size() > 2 ? s.ArgStr[2] : std::string())
                        : "the tolerance is not a number of map units");
    return 0;
  }
  BuildNet(s, lyr, tol);
  return lyr;
}

int CmdShortestPath(Session& s) {
  const int lyr = WordCmdLyr(s, 2, true);
  double X[2], Y[2];
  const std::string what = "Get Shortest Path";
  if (lyr < 1 || !WordCmdNum(s, 3, X[0]) || !WordCmdNum(s, 4, Y[0]) || !WordCmdNum(s, 5, X[1]) ||
      !WordCmdNum(s, 6, Y[1])) {
    LogCanceled(s, what, lyr < 1 ? "no line layer given" : "From and To need X and Y numbers");
    return 0;
  }
  const std::string w7 = WordCmdWord(s, 7);
  if (!w7.empty() && w7 != "EXACT") {
    LogCanceled(s, what, "unknown option " + s.ArgStr[7]);
    return 0;
  }
  if (LyrIsBusyMsg(s, lyr)) return lyr;
  // The layer picked in the dialog keeps what the last searches learnt; any other is
  // loaded afresh, as picking it in the dialog would.
  if (s.Net.NetLyr != lyr) LoadNet(s, lyr);
  for (int i = 0; i < 2; ++i) {
    if (!PickRouteStopAt(s, lyr, X[i], Y[i])) {
      LogCanceled(s, what + " in Layer " + s.Lyr[lyr].LyrName,
                  std::string("no line of the layer at ") + (i ? "To" : "From"));
      return lyr;
    }
    InstNet(s, i + 1, s.Edit.HitNow);
  }
  if (RunRoute(s, lyr, w7 == "EXACT") != RouteStatus::Done) return lyr;
  const NetBlock& net = s.Lyr[lyr].Net;
  LogMsg(s, "Shortest Path Length = " + RouteLenText(net.NetRouteLen));
  std::string list = "Shortest Path Features =";
  for (const NetRoute& r : net.NetRoutes) list += " " + std::to_string(r.RouteFeature);
  LogMsg(s, list);
  return lyr;
}

int CmdClearShortestPath(Session& s) {
  if (WordCmdWord(s, 2) != "PATH") return 0;
  ClearShortestPath(s);
  LogMsg(s, "Clear Shortest Path");
  s.host->MapRedraw();
  return 0;
}

} // namespace velmora
