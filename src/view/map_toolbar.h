#pragma once

#include "model/session.h"

namespace velmora {

// The map tools as the toolbar shows them.
struct ToolbarState {
  bool HasLayers = false; // the no-layers state disables the map tools
  int Tool = 0;           // the pressed tool button (MapToolKeep)
  bool ZoomPrev = false, ZoomNext = false;
};
ToolbarState GetToolbarState(const Session& s);

// A tool button: the tool in use and the tool to fall back to.
void ChooseMapTool(Session& s, int tool);
// The view of the first layer of a session: the zoom-in tool and the full extent.
void FirstLyrView(Session& s);

} // namespace velmora
