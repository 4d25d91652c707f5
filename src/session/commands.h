#pragma once
#include <string>

#include "model/session.h"

namespace velmora {

// The command language. Three sources feed it: the program's command line at start,
// .lst files, and the undo journal, whose entries are command lines.

// Cuts a line into s.ArgStr. Either quote opens or closes a quoted run (the two kinds are
// not told apart); a doubled quote stands for one quote character; runs of blanks outside
// quotes count once. An empty line gives one empty token.
void ArgStrSplit(Session& s, const std::string& line);
// Runs s.ArgStr; a line of one token is no command. Ends with the EXIT tail: when the last
// token is "EXIT" the layer the command named is saved and removed.
void ArgStrExecute(Session& s);
// Runs a file of command lines, stopping after a line whose last token is "EXIT".
void RunLstFile(Session& s, const std::string& path);
// Opens or runs a file according to its extension, then refreshes the layer list.
void OpenAnyFile(Session& s, const std::string& path);
// Is the last token of s.ArgStr "EXIT", in any case?
bool ArgStrEndsInExit(const Session& s);

} // namespace velmora
