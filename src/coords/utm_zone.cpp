#include "coords/utm_zone.h"

#include <cmath>

#include "model/angles.h"

namespace velmora {

int UTMZone(double lat, double lon) {
  double l = (lon + 180) - std::floor((lon + 180) / 360) * 360 - 180;
  int zone = int(std::floor((l + 180) / 6)) + 1;
  if (lat >= 56 && lat < 64 && l >= 3 && l < 12) return 32;
  if (lat >= 72 && lat < 84) {
    if (l >= 0 && l < 9) return 31;
    if (l >= 9 && l < 21) return 33;
    if (l >= 21 && l < 33) return 35;
    if (l >= 33 && l < 42) return 37;
  }
  return zone;
}

std::string UTMLetter(double lat) {
  static constexpr char kBands[] = "CDEFGHJKLMNPQRSTUVW";
  if (lat >= 72 && lat <= 84) return "X";
  if (lat >= -80 && lat < 72) return std::string(1, kBands[int(std::floor((lat + 80) / 8))]);
  return "Z";
}

bool IsSouth(double lat) {
  return lat < 0;
}

} // namespace velmora
