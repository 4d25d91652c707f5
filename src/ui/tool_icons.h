#pragma once
#include <QIcon>

namespace velmora {

// The toolbar's pictures, drawn here so that the program needs no icon theme.
enum class ToolIcon {
  FullExtent,
  ZoomIn,
  ZoomOut,
  Pan,
  ZoomPrevious,
  ZoomNext,
  Terminate,
  Measure,
  EditFeature,
  CreateFeature,
  SelectBox
};
QIcon MakeToolIcon(ToolIcon kind);

} // namespace velmora
