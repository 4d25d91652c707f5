#pragma once
#include <string>

#include "model/session.h"

namespace velmora {

// Number texts of the editor's log lines, in the session's separators:
// "###,###,###,##0.#########" (grouped, up to nine decimals), "0.#########" (plain, up
// to nine) and "###,###,###,##0.000000000" (grouped, nine).
std::string FmtGrouped9(const Session& s, double v);
std::string FmtPlain9(const Session& s, double v);
std::string FmtGroupedFixed9(const Session& s, double v);

} // namespace velmora
