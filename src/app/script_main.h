#pragma once
#include "session/cmd_line.h"

namespace velmora {

// velmora --script FILE.vbs [ARGS]: the start-up without a window (ARGS may open layers),
// then the script run with QMTVBS global. The log goes to standard error, so that what
// MsgBox prints is alone on standard output. 0, or 1 after a script error.
int RunScriptMode(int argc, char** argv, const CmdLineOpts& o);

} // namespace velmora
