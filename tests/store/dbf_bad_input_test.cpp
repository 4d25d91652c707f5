// Damaged tables: read as far as they are sound, or refused with the reason when nothing
// can be read. Either way the file itself is left exactly as it was.
#include <fcntl.h>
#include <sys/stat.h>

#include "dbf_fixture.h"
#include "store/dbf_store.h"

using namespace velmora;
using namespace velmora::test;

namespace {

// A good table of 3 rows and fields A C 4, B N 6.2, made by GDAL.
std::string GoodTable(const std::string& dir) {
  MakeGdalTable(dir, "g", {"A", "B"}, {"String(4)", "Real(6.2)"},
                {{"x", "1.5"}, {"y", "2"}, {"z", ""}});
  return ReadFile(dir + "g.dbf");
}

// The good table with `pad` bytes between the field table and the rows, and records
// `extra` bytes longer than their fields, the header words set to match.
std::string Padded(const std::string& good, int pad, int extra) {
  DbfLayout l = LayoutOf(good);
  std::string b = good.substr(0, size_t(l.HeaderLen)) + std::string(size_t(pad), '\0');
  Put16(b, 8, l.HeaderLen + pad);
  Put16(b, 10, l.RecLen + extra);
  for (int r = 0; r < l.RecCount; ++r) b += RowBytes(good, r) + std::string(size_t(extra), ' ');
  return b + "\x1a";
}

// What the store made of a table: its fields and the text of field A in every row.
struct Seen {
  int16_t Err = 0;
  std::string Why;
  int Fields = 0;
  std::vector<std::string> A;
};

// Opens `bytes` as a table, reads every row, writes nothing, closes it, and checks that
// the file is as it was, bytes and time.
Seen OpenBytes(const std::string& bytes, const std::string& what) {
  SCOPED_TRACE(what);
  std::string dir = TempDir("dbf-bad");
  std::string path = dir + "bad.dbf";
  WriteFile(path, bytes);
  struct timespec old[2] = {{1000000000, 0}, {1000000000, 0}}; // a time no write can give
  ::utimensat(AT_FDCWD, path.c_str(), old, 0);
  Session s;
  int lyr = AddLayerRow(s, dir + "bad.shp", 3);
  OpenDbf(s, lyr, dir + "bad.shp");
  Seen seen{s.DbfErr, s.DbfErrText, s.Lyr[lyr].Dbf.DbfFieldCount, {}};
  const DbfBlock& b = s.Lyr[lyr].Dbf;
  if (s.DbfErr) {
    EXPECT_EQ(b.DbfExists, 0);
    EXPECT_EQ(b.DbfOpen, 0);
    EXPECT_EQ(b.DbfFieldCount, 0);
    EXPECT_LE(b.DbfBuf.size(), 2u);
  }
  for (int r = 0; r < b.DbfRecCount; ++r) {
    ReadDbfRec(s, lyr, r);
    seen.A.push_back(GetFieldValue(s, lyr, 1));
    for (int f = 0; f <= b.DbfFieldCount; ++f) GetFieldValue(s, lyr, f);
  }
  EXPECT_EQ(s.DbfErr, seen.Err) << "every row the store counts reads whole";
  SaveDbf(s, lyr); // nothing edited: nothing written
  CloseDbf(s, lyr);
  EXPECT_EQ(ReadFile(path), bytes);
  EXPECT_EQ(MtimeNs(path), 1000000000LL * 1000000000);
  EXPECT_TRUE(FilesStartingWith(dir, "qmt").empty());
  return seen;
}

void ExpectRefused(const std::string& bytes, const std::string& what, const std::string& why) {
  Seen seen = OpenBytes(bytes, what);
  EXPECT_EQ(seen.Err, 1) << what;
  EXPECT_EQ(seen.Why, "bad.dbf: " + why) << what;
}

void ExpectRead(const std::string& bytes, const std::string& what, int fields,
                const std::vector<std::string>& a) {
  Seen seen = OpenBytes(bytes, what);
  EXPECT_EQ(seen.Err, 0) << what << ": " << seen.Why;
  EXPECT_EQ(seen.Fields, fields) << what;
  EXPECT_EQ(seen.A, a) << what;
}

} // namespace

TEST(DbfBadInput, MissingFileIsNoTable) {
  std::string dir = TempDir("dbf-none");
  Session s;
  int lyr = AddLayerRow(s, dir + "none.shp", 3);
  OpenDbf(s, lyr, dir + "none.shp");
  EXPECT_EQ(s.DbfErr, 1);
  EXPECT_EQ(s.DbfErrText, "") << "no table is no damage";
  EXPECT_EQ(s.Lyr[lyr].Dbf.DbfExists, 0);
}

TEST(DbfBadInput, DamagedTablesAreReadAsFarAsTheyAreSound) {
  std::string dir = TempDir("dbf-sound");
  const std::string good = GoodTable(dir);
  const DbfLayout l = LayoutOf(good);
  ASSERT_EQ(l.HeaderLen, 3 * 32 + 1);
  ASSERT_EQ(l.RecLen, 11);
  const std::vector<std::string> all = {"x   ", "y   ", "z   "};
  std::string b;

  ExpectRead(good, "the good table", 2, all);
  ExpectRead(good.substr(0, good.size() - 1), "no end-of-file byte", 2, all);

  // Rows the header counts but the file does not hold whole are not there.
  ExpectRead(good.substr(0, size_t(l.HeaderLen + 2 * l.RecLen + 3)), "short last record", 2,
             {"x   ", "y   "});
  ExpectRead(good.substr(0, size_t(l.HeaderLen + 1 * l.RecLen)), "two rows cut off", 2, {"x   "});
  ExpectRead(good.substr(0, size_t(l.HeaderLen)), "every row cut off", 2, {});
  b = good;
  Put32(b, 4, 0xFFFFFFFFu);
  ExpectRead(b, "record count of four billion", 2, all);
  b = good;
  Put32(b, 4, 0x7FFFFFFFu);
  ExpectRead(b, "record count the file cannot hold", 2, all);
  b = good;
  Put32(b, 4, 2);
  ExpectRead(b, "fewer rows counted than the file holds", 2, {"x   ", "y   "});

  // Padding behind the field table (a backlink, an odd header length) and behind the fields
  // of a record: the fields end at the terminator, the rows where the header says.
  ExpectRead(Padded(good, 263, 0), "a 263-byte backlink behind the terminator", 2, all);
  ExpectRead(Padded(good, 1, 0), "one stray byte behind the terminator", 2, all);
  ExpectRead(Padded(good, 19, 0), "header length rounding past its descriptors", 2, all);
  ExpectRead(Padded(good, 0, 3), "records longer than their fields", 2, all);
  ExpectRead(Padded(good, 40, 5), "both", 2, all);

  // Descriptors that disagree with the record length: the fields that fit in it.
  b = good;
  b[64 + 16] = char(200); // field B claims 200 bytes
  ExpectRead(b, "a field longer than the record", 1, all);
  b = good;
  Put16(b, 10, l.RecLen - 1);
  Seen seen = OpenBytes(b, "record length shorter than the fields");
  EXPECT_EQ(seen.Err, 0);
  EXPECT_EQ(seen.Fields, 1);
  EXPECT_EQ(seen.A.at(0), "x   ");
  b = good;
  Put16(b, 8, 64); // room for one field only; the rows then start inside the field table
  seen = OpenBytes(b, "header length shorter than its fields");
  EXPECT_EQ(seen.Err, 0);
  EXPECT_EQ(seen.Fields, 1);
}

TEST(DbfBadInput, TablesThatCannotBeReadAreRefusedWithTheReason) {
  std::string dir = TempDir("dbf-hdr");
  const std::string good = GoodTable(dir);
  std::string b;
  ExpectRefused("", "empty file", "truncated at byte 0, inside the table header");
  ExpectRefused(good.substr(0, 20), "shorter than the fixed header",
                "truncated at byte 20, inside the table header");
  ExpectRefused(good.substr(0, 70), "the field table cut off",
                "truncated at byte 70, inside the field table of 97 bytes");
  b = good;
  Put16(b, 8, 300 * 32 + 33);
  ExpectRefused(b, "more than 255 fields",
                "truncated at byte " + std::to_string(b.size()) + ", inside the field table of " +
                    std::to_string(300 * 32 + 33) + " bytes");
  b = good;
  Put16(b, 8, 0xFFFF);
  ExpectRefused(b, "header length beyond the file",
                "truncated at byte " + std::to_string(b.size()) +
                    ", inside the field table of 65535 bytes");
  b = good;
  Put16(b, 8, 20);
  ExpectRefused(b, "header length inside the fixed header", "header length 20 is too short");
  b = good;
  Put16(b, 10, 0);
  ExpectRefused(b, "record length 0", "record length 0");

  // A folder of the table's name is no table either.
  Session s;
  int lyr = AddLayerRow(s, dir + "d.shp", 1);
  ASSERT_EQ(::mkdir((dir + "d.dbf").c_str(), 0755), 0);
  OpenDbf(s, lyr, dir + "d.shp");
  EXPECT_EQ(s.DbfErr, 1);
  EXPECT_EQ(s.DbfErrText, "d.dbf: a folder, not a table");
}
