#include "model/shp_arena.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <sys/mman.h>

namespace velmora {

namespace {
constexpr size_t kChunk = size_t(1) << 20; // most edits and small layers fill a few of these
constexpr size_t kAlign = alignof(double);
constexpr size_t kHuge = size_t(2) << 20;
} // namespace

ShpArena::~ShpArena() {
  for (const Block& b : blocks_) {
    if (b.mapped)
      ::munmap(b.p, b.size);
    else
      std::free(b.p);
  }
}

void ShpArena::Reserve(size_t bytes) {
  if (bytes < 4 * kChunk) return; // not worth a mapping of its own
  bytes = (bytes + kHuge - 1) & ~(kHuge - 1);
  void* p = ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (p == MAP_FAILED) return; // the ordinary chunks will do
  // Large pages: a layer of a million records takes a few hundred faults, not 50,000.
  ::madvise(p, bytes, MADV_HUGEPAGE);
  blocks_.push_back({static_cast<std::byte*>(p), bytes, true});
  next_ = static_cast<std::byte*>(p);
  left_ = bytes;
  reservation_ = blocks_.size() - 1;
}

void ShpArena::Trim() {
  if (reservation_ >= blocks_.size()) return;
  Block& b = blocks_[reservation_];
  size_t keep = size_t(next_ - b.p);
  keep = (keep + kHuge - 1) & ~(kHuge - 1);
  if (keep < b.size) {
    ::munmap(b.p + keep, b.size - keep);
    b.size = keep;
  }
  if (keep == 0) b.size = 0, b.mapped = false, b.p = nullptr; // free(nullptr) at the end
  left_ = 0;
  next_ = nullptr;
  reservation_ = SIZE_MAX;
}

void* ShpArena::Alloc(size_t bytes) {
  bytes = (bytes + kAlign - 1) & ~(kAlign - 1);
  if (bytes == 0) bytes = kAlign;
  if (bytes > left_) {
    // A request larger than a quarter chunk gets a block of its own, so the tail of the
    // current chunk stays usable.
    size_t size = bytes > kChunk / 4 ? bytes : kChunk;
    auto* p = static_cast<std::byte*>(std::malloc(size));
    if (!p) throw std::bad_alloc();
    blocks_.push_back({p, size, false});
    if (size == bytes) {
      used_ += bytes;
      return p;
    }
    reservation_ = SIZE_MAX; // a full reservation has nothing left to trim
    next_ = p;
    left_ = size;
  }
  void* p = next_;
  next_ += bytes;
  left_ -= bytes;
  used_ += bytes;
  return p;
}

} // namespace velmora
