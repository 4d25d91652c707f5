#include "session/cmds_location.h"

#include "frame/log.h"
#include "query/location.h"
#include "session/word_cmds.h"

namespace velmora {

namespace {

std::vector<std::string> SplitFields(const std::string& t) {
  std::vector<std::string> out;
  std::string cur;
  for (char c : t + ",") {
    if (c == ',') {
      if (!cur.empty()) out.push_back(cur);
      cur.clear();
    } else if (c != '"') {
      cur += c;
    }
  }
  return out;
}

} // namespace

int RunFindLocationCmd(Session& s) {
  LocationQuery q;
  int refSel = 0;
  q.FindLyr = WordCmdLyr(s, 2, true);
  q.RefLyr = WordCmdLyr(s, 6, true);
  if (!q.FindLyr || !q.RefLyr || !WordCmdInt(s, 3, q.Method) || !WordCmdInt(s, 4, q.Criteria) ||
      !WordCmdInt(s, 5, q.Relation) || !WordCmdInt(s, 7, refSel) || !WordCmdNum(s, 8, q.Tol) ||
      (refSel != 0 && refSel != 1)) {
    LogMsg(s, " *** Find by Location has been canceled *** ");
    return q.FindLyr;
  }
  q.RefSelectedOnly = refSel == 1;
  if (s.ArgStr.size() > 9 && WordCmdWord(s, 9) != "EXIT")
    q.TransferFields = SplitFields(s.ArgStr[9]);
  int count = FindByLocation(s, q);
  if (count >= 0)
    LogMsg(s, std::to_string(count) + " Features have been Selected Successfully in Layer " +
                  s.Lyr[q.FindLyr].LyrName);
  return q.FindLyr;
}

} // namespace velmora
