#include "table/table_ranges.h"

#include <algorithm>
#include <cmath>

#include "frame/busy.h"
#include "frame/log.h"
#include "model/file_util.h"
#include "store/codepage.h"
#include "store/dbf_internal.h"
#include "store/dbf_store.h"
#include "store/shp_store.h"
#include "table/table_page.h"
#include "table/table_refresh.h"
#include "table/utf_cells.h"

namespace velmora {

namespace {

bool TableLyr(const Session& s, int lyr) {
  return lyr >= 1 && lyr <= s.LyrCount && s.Lyr[lyr].Dbf.DbfExists;
}

void LogRefused(Session& s, const std::string& op, int lyr) {
  const std::string name = lyr >= 1 && lyr <= s.LyrCount ? s.Lyr[lyr].LyrName : "";
  LogMsg(s, " *** " + op + " to layer " + name + " has been canceled *** ");
}

// What a record's work asks of the walk.
enum class Next { Write, Skip, StopAfterWrite, Stop };

// The frame every range operation shares. `work(lyr, rec, f1, f2)` changes the buffer of
// the record just read, noting each old value with Note().
template <class Work>
bool RangeWalk(Session& s, TblPage& p, const std::string& op, bool toEndOfData, bool undo,
               Work work) {
  int lyr = p.TblLayer;
  if (!TableLyr(s, lyr) || LyrIsBusy(s, lyr) || p.TblBusy) {
    LogRefused(s, op, lyr);
    return false;
  }
  FlushPage(s, p);
  int r1, f1, r2, f2;
  NormalizeRange(s, p, r1, f1, r2, f2);
  if (toEndOfData) r2 = s.Lyr[lyr].Dbf.DbfRecCount;
  RunningFunction rf(s, lyr, op);
  if (!rf.Started()) return false;
  p.TblBusy = 1;
  if (undo) BeginDataUndo(s, lyr);
  const long long total = std::max(1, r2 - r1 + 1);
  bool stop = false;
  for (int rec = r1; rec <= r2 && f1 <= f2 && !stop; ++rec) {
    if (p.TblMode == 1 && !RecSelected(s, lyr, rec)) continue;
    ReadDbfRec(s, lyr, rec - 1);
    const Next n = work(lyr, rec, f1, f2);
    if (n == Next::Stop) break;
    if (n != Next::Skip) {
      s.DbfErr = 0;
      WriteDbfRecSwap(s, lyr, rec - 1);
      stop = n == Next::StopAfterWrite || s.DbfErr != 0;
    }
    if (rf.Step(rec - r1 + 1, total)) break;
    lyr = rf.Layer();
    p.TblLayer = lyr;
  }
  p.TblBusy = 0;
  if (rf.Gone()) return false;
  rf.Finish();
  RefTableDataNo(s, rf.Layer());
  return true;
}

// The cell's new value, its old one noted for undo first.
void SetNoted(Session& s, int lyr, int rec, int f, const std::string& v) {
  AddDataUndoItem(s, lyr, rec, f, GetFieldValue(s, lyr, f));
  SetFieldValue(s, lyr, f, v);
}

// The range's text, tab-separated with "\r\n" behind each row; with `clear` every cell
// is emptied as it is taken (a "Numeric" cell to 0).
std::string RangeText(Session& s, TblPage& p, const std::string& op, bool clear, bool& ok) {
  int lyr = p.TblLayer;
  std::string text;
  if (TableLyr(s, lyr)) {
    int r1, f1, r2, f2;
    NormalizeRange(s, p, r1, f1, r2, f2);
    size_t rowLen = 2;
    for (int f = f1; f <= f2; ++f) rowLen += size_t(GetFieldWidth(s, lyr, f)) + 1;
    text.reserve(rowLen * size_t(std::max(0, r2 - r1 + 1)));
  }
  ok = RangeWalk(s, p, op, false, clear, [&](int l, int rec, int f1, int f2) {
    for (int f = f1; f <= f2; ++f) {
      if (f > f1) text += '\t';
      text += GetFieldValue(s, l, f);
      if (clear) SetNoted(s, l, rec, f, GetFieldType(s, l, f) == "Numeric" ? "0" : "");
    }
    text += "\r\n";
    return clear ? Next::Write : Next::Skip;
  });
  return text;
}

bool ClearRange(Session& s, TblPage& p, const std::string& op) {
  return RangeWalk(s, p, op, false, true, [&](int l, int rec, int f1, int f2) {
    for (int f = f1; f <= f2; ++f)
      SetNoted(s, l, rec, f, GetFieldType(s, l, f) == "Numeric" ? "0" : "");
    return Next::Write;
  });
}

bool IsDelim(char c) {
  return c == '\t' || c == '\r' || c == '\n';
}

// Days since 1970-01-01 of a civil date, and back.
long DaysOf(const dbf::DateParts& d) {
  const int y = d.M <= 2 ? d.Y - 1 : d.Y;
  const long era = (y >= 0 ? y : y - 399) / 400;
  const unsigned yoe = unsigned(y - era * 400);
  const unsigned doy = unsigned((153 * (d.M + (d.M > 2 ? -3 : 9)) + 2) / 5 + d.D - 1);
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + long(doe) - 719468;
}

dbf::DateParts DateOfDays(long z) {
  z += 719468;
  const long era = (z >= 0 ? z : z - 146096) / 146097;
  const unsigned doe = unsigned(z - era * 146097);
  const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const unsigned mp = (5 * doy + 2) / 153;
  dbf::DateParts d;
  d.D = int(doy - (153 * mp + 2) / 5 + 1);
  d.M = int(mp < 10 ? mp + 3 : mp - 9);
  d.Y = int(long(yoe) + era * 400 + (d.M <= 2 ? 1 : 0));
  return d;
}

// A start value is a date when it reads as one, has a "/" and nothing of a number's
// decimal part or a second number in it.
bool IsDateStart(const Session& s, const std::string& t, dbf::DateParts& d) {
  return t.find('/') != std::string::npos && t.find(s.Locale.DecimalSep) == std::string::npos &&
         t.find(' ') == std::string::npos && dbf::ParseDateText(t, s.Locale.ShortDate, d);
}

} // namespace

void NormalizeRange(const Session& s, const TblPage& p, int& r1, int& f1, int& r2, int& f2) {
  r1 = p.TblRange[0], f1 = p.TblRange[1], r2 = p.TblRange[2], f2 = p.TblRange[3];
  if (r1 > r2) std::swap(r1, r2);
  if (f1 > f2) std::swap(f1, f2);
  const int lyr = p.TblLayer;
  const int recs = TableLyr(s, lyr) ? s.Lyr[lyr].Dbf.DbfRecCount : 0;
  const int fields = TableLyr(s, lyr) ? s.Lyr[lyr].Dbf.DbfFieldCount : 0;
  r1 = std::max(r1, 1), f1 = std::max(f1, 1);
  r2 = std::min(r2, recs), f2 = std::min(f2, fields);
}

bool CopyCells(Session& s, TblPage& p) {
  bool ok = false;
  std::string text = RangeText(s, p, "Copy Cells", false, ok);
  if (ok) s.host->SetClipboardText(text);
  return ok;
}

bool CutCells(Session& s, TblPage& p) {
  bool ok = false;
  std::string text = RangeText(s, p, "Cut Cells", true, ok);
  if (ok) s.host->SetClipboardText(text);
  return ok;
}

bool ClearCells(Session& s, TblPage& p) {
  return ClearRange(s, p, "Clear Cells");
}

bool PasteCells(Session& s, TblPage& p, bool fill) {
  return PasteText(s, p, s.host->ClipboardText(), fill);
}

bool PasteText(Session& s, TblPage& p, const std::string& clip, bool fill) {
  std::string text = clip;
  if (text.empty() || (text.back() != '\r' && text.back() != '\n')) text += '\r';
  const size_t len = text.size();
  size_t pos = 0;
  auto readCell = [&]() {
    const size_t start = pos;
    while (pos < len && !IsDelim(text[pos])) ++pos;
    return text.substr(start, pos - start);
  };
  auto skipLineEnds = [&]() {
    while (pos < len && (text[pos] == '\r' || text[pos] == '\n')) ++pos;
  };
  const std::string op = fill ? "Fill Past Cells" : "Past Cells";
  return RangeWalk(s, p, op, !fill, true, [&](int l, int rec, int f1, int f2) {
    if (pos >= len) {
      if (!fill) return Next::Stop; // the clipboard is used up
      pos = 0;
    }
    const size_t lineStart = pos;
    int f = f1;
    for (;;) {
      std::string cell = readCell();
      if (f <= f2) SetNoted(s, l, rec, f, cell);
      ++f;
      if (pos < len && text[pos] == '\t') {
        ++pos;
        if (fill && f > f2) break;
        continue;
      }
      // The line ends: in a fill its cells repeat up to the range's last field.
      if (fill && f <= f2) {
        pos = lineStart;
        continue;
      }
      break;
    }
    while (pos < len && text[pos] != '\r' && text[pos] != '\n') ++pos; // cells beyond go
    skipLineEnds();
    return Next::Write;
  });
}

std::string FillSeriesStart(Session& s, const TblPage& p) {
  int r1, f1, r2, f2;
  NormalizeRange(s, p, r1, f1, r2, f2);
  const int lyr = p.TblLayer;
  if (!TableLyr(s, lyr) || r1 > r2 || f1 > f2) return "";
  int rec = r1;
  if (p.TblMode == 1)
    while (rec <= r2 && !RecSelected(s, lyr, rec)) ++rec;
  if (rec > r2) return "";
  ReadDbfRec(s, lyr, rec - 1);
  return Trim(GetFieldValue(s, lyr, f1));
}

bool FillSeries(Session& s, TblPage& p, const std::string& startText, const std::string& stepText,
                const std::string& stopText) {
  const std::string start = Trim(startText), stepT = Trim(stepText), stopT = Trim(stopText);
  const double step = StrToDbl(s, stepT);
  if (step == 0) return true; // nothing to do
  dbf::DateParts d;
  const bool dates = IsDateStart(s, start, d);
  double value = dates ? double(DaysOf(d)) : StrToDbl(s, start);
  bool hasStop = false;
  double stop = 0;
  dbf::DateParts sd;
  if (dates && IsDateStart(s, stopT, sd)) {
    hasStop = true, stop = double(DaysOf(sd));
  } else if (!stopT.empty() && StrToDbl(s, stopT) != 0) {
    hasStop = true, stop = StrToDbl(s, stopT);
  }
  const double first = value;
  long k = 0;
  const char sep = s.Locale.DecimalSep;
  return RangeWalk(s, p, "Fill Series", false, true, [&](int l, int rec, int f1, int f2) {
    for (int f = f1; f <= f2; ++f) {
      // From the start each time, so that a step such as 0.1 doesn't gather error.
      value = first + double(k) * step;
      if (hasStop && (step > 0 ? value > stop : value < stop))
        return f > f1 ? Next::StopAfterWrite : Next::Stop;
      const std::string t =
          dates ? dbf::FormatShortDate(DateOfDays(long(std::lround(value))), s.Locale.ShortDate)
                : dbf::DblToText(value, sep);
      SetNoted(s, l, rec, f, t);
      ++k;
    }
    return Next::Write;
  });
}

bool ConvertCells(Session& s, TblPage& p, bool toAscii) {
  return RangeWalk(s, p, "Convert UTF Cells", false, true, [&](int l, int rec, int f1, int f2) {
    const int page = s.Lyr[l].Dbf.CodePage ? s.Lyr[l].Dbf.CodePage : s.Locale.CodePage;
    for (int f = f1; f <= f2; ++f) {
      const std::string v = GetFieldValue(s, l, f);
      const std::string bytes = EncodeText(page, v);
      const bool utf = IsUtf8Text(bytes);
      if (toAscii == utf) {
        std::string out;
        if (toAscii) {
          // The characters as UTF-8 text, which the store turns into the table's page.
          for (char32_t c : Utf8ToWide(bytes)) {
            std::u32string one(1, c);
            if (c < 128)
              out += char(c);
            else if (c < 2048)
              out += WideToUtf8(one);
          }
        } else {
          std::u32string chars;
          for (size_t i = 0; i < v.size();) { // the UTF-8 text's characters
            const uint8_t b = uint8_t(v[i]);
            int n = b < 0x80 ? 1 : b < 0xE0 ? 2 : b < 0xF0 ? 3 : 4;
            char32_t c = n == 1 ? b : b & (0xFF >> (n + 1));
            for (int j = 1; j < n && i + size_t(j) < v.size(); ++j)
              c = (c << 6) | (uint8_t(v[i + size_t(j)]) & 63);
            chars += c;
            i += size_t(n);
          }
          out = DecodeText(page, WideToUtf8(chars)); // the bytes stored as they are
        }
        SetNoted(s, l, rec, f, out);
      }
    }
    return Next::Write;
  });
}

bool AddRecords(Session& s, int lyr, int count) {
  const std::string op = "Append Records";
  if (lyr < 1 || lyr > s.LyrCount || s.Lyr[lyr].LyrKind != 1 || count < 1 || LyrIsBusy(s, lyr)) {
    LogRefused(s, op, lyr);
    return false;
  }
  FlushTableOf(s, lyr);
  RunningFunction rf(s, lyr, "Add Records");
  if (!rf.Started()) return false;
  ReserveRecs(s, lyr, count);
  for (int i = 0; i < count; ++i) {
    AddRec(s, lyr);
    const int rec = s.Lyr[lyr].Shp.RecCount;
    AddDbfRec(s, lyr, rec - 1);
    AddVertex(s, lyr, rec, 0, 0, 0, 0, 0);
    const int type = s.Lyr[lyr].Shp.ShpType;
    if (type == 99 || type == 100) AddVertex(s, lyr, rec, 0, 0, 0, 0, 0);
    if (type == 100) AddVertex(s, lyr, rec, 0, 0, 0, 0, 0);
    if (s.DbfErr || rf.Step(i + 1, count)) break;
    lyr = rf.Layer();
  }
  if (rf.Gone()) return false;
  lyr = rf.Layer();
  s.Lyr[lyr].Shp.ShpChanged = -1;
  RecalcExtent(s, lyr);
  rf.Finish();
  RefTableDataNo(s, lyr);
  s.host->MapRedraw();
  return true;
}

} // namespace velmora
