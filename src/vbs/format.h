#pragma once
#include <string>

#include "vbs/value.h"

namespace vbs {

// FormatNumber / FormatCurrency / FormatPercent: `kind` 0, 1, 2. Tri-states are -2 default,
// -1 true, 0 false; `digits` -1 is the default of two.
std::string FormatNum(const Conv& c, double v, int digits, int leading, int parens, int group,
                      int kind);
// FormatDateTime with vbGeneralDate ... vbShortTime.
std::string FormatDate(double serial, int fmt);
std::string WeekdayText(int index0Sunday, bool abbr);
std::string MonthText(int index0, bool abbr);

} // namespace vbs
