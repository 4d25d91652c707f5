#pragma once
#include <string>
#include <vector>

namespace velmora {

// One entry of the feature-edit journal: a redo and an undo command line.
struct UndoEntry {
  std::string RedoLine;
  std::string UndoLine;
};

} // namespace velmora
