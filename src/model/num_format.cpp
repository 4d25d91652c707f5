#include "model/num_format.h"

#include <cmath>
#include <cstdio>

namespace velmora {

char ThousandsSep(const Session& s) {
  return s.Locale.DecimalSep == ',' ? '.' : ',';
}

std::string FormatGrouped(const Session& s, double v, int decimals) {
  if (!std::isfinite(v)) return "0";
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.*f", decimals, std::fabs(v));
  std::string digits = buf, frac;
  size_t dot = digits.find('.');
  if (dot != std::string::npos) {
    frac = digits.substr(dot + 1);
    digits.resize(dot);
  }
  std::string out;
  int n = int(digits.size());
  for (int i = 0; i < n; ++i) {
    out += digits[size_t(i)];
    int left = n - 1 - i;
    if (left > 0 && left % 3 == 0) out += ThousandsSep(s);
  }
  if (decimals > 0) out += s.Locale.DecimalSep + frac;
  bool zero = std::string(buf).find_first_not_of("0.") == std::string::npos;
  if (v < 0 && !zero) out = "-" + out;
  return out;
}

} // namespace velmora
