#include "edit/divide_cmds.h"

namespace velmora {

// The divide and combine code is not written yet; the commands parse and do nothing.

void CombineFeatureCmd(Session& /*s*/, int /*lyr*/, int /*rec1*/, int /*part1*/, int /*v1*/,
                       int /*v1b*/, int /*lyr2*/, int /*rec2*/, int /*part2*/, int /*v2*/,
                       int /*v2b*/) {}

void UncombineFeatureCmd(Session& /*s*/, int /*lyr*/, int /*rec*/, int /*n*/) {}

void DivideFeatureCmd(Session& /*s*/, int /*lyr*/, int /*rec*/, int /*part*/, int /*v1*/,
                      int /*v2*/, int /*n*/) {}

void UndivideFeatureCmd(Session& /*s*/, int /*lyr*/, int /*rec*/, int /*n*/) {}

} // namespace velmora
