// Numbers that cross a file or the command language read and write the same under the
// comma-decimal German locale as under C; the session's own separator shows only where the
// user reads it.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "cmd_test_util.h"
#include "edit/journal_lines.h"
#include "model/c_numbers.h"
#include "model/datum_table.h"
#include "model/num_format.h"
#include "session/cmd_parse.h"
#include "session/commands.h"
#include "session/project.h"
#include "session/user_locale.h"
#include "test_support.h"

using namespace velmora;
using velmora::test::GermanLocale;

namespace {

const double kValues[] = {0,
                          -0.0,
                          1.5,
                          -2.25,
                          1234567.891,
                          0.1,
                          1e-7,
                          1.25e20,
                          3.14159265358979,
                          -1e300,
                          5e-324,
                          999999.9995,
                          12345678901234567.0};

std::string Printf(const char* fmt, int prec, double v) {
  char buf[512];
  std::snprintf(buf, sizeof buf, fmt, prec, v);
  return buf;
}

#define REQUIRE_GERMAN(g)                                                                          \
  ASSERT_TRUE((g).Ok()) << GermanLocale::kName << " is missing: run scripts/bootstrap"

} // namespace

TEST(LocaleNumbers, TextOfNumbersIsPrintfOfTheCLocaleInEveryLocale) {
  std::vector<std::string> fixed, general;
  for (double v : kValues) {
    for (int d : {0, 3, 9}) fixed.push_back(Printf("%.*f", d, v));
    general.push_back(Printf("%.*G", 15, v));
  }
  GermanLocale de;
  REQUIRE_GERMAN(de);
  EXPECT_EQ(Printf("%.*f", 1, 5.5), "5,5"); // the locale is really in force
  size_t i = 0, j = 0;
  for (double v : kValues) {
    for (int d : {0, 3, 9}) EXPECT_EQ(FixedText(v, d), fixed[i++]) << v;
    EXPECT_EQ(GeneralText(v, 15), general[j++]) << v;
  }
}

TEST(LocaleNumbers, LeadingNumberReadsAsStrtodOfTheCLocale) {
  const char* texts[] = {"  12.5abc", "+3",   "-0.5e3x", ".5",   "5.",     "1e-400",   "\t7 8",
                         "1,5",       "1e+2", "2e",      "-.25", "0.9996", "500000.0]"};
  std::vector<double> c;
  for (const char* t : texts) c.push_back(std::strtod(t, nullptr));
  GermanLocale de;
  REQUIRE_GERMAN(de);
  for (size_t i = 0; i < std::size(texts); ++i) {
    double v = -99;
    EXPECT_TRUE(LeadingNumber(texts[i], v)) << texts[i];
    EXPECT_EQ(v, c[i]) << texts[i];
  }
  double v = 7;
  for (const char* t : {"", "abc", "-", ".", "+ 1", "inf", "0x10"}) {
    bool ok = LeadingNumber(t, v);
    // "0x10" reads as the 0 in front of the x, as a decimal reader does.
    if (std::string(t) == "0x10") {
      EXPECT_TRUE(ok);
      EXPECT_EQ(v, 0);
      v = 7;
    } else {
      EXPECT_FALSE(ok) << t;
      EXPECT_EQ(v, 7) << t;
    }
  }
  size_t used = 0;
  ASSERT_TRUE(LeadingNumber("1e400 rest", v, &used));
  EXPECT_TRUE(std::isinf(v));
  EXPECT_EQ(used, 5u);
}

TEST(LocaleNumbers, TheSessionTakesSeparatorAndShortDateFromTheUserLocale) {
  LocaleSettings c = UserLocaleSettings();
  EXPECT_EQ(c.DecimalSep, '.'); // the C locale has no conventions of its own
  EXPECT_EQ(c.ShortDate, "dd/mm/yyyy");
  GermanLocale de;
  REQUIRE_GERMAN(de);
  LocaleSettings g = UserLocaleSettings();
  EXPECT_EQ(g.DecimalSep, ',');
  EXPECT_EQ(g.ShortDate, "dd.mm.yyyy");
  EXPECT_EQ(g.CodePage, c.CodePage);

  EXPECT_EQ(ShortDateOf("%m/%d/%y"), "mm/dd/yy");
  EXPECT_EQ(ShortDateOf("%F"), "yyyy-mm-dd");
  EXPECT_EQ(ShortDateOf("%D"), "mm/dd/yy");
  EXPECT_EQ(ShortDateOf("%e.%m.%Y"), "d.mm.yyyy");
  EXPECT_EQ(ShortDateOf("%Y\xE5\xB9\xB4%m\xE6\x9C\x88%d\xE6\x97\xA5"),
            "yyyy\xE5\xB9\xB4mm\xE6\x9C\x88"
            "dd\xE6\x97\xA5");
  EXPECT_EQ(ShortDateOf("%d %b %Y"), ""); // a month's name can't be shown
  EXPECT_EQ(ShortDateOf("day %d"), "");   // a literal d would read as a field
  EXPECT_EQ(ShortDateOf(nullptr), "");
}

TEST(LocaleNumbers, JournalLinesAndCommandNumbersKeepThePoint) {
  GermanLocale de;
  REQUIRE_GERMAN(de);
  EXPECT_EQ(NumText(1.5), "1.5");
  EXPECT_EQ(NumText(-2.25e-7), "-2.25E-07");
  EXPECT_EQ(NumText(-0.0), "0");
  EXPECT_EQ(NumText(123456789.123456789), "123456789.123457");
  JournalLines l = DeleteVertexLines("/data/l1.shp", 1, 0, 2, 1234.5, -0.125);
  EXPECT_EQ(l.Undo, "Insert Vertex '/data/l1.shp' 1 0 2 1234.5 -0.125");

  // The line goes back through the interpreter to the same numbers.
  Session s;
  test::AddLayers(s, 1);
  ArgStrSplit(s, l.Undo);
  std::vector<CmdCall> calls = ParseArgStr(s);
  ASSERT_EQ(calls.size(), 1u);
  ASSERT_EQ(calls[0].Op, CmdOp::InsertVertex);
  EXPECT_EQ(calls[0].X, (std::vector<double>{1234.5, -0.125}));
  // A comma is no decimal point of the language, whatever the locale.
  ArgStrSplit(s, "Insert Vertex '/data/l1.shp' 1 0 2 1,5 2");
  EXPECT_EQ(ParseArgStr(s)[0].X, (std::vector<double>{1, 2}));
}

TEST(LocaleNumbers, GroupedNumbersUseTheSessionSeparatorsNotTheLocale) {
  GermanLocale de;
  REQUIRE_GERMAN(de);
  Session s;
  EXPECT_EQ(FormatGrouped(s, 1234567.891, 3), "1,234,567.891");
  EXPECT_EQ(FormatGrouped(s, -0.0004, 3), "0.000");
  EXPECT_EQ(FormatGrouped(s, -1000, 0), "-1,000");
  s.Locale.DecimalSep = ',';
  EXPECT_EQ(FormatGrouped(s, 1234567.891, 3), "1.234.567,891");
  EXPECT_EQ(FormatGrouped(s, 12.5, 9), "12,500000000");
}

TEST(LocaleNumbers, AProjectIsTheSameFileUnderEveryLocaleAndLogsItsVersionWithAPoint) {
  auto write = [](const std::string& path) {
    test::RecordingHost host;
    Session s(host);
    InitDatums(s);
    test::AddLayers(s, 2);
    s.MapView.MapLeft = -12.75, s.MapView.MapTop = 51.125;
    s.MapView.MapRight = 33.5, s.MapView.MapBottom = -0.0625;
    s.Lyr[1].DScaleLMT = {1500.5, 250000.25};
    s.Lyr[2].LRefereMapScale = 0.3;
    AddDatum(s,
             DatumDef{"Grid A", "Sph", 6378137, 6356752.3141, 298.257, 500000.5, 10.25, 10.25, 9.5,
                      0.9996, 0.125},
             DatumTrans{1.5, -2.5, 3.25, 0.1, 0.2, 0.3, -1.5e-6});
    WriteProject(s, path);
    EXPECT_EQ(s.LyrErr, 0) << (host.logged.empty() ? "" : host.logged.back());
  };
  std::string dir = test::TempDir("locale project");
  write(dir + "c.qmt");
  std::string c = test::ReadFile(dir + "c.qmt");
  ASSERT_FALSE(c.empty());
  GermanLocale de;
  REQUIRE_GERMAN(de);
  write(dir + "de.qmt");
  EXPECT_EQ(test::ReadFile(dir + "de.qmt"), c);

  for (char sep : {'.', ','}) {
    test::RecordingHost host;
    Session s(host);
    s.Locale.DecimalSep = sep;
    InitDatums(s);
    ReadProject(s, dir + "de.qmt");
    ASSERT_FALSE(host.logged.empty());
    const std::string want = "Version : 16.007"; // a figure read back, not shown in cells
    EXPECT_NE(host.logged.back().find(want), std::string::npos) << host.logged.back();
    ASSERT_EQ(s.DatumTbl.size(), size_t(kBuiltInDatums) + 1);
    EXPECT_EQ(s.DatumTbl.back().FEast, 500000.5);
    EXPECT_EQ(s.DatumTbl.back().TransScale, -1.5e-6);
  }
}
