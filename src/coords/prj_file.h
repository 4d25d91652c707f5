#pragma once
#include <string>

#include "model/session.h"

namespace velmora {

// Reads the .prj file that belongs to `path` (its extension replaced by "prj") and, when it
// defines a Transverse Mercator grid, adds it to s.DatumTbl as a user record without datum
// shift. A missing file does nothing and says nothing. Called for a .prj dropped on the map
// and by the "Load Prj Files" button.
void LoadPrjFile(Session& s, const std::string& path);

// The keyword scan of s.PrjStage.PrjText into s.PrjStage. Values whose keyword is absent
// keep what an earlier file left in the stage.
void ParsePrj(Session& s);

} // namespace velmora
