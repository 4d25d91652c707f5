#pragma once
// Helpers shared by the parts of the attribute store; not for use outside src/store.
#include <string>

#include "model/session.h"
#include "store/dbf_files.h"

namespace velmora::dbf {

// True when `lyr` names a row of the table.
inline bool ValidLyr(const Session& s, int lyr) {
  return lyr >= -kWorkSlots && lyr <= s.Lyr.Count();
}

// Header words read as the unsigned 16-bit values they are in the file.
inline int RecLen(const DbfBlock& b) {
  return uint16_t(b.DbfRecLen);
}
inline int HeaderLen(const DbfBlock& b) {
  return uint16_t(b.DbfHeaderLen);
}
inline int FieldStart(const DbfField& f) {
  return uint16_t(f.FieldStart);
}

// "0", or "0." and one zero a decimal.
std::string FieldFormatOf(int decimals);
// Entry 0 of the field table: the flag byte seen as a field.
DbfField FlagField();
// Sets FieldStart, FieldEnd and FieldFormat of field `i` from the one before it.
void PlaceField(DbfBlock& b, int i);

// The file mode of the map mode: 1 and 4 read and write, others read only.
WindowedFile::Mode FileMode(const Session& s);
DbfFiles& FilesOf(DbfBlock& b);
// Opens the layer's dbf when DbfOpen is clear. False when it cannot be opened.
bool EnsureDbfOpen(Session& s, int lyr);
// A frame layer (ShpType 99) keeps no file open between operations.
void ReleaseIfFrame(Session& s, int lyr);

// The code page the layer's bytes are in.
int LayerPage(const Session& s, int lyr);

// True when the trimmed text is a number with `sep` (or ".") as the decimal point.
bool IsNumericText(const std::string& text, char sep);
// The number of a numeric field's text, rounded to `decimals` places, half away from zero,
// as plain text with `sep` as the decimal point; "" when the text is not numeric.
std::string FormatDecimals(const std::string& text, char sep, int decimals);
// The text of a number as stored in a numeric cell: full precision, "." as the point.
std::string CellNumber(const std::string& cleaned, char sep);
// A double as text with the session's separator, full precision.
std::string DblToText(double v, char sep);

// Dates. A valid date as year, month, day.
struct DateParts {
  int Y = 0, M = 0, D = 0;
};
bool ValidDate(int y, int m, int d);
// Reads `text` as a date: the session's short date format, then "dd/mm/yyyy", "yyyy-mm-dd",
// "yyyy/mm/dd".
bool ParseDateText(const std::string& text, const std::string& shortDate, DateParts& out);
// The date in the short date format ("dd/mm/yyyy", "m/d/yy", "yyyy-mm-dd" ...).
std::string FormatShortDate(const DateParts& d, const std::string& shortDate);

} // namespace velmora::dbf
