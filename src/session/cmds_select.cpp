#include "session/cmds_select.h"

#include "frame/log.h"
#include "query/bulk_ops.h"
#include "query/find_query.h"
#include "query/selection.h"
#include "session/remove_deleted.h"
#include "session/word_cmds.h"
#include "store/dbf_store.h"

namespace velmora {

namespace {

void LogSelected(Session& s, int lyr) {
  LogMsg(s, std::to_string(SelectedCount(s, lyr)) + " Features have been Selected in Layer " +
                s.Lyr[lyr].LyrName);
}

// The terms from token `i` on: <field|NONE> <relation> [<value>] [MATCHCASE], groups joined
// by AND. False when a relation is not 1 .. 7.
bool ReadTerms(Session& s, int lyr, size_t i, std::vector<QueryTerm>& terms) {
  while (i < s.ArgStr.size()) {
    QueryTerm t;
    t.QLayer = lyr;
    const std::string field = s.ArgStr[i];
    if (WordCmdWord(s, i) == "NONE") {
      t.QType = kQueryWholeRow;
    } else {
      t.QField = FindField(s, lyr, field);
      if (t.QField <= 0)
        LogMsg(s, "Field " + field + " is not in Layer " + s.Lyr[lyr].LyrName +
                      ": its term is left out");
    }
    if (!WordCmdInt(s, i + 1, t.QRelation) || t.QRelation < 1 || t.QRelation > 7) return false;
    i += 2;
    if (i < s.ArgStr.size() && WordCmdWord(s, i) != "AND") t.QValue = s.ArgStr[i++];
    if (i < s.ArgStr.size() && WordCmdWord(s, i) == "MATCHCASE") t.QMatchCase = -1, ++i;
    terms.push_back(std::move(t));
    if (i < s.ArgStr.size() && WordCmdWord(s, i) == "AND")
      ++i;
    else
      break;
  }
  return !terms.empty();
}

int Find(Session& s, bool nested) {
  const int lyr = WordCmdLyr(s, 2, true);
  int method = 0, criteria = 0;
  if (!lyr || !WordCmdInt(s, 3, method) || !WordCmdInt(s, 4, criteria) || method < 1 ||
      method > 3 || criteria < 1 || criteria > 3)
    return lyr;
  std::vector<QueryTerm> terms;
  if (!ReadTerms(s, lyr, 5, terms)) {
    LogMsg(s, " *** Find Values in Layer " + s.Lyr[lyr].LyrName + " has been canceled *** ");
    return lyr;
  }
  if (nested)
    NestedFind(s, lyr, method, criteria, terms);
  else
    FindValues(s, lyr, method, criteria, terms);
  return lyr;
}

// Two layers: token 2 the source, token 3 the destination.
template <int (*Op)(Session&, int, int)> int TwoLayers(Session& s) {
  const int src = WordCmdLyr(s, 2, true), dst = WordCmdLyr(s, 3, true);
  if (!src || !dst) return src;
  const int made = Op(s, src, dst);
  if (made >= 0)
    LogMsg(s, std::to_string(made) + " Features have been Pasted in Layer " + s.Lyr[dst].LyrName);
  return src;
}

bool Range(Session& s, int& first, int& last) {
  return WordCmdInt(s, 3, first) && WordCmdInt(s, 4, last);
}

} // namespace

int CmdFindQuery(Session& s) {
  return Find(s, false);
}

int CmdFindNested(Session& s) {
  return Find(s, true);
}

int CmdSelection(Session& s) {
  const std::string w = WordCmdWord(s, 1);
  const int lyr = WordCmdLyr(s, 2, true);
  if (!lyr || s.Lyr[lyr].LyrKind != 1) return lyr;
  int first = 0, last = 0;
  if (w == "ADD" || w == "REMOVE") {
    if (!Range(s, first, last)) return lyr;
    SelectRange(s, lyr, first, last, w == "ADD");
  } else if (w == "INVERT") {
    InvertSelection(s, lyr);
  } else if (w == "CLEAR") {
    ClearSelection(s, lyr);
  } else if (w == "ZOOM") {
    ZoomToSelected(s, lyr);
    return lyr;
  } else {
    return lyr;
  }
  LogSelected(s, lyr);
  return lyr;
}

int CmdCopySelected(Session& s) {
  return TwoLayers<CopySelected>(s);
}
int CmdCutSelected(Session& s) {
  return TwoLayers<CutSelected>(s);
}
int CmdCombineSelected(Session& s) {
  return TwoLayers<CombineSelected>(s);
}
int CmdSeparateSelected(Session& s) {
  return TwoLayers<SeparateSelected>(s);
}
int CmdCombinePartsSelected(Session& s) {
  return TwoLayers<CombinePartsSelected>(s);
}

int CmdDeleteSelected(Session& s) {
  const int lyr = WordCmdLyr(s, 2, true);
  if (!lyr) return 0;
  const int n = DeleteSelected(s, lyr);
  if (n >= 0)
    LogMsg(s, std::to_string(n) + " Features have been Deleted in Layer " + s.Lyr[lyr].LyrName);
  return lyr;
}

int CmdCloseSelected(Session& s) {
  const int lyr = WordCmdLyr(s, 2, true);
  if (lyr) CloseSelectedEdges(s, lyr);
  return lyr;
}

int CmdRemoveDeleted(Session& s) {
  const int lyr = WordCmdLyr(s, 2, true);
  if (lyr) RemoveDeleted(s, lyr);
  return lyr;
}

int CmdDeleteFeatures(Session& s) {
  const int lyr = WordCmdLyr(s, 2, true);
  int first = 0, last = 0;
  if (lyr && Range(s, first, last)) DeleteRange(s, lyr, first, last);
  return lyr;
}

int CmdUndeleteFeatures(Session& s) {
  const int lyr = WordCmdLyr(s, 2, true);
  int first = 0, last = 0;
  if (lyr && Range(s, first, last)) UndeleteRange(s, lyr, first, last);
  return lyr;
}

int CmdDeleteRecords(Session& s) {
  const int lyr = WordCmdLyr(s, 2, false);
  int first = 0, last = 0;
  if (lyr && Range(s, first, last)) DeleteRecords(s, lyr, first, last, true);
  return lyr;
}

int CmdUndeleteRecords(Session& s) {
  const int lyr = WordCmdLyr(s, 2, false);
  int first = 0, last = 0;
  if (lyr && Range(s, first, last)) DeleteRecords(s, lyr, first, last, false);
  return lyr;
}

int CmdDeleteSnapshot(Session& s) {
  const int lyr = WordCmdLyr(s, 2, false);
  if (lyr) SnapshotRecords(s, lyr, true);
  return lyr;
}

int CmdUndeleteSnapshot(Session& s) {
  const int lyr = WordCmdLyr(s, 2, false);
  if (lyr) SnapshotRecords(s, lyr, false);
  return lyr;
}

namespace {
int Cut(Session& s, bool redo) {
  const int src = WordCmdLyr(s, 2, false), dst = WordCmdLyr(s, 3, false);
  int first = 0, last = 0;
  if (src && dst && WordCmdInt(s, 4, first) && WordCmdInt(s, 5, last))
    CutSnapshot(s, src, dst, first, last, redo);
  return src;
}
} // namespace

int CmdCutSnapshot(Session& s) {
  return Cut(s, true);
}

int CmdUncutSnapshot(Session& s) {
  return Cut(s, false);
}

} // namespace velmora
