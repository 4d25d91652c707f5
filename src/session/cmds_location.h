#pragma once
#include "model/session.h"

namespace velmora {

// FIND LOCATION <findPath> <method> <criteria> <relation> <refPath> <refSelectedOnly 0|1>
//               <tolerance> [<field>,<field>...]
int RunFindLocationCmd(Session& s);

} // namespace velmora
