#pragma once
#include "model/session.h"

namespace velmora {

// The user's decimal separator and short date format, from the locale the program runs
// under (setlocale(LC_ALL, "") at start). The separator is the second character of the
// number 5.5 as text; the short date is the locale's date format in the letters d, m and
// y. A locale without its own conventions ("C", "POSIX") leaves `base` as it is.
LocaleSettings UserLocaleSettings(LocaleSettings base = {});

// "%d.%m.%Y" to "dd.mm.yyyy"; "" when the format holds a field the short date can't show.
std::string ShortDateOf(const char* strftimeFormat);

} // namespace velmora
