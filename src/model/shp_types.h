#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace velmora {

struct XY {
  double X = 0, Y = 0;
};

class ShpArena; // bulk storage of the vertices and parts read from a file (shp_arena.h)

// One part of a feature. Its vertices (and Z and M beside them when the type has them)
// live in one block: either borrowed from the layer's arena, as read from the file, or
// owned by the part once an edit has resized it. Copies are deep and always owned;
// moves keep the block where it is, so a record moves only within its own layer.
struct ShpPart {
  int32_t PartStart = 0; // index of the part's first vertex in the file's point list
  int32_t PartCount = 0; // live vertices; 0 for a soft-deleted part
  int32_t PartFlag = 0;  // 0 has vertices, -1 empty in the file; MultiPatch part type in 31

private:
  uint32_t n_ = 0; // vertices in the block; placed here to keep the part at 32 bytes

public:
  ShpPart() = default;
  ShpPart(const ShpPart& o);
  ShpPart(ShpPart&& o) noexcept;
  ShpPart& operator=(const ShpPart& o);
  ShpPart& operator=(ShpPart&& o) noexcept;
  ~ShpPart();

  // The vertices; size() may differ from PartCount (soft-deleted parts keep theirs).
  std::span<XY> PartPoints() { return {pts(), n_}; }
  std::span<const XY> PartPoints() const { return {pts(), n_}; }
  // One per vertex when present, else empty.
  std::span<double> PartZ() { return {zs(), hasZ_ ? n_ : 0}; }
  std::span<const double> PartZ() const { return {zs(), hasZ_ ? n_ : 0}; }
  std::span<double> PartM() { return {ms(), hasM_ ? n_ : 0}; }
  std::span<const double> PartM() const { return {ms(), hasM_ ? n_ : 0}; }
  size_t Size() const { return n_; }
  bool HasZ() const { return hasZ_; }
  bool HasM() const { return hasM_; }

  // Resizes the vertex arrays keeping the leading vertices; new ones are zero.
  void Resize(size_t n);
  // Adds or drops the Z and M arrays (new values zero).
  void SetZM(bool z, bool m);
  // Inserts one vertex before index `at` (at == Size() appends).
  void Insert(size_t at, XY p, double z, double m);
  // Removes `count` vertices from `first`.
  void Erase(size_t first, size_t count);
  // Takes `n` vertices of storage from the arena (reader only); contents undefined.
  void BorrowFrom(ShpArena& arena, size_t n, bool z, bool m);

private:
  double* blk_ = nullptr; // n XY pairs, then n Z if hasZ_, then n M if hasM_
  uint32_t cap_ = 0;      // vertices the block can hold; 0 = borrowed from an arena
  bool hasZ_ = false, hasM_ = false;

  XY* pts() const { return reinterpret_cast<XY*>(blk_); }
  double* zs() const { return blk_ + 2 * size_t(cap_ ? cap_ : n_); }
  double* ms() const { return zs() + (hasZ_ ? size_t(cap_ ? cap_ : n_) : 0); }
  void Reallocate(size_t cap, size_t keep, bool z, bool m);
  void Release();
};

// One feature. Slot 0 of a layer's ShpRecs is its frame record, not a feature.
struct ShpRecord {
  int32_t ShapeType = 0; // 0 means deleted or empty
  int32_t NumPoints = 0; // live vertices
  int32_t NumParts = 0;  // entries of Parts, live or soft-deleted
  uint8_t LabelReady = 0;

private:
  bool partsOwned_ = false; // owned arrays are freed by the record; placed here for size

public:
  double Xmin = 0, Ymin = 0, Xmax = 0, Ymax = 0;
  double Zmin = 0, Zmax = 0, Mmin = 0, Mmax = 0;
  double LabelX = 0, LabelY = 0, LabelAngle = 0;

  ShpRecord() = default;
  ShpRecord(const ShpRecord& o);
  ShpRecord(ShpRecord&& o) noexcept;
  ShpRecord& operator=(const ShpRecord& o);
  ShpRecord& operator=(ShpRecord&& o) noexcept;
  ~ShpRecord();

  // The parts, 0 .. NumParts - 1 (never more than the array holds).
  std::span<ShpPart> Parts() { return {Arr(), PartsShown()}; }
  std::span<const ShpPart> Parts() const { return {Arr(), PartsShown()}; }
  // Entries of the part array. Equal to NumParts except in a deleted record read from a
  // file, which keeps one empty part with NumParts 0.
  int PartSlots() const { return parts_ ? int(*static_cast<const uint32_t*>(parts_)) : 0; }
  ShpPart& Part(int i) { return Arr()[i]; }
  const ShpPart& Part(int i) const { return Arr()[i]; }

  // Sets the number of parts (NumParts), keeping the leading ones; new parts are empty.
  void ResizeParts(int n);
  // Inserts a part before index `at`, returns it.
  ShpPart& InsertPart(int at);
  void ErasePart(int at);
  // Takes the part array from the arena (reader only): `n` default parts.
  void BorrowParts(ShpArena& arena, int n);

private:
  // The part array behind an 8-byte header: its size, then its capacity (0 in an arena).
  void* parts_ = nullptr;
  ShpPart* Arr() const {
    return parts_ ? reinterpret_cast<ShpPart*>(static_cast<std::byte*>(parts_) + 8) : nullptr;
  }
  size_t PartsShown() const {
    int n = PartSlots();
    return size_t(NumParts < 0 ? 0 : NumParts < n ? NumParts : n);
  }
  void ReserveParts(int cap);
  void ReleaseParts();
};
static_assert(sizeof(ShpPart) == 32);
static_assert(sizeof(ShpRecord) == 112);

// The 100-byte main header of .shp and .shx, its words in machine order.
struct ShpMainHeader {
  int32_t FileCode = 0;
  std::array<int32_t, 5> Unused{}; // carried along on every rewrite, never cleared
  int32_t FileLength = 0;          // in 16-bit words
  int32_t Version = 0;
  int32_t ShapeType = 0;
  double Xmin = 0, Ymin = 0, Xmax = 0, Ymax = 0;
  double Zmin = 0, Zmax = 0, Mmin = 0, Mmax = 0;
};

// The geometry block of a layer row.
struct ShpBlock {
  int32_t ShpType = 0;
  ShpMainHeader ShpHeader; // Xmin .. Ymax are the layer's extent (LeftExtend ...)
  ShpMainHeader ShxHeader;
  int32_t RecHdrNumber = 0, RecHdrLength = 0;
  int32_t RecOffset = 0, RecLength = 0;
  int32_t ShxFile = 0, ShpFile = 0;
  int32_t RecCount = 0;
  int16_t ShpOpen = 0, ShxOpen = 0;
  int16_t ShpChanged = 0;
  int16_t ExtentStale = 0;        // set by movement code: the extent must be recomputed
  int16_t ZWithoutM = 0;          // a Z layer read without the optional M block: written without it
  uint32_t BoxGen = 0;            // counts changes of records and their boxes (pick index)
  std::vector<ShpRecord> ShpRecs; // slot 0 is the frame record; capacity = ShpRecs.size() - 1
  std::shared_ptr<ShpArena> Arena; // storage borrowed by the records read from the files

  // Records may borrow from Arena, so they always go before it.
  ShpBlock() = default;
  ShpBlock(const ShpBlock&) = default;
  ShpBlock(ShpBlock&&) noexcept = default;
  ShpBlock& operator=(const ShpBlock&) = default;
  ShpBlock& operator=(ShpBlock&&) noexcept = default;
  ~ShpBlock() { ShpRecs.clear(); }
};

} // namespace velmora
