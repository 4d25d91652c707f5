#include "model/c_numbers.h"

#include <cctype>
#include <charconv>
#include <cmath>

namespace velmora {

namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f';
}

} // namespace

std::string FixedText(double v, int decimals) {
  char buf[400]; // the largest double has 309 integer digits
  if (decimals < 0) decimals = 0;
  if (decimals > 60) decimals = 60;
  auto r = std::to_chars(buf, buf + sizeof buf, v, std::chars_format::fixed, decimals);
  if (r.ec != std::errc()) return "0";
  return std::string(buf, r.ptr);
}

std::string GeneralText(double v, int digits) {
  char buf[64];
  if (digits < 1) digits = 1;
  if (digits > 17) digits = 17;
  auto r = std::to_chars(buf, buf + sizeof buf, v, std::chars_format::general, digits);
  if (r.ec != std::errc()) return "0";
  std::string t(buf, r.ptr);
  for (char& c : t) {
    if (c == 'e') c = 'E';
    if (c == 'i' || c == 'n' || c == 'f' || c == 'a') c = char(c - 'a' + 'A'); // INF, NAN
  }
  return t;
}

bool LeadingNumber(std::string_view text, double& v, size_t* used) {
  size_t i = 0;
  while (i < text.size() && IsBlank(text[i])) ++i;
  bool neg = false;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) neg = text[i++] == '-';
  // from_chars takes neither a plus nor the words strtod knows; only digits and a point
  // may follow the sign here.
  if (i >= text.size() || !(std::isdigit(static_cast<unsigned char>(text[i])) || text[i] == '.'))
    return false;
  double out = 0;
  auto r =
      std::from_chars(text.data() + i, text.data() + text.size(), out, std::chars_format::general);
  if (r.ec == std::errc::invalid_argument) return false;
  if (r.ec == std::errc::result_out_of_range) {
    // strtod's answer: infinity above the range, zero below it.
    bool tiny = false;
    for (const char* p = text.data() + i; p < r.ptr; ++p)
      if (*p == 'e' || *p == 'E') tiny = p + 1 < r.ptr && p[1] == '-';
    out = tiny ? 0.0 : HUGE_VAL;
  }
  v = neg ? -out : out;
  if (used) *used = size_t(r.ptr - text.data());
  return true;
}

} // namespace velmora
