#pragma once
#include <string>
#include <vector>

#include "model/session.h"

namespace velmora {

// Joins program arguments into one command line that ArgStrSplit cuts back into the same
// tokens: an argument holding a blank goes in double quotes, its quotes doubled. Others go
// as they are, so quotes in them act as on any command line.
std::string JoinArgs(const std::vector<std::string>& args);

// The start of a session: the log's banner, the random generator seeded from the clock,
// LastDir at the program's folder, MapInit, then the command line through ArgStrSplit,
// ArgStrExecute and OpenAnyFile(ArgStr(0)). Returns whether the program should end: the
// command line's last token is "EXIT", or so is that of the last line a .lst ran.
bool StartSession(Session& s, const std::vector<std::string>& args);

// The banner line of the log.
std::string Banner();

} // namespace velmora
