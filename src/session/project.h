#pragma once
#include <string>

#include "session/session.h"

namespace velmora {

// Reads a project file (.qmt) into the session, replacing what is there.
void LoadProject(Session& s, const std::string& path);

} // namespace velmora
