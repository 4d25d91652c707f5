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
//   for (...) { work on rf.Layer(); if (rf.Step(i, max)) break; }
//   if (!rf.Gone()) { ... rf.Layer() ... }
//   rf.Finish();                           // logs "<Operation> <name>"
//
// On leaving scope, also on an early return, the layer is unlocked and the progress
// cleared. Other layers may be removed or reordered while the function yields, so its
// row can change its number: Step follows the row (by its lock and its file), and the
// function takes rf.Layer() anew after every Step and holds no reference into Lyr across
// one. A row that can't be found any more stops the function as a closed layer.
class RunningFunction {
public:
  RunningFunction(Session& s, int n, std::string operation, std::string caption = "");
  ~RunningFunction();
  RunningFunction(const RunningFunction&) = delete;
  RunningFunction& operator=(const RunningFunction&) = delete;

  bool Started() const { return started_; }
  // The row's number as of the last Step.
  int Layer() const { return n_; }
  // The row is no longer in the table: nothing of it may be read.
  bool Gone() const { return gone_; }
  // Progress, one turn of the event loop, the row found again, then the terminate test.
  // True: stop now.
  bool Step(long long value, long long max);
  // Ends the function: unlock, clear progress, log "<Operation> <name>" unless terminated.
  void Finish(bool logSuccess = true);
  bool Terminated() const { return terminated_; }

private:
  bool Ours(int i) const;
  void Follow();

  Session& s_;
  int n_;
  std::string op_;
  std::string source_; // the row's file, to know it again after a move
  bool gone_ = false;
  bool started_ = false;
  bool finished_ = false;
  bool terminated_ = false;
};

} // namespace velmora
