// Tables made by GDAL open here with the values GDAL reads, and survive "Save Dbf As" and an
// edit with a save, as GDAL sees it.
#include <cstdio>
#include <random>

#include "dbf_fixture.h"
#include "model/file_util.h"
#include "store/dbf_store.h"

using namespace velmora;
using namespace velmora::test;

namespace {

struct Variant {
  const char* Lco;
  const char* Words[4]; // text of the name column, in the script the encoding can hold
};

const Variant kLatin1 = {"", {"Zoë", "Ünïcode", "façade", "Ærø"}};
const Variant kUtf8 = {"-lco ENCODING=UTF-8", {"Zoë", "Ελληνικά", "日本語", "Ærø"}};
const Variant kCp1251 = {"-lco ENCODING=CP1251", {"Москва", "Київ", "Zoë", "щука"}};

const std::vector<std::string> kNames = {"name", "s1",  "long", "r52", "r2415", "r1911",
                                         "i1",   "i10", "i18",  "d",   "flag",  "f123"};
const std::vector<std::string> kTypes = {
    "String(20)", "String(1)",   "String(254)",   "Real(5.2)", "Real(24.15)", "Real(19.6)",
    "Integer(1)", "Integer(10)", "Integer64(18)", "Date",      "Integer(1)",  "Real(12.3)"};

std::string Fmt(const char* f, double v) {
  char buf[64];
  std::snprintf(buf, sizeof buf, f, v);
  return buf;
}

std::vector<std::vector<std::string>> MakeRows(const Variant& v, int n) {
  std::mt19937 g(42);
  auto uni = [&](double a, double b) { return std::uniform_real_distribution<double>(a, b)(g); };
  auto pick = [&](int k) { return int(g() % unsigned(k)); };
  std::vector<std::vector<std::string>> rows;
  for (int r = 0; r < n; ++r) {
    bool nulls = r % 7 == 3; // GDAL writes no value as "****" and "00000000"
    std::string name = std::string(v.Words[pick(4)]) + " " + std::to_string(r);
    std::string longText = std::string(size_t(pick(240)), 'x') + std::string(v.Words[pick(4)]);
    std::vector<std::string> row = {
        name,
        r % 5 == 0 ? "" : std::string(1, char('a' + pick(26))),
        longText,
        nulls ? "" : Fmt("%.2f", uni(-9.99, 99.99)),
        nulls ? "" : Fmt("%.10f", uni(-1e6, 1e6)),
        nulls ? "" : Fmt("%.6f", uni(-1e5, 1e5)),
        nulls ? "" : std::to_string(pick(10)),
        nulls ? "" : std::to_string(int(g() % 1999999999u) - 999999999),
        nulls ? "" : std::to_string((long long)(g()) * 3999999LL * (pick(2) ? -1 : 1)),
        nulls ? ""
              : Fmt("%04.0f", 1900 + pick(200)) + "/" + Fmt("%02.0f", 1 + pick(12)) + "/" +
                    Fmt("%02.0f", 1 + pick(28)),
        std::to_string(pick(2)),
        nulls ? "" : Fmt("%.3f", uni(-99999, 99999)),
    };
    rows.push_back(row);
  }
  return rows;
}

// Makes the table, then turns f123 into an F field and flag into an L field, and blanks
// some numeric and date cells, as other programs write them.
std::string MakeTable(const std::string& dir, const Variant& v, int n) {
  std::string shp = MakeGdalTable(dir, "t", kNames, kTypes, MakeRows(v, n), v.Lco);
  std::string dbf = ReplaceExt(shp, "dbf");
  std::string b = ReadFile(dbf);
  DbfLayout l = LayoutOf(b);
  b[32 * 12 + 11] = 'F';
  b[32 * 11 + 11] = 'L';
  std::vector<int> starts(13, 1);
  for (int i = 1; i <= 12; ++i) starts[size_t(i)] = 0;
  int at = 1;
  for (int i = 1; i <= 12; ++i) {
    starts[size_t(i)] = at;
    at += uint8_t(b[size_t(32 * i + 16)]);
  }
  for (int r = 0; r < n; ++r) {
    size_t row = size_t(l.HeaderLen + r * l.RecLen);
    char& flag = b[row + size_t(starts[11])];
    flag = flag == '1' ? 'T' : 'F';
    if (r % 11 == 5) // blanks in a numeric and a date cell
      for (int f : {4, 10})
        for (int k = 0; k < uint8_t(b[size_t(32 * f + 16)]); ++k)
          b[row + size_t(starts[size_t(f)] + k)] = ' ';
  }
  WriteFile(dbf, b);
  return shp;
}

std::string DateOf(const std::string& iso) { // yyyy-mm-dd to dd/mm/yyyy
  return iso.substr(8, 2) + "/" + iso.substr(5, 2) + "/" + iso.substr(0, 4);
}

void ExpectSameAsGdal(Session& s, int lyr, const std::vector<std::vector<std::string>>& gdal) {
  ASSERT_EQ(int(gdal.size()) - 1, s.Lyr[lyr].Dbf.DbfRecCount);
  for (int r = 0; r + 1 < int(gdal.size()); ++r) {
    ReadDbfRec(s, lyr, r);
    const auto& cells = gdal[size_t(r) + 1];
    ASSERT_EQ(int(cells.size()), s.Lyr[lyr].Dbf.DbfFieldCount);
    for (int f = 1; f <= int(cells.size()); ++f) {
      std::string mine = GetFieldValue(s, lyr, f), theirs = cells[size_t(f) - 1];
      std::string type = gdal[0][size_t(f) - 1];
      SCOPED_TRACE("row " + std::to_string(r) + " field " + type + " [" + mine + "]");
      if (theirs == "<null>") {
        std::string t = Trim(mine);
        EXPECT_TRUE(t.empty() || t.find_first_not_of('*') == std::string::npos ||
                    t == "00/00/0000");
      } else if (type.find(":Real") != std::string::npos) {
        EXPECT_EQ(StrToDbl(s, mine), std::stod(theirs));
      } else if (type.find(":Date") != std::string::npos) {
        EXPECT_EQ(mine, DateOf(theirs));
      } else {
        EXPECT_EQ(Trim(mine), theirs);
      }
    }
  }
}

void RoundTrip(const Variant& v, char sep) {
  std::string dir = TempDir("dbf-rt");
  const int n = 60;
  std::string shp = MakeTable(dir, v, n);
  auto gdal = GdalRows(ReplaceExt(shp, "dbf"));
  ASSERT_EQ(int(gdal.size()), n + 1);

  Session s;
  s.Locale.DecimalSep = sep;
  int lyr = AddLayerRow(s, shp, n);
  OpenDbf(s, lyr, shp);
  ASSERT_EQ(s.DbfErr, 0);
  ExpectSameAsGdal(s, lyr, gdal);

  std::string copy = dir + "copy.dbf";
  SaveDbfAs(s, lyr, copy);
  EXPECT_EQ(GdalRows(copy), gdal);
  EXPECT_TRUE(FilesStartingWith(dir, "qmt").empty());

  // The copy opens here to the same values, rows included that GDAL wrote with no value.
  Session s2;
  s2.Locale.DecimalSep = sep;
  int l2 = AddLayerRow(s2, ReplaceExt(copy, "shp"), n);
  OpenDbf(s2, l2, copy);
  ASSERT_EQ(s2.DbfErr, 0);
  for (int r = 0; r < n; ++r) {
    ReadDbfRec(s, lyr, r);
    ReadDbfRec(s2, l2, r);
    for (int f = 1; f <= 12; ++f) {
      std::string a = GetFieldValue(s, lyr, f), b = GetFieldValue(s2, l2, f);
      if (GetFieldType(s, lyr, f) == "Numeric")
        EXPECT_EQ(StrToDbl(s, a), StrToDbl(s2, b)) << a << " | " << b;
      else
        EXPECT_EQ(Trim(a), Trim(b));
    }
  }
}

} // namespace

TEST(DbfGdal, Latin1TableByLanguageDriverRoundTrips) {
  RoundTrip(kLatin1, '.');
}
TEST(DbfGdal, Utf8TableByCpgRoundTrips) {
  RoundTrip(kUtf8, '.');
}
TEST(DbfGdal, Cp1251TableByCpgRoundTripsWithDecimalComma) {
  RoundTrip(kCp1251, ',');
}
TEST(DbfGdal, Utf8TableRoundTripsWithDecimalComma) {
  RoundTrip(kUtf8, ',');
}

TEST(DbfGdal, EditAndSaveKeepsUneditedRowsByteForByte) {
  std::string dir = TempDir("dbf-edit");
  const int n = 40;
  std::string shp = MakeTable(dir, kUtf8, n);
  std::string dbf = ReplaceExt(shp, "dbf");
  std::string before = ReadFile(dbf);
  auto gdal = GdalRows(dbf);

  Session s;
  int lyr = AddLayerRow(s, shp, n);
  OpenDbf(s, lyr, shp);
  ASSERT_EQ(s.DbfErr, 0);
  // Scattered edits, one of them on the last row, and one row edited twice.
  struct Edit {
    int Row, Field;
    std::string Value, Gdal;
  };
  std::vector<Edit> edits = {{3, 1, "Αθήνα", "Αθήνα"},
                             {17, 4, "3.14159", "3.14"},
                             {17, 1, "twice", "twice"},
                             {n - 1, 5, "-42.5", "-42.5"},
                             {22, 10, "29/02/2004", "2004-02-29"},
                             {30, 9, "1234567890123", "1234567890123"}};
  for (const Edit& e : edits) {
    ReadDbfRec(s, lyr, e.Row);
    SetFieldValue(s, lyr, e.Field, e.Value);
    WriteDbfRecSwap(s, lyr, e.Row);
  }
  EXPECT_EQ(ReadFile(dbf), before) << "edits stay off the dbf until the save";
  SaveDbf(s, lyr);
  EXPECT_EQ(s.Lyr[lyr].Dbf.DbfChanged, 0);
  EXPECT_TRUE(FilesStartingWith(dir, "qmt").empty());

  std::string after = ReadFile(dbf);
  ASSERT_EQ(after.size(), before.size());
  EXPECT_EQ(after.substr(0, size_t(LayoutOf(before).HeaderLen)),
            before.substr(0, size_t(LayoutOf(before).HeaderLen)));
  for (int r = 0; r < n; ++r) {
    bool edited = false;
    for (const Edit& e : edits) edited |= e.Row == r;
    if (!edited) {
      EXPECT_EQ(RowBytes(after, r), RowBytes(before, r)) << "row " << r;
    }
  }
  EXPECT_EQ(after.back(), before.back()); // the end-of-file byte stays

  auto now = GdalRows(dbf);
  for (const Edit& e : edits) gdal[size_t(e.Row) + 1][size_t(e.Field) - 1] = e.Gdal;
  EXPECT_EQ(now, gdal);
}

TEST(DbfGdal, AddedRowsExtendTheFileAndItsCountOnSave) {
  std::string dir = TempDir("dbf-add");
  std::string shp = MakeGdalTable(dir, "a", {"name", "v"}, {"String(8)", "Real(8.2)"},
                                  {{"one", "1.5"}, {"two", "2.25"}});
  Session s;
  s.Locale.DecimalSep = ',';
  int lyr = AddLayerRow(s, shp, 2);
  OpenDbf(s, lyr, shp);
  ASSERT_EQ(s.DbfErr, 0);
  for (int r = 2; r < 5; ++r) {
    AddDbfRec(s, lyr, r);
    SetFieldValue(s, lyr, 1, "new" + std::to_string(r));
    SetFieldValue(s, lyr, 2, std::to_string(r) + ",5");
    WriteDbfRecSwap(s, lyr, r);
  }
  EXPECT_EQ(s.Lyr[lyr].Dbf.DbfRecCount, 5);
  SaveDbf(s, lyr);
  CloseDbf(s, lyr);
  // Alone, so that GDAL counts the table's rows and not the shapes beside it.
  std::string alone = dir + "alone.dbf";
  WriteFile(alone, ReadFile(ReplaceExt(shp, "dbf")));
  auto rows = GdalRows(alone);
  ASSERT_EQ(rows.size(), 6u);
  EXPECT_EQ(rows[2], (std::vector<std::string>{"two", "2.25"}));
  EXPECT_EQ(rows[5], (std::vector<std::string>{"new4", "4.5"}));
}
