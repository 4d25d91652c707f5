#pragma once
#include <string>

#include "model/session.h"

namespace velmora {

// The busy lock and the cooperative terminate flag of each layer, and the dialog checks.
void LyrLock(Session& s, int n, bool on, const std::string& funcName);
bool LyrIsBusyMsg(Session& s, int n);
bool LyrIsBusy(const Session& s, int n);
bool AnyLyrBusyMsg(Session& s);
bool AnyLyrBusy(const Session& s);
void SetLyrTerminate(Session& s, int n, bool on);
bool LyrTerminated(Session& s, int n);
bool LyrMustStop(const Session& s, int n);
bool AnyLyrMustStop(const Session& s);
void UnlockAllLyrs(Session& s);
void TerminateAllLyrs(Session& s);
// "Terminate All Running Functions": asks, then sets terminate on every busy user layer.
void TerminateAllRunning(Session& s);
void WaitCursor(Session& s);
void NormalCursor(Session& s);

// The open forms, each in double quotes followed by ", ", in the fixed order.
std::string OpenDialogs(Session& s);
// The same without the forms that show a layer's name (they are told of a rename).
std::string OpenToolDialogs(Session& s);
// When a dialog is open: the "Close menu(s) Message Box" with "Please close <list>menu(s)
// before <what>", and true. `what` is e.g. "adding layer".
bool DialogsBlock(Session& s, const std::string& what);

// The running-function frame: the shape every long operation over records shares.
//
//   RunningFunction rf(s, n, "Validate Layer boundaries", LyrName);
//   if (!rf.Started()) return;            // busy: refusal already logged
//   for (...) { work; if (rf.Step(i, max)) break; }
//   rf.Finish();                           // logs "<Operation> <name>"
//
// On leaving scope, also on an early return, the layer is unlocked and the progress
// cleared. The function keeps its layer number for its whole run, as held numbers of
// running functions are not renumbered; a removal under it is seen by the terminate test.
class RunningFunction {
public:
  RunningFunction(Session& s, int n, std::string operation, std::string caption = "");
  ~RunningFunction();
  RunningFunction(const RunningFunction&) = delete;
  RunningFunction& operator=(const RunningFunction&) = delete;

  bool Started() const { return started_; }
  int Layer() const { return n_; }
  // Progress, one turn of the event loop, then the terminate test. True: stop now.
  bool Step(long long value, long long max);
  // Ends the function: unlock, clear progress, log "<Operation> <name>" unless terminated.
  void Finish(bool logSuccess = true);
  bool Terminated() const { return terminated_; }

private:
  Session& s_;
  int n_;
  std::string op_;
  bool started_ = false;
  bool finished_ = false;
  bool terminated_ = false;
};

} // namespace velmora
