#include "edit/divide_cmds.h"

#include "edit/not_ready.h"

namespace velmora {

// The divide and combine code comes with the editor; until then each command says so.

void CombineFeatureCmd(Session& s, int lyr, int /*rec1*/, int /*part1*/, int /*v1*/, int /*v1b*/,
                       int /*lyr2*/, int /*rec2*/, int /*part2*/, int /*v2*/, int /*v2b*/) {
  LogNotAvailable(s, "Combine Feature", lyr);
}

void UncombineFeatureCmd(Session& s, int lyr, int /*rec*/, int /*n*/) {
  LogNotAvailable(s, "UnCombine Feature", lyr);
}

void DivideFeatureCmd(Session& s, int lyr, int /*rec*/, int /*part*/, int /*v1*/, int /*v2*/,
                      int /*n*/) {
  LogNotAvailable(s, "Divide Feature", lyr);
}

void UndivideFeatureCmd(Session& s, int lyr, int /*rec*/, int /*n*/) {
  LogNotAvailable(s, "UnDivide Feature", lyr);
}

} // namespace velmora
