#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace velmora {

// One point of a surface: X and Y scaled by TinScale, Z in single precision.
struct TinPoint {
  double X = 0, Y = 0;
  float Z = 0;
};

// Three indices into TinPoints (1-based).
struct TinTri {
  int32_t A = 0, B = 0, C = 0;
};

// A triangle in the list of the contour cut, ascending by its lowest Z.
struct TriIndex {
  uint8_t MaxCorner = 0, MinCorner = 0; // 1 .. 3
  int32_t NextTri = 0;                  // 0 ends the list
};

struct TriBucket {
  int32_t First = 0, Last = 0;
};

struct ContourSeg {
  int16_t Unused = 0;
  double X1 = 0, Y1 = 0, X2 = 0, Y2 = 0;
};

// The working arrays of the surface functions, valid during one run. They are shared by
// every surface function, so only one of them runs at a time (Busy).
struct SurfaceState {
  bool Busy = false;
  bool Err = false;
  std::vector<TinPoint> TinPoints; // index 0 unused
  int32_t TinPointCount = 0;
  std::vector<TinTri> TinTris; // index 0 unused
  int32_t TinTriCount = 0;
  double TinScale = 1.0;
  int32_t TinMinX = 0, TinMinY = 0, TinMaxX = 0, TinMaxY = 0;
  double TinMinZ = 0, TinMaxZ = 0;
  int16_t TinNotGrid = 0;
  bool BoundsSet = false;
  double LastX = 0, LastY = 0;
  std::vector<TriIndex> TinTriIndex;   // index 0 is the list head
  std::vector<ContourSeg> ContourSegs; // index 0 unused
  int32_t ContourSegCount = 0;
};

} // namespace velmora
