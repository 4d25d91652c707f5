#include "store/shp_arena.h"

#include <algorithm>

namespace velmora {

namespace {
constexpr size_t kChunk = size_t(1) << 20; // most layers fill a handful of these
constexpr size_t kAlign = alignof(double);
} // namespace

void* ShpArena::Alloc(size_t bytes) {
  bytes = (bytes + kAlign - 1) & ~(kAlign - 1);
  if (bytes == 0) bytes = kAlign;
  if (bytes > left_) {
    // A request larger than a quarter chunk gets a block of its own, so the tail of the
    // current chunk stays usable.
    if (bytes > kChunk / 4) {
      blocks_.push_back(std::make_unique_for_overwrite<std::byte[]>(bytes));
      used_ += bytes;
      return blocks_.back().get();
    }
    blocks_.push_back(std::make_unique_for_overwrite<std::byte[]>(kChunk));
    next_ = blocks_.back().get();
    left_ = kChunk;
  }
  void* p = next_;
  next_ += bytes;
  left_ -= bytes;
  used_ += bytes;
  return p;
}

} // namespace velmora
