// Writing a layer: .shx and .shp made whole from memory as new files, which replace the old
// ones only once they are complete (SafeFileSet).
#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

#include "model/companion_file.h"
#include "model/file_util.h"
#include "store/shp_access.h"
#include "store/shp_bytes.h"
#include "store/shp_file.h"
#include "store/shp_store.h"

namespace velmora {

using namespace shpio;

namespace {

struct WriteFail {
  std::string why;
};

constexpr size_t kFlushAt = 8 << 20;

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

// The live vertices of a part and its Z or M values beside them; a part without the array
// gives zeros, so the blocks keep their place.
void PutPoints(RecBytes& o, const ShpPart& p) {
  o.Raw(p.PartPoints().data(), 16 * LiveCount(p));
}
void PutValues(RecBytes& o, const ShpPart& p, bool isZ) {
  std::span<const double> v = isZ ? p.PartZ() : p.PartM();
  size_t n = LiveCount(p), have = std::min(n, v.size());
  o.Raw(v.data(), 8 * have);
  o.Zeros(8 * (n - have));
}

// True when the type has a layout behind its type word.
bool HasLayout(int t) {
  return IsPoint(t) || IsMultiPoint(t) || IsLineLayout(t) || t == 31;
}

// The record's content, type word first. Only live parts are written: a soft-deleted
// part's vertices are in no block, so every reader sees the record as its live parts.
void PutContent(RecBytes& o, ShpRecord& r, bool omitM) {
  int t = r.ShapeType;
  o.I32(t);
  if (!HasLayout(t)) return;
  bool withM = HasM(t) && !(omitM && HasZ(t));
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
    if (withM) o.F(m);
    return;
  }
  if (IsMultiPoint(t)) {
    const ShpPart* p = r.PartSlots() > 0 ? &r.Part(0) : nullptr;
    PutBox(o, r);
    o.I32(p ? int32_t(LiveCount(*p)) : 0);
    if (!p) return;
    PutPoints(o, *p);
    if (HasZ(t)) {
      o.F(r.Zmin);
      o.F(r.Zmax);
      PutValues(o, *p, true);
    }
    if (withM) {
      o.F(r.Mmin);
      o.F(r.Mmax);
      PutValues(o, *p, false);
    }
    return;
  }
  std::span<ShpPart> parts = r.Parts();
  int32_t live = 0;
  int64_t points = 0;
  for (size_t i = 0; i < parts.size(); ++i) {
    parts[i].PartStart = i == 0 ? 0 : parts[i - 1].PartStart + int32_t(LiveCount(parts[i - 1]));
    if (LiveCount(parts[i]) == 0) continue;
    ++live;
    points += int64_t(LiveCount(parts[i]));
  }
  if (points > INT32_MAX) throw WriteFail{"a feature has too many vertices"};
  PutBox(o, r);
  o.I32(live);
  o.I32(int32_t(points));
  for (const ShpPart& p : parts)
    if (LiveCount(p)) o.I32(p.PartStart);
  if (t == 31)
    for (const ShpPart& p : parts)
      if (LiveCount(p)) o.I32(p.PartFlag);
  for (const ShpPart& p : parts) PutPoints(o, p);
  if (HasZ(t)) {
    o.F(r.Zmin);
    o.F(r.Zmax);
    for (const ShpPart& p : parts) PutValues(o, p, true);
  }
  if (withM) {
    o.F(r.Mmin);
    o.F(r.Mmax);
    for (const ShpPart& p : parts) PutValues(o, p, false);
  }
}

// A Z layer read without M blocks is written without them, unless an edit has since given
// a vertex a measure.
bool OmitMeasures(const ShpBlock& B) {
  if (!B.ZWithoutM || !HasZ(B.ShpType)) return false;
  for (int32_t rec = 1; rec <= B.RecCount; ++rec)
    for (const ShpPart& p : B.ShpRecs[size_t(rec)].Parts())
      for (double m : p.PartM())
        if (m != 0) return false;
  return true;
}

// Moves the selection bit of record `rec` to `number` (a clean save renumbers).
void MoveSelBit(std::vector<uint8_t>& bits, int32_t rec, int32_t number) {
  size_t ob = size_t(rec) / 8, nb = size_t(number) / 8;
  if (ob >= bits.size() || nb >= bits.size()) return;
  bool on = bits[ob] & (1u << (rec % 8));
  if (on)
    bits[nb] = uint8_t(bits[nb] | (1u << (number % 8)));
  else
    bits[nb] = uint8_t(bits[nb] & ~(1u << (number % 8)));
}

void PWriteAll(int fd, const uint8_t* p, size_t n, off_t at, const std::string& path) {
  while (n > 0) {
    ssize_t w = ::pwrite(fd, p, n, at);
    if (w < 0 && errno == EINTR) continue;
    if (w <= 0) throw WriteFail{path + ": " + ErrnoText(w < 0 ? errno : ENOSPC)};
    p += w;
    n -= size_t(w);
    at += w;
  }
}

void WriteRecords(Session& s, int lyr, bool clean, SafeFileSet& files, int shpFd, int shxFd,
                  const std::string& shpPath, ShpSaved& out) {
  LyrRec& L = s.Lyr[lyr];
  ShpBlock& B = L.Shp;
  bool omitM = OmitMeasures(B);
  if (clean) out.SelBits = L.SelBits;

  out.ShxHeader = B.ShpHeader;
  out.ShxHeader.FileCode = kFileCode;
  out.ShxHeader.ShapeType = B.ShpType;
  out.ShxHeader.FileLength = int32_t(int64_t(B.RecCount) * 4 + 50);
  out.ShpHeader = B.ShpHeader;
  out.ShpHeader.ShapeType = B.ShpType;
  out.RecOffset = B.RecOffset;
  out.RecLength = B.RecLength;
  out.RecHdrNumber = B.RecHdrNumber;

  std::vector<uint8_t> shx(clean ? 0 : size_t(kHeaderBytes) + 8 * size_t(B.RecCount));
  ByteBuf shp;
  std::memset(shp.Extend(kHeaderBytes), 0, kHeaderBytes); // the header goes in at the end
  RecBytes rb;
  int32_t number = 0;
  int64_t off = 50, len = 0;
  for (int32_t rec = 1; rec <= B.RecCount; ++rec) {
    ShpRecord& r = B.ShpRecs[size_t(rec)];
    if (clean && r.ShapeType == 0) continue;
    ++number;
    if (clean) MoveSelBit(out.SelBits, rec, number);
    off = number == 1 ? 50 : off + len + 4;
    rb.b.Clear();
    rb.BE(number);
    rb.BE(0);
    PutContent(rb, r, omitM);
    int64_t content = int64_t(rb.b.Size()) - 8;
    if (HasLayout(r.ShapeType)) {
      len = content / 2;
    } else {
      // A deleted record (or a type word without a layout) is a null record in its
      // predecessor's slot, the rest of which is zero; the first one takes two words.
      len = number > 1 && len >= 2 ? len : 2;
      rb.Zeros(size_t(2 * len - content));
    }
    if (off + len + 4 > INT32_MAX) throw WriteFail{"the layer is too large for a shapefile"};
    PutBE32(rb.b.Data() + 4, int32_t(len));
    if (!clean) {
      uint8_t* e = shx.data() + kHeaderBytes + 8 * size_t(number - 1);
      PutBE32(e, int32_t(off));
      PutBE32(e + 4, int32_t(len));
    }
    std::memcpy(shp.Extend(rb.b.Size()), rb.b.Data(), rb.b.Size());
    if (shp.Size() >= kFlushAt) {
      if (!files.Write(shpFd, shp.Data(), shp.Size())) throw WriteFail{};
      shp.Clear();
    }
  }
  if (number > 0) {
    out.RecOffset = int32_t(off);
    out.RecLength = int32_t(len);
    out.RecHdrNumber = number;
  }
  if (shp.Size() && !files.Write(shpFd, shp.Data(), shp.Size())) throw WriteFail{};
  out.ShpHeader.FileLength = number > 0 ? int32_t(off + len + 4) : 50;
  uint8_t hdr[kHeaderBytes];
  EncodeHeader(out.ShpHeader, hdr);
  PWriteAll(shpFd, hdr, sizeof hdr, 0, shpPath);
  if (!clean) {
    EncodeHeader(out.ShxHeader, shx.data());
    if (!files.Write(shxFd, shx.data(), shx.size())) throw WriteFail{};
  }
}

} // namespace

bool WriteShpFiles(Session& s, int lyr, const std::string& path, bool clean, SafeFileSet& files,
                   ShpSaved& out) {
  LyrRec& L = s.Lyr[lyr];
  ShpBlock& B = L.Shp;
  out = ShpSaved{};
  out.Clean = clean;
  if (L.LyrKind == 0 || B.RecCount < 0 ||
      size_t(B.RecCount) >= std::max<size_t>(B.ShpRecs.size(), 1)) {
    files.Fail("the layer is not open");
    return false;
  }
  CloseShp(s, lyr);
  std::string shxPath = CompanionPath(path, "shx");
  std::string shpPath = CompanionPath(path, "shp");
  int shxFd = -1;
  if (!clean && (shxFd = files.Open(shxPath)) < 0) return false;
  int shpFd = files.Open(shpPath);
  if (shpFd < 0) return false;
  try {
    WriteRecords(s, lyr, clean, files, shpFd, shxFd, shpPath, out);
  } catch (const WriteFail& f) {
    if (!f.why.empty()) files.Fail(f.why);
    return false;
  } catch (const std::bad_alloc&) {
    files.Fail("out of memory");
    return false;
  }
  // The index was sized for the old record count: a clean save leaves none.
  if (clean) out.ShxPath = shxPath;
  return true;
}

void ApplyShpSaved(Session& s, int lyr, const ShpSaved& saved) {
  LyrRec& L = s.Lyr[lyr];
  ShpBlock& B = L.Shp;
  B.ShpHeader = saved.ShpHeader;
  B.ShxHeader = saved.ShxHeader;
  B.RecOffset = saved.RecOffset;
  B.RecLength = B.RecHdrLength = saved.RecLength;
  B.RecHdrNumber = saved.RecHdrNumber;
  B.ShpChanged = 0;
  if (saved.Clean) {
    L.SelBits = saved.SelBits;
    KillFile(saved.ShxPath);
  } else {
    s.host->LayerItemChanged(lyr);
  }
  L.SelCount = B.RecCount;
}

namespace {

void SaveAlone(Session& s, int lyr, const std::string& path, bool clean) {
  s.ShpErr = 0;
  SafeFileSet files;
  ShpSaved saved;
  if (WriteShpFiles(s, lyr, path, clean, files, saved) && files.Commit())
    ApplyShpSaved(s, lyr, saved);
  else
    s.ShpErr = 1;
}

// Removes the file of every case that stands for `path` with extension `ext`.
void KillCompanions(const std::string& path, const std::string& ext) {
  for (int i = 0; i < 8; ++i) {
    std::string p = CompanionPath(path, ext);
    if (!FileExists(p)) return;
    KillFile(p);
  }
}

} // namespace

void SaveShp(Session& s, int lyr, const std::string& path) {
  SaveAlone(s, lyr, path, false);
}

void SaveShpClean(Session& s, int lyr, const std::string& path) {
  SaveAlone(s, lyr, path, true);
}

void NewShp(Session& s, int lyr, const std::string& path, int shapeType) {
  s.ShpErr = 0;
  CloseShp(s, lyr);
  for (const char* ext : {"dbf", "shx", "shp"}) KillCompanions(path, ext);
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
  B.ZWithoutM = 0;
  uint8_t hdr[kHeaderBytes];
  EncodeHeader(B.ShpHeader, hdr);
  int fd = ::open(NativePath(shpPath).c_str(), O_CREAT | O_TRUNC | O_RDWR | O_CLOEXEC, 0644);
  if (fd < 0) {
    s.ShpErr = 1;
    return;
  }
  B.ShpFile = fd;
  B.ShpOpen = -1;
  try {
    PWriteAll(fd, hdr, sizeof hdr, 0, shpPath);
  } catch (const WriteFail&) {
    CloseShp(s, lyr);
    KillFile(shpPath);
    s.ShpErr = 1;
  }
}

} // namespace velmora
