#include "table/table_page.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "frame/busy.h"
#include "store/dbf_store.h"
#include "store/shp_store.h"

namespace velmora {

namespace {

bool ValidTblLyr(const Session& s, int lyr) {
  return lyr >= 1 && lyr <= s.LyrCount && s.Lyr[lyr].Dbf.DbfExists;
}

int CountSelected(const Session& s, int lyr, int recs) {
  const auto& b = s.Lyr[lyr].SelBits;
  int n = 0;
  // Whole bytes first, then the bits of the last one up to `recs`.
  const size_t whole = std::min(b.size(), size_t(recs + 1) / 8);
  for (size_t i = 0; i < whole; ++i) n += std::popcount(unsigned(b[i]));
  if (whole > 0 && RecSelected(s, lyr, 0)) --n; // bit 0 is no record
  for (int r = int(whole * 8); r <= recs; ++r)
    if (r >= 1 && RecSelected(s, lyr, r)) ++n;
  return n;
}

int CountDeleted(const Session& s, int lyr, int recs) {
  int n = 0;
  for (int r = 1; r <= recs; ++r)
    if (RecDeleted(s, lyr, r)) ++n;
  return n;
}

bool PassesMode(const Session& s, int lyr, int mode, int rec) {
  if (mode == 1) return RecSelected(s, lyr, rec);
  if (mode == 2) return RecDeleted(s, lyr, rec);
  return true;
}

// The next record from `rec` on that the mode shows; 0 past the end. Selection walks
// whole zero bytes at once, so a sparse selection pages quickly.
int NextInMode(const Session& s, int lyr, int mode, int rec, int recs) {
  if (mode == 1) {
    const auto& b = s.Lyr[lyr].SelBits;
    while (rec <= recs) {
      size_t i = size_t(rec) / 8;
      if (i >= b.size()) return 0;
      if (b[i] == 0) {
        rec = int((i + 1) * 8);
        continue;
      }
      if (RecSelected(s, lyr, rec)) return rec;
      ++rec;
    }
    return 0;
  }
  for (; rec <= recs; ++rec)
    if (PassesMode(s, lyr, mode, rec)) return rec;
  return 0;
}

const std::string kEmpty;

} // namespace

bool RecSelected(const Session& s, int lyr, int rec) {
  const auto& b = s.Lyr[lyr].SelBits;
  size_t i = size_t(rec) / 8;
  return rec >= 0 && i < b.size() && (b[i] >> (rec % 8) & 1) != 0;
}

bool RecDeleted(const Session& s, int lyr, int rec) {
  const auto& r = s.Lyr[lyr].Shp.ShpRecs;
  return rec >= 1 && size_t(rec) < r.size() && r[size_t(rec)].ShapeType == 0;
}

int TblViewCount(const Session& s, const TblPage& p) {
  if (!ValidTblLyr(s, p.TblLayer)) return 0;
  const int recs = s.Lyr[p.TblLayer].Dbf.DbfRecCount;
  if (p.TblMode == 1) return CountSelected(s, p.TblLayer, recs);
  if (p.TblMode == 2) return CountDeleted(s, p.TblLayer, recs);
  return recs;
}

int TblLargeStep(int viewCount) {
  return std::max(1, int(std::lround(viewCount / 9.0)));
}

std::string TblCounterText(const Session& s, const TblPage& p) {
  if (!ValidTblLyr(s, p.TblLayer)) return "";
  const int recs = s.Lyr[p.TblLayer].Dbf.DbfRecCount;
  if (p.TblMode == 2)
    return "Deleted Records = ( " + std::to_string(CountDeleted(s, p.TblLayer, recs)) +
           " out of total " + std::to_string(recs) + " Records )";
  return "Selected Records = ( " + std::to_string(CountSelected(s, p.TblLayer, recs)) +
         " out of total " + std::to_string(recs) + " Records )";
}

int TblRecAt(const Session& s, const TblPage& p, int pos) {
  if (!ValidTblLyr(s, p.TblLayer) || pos < 1) return 0;
  const int recs = s.Lyr[p.TblLayer].Dbf.DbfRecCount;
  if (p.TblMode == 0) return pos <= recs ? pos : 0;
  int rec = 0;
  for (int k = 0; k < pos; ++k) {
    rec = NextInMode(s, p.TblLayer, p.TblMode, rec + 1, recs);
    if (!rec) return 0;
  }
  return rec;
}

void InstTable(Session& s, TblPage& p, int lyr, int rows) {
  p = TblPage{};
  p.TblLayer = lyr;
  p.TblRows = std::max(1, rows);
  FillPage(s, p);
}

void FlushPage(Session& s, TblPage& p) {
  const int lyr = p.TblLayer;
  if (!ValidTblLyr(s, lyr)) return;
  const int fields = std::min<int>(p.TblFieldCount, s.Lyr[lyr].Dbf.DbfFieldCount);
  for (size_t r = 0; r < p.RowRec.size(); ++r) {
    const int rec = p.RowRec[r];
    if (rec < 1 || !p.RowSave[r] || rec > s.Lyr[lyr].Dbf.DbfRecCount) continue;
    ReadDbfRec(s, lyr, rec - 1);
    for (int f = 1; f <= fields; ++f) SetFieldValue(s, lyr, f, PageCell(p, int(r), f));
    s.DbfErr = 0;
    WriteDbfRecSwap(s, lyr, rec - 1);
    p.RowSave[r] = 0;
  }
}

void FillPage(Session& s, TblPage& p) {
  FlushPage(s, p);
  const int lyr = p.TblLayer;
  const int rows = std::max(1, p.TblRows);
  p.RowRec.assign(size_t(rows), 0);
  p.RowSave.assign(size_t(rows), 0);
  p.TblFieldCount = ValidTblLyr(s, lyr) ? s.Lyr[lyr].Dbf.DbfFieldCount : 0;
  p.Cells.assign(size_t(rows) * size_t(p.TblFieldCount), std::string());
  if (!ValidTblLyr(s, lyr)) return;
  const int view = TblViewCount(s, p);
  p.TblFirstRec = std::clamp(p.TblFirstRec, 1, std::max(1, view));
  p.TblLastRec = std::min(p.TblFirstRec + rows, std::max(1, view));
  const int recs = s.Lyr[lyr].Dbf.DbfRecCount;
  int rec = TblRecAt(s, p, p.TblFirstRec);
  for (int r = 0; r < rows && rec >= 1; ++r) {
    p.RowRec[size_t(r)] = rec;
    ReadDbfRec(s, lyr, rec - 1);
    for (int f = 1; f <= p.TblFieldCount; ++f)
      p.Cells[size_t(r) * size_t(p.TblFieldCount) + size_t(f - 1)] = GetFieldValue(s, lyr, f);
    rec =
        p.TblMode == 0 ? (rec < recs ? rec + 1 : 0) : NextInMode(s, lyr, p.TblMode, rec + 1, recs);
  }
}

void RefTable(Session& s, TblPage& p) {
  // The rows typed on the page belong to records that an outside change may have moved:
  // they go into the store first, as on any page change.
  FillPage(s, p);
}

const std::string& PageCell(const TblPage& p, int row, int field) {
  if (row < 0 || size_t(row) >= p.RowRec.size() || field < 1 || field > p.TblFieldCount)
    return kEmpty;
  return p.Cells[size_t(row) * size_t(p.TblFieldCount) + size_t(field - 1)];
}

bool CellEditable(const Session& s, const TblPage& p, int row) {
  const int lyr = p.TblLayer;
  return ValidTblLyr(s, lyr) && s.Lyr[lyr].EEditable && !LyrIsBusy(s, lyr) && !p.TblBusy &&
         row >= 0 && size_t(row) < p.RowRec.size() && p.RowRec[size_t(row)] >= 1;
}

bool SetPageCell(Session& s, TblPage& p, int row, int field, const std::string& text) {
  if (!CellEditable(s, p, row) || field < 1 || field > p.TblFieldCount) return false;
  const int lyr = p.TblLayer, rec = p.RowRec[size_t(row)];
  std::string& cell = p.Cells[size_t(row) * size_t(p.TblFieldCount) + size_t(field - 1)];
  if (cell == text) return true;
  // A row already typed on differs from the store: its undo takes the page's text.
  if (p.RowSave[size_t(row)]) {
    BeginDataUndo(s, lyr);
    AddDataUndoItem(s, lyr, rec, field, cell);
  } else {
    NoteDataUndo(s, lyr, rec, field);
  }
  cell = text;
  p.RowSave[size_t(row)] = 1;
  return true;
}

} // namespace velmora
