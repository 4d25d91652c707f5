// Opening, making and closing a layer's table; the header and the field table.
#include <cmath>
#include <ctime>

#include "model/file_util.h"
#include "store/codepage.h"
#include "store/dbf_internal.h"
#include "store/dbf_store.h"

namespace velmora {

using namespace dbf;

namespace dbf {

std::string FieldFormatOf(int decimals) {
  return decimals <= 0 ? std::string("0") : "0." + std::string(size_t(decimals), '0');
}

DbfField FlagField() {
  DbfField f;
  f.FieldType = 'C';
  f.FieldLength = 1;
  f.FieldStart = 0;
  f.FieldEnd = 0;
  f.FieldFormat = "0";
  return f;
}

void PlaceField(DbfBlock& b, int i) {
  DbfField& f = b.DbfFields[size_t(i)];
  const DbfField& prev = b.DbfFields[size_t(i - 1)];
  int start = i == 1 ? 1 : FieldStart(prev) + prev.FieldLength;
  f.FieldStart = int16_t(start);
  f.FieldEnd = int16_t(start + f.FieldLength - 1);
  f.FieldFormat = FieldFormatOf(f.FieldDecimals);
}

WindowedFile::Mode FileMode(const Session& s) {
  int m = s.MapView.MapMode;
  return m == 1 || m == 4 ? WindowedFile::Mode::ReadWrite : WindowedFile::Mode::Read;
}

DbfFiles& FilesOf(DbfBlock& b) {
  if (!b.Files) b.Files = std::make_shared<DbfFiles>();
  return *b.Files;
}

bool EnsureDbfOpen(Session& s, int lyr) {
  DbfBlock& b = s.Lyr[lyr].Dbf;
  if (b.DbfOpen && b.Files && b.Files->Dbf.IsOpen()) return true;
  if (!b.DbfExists || !b.Files || b.Files->DbfPath.empty()) return false;
  // A table being made is written; a layer's table is only read (a save writes a new
  // file), so a file that can't be written still opens.
  if (!b.Files->Dbf.Open(b.Files->DbfPath, FileMode(s)) &&
      !b.Files->Dbf.Open(b.Files->DbfPath, WindowedFile::Mode::Read))
    return false;
  b.DbfFile = b.Files->Dbf.Fd();
  b.DbfOpen = -1;
  return true;
}

void ReleaseIfFrame(Session& s, int lyr) {
  LyrRec& l = s.Lyr[lyr];
  if (l.Shp.ShpType != 99 || !l.Dbf.DbfOpen) return;
  if (l.Dbf.Files) l.Dbf.Files->Dbf.Close();
  l.Dbf.DbfOpen = 0;
}

int LayerPage(const Session& s, int lyr) {
  int p = s.Lyr[lyr].Dbf.CodePage;
  return p ? p : s.Locale.CodePage;
}

} // namespace dbf

namespace {

// An empty table in memory, the state InitDbf leaves and a failed open falls back to.
void EmptyTable(DbfBlock& b) {
  b.DbfVersion = 3;
  std::time_t now = std::time(nullptr);
  std::tm tm{};
  localtime_r(&now, &tm);
  b.DbfDate = {uint8_t(tm.tm_year), uint8_t(tm.tm_mon + 1), uint8_t(tm.tm_mday)};
  b.DbfRecCount = 0;
  b.DbfHeaderLen = 33;
  b.DbfRecLen = 1;
  b.DbfReserved = {};
  b.DbfFieldCount = 0;
  b.DbfCurRec = 0;
  b.DbfFields.assign(1, FlagField());
  b.DbfBuf.assign(2, ' ');
  b.DbfBufChanged = 0;
  b.CodePage = 0;
}

uint16_t Le16(const uint8_t* p) {
  return uint16_t(p[0] | p[1] << 8);
}
uint32_t Le32(const uint8_t* p) {
  return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
}

// The number of fields the header length gives room for, rounded half to even; -1 when
// the header cannot hold even the fixed part or more than 255 fields.
int FieldCountOf(int headerLen) {
  if (headerLen < 32) return -1;
  int whole = headerLen / 32 - 1, rest = headerLen % 32;
  int n = rest > 16 || (rest == 16 && whole % 2 == 1) ? whole + 1 : whole;
  return n > 255 ? -1 : n;
}

// The code page of the table: its .cpg, else the language-driver byte, else the session's.
int PageOfTable(const std::string& dbfPath, uint8_t ldid) {
  for (const char* ext : {"cpg", "CPG"}) {
    std::string cpg = ReplaceExt(dbfPath, ext);
    if (!FileExists(cpg)) continue;
    WindowedFile f;
    char text[64] = {};
    if (f.Open(cpg, WindowedFile::Mode::Read)) {
      size_t n = f.ReadAt(0, text, sizeof text - 1);
      int page = CodePageOfCpg(std::string_view(text, n));
      if (KnownCodePage(page)) return page;
    }
  }
  int page = CodePageOfLdid(ldid);
  return KnownCodePage(page) ? page : 0;
}

bool ReadHeader(Session& s, DbfBlock& b, WindowedFile& file) {
  int64_t size = file.Size();
  uint8_t h[32];
  if (size < 32 || file.ReadAt(0, h, 32) != 32) return false;
  int headerLen = Le16(h + 8), recLen = Le16(h + 10);
  int64_t recCount = int64_t(Le32(h + 4));
  int count = FieldCountOf(headerLen);
  if (count < 0 || 32 * (count + 1) > headerLen || headerLen > size) return false;
  if (recLen < 1 || recCount > INT32_MAX) return false;
  // Every row the header promises must be in the file.
  if (headerLen + recCount * recLen > size) return false;

  std::vector<uint8_t> desc(size_t(32 * count));
  if (count > 0 && file.ReadAt(32, desc.data(), desc.size()) != desc.size()) return false;
  b.DbfFields.assign(size_t(count) + 1, FlagField());
  int sum = 1;
  for (int i = 1; i <= count; ++i) {
    const uint8_t* d = desc.data() + 32 * (i - 1);
    DbfField& f = b.DbfFields[size_t(i)];
    std::copy(d, d + 11, reinterpret_cast<uint8_t*>(f.FieldName.data()));
    f.FieldType = char(d[11]);
    f.FieldAddress = int32_t(Le32(d + 12));
    f.FieldLength = d[16];
    f.FieldDecimals = d[17];
    std::copy(d + 18, d + 32, f.FieldReserved.begin());
    sum += f.FieldLength;
  }
  if (sum != recLen) return false;

  b.DbfVersion = h[0];
  b.DbfDate = {h[1], h[2], h[3]};
  b.DbfRecCount = int32_t(recCount);
  b.DbfHeaderLen = int16_t(headerLen);
  b.DbfRecLen = int16_t(recLen);
  std::copy(h + 12, h + 32, b.DbfReserved.begin());
  b.DbfFieldCount = uint8_t(count);
  for (int i = 1; i <= count; ++i) PlaceField(b, i);
  b.DbfBuf.assign(size_t(recLen) + 1, ' ');
  (void)s;
  return true;
}

} // namespace

void OpenDbf(Session& s, int lyr, const std::string& path) {
  s.DbfErr = 0;
  if (!ValidLyr(s, lyr)) {
    s.DbfErr = 1;
    return;
  }
  DbfBlock& b = s.Lyr[lyr].Dbf;
  if (b.SwapOpen) CloseSwap(s, lyr);
  b.SwapOpen = 0;
  std::string dbfPath = ReplaceExt(path, "dbf");
  DbfFiles& files = FilesOf(b);
  files.Dbf.Close();
  b.DbfOpen = 0;
  if (!FileExists(dbfPath)) {
    b.DbfExists = 0;
    b.DbfChanged = 0;
    EmptyTable(b);
    s.DbfErr = 1;
    return;
  }
  if (!files.Dbf.Open(dbfPath, WindowedFile::Mode::Read) || !ReadHeader(s, b, files.Dbf)) {
    files.Dbf.Close();
    b.DbfExists = 0;
    b.DbfChanged = 0;
    EmptyTable(b);
    s.DbfErr = 1;
    return;
  }
  files.DbfPath = dbfPath;
  b.DbfFile = files.Dbf.Fd();
  b.SwapTop = -1;
  b.SwapIndex.assign(1, -1);
  b.CodePage = PageOfTable(dbfPath, b.DbfReserved[17]);
  b.DbfCurRec = 0;
  b.DbfBufChanged = 0;
  b.DbfExists = -1;
  b.DbfOpen = -1;
  b.DbfChanged = 0;
  s.host->LayerItemChanged(lyr);
  ReleaseIfFrame(s, lyr);
}

void InitDbf(Session& s, int lyr) {
  if (!ValidLyr(s, lyr)) return;
  DbfBlock& b = s.Lyr[lyr].Dbf;
  if (b.SwapOpen) CloseSwap(s, lyr);
  if (b.Files) b.Files->Dbf.Close();
  EmptyTable(b);
  b.DbfExists = 0;
  b.DbfOpen = 0;
  b.DbfChanged = 0;
}

void AddField(Session& s, int lyr, const std::string& name, char typeLetter, int length,
              int decimals) {
  if (!ValidLyr(s, lyr)) return;
  DbfBlock& b = s.Lyr[lyr].Dbf;
  if (b.DbfFields.empty()) b.DbfFields.assign(1, FlagField());
  if (b.DbfFieldCount == 255) return; // the count is one byte
  b.DbfFieldCount = uint8_t(b.DbfFieldCount + 1);
  int n = b.DbfFieldCount;
  b.DbfRecLen = int16_t(RecLen(b) + uint8_t(length));
  b.DbfHeaderLen = int16_t(n * 32 + 33);
  b.DbfFields.resize(size_t(n) + 1);
  b.DbfBuf.resize(size_t(RecLen(b)) + 1, ' ');

  DbfField& f = b.DbfFields[size_t(n)];
  f = DbfField{};
  int page = LayerPage(s, lyr);
  std::string bytes = EncodeText(page, Trim(name));
  size_t keep = FitBytes(page, bytes, 10);
  for (size_t i = 0; i < keep; ++i) f.FieldName[i] = bytes[i];
  f.FieldType = typeLetter;
  f.FieldAddress = 0;
  f.FieldLength = uint8_t(length);
  f.FieldDecimals = uint8_t(decimals);
  PlaceField(b, n);
}

void CreateDbf(Session& s, int lyr, const std::string& path) {
  s.DbfErr = 0;
  if (!ValidLyr(s, lyr)) {
    s.DbfErr = 1;
    return;
  }
  DbfBlock& b = s.Lyr[lyr].Dbf;
  if (b.DbfFields.empty()) EmptyTable(b);
  std::string dbfPath = ReplaceExt(path, "dbf");
  DbfFiles& files = FilesOf(b);
  int n = b.DbfFieldCount;
  std::vector<uint8_t> h(size_t(32 * (n + 1) + 2), 0);
  h[0] = b.DbfVersion;
  std::copy(b.DbfDate.begin(), b.DbfDate.end(), h.begin() + 1);
  auto put16 = [&](size_t at, int v) { h[at] = uint8_t(v), h[at + 1] = uint8_t(v >> 8); };
  auto put32 = [&](size_t at, uint32_t v) {
    for (int k = 0; k < 4; ++k) h[at + size_t(k)] = uint8_t(v >> (8 * k));
  };
  put32(4, uint32_t(b.DbfRecCount));
  put16(8, HeaderLen(b));
  put16(10, RecLen(b));
  std::copy(b.DbfReserved.begin(), b.DbfReserved.end(), h.begin() + 12);
  for (int i = 1; i <= n; ++i) {
    const DbfField& f = b.DbfFields[size_t(i)];
    size_t at = size_t(32 * i);
    std::copy(f.FieldName.begin(), f.FieldName.end(), h.begin() + long(at));
    h[at + 11] = uint8_t(f.FieldType);
    put32(at + 12, uint32_t(f.FieldAddress));
    h[at + 16] = f.FieldLength;
    h[at + 17] = f.FieldDecimals;
    std::copy(f.FieldReserved.begin(), f.FieldReserved.end(), h.begin() + long(at + 18));
  }
  put16(size_t(32 * (n + 1)), 13);

  if (!files.Dbf.Open(dbfPath, WindowedFile::Mode::Create) ||
      !files.Dbf.WriteAt(0, h.data(), h.size())) {
    files.Dbf.Close();
    b.DbfOpen = 0;
    s.DbfErr = 1;
    return;
  }
  files.DbfPath = dbfPath;
  b.DbfFile = files.Dbf.Fd();
  b.DbfCurRec = 0;
  b.DbfExists = -1;
  b.DbfOpen = -1;
  ReleaseIfFrame(s, lyr);
}

void SetDbfRecCount(Session& s, int lyr, int n) {
  if (!ValidLyr(s, lyr) || n < 0) return;
  DbfBlock& b = s.Lyr[lyr].Dbf;
  b.DbfRecCount = n;
  if (b.SwapOpen && b.SwapIndex.size() < size_t(n) + 1) b.SwapIndex.resize(size_t(n) + 1, -1);
  if (!EnsureDbfOpen(s, lyr)) return;
  uint8_t v[4] = {uint8_t(n), uint8_t(n >> 8), uint8_t(n >> 16), uint8_t(n >> 24)};
  if (!b.Files->Dbf.WriteAt(4, v, 4)) s.DbfErr = 1;
  ReleaseIfFrame(s, lyr);
}

void CloseDbf(Session& s, int lyr) {
  if (!ValidLyr(s, lyr)) return;
  DbfBlock& b = s.Lyr[lyr].Dbf;
  if (b.Files) b.Files->Dbf.Close();
  b.DbfOpen = 0;
  b.DbfExists = 0;
  b.DbfChanged = 0;
  CloseSwap(s, lyr);
}

void CloseSwap(Session& s, int lyr) {
  if (!ValidLyr(s, lyr)) return;
  DbfBlock& b = s.Lyr[lyr].Dbf;
  if (b.Files) {
    b.Files->Swap.Close();
    b.Files->SlotRows.clear();
    b.Files->SlotRows.shrink_to_fit();
    b.Files->SwapPath.clear();
  }
  if (!b.SwapPath.empty()) KillFile(b.SwapPath);
  b.SwapPath.clear();
  b.SwapTop = -1;
  b.SwapIndex.assign(1, -1);
  b.SwapOpen = 0;
}

} // namespace velmora
