#include "view/map_toolbar.h"

#include "view/map_tools.h"
#include "view/navigation.h"

namespace velmora {

ToolbarState GetToolbarState(const Session& s) {
  ToolbarState t;
  t.HasLayers = s.LyrCount > 0;
  t.Tool = t.HasLayers ? s.View.MapToolKeep : 0;
  t.ZoomPrev = t.HasLayers && s.View.ZoomPrevEnabled;
  t.ZoomNext = t.HasLayers && s.View.ZoomNextEnabled;
  return t;
}

void ChooseMapTool(Session& s, int tool) {
  s.MapView.MapTool = tool;
  s.View.MapToolKeep = tool;
}

void FirstLyrView(Session& s) {
  ChooseMapTool(s, kToolZoomIn);
  MapFull(s);
}

} // namespace velmora
