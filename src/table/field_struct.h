#pragma once
#include <string>

#include "model/session.h"

namespace velmora {

// Changes of a layer's field structure. The table is rebuilt through a temporary file in
// the layer's folder with the new structure, rows copied over (unsaved edits included),
// and then takes the place of the old .dbf, which is opened again.

// Adds field `name` of type `typeLetter`, `width` and `decimals` behind the last field;
// existing rows get it blank. Runs as "Add Field" on the layer; false when refused.
bool AddFieldToLyr(Session& s, int lyr, const std::string& name, char typeLetter, int width,
                   int decimals);

} // namespace velmora
