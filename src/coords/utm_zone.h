#pragma once
#include <string>

#include "model/angles.h"

namespace velmora {

// The UTM zone of a point, 1 to 60, with the Norway and Svalbard exceptions.
int UTMZone(double lat, double lon);
// The 8-degree latitude band letter, "C" to "X"; "Z" outside 80 S to 84 N.
std::string UTMLetter(double lat);
// Southern half: lat below 0.
bool IsSouth(double lat);
// Central meridian of a zone, radians; the product in whole numbers.
inline double UTMCentralMeridian(int zone) {
  return DegToRad(double(zone * 6 - 183));
}

} // namespace velmora
