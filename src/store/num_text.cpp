// The one way from cell text to number, and the number text of numeric cells.
#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>

#include "store/dbf_internal.h"
#include "store/dbf_store.h"

namespace velmora {

namespace dbf {

namespace {

// A decimal number held exactly: the value is (digits) * 10^exp10, negative if `neg`.
struct DecNum {
  bool neg = false;
  std::string digits; // no leading zeros; empty for zero
  int exp10 = 0;
};

// Reads a number at the start of `t` (after blanks): sign, digits, the decimal point
// `sep`, digits, an exponent. Returns the characters taken, 0 when there is no digit.
size_t ParseNum(std::string_view t, char sep, DecNum& out) {
  size_t i = 0;
  while (i < t.size() && t[i] == ' ') ++i;
  out = DecNum{};
  if (i < t.size() && (t[i] == '-' || t[i] == '+')) out.neg = t[i++] == '-';
  std::string all;
  int fracDigits = 0, seen = 0;
  while (i < t.size() && std::isdigit(uint8_t(t[i]))) all += t[i++], ++seen;
  if (i < t.size() && t[i] == sep) {
    size_t j = i + 1;
    std::string frac;
    while (j < t.size() && std::isdigit(uint8_t(t[j]))) frac += t[j++];
    if (seen > 0 || !frac.empty()) {
      i = j;
      all += frac;
      fracDigits = int(frac.size());
      seen += int(frac.size());
    }
  }
  if (seen == 0) return 0;
  long long exp = 0;
  if (i < t.size() && (t[i] == 'e' || t[i] == 'E')) {
    size_t j = i + 1;
    bool eneg = false;
    if (j < t.size() && (t[j] == '-' || t[j] == '+')) eneg = t[j++] == '-';
    size_t k = j;
    while (k < t.size() && std::isdigit(uint8_t(t[k]))) {
      if (exp < 100000) exp = exp * 10 + (t[k] - '0');
      ++k;
    }
    if (k > j) {
      i = k;
      if (eneg) exp = -exp;
    }
  }
  size_t nz = all.find_first_not_of('0');
  out.digits = nz == std::string::npos ? std::string() : all.substr(nz);
  // Trailing zeros go into the exponent, which keeps the digit string short.
  size_t last = out.digits.find_last_not_of('0');
  int trailing = out.digits.empty() ? 0 : int(out.digits.size() - 1 - last);
  if (trailing) out.digits.resize(out.digits.size() - size_t(trailing));
  out.exp10 = int(std::clamp<long long>(exp - fracDigits + trailing, -100000, 100000));
  if (out.digits.empty()) out.neg = false, out.exp10 = 0;
  return i;
}

// The magnitude of a number is within what a double holds.
bool InDoubleRange(const DecNum& n) {
  return n.digits.empty() || int(n.digits.size()) + n.exp10 <= 308;
}

double ToDouble(const DecNum& n) {
  if (n.digits.empty()) return 0;
  if (int(n.digits.size()) + n.exp10 < -330) return 0;
  std::string t = n.digits + "e" + std::to_string(n.exp10);
  double v = 0;
  std::from_chars(t.data(), t.data() + t.size(), v);
  return n.neg ? -v : v;
}

// Fixed-point text with exactly `decimals` places, rounded half away from zero.
std::string FixedText(const DecNum& n, int decimals, char sep) {
  std::string k; // the value in units of 10^-decimals
  if (n.exp10 >= -decimals) {
    k = n.digits.empty() ? std::string() : n.digits + std::string(size_t(n.exp10 + decimals), '0');
  } else {
    long long cut = -(long long)n.exp10 - decimals; // digits that fall away
    long long keep = (long long)n.digits.size() - cut;
    if (keep >= 0) {
      k = n.digits.substr(0, size_t(keep));
      bool up = keep < (long long)n.digits.size() && n.digits[size_t(keep)] >= '5';
      if (up) {
        int i = int(k.size()) - 1;
        while (i >= 0 && k[size_t(i)] == '9') k[size_t(i--)] = '0';
        if (i < 0)
          k.insert(k.begin(), '1');
        else
          ++k[size_t(i)];
      }
    }
  }
  size_t nz = k.find_first_not_of('0');
  k = nz == std::string::npos ? std::string() : k.substr(nz);
  bool neg = n.neg && !k.empty();
  if (k.size() < size_t(decimals) + 1) k.insert(0, size_t(decimals) + 1 - k.size(), '0');
  std::string out = neg ? "-" : "";
  out += k.substr(0, k.size() - size_t(decimals));
  if (decimals > 0) out += sep + k.substr(k.size() - size_t(decimals));
  return out;
}

// The shortest exact text of a decimal number: no leading or trailing zeros.
std::string PlainText(const DecNum& n, char sep) {
  if (n.digits.empty()) return "0";
  int decimals = std::max(0, -n.exp10);
  std::string t = FixedText(n, decimals, sep);
  return t;
}

std::string WithPointsAs(std::string t, char sep) {
  if (sep != '.') std::replace(t.begin(), t.end(), '.', sep);
  return t;
}

} // namespace

bool IsNumericText(const std::string& text, char sep) {
  std::string t = WithPointsAs(text, sep);
  DecNum n;
  size_t used = ParseNum(t, sep, n);
  if (used == 0) return false;
  while (used < t.size() && t[used] == ' ') ++used;
  return used == t.size() && InDoubleRange(n);
}

std::string FormatDecimals(const std::string& text, char sep, int decimals) {
  if (!IsNumericText(text, sep)) return "";
  DecNum n;
  ParseNum(WithPointsAs(text, sep), sep, n);
  return FixedText(n, decimals, sep);
}

std::string CellNumber(const std::string& cleaned, char sep) {
  DecNum n;
  std::string t = WithPointsAs(cleaned, sep);
  if (ParseNum(t, sep, n) == 0 || !InDoubleRange(n)) n = DecNum{};
  return PlainText(n, '.');
}

std::string DblToText(double v, char sep) {
  if (!std::isfinite(v)) return "0";
  if (v == 0) v = 0; // no "-0"
  char buf[400];
  auto r = std::to_chars(buf, buf + sizeof buf, v, std::chars_format::fixed);
  std::string t = r.ec == std::errc() ? std::string(buf, r.ptr) : std::string("0");
  if (sep != '.') std::replace(t.begin(), t.end(), '.', sep);
  return t;
}

} // namespace dbf

using namespace dbf;

double StrToDbl(const Session& s, const std::string& text) {
  char sep = s.Locale.DecimalSep;
  std::string t = WithPointsAs(text, sep);
  DecNum n;
  // A numeric text converts whole; any other text gives its leading number, or 0.
  if (ParseNum(t, sep, n) == 0 || !InDoubleRange(n)) return 0;
  return ToDouble(n);
}

bool IsNumChar(const Session& s, char c) {
  return std::isdigit(uint8_t(c)) || c == '-' || c == s.Locale.DecimalSep || c == '\b';
}

std::string CleanNumText(const Session& s, const std::string& text) {
  std::string out;
  for (char c : text)
    if (IsNumChar(s, c)) out += c;
  return out.empty() ? std::string("0") : out;
}

} // namespace velmora
