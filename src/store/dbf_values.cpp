// Cell values: the text of a field in the record buffer, read and written by the rules of
// its type letter.
#include <algorithm>
#include <cstdio>

#include "model/file_util.h"
#include "store/codepage.h"
#include "store/dbf_internal.h"
#include "store/dbf_store.h"

namespace velmora {

using namespace dbf;

namespace {

bool IsNumericLetter(char t) {
  return t == 'B' || t == 'F' || t == 'G' || t == 'I' || t == 'N' || t == 'Y';
}

// The bytes of field `f` in the buffer, cut to what the buffer holds.
bool FieldSpan(const DbfBlock& b, int f, size_t& start, size_t& len) {
  if (f < 0 || f > b.DbfFieldCount || size_t(f) >= b.DbfFields.size()) return false;
  const DbfField& fd = b.DbfFields[size_t(f)];
  start = size_t(FieldStart(fd));
  len = fd.FieldLength;
  if (start >= b.DbfBuf.size()) return false;
  len = std::min(len, b.DbfBuf.size() - start);
  return true;
}

bool AllBlank(std::string_view t) {
  return std::all_of(t.begin(), t.end(), [](char c) { return c == ' '; });
}

// A stored date YYYYMMDD as DD/MM/YYYY, piece by piece as far as the text goes.
std::string Rearranged(const std::string& t) {
  auto mid = [&](size_t from, size_t n) { return from < t.size() ? t.substr(from, n) : ""; };
  return mid(6, 2) + "/" + mid(4, 2) + "/" + mid(0, 4);
}

int Digits(const std::string& t, size_t from, size_t n) {
  int v = 0;
  for (size_t i = from; i < from + n; ++i) v = v * 10 + (t[i] - '0');
  return v;
}

std::string DateValue(const Session& s, std::string t) {
  // The usual cell, eight digits: straight to the short date.
  if (t.size() == 8 &&
      std::all_of(t.begin(), t.end(), [](char c) { return c >= '0' && c <= '9'; })) {
    DateParts d{Digits(t, 0, 4), Digits(t, 4, 2), Digits(t, 6, 2)};
    if (ValidDate(d.Y, d.M, d.D)) return FormatShortDate(d, s.Locale.ShortDate);
  }
  if (t.find('/') == std::string::npos) {
    if (AllBlank(t)) return t; // a blank date stays blank
    t = Rearranged(t);
  }
  DateParts d;
  if (t.size() == 10 && ParseDateText(t, "dd/mm/yyyy", d) && Trim(t) == t)
    return FormatShortDate(d, s.Locale.ShortDate);
  return t;
}

// The bytes a date cell gets for `text`.
std::string DateBytes(const Session& s, const std::string& text, size_t width, int page) {
  DateParts d;
  std::string out;
  if (ParseDateText(text, s.Locale.ShortDate, d)) {
    char buf[16];
    std::snprintf(buf, sizeof buf, "%04d%02d%02d", d.Y, d.M, d.D);
    out = buf;
  } else if (text.size() == 10 && text[2] == '/' && text[5] == '/') {
    // Not a date, but the shape a stored cell is shown in: back to its stored order.
    out = EncodeText(page, text.substr(6, 4) + text.substr(3, 2) + text.substr(0, 2));
  } else {
    out = EncodeText(page, text);
  }
  if (out.size() < width) out.append(width - out.size(), ' ');
  return out;
}

std::string NumberBytes(const Session& s, const DbfField& fd, const std::string& text) {
  size_t width = fd.FieldLength;
  std::string t = Trim(text);
  // An empty cell stays empty, which other programs read as no value.
  if (t.empty() || t.find_first_not_of('*') == std::string::npos) return std::string(width, ' ');
  char sep = s.Locale.DecimalSep;
  std::string formatted = FormatDecimals(text, sep, fd.FieldDecimals);
  if (formatted.empty()) formatted = text;
  std::string out = CellNumber(CleanNumText(s, formatted), sep);
  if (out.size() < width) out.insert(0, width - out.size(), ' ');
  return out;
}

std::string TextBytes(const std::string& text, size_t width, int page) {
  std::string out = EncodeText(page, text);
  if (out.size() > width) {
    size_t lead = out.find_first_not_of(' ');
    out.erase(0, lead == std::string::npos ? out.size() : lead);
  }
  if (out.size() < width) out.append(width - out.size(), ' ');
  size_t keep = FitBytes(page, out, width);
  if (keep < width) { // a character would be cut in two: blanks instead
    out.resize(keep);
    out.append(width - keep, ' ');
  }
  return out;
}

} // namespace

std::string GetFieldValue(const Session& s, int lyr, int f) {
  if (!ValidLyr(s, lyr)) return "";
  const DbfBlock& b = s.Lyr[lyr].Dbf;
  size_t start, len;
  if (!FieldSpan(b, f, start, len)) return "";
  std::string t;
  t.reserve(len);
  AppendDecoded(t, LayerPage(s, lyr), b.DbfBuf.data() + start, len);
  char type = b.DbfFields[size_t(f)].FieldType;
  if (IsNumericLetter(type)) {
    if (s.Locale.DecimalSep != '.') std::replace(t.begin(), t.end(), '.', s.Locale.DecimalSep);
    return t;
  }
  if (type == 'D') return DateValue(s, std::move(t));
  return t;
}

void SetFieldValue(Session& s, int lyr, int f, const std::string& text) {
  if (!ValidLyr(s, lyr)) return;
  DbfBlock& b = s.Lyr[lyr].Dbf;
  size_t start, len;
  if (!FieldSpan(b, f, start, len)) return;
  const DbfField& fd = b.DbfFields[size_t(f)];
  int page = LayerPage(s, lyr);
  std::string bytes;
  if (IsNumericLetter(fd.FieldType))
    bytes = NumberBytes(s, fd, text);
  else if (fd.FieldType == 'D')
    bytes = DateBytes(s, text, fd.FieldLength, page);
  else
    bytes = TextBytes(text, fd.FieldLength, page);
  // Byte by byte, so that storing the value already there leaves the buffer unchanged; a
  // longer text loses its right end.
  for (size_t k = 0; k < len && k < bytes.size(); ++k) {
    auto c = uint8_t(bytes[k]);
    if (b.DbfBuf[start + k] != c) {
      b.DbfBuf[start + k] = c;
      b.DbfBufChanged = -1;
    }
  }
}

} // namespace velmora
