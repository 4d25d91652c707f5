#pragma once
#include <string>
#include <utility>
#include <vector>

#include "model/session.h"

namespace velmora {

// Identify (tool 8) and HyperLink (tool 9): the features under the pointer and their
// fields.

struct IdentifyHit {
  int Lyr = 0;
  int Rec = 0;
};

// On each visible shape layer, top one first, the feature under pixel (x, y): the newest
// feature that the hit test finds there.
std::vector<IdentifyHit> IdentifyAt(Session& s, double x, double y);
// The field names and value texts of a record (the fields 1 .. DbfFieldCount).
std::vector<std::pair<std::string, std::string>> RecordFields(Session& s, int lyr, int rec);
// The hyperlink of the first layer that answers the tool (HVisible) and has a feature under
// the pointer: the value of its field HFName, opened with the desktop's default application
// or with the layer's program (HswUse). A value naming a file beside the layer is taken
// from the layer's folder. Returns the opened target, "" when nothing was opened.
std::string FollowHyperLink(Session& s, double x, double y);

} // namespace velmora
