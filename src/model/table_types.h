#pragma once
#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace velmora {

// The state of one open data table: a window of rows over a layer's records. Only the rows
// on the page are held; what the user typed stays here until the page is flushed.
struct TblPage {
  int32_t TblLayer = 0;
  // First record, first field, last record, last field of the current cell range.
  std::array<int32_t, 4> TblRange{1, 1, 1, 1};
  int16_t TblMode = 0;     // 0 all, 1 selected, 2 deleted features
  int32_t TblFirstRec = 1; // position of the scroller: the view row shown first, 1-based
  int32_t TblRows = 20;    // rows that fit on the page
  int32_t TblLastRec = 0;  // TblFirstRec + TblRows, limited by the scroller's maximum
  int16_t TblBusy = 0;     // a range operation runs on this table

  // The page: per row its record number (0 beyond the data), its "save" mark, and the
  // cell texts of fields 1 .. TblFieldCount, row after row.
  int32_t TblFieldCount = 0;
  std::vector<int32_t> RowRec;
  std::vector<uint8_t> RowSave;
  std::vector<std::string> Cells;
};

// What the session keeps for the tables: the record orders before each journalled row
// sort, which its undo line names by index.
struct TableState {
  std::vector<std::vector<int32_t>> SortOrders;
};

} // namespace velmora
