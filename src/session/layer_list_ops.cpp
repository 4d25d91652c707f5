#include "session/layer_list_ops.h"

#include <algorithm>

#include "frame/busy.h"
#include "frame/log.h"
#include "frame/lyr_slots.h"

namespace velmora {

namespace {

bool ReorderBlocked(Session& s) {
  return DialogsBlock(s, "changing layers arrangement");
}

// Moves each row toward `step` (-1 up, +1 down) once, in the given order, skipping busy ones.
std::vector<int> StepRows(Session& s, std::vector<int> rows, int step) {
  for (int& r : rows) {
    int to = r + step;
    if (to < 1 || to > s.LyrCount || LyrIsBusy(s, r) || LyrIsBusy(s, to)) continue;
    // A neighbour that is selected too has moved already or will follow.
    SwapLyr(s, r, to);
    for (int& other : rows)
      if (&other != &r && other == to) other = r;
    r = to;
    s.host->LayerItemChanged(r);
    s.host->LayerItemChanged(r - step);
  }
  return rows;
}

} // namespace

std::vector<int> MoveLyrsUp(Session& s, std::vector<int> rows) {
  if (rows.empty() || ReorderBlocked(s)) return rows;
  std::sort(rows.begin(), rows.end());
  if (rows.front() <= 1) return rows;
  rows = StepRows(s, rows, -1);
  s.host->MapRedraw();
  return rows;
}

std::vector<int> MoveLyrsDown(Session& s, std::vector<int> rows) {
  if (rows.empty() || ReorderBlocked(s)) return rows;
  std::sort(rows.rbegin(), rows.rend());
  if (rows.front() >= s.LyrCount) return rows;
  rows = StepRows(s, rows, 1);
  s.host->MapRedraw();
  return rows;
}

std::vector<int> MoveLyrsTo(Session& s, std::vector<int> rows, int target) {
  if (rows.empty() || ReorderBlocked(s)) return rows;
  target = std::clamp(target, 1, std::max(1, s.LyrCount));
  std::sort(rows.begin(), rows.end());
  if (target < rows.front()) {
    // Upwards, from the top: the k-th selected row lands at target + k.
    int k = 0;
    for (int& r : rows) {
      int to = target + k;
      if (!LyrIsBusy(s, r) && to < r) {
        SwapLyr(s, r, to);
        r = to;
      }
      ++k;
    }
  } else {
    // Downwards, from the bottom: the k-th selected row from the end lands at target - k.
    int k = 0;
    for (auto it = rows.rbegin(); it != rows.rend(); ++it, ++k) {
      int to = std::min(target - k, s.LyrCount);
      if (!LyrIsBusy(s, *it) && to > *it) {
        SwapLyr(s, *it, to);
        *it = to;
      }
    }
  }
  s.host->LayerListChanged();
  s.host->MapRedraw();
  return rows;
}

bool SetLyrVisible(Session& s, int n, bool visible) {
  if (n < 1 || n > s.LyrCount || LyrIsBusy(s, n)) return false;
  s.Lyr[n].DVisable = visible ? 1 : 0;
  s.ProjChanged = -1;
  s.host->MapRedraw();
  return true;
}

void ShowLyrs(Session& s, const std::vector<int>& selected, bool visible) {
  std::vector<int> rows = selected;
  if (rows.size() <= 1) {
    rows.clear();
    for (int i = 1; i <= s.LyrCount; ++i) rows.push_back(i);
  }
  for (int n : rows) {
    if (n < 1 || n > s.LyrCount || LyrIsBusy(s, n)) continue;
    s.Lyr[n].DVisable = visible ? 1 : 0;
    s.host->LayerItemChanged(n);
  }
  s.ProjChanged = -1;
  s.host->MapRedraw();
}

bool RenameLyr(Session& s, int n, const std::string& newName) {
  if (n < 1 || n > s.LyrCount) return false;
  std::string list = OpenToolDialogs(s);
  if (!list.empty()) {
    LogMsg(s, " *** Please close " + list + "menu(s) before Renaming Layer Name *** ");
    return false;
  }
  std::string old = s.Lyr[n].LyrName;
  s.Lyr[n].LyrName = newName;
  LogMsg(s, old + "  to  " + newName);
  s.ProjChanged = -1;
  s.host->LayerItemChanged(n);
  return true;
}

void SetActiveLyr(Session& s, int n) {
  s.ActiveLyr = (n >= 1 && n <= s.LyrCount) ? n : 0;
}

} // namespace velmora
