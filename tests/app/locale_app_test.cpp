// The program under the comma-decimal German locale gives the figures and the files it
// gives under C.
#include <gtest/gtest.h>

#include <cstdlib>

#include "app_support.h"

using namespace velmora::test;

namespace {

constexpr const char* kGerman = "de_DE.UTF-8";

// The program under LC_ALL=`locale`, standard error in the output.
std::string RunIn(const std::string& locale, const std::string& args, int* status = nullptr) {
  return RunCmd("LC_ALL=" + locale + " " + Quote(VELMORA_BINARY) + " " + args + " 2>&1", status);
}

bool HaveGerman() {
  return RunCmd("locale -a 2>/dev/null | grep -qi '^de_DE.utf-\\?8$' && echo yes") == "yes\n";
}

#define REQUIRE_GERMAN()                                                                           \
  ASSERT_TRUE(HaveGerman()) << kGerman << " is missing: run scripts/bootstrap"

std::vector<double> Numbers(const std::string& text) {
  std::vector<double> v;
  for (const std::string& l : Lines(text)) {
    const char* p = l.c_str();
    char* end = nullptr;
    for (double d = std::strtod(p, &end); end != p; d = std::strtod(p, &end)) {
      v.push_back(d);
      p = end;
    }
  }
  return v;
}

} // namespace

TEST(LocaleApp, TransformFiguresAreTheSameAndRoundTrip) {
  REQUIRE_GERMAN();
  std::string dir = TempDir("locale transform");
  WriteFile(dir + "in.txt", "52.5 13.4\n48.208333 16.3725\n54.0 15.25\n");
  const std::string in = " < " + Quote(dir + "in.txt");
  int st = -1;
  const std::string c = RunIn("C", "--transform --zone 33" + in, &st);
  ASSERT_EQ(st, 0) << c;
  const std::string de = RunIn(kGerman, "--transform --zone 33" + in, &st);
  EXPECT_EQ(st, 0);
  EXPECT_EQ(de, c);
  EXPECT_EQ(de.find(','), std::string::npos) << de;
  ASSERT_EQ(Lines(de).size(), 3u);

  // Back to degrees under the German locale: the figures that went in.
  WriteFile(dir + "grid.txt", de);
  const std::string back =
      RunIn(kGerman, "--transform --inverse --zone 33 < " + Quote(dir + "grid.txt"), &st);
  EXPECT_EQ(st, 0);
  std::vector<double> want = Numbers(ReadFile(dir + "in.txt")), got = Numbers(back);
  ASSERT_EQ(got.size(), want.size()) << back;
  for (size_t i = 0; i < want.size(); ++i) EXPECT_NEAR(got[i], want[i], 1e-8) << back;

  // A .prj of the user's grid reads the same.
  WriteFile(dir + "g.prj",
            "PROJCS[\"G\",GEOGCS[\"x\",DATUM[\"d\",SPHEROID[\"WGS_1984\",6378137.0,"
            "298.257223563]]],PROJECTION[\"Transverse_Mercator\"],"
            "PARAMETER[\"False_Easting\",500000.5],PARAMETER[\"False_Northing\",0.0],"
            "PARAMETER[\"Central_Meridian\",15.25],PARAMETER[\"Scale_Factor\",0.9999],"
            "PARAMETER[\"Latitude_Of_Origin\",0.0]]");
  const std::string prj = "--transform --prj " + Quote(dir + "g.prj") + in;
  const std::string pc = RunIn("C", prj, &st);
  EXPECT_EQ(st, 0) << pc;
  EXPECT_EQ(RunIn(kGerman, prj), pc);
  // 54 N 15.25 E lies on the grid's central meridian: x is the false easting.
  ASSERT_EQ(Lines(pc).size(), 3u);
  EXPECT_EQ(Lines(pc)[2].rfind("500000.5 ", 0), 0u) << pc;
}

TEST(LocaleApp, AListWritesTheSameLayerUnderEveryLocale) {
  REQUIRE_GERMAN();
  auto make = [](const std::string& locale, const std::string& dir) {
    const std::string p = "'" + dir + "p.shp'";
    WriteFile(dir + "make.lst",
              "MAKE LAYER " + p + " AS POLYGON\n" + "OPEN LAYER " + p + "\n" + "ADD FIELD " + p +
                  " NAME C 10 0\n" + "ADD FIELD " + p + " AREA N 12 3\n" + "ADD FEATURE " + p +
                  " 0 0.5 0.25 NAME=first AREA=1234.5\n" + "ADD VERTEX " + p +
                  " 1 0 10.125 0.25\n" + "ADD VERTEX " + p + " 1 0 10.125 2.075E1\n" +
                  "ADD VERTEX " + p + " 1 0 1e400 0\n" + "SAVE LAYER " + p + "\n");
    int st = -1;
    std::string log = RunIn(locale, "--headless " + Quote(dir + "make.lst"), &st);
    EXPECT_EQ(st, 0) << log;
    return log;
  };
  const std::string dc = TempDir("locale lst c"), dd = TempDir("locale lst de");
  std::string logC = make("C", dc), logDe = make(kGerman, dd);
  // The same lines, the folder apart.
  for (size_t at; (at = logC.find(dc)) != std::string::npos;) logC.replace(at, dc.size(), "<dir>");
  for (size_t at; (at = logDe.find(dd)) != std::string::npos;)
    logDe.replace(at, dd.size(), "<dir>");
  EXPECT_EQ(logDe, logC);
  EXPECT_NE(logDe.find(" *** Error in ArgStrExecute ***"), std::string::npos) << logDe;
  for (const char* ext : {".shp", ".shx", ".dbf"}) {
    std::string c = ReadFile(dc + "p" + ext);
    EXPECT_FALSE(c.empty()) << ext;
    EXPECT_EQ(ReadFile(dd + "p" + ext), c) << ext;
  }
  std::string info = RunCmd("ogrinfo -ro -al " + Quote(dd + "p.shp") + " 2>&1");
  EXPECT_NE(info.find("POLYGON ((0.5 0.25,10.125 0.25,10.125 20.75"), std::string::npos) << info;
  EXPECT_NE(info.find("AREA (Real) = 1234.500"), std::string::npos) << info;
}

TEST(LocaleApp, AProjectOpensAndLogsTheSameUnderEveryLocale) {
  REQUIRE_GERMAN();
  std::string dir = TempDir("locale project");
  std::string q = dir + "missing layers.qmt";
  // A project written by the program's own format: version 16.007 and no layers.
  std::string b;
  auto f64 = [&](double v) { b.append(reinterpret_cast<const char*>(&v), 8); };
  auto i32 = [&](int32_t v) { b.append(reinterpret_cast<const char*>(&v), 4); };
  f64(16.007);
  i32(0);
  b.append(8, '\0');
  i32(640), i32(480);
  f64(-1.5), f64(2.25), f64(3.5), f64(-0.75);
  b.append(8, '\1');
  WriteFile(q, b);
  int st = -1;
  std::string c = RunIn("C", "--headless " + Quote(q), &st);
  EXPECT_EQ(st, 0);
  EXPECT_EQ(RunIn(kGerman, "--headless " + Quote(q)), c);
  EXPECT_EQ(c, "Open Project  " + q + "   ->    Version : 16.007\n");
}
