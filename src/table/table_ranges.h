#pragma once
#include <string>

#include "model/session.h"
#include "model/table_types.h"

namespace velmora {

// The range operations of the data table, on TblRange of the page in its TblMode (mode 1
// walks only the selected records). Each flushes the page, runs under the layer's busy
// frame with a yield and a cancel test per record, puts its changes in one undo group and
// reloads the table. A refusal logs " *** <operation> to layer <name> has been canceled *** "
// and changes nothing. False when refused.

// The range with first <= last and limited to the layer's records and fields.
void NormalizeRange(const Session& s, const TblPage& p, int& r1, int& f1, int& r2, int& f2);

// Tab-separated cells, "\r\n" behind each row, of the range.
bool CopyCells(Session& s, TblPage& p);
// Copy, then every cell cleared: a "Numeric" cell to 0, any other to empty.
bool CutCells(Session& s, TblPage& p);
bool ClearCells(Session& s, TblPage& p);
// The clipboard's cells into the range: rows from the range's first down to the end of the
// data until the text is used up ("Past"), or tiled over exactly the range ("Fill Past").
bool PasteCells(Session& s, TblPage& p, bool fill);
bool PasteText(Session& s, TblPage& p, const std::string& text, bool fill);
// A series of numbers, or of dates stepping by days, from `start` by `step` until `stop`
// is passed (no stop when empty or 0). A step of 0 does nothing.
bool FillSeries(Session& s, TblPage& p, const std::string& start, const std::string& step,
                const std::string& stop);
// The value offered as the series' start: the range's first cell (first selected record
// in mode 1).
std::string FillSeriesStart(Session& s, const TblPage& p);
// UTF-8 bytes stored in the cells to their characters (`toAscii`), or the reverse.
bool ConvertCells(Session& s, TblPage& p, bool toAscii);

// "Add Empty Records...": `count` features with one vertex at (0, 0) and blank rows.
bool AddRecords(Session& s, int lyr, int count);

} // namespace velmora
