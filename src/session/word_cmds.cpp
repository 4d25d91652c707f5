#include "session/word_cmds.h"

#include <charconv>
#include <cmath>

#include "frame/lyr_slots.h"
#include "model/companion_file.h"
#include "model/file_util.h"
#include "model/val.h"
#include "session/cmds_location.h"
#include "session/cmds_network.h"
#include "session/cmds_script.h"
#include "session/cmds_select.h"
#include "session/cmds_surface.h"
#include "session/cmds_table.h"
#include "session/layer_life.h"

namespace velmora {

namespace {

// One row per command; areas add theirs here.
const WordCmd kWordCmds[] = {
    {"FIND", "QUERY", CmdFindQuery},
    {"FIND", "NESTED", CmdFindNested},
    {"SELECTION", nullptr, CmdSelection},
    {"COPY", "SELECTED", CmdCopySelected},
    {"CUT", "SELECTED", CmdCutSelected},
    {"COMBINE", "SELECTED", CmdCombineSelected},
    {"SEPARATE", "SELECTED", CmdSeparateSelected},
    {"COMBINEPARTS", "SELECTED", CmdCombinePartsSelected},
    {"DELETE", "SELECTED", CmdDeleteSelected},
    {"CLOSE", "SELECTED", CmdCloseSelected},
    {"REMOVE", "DELETED", CmdRemoveDeleted},
    {"DELETE", "FEATURES", CmdDeleteFeatures},
    {"UNDELETE", "FEATURES", CmdUndeleteFeatures},
    {"DELETE", "RECORDS", CmdDeleteRecords},
    {"UNDELETE", "RECORDS", CmdUndeleteRecords},
    {"DELETE", "SNAPSHOT", CmdDeleteSnapshot},
    {"UNDELETE", "SNAPSHOT", CmdUndeleteSnapshot},
    {"CUT", "SNAPSHOT", CmdCutSnapshot},
    {"UNCUT", "SNAPSHOT", CmdUncutSnapshot},
    {"FIND", "LOCATION", RunFindLocationCmd},
    {"FILL", "SERIES", RunFillSeriesCmd},
    {"ADD", "RECORDS", RunAddRecordsCmd},
    {"DELETE", "FIELD", RunDeleteFieldCmd},
    {"RENAME", "FIELD", RunRenameFieldCmd},
    {"CHANGE", "FIELD", RunChangeFieldCmd},
    {"SORT", "ROWS", RunSortRowsCmd},
    {"UNSORT", "ROWS", RunUnsortRowsCmd},
    {"CONVERT", "UTF8", RunConvertUtf8Cmd},
    {"CONVERT", "ASCII", RunConvertAsciiCmd},
    {"BUILD", "TIN", RunBuildTin},
    {"BUILD", "CONTOURS", RunBuildContours},
    {"BUILD", "NETWORK", CmdBuildNetwork},
    {"SHORTEST", "PATH", CmdShortestPath},
    {"CLEAR", "SHORTEST", CmdClearShortestPath},
    {"SET", "SCRIPT", CmdSetScript},
    {"RUN", "SCRIPT", CmdRunScript},
    {nullptr, nullptr, nullptr},
};

std::string StripQuotes(const std::string& t) {
  std::string r;
  for (char c : t)
    if (c != '"') r += c;
  return r;
}

} // namespace

bool RunWordCmd(Session& s, int& lyr) {
  const std::string w0 = WordCmdWord(s, 0), w1 = WordCmdWord(s, 1);
  for (const WordCmd& c : kWordCmds) {
    if (!c.W0 || w0 != c.W0) continue;
    if (c.W1 && w1 != c.W1) continue;
    lyr = c.Run(s);
    return true;
  }
  return false;
}

int WordCmdLyr(Session& s, size_t i, bool open) {
  if (i >= s.ArgStr.size()) return 0;
  std::string path = StripQuotes(s.ArgStr[i]);
  std::string ext = ExtOf(path);
  if (ext == "dbf" || ext == "shx") path = CompanionPath(path, "shp");
  int n = FindLyrByFile(s, path);
  if (n <= 0 && open && !path.empty()) {
    AddShape(s, path, false);
    n = FindLyrByFile(s, path);
  }
  return n > 0 ? n : 0;
}

std::string WordCmdWord(const Session& s, size_t i) {
  return i < s.ArgStr.size() ? UCase(s.ArgStr[i]) : std::string();
}

bool WordCmdNum(const Session& s, size_t i, double& v) {
  if (i >= s.ArgStr.size()) return false;
  const std::string& t = s.ArgStr[i];
  // from_chars ignores the session locale: numbers in commands always carry a point.
  const char* b = t.c_str();
  const char* e = b + t.size();
  if (b != e && *b == '+') ++b;
  auto [ptr, ec] = std::from_chars(b, e, v);
  return ec == std::errc() && ptr == e && std::isfinite(v);
}

bool WordCmdInt(const Session& s, size_t i, int& v) {
  double d;
  if (!WordCmdNum(s, i, d) || d < -2147483648.0 || d > 2147483647.0 || d != std::floor(d))
    return false;
  v = int(d);
  return true;
}

} // namespace velmora
