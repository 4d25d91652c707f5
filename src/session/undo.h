#pragma once
#include <string>

#include "edit/journal.h"
#include "model/session.h"

namespace velmora {

// The menu item "Undo Drawing Edit" and the toolbar's undo button; and redo.
void UndoRun(Session& s);
void RedoRun(Session& s);

} // namespace velmora
