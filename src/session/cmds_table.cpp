#include "session/cmds_table.h"

#include "edit/journal.h"
#include "edit/journal_lines.h"
#include "frame/log.h"
#include "model/file_util.h"
#include "session/word_cmds.h"
#include "store/dbf_internal.h"
#include "store/dbf_store.h"
#include "table/field_struct.h"
#include "table/row_sort.h"
#include "table/table_page.h"
#include "table/table_ranges.h"
#include "table/table_refresh.h"

namespace velmora {

namespace {

std::string Tok(const Session& s, size_t i) {
  if (i >= s.ArgStr.size()) return "";
  std::string t;
  for (char c : s.ArgStr[i])
    if (c != '"') t += c;
  return t;
}

int Refuse(Session& s, const std::string& op, int lyr) {
  const std::string what = lyr >= 1 ? s.Lyr[lyr].LyrName : Tok(s, 2);
  LogMsg(s, " *** " + op + " " + what + " has been canceled *** ");
  return lyr;
}

// A number token in the session's own notation, for the cell parsers; other text as it is.
std::string CellText(const Session& s, size_t i) {
  double v;
  if (WordCmdNum(s, i, v)) return dbf::DblToText(v, s.Locale.DecimalSep);
  return Tok(s, i);
}

// The page of a command: one field over records first .. last, all records shown.
bool RangePage(Session& s, int lyr, TblPage& p) {
  int first = 0, last = 0;
  const int f = FindField(s, lyr, Tok(s, 3));
  if (f < 1 || !WordCmdInt(s, 4, first) || !WordCmdInt(s, 5, last) || first < 1 || last < first ||
      last > s.Lyr[lyr].Dbf.DbfRecCount)
    return false;
  p.TblLayer = lyr;
  p.TblRange = {first, f, last, f};
  p.TblRows = 1;
  FlushTableOf(s, lyr);
  return true;
}

int Convert(Session& s, bool toAscii) {
  const int lyr = WordCmdLyr(s, 2, true);
  TblPage p;
  if (lyr < 1 || !s.Lyr[lyr].Dbf.DbfExists || !RangePage(s, lyr, p))
    return Refuse(s, "Convert UTF Cells to layer", lyr);
  ConvertCells(s, p, toAscii);
  return lyr;
}

} // namespace

int RunFillSeriesCmd(Session& s) {
  const int lyr = WordCmdLyr(s, 2, true);
  TblPage p;
  if (lyr < 1 || !s.Lyr[lyr].Dbf.DbfExists || s.ArgStr.size() < 8 || !RangePage(s, lyr, p))
    return Refuse(s, "Fill Series to layer", lyr);
  FillSeries(s, p, CellText(s, 6), CellText(s, 7), s.ArgStr.size() > 8 ? CellText(s, 8) : "");
  return lyr;
}

int RunAddRecordsCmd(Session& s) {
  const int lyr = WordCmdLyr(s, 2, true);
  int count = 0;
  if (lyr < 1 || !WordCmdInt(s, 3, count) || count < 1)
    return Refuse(s, "Append Records to layer", lyr);
  AddRecords(s, lyr, count);
  return lyr;
}

int RunDeleteFieldCmd(Session& s) {
  const int lyr = WordCmdLyr(s, 2, true);
  if (lyr < 1 || s.ArgStr.size() < 4) return Refuse(s, "Delete Field", lyr);
  DeleteFieldOfLyr(s, lyr, Tok(s, 3));
  return lyr;
}

int RunRenameFieldCmd(Session& s) {
  const int lyr = WordCmdLyr(s, 2, true);
  if (lyr < 1 || s.ArgStr.size() < 5) return Refuse(s, "Rename Field", lyr);
  RenameFieldOfLyr(s, lyr, Tok(s, 3), Tok(s, 4));
  return lyr;
}

int RunChangeFieldCmd(Session& s) {
  const int lyr = WordCmdLyr(s, 2, true);
  int width = 0, decimals = 0;
  const std::string type = WordCmdWord(s, 4);
  if (lyr < 1 || type.empty() || !WordCmdInt(s, 5, width) || !WordCmdInt(s, 6, decimals))
    return Refuse(s, "Change Field", lyr);
  ChangeFieldOfLyr(s, lyr, Tok(s, 3), type[0], width, decimals);
  return lyr;
}

int RunSortRowsCmd(Session& s) {
  const int lyr = WordCmdLyr(s, 2, true);
  const std::string dir = WordCmdWord(s, 4);
  const int f = lyr >= 1 ? FindField(s, lyr, Tok(s, 3)) : -1;
  if (lyr < 1 || f < 1 || (dir != "ASCENDING" && dir != "DESCENDING"))
    return Refuse(s, "Sort Rows", lyr);
  SortRows(s, lyr, f, dir == "DESCENDING", nullptr);
  return lyr;
}

int RunUnsortRowsCmd(Session& s) {
  const int lyr = WordCmdLyr(s, 2, false);
  int id = -1;
  if (lyr < 1 || !WordCmdInt(s, 3, id) || id < 0 || size_t(id) >= s.Tbl.SortOrders.size())
    return Refuse(s, "Sort Rows", lyr);
  ReorderRows(s, lyr, s.Tbl.SortOrders[size_t(id)], true);
  return lyr;
}

int RunConvertUtf8Cmd(Session& s) {
  return Convert(s, true);
}

int RunConvertAsciiCmd(Session& s) {
  return Convert(s, false);
}

bool SortRowsJournalled(Session& s, int lyr, int field, bool descending) {
  std::vector<int32_t> before;
  if (!SortRows(s, lyr, field, descending, &before)) return false;
  // The order is kept in the session; the undo line names it by its index.
  const std::string path = QuotedPath(s.Lyr[lyr].Fsource);
  s.Tbl.SortOrders.push_back(std::move(before));
  const std::string id = std::to_string(s.Tbl.SortOrders.size() - 1);
  UndoAdd(s,
          "SORT ROWS " + path + " " + GetFieldName(s, lyr, field) +
              (descending ? " DESCENDING" : " ASCENDING"),
          "UNSORT ROWS " + path + " " + id);
  return true;
}

bool AddFieldJournalled(Session& s, int lyr, const std::string& name, char type, int width,
                        int decimals) {
  if (!AddFieldToLyr(s, lyr, name, type, width, decimals)) return false;
  const std::string path = QuotedPath(s.Lyr[lyr].Fsource);
  UndoAdd(s,
          "ADD FIELD " + path + " " + Trim(name) + " " + std::string(1, type) + " " +
              std::to_string(width) + " " + std::to_string(decimals),
          "DELETE FIELD " + path + " " + Trim(name));
  return true;
}

bool RenameFieldJournalled(Session& s, int lyr, const std::string& name,
                           const std::string& newName) {
  if (!RenameFieldOfLyr(s, lyr, name, newName)) return false;
  const std::string path = QuotedPath(s.Lyr[lyr].Fsource);
  UndoAdd(s, "RENAME FIELD " + path + " " + Trim(name) + " " + Trim(newName),
          "RENAME FIELD " + path + " " + Trim(newName) + " " + Trim(name));
  return true;
}

} // namespace velmora
