// Writing a layer: .shx and .shp rewritten whole from memory, in the writer's fixed order
// of operations (see WriteShpRecord).
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

#include "model/file_util.h"
#include "store/shp_bytes.h"
#include "store/shp_file.h"
#include "store/shp_store.h"

namespace velmora {

using namespace shpio;

namespace shpio {

int64_t ShpContentLength(const ShpRecord& r) {
  int64_t P = r.NumParts, N = r.NumPoints;
  switch (r.ShapeType) {
  case 1:
    return 10;
  case 3:
  case 5:
  case 99:
  case 100:
    return 22 + 2 * P + 8 * N;
  case 8:
    return 20 + 8 * N;
  case 11:
    return 18;
  case 13:
  case 15:
    return 38 + 2 * P + 16 * N;
  case 18:
    return 36 + 16 * N;
  case 21:
    return 14;
  case 23:
  case 25:
    return 30 + 2 * P + 12 * N;
  case 28:
    return 28 + 12 * N;
  case 31:
    return 38 + 4 * P + 16 * N;
  default:
    return -1;
  }
}

} // namespace shpio

namespace {

struct WriteFail {};

void PWriteAll(int fd, const uint8_t* p, size_t n, int64_t at) {
  while (n > 0) {
    ssize_t w = ::pwrite(fd, p, n, off_t(at));
    if (w < 0 && errno == EINTR) continue;
    if (w <= 0) throw WriteFail{};
    p += w;
    n -= size_t(w);
    at += w;
  }
}

// A growable byte buffer whose new bytes are not cleared: every byte is written before it
// is used.
class ByteBuf {
public:
  size_t Size() const { return n_; }
  uint8_t* Data() { return p_.get(); }
  void Clear() { n_ = 0; }
  // `k` more bytes at the end, contents undefined.
  uint8_t* Extend(size_t k) {
    if (n_ + k > cap_) Grow(n_ + k);
    uint8_t* r = p_.get() + n_;
    n_ += k;
    return r;
  }
  void EraseFront(size_t k) {
    if (k < n_) std::memmove(p_.get(), p_.get() + k, n_ - k);
    n_ = k < n_ ? n_ - k : 0;
  }

private:
  std::unique_ptr<uint8_t[]> p_;
  size_t n_ = 0, cap_ = 0;
  void Grow(size_t need) {
    size_t cap = std::max({need, 2 * cap_, size_t(4096)});
    auto q = std::make_unique_for_overwrite<uint8_t[]>(cap);
    if (n_) std::memcpy(q.get(), p_.get(), n_);
    p_ = std::move(q);
    cap_ = cap;
  }
};

// Writes at absolute positions through a window of memory that is flushed in big
// pieces. The file as it will stand is the disk overlaid with the window; where the window
// grows over bytes already on disk it takes them in first, so a later write over an
// earlier one (the next record header over what a record wrote past its length) lands
// exactly as it would on the file itself.
class PosWriter {
public:
  explicit PosWriter(int fd) : fd_(fd) {}

  void Write(int64_t pos, const void* p, size_t n) {
    if (pos < 0) throw WriteFail{};
    int64_t end = start_ + int64_t(win_.Size());
    if (pos < start_ || pos - end > kGapInWindow) {
      Flush();
      start_ = pos; // a hole left behind reads as zeros
      end = pos;
    }
    size_t off = size_t(pos - start_);
    if (off + n > win_.Size()) {
      size_t old = win_.Size();
      win_.Extend(off + n - old);
      if (off > old) {
        // A gap before this write: zeros, or what the file already holds there.
        std::memset(win_.Data() + old, 0, off - old);
        int64_t a = end, b = std::min(start_ + int64_t(off), diskEnd_);
        if (b > a && ::pread(fd_, win_.Data() + old, size_t(b - a), off_t(a)) < 0)
          throw WriteFail{};
      }
    }
    std::memcpy(win_.Data() + off, p, n);
  }
  // Called before each record: what lies before `pos` is flushed once the window is big.
  void MayFlush(int64_t pos) {
    int64_t end = start_ + int64_t(win_.Size());
    if (pos - start_ < kFlushAt || pos > end) return;
    size_t n = size_t(pos - start_);
    PWriteAll(fd_, win_.Data(), n, start_);
    diskEnd_ = std::max(diskEnd_, pos);
    win_.EraseFront(n);
    start_ = pos;
  }
  void Flush() {
    if (win_.Size() == 0) return;
    PWriteAll(fd_, win_.Data(), win_.Size(), start_);
    start_ += int64_t(win_.Size());
    diskEnd_ = std::max(diskEnd_, start_);
    win_.Clear();
  }
  int64_t End() const { return std::max(diskEnd_, start_ + int64_t(win_.Size())); }

private:
  static constexpr int64_t kFlushAt = 8 << 20;
  static constexpr int64_t kGapInWindow = 1 << 16;
  int fd_;
  ByteBuf win_;
  int64_t start_ = 0;
  int64_t diskEnd_ = 0; // bytes on disk so far
};

int OpenForWrite(const std::string& path) {
  KillFile(path);
  int fd = ::open(NativePath(path).c_str(), O_CREAT | O_TRUNC | O_RDWR | O_CLOEXEC, 0644);
  if (fd < 0) throw WriteFail{};
  return fd;
}

// The record's bytes from its header on, into `out`.
class RecBytes {
public:
  ByteBuf b;
  void I32(int32_t v) { PutLE32(b.Extend(4), v); }
  void BE(int32_t v) { PutBE32(b.Extend(4), v); }
  void F(double v) { PutF64(b.Extend(8), v); }
  void Raw(const void* p, size_t bytes) {
    if (bytes) std::memcpy(b.Extend(bytes), p, bytes);
  }
  void Zeros(size_t bytes) {
    if (bytes) std::memset(b.Extend(bytes), 0, bytes);
  }
};

void PutBox(RecBytes& o, const ShpRecord& r) {
  o.F(r.Xmin);
  o.F(r.Ymin);
  o.F(r.Xmax);
  o.F(r.Ymax);
}

// One part's Z or M values; a part without the array gives zeros, so the blocks keep
// their place.
void PutValues(RecBytes& o, const ShpPart& p, bool isZ) {
  std::span<const double> v = isZ ? p.PartZ() : p.PartM();
  if (!v.empty())
    o.Raw(v.data(), 8 * v.size());
  else
    o.Zeros(8 * p.Size());
}

void PutContent(RecBytes& o, ShpRecord& r) {
  int t = r.ShapeType;
  o.I32(t);
  if (t < 1 || t > 100) return;
  if (IsPoint(t)) {
    XY v{};
    double z = 0, m = 0;
    if (r.PartSlots() > 0 && r.Part(0).Size() > 0) {
      const ShpPart& p = r.Part(0);
      v = p.PartPoints()[0];
      if (!p.PartZ().empty()) z = p.PartZ()[0];
      if (!p.PartM().empty()) m = p.PartM()[0];
    }
    o.F(v.X);
    o.F(v.Y);
    if (HasZ(t)) o.F(z);
    if (HasM(t)) o.F(m);
    return;
  }
  if (IsMultiPoint(t)) {
    PutBox(o, r);
    o.I32(r.NumPoints);
    const ShpPart* p = r.PartSlots() > 0 ? &r.Part(0) : nullptr;
    if (p) o.Raw(p->PartPoints().data(), 16 * p->Size());
    if (HasZ(t)) {
      o.F(r.Zmin);
      o.F(r.Zmax);
      if (p) PutValues(o, *p, true);
    }
    if (HasM(t)) {
      o.F(r.Mmin);
      o.F(r.Mmax);
      if (p) PutValues(o, *p, false);
    }
    return;
  }
  if (!IsLineLayout(t) && t != 31) return; // a type word with no layout: nothing follows
  std::span<ShpPart> parts = r.Parts();
  int32_t live = 0;
  for (size_t i = 0; i < parts.size(); ++i) {
    parts[i].PartStart = i == 0 ? 0 : parts[i - 1].PartStart + parts[i - 1].PartCount;
    if (parts[i].PartCount != 0) ++live;
  }
  PutBox(o, r);
  o.I32(live);
  o.I32(r.NumPoints);
  for (const ShpPart& p : parts)
    if (p.PartCount != 0) o.I32(p.PartStart);
  if (t == 31)
    for (const ShpPart& p : parts)
      if (p.PartCount != 0) o.I32(p.PartFlag);
  // Every part's vertices, the soft-deleted ones too: they run past the stated length
  // and the next record's header covers them.
  for (const ShpPart& p : parts) o.Raw(p.PartPoints().data(), 16 * p.Size());
  if (HasZ(t)) {
    o.F(r.Zmin);
    o.F(r.Zmax);
    for (const ShpPart& p : parts) PutValues(o, p, true);
  }
  if (HasM(t)) {
    o.F(r.Mmin);
    o.F(r.Mmax);
    for (const ShpPart& p : parts) PutValues(o, p, false);
  }
}

struct Target {
  int shpFd = -1, shxFd = -1;
  ~Target() {
    if (shpFd >= 0) ::close(shpFd);
    if (shxFd >= 0) ::close(shxFd);
  }
};

// SaveShp and SaveShpClean share all but the choice and numbering of records.
void WriteLayer(Session& s, int lyr, const std::string& path, bool clean) {
  s.ShpErr = 0;
  LyrRec& L = s.Lyr[lyr];
  ShpBlock& B = L.Shp;
  if (L.LyrKind == 0 || B.RecCount < 0 ||
      size_t(B.RecCount) >= std::max<size_t>(B.ShpRecs.size(), 1)) {
    s.ShpErr = 1;
    return;
  }
  std::string shxPath = ReplaceExt(path, "shx");
  std::string shpPath = ReplaceExt(path, "shp");
  CloseShp(s, lyr);
  Target files;
  try {
    // CreateShx.
    files.shxFd = OpenForWrite(shxPath);
    B.ShxHeader = B.ShpHeader;
    B.ShxHeader.FileCode = kFileCode;
    B.ShxHeader.ShapeType = B.ShpType;
    B.ShxHeader.Version = B.ShpHeader.Version;
    B.ShxHeader.FileLength = int32_t(int64_t(B.RecCount) * 4 + 50);
    B.ShxOpen = -1;
    std::vector<uint8_t> shx(size_t(kHeaderBytes) + 8 * size_t(std::max(B.RecCount, 0)));
    EncodeHeader(B.ShxHeader, shx.data());
    size_t shxEnd = kHeaderBytes;
    int64_t shxStated = 2 * int64_t(B.ShxHeader.FileLength);

    // CreateShp.
    files.shpFd = OpenForWrite(shpPath);
    B.ShpOpen = -1;
    B.ShpHeader.ShapeType = B.ShpType;
    uint8_t hdr[kHeaderBytes];
    EncodeHeader(B.ShpHeader, hdr);
    PosWriter shp(files.shpFd);
    shp.Write(0, hdr, sizeof hdr);

    RecBytes rb;
    int32_t number = 0;
    for (int32_t rec = 1; rec <= B.RecCount; ++rec) {
      ShpRecord& r = B.ShpRecs[size_t(rec)];
      if (clean && r.ShapeType == 0) continue;
      ++number;
      if (clean) {
        // The selection bit moves with the record to its new number.
        size_t ob = size_t(rec) / 8, nb = size_t(number) / 8;
        if (ob < L.SelBits.size() && nb < L.SelBits.size()) {
          bool on = L.SelBits[ob] & (1u << (rec % 8));
          if (on)
            L.SelBits[nb] = uint8_t(L.SelBits[nb] | (1u << (number % 8)));
          else
            L.SelBits[nb] = uint8_t(L.SelBits[nb] & ~(1u << (number % 8)));
        }
      }
      // Advance; a record with no length of its own keeps its predecessor's.
      int64_t off = number == 1 ? 50 : int64_t(B.RecOffset) + B.RecLength + 4;
      int64_t len = ShpContentLength(r);
      if (len < 0) len = B.RecLength;
      if (off > INT32_MAX || off < INT32_MIN || len > INT32_MAX) throw WriteFail{};
      B.RecOffset = int32_t(off);
      B.RecLength = int32_t(len);
      // The .shx entry; past the stated length the record is skipped.
      int64_t at = kHeaderBytes + 8 * int64_t(number - 1);
      if (at + 8 > shxStated || at + 8 > int64_t(shx.size())) continue;
      PutBE32(shx.data() + at, B.RecOffset);
      PutBE32(shx.data() + at + 4, B.RecLength);
      shxEnd = std::max(shxEnd, size_t(at + 8));
      // Header and content.
      B.RecHdrNumber = number;
      B.RecHdrLength = B.RecLength;
      rb.b.Clear();
      rb.BE(number);
      rb.BE(B.RecLength);
      PutContent(rb, r);
      int64_t pos = 2 * int64_t(B.RecOffset);
      shp.MayFlush(pos);
      shp.Write(pos, rb.b.Data(), rb.b.Size());
    }
    B.ShpHeader.FileLength = int32_t(int64_t(B.RecOffset) + B.RecLength + 4);
    EncodeHeader(B.ShpHeader, hdr);
    shp.Write(0, hdr, sizeof hdr);
    shp.Flush();
    // A deleted last record has only its type word written; the rest of its slot is left
    // unwritten, and reads as zeros up to the length the header states, as it does for a
    // deleted record anywhere else in the file.
    int64_t stated = 2 * int64_t(B.ShpHeader.FileLength);
    if (number > 0 && stated > shp.End() && stated - shp.End() <= 2 * int64_t(B.RecLength) + 8)
      if (::ftruncate(files.shpFd, off_t(stated)) != 0) throw WriteFail{};
    PWriteAll(files.shxFd, shx.data(), shxEnd, 0);
  } catch (const WriteFail&) {
    s.ShpErr = 1;
  } catch (const std::bad_alloc&) {
    s.ShpErr = 1;
  }
  if (!s.ShpErr) {
    B.ShpChanged = 0;
    if (!clean) s.host->LayerItemChanged(lyr);
    L.SelCount = B.RecCount;
  }
  B.ShpOpen = B.ShxOpen = 0; // the descriptors close with `files`
  CloseShp(s, lyr);
  // The index was sized for the old record count: a clean save leaves none.
  if (clean) KillFile(shxPath);
}

} // namespace

void SaveShp(Session& s, int lyr, const std::string& path) {
  WriteLayer(s, lyr, path, false);
}

void SaveShpClean(Session& s, int lyr, const std::string& path) {
  WriteLayer(s, lyr, path, true);
}

void NewShp(Session& s, int lyr, const std::string& path, int shapeType) {
  s.ShpErr = 0;
  CloseShp(s, lyr);
  KillFile(ReplaceExt(path, "dbf"));
  KillFile(ReplaceExt(path, "shx"));
  std::string shpPath = ReplaceExt(path, "shp");
  ShpBlock& B = s.Lyr[lyr].Shp;
  SizeRecs(s, lyr, 0);
  B.ShpType = shapeType;
  B.ShpHeader = ShpMainHeader{};
  B.ShpHeader.FileCode = kFileCode;
  B.ShpHeader.FileLength = 100; // the first save puts the real length
  B.ShpHeader.Version = 1000;
  B.ShpHeader.ShapeType = shapeType;
  B.RecCount = 0;
  uint8_t hdr[kHeaderBytes];
  EncodeHeader(B.ShpHeader, hdr);
  try {
    int fd = OpenForWrite(shpPath);
    B.ShpFile = fd;
    B.ShpOpen = -1;
    PWriteAll(fd, hdr, sizeof hdr, 0);
  } catch (const WriteFail&) {
    CloseShp(s, lyr);
    s.ShpErr = 1;
  }
}

} // namespace velmora
