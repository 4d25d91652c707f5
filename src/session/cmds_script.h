#pragma once
#include "model/session.h"

namespace velmora {

// SET SCRIPT <path> <scriptFile>: the layer's script becomes that file.
int CmdSetScript(Session& s);
// RUN SCRIPT <path> [<firstRec> <lastRec>] [SELECTED]: RunScript over the range.
int CmdRunScript(Session& s);

} // namespace velmora
