#include <algorithm>
#include <exception>
#include <stdexcept>

#include "edit/divide_cmds.h"
#include "edit/move_cmds.h"
#include "frame/log.h"
#include "frame/lyr_slots.h"
#include "frame/refusal_log.h"
#include "session/cmd_parse.h"
#include "session/commands.h"
#include "session/layer_life.h"
#include "session/project.h"
#include "session/undo_restore.h"
#include "session/word_cmds.h"
#include "store/dbf_store.h"
#include "store/shp_store.h"
#include "table/field_struct.h"

namespace velmora {

namespace {

// Range checks on what a line names, so that a hand-written .lst cannot reach outside a
// record; the journal's own lines always pass them.
const ShpRecord* Rec(const Session& s, int lyr, int rec) {
  const auto& recs = s.Lyr[lyr].Shp.ShpRecs;
  if (rec < 1 || size_t(rec) >= recs.size() || rec > s.Lyr[lyr].Shp.RecCount) return nullptr;
  return &recs[size_t(rec)];
}

bool PartOk(const Session& s, int lyr, int rec, int part) {
  const ShpRecord* r = Rec(s, lyr, rec);
  return r && part >= 0 && part < r->NumParts;
}

// `inclusiveEnd`: the vertex may also be one past the last (an insert at the end).
bool VertexOk(const Session& s, int lyr, int rec, int part, int v, bool inclusiveEnd) {
  if (!PartOk(s, lyr, rec, part) || v < 0) return false;
  const ShpPart& p = s.Lyr[lyr].Shp.ShpRecs[size_t(rec)].Part(part);
  size_t n = p.Size();
  return inclusiveEnd ? size_t(v) <= n : size_t(v) < n;
}

bool IsMovement(CmdOp op) {
  return op == CmdOp::MoveLen || op == CmdOp::MoveTo || op == CmdOp::Rotate || op == CmdOp::Scale;
}

// Finds the layer by path, adding it to the session when it is not there yet.
int OpenIfNeeded(Session& s, const CmdCall& c) {
  if (c.Lyr) return c.Lyr;
  AddShape(s, c.Path, false);
  int n = FindLyrByFile(s, c.Path);
  return n > 0 ? n : 0;
}

void StorePairs(Session& s, int n, const std::vector<CmdPair>& pairs) {
  // A name that is no field gives the lookup's "none", which the store ignores.
  for (const CmdPair& p : pairs) SetFieldValue(s, n, FindField(s, n, p.Field), p.Value);
}

// Puts the row of the buffer into the swap file. A row that does not get there is a
// run-time failure of the line: the store has said why, and nothing after it runs.
void StoreRow(Session& s, int n, int row) {
  s.DbfErr = 0;
  WriteDbfRecSwap(s, n, row);
  if (s.DbfErr) throw std::runtime_error("swap write");
}

void RecalcStaleExtents(Session& s) {
  for (int i = 1; i <= s.LyrCount; ++i) {
    if (!s.Lyr[i].Shp.ExtentStale) continue;
    RecalcExtent(s, i);
    s.Lyr[i].Shp.ExtentStale = 0;
  }
}

// A layer whose save failed is not dropped: its changes are the only copy.
bool KeepUnsaved(Session& s, int n) {
  if (!LyrChanged(s, n) || s.Lyr[n].SaveErr.empty()) return false;
  LogCanceled(s, "Remove Layer " + s.Lyr[n].LyrName, "its changes have not been saved");
  return true;
}

void SaveAndRemove(Session& s, int n) {
  if (n < 1 || n > s.LyrCount) return;
  SaveLyrAll(s, n);
  if (!KeepUnsaved(s, n)) RemoveLyr(s, n, true);
}

} // namespace

int ExecCmd(Session& s, const CmdCall& c) {
  const int n = c.Lyr;
  auto I = [&](size_t i) { return c.I[i]; };
  auto X = [&](size_t i) { return c.X[i]; };
  switch (c.Op) {
  case CmdOp::None:
  case CmdOp::NoOp:
  case CmdOp::NumberError: // the interpreter stops before it
    return n;
  case CmdOp::MakeLayer: {
    int type = ShapeTypeOfKind(c.Text);
    if (type == 0) {
      LogMsg(s, " *** Make New Layer " + c.Path + " has been canceled *** ");
      LogMsg(s, "The kind is one of " + KindWordList());
    } else {
      MakeNewLyr(s, c.Path, type, c.Text, false);
    }
    return n; // a layer of this path, which the EXIT tail saves and removes
  }
  case CmdOp::OpenProject:
    if (!ProjectOpenRefused(s) && ConfirmCloseProject(s)) LoadProject(s, c.Path);
    return 0;
  case CmdOp::OpenLayer:
    return OpenIfNeeded(s, c);
  case CmdOp::AddField: {
    int m = OpenIfNeeded(s, c);
    if (m) AddFieldToLyr(s, m, c.Text, char(I(0)), I(1), I(2));
    return m;
  }
  case CmdOp::AddFeature: {
    int before = s.Lyr[n].Shp.RecCount;
    AddRec(s, n);
    int rec = s.Lyr[n].Shp.RecCount;
    if (rec != before + 1) return n;
    AddDbfRec(s, n, rec - 1);
    if (s.DbfErr) throw std::runtime_error("swap write");
    if (PartOk(s, n, rec, I(0))) AddVertexRefresh(s, n, rec, I(0), X(0), X(1), 0, 0);
    StorePairs(s, n, c.Pairs);
    StoreRow(s, n, rec - 1);
    return n;
  }
  case CmdOp::AddVertex:
    if (PartOk(s, n, I(0), I(1))) AddVertexRefresh(s, n, I(0), I(1), X(0), X(1), 0, 0);
    return n;
  case CmdOp::LoadRedoUndo:
    UndoLoadRec(s, n, I(0));
    return n;
  case CmdOp::CombineFeature:
    if (I(4) >= 1 && I(4) <= s.LyrCount && Rec(s, I(4), I(5)))
      CombineFeatureCmd(s, n, I(0), I(1), I(2), I(3), I(4), I(5), I(6), I(7), I(8));
    return n;
  case CmdOp::UncombineFeature:
    UncombineFeatureCmd(s, n, I(0), I(1));
    return n;
  case CmdOp::DivideFeature:
    DivideFeatureCmd(s, n, I(0), I(1), I(2), I(3), I(4));
    return n;
  case CmdOp::UndivideFeature:
    UndivideFeatureCmd(s, n, I(0), I(1));
    return n;
  case CmdOp::InvertPart:
    if (PartOk(s, n, I(0), I(1))) ReversePart(s, n, I(0), I(1));
    return n;
  case CmdOp::SendPartFront: // towards the last part, drawn on top
    if (PartOk(s, n, I(0), I(1))) MovePartDown(s, n, I(0), I(1));
    return n;
  case CmdOp::SendPartBack:
    if (PartOk(s, n, I(0), I(1))) MovePartUp(s, n, I(0), I(1));
    return n;
  case CmdOp::DeleteFeature:
    DeleteRec(s, n, I(0), true);
    return n;
  case CmdOp::DeletePart:
    if (PartOk(s, n, I(0), I(1))) DeletePart(s, n, I(0), I(1), true);
    return n;
  case CmdOp::DeleteVertex:
    if (VertexOk(s, n, I(0), I(1), I(2), false)) {
      DeleteVertices(s, n, I(0), I(1), I(2), 1);
      RecalcExtent(s, n);
    }
    return n;
  case CmdOp::UndeleteFeature:
    UndeleteRec(s, n, I(0), true);
    return n;
  case CmdOp::UndeletePart:
    if (PartOk(s, n, I(0), I(1))) UndeletePart(s, n, I(0), I(1), true);
    return n;
  case CmdOp::InsertVertex:
    if (VertexOk(s, n, I(0), I(1), I(2), true))
      InsertVertexRefresh(s, n, I(0), I(1), I(2), X(0), X(1), 0, 0);
    return n;
  case CmdOp::MoveLen:
    MoveLenVertexCmd(s, n, I(0), I(1), X(0), X(1), X(2), X(3), I(2), I(3));
    return n;
  case CmdOp::MoveTo:
    MoveToVertexCmd(s, n, I(0), I(1), I(2), X(0), X(1), I(3), I(4));
    return n;
  case CmdOp::Rotate:
    RotateVertexCmd(s, n, I(0), I(1), I(2), X(0), X(1), X(2), I(3), I(4));
    return n;
  case CmdOp::Scale:
    ScaleVertexCmd(s, n, I(0), I(1), I(2), X(0), X(1), X(2), X(3), I(3), I(4));
    return n;
  case CmdOp::SaveLayer:
    SaveLyrAll(s, n);
    return n;
  case CmdOp::SaveLayerAs:
    SaveLyrAs(s, n, c.Text);
    return n;
  case CmdOp::RemoveLayer:
    if (n >= 1 && n <= s.LyrCount && !KeepUnsaved(s, n)) RemoveLyr(s, n, true);
    return n;
  case CmdOp::SetData: {
    int m = OpenIfNeeded(s, c);
    if (!m) return 0;
    const int row = std::max(I(0), 0) - 1; // rows count from 0 in the table
    ReadDbfRec(s, m, row);
    StorePairs(s, m, c.Pairs);
    StoreRow(s, m, row);
    // A final EXIT saves and removes the layer here, and the tail of the line then does
    // the same once more with the same number.
    if (ArgStrEndsInExit(s)) SaveAndRemove(s, m);
    return m;
  }
  }
  return n;
}

void ArgStrExecute(Session& s) {
  if (s.ArgStr.size() < 2) return;
  try {
    int n = 0;
    if (RunWordCmd(s, n)) {
      if (ArgStrEndsInExit(s)) SaveAndRemove(s, n);
      return;
    }
    bool moved = false;
    for (const CmdCall& c : ParseArgStr(s)) {
      if (c.Op == CmdOp::NumberError) {
        // The run-time error leaves the line: what ran before it stays, no EXIT tail.
        if (moved) RecalcStaleExtents(s);
        LogMsg(s, " *** Error in ArgStrExecute ***");
        return;
      }
      n = ExecCmd(s, c);
      moved = moved || IsMovement(c.Op);
    }
    if (moved) RecalcStaleExtents(s);
    if (ArgStrEndsInExit(s)) SaveAndRemove(s, n);
  } catch (const std::exception&) {
    LogMsg(s, " *** Error in ArgStrExecute ***");
  }
}

} // namespace velmora
