#include "frame/busy.h"

#include <array>

#include "frame/log.h"

namespace velmora {

namespace {

constexpr std::array<const char*, 28> kDialogs = {
    "Add records",
    "Calculate Area and Voulme",
    "Building Shortest Path NetWork",
    "Combine Parts",
    "Contour Surface Analysis",
    "Convert and Grouping Shape Type",
    "Convert Layer Coordinates System",
    "Convert Shape to AutoCad Dxf",
    "Convert Shape to Google KML",
    "Convert Shape to Google Map Api",
    "Edit Feature Data",
    "Divide Polylines On",
    "Divide Polygons On",
    "Identify Feature",
    "Find and Data Transfer by Location",
    "Layer Prorperties",
    "Move Feature",
    "Nested Find by Data",
    "Shortest Path NetWork",
    "Print Setup",
    "Find by Data",
    "Rotate-Scale",
    "Save Image",
    "Fill Series",
    "Snap Vertexes To",
    "Convert 2D to 3D Surface Analysis",
    "Build Tin Surface",
    "Data Table",
};

// Forms that show a layer's name and are told of a rename.
bool ShowsLayerName(const std::string& name) {
  static constexpr std::array<const char*, 8> kNamed = {
      "Edit Feature Data", "Identify Feature", "Layer Prorperties", "Move Feature",
      "Print Setup",       "Rotate-Scale",     "Save Image",        "Data Table"};
  for (const char* n : kNamed)
    if (name == n) return true;
  return false;
}

std::string DialogList(Session& s, bool toolsOnly) {
  std::string out;
  for (const char* name : kDialogs) {
    if (toolsOnly && ShowsLayerName(name)) continue;
    if (s.host->IsDialogOpen(name)) out += std::string("\"") + name + "\", ";
  }
  return out;
}

bool InTable(const Session& s, int n) {
  return n >= -kWorkSlots && n <= s.LyrCount;
}

} // namespace

void LyrLock(Session& s, int n, bool on, const std::string& funcName) {
  if (n > s.LyrCount || n < -kWorkSlots) return;
  s.Lyr[n].BusyFunc = funcName;
  s.Lyr[n].LyrBusy = on ? -1 : 0;
  if (s.MapView.MapTarget == 1) s.host->BlockTable(n, on);
}

bool LyrIsBusy(const Session& s, int n) {
  return InTable(s, n) && s.Lyr[n].LyrBusy != 0;
}

bool LyrIsBusyMsg(Session& s, int n) {
  if (!LyrIsBusy(s, n)) return false;
  LogMsg(s, " *** Sorry Layer " + s.Lyr[n].LyrName + " is busy with " + s.Lyr[n].BusyFunc +
                " function, Please terminate it first, or Please wait *** ");
  return true;
}

bool AnyLyrBusyMsg(Session& s) {
  for (int i = 1; i <= s.LyrCount; ++i)
    if (LyrIsBusyMsg(s, i)) return true;
  return false;
}

bool AnyLyrBusy(const Session& s) {
  for (int i = -kWorkSlots; i <= s.LyrCount; ++i)
    if (s.Lyr[i].LyrBusy) return true;
  return false;
}

void SetLyrTerminate(Session& s, int n, bool on) {
  if (!InTable(s, n)) return;
  s.Lyr[n].LyrTerminate = on ? -1 : 0;
}

bool LyrTerminated(Session& s, int n) {
  if (n > s.LyrCount) {
    LogMsg(s, " *** A Function has been terminated in the closed Layer *** ");
    return true;
  }
  if (n < -kWorkSlots) return true;
  if (s.Lyr[n].LyrTerminate) {
    LogMsg(s, " *** Function " + s.Lyr[n].BusyFunc + " in Layer " + s.Lyr[n].LyrName +
                  " has been terminated *** ");
    return true;
  }
  return false;
}

bool LyrMustStop(const Session& s, int n) {
  if (n > s.LyrCount || n < -kWorkSlots) return true;
  return s.Lyr[n].LyrTerminate != 0;
}

bool AnyLyrMustStop(const Session& s) {
  for (int i = 1; i <= s.LyrCount; ++i)
    if (s.Lyr[i].LyrTerminate) return true;
  return false;
}

void UnlockAllLyrs(Session& s) {
  for (int i = 1; i <= s.LyrCount; ++i) {
    LyrLock(s, i, false, "");
    s.host->Yield();
  }
}

void TerminateAllLyrs(Session& s) {
  for (int i = -kWorkSlots; i <= s.LyrCount; ++i) {
    SetLyrTerminate(s, i, true);
    s.host->Yield();
  }
}

void TerminateAllRunning(Session& s) {
  if (!AnyLyrBusy(s)) return;
  if (s.host->MsgBox(" Would you like to Terminate All Running Functions ?   ",
                     "Terminate Message Box ", MsgButtons::YesNo, MsgAnswer::No) != MsgAnswer::Yes)
    return;
  for (int i = 1; i <= s.LyrCount; ++i) {
    if (s.Lyr[i].LyrBusy) SetLyrTerminate(s, i, true);
    s.host->Yield();
  }
}

void WaitCursor(Session& s) {
  if (s.MapView.MapTarget == 1) s.host->WaitCursor(true);
}

void NormalCursor(Session& s) {
  if (s.MapView.MapTarget == 1) s.host->WaitCursor(false);
}

std::string OpenDialogs(Session& s) {
  return DialogList(s, false);
}
std::string OpenToolDialogs(Session& s) {
  return DialogList(s, true);
}

bool DialogsBlock(Session& s, const std::string& what) {
  std::string list = OpenDialogs(s);
  if (list.empty()) return false;
  s.host->MsgBox("Please close " + list + "menu(s) before " + what, "Close menu(s) Message Box",
                 MsgButtons::OkOnly, MsgAnswer::Ok);
  return true;
}

RunningFunction::RunningFunction(Session& s, int n, std::string operation, std::string caption)
    : s_(s), n_(n), op_(std::move(operation)) {
  if (LyrIsBusyMsg(s_, n_)) {
    LogMsg(s_, " *** " + op_ + " " + s_.Lyr[n_].LyrName + " has been canceled *** ");
    finished_ = true;
    return;
  }
  SetLyrTerminate(s_, n_, false);
  LyrLock(s_, n_, true, op_);
  s_.host->FuncText(caption.empty() ? op_ : caption);
  started_ = true;
}

RunningFunction::~RunningFunction() {
  if (!finished_) Finish(false);
}

bool RunningFunction::Step(long long value, long long max) {
  s_.host->Progress(value, max);
  s_.host->Yield();
  if (LyrTerminated(s_, n_)) terminated_ = true;
  return terminated_;
}

void RunningFunction::Finish(bool logSuccess) {
  if (finished_) return;
  finished_ = true;
  bool closed = n_ > s_.LyrCount;
  if (!closed) LyrLock(s_, n_, false, "");
  s_.host->Progress(0, 0);
  s_.host->FuncText("");
  if (logSuccess && !terminated_ && !closed) LogMsg(s_, op_ + " " + s_.Lyr[n_].LyrName);
}

} // namespace velmora
