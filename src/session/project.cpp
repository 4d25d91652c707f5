#include "session/project.h"

namespace velmora {

// The project reader is not written yet.
void LoadProject(Session& /*s*/, const std::string& /*path*/) {}

} // namespace velmora
