#pragma once
#include <cstdint>

namespace velmora {

// Colours are packed as 0x00BBGGRR; every colour also exists as three bytes.
using Colour = uint32_t;

struct RGB3 {
  uint8_t R = 0, G = 0, B = 0;
};

inline Colour PackRGB(uint8_t r, uint8_t g, uint8_t b) {
  return Colour(r) | (Colour(g) << 8) | (Colour(b) << 16);
}
inline RGB3 UnpackRGB(Colour c) {
  return RGB3{uint8_t(c & 0xFF), uint8_t((c >> 8) & 0xFF), uint8_t((c >> 16) & 0xFF)};
}

} // namespace velmora
