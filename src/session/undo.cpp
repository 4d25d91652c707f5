#include "session/undo.h"

#include "edit/draw_ops.h"
#include "session/commands.h"

namespace velmora {

namespace {

void RunLine(Session& s, const std::string& line) {
  ArgStrSplit(s, line);
  ArgStrExecute(s);
  for (int i = 1; i <= s.LyrCount; ++i) s.host->TableDataChanged(i);
  s.host->MapRedraw();
}

} // namespace

void UndoRun(Session& s) {
  // A feature being drawn is finished first, so that its lines are all in the journal.
  if (s.Edit.Drawing) FinishDrawing(s);
  if (s.MapView.MapTarget == 1 && s.UndoPos > 0 && size_t(s.UndoPos) < s.UndoList.size()) {
    const std::string line = s.UndoList[size_t(s.UndoPos)].UndoLine; // the list may change
    RunLine(s, line);
    s.UndoPos -= 1;
  }
  if (s.UndoPos <= 0) s.UndoOn = false;
  if (s.UndoPos < s.UndoCount - 1) s.RedoOn = true;
}

void RedoRun(Session& s) {
  if (s.UndoPos < s.UndoCount - 1 && size_t(s.UndoPos) + 1 < s.UndoList.size()) {
    s.UndoPos += 1;
    const std::string line = s.UndoList[size_t(s.UndoPos)].RedoLine;
    RunLine(s, line);
  }
  if (s.UndoPos >= 1) s.UndoOn = true;
  if (s.UndoPos >= s.UndoCount - 1) s.RedoOn = false;
}

} // namespace velmora
