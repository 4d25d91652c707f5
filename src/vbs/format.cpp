#include "vbs/format.h"

#include <cmath>
#include <cstdio>

namespace vbs {

namespace {
const char* const kDays[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                             "Thursday", "Friday", "Saturday"};
const char* const kMonthNames[] = {"January",   "February", "March",    "April",
                                   "May",       "June",     "July",     "August",
                                   "September", "October",  "November", "December"};
} // namespace

std::string WeekdayText(int i, bool abbr) {
  std::string s = kDays[((i % 7) + 7) % 7];
  return abbr ? s.substr(0, 3) : s;
}

std::string MonthText(int i, bool abbr) {
  std::string s = kMonthNames[((i % 12) + 12) % 12];
  return abbr ? s.substr(0, 3) : s;
}

std::string FormatNum(const Conv& c, double v, int digits, int leading, int parens, int group,
                      int kind) {
  if (digits < 0) digits = 2;
  if (digits > 30) digits = 30;
  bool neg = v < 0;
  double a = std::fabs(v);
  char buf[400];
  if (a >= 1e300) a = 1e300;
  std::snprintf(buf, sizeof buf, "%.*f", digits, a);
  std::string t = buf;
  if (std::fabs(std::strtod(buf, nullptr)) == 0) neg = false;
  std::string ip = t, fp;
  size_t dot = t.find('.');
  if (dot != std::string::npos) {
    ip = t.substr(0, dot);
    fp = t.substr(dot + 1);
  }
  char groupChar = c.Dec == ',' ? '.' : ',';
  if (group != 0) {
    std::string g;
    int n = 0;
    for (size_t i = ip.size(); i-- > 0;) {
      g.insert(g.begin(), ip[i]);
      if (++n % 3 == 0 && i > 0) g.insert(g.begin(), groupChar);
    }
    ip = g;
  }
  if (ip == "0" && leading == 0 && !fp.empty()) ip = "";
  std::string r = ip;
  if (!fp.empty()) {
    r += c.Dec;
    r += fp;
  }
  if (kind == 1) r = c.Dec == ',' ? r + " \xE2\x82\xAC" : "$" + r;
  if (kind == 2) r += "%";
  if (neg) r = parens == -1 ? "(" + r + ")" : "-" + r;
  return r;
}

std::string FormatDate(double serial, int fmt) {
  int y, m, d, h, n, s;
  YmdFromDate(serial, y, m, d);
  HmsFromDate(serial, h, n, s);
  char buf[96];
  switch (fmt) {
  case 1: {
    int64_t day = static_cast<int64_t>(std::floor(serial));
    int wd = static_cast<int>(((day % 7) + 7 + 6) % 7);
    std::snprintf(buf, sizeof buf, "%s, %s %d, %d", kDays[wd], kMonthNames[m - 1], d, y);
    return buf;
  }
  case 2:
    std::snprintf(buf, sizeof buf, "%d/%d/%d", m, d, y);
    return buf;
  case 3: {
    int h12 = h % 12 == 0 ? 12 : h % 12;
    std::snprintf(buf, sizeof buf, "%d:%02d:%02d %s", h12, n, s, h < 12 ? "AM" : "PM");
    return buf;
  }
  case 4:
    std::snprintf(buf, sizeof buf, "%02d:%02d", h, n);
    return buf;
  default:
    return DateText(serial);
  }
}

} // namespace vbs
