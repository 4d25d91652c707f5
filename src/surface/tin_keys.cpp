#include "surface/tin_keys.h"

#include <charconv>
#include <cmath>

namespace velmora {

std::string FormatKey(double v) {
  if (v == 0) v = 0.0; // no "-" for a negative zero
  bool neg = v < 0;
  char buf[512];
  auto r = std::to_chars(buf, buf + sizeof buf, std::fabs(v), std::chars_format::fixed, 25);
  std::string t(buf, r.ptr);
  size_t dot = t.find('.');
  if (dot == std::string::npos) dot = t.size(), t += '.';
  size_t end = t.size();
  while (end > dot + 1 && t[end - 1] == '0') --end;
  t.resize(end);
  if (dot < 20) t.insert(0, 20 - dot, '0');
  return neg ? "-" + t : t;
}

int CompareKeyMag(double a, double b) {
  if (a == b) return 0;
  // Values further apart than a unit of the 25th decimal never share a text.
  if (std::fabs(a - b) < 4e-25) {
    int c = FormatKey(a).compare(FormatKey(b));
    if (c == 0) return 0;
  }
  return a < b ? -1 : 1;
}

RowKeyPart RowKeyY(double y) {
  if (y < 0) return {'+', std::fabs(1 / y)};
  return {'-', y == 0 ? 0.0 : y};
}

RowKeyPart RowKeyX(double x, bool& ok) {
  ok = x != 0;
  if (x < 0) return {'-', -x};
  if (x == 0) return {};
  return {'+', 1 / x};
}

int CompareRowKeyPart(const RowKeyPart& a, const RowKeyPart& b) {
  if (a.Cls != b.Cls) {
    // '-' sorts above '+', and the empty part below both.
    return (unsigned char)a.Cls < (unsigned char)b.Cls ? -1 : 1;
  }
  if (!a.Cls) return 0;
  return CompareKeyMag(a.Mag, b.Mag);
}

} // namespace velmora
