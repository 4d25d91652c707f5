// The byte layout of a project file, read: a little-endian stream without padding whose
// version decides which items are present.
#include <cstring>

#include "session/project_layout.h"

namespace velmora {

namespace {

struct ReadFail {
  const char* text;
};
constexpr const char* kPastEnd = "Input past end of file";
constexpr const char* kBadCount = "Subscript out of range";

struct Cursor {
  const std::vector<uint8_t>& b;
  size_t at = 0;

  size_t Left() const { return b.size() - at; }
  const uint8_t* Take(size_t n) {
    if (n > Left()) throw ReadFail{kPastEnd};
    const uint8_t* p = b.data() + at;
    at += n;
    return p;
  }
  uint8_t U8() { return *Take(1); }
  int32_t I32() {
    const uint8_t* p = Take(4);
    return int32_t(uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 |
                   uint32_t(p[3]) << 24);
  }
  double F64() {
    const uint8_t* p = Take(8);
    uint64_t u = 0;
    for (int i = 7; i >= 0; --i) u = u << 8 | p[i];
    double d;
    std::memcpy(&d, &u, 8);
    return d;
  }
  float F32() {
    uint32_t u = uint32_t(I32());
    float f;
    std::memcpy(&f, &u, 4);
    return f;
  }
  // A length the rest of the file can't hold is a damaged file, not an allocation.
  std::string LStr() {
    uint32_t n = uint32_t(I32());
    const uint8_t* p = Take(n);
    return std::string(reinterpret_cast<const char*>(p), n);
  }
  RGB3 Rgb() {
    const uint8_t* p = Take(3);
    return RGB3{p[0], p[1], p[2]};
  }
};

void ReadClass(Cursor& c, LyrRec& l, size_t k, double v) {
  l.CForeRGB[k] = c.Rgb();
  l.CFillRGB[k] = c.Rgb();
  l.CDrawMode[k] = c.U8();
  l.CDrawStyle[k] = c.U8();
  l.CDrawWidth[k] = c.U8();
  l.CFillStyle[k] = c.U8();
  if (v >= kProjThematic) l.CFieldValues[k] = c.LStr();
}

void ReadRow(Cursor& c, LyrRec& l, double v) {
  l.LyrName = c.LStr();
  l.Fsource = c.LStr();
  l.SelCount = c.I32();
  int64_t selBytes = SelBytesStored(l.SelCount);
  if (selBytes < 1) throw ReadFail{kBadCount};
  if (uint64_t(selBytes) > c.Left()) throw ReadFail{kPastEnd};
  const uint8_t* sel = c.Take(size_t(selBytes));
  l.SelBits.assign(sel, sel + selBytes);
  l.DVisable = c.U8();
  l.DScale = c.U8();
  l.DScaleLMT = {c.F64(), c.F64()};
  l.DShowVrt = c.U8();
  l.DVrtDrawWidth = c.U8();
  if (v >= kProjThematic) {
    l.CFName = c.I32();
    l.CFCount = c.I32();
  }
  // Each class block takes at least ten bytes: no more classes than the rest can hold.
  const size_t minBlock = v >= kProjThematic ? 14 : 10;
  if (l.CFCount < 0) throw ReadFail{kBadCount};
  if (uint64_t(l.CFCount) + 1 > c.Left() / minBlock) throw ReadFail{kPastEnd};
  SizeClasses(l, l.CFCount);
  for (size_t k = 0; k <= size_t(l.CFCount); ++k) ReadClass(c, l, k, v);
  l.SSelectable = c.U8();
  l.SForeRGB = c.Rgb();
  l.SFillRGB = c.Rgb();
  l.SDrawMode = c.U8(), l.SDrawStyle = c.U8(), l.SDrawWidth = c.U8(), l.SFillStyle = c.U8();
  l.EEditable = c.U8();
  l.EForeRGB = c.Rgb();
  l.EFillRGB = c.Rgb();
  l.EDrawMode = c.U8(), l.EDrawStyle = c.U8(), l.EVertexWidth = c.U8(), l.EDrawWidth = c.U8();
  l.EFillStyle = c.U8();
  l.LVisible = c.U8();
  l.LFName = c.I32();
  l.LfontName = c.LStr();
  l.LFontBold = c.U8(), l.LFontItalic = c.U8(), l.LFontSize = c.U8();
  l.LRGB = v >= kProjLabelColour ? c.Rgb() : l.CForeRGB[0];
  if (v >= kProjLabelFit) {
    l.LFontForceSize = c.U8();
    l.LSetRefereMapScale = c.U8();
    l.LRefereMapScale = c.F64();
  }
  l.LScale = c.U8();
  l.LScaleLMT = {c.F64(), c.F64()};
  l.NuseFactor = c.U8();
  l.NfactorField = c.I32();
  l.NForeRGB = c.Rgb();
  l.NFillRGB = c.Rgb();
  l.NDrawMode = c.U8(), l.NDrawStyle = c.U8(), l.NDrawWidth = c.U8(), l.NFillStyle = c.U8();
  l.HVisible = c.U8();
  l.HFName = c.I32();
  l.HswUse = c.U8();
  l.HswName = c.LStr();
  l.HtVisible = c.U8();
  l.HtFixed = c.I32();
  l.HtFName = c.I32();
  l.HtSource = c.U8(), l.HtScale = c.U8();
  for (float& e : l.SavedExtent) e = c.F32();
  l.VBScriptSRC = c.U8();
  l.VBScripttext = c.LStr();
  l.VBScriptFile = c.LStr();
}

void ReadTail(Cursor& c, ProjectFileData& d) {
  if (c.Left() == 0) return;
  int32_t n = c.I32();
  if (n < 0) throw ReadFail{kBadCount};
  if (uint64_t(n) > c.Left() / 72) throw ReadFail{kPastEnd}; // two lengths, eight doubles
  d.HasDatums = true;
  for (int32_t i = 0; i < n; ++i) {
    DatumDef r;
    r.CrdName = c.LStr();
    r.SphName = c.LStr();
    r.SMA = c.F64(), r.SMB = c.F64(), r.Flat = c.F64(), r.FEast = c.F64();
    r.FNorth = c.F64(), r.CM = c.F64(), r.SF = c.F64(), r.LatOrg = c.F64();
    r.FNorthS = r.FNorth; // not stored
    d.Datums.push_back(std::move(r));
  }
  if (c.Left() == 0) return;
  n = c.I32();
  if (n < 0) throw ReadFail{kBadCount};
  if (uint64_t(n) > c.Left() / 56) throw ReadFail{kPastEnd};
  d.HasTrans = true;
  for (int32_t i = 0; i < n; ++i) {
    DatumTrans t;
    t.DX = c.F64(), t.DY = c.F64(), t.DZ = c.F64();
    t.RX = c.F64(), t.RY = c.F64(), t.RZ = c.F64(), t.Scale = c.F64();
    d.Trans.push_back(t);
  }
}

} // namespace

bool ParseProjectFile(const std::vector<uint8_t>& bytes, ProjectFileData& d, std::string& error) {
  d = ProjectFileData{};
  Cursor c{bytes};
  try {
    d.Version = c.F64();
    if (d.Version < kProjOldest) return true;
    int32_t count = c.I32();
    if (count < 0) throw ReadFail{kBadCount};
    const uint8_t* r = c.Take(8);
    std::copy(r, r + 8, d.Reserved.begin());
    d.ViewW = c.I32();
    d.ViewH = c.I32();
    d.Left = c.F64(), d.Top = c.F64(), d.Right = c.F64(), d.Bottom = c.F64();
    d.MapBytes = d.Version > kProjEightMapBytes ? 8 : d.Version > kProjOneMapByte ? 1 : 0;
    for (int i = 0; i < d.MapBytes; ++i) d.Units[size_t(i)] = c.U8();
    // Every row takes bytes, so a count beyond the file ends at its end.
    for (int32_t i = 0; i < count; ++i) {
      LyrRec l;
      ReadRow(c, l, d.Version);
      d.Rows.push_back(std::move(l));
    }
    ReadTail(c, d);
  } catch (const ReadFail& f) {
    error = f.text;
    return false;
  }
  return true;
}

} // namespace velmora
