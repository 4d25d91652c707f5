#include "session/map_init.h"

#include "session/undo.h"

namespace velmora {

void MapInit(Session& s) {
  const int viewW = s.MapView.ViewW, viewH = s.MapView.ViewH;
  s.MapView = MapViewRec{};
  if (viewW > 0 && viewH > 0) s.MapView.ViewW = viewW, s.MapView.ViewH = viewH;
  s.MapView.MapTool = 1; // the first layer fits the stored window
  s.MapView.MapTarget = 1;

  s.MapUnit = 0, s.MapCoordsIdx = 0, s.MapZone = 1, s.MapSouth = 0;
  s.MeasUnit = 1, s.MeasCoordsIdx = 23, s.MeasZone = 1, s.MeasSouth = 0;

  // The journal: element 0 is never used, the first entry will be 1.
  UndoClear(s);

  // The window's companions go too; the screen's measures stay.
  const ViewVars screen = s.View;
  s.View = ViewVars{};
  s.View.PixPerMeter = screen.PixPerMeter;
  s.View.TwipsPerPixelX = screen.TwipsPerPixelX, s.View.TwipsPerPixelY = screen.TwipsPerPixelY;
  s.View.MapToolKeep = 2;
  s.Edit = EditVars{};
  s.ViewHist.clear();
  s.ViewPos = 0, s.ViewCount = 0;

  // Work slots stay; the user's rows go (their files were closed by whoever closed them).
  s.Lyr.Resize(0);
  s.LyrCount = 0;
  s.ActiveLyr = 0;
  s.Held = HeldLyrs{};
  s.ProjVersion = kProjVersion;
}

} // namespace velmora
