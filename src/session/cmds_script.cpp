#include "session/cmds_script.h"

#include "frame/log.h"
#include "frame/refusal_log.h"
#include "model/file_util.h"
#include "session/word_cmds.h"
#include "table/run_script.h"

namespace velmora {

namespace {
std::string Unquoted(const std::string& t) {
  std::string r;
  for (char c : t)
    if (c != '"') r += c;
  return r;
}
} // namespace

int CmdSetScript(Session& s) {
  int lyr = WordCmdLyr(s, 2, true);
  if (lyr <= 0 || s.ArgStr.size() < 4) {
    LogCanceled(s, "Set Script", lyr <= 0 ? "no such layer" : "no script file given");
    return 0;
  }
  s.Lyr[lyr].VBScriptSRC = 1;
  s.Lyr[lyr].VBScriptFile = Unquoted(s.ArgStr[3]);
  s.Lyr[lyr].VBScriptDownload.clear();
  s.ProjChanged = -1;
  LogMsg(s, "Set Script " + s.Lyr[lyr].LyrName);
  return lyr;
}

int CmdRunScript(Session& s) {
  int lyr = WordCmdLyr(s, 2, true);
  if (lyr <= 0) {
    LogCanceled(s, "Run VB Script", "no such layer");
    return 0;
  }
  int first = 0, last = 0;
  bool selected = false;
  size_t i = 3;
  if (WordCmdInt(s, 3, first)) {
    if (!WordCmdInt(s, 4, last)) {
      LogCanceled(s, "Run VB Script " + s.Lyr[lyr].LyrName,
                  "a range needs its first and last record");
      return lyr;
    }
    i = 5;
  }
  if (WordCmdWord(s, i) == "SELECTED") selected = true;
  RunScript(s, lyr, first, last, selected);
  return lyr;
}

} // namespace velmora
