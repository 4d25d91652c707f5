#pragma once
#include <vector>

namespace velmora {

// The tool states that hold layer numbers. The list is closed: SwapLyr renumbers all of
// them, and RemoveLyr clears those that pointed at the removed layer. Their own subsystems
// (editing, 3D view, GPS, identify) read and write them by these names.
struct HeldLyrs {
  int EdtLyr = 0;               // the edit layer
  std::vector<int> SnapLyrs;    // the snap layers
  int CurFeatureLyr = 0;        // the current feature of the editor
  int FromFeatureLyr = 0;       // the "from" feature record of the editor
  int ToFeatureLyr = 0;         // the "to" feature record of the editor
  std::vector<int> VrtMoveLyrs; // the vertex-move list
  int View3DLyr = 0;            // the 3D layer
  int GPSLyr = 0;               // the GPS layer
  int IdentifyLyr = 0;          // the feature of the identify window
  int AddVertexLyr = 0;         // the feature of the add-vertex tool
};

} // namespace velmora
