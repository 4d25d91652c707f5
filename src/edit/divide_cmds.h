#pragma once
#include "model/session.h"

namespace velmora {

// The divide and combine commands of the command language, as the interpreter hands them
// on after reading their tokens and finding the layer. Records above RecCount of the named
// layer never reach these.

// Joins feature rec1 of `lyr` at (part1, v1, v1b) with feature rec2 of layer number `lyr2`
// at (part2, v2, v2b); the "b" vertices are 0 for lines.
void CombineFeatureCmd(Session& s, int lyr, int rec1, int part1, int v1, int v1b, int lyr2,
                       int rec2, int part2, int v2, int v2b);
// Reverses a combine: the feature `rec` is split again, `n` names the other feature.
void UncombineFeatureCmd(Session& s, int lyr, int rec, int n);
// Cuts feature `rec` at (part, v1, v2) into itself and the new feature `n`.
void DivideFeatureCmd(Session& s, int lyr, int rec, int part, int v1, int v2, int n);
// Reverses a divide: feature `n` goes back into feature `rec`.
void UndivideFeatureCmd(Session& s, int lyr, int rec, int n);

} // namespace velmora
