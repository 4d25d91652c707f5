// Reading a layer: both files into memory once, every record into the layer's records.
#include <algorithm>
#include <cmath>
#include <fcntl.h>
#include <new>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "model/companion_file.h"
#include "model/file_util.h"
#include "model/shp_arena.h"
#include "store/shp_bytes.h"
#include "store/shp_file.h"
#include "store/shp_store.h"

namespace velmora {

using namespace shpio;

namespace shpio {

FileBytes::~FileBytes() {
  if (map_) ::munmap(map_, size);
}

bool ReadWholeFile(const std::string& path, FileBytes& out) {
  int fd = ::open(NativePath(path).c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  struct stat st;
  bool ok = ::fstat(fd, &st) == 0 && S_ISREG(st.st_mode);
  if (ok && st.st_size > 0) {
    out.size = size_t(st.st_size);
    // Mapped, the file is read once, by the page cache, in big pieces.
    void* m = ::mmap(nullptr, out.size, PROT_READ, MAP_PRIVATE | MAP_POPULATE, fd, 0);
    if (m != MAP_FAILED) {
      out.map_ = static_cast<uint8_t*>(m);
      ::madvise(m, out.size, MADV_SEQUENTIAL);
      ::close(fd);
      return true;
    }
    out.buf_ = std::make_unique_for_overwrite<uint8_t[]>(out.size);
    size_t got = 0;
    while (got < out.size) {
      ssize_t n = ::read(fd, out.buf_.get() + got, out.size - got);
      if (n <= 0) break; // a file that shrank under us: keep what was there
      got += size_t(n);
    }
    out.size = got;
  } else if (ok) {
    out.size = 0;
    out.buf_ = std::make_unique<uint8_t[]>(1);
  }
  ::close(fd);
  return ok;
}

void AdviseHugePages(void* p, size_t bytes) {
  constexpr uintptr_t kPage = 4096;
  uintptr_t a = (reinterpret_cast<uintptr_t>(p) + kPage - 1) & ~(kPage - 1);
  uintptr_t e = (reinterpret_cast<uintptr_t>(p) + bytes) & ~(kPage - 1);
  if (e > a + (2u << 20)) ::madvise(reinterpret_cast<void*>(a), e - a, MADV_HUGEPAGE);
}

void MakeFrameRecord(ShpRecord& r) {
  r = ShpRecord();
  r.ShapeType = 99;
  r.ResizeParts(1);
  ShpPart& p = r.Part(0);
  p.Resize(5);
  p.PartStart = 0;
  p.PartCount = 5;
  p.PartFlag = 0;
  r.NumPoints = 5;
}

void MakeEmptyDeleted(ShpRecord& r, double x, double y) {
  r.ShapeType = 0;
  r.NumPoints = 0;
  r.Zmin = r.Zmax = r.Mmin = r.Mmax = 0;
  r.ResizeParts(1);
  r.NumParts = 0;
  ShpPart& p = r.Part(0);
  p = ShpPart();
  p.Resize(1);
  p.PartPoints()[0] = XY{x, y};
  r.Xmin = r.Xmax = x;
  r.Ymin = r.Ymax = y;
}

} // namespace shpio

namespace {

struct ReadFail {}; // a read past the end of a file, or a count no file can hold

// A cursor over the .shp bytes. Every take is checked against the end, and all takes
// together against a budget, so that an index pointing many times at one big record
// can't multiply the memory.
class ShpCursor {
public:
  ShpCursor(const uint8_t* d, size_t size)
      : d_(d), size_(size), budget_(4 * uint64_t(size) + (1u << 20)) {}
  void Seek(int64_t pos) {
    if (pos < 0 || uint64_t(pos) > size_) throw ReadFail{};
    pos_ = size_t(pos);
  }
  size_t Pos() const { return pos_; }
  size_t Left() const { return size_ - pos_; }
  const uint8_t* Take(uint64_t n) {
    if (n > size_ - pos_ || n > budget_) throw ReadFail{};
    budget_ -= n;
    const uint8_t* p = d_ + pos_;
    pos_ += size_t(n);
    return p;
  }
  int32_t I32() { return LE32(Take(4)); }
  double F() { return F64(Take(8)); }
  // Checks that `count` items of `each` bytes can still come from the file.
  void MustHold(int64_t count, uint64_t each) const {
    if (count < 0 || uint64_t(count) > (size_ - pos_) / each) throw ReadFail{};
  }

private:
  const uint8_t* d_;
  size_t size_;
  size_t pos_ = 0;
  uint64_t budget_;
};

bool Accepted(int t) {
  switch (t) {
  case 0:
  case 1:
  case 3:
  case 5:
  case 8:
  case 11:
  case 13:
  case 15:
  case 18:
  case 21:
  case 23:
  case 25:
  case 28:
  case 31:
  case 99:
  case 100:
    return true;
  default:
    return false;
  }
}

// Whether the Z records of a layer came with their optional M block.
struct MeasureSeen {
  bool with = false, without = false;
};

// Reads one Z or M block: range then each part's values. The M block of a Z record is
// optional in the published format; when the record's stated length has no room for
// it, the values stay zero.
void ReadMeasureBlock(ShpCursor& c, ShpRecord& r, bool isZ, size_t contentEnd, MeasureSeen& seen) {
  uint64_t need = 16;
  for (const ShpPart& p : r.Parts())
    need += 8 * uint64_t(isZ ? p.PartZ().size() : p.PartM().size());
  bool zType = HasZ(r.ShapeType);
  if (!isZ && c.Pos() + need > contentEnd) {
    for (ShpPart& p : r.Parts()) std::fill(p.PartM().begin(), p.PartM().end(), 0.0);
    seen.without = seen.without || zType;
    return;
  }
  if (!isZ) seen.with = seen.with || zType;
  double lo = c.F(), hi = c.F();
  (isZ ? r.Zmin : r.Mmin) = lo;
  (isZ ? r.Zmax : r.Mmax) = hi;
  for (ShpPart& p : r.Parts()) {
    std::span<double> v = isZ ? p.PartZ() : p.PartM();
    if (!v.empty()) std::memcpy(v.data(), c.Take(8 * uint64_t(v.size())), 8 * v.size());
  }
}

void ReadBox(ShpCursor& c, ShpRecord& r) {
  const uint8_t* b = c.Take(32);
  r.Xmin = F64(b);
  r.Ymin = F64(b + 8);
  r.Xmax = F64(b + 16);
  r.Ymax = F64(b + 24);
}

void ReadPoint(ShpCursor& c, ShpArena& arena, ShpRecord& r, int t, size_t contentEnd,
               MeasureSeen& seen) {
  bool z = HasZ(t), m = HasM(t);
  r.BorrowParts(arena, 1);
  ShpPart& p = r.Part(0);
  p.BorrowFrom(arena, 1, z, m);
  p.PartStart = 0;
  p.PartCount = 1;
  p.PartFlag = 0;
  r.NumPoints = 1;
  XY v{c.F(), 0};
  v.Y = c.F();
  p.PartPoints()[0] = v;
  r.Xmin = r.Xmax = v.X;
  r.Ymin = r.Ymax = v.Y;
  if (z) {
    double zv = c.F();
    p.PartZ()[0] = zv;
    r.Zmin = r.Zmax = zv;
  }
  if (m) {
    bool there = c.Pos() + 8 <= contentEnd;
    if (z) (there ? seen.with : seen.without) = true;
    double mv = there ? c.F() : 0.0;
    p.PartM()[0] = mv;
    r.Mmin = r.Mmax = mv;
  }
}

void ReadMultiPoint(ShpCursor& c, ShpArena& arena, ShpRecord& r, int t, size_t contentEnd,
                    MeasureSeen& seen) {
  ReadBox(c, r);
  int32_t nv = c.I32();
  c.MustHold(nv, 16);
  r.BorrowParts(arena, 1);
  r.NumPoints = nv;
  ShpPart& p = r.Part(0);
  p.PartStart = 0;
  p.PartCount = nv;
  p.PartFlag = 0;
  p.BorrowFrom(arena, size_t(nv), HasZ(t), HasM(t));
  if (nv) std::memcpy(p.PartPoints().data(), c.Take(16 * uint64_t(nv)), 16 * size_t(nv));
  if (HasZ(t)) ReadMeasureBlock(c, r, true, contentEnd, seen);
  if (HasM(t)) ReadMeasureBlock(c, r, false, contentEnd, seen);
}

void ReadLineLayout(ShpCursor& c, ShpArena& arena, ShpRecord& r, int t, size_t contentEnd,
                    MeasureSeen& seen) {
  ReadBox(c, r);
  int32_t np = c.I32();
  int32_t nv = c.I32();
  if (nv < 0) throw ReadFail{};
  c.MustHold(np, t == 31 ? 8 : 4);
  const uint8_t* starts = c.Take(4 * uint64_t(np));
  const uint8_t* kinds = t == 31 ? c.Take(4 * uint64_t(np)) : nullptr;
  bool z = HasZ(t), m = HasM(t);
  r.BorrowParts(arena, np);
  r.NumPoints = nv;
  for (int32_t i = 0; i < np; ++i) {
    ShpPart& p = r.Part(i);
    int32_t start = LE32(starts + 4 * i);
    int64_t next = i + 1 < np ? LE32(starts + 4 * (i + 1)) : nv;
    int64_t count = next - start;
    p.PartStart = start;
    if (count > 0) {
      c.MustHold(count, 16);
      p.BorrowFrom(arena, size_t(count), z, m);
      std::memcpy(p.PartPoints().data(), c.Take(16 * uint64_t(count)), 16 * size_t(count));
      p.PartCount = int32_t(count);
      p.PartFlag = 0;
    } else {
      // A damaged file may state starts that go backwards: such a part is empty.
      p.PartCount = 0;
      p.PartFlag = -1;
      if (t == 3 || t == 99 || t == 100) {
        p.BorrowFrom(arena, 1, false, false);
        p.PartPoints()[0] = XY{r.Xmin, r.Ymin};
      } else {
        p.BorrowFrom(arena, 0, z, m);
      }
    }
    if (kinds) p.PartFlag = LE32(kinds + 4 * i);
  }
  if (z) ReadMeasureBlock(c, r, true, contentEnd, seen);
  if (m) ReadMeasureBlock(c, r, false, contentEnd, seen);
}

// Reads the record at the cursor (its 8-byte header first) into `r`.
void ReadRecordAt(ShpCursor& c, ShpArena& arena, LyrRec& L, ShpRecord& r, MeasureSeen& seen) {
  const uint8_t* h = c.Take(8);
  L.Shp.RecHdrNumber = BE32(h);
  L.Shp.RecHdrLength = BE32(h + 4);
  int64_t stated = 2 * int64_t(L.Shp.RecHdrLength);
  size_t contentEnd =
      stated < 0 ? c.Pos()
                 : size_t(std::min<int64_t>(int64_t(c.Pos()) + stated, int64_t(SIZE_MAX / 2)));
  r.LabelReady = 0;
  int32_t t = c.I32();
  r.ShapeType = t;
  if (t > 100 || !Accepted(t)) return; // left as it stands, no geometry
  if (t == 0) {
    r.BorrowParts(arena, 1);
    r.NumParts = 0;
    r.NumPoints = 0;
    ShpPart& p = r.Part(0);
    p.BorrowFrom(arena, 1, false, false);
    p.PartPoints()[0] = XY{};
    return;
  }
  if (IsPoint(t)) {
    ReadPoint(c, arena, r, t, contentEnd, seen);
    return;
  }
  if (IsMultiPoint(t))
    ReadMultiPoint(c, arena, r, t, contentEnd, seen);
  else
    ReadLineLayout(c, arena, r, t, contentEnd, seen);
  if (r.NumParts == 0 || r.NumPoints == 0) {
    ShpRecord empty;
    MakeEmptyDeleted(empty, LeftExtend(L), TopExtend(L));
    r = std::move(empty);
  }
}

struct IndexFile {
  FileBytes bytes;
  bool bad = false; // file code other than 9994: the first entry read fails
  int64_t statedBytes = 0;
};

// LoadShpRecords.
void LoadShpRecords(Session& s, int lyr, const std::string& path, const FileBytes& shp,
                    const IndexFile* shx) {
  LyrRec& L = s.Lyr[lyr];
  ShpBlock& B = L.Shp;
  ShpCursor c(shp.data(), shp.size);
  MeasureSeen seen;
  if (shx) {
    if (B.RecCount < 0) throw ReadFail{};
    // Every entry inside the stated length must be in the file, or its read fails: find
    // out before sizing the records from the stated count.
    int64_t fitting = std::max<int64_t>(0, (shx->statedBytes - kHeaderBytes) / 8);
    fitting = std::min<int64_t>(fitting, B.RecCount);
    if (fitting > 0 && (shx->bad || kHeaderBytes + 8 * fitting > int64_t(shx->bytes.size)))
      throw ReadFail{};
    SizeRecs(s, lyr, B.RecCount);
    B.Arena = std::make_shared<ShpArena>();
    B.Arena->Reserve(2 * shp.size);
    for (int32_t rec = 1; rec <= B.RecCount; ++rec) {
      int64_t at = kHeaderBytes + 8 * int64_t(rec - 1);
      if (at + 8 > shx->statedBytes) continue; // outside the stated length: skipped
      B.RecOffset = BE32(shx->bytes.data() + at);
      B.RecLength = BE32(shx->bytes.data() + at + 4);
      c.Seek(2 * int64_t(B.RecOffset));
      ReadRecordAt(c, *B.Arena, L, B.ShpRecs[size_t(rec)], seen);
    }
  } else {
    B.RecCount = 0;
    int step = B.ShpType == 99 ? 5 : B.ShpType == 100 ? 500 : 100000;
    SizeRecs(s, lyr, 0);
    B.Arena = std::make_shared<ShpArena>();
    B.Arena->Reserve(2 * shp.size);
    c.Seek(kHeaderBytes);
    while (c.Left() > 0) {
      if (size_t(B.RecCount) + 1 >= B.ShpRecs.size()) {
        // No more records than the rest of the file can hold, at 12 bytes each at least.
        size_t fits = c.Left() / 12 + 1;
        B.ShpRecs.resize(B.ShpRecs.size() + std::min(size_t(step), fits));
      }
      ShpRecord& r = B.ShpRecs[size_t(B.RecCount) + 1];
      try {
        ReadRecordAt(c, *B.Arena, L, r, seen);
      } catch (const ReadFail&) {
        r = ShpRecord(); // a truncated tail is not a record
        break;
      }
      ++B.RecCount;
    }
    B.ShpRecs.resize(size_t(B.RecCount) + 1);
    B.ShpRecs.shrink_to_fit();
  }
  B.Arena->Trim();
  B.ZWithoutM = seen.without && !seen.with ? -1 : 0;
  MakeFrameRecord(B.ShpRecs[0]);
  if (s.ShpFileRead) s.ShpFileRead(s, path);
  RecalcExtent(s, lyr);
  B.ShpChanged = 0;
}

} // namespace

void OpenShp(Session& s, int lyr, const std::string& path) {
  s.ShpErr = 0;
  LyrRec& L = s.Lyr[lyr];
  ShpBlock& B = L.Shp;
  std::string shxPath = CompanionPath(path, "shx");
  std::string shpPath = CompanionPath(path, "shp");
  try {
    IndexFile shx;
    bool haveShx = false;
    if (FileExists(shxPath)) {
      if (!ReadWholeFile(shxPath, shx.bytes) || shx.bytes.size < size_t(kHeaderBytes))
        throw ReadFail{};
      ShpMainHeader h = DecodeHeader(shx.bytes.data());
      shx.bad = h.FileCode != kFileCode;
      shx.statedBytes = 2 * int64_t(h.FileLength);
      B.ShxHeader = h;
      B.RecCount = int32_t(std::lrint((double(h.FileLength) - 50) / 4)); // half to even
      B.ShxOpen = -1;
      haveShx = true;
    } else {
      B.RecCount = 0;
      B.ShxOpen = 0;
    }
    FileBytes shp;
    bool shpOk =
        FileExists(shpPath) && ReadWholeFile(shpPath, shp) && shp.size >= size_t(kHeaderBytes);
    if (shpOk) {
      ShpMainHeader h = DecodeHeader(shp.data());
      B.ShpOpen = h.FileCode == kFileCode ? -1 : 0;
      if (B.ShpOpen) {
        B.ShpHeader = h;
        B.ShpType = h.ShapeType;
      }
    }
    if (!shpOk || !B.ShpOpen) {
      CloseShp(s, lyr);
      s.ShpErr = 1;
      return;
    }
    LoadShpRecords(s, lyr, path, shp, haveShx ? &shx : nullptr);
  } catch (const ReadFail&) {
    s.ShpErr = 1;
  } catch (const std::bad_alloc&) {
    s.ShpErr = 1;
  }
  LyrRec& L2 = s.Lyr[lyr];
  if (s.ShpErr) {
    CloseShp(s, lyr);
    SizeRecs(s, lyr, 0);
    L2.Shp.RecCount = 0;
    return;
  }
  L2.Fsource = path;
  L2.SelCount = L2.Shp.RecCount;
  L2.SelBits.assign(size_t(L2.Shp.RecCount + 7) / 8 + 1, 0);
  L2.QryBits.assign(L2.SelBits.size(), 0);
  CloseShp(s, lyr);
}

void CloseShp(Session& s, int lyr) {
  ShpBlock& B = s.Lyr[lyr].Shp;
  // Files are open here only for a layer under construction (NewShp); the reader and
  // the writer hold theirs for the length of the call.
  if (B.ShpOpen && B.ShpFile > 0) ::close(B.ShpFile);
  if (B.ShxOpen && B.ShxFile > 0) ::close(B.ShxFile);
  B.ShpFile = B.ShxFile = 0;
  B.ShpOpen = B.ShxOpen = 0;
}

} // namespace velmora
