#pragma once
// Byte order of the shapefile words: big-endian file code, lengths and record headers,
// little-endian everything else.
#include <bit>
#include <cstdint>
#include <cstring>

#include "model/shp_types.h"

namespace velmora::shpio {

static_assert(std::endian::native == std::endian::little, "vertex blocks are copied as they lie");

inline int32_t LE32(const uint8_t* p) {
  int32_t v;
  std::memcpy(&v, p, 4);
  return v;
}
inline int32_t BE32(const uint8_t* p) {
  return int32_t(__builtin_bswap32(uint32_t(LE32(p))));
}
inline double F64(const uint8_t* p) {
  double v;
  std::memcpy(&v, p, 8);
  return v;
}
inline void PutLE32(uint8_t* p, int32_t v) {
  std::memcpy(p, &v, 4);
}
inline void PutBE32(uint8_t* p, int32_t v) {
  PutLE32(p, int32_t(__builtin_bswap32(uint32_t(v))));
}
inline void PutF64(uint8_t* p, double v) {
  std::memcpy(p, &v, 8);
}

constexpr int kHeaderBytes = 100;
constexpr int32_t kFileCode = 9994;

inline ShpMainHeader DecodeHeader(const uint8_t* p) {
  ShpMainHeader h;
  h.FileCode = BE32(p);
  for (int i = 0; i < 5; ++i) h.Unused[size_t(i)] = BE32(p + 4 + 4 * i);
  h.FileLength = BE32(p + 24);
  h.Version = LE32(p + 28);
  h.ShapeType = LE32(p + 32);
  h.Xmin = F64(p + 36);
  h.Ymin = F64(p + 44);
  h.Xmax = F64(p + 52);
  h.Ymax = F64(p + 60);
  h.Zmin = F64(p + 68);
  h.Zmax = F64(p + 76);
  h.Mmin = F64(p + 84);
  h.Mmax = F64(p + 92);
  return h;
}

inline void EncodeHeader(const ShpMainHeader& h, uint8_t* p) {
  PutBE32(p, h.FileCode);
  for (int i = 0; i < 5; ++i) PutBE32(p + 4 + 4 * i, h.Unused[size_t(i)]);
  PutBE32(p + 24, h.FileLength);
  PutLE32(p + 28, h.Version);
  PutLE32(p + 32, h.ShapeType);
  PutF64(p + 36, h.Xmin);
  PutF64(p + 44, h.Ymin);
  PutF64(p + 52, h.Xmax);
  PutF64(p + 60, h.Ymax);
  PutF64(p + 68, h.Zmin);
  PutF64(p + 76, h.Zmax);
  PutF64(p + 84, h.Mmin);
  PutF64(p + 92, h.Mmax);
}

// Type families.
inline bool IsLineLayout(int t) { // PolyLine layout: lines, polygons, frames, masks
  return t == 3 || t == 5 || t == 13 || t == 15 || t == 23 || t == 25 || t == 99 || t == 100;
}
inline bool IsMultiPoint(int t) {
  return t == 8 || t == 18 || t == 28;
}
inline bool IsPoint(int t) {
  return t == 1 || t == 11 || t == 21;
}
inline bool HasZ(int t) {
  return t == 11 || t == 13 || t == 15 || t == 18 || t == 31;
}
inline bool HasM(int t) {
  return HasZ(t) || t == 21 || t == 23 || t == 25 || t == 28;
}

} // namespace velmora::shpio
