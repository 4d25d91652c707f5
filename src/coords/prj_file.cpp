#include "coords/prj_file.h"

namespace velmora {

// The coordinate system reader is not written yet.
void LoadPrjFile(Session& /*s*/, const std::string& /*path*/) {}

} // namespace velmora
