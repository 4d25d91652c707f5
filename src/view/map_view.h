#pragma once
#include <cstdint>

namespace velmora {

// The world window, view size, tool and target of the map.
struct MapViewRec {
  double MapLeft = 0, MapTop = 0, MapRight = 0, MapBottom = 0;
  double MapFactor = 1; // map units per pixel
  int ViewW = 800, ViewH = 600;
  int MapTool = 2;      // see the tool codes of the editor; 2 "ZoomIn"
  int MapTarget = 1;    // 1 window, 2 image, 3 printer
  int MapMode = 1;      // 1 files locked for this program, 4 shared read and write, else read
};

struct ViewHistEntry {
  double Left = 0, Top = 0, Factor = 1;
};

} // namespace velmora
