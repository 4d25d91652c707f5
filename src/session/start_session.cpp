#include "session/start_session.h"

#include <chrono>

#include "frame/log.h"
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

std::string Banner() {
  return "Velmora GIS " VELMORA_VERSION " - desktop GIS and map editor";
}

bool StartSession(Session& s, const std::vector<std::string>& args) {
  s.LastDir = s.ProgramDir;
  LogInit(s, Banner());
  MapInit(s);
  Randomize(s, uint32_t(std::chrono::system_clock::now().time_since_epoch().count()));

  ArgStrSplit(s, JoinArgs(args));
  bool exitAsked = ArgStrEndsInExit(s);
  ArgStrExecute(s);
  OpenAnyFile(s, s.ArgStr[0]);
  return exitAsked || ArgStrEndsInExit(s);
}

} // namespace velmora
