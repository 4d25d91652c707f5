#include "edit/edit_format.h"

#include <cmath>
#include <cstdio>

#include "model/num_format.h"

namespace velmora {

namespace {

std::string Pattern(const Session& s, double v, bool grouped, int minDec, int maxDec) {
  if (!std::isfinite(v)) v = 0;
  char buf[400];
  std::snprintf(buf, sizeof buf, "%.*f", maxDec, std::fabs(v));
  std::string t = buf;
  size_t dot = t.find('.');
  std::string whole = dot == std::string::npos ? t : t.substr(0, dot);
  std::string dec = dot == std::string::npos ? "" : t.substr(dot + 1);
  while (int(dec.size()) > minDec && !dec.empty() && dec.back() == '0') dec.pop_back();
  if (grouped) {
    std::string g;
    for (size_t i = 0; i < whole.size(); ++i) {
      if (i > 0 && (whole.size() - i) % 3 == 0) g += ThousandsSep(s);
      g += whole[i];
    }
    whole = g;
  }
  bool negative = v < 0 && (whole.find_first_not_of("0,. ") != std::string::npos ||
                            dec.find_first_not_of('0') != std::string::npos);
  std::string out = (negative ? "-" : "") + whole;
  if (!dec.empty()) out += s.Locale.DecimalSep + dec;
  return out;
}

} // namespace

std::string FmtGrouped9(const Session& s, double v) {
  return Pattern(s, v, true, 0, 9);
}

std::string FmtPlain9(const Session& s, double v) {
  return Pattern(s, v, false, 0, 9);
}

std::string FmtGroupedFixed9(const Session& s, double v) {
  return Pattern(s, v, true, 9, 9);
}

} // namespace velmora
