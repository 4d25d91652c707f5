#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "model/session.h"

namespace velmora {

// Changes of a layer's field structure. The table is rebuilt once through a temporary file
// in the layer's folder with the new structure, every row's values carried across by name
// (unsaved edits of the swap file included), and then takes the place of the old .dbf,
// which is opened again. Each runs under the layer's busy frame and logs its message, or
// " *** <operation> <name> has been canceled *** " when refused. False when refused.

// Adds field `name` of type `typeLetter`, `width` and `decimals` behind the last field;
// existing rows get it blank. Runs as "Add Field".
bool AddFieldToLyr(Session& s, int lyr, const std::string& name, char typeLetter, int width,
                   int decimals);
// "Delete Field": the field and its values go.
bool DeleteFieldOfLyr(Session& s, int lyr, const std::string& name);
// "Rename Field": values stay.
bool RenameFieldOfLyr(Session& s, int lyr, const std::string& name, const std::string& newName);
// "Change Field": new type, width and decimals. A value that doesn't fit the new type
// (not a number, not a date, too long) becomes blank; their count is logged.
bool ChangeFieldOfLyr(Session& s, int lyr, const std::string& name, char typeLetter, int width,
                      int decimals);
// Is the letter a field type a table can hold (C, N, F, D, L)?
bool FieldTypeKnown(char typeLetter);

} // namespace velmora
