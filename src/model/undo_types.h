#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "model/shp_types.h"

namespace velmora {

// One layer's selection as it stood when the entry was made.
struct UndoSelSlot {
  int32_t SelLyr = 0; // the layer number, 0 for none
  std::vector<uint8_t> SelSnap;
};

// One entry of the feature-edit journal: a redo and an undo command line, and the two
// snapshots for what a line can't reverse.
struct UndoEntry {
  std::string RedoLine;
  std::string UndoLine;
  ShpRecord UndoRec;                // one feature, empty unless the operation filled it
  std::vector<UndoSelSlot> UndoSel; // 0 .. LyrCount as of the entry's creation
};

} // namespace velmora
