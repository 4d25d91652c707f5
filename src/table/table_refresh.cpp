#include "table/table_refresh.h"

namespace velmora {

namespace {

bool UserLyr(const Session& s, int lyr) {
  return lyr >= 1 && lyr <= s.LyrCount;
}

} // namespace

void RefTableDataNo(Session& s, int lyr) {
  if (UserLyr(s, lyr)) s.host->TableDataChanged(lyr);
}

void RefTableNo(Session& s, int lyr) {
  if (UserLyr(s, lyr)) s.host->TableFieldsChanged(lyr);
}

void RefAllTableData(Session& s) {
  for (int i = 1; i <= s.LyrCount; ++i) s.host->TableDataChanged(i);
}

void RefAllTable(Session& s) {
  for (int i = 1; i <= s.LyrCount; ++i) s.host->TableFieldsChanged(i);
}

void BlkTable(Session& s, int lyr) {
  if (UserLyr(s, lyr)) s.host->BlockTable(lyr, true);
}

void UnBlkTable(Session& s, int lyr) {
  if (UserLyr(s, lyr)) s.host->BlockTable(lyr, false);
}

void unInstFrmTbl(Session& s, int lyr) {
  if (UserLyr(s, lyr)) s.host->CloseTable(lyr);
}

void FlushTableOf(Session& s, int lyr) {
  if (UserLyr(s, lyr) && s.Lyr[lyr].TblOpen) s.host->FlushTable(lyr);
}

} // namespace velmora
