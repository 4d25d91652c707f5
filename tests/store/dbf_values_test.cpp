// Cell values and field accessors over a table made in the test: numbers, dates, text,
// names, and the conversions from text to number.
#include "dbf_fixture.h"
#include "store/dbf_store.h"

using namespace velmora;
using namespace velmora::test;

namespace {

// A table with one row: name C 12, n52 N 5.2, n0 N 6, d D 8, ok L 1, road_name C 10.
struct OneRow {
  RecordingHost host;
  Session s{host};
  std::string dir = TempDir("dbf-val");
  int lyr = 0;
  OneRow() {
    lyr = AddLayerRow(s, dir + "t.shp", 1);
    InitDbf(s, lyr);
    AddField(s, lyr, "name", 'C', 12, 0);
    AddField(s, lyr, "n52", 'N', 5, 2);
    AddField(s, lyr, "n0", 'N', 6, 0);
    AddField(s, lyr, "d", 'D', 8, 0);
    AddField(s, lyr, "ok", 'L', 1, 0);
    AddField(s, lyr, " road_name ", 'C', 10, 0);
    CreateDbf(s, lyr, dir + "t.shp");
    EXPECT_EQ(s.DbfErr, 0);
    ClearDbfBuf(s, lyr);
    WriteDbfRec(s, lyr, 0);
    SetDbfRecCount(s, lyr, 1);
    CloseDbf(s, lyr);
    OpenDbf(s, lyr, dir + "t.shp");
    EXPECT_EQ(s.DbfErr, 0);
    ReadDbfRec(s, lyr, 0);
  }
  // The stored bytes of field f.
  std::string Raw(int f) {
    const DbfBlock& b = s.Lyr[lyr].Dbf;
    const DbfField& fd = b.DbfFields[size_t(f)];
    return std::string(b.DbfBuf.begin() + fd.FieldStart, b.DbfBuf.begin() + fd.FieldEnd + 1);
  }
  void Put(int f, const std::string& v) {
    ReadDbfRec(s, lyr, 0);
    SetFieldValue(s, lyr, f, v);
    WriteDbfRecSwap(s, lyr, 0);
  }
};

} // namespace

TEST(DbfValues, NumbersAreRoundedToTheFieldAndRightAligned) {
  OneRow t;
  t.Put(2, "1.256");
  EXPECT_EQ(t.Raw(2), " 1.26");
  t.Put(2, "1.5");
  EXPECT_EQ(t.Raw(2), "  1.5");
  t.Put(2, "1.005"); // the decimal text rounds half away from zero
  EXPECT_EQ(t.Raw(2), " 1.01");
  t.Put(2, "-0.004");
  EXPECT_EQ(t.Raw(2), "    0");
  t.Put(2, "12abc"); // not a number: its leading number
  EXPECT_EQ(t.Raw(2), "   12");
  t.Put(3, "2.5e2");
  EXPECT_EQ(t.Raw(3), "   250");
  t.Put(3, "  ");
  EXPECT_EQ(t.Raw(3), "      ") << "an empty cell stays empty";
  EXPECT_EQ(GetFieldValue(t.s, t.lyr, 2), "   12");
}

TEST(DbfValues, DecimalCommaSessionsShowAndTakeCommas) {
  OneRow t;
  t.s.Locale.DecimalSep = ',';
  t.Put(2, "1,5");
  EXPECT_EQ(t.Raw(2), "  1.5") << "the file always holds a point";
  EXPECT_EQ(GetFieldValue(t.s, t.lyr, 2), "  1,5");
  t.Put(2, "2.25"); // a point is read as the separator too
  EXPECT_EQ(t.Raw(2), " 2.25");
  EXPECT_DOUBLE_EQ(StrToDbl(t.s, "3,75"), 3.75);
  EXPECT_DOUBLE_EQ(StrToDbl(t.s, "3.75"), 3.75);
  EXPECT_EQ(CleanNumText(t.s, "a-1,5.x"), "-1,5");
}

TEST(DbfValues, DatesReadInTheShortDateFormatAndStoreAsYyyymmdd) {
  OneRow t;
  t.Put(4, "03/02/2001");
  EXPECT_EQ(t.Raw(4), "20010203");
  EXPECT_EQ(GetFieldValue(t.s, t.lyr, 4), "03/02/2001");
  t.s.Locale.ShortDate = "yyyy-mm-dd";
  EXPECT_EQ(GetFieldValue(t.s, t.lyr, 4), "2001-02-03");
  t.Put(4, "2004-02-29");
  EXPECT_EQ(t.Raw(4), "20040229");
  t.s.Locale.ShortDate = "m/d/yy";
  EXPECT_EQ(GetFieldValue(t.s, t.lyr, 4), "2/29/04");
  t.Put(4, "12/31/99");
  EXPECT_EQ(t.Raw(4), "19991231");

  t.Put(4, "");
  EXPECT_EQ(t.Raw(4), "        ");
  EXPECT_EQ(GetFieldValue(t.s, t.lyr, 4), "        ") << "a blank date stays blank";
  t.Put(4, "31/02/2001"); // no such day: kept in the stored order, as it was shown
  EXPECT_EQ(t.Raw(4), "20010231");
  EXPECT_EQ(GetFieldValue(t.s, t.lyr, 4), "31/02/2001");
}

TEST(DbfValues, TextIsPaddedBehindAndCutOnTheRight) {
  OneRow t;
  t.Put(1, "abc");
  EXPECT_EQ(t.Raw(1), "abc         ");
  EXPECT_EQ(GetFieldValue(t.s, t.lyr, 1), "abc         ") << "padding is kept";
  t.Put(1, "    0123456789ABCDEF"); // too long: leading blanks go first, then the right end
  EXPECT_EQ(t.Raw(1), "0123456789AB");
  t.Put(5, "Y");
  EXPECT_EQ(t.Raw(5), "Y");
  EXPECT_EQ(GetRowText(t.s, t.lyr), "0123456789AB    Y  ") << "blank cells give a lone blank";
}

TEST(DbfValues, RowTextTrimsEachField) {
  OneRow t;
  t.Put(1, "ab");
  t.Put(2, "1");
  t.Put(3, "-7");
  t.Put(4, "03/02/2001");
  t.Put(5, "N");
  t.Put(6, "x");
  EXPECT_EQ(GetRowText(t.s, t.lyr), "ab 1 -7 03/02/2001 N x ");
}

TEST(DbfValues, NamesAreUpperCaseAndFoundInAnyCase) {
  OneRow t;
  EXPECT_EQ(GetFieldName(t.s, t.lyr, 6), "ROAD_NAME");
  EXPECT_EQ(FindField(t.s, t.lyr, "  Road_Name "), 6);
  EXPECT_EQ(FindField(t.s, t.lyr, "road"), -1);
  EXPECT_EQ(GetFieldName(t.s, t.lyr, 7), "");
  std::string bytes = ReadFile(t.dir + "t.dbf");
  EXPECT_EQ(bytes.substr(32 * 6, 11), std::string("road_name\0\0", 11)) << "the file keeps case";
}

TEST(DbfValues, TypesWidthsAndFormats) {
  OneRow t;
  EXPECT_EQ(GetFieldType(t.s, t.lyr, 1), "Character");
  EXPECT_EQ(GetFieldType(t.s, t.lyr, 2), "Numeric");
  EXPECT_EQ(GetFieldType(t.s, t.lyr, 4), "Date");
  EXPECT_EQ(GetFieldType(t.s, t.lyr, 5), "Logical");
  EXPECT_EQ(GetFieldWidth(t.s, t.lyr, 4), 10);
  EXPECT_EQ(GetFieldLength(t.s, t.lyr, 4), 8);
  EXPECT_EQ(GetFieldWidth(t.s, t.lyr, 2), 5);
  EXPECT_EQ(GetFieldDecimals(t.s, t.lyr, 2), 2);
  EXPECT_EQ(GetFieldFormat(t.s, t.lyr, 2), "0.00");
  EXPECT_EQ(GetFieldFormat(t.s, t.lyr, 3), "0");
  EXPECT_EQ(GetFieldWidth(t.s, t.lyr, 0), 1); // the flag byte
  EXPECT_EQ(GetFieldWidth(t.s, t.lyr, 7), 0);
  EXPECT_EQ(GetFieldValue(t.s, t.lyr, 7), "");
  EXPECT_EQ(GetFieldValue(t.s, t.lyr, -1), "");
  const DbfBlock& b = t.s.Lyr[t.lyr].Dbf;
  EXPECT_EQ(b.DbfFields[2].FieldStart, 13);
  EXPECT_EQ(b.DbfFields[2].FieldEnd, 17);
  EXPECT_EQ(b.DbfRecLen, 1 + 12 + 5 + 6 + 8 + 1 + 10);
  EXPECT_EQ(b.DbfHeaderLen, 6 * 32 + 33);
  b.DbfFields[0].FieldType == 'C' ? SUCCEED() : ADD_FAILURE();
  // Other letters name themselves by their code.
  t.s.Lyr[t.lyr].Dbf.DbfFields[5].FieldType = 'X';
  EXPECT_EQ(GetFieldType(t.s, t.lyr, 5), "88");
}

TEST(DbfValues, StoringThePresentValueChangesNothing) {
  OneRow t;
  t.Put(2, "1.5");
  SaveDbf(t.s, t.lyr);
  ASSERT_EQ(t.s.Lyr[t.lyr].Dbf.DbfChanged, 0);
  ReadDbfRec(t.s, t.lyr, 0);
  // Each cell written back with what it shows.
  for (int f = 0; f <= 6; ++f) SetFieldValue(t.s, t.lyr, f, GetFieldValue(t.s, t.lyr, f));
  EXPECT_EQ(t.s.Lyr[t.lyr].Dbf.DbfBufChanged, 0);
  WriteDbfRecSwap(t.s, t.lyr, 0);
  EXPECT_EQ(t.s.Lyr[t.lyr].Dbf.DbfChanged, 0);
  EXPECT_EQ(t.s.Lyr[t.lyr].Dbf.SwapOpen, 0);
  SetFieldValue(t.s, t.lyr, 2, "1.50");
  EXPECT_EQ(t.s.Lyr[t.lyr].Dbf.DbfBufChanged, 0);
  SetFieldValue(t.s, t.lyr, 2, "1.51");
  EXPECT_EQ(t.s.Lyr[t.lyr].Dbf.DbfBufChanged, -1);
}

TEST(DbfValues, StrToDblAndNumChars) {
  Session s;
  EXPECT_DOUBLE_EQ(StrToDbl(s, "  12.5  "), 12.5);
  EXPECT_DOUBLE_EQ(StrToDbl(s, "-3.25abc"), -3.25);
  EXPECT_DOUBLE_EQ(StrToDbl(s, "1e3"), 1000);
  EXPECT_EQ(StrToDbl(s, ""), 0);
  EXPECT_EQ(StrToDbl(s, "road"), 0);
  EXPECT_EQ(StrToDbl(s, "1e999"), 0);
  EXPECT_TRUE(IsNumChar(s, '7'));
  EXPECT_TRUE(IsNumChar(s, '-'));
  EXPECT_TRUE(IsNumChar(s, '.'));
  EXPECT_TRUE(IsNumChar(s, '\b'));
  EXPECT_FALSE(IsNumChar(s, ','));
  EXPECT_FALSE(IsNumChar(s, 'e'));
  EXPECT_EQ(CleanNumText(s, "abc"), "0");
  EXPECT_EQ(CleanNumText(s, "1,234.5"), "1234.5");
}

TEST(DbfValues, ANumberTooWideForItsFieldIsNotStored) {
  OneRow t;
  t.Put(3, "4321");
  t.host.logged.clear();
  t.Put(3, "1234567.8"); // seven digits before the point in a field of six
  EXPECT_EQ(t.Raw(3), "  4321") << "the cell keeps its value";
  ASSERT_EQ(t.host.logged.size(), 1u);
  EXPECT_EQ(t.host.logged[0], " *** Value 1234567.8 does not fit field N0 (6.0) *** ");
  t.Put(3, "-123456");
  EXPECT_EQ(t.Raw(3), "  4321") << "the sign takes a place too";
  t.Put(3, "999999.5"); // rounds up to seven digits
  EXPECT_EQ(t.Raw(3), "  4321");
  EXPECT_EQ(t.host.logged.size(), 3u);
  EXPECT_EQ(t.host.logged[2], " *** Value 999999.5 does not fit field N0 (6.0) *** ");
  ReadDbfRec(t.s, t.lyr, 0);
  EXPECT_EQ(Trim(GetFieldValue(t.s, t.lyr, 3)), "4321") << "nor did the swap get it";
  EXPECT_EQ(t.s.Lyr[t.lyr].Dbf.SwapTop, 0);

  // Decimals that do not fit are rounded away, half away from zero; the number stays.
  t.host.logged.clear();
  t.Put(2, "123.456"); // N 5.2: three digits, a point and one decimal
  EXPECT_EQ(t.Raw(2), "123.5");
  t.Put(2, "-12.346");
  EXPECT_EQ(t.Raw(2), "-12.3");
  t.Put(2, "999.96");
  EXPECT_EQ(t.Raw(2), " 1000");
  t.Put(2, "12345.4");
  EXPECT_EQ(t.Raw(2), "12345");
  EXPECT_TRUE(t.host.logged.empty());
  t.Put(2, "99999.5");
  EXPECT_EQ(t.Raw(2), "12345");
  ASSERT_EQ(t.host.logged.size(), 1u);
  EXPECT_EQ(t.host.logged[0], " *** Value 99999.5 does not fit field N52 (5.2) *** ");

  // Text is still cut on the right, without a word.
  t.host.logged.clear();
  t.Put(1, "a name longer than twelve");
  EXPECT_EQ(t.Raw(1), "a name longe");
  EXPECT_TRUE(t.host.logged.empty());
}
