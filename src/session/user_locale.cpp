#include "session/user_locale.h"

#include <clocale>
#include <cstdio>
#include <cstring>
#include <langinfo.h>

namespace velmora {

namespace {

bool PlainLocale(const char* name) {
  return !name || std::strcmp(name, "C") == 0 || std::strcmp(name, "POSIX") == 0;
}

} // namespace

std::string ShortDateOf(const char* f) {
  if (!f) return "";
  std::string out;
  for (; *f; ++f) {
    if (*f != '%') {
      char c = *f;
      // A literal letter of the three would read as a field.
      if (c == 'd' || c == 'm' || c == 'y' || c == 'D' || c == 'M' || c == 'Y') return "";
      out += c;
      continue;
    }
    ++f;
    while (*f == '-' || *f == '_' || *f == '0' || *f == '^' || *f == '#' || *f == 'E' || *f == 'O')
      ++f;
    switch (*f) {
    case 'd':
      out += "dd";
      break;
    case 'e':
      out += "d";
      break;
    case 'm':
      out += "mm";
      break;
    case 'Y':
      out += "yyyy";
      break;
    case 'y':
      out += "yy";
      break;
    case 'F':
      out += "yyyy-mm-dd";
      break;
    case 'D':
      out += "mm/dd/yy";
      break;
    case '%':
      out += '%';
      break;
    default:
      return ""; // names of months or weekdays, or the end of the text
    }
  }
  return out;
}

LocaleSettings UserLocaleSettings(LocaleSettings base) {
  if (!PlainLocale(std::setlocale(LC_NUMERIC, nullptr))) {
    char buf[16];
    std::snprintf(buf, sizeof buf, "%g", 5.5); // this one is the locale's on purpose
    // One byte between the fives; a separator of several bytes can't be held, "." stays.
    if (std::strlen(buf) == 3 && buf[2] == '5') base.DecimalSep = buf[1];
  }
  if (!PlainLocale(std::setlocale(LC_TIME, nullptr))) {
    std::string d = ShortDateOf(nl_langinfo(D_FMT));
    if (!d.empty()) base.ShortDate = d;
  }
  return base;
}

} // namespace velmora
