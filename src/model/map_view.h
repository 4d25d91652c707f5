#pragma once
#include <cstdint>

namespace velmora {

// The world window, view size, tool and target of the map: one record, copied whole into
// the view history. World to pixel: x = (X - MapLeft) / MapFactor, y = (MapTop - Y) / MapFactor.
struct MapViewRec {
  int MapTool = 1;   // tool code; also the action of MapTools
  int MapTarget = 1; // 1 window, 2 image, 3 printer
  int ViewW = 800, ViewH = 600;
  double MapLeft = 0, MapRight = 0, MapTop = 0, MapBottom = 0;
  double DragX1 = 0, DragY1 = 0, DragX2 = 0, DragY2 = 0;
  double MapFactor = 1; // world units per pixel
  int MapMode = 1; // file access: 1 locked for this program, 4 shared read and write, else read
};

using ViewHistEntry = MapViewRec;

// Written by MapTools beside the window.
struct ViewVars {
  double ClipLeft = 0, ClipRight = 0, ClipTop = 0, ClipBottom = 0;
  double PickLeft = 0, PickRight = 0, PickTop = 0, PickBottom = 0, PickX = 0, PickY = 0;
  double MapScale = 0;
  double PixPerMeter = 3780; // 96 pixels per inch
  double CursorX = 0, CursorY = 0;
  double TwipsPerPixelX = 15, TwipsPerPixelY = 15; // 1440 twips an inch at 96 pixels an inch
  int MapToolKeep = 2;
  int LastAction = 0;
  // The four sides MapFit fits to.
  double FitLeft = 0, FitTop = 0, FitRight = 0, FitBottom = 0;
  bool ZoomPrevEnabled = false, ZoomNextEnabled = false;
  bool GpsFollow = false; // GPS following with a fix starts the data box
  double GpsX = 0, GpsY = 0;
  // The feature under edit on the map (of Held.CurFeatureLyr), and its hot vertex.
  int EditFeature = 0, EditHotPart = -1, EditHotVertex = -1;
};

} // namespace velmora
