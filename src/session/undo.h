#pragma once
#include <string>

#include "session/session.h"

namespace velmora {

// Drops every journal entry that names the layer by its quoted source path.
void UndoPurgeLyr(Session& s, const std::string& fsource);

} // namespace velmora
