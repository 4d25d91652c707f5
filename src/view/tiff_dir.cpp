#include "view/tiff_dir.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

#include "model/file_util.h"
#include "platform/memory_limit.h"

namespace velmora {

namespace {

struct File {
  std::FILE* f = nullptr;
  uint64_t size = 0;
  File() = default;
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  ~File() {
    if (f) std::fclose(f);
  }
  bool Open(const std::string& path) {
    f = std::fopen(NativePath(path).c_str(), "rb");
    if (!f) return false;
    std::fseek(f, 0, SEEK_END);
    off_t n = ftello(f);
    size = n < 0 ? 0 : uint64_t(n);
    return true;
  }
  // Reads `n` bytes at `at`; false when they lie outside the file.
  bool ReadAt(uint64_t at, void* buf, uint64_t n) {
    if (at > size || n > size - at) return false;
    if (fseeko(f, off_t(at), SEEK_SET) != 0) return false;
    return n == 0 || std::fread(buf, 1, n, f) == n;
  }
};

// Numbers of the file's own byte order; a BigTIFF's offsets and counts are 64-bit.
struct Order {
  bool be = false, big = false;
  uint16_t U16(const uint8_t* p) const {
    return be ? uint16_t(p[0] << 8 | p[1]) : uint16_t(p[0] | p[1] << 8);
  }
  uint32_t U32(const uint8_t* p) const {
    return be ? uint32_t(p[0]) << 24 | uint32_t(p[1]) << 16 | uint32_t(p[2]) << 8 | p[3]
              : uint32_t(p[3]) << 24 | uint32_t(p[2]) << 16 | uint32_t(p[1]) << 8 | p[0];
  }
  uint64_t U64(const uint8_t* p) const {
    return be ? uint64_t(U32(p)) << 32 | U32(p + 4) : uint64_t(U32(p + 4)) << 32 | U32(p);
  }
  double F64(const uint8_t* p) const {
    uint64_t bits = U64(p);
    double d;
    std::memcpy(&d, &bits, 8);
    return d;
  }
  // An offset as the header and the entries hold it.
  uint64_t Offset(const uint8_t* p) const { return big ? U64(p) : U32(p); }
  size_t OffsetSize() const { return big ? 8 : 4; }
};

struct Entry {
  uint16_t tag = 0, type = 0;
  uint64_t count = 0;
  uint8_t value[8] = {};
};

size_t TypeSize(uint16_t type) {
  switch (type) {
  case 1:
  case 2:
  case 6:
  case 7:
    return 1;
  case 3:
  case 8:
    return 2;
  case 4:
  case 9:
  case 11:
  case 13:
    return 4;
  case 5:
  case 10:
  case 12:
  case 16:
  case 17:
  case 18:
    return 8;
  default:
    return 0;
  }
}

struct Dir {
  File& f;
  Order o;

  // The bytes of an entry's values: inline when they fit in the value field, else at the
  // offset. Never more than `limit` bytes, nor more than the file holds.
  bool Bytes(const Entry& e, std::vector<uint8_t>& out, uint64_t limit) {
    size_t each = TypeSize(e.type);
    if (each == 0 || e.count > limit / each || e.count > f.size / each) return false;
    uint64_t n = e.count * each;
    out.resize(n);
    if (n == 0) return true;
    if (n <= o.OffsetSize()) {
      std::memcpy(out.data(), e.value, n);
      return true;
    }
    return f.ReadAt(o.Offset(e.value), out.data(), n);
  }

  uint64_t Scalar(const Entry& e) const {
    switch (e.type) {
    case 1:
      return e.value[0];
    case 3:
      return o.U16(e.value);
    case 16:
      return o.U64(e.value);
    default:
      return o.U32(e.value);
    }
  }

  // Integer values of any width; {0} when they can't be read.
  std::vector<uint64_t> Longs(const Entry& e) {
    std::vector<uint8_t> bytes;
    size_t each = TypeSize(e.type);
    bool integer = e.type == 1 || e.type == 3 || e.type == 4 || e.type == 16;
    if (!integer || !Bytes(e, bytes, f.size) || e.count == 0) return {0};
    std::vector<uint64_t> v(e.count);
    for (uint64_t i = 0; i < e.count; ++i) {
      const uint8_t* p = &bytes[i * each];
      v[i] = each == 1 ? *p : each == 2 ? o.U16(p) : each == 4 ? o.U32(p) : o.U64(p);
    }
    return v;
  }

  std::string Text(const Entry& e) {
    std::vector<uint8_t> bytes;
    if (!Bytes(e, bytes, 1 << 20)) return "";
    std::string s(bytes.begin(), bytes.end());
    while (!s.empty() && s.back() == '\0') s.pop_back();
    return s;
  }

  double Rational(const Entry& e) {
    std::vector<uint8_t> b;
    if (e.type != 5 || !Bytes(e, b, 8) || b.size() < 8 || o.U32(&b[4]) == 0) return 0;
    return double(o.U32(&b[0])) / o.U32(&b[4]);
  }

  // The first n doubles of the entry; false when it holds fewer or isn't of type DOUBLE.
  bool Doubles(const Entry& e, double* out, size_t n) {
    std::vector<uint8_t> b;
    if (e.type != 12 || e.count < n || !Bytes(e, b, 8 * 1024)) return false;
    for (size_t i = 0; i < n; ++i) out[i] = o.F64(&b[8 * i]);
    return true;
  }
};

// Sums and products of a lying directory stop at the largest number.
uint64_t SatAdd(uint64_t a, uint64_t b) {
  return a > UINT64_MAX - b ? UINT64_MAX : a + b;
}
uint64_t SatMul(uint64_t a, uint64_t b) {
  return b != 0 && a > UINT64_MAX / b ? UINT64_MAX : a * b;
}

bool Usable(double v) {
  return std::isfinite(v);
}

// The placement from the tie point and pixel scale, or from a transformation matrix that
// neither turns nor shears; none when the numbers can't place a picture.
void Placement(TiffState& t, bool tie, bool scale, bool matrix, const double m[16]) {
  t.TiffHasGeo = 0;
  if (tie && scale) {
    if (Usable(t.TiffTie[3]) && Usable(t.TiffTie[4]) && Usable(t.TiffScale[0]) &&
        Usable(t.TiffScale[1]) && t.TiffScale[0] != 0 && t.TiffScale[1] != 0)
      t.TiffHasGeo = -1;
    return;
  }
  if (matrix && m[1] == 0 && m[4] == 0 && m[0] != 0 && m[5] != 0 && Usable(m[0]) && Usable(m[5]) &&
      Usable(m[3]) && Usable(m[7])) {
    t.TiffScale[0] = m[0];
    t.TiffScale[1] = -m[5];
    t.TiffTie[3] = m[3];
    t.TiffTie[4] = m[7];
    t.TiffHasGeo = -1;
  }
}

void ReadTiffDir(TiffState& t, File& f) {
  uint8_t hdr[16];
  if (!f.ReadAt(0, hdr, 8)) return;
  Order o;
  if (hdr[0] == 'M' && hdr[1] == 'M')
    o.be = true;
  else if (!(hdr[0] == 'I' && hdr[1] == 'I'))
    return;
  uint16_t version = o.U16(hdr + 2);
  if (version == 43) {
    // BigTIFF: offsets of 8 bytes, the first directory's at byte 8.
    if (!f.ReadAt(0, hdr, 16) || o.U16(hdr + 4) != 8) return;
    o.big = true;
  } else if (version != 42) {
    return;
  }
  t.TiffBigEndian = o.be;
  t.TiffBigTiff = o.big;
  uint64_t dir = o.big ? o.U64(hdr + 8) : o.U32(hdr + 4);
  const uint64_t countSize = o.big ? 8 : 2, entrySize = o.big ? 20 : 12;
  t.TiffDataEnd = SatAdd(dir, countSize);
  uint8_t cnt[8];
  if (dir > f.size || !f.ReadAt(dir, cnt, countSize)) return;
  uint64_t n = o.big ? o.U64(cnt) : o.U16(cnt);
  t.TiffDataEnd = std::max(t.TiffDataEnd, SatAdd(dir + countSize, SatMul(n, entrySize)));
  Dir d{f, o};
  bool tie = false, scale = false, matrix = false;
  double m[16] = {};
  for (uint64_t i = 0; i < n && i < f.size / entrySize; ++i) {
    uint8_t raw[20];
    if (!f.ReadAt(dir + countSize + entrySize * i, raw, entrySize)) break;
    Entry e;
    e.tag = o.U16(raw);
    e.type = o.U16(raw + 2);
    e.count = o.big ? o.U64(raw + 4) : o.U32(raw + 4);
    std::memcpy(e.value, raw + (o.big ? 12 : 8), o.OffsetSize());
    switch (e.tag) {
    case 256:
      t.TiffWidth = int32_t(std::min<uint64_t>(d.Scalar(e), INT32_MAX));
      break;
    case 257:
      t.TiffHeight = int32_t(std::min<uint64_t>(d.Scalar(e), INT32_MAX));
      break;
    case 258:
      t.TiffBits = int32_t(std::min<uint64_t>(d.Longs(e)[0], INT32_MAX));
      break;
    case 259:
      t.TiffCompression = int32_t(d.Scalar(e) & 0xffff);
      break;
    case 262:
      t.TiffPhotometric = int32_t(d.Scalar(e) & 0xffff);
      break;
    case 266:
      t.TiffFillOrder = int32_t(d.Scalar(e) & 0xffff);
      break;
    case 269:
      t.TiffDocName = d.Text(e);
      break;
    case 270:
      t.TiffDescription = d.Text(e);
      break;
    case 273:
    case 324:
      t.TiffStrips = d.Longs(e);
      t.TiffStripCount = int32_t(std::min<uint64_t>(e.count, INT32_MAX));
      break;
    case 274:
      t.TiffOrientation = int32_t(d.Scalar(e) & 0xffff);
      break;
    case 277:
      t.TiffSamples = int32_t(d.Scalar(e) & 0xffff);
      break;
    case 278:
      t.TiffRowsPerStrip = int32_t(std::min<uint64_t>(d.Scalar(e), INT32_MAX));
      break;
    case 279:
    case 325:
      t.TiffStripBytes = d.Longs(e);
      break;
    case 282:
      t.TiffXRes = d.Rational(e);
      break;
    case 283:
      t.TiffYRes = d.Rational(e);
      break;
    case 284:
      t.TiffPlanar = int32_t(d.Scalar(e) & 0xffff);
      break;
    case 296:
      t.TiffResUnit = int32_t(d.Scalar(e) & 0xffff);
      break;
    case 305:
      t.TiffSoftware = d.Text(e);
      break;
    case 306:
      t.TiffDateTime = d.Text(e);
      break;
    case 322:
      t.TiffTileWidth = int32_t(std::min<uint64_t>(d.Scalar(e), INT32_MAX));
      break;
    case 323:
      t.TiffTileLength = int32_t(std::min<uint64_t>(d.Scalar(e), INT32_MAX));
      break;
    case 339:
      t.TiffSampleFormat = int32_t(d.Scalar(e) & 0xffff);
      break;
    case 33550:
      scale = d.Doubles(e, t.TiffScale, 3);
      break;
    case 33922:
      tie = d.Doubles(e, t.TiffTie, 6);
      break;
    case 34264:
      matrix = d.Doubles(e, m, 16);
      break;
    case 34735: {
      std::vector<uint64_t> keys = e.type == 3 ? d.Longs(e) : std::vector<uint64_t>{};
      t.TiffGeoKeys.assign(keys.begin(), keys.end());
      break;
    }
    default:
      break;
    }
  }
  Placement(t, tie, scale, matrix, m);
  for (size_t k = 0; k < t.TiffStrips.size() && k < t.TiffStripBytes.size(); ++k)
    if (t.TiffStripBytes[k] > 0)
      t.TiffDataEnd = std::max(t.TiffDataEnd, SatAdd(t.TiffStrips[k], t.TiffStripBytes[k]));
  t.TiffBytesPerPixel = uint8_t(t.TiffBits / 8 * t.TiffSamples);
}

bool IsTiffExt(const std::string& path) {
  std::string ext = ExtOf(path);
  return ext == "tif" || ext == "tiff";
}

// Compressions that the decoders of this system read.
bool KnownCompression(int c) {
  switch (c) {
  case 0:
  case 1:
  case 2:
  case 3:
  case 4:
  case 5:
  case 6:
  case 7:
  case 8:
  case 32773:
  case 32946:
  case 34887:
  case 34925:
  case 50000:
  case 50001:
    return true;
  default:
    return false;
  }
}

const char* CompressionName(int c) {
  switch (c) {
  case 32766:
    return "NeXT";
  case 32809:
    return "ThunderScan";
  case 32908:
  case 32909:
    return "PixarLog";
  case 34676:
  case 34677:
    return "SGI LogLuv";
  case 34712:
    return "JPEG 2000";
  case 34892:
    return "lossy JPEG";
  case 50002:
    return "JPEG XL";
  default:
    return "";
  }
}

} // namespace

void ReadTiffTags(Session& s, const std::string& path) {
  s.Tiff = TiffState{};
  if (!IsTiffExt(path) || !FileExists(path)) return;
  File f;
  if (!f.Open(path)) return;
  s.Tiff.TiffFileSize = f.size;
  if (f.size == 0) {
    s.Tiff.TiffErr = 1;
    return;
  }
  ReadTiffDir(s.Tiff, f);
}

std::string TiffProblem(const TiffState& t) {
  if (t.TiffErr && t.TiffFileSize == 0) return "empty file";
  if (t.TiffDataEnd == 0) return ""; // not a TIFF header: nothing to say
  if (t.TiffDataEnd > t.TiffFileSize)
    return "truncated at byte " + std::to_string(t.TiffFileSize) + ", the picture needs " +
           std::to_string(t.TiffDataEnd) + " bytes";
  if (!KnownCompression(t.TiffCompression)) {
    std::string name = CompressionName(t.TiffCompression);
    return "unsupported compression " + std::to_string(t.TiffCompression) +
           (name.empty() ? "" : " (" + name + ")");
  }
  return "";
}

namespace {

// One value of an uncompressed single-band strip: a signed integer of 2, 3 or 4 bytes in
// the file's byte order; other sizes give 0.
int32_t SampleAt(const uint8_t* b, int bpp, bool be) {
  Order o;
  o.be = be;
  if (bpp == 2) return int16_t(o.U16(b));
  if (bpp == 3) {
    uint32_t v = be ? uint32_t(b[0]) << 16 | uint32_t(b[1]) << 8 | b[2]
                    : uint32_t(b[2]) << 16 | uint32_t(b[1]) << 8 | b[0];
    return int32_t(v << 8) >> 8;
  }
  if (bpp == 4) return int32_t(o.U32(b));
  return 0;
}

// Walks the strips in order, a value at a time, rows running on whatever the strip
// boundaries; `each(index, value)`. False when a strip can't be read.
template <class Each> bool WalkStrips(const TiffState& t, File& f, uint64_t pixels, Each each) {
  const int bpp = t.TiffBytesPerPixel;
  uint64_t at = 0;
  std::vector<uint8_t> strip;
  for (size_t k = 0; k < t.TiffStrips.size() && k < t.TiffStripBytes.size() && at < pixels; ++k) {
    uint64_t n = std::min<uint64_t>(t.TiffStripBytes[k], (pixels - at) * uint64_t(bpp));
    strip.resize(n);
    if (!f.ReadAt(t.TiffStrips[k], strip.data(), n)) return false;
    for (uint64_t p = 0; p + uint64_t(bpp) <= n && at < pixels; p += uint64_t(bpp), ++at)
      each(at, SampleAt(&strip[p], bpp, t.TiffBigEndian));
  }
  return true;
}

} // namespace

bool ReadIdlTiffBits(Session& s, const std::string& path, DibBits& out) {
  ReadTiffTags(s, path);
  TiffState& t = s.Tiff;
  File f;
  int bpp = t.TiffBytesPerPixel;
  bool plain = t.TiffCompression <= 1 && t.TiffTileWidth == 0;
  if (t.TiffErr || !plain || !f.Open(path) || t.TiffWidth <= 0 || t.TiffHeight <= 0 || bpp <= 0) {
    t.TiffErr = 1;
    return false;
  }
  // Uncompressed strips: the file must be able to hold the pixels.
  uint64_t pixels = uint64_t(t.TiffWidth) * uint64_t(t.TiffHeight);
  if (pixels > f.size / uint64_t(bpp) + 1 ||
      !MemoryRefusal(DibBytes(t.TiffWidth, t.TiffHeight), t.TiffWidth, t.TiffHeight).empty()) {
    t.TiffErr = 1;
    return false;
  }
  // Two walks: the value range first, then the grey of each value on the ramp over it.
  int32_t lo = std::numeric_limits<int32_t>::max(), hi = std::numeric_limits<int32_t>::min();
  bool ok = WalkStrips(t, f, pixels, [&](uint64_t, int32_t v) {
    lo = std::min(lo, v);
    hi = std::max(hi, v);
  });
  if (!ok || lo > hi) {
    t.TiffErr = 1;
    return false;
  }
  out.Width = t.TiffWidth;
  out.Height = t.TiffHeight;
  const size_t stride = size_t(out.Stride());
  out.Bits.assign(stride * size_t(out.Height), 0);
  const uint64_t w = uint64_t(out.Width);
  WalkStrips(t, f, pixels, [&](uint64_t at, int32_t v) {
    // The file's first row is the top of the picture: the last row in memory.
    uint64_t y = at / w, x = at % w;
    uint8_t* p = &out.Bits[(size_t(out.Height) - 1 - size_t(y)) * stride + size_t(x) * 3];
    p[0] = p[1] = p[2] = GreyRamp(v, lo, hi);
  });
  return true;
}

} // namespace velmora
