#pragma once
#include "model/session.h"

namespace velmora {

// The version of project file this program writes.
inline constexpr double kProjVersion = 16.007;

// Puts the session as after start: view and units to their starting values, the edit
// journal and the view history empty, no user layers. The view size, fixed when the
// window is arranged, is kept. Runs at start and when a project closes.
void MapInit(Session& s);

} // namespace velmora
