#include "vbs/value.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

namespace vbs {

void Throw(int number, std::string description) {
  Error e;
  e.Number = number;
  e.Description = description.empty() ? ErrorText(number) : std::move(description);
  throw e;
}

std::string ErrorText(int n) {
  switch (n) {
  case 5:
    return "Invalid procedure call or argument";
  case 6:
    return "Overflow";
  case 7:
    return "Out of memory";
  case 9:
    return "Subscript out of range";
  case 10:
    return "This array is fixed or temporarily locked";
  case 11:
    return "Division by zero";
  case 13:
    return "Type mismatch";
  case 14:
    return "Out of string space";
  case 28:
    return "Out of stack space";
  case 35:
    return "Sub or Function not defined";
  case 51:
    return "Internal error";
  case 91:
    return "Object variable not set";
  case 92:
    return "For loop not initialized";
  case 94:
    return "Invalid use of Null";
  case 424:
    return "Object required";
  case 429:
    return "ActiveX component can't create object";
  case 438:
    return "Object doesn't support this property or method";
  case 440:
    return "Automation error";
  case 450:
    return "Wrong number of arguments or invalid property assignment";
  case 451:
    return "Object not a collection";
  case 457:
    return "This key is already associated with an element of this collection";
  case 500:
    return "Variable is undefined";
  case 501:
    return "Illegal assignment";
  case 502:
    return "Object not safe for scripting";
  case 505:
    return "Invalid or unqualified reference";
  case 506:
    return "Class not defined";
  case 1002:
    return "Syntax error";
  case 1005:
    return "Expected '('";
  case 1006:
    return "Expected ')'";
  case 1010:
    return "Expected identifier";
  case 1011:
    return "Expected '='";
  case 1013:
    return "Invalid number";
  case 1017:
    return "Expected 'Then'";
  case 1018:
    return "Expected 'End'";
  case 1024:
    return "Expected statement";
  case 1025:
    return "Expected end of statement";
  case 1032:
    return "Invalid character";
  case 1033:
    return "Unterminated string constant";
  case 1041:
    return "Name redefined";
  case 1044:
    return "Cannot use parentheses when calling a Sub";
  case 1052:
    return "Cannot have multiple default property/method in a Class";
  case 5017:
    return "Syntax error in regular expression";
  case 5020:
    return "Expected ')' in regular expression";
  case 32811:
    return "Element not found";
  default:
    return "Unknown runtime error";
  }
}

std::string ToLower(std::string_view s) {
  std::string r(s);
  for (char& c : r)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return r;
}

size_t Array::Index(const std::vector<int64_t>& idx) const {
  if (idx.size() != UBound.size()) Throw(9);
  size_t off = 0, mul = 1;
  for (size_t k = 0; k < idx.size(); ++k) {
    if (idx[k] < 0 || idx[k] > UBound[k]) Throw(9);
    off += static_cast<size_t>(idx[k]) * mul;
    mul *= static_cast<size_t>(UBound[k] + 1);
  }
  return off;
}

double RoundEven(double v) {
  return std::nearbyint(v);
}

// ---- dates: days from 1899-12-30, time as the fraction (negative days keep a positive fraction)
namespace {
int64_t DaysFromCivil(int64_t y, int64_t m, int64_t d) {
  y -= m <= 2;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const int64_t yoe = y - era * 400;
  const int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468;
}
void CivilFromDays(int64_t z, int& y, int& m, int& d) {
  z += 719468;
  const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const int64_t doe = z - era * 146097;
  const int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  int64_t yy = yoe + era * 400;
  const int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const int64_t mp = (5 * doy + 2) / 153;
  d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  y = static_cast<int>(yy + (m <= 2));
}
const int64_t kEpoch = DaysFromCivil(1899, 12, 30);
} // namespace

double DateFromYmd(int64_t y, int64_t m, int64_t d) {
  // months outside 1..12 roll the year, as DateSerial does
  int64_t mm = m - 1;
  y += mm >= 0 ? mm / 12 : -((11 - mm) / 12);
  mm = ((mm % 12) + 12) % 12;
  return static_cast<double>(DaysFromCivil(y, mm + 1, 1) - kEpoch + (d - 1));
}

void YmdFromDate(double serial, int& y, int& m, int& d) {
  double day = std::floor(serial);
  if (serial < 0 && serial != day) day = std::ceil(serial); // -1.5: day -1, time 0.5
  CivilFromDays(static_cast<int64_t>(day) + kEpoch, y, m, d);
}

void HmsFromDate(double serial, int& h, int& n, int& sec) {
  double frac = std::fabs(serial - std::trunc(serial));
  long long secs = std::llround(frac * 86400.0);
  if (secs >= 86400) secs = 86399;
  h = static_cast<int>(secs / 3600);
  n = static_cast<int>((secs / 60) % 60);
  sec = static_cast<int>(secs % 60);
}

std::string DateText(double serial) {
  int y, m, d, h, n, sc;
  YmdFromDate(serial, y, m, d);
  HmsFromDate(serial, h, n, sc);
  char buf[64];
  bool hasTime = (h | n | sc) != 0;
  bool hasDate = std::trunc(serial) != 0;
  std::string r;
  if (hasDate || !hasTime) {
    std::snprintf(buf, sizeof buf, "%d/%d/%d", m, d, y);
    r = buf;
  }
  if (hasTime) {
    int h12 = h % 12 == 0 ? 12 : h % 12;
    std::snprintf(buf, sizeof buf, "%d:%02d:%02d %s", h12, n, sc, h < 12 ? "AM" : "PM");
    if (!r.empty()) r += ' ';
    r += buf;
  }
  return r;
}

namespace {
const char* const kMonths[] = {"january",   "february", "march",    "april",
                               "may",       "june",     "july",     "august",
                               "september", "october",  "november", "december"};
}

bool ParseDateText(std::string_view text, double& serial) {
  // numbers, month names, separators / - . , and a time with ':' and AM/PM
  std::vector<int> nums;
  std::vector<char> seps;
  int monthName = 0;
  int tnums[3] = {0, 0, 0};
  int tcount = 0;
  int ampm = 0;
  bool hasTime = false;
  size_t i = 0, n = text.size();
  while (i < n) {
    char c = text[i];
    if (c >= '0' && c <= '9') {
      long v = 0;
      size_t st = i;
      while (i < n && text[i] >= '0' && text[i] <= '9') {
        v = v * 10 + (text[i] - '0');
        if (v > 100000) return false;
        ++i;
      }
      if (i < n && text[i] == ':') {
        hasTime = true;
      }
      if (hasTime && tcount < 3 && (i < n ? text[i] == ':' || tcount > 0 : tcount > 0)) {
        tnums[tcount++] = static_cast<int>(v);
        if (i < n && text[i] == ':') ++i;
        continue;
      }
      (void)st;
      nums.push_back(static_cast<int>(v));
      continue;
    }
    if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z')) {
      size_t st = i;
      while (i < n && ((text[i] >= 'a' && text[i] <= 'z') || (text[i] >= 'A' && text[i] <= 'Z')))
        ++i;
      std::string w = ToLower(text.substr(st, i - st));
      if (w == "am" || w == "a") {
        ampm = 1;
        continue;
      }
      if (w == "pm" || w == "p") {
        ampm = 2;
        continue;
      }
      bool found = false;
      for (int k = 0; k < 12; ++k)
        if (w.size() >= 3 && std::strncmp(kMonths[k], w.c_str(), w.size()) == 0) {
          monthName = k + 1;
          found = true;
        }
      if (!found) return false;
      continue;
    }
    if (c == '/' || c == '-' || c == '.' || c == ',' || c == ' ' || c == '\t') {
      if (c != ' ' && c != '\t') seps.push_back(c);
      ++i;
      continue;
    }
    return false;
  }
  double day = 0;
  int y, m, d;
  if (monthName) {
    if (nums.size() == 2) {
      // "May 5, 2020" or "5 May 2020"
      d = nums[0] <= 31 ? nums[0] : nums[1];
      y = nums[0] <= 31 ? nums[1] : nums[0];
    } else if (nums.size() == 1) {
      d = nums[0];
      y = 2000;
    } else {
      return false;
    }
    m = monthName;
  } else if (nums.size() == 3) {
    if (nums[0] > 31) {
      y = nums[0];
      m = nums[1];
      d = nums[2];
    } else if (!seps.empty() && seps[0] == '.') {
      d = nums[0];
      m = nums[1];
      y = nums[2];
    } else {
      m = nums[0];
      d = nums[1];
      y = nums[2];
      if (m > 12 && d <= 12) std::swap(m, d);
    }
  } else if (nums.size() == 2) {
    m = nums[0];
    d = nums[1];
    y = 2000;
  } else if (nums.empty() && hasTime) {
    m = 12;
    d = 30;
    y = 1899;
  } else {
    return false;
  }
  if (nums.size() == 3 && y < 100 && !(nums[0] > 31)) y += y < 30 ? 2000 : 1900;
  if (m < 1 || m > 12 || d < 1 || d > 31 || y < 100 || y > 9999) return false;
  int cy, cm, cd;
  day = DateFromYmd(y, m, d);
  YmdFromDate(day, cy, cm, cd);
  if (cd != d) return false;
  double t = 0;
  if (hasTime) {
    int h = tnums[0];
    if (ampm == 2 && h < 12) h += 12;
    if (ampm == 1 && h == 12) h = 0;
    if (h > 23 || tnums[1] > 59 || tnums[2] > 59) return false;
    t = (h * 3600 + tnums[1] * 60 + tnums[2]) / 86400.0;
  } else if (ampm) {
    return false;
  }
  serial = day >= 0 ? day + t : day - t;
  return true;
}

// ---- conversions
bool Conv::ParseNumber(std::string_view text, double& out) const {
  size_t i = 0, n = text.size();
  while (i < n && (text[i] == ' ' || text[i] == '\t')) ++i;
  while (n > i && (text[n - 1] == ' ' || text[n - 1] == '\t')) --n;
  if (i >= n) return false;
  if (text[i] == '&' && i + 1 < n) {
    char k = text[i + 1];
    int base = (k == 'h' || k == 'H') ? 16 : (k == 'o' || k == 'O') ? 8 : 0;
    if (!base) return false;
    uint64_t v = 0;
    if (i + 2 >= n) return false;
    for (size_t j = i + 2; j < n; ++j) {
      char c = text[j];
      int dg = (c >= '0' && c <= '9')   ? c - '0'
               : (c >= 'a' && c <= 'f') ? c - 'a' + 10
               : (c >= 'A' && c <= 'F') ? c - 'A' + 10
                                        : 99;
      if (dg >= base) return false;
      v = v * base + dg;
      if (v > 0xFFFFFFFFull) return false;
    }
    out = v <= 0xFFFF && n - i - 2 <= 4 ? static_cast<int16_t>(v)
                                        : static_cast<int32_t>(static_cast<uint32_t>(v));
    return true;
  }
  std::string buf;
  buf.reserve(n - i);
  bool digit = false, exp = false, dot = false;
  size_t j = i;
  if (text[j] == '+' || text[j] == '-') buf += text[j++];
  for (; j < n; ++j) {
    char c = text[j];
    if (c >= '0' && c <= '9') {
      buf += c;
      digit = true;
    } else if (c == Dec && !dot && !exp) {
      buf += '.';
      dot = true;
    } else if ((c == 'e' || c == 'E') && digit && !exp) {
      buf += 'e';
      exp = true;
      if (j + 1 < n && (text[j + 1] == '+' || text[j + 1] == '-')) buf += text[++j];
      if (j + 1 >= n) return false;
    } else if ((c == ',' || c == '.') && c != Dec && !dot && !exp) {
      continue; // group separator
    } else {
      return false;
    }
  }
  if (!digit) return false;
  // parse with '.' independent of the C locale
  double v = 0;
  {
    size_t k = 0;
    bool neg = false;
    if (buf[k] == '+' || buf[k] == '-') neg = buf[k++] == '-';
    double mant = 0;
    int scale = 0;
    bool frac = false;
    int digits = 0;
    for (; k < buf.size() && buf[k] != 'e'; ++k) {
      if (buf[k] == '.') {
        frac = true;
        continue;
      }
      if (digits < 18) {
        mant = mant * 10 + (buf[k] - '0');
        if (mant > 0) ++digits;
        if (frac) --scale;
      } else if (!frac) {
        ++scale;
      }
    }
    int e = 0;
    if (k < buf.size()) {
      ++k;
      bool eneg = false;
      if (k < buf.size() && (buf[k] == '+' || buf[k] == '-')) eneg = buf[k++] == '-';
      for (; k < buf.size(); ++k) e = std::min(e * 10 + (buf[k] - '0'), 100000);
      if (eneg) e = -e;
    }
    int total = scale + e;
    v = mant;
    if (total > 0)
      v *= std::pow(10.0, total);
    else if (total < 0)
      v /= std::pow(10.0, -total);
    if (neg) v = -v;
  }
  if (!std::isfinite(v)) return false;
  out = v;
  return true;
}

namespace {
std::string FmtG(double v, int prec, char dec) {
  if (v == 0) return "0";
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.*G", prec, v);
  std::string r = buf;
  // exponent as E+nn / E-nn; the separator is the session's
  size_t e = r.find('E');
  std::string mant = e == std::string::npos ? r : r.substr(0, e);
  std::string ex = e == std::string::npos ? "" : r.substr(e);
  for (char& c : mant)
    if (c == '.' || c == ',') c = dec;
  if (!ex.empty()) {
    char sign = ex[1];
    std::string digs = ex.substr(2);
    while (digs.size() > 2 && digs[0] == '0') digs.erase(0, 1);
    ex = std::string("E") + sign + digs;
  }
  return mant + ex;
}
} // namespace

std::string Conv::NumText(const Value& v) const {
  switch (v.t) {
  case VT::Integer:
  case VT::Long:
  case VT::Byte:
    return std::to_string(v.i);
  case VT::Boolean:
    return v.i ? "True" : "False";
  case VT::Single:
    return FmtG(v.d, 7, Dec);
  case VT::Double:
    return FmtG(v.d, 15, Dec);
  case VT::Currency: {
    int64_t a = v.i < 0 ? -v.i : v.i;
    std::string r = (v.i < 0 ? "-" : "") + std::to_string(a / 10000);
    int64_t f = a % 10000;
    if (f) {
      char buf[8];
      std::snprintf(buf, sizeof buf, "%04lld", static_cast<long long>(f));
      std::string fs = buf;
      while (!fs.empty() && fs.back() == '0') fs.pop_back();
      r += Dec;
      r += fs;
    }
    return r;
  }
  case VT::Date:
    return DateText(v.d);
  default:
    return "";
  }
}

std::string Conv::ToStr(const Value& v) const {
  switch (v.t) {
  case VT::String:
    return v.s;
  case VT::Empty:
    return "";
  case VT::Null:
    Throw(94);
  case VT::Error:
    return "Error " + std::to_string(v.i);
  case VT::Object:
  case VT::Array:
    Throw(13);
  default:
    return NumText(v);
  }
}

double Conv::ToDouble(const Value& v) const {
  switch (v.t) {
  case VT::Empty:
    return 0;
  case VT::Integer:
  case VT::Long:
  case VT::Byte:
  case VT::Boolean:
    return static_cast<double>(v.i);
  case VT::Currency:
    return static_cast<double>(v.i) / 10000.0;
  case VT::Single:
  case VT::Double:
  case VT::Date:
    return v.d;
  case VT::String: {
    double d;
    if (ParseNumber(v.s, d)) return d;
    if (ParseDateText(v.s, d)) return d;
    Throw(13);
  }
  case VT::Null:
    Throw(94);
  default:
    Throw(13);
  }
}

int64_t Conv::ToLong(const Value& v) const {
  if (v.t == VT::Integer || v.t == VT::Long || v.t == VT::Byte || v.t == VT::Boolean) return v.i;
  double d = RoundEven(ToDouble(v));
  if (!(d >= -2147483648.0 && d <= 2147483647.0)) Throw(6);
  return static_cast<int64_t>(d);
}

int64_t Conv::ToInteger(const Value& v) const {
  int64_t l = ToLong(v);
  if (l < -32768 || l > 32767) Throw(6);
  return l;
}

bool Conv::ToBool(const Value& v) const {
  switch (v.t) {
  case VT::Boolean:
  case VT::Integer:
  case VT::Long:
  case VT::Byte:
  case VT::Currency:
    return v.i != 0;
  case VT::Empty:
    return false;
  case VT::String: {
    std::string l = ToLower(v.s);
    if (l == "true") return true;
    if (l == "false") return false;
    return ToDouble(v) != 0;
  }
  case VT::Null:
    Throw(94);
  default:
    return ToDouble(v) != 0;
  }
}

double Conv::ToDate(const Value& v) const {
  if (v.t == VT::String) {
    double d;
    if (ParseDateText(v.s, d)) return d;
    if (ParseNumber(v.s, d)) return d;
    Throw(13);
  }
  return ToDouble(v);
}

Value Conv::ToNumeric(const Value& v) const {
  switch (v.t) {
  case VT::Empty:
    return Value::Int(0);
  case VT::Boolean:
    return Value::Int(v.i);
  case VT::String: {
    double d;
    if (ParseNumber(v.s, d)) return Value::Dbl(d);
    Throw(13);
  }
  case VT::Integer:
  case VT::Long:
  case VT::Byte:
  case VT::Single:
  case VT::Double:
  case VT::Currency:
  case VT::Date:
  case VT::Null:
    return v;
  default:
    Throw(13);
  }
}

} // namespace vbs
