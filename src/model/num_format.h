#pragma once
#include <string>

#include "model/session.h"

namespace velmora {

// A number with grouped thousands and exactly `decimals` decimals, in the session's
// separators: the number formats "###,###,##0.000" and "#,0" of the status text.
std::string FormatGrouped(const Session& s, double v, int decimals);
char ThousandsSep(const Session& s);

} // namespace velmora
