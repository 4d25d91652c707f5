#pragma once
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "model/dbf_types.h"
#include "model/img_types.h"
#include "model/net_types.h"
#include "model/shp_types.h"
#include "platform/colour.h"

namespace velmora {

// One row of the layer table. A default-constructed row is the all-zero template that
// ClearLyr assigns. Class arrays run 0 .. CFCount.
struct LyrRec {
  std::string LyrName;
  std::string Fsource;
  int32_t SelCount = 0;
  std::vector<uint8_t> SelBits;
  std::vector<uint8_t> QryBits;
  uint8_t LyrKind = 0; // 0 not open, 1 shape layer, 2 image layer
  uint8_t DVisable = 0;
  uint8_t DScale = 0;
  std::array<double, 2> DScaleLMT{};
  uint8_t DShowVrt = 0;
  uint8_t DVrtDrawWidth = 0;
  std::vector<Colour> CForeColor, CFillColor;
  std::vector<uint8_t> CDrawMode, CDrawStyle, CDrawWidth, CFillStyle;
  int32_t CFName = 0;
  int32_t CFCount = 0;
  std::vector<std::string> CFieldValues;
  uint8_t SSelectable = 0;
  Colour SForeColor = 0, SFillColor = 0;
  uint8_t SDrawMode = 0, SDrawStyle = 0, SDrawWidth = 0, SFillStyle = 0;
  uint8_t EEditable = 0;
  Colour EForeColor = 0, EFillColor = 0;
  uint8_t EDrawMode = 0, EDrawStyle = 0, EDrawWidth = 0, EVertexWidth = 0, EFillStyle = 0;
  uint8_t LVisible = 0;
  int32_t LFName = 0;
  std::string LfontName;
  uint8_t LFontBold = 0, LFontItalic = 0;
  uint8_t LFontSize = 0;
  uint8_t LFontForceSize = 0;
  uint8_t LSetRefereMapScale = 0;
  double LRefereMapScale = 0;
  Colour LColor = 0;
  uint8_t LScale = 0;
  std::array<double, 2> LScaleLMT{};
  uint8_t NuseFactor = 0;
  int32_t NfactorField = 0;
  Colour NForeColor = 0, NFillColor = 0;
  uint8_t NDrawMode = 0, NDrawStyle = 0, NDrawWidth = 0, NFillStyle = 0;
  uint8_t HVisible = 0;
  int32_t HFName = 0;
  uint8_t HswUse = 0;
  std::string HswName;
  uint8_t HtVisible = 0;
  int32_t HtFixed = 0;
  int32_t HtFName = 0;
  uint8_t HtSource = 0, HtScale = 0;
  std::array<double, 2> HtScaleLMT{};
  std::array<float, 4> SavedExtent{}; // left, bottom, right, top at the last project save
  uint8_t VBScriptSRC = 0;
  uint8_t VBFuncListOpt = 0;
  std::string VBScripttext;
  std::string VBScriptFile;
  std::string VBScriptDownload;
  std::vector<RGB3> CForeRGB, CFillRGB;
  RGB3 SForeRGB, SFillRGB;
  RGB3 LRGB;
  RGB3 NForeRGB, NFillRGB;
  RGB3 EForeRGB, EFillRGB;
  int16_t ProTab = 0;
  int16_t ProTabSub = 0;
  std::string BusyFunc;
  int16_t LyrBusy = 0;
  int16_t LyrTerminate = 0;
  int16_t TblOpen = 0;
  int16_t ProOpen = 0;
  uint8_t LoadSkipped = 0; // a project read for a layout left the layer closed
  std::string SaveErr;     // why the last save of the layer failed; "" after a good one

  ShpBlock Shp; // geometry (.shp, .shx)
  DbfBlock Dbf; // attributes (.dbf, swap file)
  NetBlock Net; // network (.net, .ntx)
  ImgBlock Img; // raster image and world file
};

// The extent words of the .shp header.
inline double& LeftExtend(LyrRec& l) {
  return l.Shp.ShpHeader.Xmin;
}
inline double& BottomExtend(LyrRec& l) {
  return l.Shp.ShpHeader.Ymin;
}
inline double& RightExtend(LyrRec& l) {
  return l.Shp.ShpHeader.Xmax;
}
inline double& TopExtend(LyrRec& l) {
  return l.Shp.ShpHeader.Ymax;
}

// The colour setters keep the packed colour and its three bytes in step.
void SetCForeColor(LyrRec& l, int cls, uint8_t r, uint8_t g, uint8_t b);
void SetCFillColor(LyrRec& l, int cls, uint8_t r, uint8_t g, uint8_t b);
void SetSForeColor(LyrRec& l, uint8_t r, uint8_t g, uint8_t b);
void SetSFillColor(LyrRec& l, uint8_t r, uint8_t g, uint8_t b);
void SetEForeColor(LyrRec& l, uint8_t r, uint8_t g, uint8_t b);
void SetEFillColor(LyrRec& l, uint8_t r, uint8_t g, uint8_t b);
void SetLColor(LyrRec& l, uint8_t r, uint8_t g, uint8_t b);
void SetNForeColor(LyrRec& l, uint8_t r, uint8_t g, uint8_t b);
void SetNFillColor(LyrRec& l, uint8_t r, uint8_t g, uint8_t b);
RGB3 GetCForeRGB(const LyrRec& l, int cls);
RGB3 GetCFillRGB(const LyrRec& l, int cls);
RGB3 GetSForeRGB(const LyrRec& l);
RGB3 GetSFillRGB(const LyrRec& l);
RGB3 GetEForeRGB(const LyrRec& l);
RGB3 GetEFillRGB(const LyrRec& l);
RGB3 GetLRGB(const LyrRec& l);
RGB3 GetNForeRGB(const LyrRec& l);
RGB3 GetNFillRGB(const LyrRec& l);
// Sizes every class array to 0 .. cfCount, keeping what is there.
void SizeClasses(LyrRec& l, int cfCount);

} // namespace velmora
