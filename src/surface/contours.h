#pragma once
#include <string>

#include "model/session.h"

namespace velmora {

// Contours of the surface of layer `lyr` (made by `method` as for a TIN) at every `interval`
// from `base`, into a new PolylineZ layer `toFile` with the fields ID and CONTOUR. Returns
// the number of lines written, -1 when nothing was built. The new layer is saved and
// closed; the caller adds it to the map.
int BuildContours(Session& s, int lyr, int criteria, int heightField, float interval, float base,
                  const std::string& toFile, int method);

} // namespace velmora
