#pragma once
#include <string>
#include <vector>

#include "model/session.h"

namespace velmora {

// What the layer list does to the layer table. Rows are user layer numbers, 1 on top.

// Move Up walks the selected rows from the top, Move Down from the bottom; a selection
// that touches the end does nothing; a busy layer is skipped. Returns the rows that
// hold the selected layers afterwards.
std::vector<int> MoveLyrsUp(Session& s, std::vector<int> rows);
std::vector<int> MoveLyrsDown(Session& s, std::vector<int> rows);
// Dragging the selection in the list to `target`.
std::vector<int> MoveLyrsTo(Session& s, std::vector<int> rows, int target);
// The check box: false when the layer is busy and the box must go back.
bool SetLyrVisible(Session& s, int n, bool visible);
// Show All and Hide All: one selected row acts on all layers, several on those only.
void ShowLyrs(Session& s, const std::vector<int>& selected, bool visible);
// The label edit: false (with the refusal logged) while a tool dialog is open.
bool RenameLyr(Session& s, int n, const std::string& newName);
// The list's selection changed.
void SetActiveLyr(Session& s, int n);

} // namespace velmora
