#include "edit/not_ready.h"

#include "frame/log.h"

namespace velmora {

void LogNotAvailable(Session& s, const std::string& command, int lyr) {
  std::string name = lyr >= 1 && lyr <= s.LyrCount ? s.Lyr[lyr].LyrName : std::string();
  LogMsg(s, " *** " + command + (name.empty() ? "" : " " + name) + " is not available yet *** ");
}

} // namespace velmora
