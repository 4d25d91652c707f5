#pragma once
#include <string>

#include "model/session.h"

namespace velmora {

// " *** <command> <layer name> is not available yet *** ": a command of the language whose
// work the editor will do, refused until it does.
void LogNotAvailable(Session& s, const std::string& command, int lyr);

} // namespace velmora
