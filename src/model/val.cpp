#include "model/val.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace velmora {

namespace {

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// "&H..." or "&O...": up to 4 digits read as a 16-bit, up to 8 as a 32-bit signed integer.
double RadixVal(const std::string& t, int radix) {
  uint64_t v = 0;
  size_t digits = 0;
  for (size_t i = 2; i < t.size(); ++i) {
    int d;
    char c = t[i];
    if (IsDigit(c))
      d = c - '0';
    else if (c >= 'a' && c <= 'f')
      d = c - 'a' + 10;
    else if (c >= 'A' && c <= 'F')
      d = c - 'A' + 10;
    else
      break;
    if (d >= radix) break;
    v = v * uint64_t(radix) + uint64_t(d);
    if (++digits > 22) break;
  }
  if (digits == 0) return 0;
  if (radix == 16 && digits <= 4) return double(int16_t(uint16_t(v)));
  if (radix == 16 && digits <= 8) return double(int32_t(uint32_t(v)));
  if (radix == 8 && v <= 0xFFFF) return double(int16_t(uint16_t(v)));
  if (radix == 8 && v <= 0xFFFFFFFFull) return double(int32_t(uint32_t(v)));
  return double(v);
}

} // namespace

double Val(const std::string& text) {
  std::string t;
  t.reserve(text.size());
  for (char c : text)
    if (c != ' ' && c != '\t' && c != '\n') t += c;

  if (t.size() >= 2 && t[0] == '&') {
    if (t[1] == 'H' || t[1] == 'h') return RadixVal(t, 16);
    if (t[1] == 'O' || t[1] == 'o') return RadixVal(t, 8);
    return 0;
  }

  // The longest prefix of the form [sign] digits [. digits] [E|D [sign] digits].
  std::string num;
  size_t i = 0;
  if (i < t.size() && (t[i] == '+' || t[i] == '-')) num += t[i++];
  bool any = false;
  while (i < t.size() && IsDigit(t[i])) num += t[i++], any = true;
  if (i < t.size() && t[i] == '.') {
    num += t[i++];
    while (i < t.size() && IsDigit(t[i])) num += t[i++], any = true;
  }
  if (!any) return 0;
  if (i < t.size() && (t[i] == 'e' || t[i] == 'E' || t[i] == 'd' || t[i] == 'D')) {
    size_t j = i + 1;
    std::string ex = "e";
    if (j < t.size() && (t[j] == '+' || t[j] == '-')) ex += t[j++];
    if (j < t.size() && IsDigit(t[j])) {
      while (j < t.size() && IsDigit(t[j])) ex += t[j++];
      num += ex;
    }
  }
  if (num[0] == '+') num.erase(0, 1);
  double v = 0;
  auto [p, ec] = std::from_chars(num.data(), num.data() + num.size(), v);
  (void)p;
  if (ec == std::errc::result_out_of_range) {
    bool tiny = num.find("e-") != std::string::npos;
    bool neg = num[0] == '-';
    if (tiny) return neg ? -0.0 : 0.0;
    return neg ? -std::numeric_limits<double>::infinity() : std::numeric_limits<double>::infinity();
  }
  return v;
}

int32_t ValLong(const std::string& text) {
  double v = std::nearbyint(Val(text)); // the default rounding mode: half to even
  if (!(v > double(std::numeric_limits<int32_t>::min())))
    return std::numeric_limits<int32_t>::min();
  if (v > double(std::numeric_limits<int32_t>::max())) return std::numeric_limits<int32_t>::max();
  return int32_t(v);
}

} // namespace velmora
