#pragma once
#include <vector>

namespace velmora {

struct Session;

// A RunScript waiting for the script timer, so that a menu handler doesn't run a script
// inside itself.
struct ScriptRun {
  int Lyr = 0;
  int FirstRec = 0; // 0: from the first record
  int LastRec = 0;  // 0 or past the end: to the last
  bool SelectedOnly = false;
};

// The script host's state in the session.
struct ScriptVars {
  std::vector<ScriptRun> Queue;
  // The spatial test of two features (relation 1 intersects, 3 inside), set by the
  // selection subsystem; null until it is there.
  bool (*SpatialTest)(Session& s, int lyr, int rec, int lyr2, int rec2, int relation) = nullptr;
  // Flushes the open table's page of a layer before a run changes its rows; set by the window.
  void (*FlushPage)(Session& s, int lyr) = nullptr;
};

} // namespace velmora
