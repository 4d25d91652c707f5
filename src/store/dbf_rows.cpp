// Rows copied and summed between layers.
#include <utility>
#include <vector>

#include "store/dbf_internal.h"
#include "store/dbf_store.h"

namespace velmora {

using namespace dbf;

namespace {

bool IsNumericLetter(char t) {
  return t == 'B' || t == 'F' || t == 'G' || t == 'I' || t == 'N' || t == 'Y';
}

void MoveRow(Session& s, int srcLyr, int srcRow, int dstLyr, int dstRow, bool byPosition,
             bool add) {
  if (!ValidLyr(s, srcLyr) || !ValidLyr(s, dstLyr)) return;
  ReadDbfRec(s, srcLyr, srcRow);
  int srcCount = s.Lyr[srcLyr].Dbf.DbfFieldCount, dstCount = s.Lyr[dstLyr].Dbf.DbfFieldCount;
  // Taken out first: source and destination may be the same buffer.
  std::vector<std::pair<int, std::string>> cells;
  for (int i = 1; i <= srcCount; ++i) {
    int j =
        byPosition ? (i <= dstCount ? i : -1) : FindField(s, dstLyr, GetFieldName(s, srcLyr, i));
    if (j >= 1) cells.emplace_back(j, GetFieldValue(s, srcLyr, i));
  }
  if (add) ReadDbfRec(s, dstLyr, dstRow); // the old values to add to
  char sep = s.Locale.DecimalSep;
  for (auto& [j, value] : cells) {
    if (add && IsNumericLetter(s.Lyr[dstLyr].Dbf.DbfFields[size_t(j)].FieldType))
      value = DblToText(StrToDbl(s, GetFieldValue(s, dstLyr, j)) + StrToDbl(s, value), sep);
    SetFieldValue(s, dstLyr, j, value);
  }
  s.Lyr[dstLyr].Dbf.DbfBufChanged = -1;
  s.DbfErr = 0; // set again when the row does not reach the swap file
  WriteDbfRecSwap(s, dstLyr, dstRow);
}

} // namespace

void CopyRow(Session& s, int srcLyr, int srcRow, int dstLyr, int dstRow, bool byPosition) {
  MoveRow(s, srcLyr, srcRow, dstLyr, dstRow, byPosition, false);
}

void AddRow(Session& s, int srcLyr, int srcRow, int dstLyr, int dstRow, bool byPosition) {
  MoveRow(s, srcLyr, srcRow, dstLyr, dstRow, byPosition, true);
}

} // namespace velmora
