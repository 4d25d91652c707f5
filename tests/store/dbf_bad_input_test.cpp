// Damaged tables are refused with DbfErr 1 and leave a layer with no table, whatever the
// header claims.
#include "dbf_fixture.h"
#include "store/dbf_store.h"

using namespace velmora;
using namespace velmora::test;

namespace {

void Put16(std::string& b, size_t at, int v) {
  b[at] = char(v & 0xFF);
  b[at + 1] = char((v >> 8) & 0xFF);
}
void Put32(std::string& b, size_t at, uint32_t v) {
  for (int k = 0; k < 4; ++k) b[at + size_t(k)] = char((v >> (8 * k)) & 0xFF);
}

// A good table of 3 rows and fields A C 4, B N 6.2, made by GDAL.
std::string GoodTable(const std::string& dir) {
  MakeGdalTable(dir, "g", {"A", "B"}, {"String(4)", "Real(6.2)"},
                {{"x", "1.5"}, {"y", "2"}, {"z", ""}});
  return ReadFile(dir + "g.dbf");
}

// Opens `bytes` as a table and checks the refusal and that nothing reads past it.
void ExpectRefused(const std::string& bytes, const std::string& what) {
  SCOPED_TRACE(what);
  std::string dir = TempDir("dbf-bad");
  WriteFile(dir + "bad.dbf", bytes);
  Session s;
  int lyr = AddLayerRow(s, dir + "bad.shp", 3);
  OpenDbf(s, lyr, dir + "bad.shp");
  EXPECT_EQ(s.DbfErr, 1);
  const DbfBlock& b = s.Lyr[lyr].Dbf;
  EXPECT_EQ(b.DbfExists, 0);
  EXPECT_EQ(b.DbfOpen, 0);
  EXPECT_EQ(b.DbfFieldCount, 0);
  EXPECT_LE(b.DbfBuf.size(), 2u);
  ReadDbfRec(s, lyr, 0);
  EXPECT_EQ(GetFieldValue(s, lyr, 1), "");
  EXPECT_EQ(FindField(s, lyr, "A"), -1);
  SaveDbf(s, lyr);
  CloseDbf(s, lyr);
}

} // namespace

TEST(DbfBadInput, TheGoodTableOpens) {
  std::string dir = TempDir("dbf-good");
  WriteFile(dir + "ok.dbf", GoodTable(dir));
  Session s;
  int lyr = AddLayerRow(s, dir + "ok.shp", 3);
  OpenDbf(s, lyr, dir + "ok.shp");
  EXPECT_EQ(s.DbfErr, 0);
  EXPECT_EQ(s.Lyr[lyr].Dbf.DbfFieldCount, 2);
  ReadDbfRec(s, lyr, 1);
  EXPECT_EQ(GetFieldValue(s, lyr, 1), "y   ");
  // Without the end-of-file byte it opens too: the last row is whole.
  std::string b = GoodTable(dir);
  WriteFile(dir + "ok.dbf", b.substr(0, b.size() - 1));
  OpenDbf(s, lyr, dir + "ok.shp");
  EXPECT_EQ(s.DbfErr, 0);
  ReadDbfRec(s, lyr, 2);
  EXPECT_EQ(GetFieldValue(s, lyr, 1), "z   ");
}

TEST(DbfBadInput, MissingFileIsNoTable) {
  std::string dir = TempDir("dbf-none");
  Session s;
  int lyr = AddLayerRow(s, dir + "none.shp", 3);
  OpenDbf(s, lyr, dir + "none.shp");
  EXPECT_EQ(s.DbfErr, 1);
  EXPECT_EQ(s.Lyr[lyr].Dbf.DbfExists, 0);
}

TEST(DbfBadInput, DamagedHeadersAreRefused) {
  std::string dir = TempDir("dbf-hdr");
  const std::string good = GoodTable(dir);
  DbfLayout l = LayoutOf(good);
  ASSERT_EQ(l.HeaderLen, 3 * 32 + 1);
  std::string b;

  ExpectRefused("", "empty file");
  ExpectRefused(good.substr(0, 20), "shorter than the fixed header");
  ExpectRefused(good.substr(0, 70), "the field table cut off");

  b = good;
  Put16(b, 8, 64); // room for one field only, but two sum to the record length
  ExpectRefused(b, "header length shorter than its fields");
  b = good;
  Put16(b, 8, 3 * 32 + 20); // rounds up to a third field whose descriptor lies past it
  ExpectRefused(b, "header length rounding past its descriptors");
  b = good;
  Put16(b, 8, 300 * 32 + 33);
  ExpectRefused(b, "more than 255 fields");
  b = good;
  Put16(b, 8, 0xFFFF);
  ExpectRefused(b, "header length beyond the file");

  b = good;
  Put16(b, 10, 0);
  ExpectRefused(b, "record length 0");
  b = good;
  Put16(b, 10, l.RecLen + 1);
  ExpectRefused(b, "record length longer than the fields");
  b = good;
  Put16(b, 10, l.RecLen - 1);
  ExpectRefused(b, "record length shorter than the fields");
  b = good;
  b[32 + 16] = char(200); // field A claims 200 bytes
  ExpectRefused(b, "field lengths disagreeing with the record length");

  ExpectRefused(good.substr(0, size_t(l.HeaderLen + 2 * l.RecLen + 3)), "truncated rows");
  b = good;
  Put32(b, 4, 0xFFFFFFFFu);
  ExpectRefused(b, "record count of four billion");
  b = good;
  Put32(b, 4, 0x7FFFFFFFu);
  ExpectRefused(b, "record count the file cannot hold");
}
