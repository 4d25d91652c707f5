#pragma once
#include <string>

#include "model/session.h"
#include "model/table_types.h"

namespace velmora {

// The paged model of a data table: which records a page shows, their cell texts, and the
// way typed cells go back into the store. Nothing here holds more than one page.

// Is record `rec` selected (its bit in SelBits), is it deleted (geometry type 0)?
bool RecSelected(const Session& s, int lyr, int rec);
bool RecDeleted(const Session& s, int lyr, int rec);

// Rows of the view: all records, the selected or the deleted ones, by TblMode.
int TblViewCount(const Session& s, const TblPage& p);
// The scroller's large step: the view's rows divided by 9, rounded (at least 1).
int TblLargeStep(int viewCount);
// The counter line: "Selected Records = ( n out of total m Records )", or in mode 2
// "Deleted Records = ( ... )".
std::string TblCounterText(const Session& s, const TblPage& p);
// The record shown at view row `pos` (1-based) in the page's mode; 0 when there is none.
int TblRecAt(const Session& s, const TblPage& p, int pos);

// First fill of a page for `lyr`: mode 0, the first rows.
void InstTable(Session& s, TblPage& p, int lyr, int rows);
// Flushes, then loads the rows from TblFirstRec on (clamped to the view).
void FillPage(Session& s, TblPage& p);
// Writes every row marked "save" into the swap file and clears its mark.
void FlushPage(Session& s, TblPage& p);
// Reload after an outside change: keeps mode, range and position; columns anew when the
// field count differs.
void RefTable(Session& s, TblPage& p);

// The text of cell `field` (1-based) of page row `row` (0-based).
const std::string& PageCell(const TblPage& p, int row, int field);
// Can the cell be edited: an editable, idle layer and a row with a record?
bool CellEditable(const Session& s, const TblPage& p, int row);
// A typed value: notes the old value for undo, keeps the text in the page and marks the
// row "save". False when the cell can't be edited.
bool SetPageCell(Session& s, TblPage& p, int row, int field, const std::string& text);

} // namespace velmora
