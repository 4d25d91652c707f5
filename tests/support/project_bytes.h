#pragma once
// Project files composed byte by byte from the file layout, for tests that must not lean on
// the program's own writer.
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace velmora::test {

struct Bytes {
  std::string b;
  Bytes& U8(uint8_t v) {
    b += char(v);
    return *this;
  }
  Bytes& I32(int32_t v) {
    for (int i = 0; i < 4; ++i) b += char(uint32_t(v) >> (8 * i));
    return *this;
  }
  Bytes& F64(double v) {
    uint64_t u;
    std::memcpy(&u, &v, 8);
    for (int i = 0; i < 8; ++i) b += char(u >> (8 * i));
    return *this;
  }
  Bytes& F32(float v) {
    uint32_t u;
    std::memcpy(&u, &v, 4);
    return I32(int32_t(u));
  }
  Bytes& Str(const std::string& s) {
    I32(int32_t(s.size()));
    b += s;
    return *this;
  }
  Bytes& Rgb(uint8_t r, uint8_t g, uint8_t bl) { return U8(r).U8(g).U8(bl); }
};

// The head: version, count, 8 reserved bytes, view size, window, and the map bytes the
// version has (none at 1.17, MapUnit up to 3.6, all eight above).
inline Bytes ProjHead(double version, int32_t count, double left, double top, double right,
                      double bottom, const std::vector<uint8_t>& units = {1, 0, 36, 0, 1, 23, 1, 0},
                      int32_t viewW = 640, int32_t viewH = 480) {
  Bytes b;
  b.F64(version).I32(count);
  for (int i = 0; i < 8; ++i) b.U8(uint8_t(0xA0 + i));
  b.I32(viewW).I32(viewH).F64(left).F64(top).F64(right).F64(bottom);
  size_t n = version > 3.6 ? 8 : version > 1.17 ? 1 : 0;
  for (size_t i = 0; i < n; ++i) b.U8(units[i]);
  return b;
}

// What a test varies in a layer; the rest is fixed and distinct per item.
struct RowSpec {
  std::string name = "Roads layer", path;
  int32_t selCount = 2;
  std::vector<uint8_t> sel = {0x02, 0x00}; // the reader takes round((selCount+7)/8)+1 bytes
  uint8_t visible = 1;
  int32_t cfName = 3;
  std::vector<std::string> classValues = {"", "A"}; // class count + 1 values (from 3.9)
  float extent[4] = {0, 0, 100, 100};               // left, bottom, right, top
};

inline void ProjRow(Bytes& b, double v, const RowSpec& r) {
  b.Str(r.name).Str(r.path).I32(r.selCount);
  for (uint8_t x : r.sel) b.U8(x);
  b.U8(r.visible).U8(0).F64(0).F64(0).U8(1).U8(4);
  size_t classes = 1;
  if (v >= 3.9) {
    b.I32(r.cfName).I32(int32_t(r.classValues.size()) - 1);
    classes = r.classValues.size();
  }
  for (size_t c = 0; c < classes; ++c) {
    b.Rgb(uint8_t(10 + c), 20, 30).Rgb(255, 0, 0).U8(13).U8(0).U8(uint8_t(1 + c)).U8(0);
    if (v >= 3.9) b.Str(r.classValues[c]);
  }
  b.U8(1).Rgb(40, 41, 42).Rgb(43, 44, 45).U8(13).U8(1).U8(2).U8(3);       // select
  b.U8(1).Rgb(50, 51, 52).Rgb(53, 54, 55).U8(13).U8(2).U8(7).U8(3).U8(4); // edit
  b.U8(1).I32(2).Str("Arial").U8(1).U8(0).U8(12);                         // labels
  if (v >= 3.91) b.Rgb(60, 61, 62);
  if (v >= 4.0) b.U8(1).U8(1).F64(25000);
  b.U8(1).F64(100).F64(5000);                                              // label scale
  b.U8(1).I32(4).Rgb(70, 71, 72).Rgb(73, 74, 75).U8(13).U8(0).U8(5).U8(1); // network
  b.U8(1).I32(5).U8(1).Str("viewer");                                      // hyperlink
  b.U8(1).I32(30).I32(6).U8(1).U8(0);                                      // height
  for (float e : r.extent) b.F32(e);
  b.U8(2).Str("x = 1").Str("http://example.org/s.vbs");
}

// The tail: one user coordinate record in each of the two blocks.
inline void ProjTail(Bytes& b, bool withTrans = true) {
  b.I32(1).Str("My Grid").Str("My Spheroid");
  for (double d : {6378137.0, 6356752.314245, 298.257223563, 500000.0, 0.0, 33.0, 0.9996, 0.0})
    b.F64(d);
  if (!withTrans) return;
  b.I32(1);
  for (double d : {-100.0, -200.0, 300.0, 1.5, -2.5, 0.5, 3.25}) b.F64(d);
}

} // namespace velmora::test
