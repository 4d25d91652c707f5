#include "model/lyr_record.h"

namespace velmora {

namespace {
void SetPair(Colour& packed, RGB3& bytes, uint8_t r, uint8_t g, uint8_t b) {
  bytes = RGB3{r, g, b};
  packed = PackRGB(r, g, b);
}
} // namespace

void SizeClasses(LyrRec& l, int cfCount) {
  size_t n = size_t(cfCount < 0 ? 0 : cfCount) + 1;
  l.CForeColor.resize(n);
  l.CFillColor.resize(n);
  l.CDrawMode.resize(n);
  l.CDrawStyle.resize(n);
  l.CDrawWidth.resize(n);
  l.CFillStyle.resize(n);
  l.CFieldValues.resize(n);
  l.CForeRGB.resize(n);
  l.CFillRGB.resize(n);
}

void SetCForeColor(LyrRec& l, int cls, uint8_t r, uint8_t g, uint8_t b) {
  if (size_t(cls) >= l.CForeColor.size()) SizeClasses(l, cls);
  SetPair(l.CForeColor[size_t(cls)], l.CForeRGB[size_t(cls)], r, g, b);
}
void SetCFillColor(LyrRec& l, int cls, uint8_t r, uint8_t g, uint8_t b) {
  if (size_t(cls) >= l.CFillColor.size()) SizeClasses(l, cls);
  SetPair(l.CFillColor[size_t(cls)], l.CFillRGB[size_t(cls)], r, g, b);
}
void SetSForeColor(LyrRec& l, uint8_t r, uint8_t g, uint8_t b) {
  SetPair(l.SForeColor, l.SForeRGB, r, g, b);
}
void SetSFillColor(LyrRec& l, uint8_t r, uint8_t g, uint8_t b) {
  SetPair(l.SFillColor, l.SFillRGB, r, g, b);
}
void SetEForeColor(LyrRec& l, uint8_t r, uint8_t g, uint8_t b) {
  SetPair(l.EForeColor, l.EForeRGB, r, g, b);
}
void SetEFillColor(LyrRec& l, uint8_t r, uint8_t g, uint8_t b) {
  SetPair(l.EFillColor, l.EFillRGB, r, g, b);
}
void SetLColor(LyrRec& l, uint8_t r, uint8_t g, uint8_t b) {
  SetPair(l.LColor, l.LRGB, r, g, b);
}
void SetNForeColor(LyrRec& l, uint8_t r, uint8_t g, uint8_t b) {
  SetPair(l.NForeColor, l.NForeRGB, r, g, b);
}
void SetNFillColor(LyrRec& l, uint8_t r, uint8_t g, uint8_t b) {
  SetPair(l.NFillColor, l.NFillRGB, r, g, b);
}

RGB3 GetCForeRGB(const LyrRec& l, int cls) {
  return size_t(cls) < l.CForeRGB.size() ? l.CForeRGB[size_t(cls)] : RGB3{};
}
RGB3 GetCFillRGB(const LyrRec& l, int cls) {
  return size_t(cls) < l.CFillRGB.size() ? l.CFillRGB[size_t(cls)] : RGB3{};
}
RGB3 GetSForeRGB(const LyrRec& l) {
  return l.SForeRGB;
}
RGB3 GetSFillRGB(const LyrRec& l) {
  return l.SFillRGB;
}
RGB3 GetEForeRGB(const LyrRec& l) {
  return l.EForeRGB;
}
RGB3 GetEFillRGB(const LyrRec& l) {
  return l.EFillRGB;
}
RGB3 GetLRGB(const LyrRec& l) {
  return l.LRGB;
}
RGB3 GetNForeRGB(const LyrRec& l) {
  return l.NForeRGB;
}
RGB3 GetNFillRGB(const LyrRec& l) {
  return l.NFillRGB;
}

} // namespace velmora
