#pragma once
#include <string>

#include "model/session.h"

namespace velmora {

// " *** <what> has been canceled *** ", then the reason as a line of its own when there is
// one: " *** read-only: /data/roads.shp *** ".
void LogCanceled(Session& s, const std::string& what, const std::string& why);

} // namespace velmora
