#pragma once
#include <string>

#include "model/session.h"
#include "vbs/interp.h"

namespace velmora {

// Runs the layer's script over its records: each row's fields are script variables, and
// what the script leaves in them goes back to the row. The script is parsed once and run
// once per record with that record's values bound, which gives what composing
// "Dim <field>" / "<field> = <literal>" in front of the script for every record gives.
// Records firstRec .. lastRec (0 for the first; past the end for the last), only the
// selected ones with `selectedOnly`. False when it didn't run (refused, a script error).
bool RunScript(Session& s, int lyr, int firstRec, int lastRec, bool selectedOnly);

// The script a run uses: the layer's text, or its file's (fetched into VBScriptDownload
// when the file is an http:// address), trimmed, with "\r\n" at its end; "" for none.
std::string LoadLyrScript(Session& s, int lyr);

// The literal a record's block gives field `f` of the buffer: a number with full precision,
// a date's serial number, or the right-trimmed text in double quotes.
std::string ScriptLiteral(const Session& s, int lyr, int f);
// The text a script variable's value is written back to field `f` as.
std::string ScriptCellText(const Session& s, int lyr, int f, const vbs::Value& v,
                           const vbs::Conv& c);
// A field name that can't stand after "Dim" (a keyword, or not a name).
bool BadScriptName(const std::string& name);

// A script file's text run headless in the session, QMTVBS global with the active layer
// current: 0, or 1 after a syntax or run-time error described in `err`.
int RunScriptText(Session& s, const std::string& text, std::string& err);

// The text of an engine error: "<source> <number>: <description> (line <n>)".
std::string ScriptErrorText(const vbs::Error& e);

// Queues a RunScript for the script timer (VbScribtTimerM), and runs what is queued.
void QueueScriptRun(Session& s, int lyr, int firstRec, int lastRec, bool selectedOnly);
void RunQueuedScripts(Session& s);

} // namespace velmora
