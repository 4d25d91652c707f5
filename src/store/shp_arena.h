#pragma once
#include <cstddef>
#include <memory>
#include <vector>

namespace velmora {

// Bulk storage for the parts and vertices read from a file: a few large blocks instead
// of one allocation per part. Freed as a whole with the layer's geometry.
class ShpArena {
public:
  void* Alloc(size_t bytes);
  size_t Bytes() const { return used_; }

private:
  std::vector<std::unique_ptr<std::byte[]>> blocks_;
  size_t left_ = 0;
  std::byte* next_ = nullptr;
  size_t used_ = 0;
};

} // namespace velmora
