#pragma once
#include <string>

#include "coords/coord_conv.h"
#include "model/session.h"

namespace velmora {

// Rewrites every coordinate of open layer `lyr` in place, between WGS 84 degrees and grid
// record `srcDatum` or `dstDatum`: exactly one of them is not 0, and a non-zero `srcDatum`
// means grid to geographic. Runs in the running-function frame under "Coordinates System
// Converting", yields after each record, stops at "Terminate" with what is done so far, then
// recomputes the extent and shows the map's full extent. The layer is marked changed.
// False when the layer could not be taken up (busy, not open, an image while the image store
// gives no pixels).
bool ConvertLyrCoords(Session& s, int lyr, int srcDatum, int dstDatum, int zone, bool south);

// What the conversion dialog asks for: a layer, a direction, a record and a zone text.
struct ConvertCoordsArgs {
  int Lyr = 0;
  int Datum = 0;
  CoordDir Dir = CoordDir::GeoToGrid;
  std::string ZoneText;
  bool South = false;
};

enum class ConvertStatus {
  Busy,       // refused, the layer runs another function
  NotReady,   // no open layer or no record chosen
  BadZone,    // the zone text is not 1 to 60: the dialog shows "Error"
  Converted,  // done, success line logged
  Terminated, // stopped by "Terminate", refusal line logged
};

// A zone text is good when its number is over 0 and under 61.
bool ZoneTextOk(const std::string& text, int& zone);
// The dialog's start of a direction, with its messages in the log.
ConvertStatus ConvertCoordsCmd(Session& s, const ConvertCoordsArgs& a);

// "Converting Coordinates System in Layer <name> from ..." in the two directions.
std::string ConvertCoordsText(const Session& s, const ConvertCoordsArgs& a);

// The advice of the dialog's two zone labels: hemisphere and zone of the layer's left-bottom
// and right-top corners ("North 32"), when its extent is geographic; false and blanks if not.
bool CornerZones(const Session& s, int lyr, std::string& leftBottom, std::string& rightTop);

} // namespace velmora
