#include "platform/gdal/gdal_bands.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "platform/image_io.h"

namespace velmora {

namespace {

// How the bands of a dataset become red, green and blue.
struct BandPlan {
  enum class Kind { Bytes, Palette, Ramp } kind = Kind::Bytes;
  std::array<GDALRasterBandH, 3> rgb{}; // the same band thrice for grey
  GDALRasterBandH alpha = nullptr;
  int channels = 3; // 1 for grey and palette
  // Bytes: each band's byte through its table (stretching fewer than 8 bits).
  std::array<std::array<uint8_t, 256>, 3> lut{};
  // Palette: red, green, blue and alpha of each index.
  std::vector<std::array<uint8_t, 4>> palette;
  // Ramp: the range of the colour bands' values.
  double lo = 0, hi = 0;
};

int NBits(GDALRasterBandH b) {
  const char* v = GDALGetMetadataItem(b, "NBITS", "IMAGE_STRUCTURE");
  return v ? std::atoi(v) : 8;
}

GDALRasterBandH BandOf(GDALDatasetH ds, GDALColorInterp want) {
  for (int i = 1; i <= GDALGetRasterCount(ds); ++i) {
    GDALRasterBandH b = GDALGetRasterBand(ds, i);
    if (GDALGetRasterColorInterpretation(b) == want) return b;
  }
  return nullptr;
}

bool NoDataOf(GDALRasterBandH b, double& v) {
  int has = 0;
  v = GDALGetRasterNoDataValue(b, &has);
  return has != 0;
}

void Plan(GDALDatasetH ds, BandPlan& p) {
  const int count = GDALGetRasterCount(ds);
  GDALRasterBandH first = GDALGetRasterBand(ds, 1);
  p.alpha = BandOf(ds, GCI_AlphaBand);
  if (p.alpha == first) p.alpha = nullptr;
  GDALColorTableH table = GDALGetRasterColorTable(first);
  GDALDataType firstType = GDALGetRasterDataType(first);
  if (table && (firstType == GDT_Byte || firstType == GDT_UInt16)) {
    p.kind = BandPlan::Kind::Palette;
    p.channels = 1;
    p.rgb = {first, first, first};
    int n = GDALGetColorEntryCount(table);
    p.palette.assign(firstType == GDT_Byte ? 256 : 65536, {0, 0, 0, 255});
    for (int i = 0; i < n && size_t(i) < p.palette.size(); ++i) {
      GDALColorEntry e{};
      GDALGetColorEntryAsRGB(table, i, &e);
      auto c = [](short v) { return uint8_t(std::clamp<int>(v, 0, 255)); };
      p.palette[size_t(i)] = {c(e.c1), c(e.c2), c(e.c3), c(e.c4)};
    }
    double nd = 0;
    if (NoDataOf(first, nd) && nd >= 0 && nd < double(p.palette.size()))
      p.palette[size_t(nd)][3] = 0; // the transparent index shows the paper
    return;
  }
  if (count >= 3) {
    GDALRasterBandH r = BandOf(ds, GCI_RedBand), g = BandOf(ds, GCI_GreenBand),
                    b = BandOf(ds, GCI_BlueBand);
    if (r && g && b)
      p.rgb = {r, g, b};
    else
      p.rgb = {GDALGetRasterBand(ds, 1), GDALGetRasterBand(ds, 2), GDALGetRasterBand(ds, 3)};
    p.channels = 3;
  } else {
    p.rgb = {first, first, first};
    p.channels = 1;
  }
  bool bytes = true;
  for (int c = 0; c < p.channels; ++c) bytes = bytes && GDALGetRasterDataType(p.rgb[c]) == GDT_Byte;
  if (bytes) {
    p.kind = BandPlan::Kind::Bytes;
    for (int c = 0; c < p.channels; ++c) {
      int bits = std::clamp(NBits(p.rgb[c]), 1, 8);
      int top = (1 << bits) - 1;
      for (int v = 0; v < 256; ++v) p.lut[c][v] = uint8_t(std::min(255, v * 255 / top));
    }
    return;
  }
  p.kind = BandPlan::Kind::Ramp;
  bool any = false;
  for (int c = 0; c < p.channels; ++c) {
    double mm[2] = {0, 0};
    // Exact: every pixel once, no-data values and NaN left out.
    if (GDALComputeRasterMinMax(p.rgb[c], FALSE, mm) != CE_None) continue;
    if (!std::isfinite(mm[0]) || !std::isfinite(mm[1])) continue;
    p.lo = any ? std::min(p.lo, mm[0]) : mm[0];
    p.hi = any ? std::max(p.hi, mm[1]) : mm[1];
    any = true;
  }
  // A band of no-data values only reads as white; a read error says so itself.
  if (!any) p.lo = p.hi = 0;
}

// Rows of the picture read at one time: whole blocks of the file, about 16 MB of samples.
int ChunkRows(GDALDatasetH ds, GDALRasterBandH b, size_t bytesPerRow) {
  int bx = 0, by = 0;
  GDALGetBlockSize(b, &bx, &by);
  if (by < 1) by = 1;
  size_t budget = size_t(16) << 20;
  size_t rows = std::max<size_t>(1, budget / std::max<size_t>(1, bytesPerRow));
  rows = std::max<size_t>(size_t(by), rows / size_t(by) * size_t(by));
  return int(std::min<size_t>(rows, size_t(GDALGetRasterYSize(ds))));
}

uint8_t OverWhite(uint8_t c, uint8_t a) {
  return uint8_t((c * a + 255 * (255 - a) + 127) / 255);
}

bool ReadBytes(GDALDatasetH ds, const BandPlan& p, uint8_t* dst, size_t stride, int y0, int rows) {
  const int W = GDALGetRasterXSize(ds);
  uint8_t* at = dst + size_t(y0) * stride;
  if (p.channels == 3) {
    int map[3] = {GDALGetBandNumber(p.rgb[0]), GDALGetBandNumber(p.rgb[1]),
                  GDALGetBandNumber(p.rgb[2])};
    if (GDALDatasetRasterIO(ds, GF_Read, 0, y0, W, rows, at, W, rows, GDT_Byte, 3, map, 3,
                            GSpacing(stride), 1) != CE_None)
      return false;
  } else if (GDALRasterIO(p.rgb[0], GF_Read, 0, y0, W, rows, at, W, rows, GDT_Byte, 3,
                          GSpacing(stride)) != CE_None) {
    return false;
  }
  for (int r = 0; r < rows; ++r) {
    uint8_t* px = at + size_t(r) * stride;
    for (int x = 0; x < W; ++x, px += 3) {
      if (p.channels == 3) {
        px[0] = p.lut[0][px[0]], px[1] = p.lut[1][px[1]], px[2] = p.lut[2][px[2]];
      } else {
        px[0] = px[1] = px[2] = p.lut[0][px[0]];
      }
    }
  }
  return true;
}

bool ReadPalette(GDALDatasetH ds, const BandPlan& p, uint8_t* dst, size_t stride, int y0, int rows,
                 std::vector<uint16_t>& idx) {
  const int W = GDALGetRasterXSize(ds);
  idx.resize(size_t(W) * size_t(rows));
  if (GDALRasterIO(p.rgb[0], GF_Read, 0, y0, W, rows, idx.data(), W, rows, GDT_UInt16, 0, 0) !=
      CE_None)
    return false;
  for (int r = 0; r < rows; ++r) {
    uint8_t* px = dst + size_t(y0 + r) * stride;
    const uint16_t* in = &idx[size_t(r) * size_t(W)];
    for (int x = 0; x < W; ++x, px += 3) {
      const auto& e = in[x] < p.palette.size() ? p.palette[in[x]] : p.palette[0];
      px[0] = OverWhite(e[0], e[3]), px[1] = OverWhite(e[1], e[3]), px[2] = OverWhite(e[2], e[3]);
    }
  }
  return true;
}

bool ReadRamp(GDALDatasetH ds, const BandPlan& p, uint8_t* dst, size_t stride, int y0, int rows,
              std::vector<double>& vals) {
  const int W = GDALGetRasterXSize(ds);
  vals.resize(size_t(W) * size_t(rows));
  for (int c = 0; c < p.channels; ++c) {
    if (GDALRasterIO(p.rgb[c], GF_Read, 0, y0, W, rows, vals.data(), W, rows, GDT_Float64, 0, 0) !=
        CE_None)
      return false;
    double nd = 0;
    bool hasNd = NoDataOf(p.rgb[c], nd);
    for (int r = 0; r < rows; ++r) {
      uint8_t* px = dst + size_t(y0 + r) * stride;
      const double* in = &vals[size_t(r) * size_t(W)];
      for (int x = 0; x < W; ++x, px += 3) {
        double v = in[x];
        bool empty = std::isnan(v) || (hasNd && (v == nd || (std::isnan(nd) && std::isnan(v))));
        uint8_t g = empty ? 255 : GreyRamp(v, p.lo, p.hi);
        if (p.channels == 1)
          px[0] = px[1] = px[2] = g;
        else
          px[c] = g;
      }
    }
  }
  return true;
}

bool BlendAlpha(GDALDatasetH ds, const BandPlan& p, uint8_t* dst, size_t stride, int y0, int rows,
                std::vector<uint8_t>& a) {
  const int W = GDALGetRasterXSize(ds);
  a.resize(size_t(W) * size_t(rows));
  if (GDALRasterIO(p.alpha, GF_Read, 0, y0, W, rows, a.data(), W, rows, GDT_Byte, 0, 0) != CE_None)
    return false;
  for (int r = 0; r < rows; ++r) {
    uint8_t* px = dst + size_t(y0 + r) * stride;
    const uint8_t* in = &a[size_t(r) * size_t(W)];
    for (int x = 0; x < W; ++x, px += 3)
      if (in[x] != 255)
        px[0] = OverWhite(px[0], in[x]), px[1] = OverWhite(px[1], in[x]),
        px[2] = OverWhite(px[2], in[x]);
  }
  return true;
}

} // namespace

bool DecodeRgb(GDALDatasetH ds, uint8_t* dst, size_t stride, std::string& why) {
  BandPlan p;
  if (GDALGetRasterCount(ds) < 1) {
    why = "no pixels";
    return false;
  }
  Plan(ds, p);
  const int W = GDALGetRasterXSize(ds), H = GDALGetRasterYSize(ds);
  size_t sample = p.kind == BandPlan::Kind::Ramp ? 8 : p.kind == BandPlan::Kind::Palette ? 2 : 3;
  const int chunk = ChunkRows(ds, p.rgb[0], size_t(W) * sample);
  std::vector<uint16_t> idx;
  std::vector<double> vals;
  std::vector<uint8_t> alpha;
  for (int y0 = 0; y0 < H; y0 += chunk) {
    int rows = std::min(chunk, H - y0);
    bool ok = p.kind == BandPlan::Kind::Bytes     ? ReadBytes(ds, p, dst, stride, y0, rows)
              : p.kind == BandPlan::Kind::Palette ? ReadPalette(ds, p, dst, stride, y0, rows, idx)
                                                  : ReadRamp(ds, p, dst, stride, y0, rows, vals);
    if (ok && p.alpha && p.kind != BandPlan::Kind::Palette)
      ok = BlendAlpha(ds, p, dst, stride, y0, rows, alpha);
    if (!ok) return false;
  }
  return true;
}

} // namespace velmora
