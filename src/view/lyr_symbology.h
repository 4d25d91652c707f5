#pragma once
#include <string>

#include "model/session.h"

namespace velmora {

// A pen and brush of the layer record: colours as three bytes, GDI numbers for the rest.
struct PenSpec {
  RGB3 Fore, Fill;
  int DrawStyle = 0, DrawWidth = 1, FillStyle = 0;
};

// What the layer properties dialog edits.
struct LyrSymbology {
  PenSpec Class0, Selected, Edit;
  bool ShowVertices = false;
  int VertexWidth = 2;
  bool ScaleLimited = false;
  double ScaleMin = 0, ScaleMax = 0;
  bool Labels = false;
  int LabelField = 0;
  std::string FontName = "Times New Roman";
  int FontSize = 8;
  bool FontBold = false, FontItalic = false;
  RGB3 LabelColour;
  bool LabelScaleLimited = false;
  double LabelScaleMin = 0, LabelScaleMax = 0;
};

LyrSymbology GetLyrSymbology(const Session& s, int n);
// Stores the settings in the row through the colour setters, marks the project changed,
// redraws the map and the list item.
void ApplyLyrSymbology(Session& s, int n, const LyrSymbology& sym);

} // namespace velmora
