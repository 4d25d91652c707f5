// Code pages: the tables against the C library's iconv, the names in .cpg files and the
// language-driver byte, and the page a layer's cells are read and written in.
#include <iconv.h>

#include "dbf_fixture.h"
#include "store/codepage.h"
#include "store/dbf_store.h"

using namespace velmora;
using namespace velmora::test;

namespace {

// One byte through iconv, or "" when iconv has no character for it.
std::string IconvByte(const char* page, uint8_t byte) {
  iconv_t cd = iconv_open("UTF-8", page);
  if (cd == iconv_t(-1)) return "";
  char in[1] = {char(byte)}, out[8];
  char* src = in;
  char* dst = out;
  size_t srcLeft = 1, dstLeft = sizeof out;
  size_t r = iconv(cd, &src, &srcLeft, &dst, &dstLeft);
  iconv_close(cd);
  return r == size_t(-1) ? "" : std::string(out, sizeof out - dstLeft);
}

const std::pair<int, const char*> kPages[] = {
    {437, "CP437"},        {850, "CP850"},        {852, "CP852"},        {866, "CP866"},
    {874, "CP874"},        {1250, "CP1250"},      {1251, "CP1251"},      {1252, "CP1252"},
    {1253, "CP1253"},      {1254, "CP1254"},      {1255, "CP1255"},      {1256, "CP1256"},
    {1257, "CP1257"},      {1258, "CP1258"},      {20866, "KOI8-R"},     {21866, "KOI8-U"},
    {28591, "ISO-8859-1"}, {28592, "ISO-8859-2"}, {28595, "ISO-8859-5"}, {28597, "ISO-8859-7"},
    {28599, "ISO-8859-9"}, {28605, "ISO-8859-15"}};

} // namespace

TEST(CodePage, SingleBytePagesAgreeWithIconvAndKeepEveryByte) {
  for (auto [page, name] : kPages) {
    SCOPED_TRACE(name);
    ASSERT_TRUE(KnownCodePage(page));
    std::string all;
    for (int b = 0; b < 256; ++b) all += char(b);
    std::string text = DecodeText(page, all);
    EXPECT_EQ(EncodeText(page, text), all) << "a read and a write keep the bytes";
    for (int b = 0x80; b < 256; ++b) {
      std::string theirs = IconvByte(name, uint8_t(b));
      bool c1 = theirs.size() == 2 && uint8_t(theirs[0]) == 0xC2 && uint8_t(theirs[1]) < 0xA0;
      if (!theirs.empty() && !c1) { // bytes iconv leaves undefined or as controls aside
        EXPECT_EQ(DecodeText(page, std::string(1, char(b))), theirs) << "byte " << b;
      }
    }
  }
}

TEST(CodePage, CharactersAPageLacksBecomeQuestionMarks) {
  EXPECT_EQ(EncodeText(1252, "Zoë 日本"), "Zo\xEB ??");
  EXPECT_EQ(EncodeText(1251, "Жук ë"), "\xC6\xF3\xEA ?");
  EXPECT_EQ(EncodeText(65001, "日本"), "日本");
  std::string sjis = EncodeText(932, "日本語");
  EXPECT_EQ(sjis.size(), 6u);
  EXPECT_EQ(DecodeText(932, sjis), "日本語");
  EXPECT_EQ(EncodeText(932, "Ω€"), "\x83\xB6?") << "iconv's page lacks the euro";
}

TEST(CodePage, Utf8CutsOnlyBetweenCharacters) {
  std::string t = "aÆÆ"; // 1 + 2 + 2 bytes
  EXPECT_EQ(FitBytes(kUtf8Page, t, 4), 3u);
  EXPECT_EQ(FitBytes(kUtf8Page, t, 5), 5u);
  EXPECT_EQ(FitBytes(1252, "abcdef", 4), 4u);
}

TEST(CodePage, CpgNamesAndLanguageDrivers) {
  EXPECT_EQ(CodePageOfCpg("UTF-8"), kUtf8Page);
  EXPECT_EQ(CodePageOfCpg("utf8\r\n"), kUtf8Page);
  EXPECT_EQ(CodePageOfCpg("1252"), 1252);
  EXPECT_EQ(CodePageOfCpg("CP1251"), 1251);
  EXPECT_EQ(CodePageOfCpg("ANSI 1250"), 1250);
  EXPECT_EQ(CodePageOfCpg("OEM 866"), 866);
  EXPECT_EQ(CodePageOfCpg("ISO-8859-5"), 28595);
  EXPECT_EQ(CodePageOfCpg("88591"), 28591);
  EXPECT_EQ(CodePageOfCpg("ISO88591"), 28591);
  EXPECT_EQ(CodePageOfCpg("8859-15"), 28605);
  EXPECT_EQ(CodePageOfCpg("KOI8-R"), 20866);
  EXPECT_EQ(CodePageOfCpg("Big5"), 950);
  EXPECT_EQ(CodePageOfCpg("nonsense"), 0);
  EXPECT_EQ(CodePageOfCpg(""), 0);
  EXPECT_EQ(CodePageOfCpg("ISO-8859-99"), 0);
  for (int p : {1252, 1251, 866, 28591, 28605, 65001, 20866})
    EXPECT_EQ(CodePageOfCpg(CpgTextOf(p)), p);
  EXPECT_EQ(CodePageOfLdid(0x57), 28591);
  EXPECT_EQ(CodePageOfLdid(0x03), 1252);
  EXPECT_EQ(CodePageOfLdid(0xC9), 1251);
  EXPECT_EQ(CodePageOfLdid(0x26), 866);
  EXPECT_EQ(CodePageOfLdid(0x00), 0);
}

TEST(CodePage, ALayerReadsItsCpgThenItsDriverByteThenTheSessionPage) {
  std::string dir = TempDir("cp-layer");
  Session s;
  int lyr = AddLayerRow(s, dir + "t.shp", 1);
  InitDbf(s, lyr);
  AddField(s, lyr, "T", 'C', 5, 0);
  CreateDbf(s, lyr, dir + "t.shp");
  ClearDbfBuf(s, lyr);
  WriteDbfRec(s, lyr, 0);
  SetDbfRecCount(s, lyr, 1);
  CloseDbf(s, lyr);
  std::string bytes = ReadFile(dir + "t.dbf");
  bytes.replace(66, 5, "\xC6\xF3\xEA  "); // "Жук" in 1251, "Æóê" in 1252
  WriteFile(dir + "t.dbf", bytes);

  auto cell = [&] {
    OpenDbf(s, lyr, dir + "t.shp");
    EXPECT_EQ(s.DbfErr, 0);
    ReadDbfRec(s, lyr, 0);
    return GetFieldValue(s, lyr, 1);
  };
  EXPECT_EQ(cell(), "Æóê  ") << "the session's page, 1252 by default";
  s.Locale.CodePage = 1251;
  EXPECT_EQ(cell(), "Жук  ");
  s.Locale.CodePage = 1252;
  bytes[29] = char(0xC9); // language driver: 1251
  WriteFile(dir + "t.dbf", bytes);
  EXPECT_EQ(cell(), "Жук  ");
  EXPECT_EQ(s.Lyr[lyr].Dbf.CodePage, 1251);
  WriteFile(dir + "t.cpg", "1252"); // the .cpg wins
  EXPECT_EQ(cell(), "Æóê  ");

  // Writing in a UTF-8 layer: widths count bytes, and a character is never cut in two.
  WriteFile(dir + "t.cpg", "UTF-8");
  cell();
  SetFieldValue(s, lyr, 1, "ÆÆÆ");
  EXPECT_EQ(GetFieldValue(s, lyr, 1), "ÆÆ ");
  SetFieldValue(s, lyr, 1, "Zoë");
  WriteDbfRecSwap(s, lyr, 0);
  SaveDbf(s, lyr);
  CloseDbf(s, lyr);
  EXPECT_EQ(GdalRows(dir + "t.dbf")[1][0], "Zoë");
}
