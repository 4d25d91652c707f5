#include "session/start_session.h"

#include <chrono>

#include "frame/log.h"
#include "query/location.h"
#include "session/commands.h"
#include "session/map_init.h"

namespace velmora {

std::string JoinArgs(const std::vector<std::string>& args) {
  std::string line;
  for (const std::string& a : args) {
    if (!line.empty()) line += ' ';
    if (a.find(' ') == std::string::npos) {
      line += a;
      continue;
    }
    line += '"';
    for (char c : a) {
      if (c == '"' || c == '\'') line += c; // a doubled quote is one quote character
      line += c;
    }
    line += '"';
  }
  return line;
}

namespace {

// QMTVBS Intersect and Inside: the location predicates of relation 1 and 3, no tolerance.
bool ScriptSpatialTest(Session& s, int lyr, int rec, int lyr2, int rec2, int relation) {
  if (lyr < 1 || lyr > s.LyrCount || lyr2 < 1 || lyr2 > s.LyrCount) return false;
  if (rec < 1 || rec > s.Lyr[lyr].Shp.RecCount || rec2 < 1 || rec2 > s.Lyr[lyr2].Shp.RecCount)
    return false;
  return LocationPredicate(s, relation, lyr, rec, lyr2, rec2, 0);
}

} // namespace

std::string Banner() {
  return "Velmora GIS " VELMORA_VERSION " - desktop GIS and map editor";
}

bool StartSession(Session& s, const std::vector<std::string>& args) {
  s.LastDir = s.ProgramDir;
  LogInit(s, Banner());
  s.Script.SpatialTest = ScriptSpatialTest;
  MapInit(s);
  Randomize(s, uint32_t(std::chrono::system_clock::now().time_since_epoch().count()));

  ArgStrSplit(s, JoinArgs(args));
  bool exitAsked = ArgStrEndsInExit(s);
  ArgStrExecute(s);
  OpenAnyFile(s, s.ArgStr[0]);
  return exitAsked || ArgStrEndsInExit(s);
}

} // namespace velmora
