#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace velmora {

// Bulk storage for the parts and vertices read from a file: a few large blocks instead
// of one allocation per part. Freed as a whole with the layer's geometry.
class ShpArena {
public:
  ShpArena() = default;
  ShpArena(const ShpArena&) = delete;
  ShpArena& operator=(const ShpArena&) = delete;
  ~ShpArena();

  void* Alloc(size_t bytes);
  size_t Bytes() const { return used_; }
  // Sets aside address space for about `bytes` more (a reader that knows its file's size);
  // pages are taken only as they are used.
  void Reserve(size_t bytes);
  // Gives back the unused tail of a reservation.
  void Trim();

private:
  struct Block {
    std::byte* p;
    size_t size;
    bool mapped;
  };
  std::vector<Block> blocks_;
  size_t left_ = 0;
  std::byte* next_ = nullptr;
  size_t used_ = 0;
  size_t reservation_ = SIZE_MAX; // index of a reservation still being filled
};

} // namespace velmora
