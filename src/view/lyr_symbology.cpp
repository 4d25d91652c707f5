#include "view/lyr_symbology.h"

#include <algorithm>

namespace velmora {

namespace {
uint8_t Byte(int v) {
  return uint8_t(std::clamp(v, 0, 255));
}
} // namespace

LyrSymbology GetLyrSymbology(const Session& s, int n) {
  const LyrRec& l = s.Lyr[n];
  LyrSymbology y;
  if (!l.CForeRGB.empty()) {
    y.Class0 = {l.CForeRGB[0], l.CFillRGB[0], l.CDrawStyle[0], l.CDrawWidth[0], l.CFillStyle[0]};
  }
  y.Selected = {l.SForeRGB, l.SFillRGB, l.SDrawStyle, l.SDrawWidth, l.SFillStyle};
  y.Edit = {l.EForeRGB, l.EFillRGB, l.EDrawStyle, l.EDrawWidth, l.EFillStyle};
  y.ShowVertices = l.DShowVrt == 1;
  y.VertexWidth = l.DVrtDrawWidth;
  y.ScaleLimited = l.DScale == 1;
  y.ScaleMin = l.DScaleLMT[0], y.ScaleMax = l.DScaleLMT[1];
  y.Labels = l.LVisible == 1;
  y.LabelField = l.LFName;
  y.FontName = l.LfontName;
  y.FontSize = l.LFontSize;
  y.FontBold = l.LFontBold != 0, y.FontItalic = l.LFontItalic != 0;
  y.LabelColour = l.LRGB;
  y.LabelScaleLimited = l.LScale == 1;
  y.LabelScaleMin = l.LScaleLMT[0], y.LabelScaleMax = l.LScaleLMT[1];
  return y;
}

void ApplyLyrSymbology(Session& s, int n, const LyrSymbology& y) {
  if (n < 1 || n > s.LyrCount) return;
  LyrRec& l = s.Lyr[n];
  if (l.CForeColor.empty()) SizeClasses(l, 0);
  SetCForeColor(l, 0, y.Class0.Fore.R, y.Class0.Fore.G, y.Class0.Fore.B);
  SetCFillColor(l, 0, y.Class0.Fill.R, y.Class0.Fill.G, y.Class0.Fill.B);
  l.CDrawStyle[0] = Byte(y.Class0.DrawStyle);
  l.CDrawWidth[0] = Byte(y.Class0.DrawWidth);
  l.CFillStyle[0] = Byte(y.Class0.FillStyle);
  SetSForeColor(l, y.Selected.Fore.R, y.Selected.Fore.G, y.Selected.Fore.B);
  SetSFillColor(l, y.Selected.Fill.R, y.Selected.Fill.G, y.Selected.Fill.B);
  l.SDrawStyle = Byte(y.Selected.DrawStyle);
  l.SDrawWidth = Byte(y.Selected.DrawWidth);
  l.SFillStyle = Byte(y.Selected.FillStyle);
  SetEForeColor(l, y.Edit.Fore.R, y.Edit.Fore.G, y.Edit.Fore.B);
  SetEFillColor(l, y.Edit.Fill.R, y.Edit.Fill.G, y.Edit.Fill.B);
  l.EDrawStyle = Byte(y.Edit.DrawStyle);
  l.EDrawWidth = Byte(y.Edit.DrawWidth);
  l.EFillStyle = Byte(y.Edit.FillStyle);
  l.DShowVrt = y.ShowVertices ? 1 : 0;
  l.DVrtDrawWidth = Byte(y.VertexWidth);
  l.DScale = y.ScaleLimited ? 1 : 0;
  l.DScaleLMT = {y.ScaleMin, y.ScaleMax};
  l.LVisible = y.Labels ? 1 : 0;
  l.LFName = y.LabelField;
  l.LfontName = y.FontName;
  l.LFontSize = Byte(y.FontSize);
  l.LFontBold = y.FontBold ? 1 : 0;
  l.LFontItalic = y.FontItalic ? 1 : 0;
  SetLColor(l, y.LabelColour.R, y.LabelColour.G, y.LabelColour.B);
  l.LScale = y.LabelScaleLimited ? 1 : 0;
  l.LScaleLMT = {y.LabelScaleMin, y.LabelScaleMax};
  s.ProjChanged = -1;
  s.host->LayerItemChanged(n);
  s.host->MapRedraw();
}

} // namespace velmora
