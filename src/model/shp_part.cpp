// Storage of parts and records: vertex blocks and part arrays, borrowed from the layer's
// arena as read, owned (copy on write) once an edit resizes them.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include "model/shp_arena.h"
#include "model/shp_types.h"

namespace velmora {

namespace {

size_t Doubles(size_t n, bool z, bool m) {
  return n * (2 + (z ? 1 : 0) + (m ? 1 : 0));
}

double* AllocDoubles(size_t count) {
  auto* p = static_cast<double*>(std::malloc(count * sizeof(double)));
  if (!p) throw std::bad_alloc();
  return p;
}

// The header in front of a part array.
struct PartsHdr {
  uint32_t size;
  uint32_t cap; // 0 for an array in an arena
};
static_assert(sizeof(PartsHdr) == 8 && alignof(ShpPart) == 8);

PartsHdr* HdrOf(void* block) {
  return static_cast<PartsHdr*>(block);
}

void* NewPartArray(uint32_t cap) {
  void* raw = std::malloc(sizeof(PartsHdr) + size_t(cap) * sizeof(ShpPart));
  if (!raw) throw std::bad_alloc();
  auto* hdr = static_cast<PartsHdr*>(raw);
  hdr->size = 0;
  hdr->cap = cap;
  return raw;
}
ShpPart* ArrOf(void* block) {
  return reinterpret_cast<ShpPart*>(static_cast<std::byte*>(block) + sizeof(PartsHdr));
}

} // namespace

// ---- ShpPart ----

ShpPart::ShpPart(const ShpPart& o)
    : PartStart(o.PartStart), PartCount(o.PartCount), PartFlag(o.PartFlag) {
  if (o.n_ == 0) {
    hasZ_ = o.hasZ_;
    hasM_ = o.hasM_;
    return;
  }
  Reallocate(o.n_, 0, o.hasZ_, o.hasM_);
  n_ = o.n_;
  std::memcpy(pts(), o.pts(), size_t(n_) * sizeof(XY));
  if (hasZ_) std::memcpy(zs(), o.zs(), size_t(n_) * sizeof(double));
  if (hasM_) std::memcpy(ms(), o.ms(), size_t(n_) * sizeof(double));
}

ShpPart::ShpPart(ShpPart&& o) noexcept
    : PartStart(o.PartStart), PartCount(o.PartCount), PartFlag(o.PartFlag), n_(o.n_), blk_(o.blk_),
      cap_(o.cap_), hasZ_(o.hasZ_), hasM_(o.hasM_) {
  o.blk_ = nullptr;
  o.n_ = o.cap_ = 0;
}

ShpPart& ShpPart::operator=(const ShpPart& o) {
  if (this == &o) return *this;
  ShpPart tmp(o);
  return *this = std::move(tmp);
}

ShpPart& ShpPart::operator=(ShpPart&& o) noexcept {
  if (this == &o) return *this;
  Release();
  PartStart = o.PartStart;
  PartCount = o.PartCount;
  PartFlag = o.PartFlag;
  n_ = o.n_;
  blk_ = o.blk_;
  cap_ = o.cap_;
  hasZ_ = o.hasZ_;
  hasM_ = o.hasM_;
  o.blk_ = nullptr;
  o.n_ = o.cap_ = 0;
  return *this;
}

ShpPart::~ShpPart() {
  Release();
}

void ShpPart::Release() {
  if (cap_) std::free(blk_);
  blk_ = nullptr;
  cap_ = 0;
  n_ = 0;
}

// Moves the vertices into an owned block of `cap`, keeping the first `keep` of them (and
// their Z and M where both layouts have them); new Z and M values are zero.
void ShpPart::Reallocate(size_t cap, size_t keep, bool z, bool m) {
  if (cap == 0) {
    Release();
    hasZ_ = z;
    hasM_ = m;
    return;
  }
  if (cap > UINT32_MAX) throw std::bad_alloc();
  double* nb = AllocDoubles(Doubles(cap, z, m));
  double* nz = nb + 2 * cap;
  double* nm = nz + (z ? cap : 0);
  keep = std::min({keep, size_t(n_), cap});
  if (keep) std::memcpy(nb, pts(), keep * sizeof(XY));
  if (z) {
    if (hasZ_ && keep)
      std::memcpy(nz, zs(), keep * sizeof(double));
    else
      std::fill(nz, nz + keep, 0.0);
  }
  if (m) {
    if (hasM_ && keep)
      std::memcpy(nm, ms(), keep * sizeof(double));
    else
      std::fill(nm, nm + keep, 0.0);
  }
  if (cap_) std::free(blk_);
  blk_ = nb;
  cap_ = uint32_t(cap);
  n_ = uint32_t(keep);
  hasZ_ = z;
  hasM_ = m;
}

void ShpPart::Resize(size_t n) {
  if (n == n_) return;
  if (cap_ == 0 || n > cap_) {
    // Appending vertex by vertex must not copy the block each time.
    size_t cap = cap_ == 0 ? n : std::max(n, size_t(cap_) + size_t(cap_) / 2);
    Reallocate(cap, n_, hasZ_, hasM_);
  }
  if (n > n_) {
    size_t old = n_;
    std::fill(blk_ + 2 * old, blk_ + 2 * n, 0.0);
    n_ = uint32_t(n); // zs() and ms() are placed by the capacity, not the size
    if (hasZ_) std::fill(zs() + old, zs() + n, 0.0);
    if (hasM_) std::fill(ms() + old, ms() + n, 0.0);
  } else {
    n_ = uint32_t(n);
    if (n_ == 0) Release();
  }
}

void ShpPart::SetZM(bool z, bool m) {
  if (z == hasZ_ && m == hasM_) return;
  if (n_ == 0) {
    hasZ_ = z;
    hasM_ = m;
    return;
  }
  Reallocate(cap_ ? cap_ : n_, n_, z, m);
}

void ShpPart::Insert(size_t at, XY p, double z, double m) {
  size_t n = n_;
  if (at > n) at = n;
  Resize(n + 1);
  XY* P = pts();
  std::memmove(P + at + 1, P + at, (n - at) * sizeof(XY));
  P[at] = p;
  if (hasZ_) {
    double* Z = zs();
    std::memmove(Z + at + 1, Z + at, (n - at) * sizeof(double));
    Z[at] = z;
  }
  if (hasM_) {
    double* M = ms();
    std::memmove(M + at + 1, M + at, (n - at) * sizeof(double));
    M[at] = m;
  }
}

void ShpPart::Erase(size_t first, size_t count) {
  size_t n = n_;
  if (first >= n || count == 0) return;
  count = std::min(count, n - first);
  if (cap_ == 0) Reallocate(n, n, hasZ_, hasM_); // an arena block is never reshaped in place
  size_t tail = n - first - count;
  std::memmove(pts() + first, pts() + first + count, tail * sizeof(XY));
  if (hasZ_) std::memmove(zs() + first, zs() + first + count, tail * sizeof(double));
  if (hasM_) std::memmove(ms() + first, ms() + first + count, tail * sizeof(double));
  Resize(n - count);
}

void ShpPart::BorrowFrom(ShpArena& arena, size_t n, bool z, bool m) {
  Release();
  hasZ_ = z;
  hasM_ = m;
  if (n == 0) return;
  if (n > UINT32_MAX) throw std::bad_alloc();
  blk_ = static_cast<double*>(arena.Alloc(Doubles(n, z, m) * sizeof(double)));
  n_ = uint32_t(n);
}

// ---- ShpRecord ----

ShpRecord::ShpRecord(const ShpRecord& o)
    : ShapeType(o.ShapeType), NumPoints(o.NumPoints), NumParts(o.NumParts),
      LabelReady(o.LabelReady), Xmin(o.Xmin), Ymin(o.Ymin), Xmax(o.Xmax), Ymax(o.Ymax),
      Zmin(o.Zmin), Zmax(o.Zmax), Mmin(o.Mmin), Mmax(o.Mmax), LabelX(o.LabelX), LabelY(o.LabelY),
      LabelAngle(o.LabelAngle) {
  int n = o.PartSlots();
  if (n == 0) return;
  ReserveParts(n);
  for (int i = 0; i < n; ++i) new (Arr() + i) ShpPart(o.Arr()[i]);
  HdrOf(parts_)->size = uint32_t(n);
}

ShpRecord::ShpRecord(ShpRecord&& o) noexcept
    : ShapeType(o.ShapeType), NumPoints(o.NumPoints), NumParts(o.NumParts),
      LabelReady(o.LabelReady), partsOwned_(o.partsOwned_), Xmin(o.Xmin), Ymin(o.Ymin),
      Xmax(o.Xmax), Ymax(o.Ymax), Zmin(o.Zmin), Zmax(o.Zmax), Mmin(o.Mmin), Mmax(o.Mmax),
      LabelX(o.LabelX), LabelY(o.LabelY), LabelAngle(o.LabelAngle), parts_(o.parts_) {
  o.parts_ = nullptr;
  o.partsOwned_ = false;
  o.NumParts = 0;
}

ShpRecord& ShpRecord::operator=(const ShpRecord& o) {
  if (this == &o) return *this;
  ShpRecord tmp(o);
  return *this = std::move(tmp);
}

ShpRecord& ShpRecord::operator=(ShpRecord&& o) noexcept {
  if (this == &o) return *this;
  ReleaseParts();
  ShapeType = o.ShapeType;
  NumPoints = o.NumPoints;
  NumParts = o.NumParts;
  LabelReady = o.LabelReady;
  Xmin = o.Xmin, Ymin = o.Ymin, Xmax = o.Xmax, Ymax = o.Ymax;
  Zmin = o.Zmin, Zmax = o.Zmax, Mmin = o.Mmin, Mmax = o.Mmax;
  LabelX = o.LabelX, LabelY = o.LabelY, LabelAngle = o.LabelAngle;
  parts_ = o.parts_;
  partsOwned_ = o.partsOwned_;
  o.parts_ = nullptr;
  o.partsOwned_ = false;
  o.NumParts = 0;
  return *this;
}

ShpRecord::~ShpRecord() {
  ReleaseParts();
}

void ShpRecord::ReleaseParts() {
  if (!parts_) return;
  uint32_t n = HdrOf(parts_)->size;
  // Parts in an arena array may still own vertex blocks after an edit.
  for (uint32_t i = 0; i < n; ++i) Arr()[i].~ShpPart();
  if (partsOwned_) std::free(parts_);
  parts_ = nullptr;
  partsOwned_ = false;
}

// Makes the array owned with room for `cap` parts, moving the present ones over.
void ShpRecord::ReserveParts(int cap) {
  uint32_t size = parts_ ? HdrOf(parts_)->size : 0;
  if (partsOwned_ && HdrOf(parts_)->cap >= uint32_t(cap)) return;
  if (uint32_t(cap) < size) cap = int(size);
  void* nb = NewPartArray(uint32_t(cap));
  ShpPart* np = ArrOf(nb);
  for (uint32_t i = 0; i < size; ++i) {
    new (np + i) ShpPart(std::move(Arr()[i]));
    Arr()[i].~ShpPart();
  }
  HdrOf(nb)->size = size;
  if (partsOwned_) std::free(parts_);
  parts_ = nb;
  partsOwned_ = true;
}

void ShpRecord::ResizeParts(int n) {
  if (n < 0) n = 0;
  uint32_t size = uint32_t(PartSlots());
  if (uint32_t(n) > size) {
    uint32_t cap = partsOwned_ ? HdrOf(parts_)->cap : 0;
    if (uint32_t(n) > cap) ReserveParts(std::max(n, int(cap + cap / 2)));
    for (uint32_t i = size; i < uint32_t(n); ++i) new (Arr() + i) ShpPart();
    HdrOf(parts_)->size = uint32_t(n);
  } else if (uint32_t(n) < size) {
    for (uint32_t i = uint32_t(n); i < size; ++i) Arr()[i].~ShpPart();
    HdrOf(parts_)->size = uint32_t(n);
  }
  NumParts = n;
}

ShpPart& ShpRecord::InsertPart(int at) {
  int size = PartSlots();
  if (at < 0) at = 0;
  if (at > size) at = size;
  ResizeParts(size + 1);
  ShpPart* a = Arr();
  for (int i = size; i > at; --i) a[i] = std::move(a[i - 1]);
  a[at] = ShpPart();
  return a[at];
}

void ShpRecord::ErasePart(int at) {
  int size = PartSlots();
  if (at < 0 || at >= size) return;
  for (int i = at; i + 1 < size; ++i) Arr()[i] = std::move(Arr()[i + 1]);
  ResizeParts(size - 1);
}

void ShpRecord::BorrowParts(ShpArena& arena, int n) {
  ReleaseParts();
  if (n < 0) n = 0;
  if (n > 0) {
    auto* hdr = static_cast<PartsHdr*>(arena.Alloc(sizeof(PartsHdr) + size_t(n) * sizeof(ShpPart)));
    hdr->size = uint32_t(n);
    hdr->cap = 0;
    parts_ = hdr;
    for (int i = 0; i < n; ++i) new (Arr() + i) ShpPart();
  }
  NumParts = n;
}

} // namespace velmora
