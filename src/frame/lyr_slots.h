#pragma once
#include <functional>
#include <string>

#include "model/session.h"

namespace velmora {

// First work slot (0, -1, ... -100) whose LyrBusy, DbfOpen and ShpOpen are all clear.
int FindFreeWorkLyr(const Session& s);
// Assigns the all-zero template row.
void ClearLyr(Session& s, int n);
// Defaults of a new row, with random colours.
void SetLyrDefaults(Session& s, int n);
// First user layer whose Fsource equals `path`, case-blind; -1 if none.
int FindLyrByFile(const Session& s, const std::string& path);
// Calls `fn` on every held layer number: the tool states and ActiveLyr.
void ForEachHeldLyr(Session& s, const std::function<void(int&)>& fn);
// Moves row `from` to position `to`, closing the gap, renumbering every held number.
void SwapLyr(Session& s, int from, int to);

} // namespace velmora
