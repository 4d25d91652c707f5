#pragma once
#include <cstdint>
#include <vector>

namespace velmora {

// Where the last crossing test found its point. Kinds tell where the point lies on each
// segment: 1 inside it, 2 at its first vertex, 4 at its second vertex.
struct CrossResult {
  double CrossX = 0, CrossY = 0;
  uint8_t CrossKindB = 0, CrossKindA = 0;
  int32_t HitLyr = 0, HitType = 0, HitFeature = 0, HitPart = 0, HitVertex = 0;
};

// The off-screen picture of one feature, a quick reject for point tests against it: a
// point whose pixel the feature's pen and fill did not reach is far from the feature.
struct RasterMask {
  bool Active = false; // built and usable for MaskLyr, MaskRec
  int32_t MaskLyr = 0, MaskRec = 0;
  double MaskCell = 0;      // world units a pixel
  double Left = 0, Top = 0; // world position of pixel (0, 0)'s corner
  int32_t Width = 0, Height = 0;
  std::vector<uint8_t> Covered; // Width * Height, 1 where the pen or the fill reached
                                // (or a neighbour's did)
};

// State of the location queries.
struct LocationVars {
  CrossResult Cross; // written by the predicates asked for details
  RasterMask Mask;
  bool MaskOn = true; // the session's mask is enabled
};

} // namespace velmora
