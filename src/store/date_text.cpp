// Dates of date cells: reading the user's text, showing the short date format.
#include <cctype>
#include <cstdio>

#include "model/file_util.h"

#include "store/dbf_internal.h"

namespace velmora::dbf {

namespace {

// One piece of a date format: a day, month or year field of `width` letters, or a literal.
struct Piece {
  char Kind = 0; // 'd', 'm', 'y', or 0 for the literal
  int Width = 0;
  char Literal = 0;
};

char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c;
}

// Calls `fn` with each piece of `format` in turn, without building a list.
template <class Fn> bool ForPieces(const std::string& format, Fn fn) {
  for (size_t i = 0; i < format.size();) {
    char c = Lower(format[i]);
    if (c == 'd' || c == 'm' || c == 'y') {
      size_t j = i;
      while (j < format.size() && Lower(format[j]) == c) ++j;
      if (!fn(Piece{c, int(j - i), 0})) return false;
      i = j;
    } else if (!fn(Piece{0, 0, format[i++]})) {
      return false;
    }
  }
  return true;
}

// Years of two digits: 00 .. 29 in this century, 30 .. 99 in the last.
int FullYear(int y, int digits) {
  return digits > 2 ? y : y < 30 ? 2000 + y : 1900 + y;
}

bool ParseWith(const std::string& text, const std::string& format, DateParts& out) {
  size_t i = 0;
  int y = -1, m = -1, d = -1, yDigits = 0;
  bool ok = ForPieces(format, [&](const Piece& p) {
    if (!p.Kind) {
      if (i >= text.size() || text[i] != p.Literal) return false;
      ++i;
      return true;
    }
    int maxDigits = p.Kind == 'y' ? 4 : 2;
    int v = 0, n = 0;
    while (i < text.size() && n < maxDigits && std::isdigit(uint8_t(text[i])))
      v = v * 10 + (text[i++] - '0'), ++n;
    if (n == 0) return false;
    if (p.Kind == 'y') y = v, yDigits = n;
    if (p.Kind == 'm') m = v;
    if (p.Kind == 'd') d = v;
    return true;
  });
  if (!ok || i != text.size() || y < 0 || m < 0 || d < 0) return false;
  y = FullYear(y, yDigits);
  if (!ValidDate(y, m, d)) return false;
  out = {y, m, d};
  return true;
}

} // namespace

bool ValidDate(int y, int m, int d) {
  static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (y < 100 || y > 9999 || m < 1 || m > 12 || d < 1) return false;
  bool leap = (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
  return d <= kDays[m - 1] + (m == 2 && leap ? 1 : 0);
}

bool ParseDateText(const std::string& text, const std::string& shortDate, DateParts& out) {
  std::string t = Trim(text);
  if (t.empty()) return false;
  for (const std::string& f :
       {shortDate, std::string("dd/mm/yyyy"), std::string("yyyy-mm-dd"), std::string("yyyy/mm/dd")})
    if (ParseWith(t, f, out)) return true;
  return false;
}

std::string FormatShortDate(const DateParts& dt, const std::string& shortDate) {
  std::string out;
  out.reserve(shortDate.size() + 2);
  ForPieces(shortDate, [&](const Piece& p) {
    if (!p.Kind) {
      out += p.Literal;
      return true;
    }
    int v = p.Kind == 'd' ? dt.D : p.Kind == 'm' ? dt.M : dt.Y;
    if (p.Kind == 'y' && p.Width <= 2) v %= 100;
    int width = p.Kind == 'y' ? (p.Width <= 2 ? 2 : 4) : p.Width >= 2 ? 2 : 1;
    char digits[4];
    int n = 0;
    do digits[n++] = char('0' + v % 10), v /= 10;
    while (v > 0 && n < 4);
    for (int k = n; k < width; ++k) out += '0';
    while (n > 0) out += digits[--n];
    return true;
  });
  return out;
}

} // namespace velmora::dbf
