#pragma once
#include <string>

#include "session/session.h"

namespace velmora {

// Reads a .prj file as a coordinate system definition (the coordinates calculator).
void LoadPrjFile(Session& s, const std::string& path);

} // namespace velmora
