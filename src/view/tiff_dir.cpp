#include "view/tiff_dir.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>

#include "model/file_util.h"

namespace velmora {

namespace {

struct File {
  std::FILE* f = nullptr;
  uint64_t size = 0;
  ~File() {
    if (f) std::fclose(f);
  }
  bool Open(const std::string& path) {
    f = std::fopen(NativePath(path).c_str(), "rb");
    if (!f) return false;
    std::fseek(f, 0, SEEK_END);
    long n = std::ftell(f);
    size = n < 0 ? 0 : uint64_t(n);
    return true;
  }
  // Reads `n` bytes at `at`; false when they lie outside the file.
  bool ReadAt(uint64_t at, void* buf, uint64_t n) {
    if (at > size || n > size - at) return false;
    if (std::fseek(f, long(at), SEEK_SET) != 0) return false;
    return n == 0 || std::fread(buf, 1, n, f) == n;
  }
};

uint16_t U16(const uint8_t* p) {
  return uint16_t(p[0] | p[1] << 8);
}
uint32_t U32(const uint8_t* p) {
  return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
}
double F64(const uint8_t* p) {
  double d;
  std::memcpy(&d, p, 8);
  return d;
}

struct Entry {
  uint16_t tag, type;
  uint32_t count;
  uint8_t value[4];
};

// The bytes of an entry's values: inline when they fit in four bytes, else at the offset.
bool EntryBytes(File& f, const Entry& e, size_t each, std::vector<uint8_t>& out, uint64_t limit) {
  uint64_t n = uint64_t(e.count) * each;
  if (n > limit || n > f.size) return false;
  out.resize(n);
  if (n <= 4) {
    std::memcpy(out.data(), e.value, n);
    return true;
  }
  return f.ReadAt(U32(e.value), out.data(), n);
}

uint32_t Scalar(const Entry& e) {
  return e.type == 3 ? U16(e.value) : U32(e.value);
}

std::vector<uint32_t> Longs(File& f, const Entry& e) {
  std::vector<uint8_t> bytes;
  size_t each = e.type == 3 ? 2 : 4;
  if (!EntryBytes(f, e, each, bytes, f.size)) return {0};
  std::vector<uint32_t> v(e.count);
  for (uint32_t i = 0; i < e.count; ++i) v[i] = each == 2 ? U16(&bytes[i * 2]) : U32(&bytes[i * 4]);
  return v.empty() ? std::vector<uint32_t>{0} : v;
}

std::string Text(File& f, const Entry& e) {
  std::vector<uint8_t> bytes;
  if (!EntryBytes(f, e, 1, bytes, 1 << 20)) return "";
  std::string s(bytes.begin(), bytes.end());
  while (!s.empty() && s.back() == '\0') s.pop_back();
  return s;
}

double Rational(File& f, const Entry& e) {
  uint8_t b[8];
  if (!f.ReadAt(U32(e.value), b, 8) || U32(b + 4) == 0) return 0;
  return double(U32(b)) / U32(b + 4);
}

void ReadDoubles(File& f, const Entry& e, double* out, int n) {
  uint8_t b[48];
  if (e.count < uint32_t(n) || !f.ReadAt(U32(e.value), b, uint64_t(n) * 8)) return;
  for (int i = 0; i < n; ++i) out[i] = F64(b + 8 * i);
}

void ReadTiffDir(TiffState& t, File& f) {
  uint8_t hdr[8];
  if (!f.ReadAt(0, hdr, 8) || hdr[2] != 42) return; // little-endian only
  uint32_t dir = U32(hdr + 4);
  uint8_t cnt[2];
  if (!f.ReadAt(dir, cnt, 2)) return;
  uint16_t n = U16(cnt);
  for (uint16_t i = 0; i < n; ++i) {
    uint8_t raw[12];
    if (!f.ReadAt(uint64_t(dir) + 2 + 12 * uint64_t(i), raw, 12)) break;
    Entry e{U16(raw), U16(raw + 2), U32(raw + 4), {raw[8], raw[9], raw[10], raw[11]}};
    switch (e.tag) {
    case 256:
      t.TiffWidth = int32_t(Scalar(e));
      break;
    case 257:
      t.TiffHeight = int32_t(Scalar(e));
      break;
    case 258:
      t.TiffBits = int32_t(Longs(f, e)[0]);
      break;
    case 259:
      t.TiffCompression = int32_t(Scalar(e));
      break;
    case 262:
      t.TiffPhotometric = int32_t(Scalar(e));
      break;
    case 266:
      t.TiffFillOrder = int32_t(Scalar(e));
      break;
    case 269:
      t.TiffDocName = Text(f, e);
      break;
    case 270:
      t.TiffDescription = Text(f, e);
      break;
    case 273:
      t.TiffStrips = Longs(f, e);
      t.TiffStripCount = int32_t(e.count);
      break;
    case 274:
      t.TiffOrientation = int32_t(Scalar(e));
      break;
    case 277:
      t.TiffSamples = int32_t(Scalar(e));
      break;
    case 278:
      t.TiffRowsPerStrip = int32_t(Scalar(e));
      break;
    case 279:
      t.TiffStripBytes = Longs(f, e);
      break;
    case 282:
      t.TiffXRes = Rational(f, e);
      break;
    case 283:
      t.TiffYRes = Rational(f, e);
      break;
    case 284:
      t.TiffPlanar = int32_t(Scalar(e));
      break;
    case 296:
      t.TiffResUnit = int32_t(Scalar(e));
      break;
    case 305:
      t.TiffSoftware = Text(f, e);
      break;
    case 306:
      t.TiffDateTime = Text(f, e);
      break;
    case 339:
      t.TiffSampleFormat = int32_t(Scalar(e));
      break;
    case 33550:
      ReadDoubles(f, e, t.TiffScale, 3);
      break;
    case 33922:
      ReadDoubles(f, e, t.TiffTie, 6);
      t.TiffHasGeo = -1;
      break;
    case 34735: {
      std::vector<uint8_t> bytes;
      if (EntryBytes(f, e, 2, bytes, f.size)) {
        t.TiffGeoKeys.resize(e.count);
        for (uint32_t k = 0; k < e.count; ++k) t.TiffGeoKeys[k] = U16(&bytes[k * 2]);
      }
      break;
    }
    default:
      break;
    }
  }
  t.TiffBytesPerPixel = uint8_t(t.TiffBits / 8 * t.TiffSamples);
}

} // namespace

void ReadTiffTags(Session& s, const std::string& path) {
  s.Tiff = TiffState{};
  if (ExtOf(path) != "tif" || !FileExists(path)) return;
  File f;
  if (!f.Open(path)) return;
  if (f.size == 0) {
    s.Tiff.TiffErr = 1;
    return;
  }
  ReadTiffDir(s.Tiff, f);
}

bool ReadIdlTiffBits(Session& s, const std::string& path, DibBits& out) {
  ReadTiffTags(s, path);
  TiffState& t = s.Tiff;
  File f;
  int bpp = t.TiffBytesPerPixel;
  if (t.TiffErr || !f.Open(path) || t.TiffWidth <= 0 || t.TiffHeight <= 0 || bpp <= 0) {
    t.TiffErr = 1;
    return false;
  }
  // Uncompressed strips: the file must be able to hold the pixels.
  uint64_t pixels = uint64_t(t.TiffWidth) * uint64_t(t.TiffHeight);
  if (pixels > f.size / uint64_t(bpp) + 1) {
    t.TiffErr = 1;
    return false;
  }
  std::vector<int32_t> values(pixels, 0);
  uint64_t at = 0;
  std::vector<uint8_t> strip;
  for (size_t k = 0; k < t.TiffStrips.size() && k < t.TiffStripBytes.size() && at < pixels; ++k) {
    uint64_t n = t.TiffStripBytes[k];
    if (n > f.size) break;
    strip.resize(n);
    if (!f.ReadAt(t.TiffStrips[k], strip.data(), n)) break;
    for (uint64_t p = 0; p + uint64_t(bpp) <= n && at < pixels; p += uint64_t(bpp), ++at) {
      const uint8_t* b = &strip[p];
      int32_t v = 0;
      if (bpp == 2)
        v = int16_t(U16(b));
      else if (bpp == 3)
        v = int32_t(uint32_t(b[0]) | uint32_t(b[1]) << 8 | uint32_t(int8_t(b[2])) << 16);
      else if (bpp == 4)
        v = int32_t(U32(b));
      values[at] = v;
    }
  }
  auto [lo, hi] = std::minmax_element(values.begin(), values.end());
  double vmin = *lo, span = double(*hi) - double(*lo);
  out.Width = t.TiffWidth;
  out.Height = t.TiffHeight;
  out.Bits.assign(size_t(out.Stride()) * size_t(out.Height), 0);
  for (int y = 0; y < out.Height; ++y) {
    // The file's first row is the top of the picture: the last row in memory.
    uint8_t* row = &out.Bits[size_t(out.Height - 1 - y) * size_t(out.Stride())];
    for (int x = 0; x < out.Width; ++x) {
      int32_t v = values[size_t(y) * size_t(out.Width) + size_t(x)];
      uint8_t g = span > 0 ? uint8_t((v - vmin) / span * 255.0 + 0.5) : 0;
      row[x * 3] = row[x * 3 + 1] = row[x * 3 + 2] = g;
    }
  }
  return true;
}

} // namespace velmora
