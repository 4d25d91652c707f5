#pragma once
#include <string>
#include <vector>

#include "model/session.h"
#include "model/surface_types.h"

namespace velmora {

// The new layer a surface function writes, held in a work slot while it runs.

// Makes the shapefile (PolygonZ 15 with ID and AverageZ, or PolylineZ 13 with ID and
// CONTOUR) in a free work slot locked under `busyFunc`. Returns the slot (0 or below); 1
// when the files can't be made or a layer of the session is open on them.
int OpenSurfaceOut(Session& s, const std::string& path, int shapeType, const std::string& busyFunc);
// A triangle a, b, c, a with its row: ID the feature number, AverageZ the mean Z.
bool WriteTriangle(Session& s, int out, const TinPoint& a, const TinPoint& b, const TinPoint& c,
                   double scale);
// A contour line at height z with its row: ID the feature number, CONTOUR z.
bool WriteContourLine(Session& s, int out, const std::vector<double>& xy, float z, double scale);
// Refreshes the extent, saves the layer and frees the slot. False when the save failed;
// the unfinished files are then removed.
bool CloseSurfaceOut(Session& s, int out, const std::string& path);

} // namespace velmora
