#include "session/undo_restore.h"

namespace velmora {

// The journal keeps no feature snapshots yet, so there is nothing to restore.
void UndoLoadRec(Session& /*s*/, int /*lyr*/, int /*rec*/) {}

} // namespace velmora
