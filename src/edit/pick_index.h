#pragma once
#include <vector>

#include "model/session.h"

namespace velmora {

// The records of a layer whose boxes, widened by `margin`, may meet the world box
// (l, b, r, t), in ascending order. Large layers answer from a grid over the boxes, built
// on the first call and again after their records changed; small ones list every record.
void PickCandidates(Session& s, int lyr, double l, double b, double r, double t, double margin,
                    std::vector<int>& out);

} // namespace velmora
