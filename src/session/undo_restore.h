#pragma once
#include "model/session.h"

namespace velmora {

// Copies the feature snapshot of the current journal entry back over record `rec` of
// `lyr`: what LOADREDOUNDO FEATURE and SAVEREDOUNDO FEATURE do (the same as UndoGetRec).
void UndoLoadRec(Session& s, int lyr, int rec);

} // namespace velmora
