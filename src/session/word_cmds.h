#pragma once
#include <string>

#include "model/session.h"

namespace velmora {

// Commands named by their first one or two words, each with its own runner. Every area
// of the program (table, selection, scripts, networks, surfaces) keeps its commands in a
// file of its own and adds one row to the table in word_cmds.cpp.

struct WordCmd {
  const char* W0;
  const char* W1; // nullptr: the first word alone names the command
  // Runs the line in s.ArgStr; returns the layer it acted on (for the EXIT tail), 0 for none.
  int (*Run)(Session& s);
};

// Runs the line in s.ArgStr if a row of the table names it; `lyr` gets the runner's layer.
bool RunWordCmd(Session& s, int& lyr);

// Helpers for the runners.
// The path token `i` (double quotes removed; a .dbf or .shx names its layer) and the layer
// that has it, 0 when none; with `open` a shape file not in the session is opened first.
int WordCmdLyr(Session& s, size_t i, bool open);
// Token `i` in upper case, "" past the end.
std::string WordCmdWord(const Session& s, size_t i);
// Token `i` as a number read locale-independently; false when missing or not a number.
bool WordCmdNum(const Session& s, size_t i, double& v);
bool WordCmdInt(const Session& s, size_t i, int& v);

} // namespace velmora
