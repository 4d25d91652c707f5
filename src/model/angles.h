#pragma once

namespace velmora {

// The angle conversions of the coordinate routines use this value of pi, not the
// library's: grids computed here must stay what they have always been.
inline constexpr double kCoordPi = 3.14159265358979;

inline double DegToRad(double v) {
  return v / 180 * kCoordPi;
}
inline double RadToDeg(double v) {
  return v / kCoordPi * 180;
}
inline double SecToRad(double v) {
  return v / 180 / 60 / 60 * kCoordPi;
}

} // namespace velmora
