#pragma once
#include "model/session.h"

namespace velmora {

// The refresh calls by which open tables (and Identify and Edit Feature) follow changes of
// attributes and selection. Each is ignored for a layer without an open table.

// The layer's cells or selection changed: its open table reloads its page.
void RefTableDataNo(Session& s, int lyr);
// The same, with the column set renewed (the field table changed).
void RefTableNo(Session& s, int lyr);
// The same two over all layers.
void RefAllTableData(Session& s);
void RefAllTable(Session& s);
// Input of the layer's table and Edit Feature off and on while a long function runs.
void BlkTable(Session& s, int lyr);
void UnBlkTable(Session& s, int lyr);
// The layer goes away: its table closes.
void unInstFrmTbl(Session& s, int lyr);
// The open table's typed rows go into the store before an outside operation reads them.
void FlushTableOf(Session& s, int lyr);

} // namespace velmora
