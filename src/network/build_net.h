#pragma once
#include <string>

#include "model/session.h"

namespace velmora {

// Where the build shows its progress: the build dialog's bar and caption. Without one the
// host's progress and caption line take it.
class NetProgress {
public:
  virtual ~NetProgress() = default;
  virtual void Range(long long max) = 0;
  virtual void Value(long long v) = 0;
  virtual void Text(const std::string& t) = 0;
  virtual void Show(bool on) = 0;
};

// BuildNet: every place where a line of the layer (types 3, 13, 23) crosses or touches
// another, within `tolerance` map units, written to .net and .ntx beside the layer. For each
// feature i, for each other live feature j in number order whose box meets i's, each
// segment of each part of j yields the first crossing in i's own part and segment order.
// The files are those of that quadratic walk, byte for byte; candidates come from a grid
// over the features' boxes. A terminate leaves files that hold the rows done so far.
// Returns false when nothing was written (busy, not a line layer, a file error).
bool BuildNet(Session& s, int lyr, double tolerance, NetProgress* progress = nullptr);

} // namespace velmora
