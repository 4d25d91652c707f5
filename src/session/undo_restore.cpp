#include "session/undo_restore.h"

#include "session/undo.h"

namespace velmora {

void UndoLoadRec(Session& s, int lyr, int rec) {
  UndoGetRec(s, lyr, rec);
}

} // namespace velmora
