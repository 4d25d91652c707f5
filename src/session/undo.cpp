#include "session/undo.h"

namespace velmora {

// The feature-edit journal keeps no entries yet, so there is nothing to drop.
void UndoPurgeLyr(Session& /*s*/, const std::string& /*fsource*/) {}

} // namespace velmora
