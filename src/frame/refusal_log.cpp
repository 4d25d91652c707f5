#include "frame/refusal_log.h"

#include "frame/log.h"

namespace velmora {

void LogCanceled(Session& s, const std::string& what, const std::string& why) {
  LogMsg(s, " *** " + what + " has been canceled *** ");
  if (!why.empty()) LogMsg(s, " *** " + why + " *** ");
}

} // namespace velmora
