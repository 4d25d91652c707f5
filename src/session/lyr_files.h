#pragma once
#include <string>

#include "model/session.h"

namespace velmora {

// The first user layer whose files are those that a layer made at `path` would write (the
// same .shp, .shx and .dbf, whatever the case of their names; an image's frame files
// count), or 0.
int FindLyrOnFiles(const Session& s, const std::string& path);

} // namespace velmora
