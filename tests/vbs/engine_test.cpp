#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "engine_support.h"

using namespace vbs;

namespace {

struct Eng {
  RecordingEngineHost host;
  Interp in{&host};
  Value Ev(const std::string& e) {
    Value v;
    EXPECT_TRUE(in.Eval(e, v)) << e << ": " << in.LastError().Description;
    return v;
  }
  std::string Str(const std::string& e) { return in.Cv().ToStr(Ev(e)); }
  std::string Type(const std::string& e) { return TypeNameOf(Ev(e)); }
  bool Run(const std::string& s) { return in.ExecuteStatement(s); }
};

std::string ReadAll(const std::filesystem::path& p) {
  std::ifstream f(p, std::ios::binary);
  std::stringstream ss;
  ss << f.rdbuf();
  return ss.str();
}

} // namespace

TEST(VbsEngine, ArithmeticKeepsTheLanguagesTypes) {
  Eng e;
  EXPECT_EQ(e.Type("1 + 1"), "Integer");
  EXPECT_EQ(e.Type("32767 + 1"), "Long");
  EXPECT_EQ(e.Str("32767 + 1"), "32768");
  EXPECT_EQ(e.Type("2147483647 + 1"), "Double");
  EXPECT_EQ(e.Type("1 / 2"), "Double");
  EXPECT_EQ(e.Str("1 / 2"), "0.5");
  EXPECT_EQ(e.Str("7 \\ 2"), "3");
  EXPECT_EQ(e.Str("7.5 Mod 2"), "0"); // 7.5 rounds to 8 first
  EXPECT_EQ(e.Str("-7 Mod 3"), "-1");
  EXPECT_EQ(e.Str("-2 ^ 2"), "-4");
  EXPECT_EQ(e.Str("2 ^ -1"), "0.5");
  EXPECT_EQ(e.Str("\"1\" + 2"), "3");
  EXPECT_EQ(e.Type("\"1\" + 2"), "Double");
  EXPECT_EQ(e.Str("\"a\" + \"b\""), "ab");
  EXPECT_EQ(e.Str("True + True"), "-2");
  EXPECT_EQ(e.Type("Empty + Empty"), "Integer");
  EXPECT_EQ(e.Type("Null + 1"), "Null");
  EXPECT_EQ(e.Str("0.1 + 0.2"), "0.3");
  EXPECT_EQ(e.Str("1E+20"), "1E+20");
  EXPECT_EQ(e.Str("&HFF"), "255");
  EXPECT_EQ(e.Str("&HFFFF"), "-1");
}

TEST(VbsEngine, LogicIsThreeValuedWithNull) {
  Eng e;
  EXPECT_EQ(e.Type("Null And False"), "Boolean");
  EXPECT_EQ(e.Type("Null And True"), "Null");
  EXPECT_EQ(e.Type("Null Or True"), "Boolean");
  EXPECT_EQ(e.Str("True Eqv False"), "False");
  EXPECT_EQ(e.Str("False Imp False"), "True");
  EXPECT_EQ(e.Type("False Imp Null"), "Boolean");
  EXPECT_EQ(e.Str("6 And 3"), "2");
  EXPECT_EQ(e.Str("Not 0"), "-1");
  EXPECT_EQ(e.Type("Null = Null"), "Null");
}

TEST(VbsEngine, DecimalSeparatorOfTheSessionReadsText) {
  RecordingEngineHost h;
  Interp in(&h, ',');
  Value v;
  ASSERT_TRUE(in.Eval("CDbl(\"1,5\") * 2", v));
  EXPECT_EQ(in.Cv().ToStr(v), "3");
  ASSERT_TRUE(in.Eval("CStr(2.5)", v));
  EXPECT_EQ(v.s, "2,5");
}

TEST(VbsEngine, SyntaxErrorIsReportedBeforeAnythingRuns) {
  Eng e;
  EXPECT_FALSE(e.Run("MsgBox \"ran\"\nIf x Then\n"));
  EXPECT_TRUE(e.host.Boxes.empty());
  EXPECT_GE(e.in.LastError().Number, 1000);
  EXPECT_FALSE(e.Run("x = (1 + \n"));
  EXPECT_EQ(e.in.LastError().Line, 1);
}

TEST(VbsEngine, RuntimeErrorCarriesNumberAndLine) {
  Eng e;
  EXPECT_FALSE(e.Run("a = 1\nb = 1 / 0\n"));
  EXPECT_EQ(e.in.LastError().Number, 11);
  EXPECT_EQ(e.in.LastError().Description, "Division by zero");
  EXPECT_EQ(e.in.LastError().Line, 2);
}

TEST(VbsEngine, RunawayRecursionIsOutOfStackSpace) {
  Eng e;
  EXPECT_FALSE(e.Run("Function F(n)\nF = F(n + 1)\nEnd Function\nx = F(1)\n"));
  EXPECT_EQ(e.in.LastError().Number, 28);
  // the engine goes on
  EXPECT_TRUE(e.Run("y = 2"));
  EXPECT_EQ(e.Str("y"), "2");
}

TEST(VbsEngine, HugeRequestsAreErrorsNotAllocations) {
  Eng e;
  EXPECT_FALSE(e.Run("s = Space(2000000000)"));
  EXPECT_EQ(e.in.LastError().Number, 14);
  EXPECT_FALSE(e.Run("Dim a()\nReDim a(100000, 100000)"));
  EXPECT_EQ(e.in.LastError().Number, 7);
  EXPECT_FALSE(e.Run("s = String(-1, \"a\")"));
  EXPECT_FALSE(e.Run("s = \"x\"\nDo\ns = s & s\nLoop"));
  EXPECT_EQ(e.in.LastError().Number, 14);
}

TEST(VbsEngine, EndlessLoopStopsWhenTheHostCancels) {
  Eng e;
  e.host.CancelAfter = 3;
  EXPECT_FALSE(e.Run("Do\nx = x + 1\nLoop"));
  EXPECT_EQ(e.in.LastError().Number, -1);
  // On Error Resume Next doesn't swallow a cancel
  e.host.CancelAfter = 2;
  EXPECT_FALSE(e.Run("On Error Resume Next\nWhile True\ny = 1\nWend"));
}

TEST(VbsEngine, GlobalsLiveAcrossStatements) {
  Eng e;
  ASSERT_TRUE(e.Run("Dim n\nn = 5\nFunction Twice(x)\nTwice = x * 2\nEnd Function"));
  ASSERT_TRUE(e.Run("n = Twice(n)"));
  EXPECT_EQ(e.Str("n"), "10");
  EXPECT_EQ(e.Str("Twice(4)"), "8");
}

TEST(VbsEngine, CompiledProgramRunsMany) {
  Eng e;
  auto p = e.in.Compile("total = total + v\n");
  ASSERT_TRUE(p);
  for (int i = 1; i <= 10; ++i) {
    e.in.Global("v") = Value::Int(i);
    ASSERT_TRUE(e.in.Run(p));
  }
  EXPECT_EQ(e.Str("total"), "55");
}

TEST(VbsEngine, KeywordNamesAreRefused) {
  EXPECT_TRUE(IsReserved("next"));
  EXPECT_TRUE(IsReserved("end"));
  EXPECT_FALSE(IsReserved("name"));
  Eng e;
  EXPECT_FALSE(e.Run("Dim Next\n"));
}

// Each .vbs file of the conformance table reports through MsgBox: "FAIL ..." for a case
// that went wrong, and "done" at its end.
TEST(VbsConformance, EveryScriptPasses) {
  std::filesystem::path dir = std::filesystem::path(VELMORA_SOURCE_DIR) / "tests/vbs/conformance";
  int files = 0;
  for (auto& ent : std::filesystem::directory_iterator(dir)) {
    if (ent.path().extension() != ".vbs") continue;
    ++files;
    Eng e;
    bool ok = e.Run(ReadAll(ent.path()));
    EXPECT_TRUE(ok) << ent.path().filename() << ": " << e.in.LastError().Number << " "
                    << e.in.LastError().Description << " line " << e.in.LastError().Line;
    for (const std::string& b : e.host.Boxes)
      EXPECT_NE(b.rfind("FAIL", 0), 0u) << ent.path().filename() << ": " << b;
    ASSERT_FALSE(e.host.Boxes.empty()) << ent.path().filename();
    EXPECT_EQ(e.host.Boxes.back(), "done") << ent.path().filename();
  }
  EXPECT_GE(files, 5);
}

// Every cut of the conformance scripts, and bytes flipped in them: a syntax error or a run,
// never a crash; the engine takes the next script afterwards.
TEST(VbsBadInput, CutAndDamagedScriptsNeverCrash) {
  std::filesystem::path dir = std::filesystem::path(VELMORA_SOURCE_DIR) / "tests/vbs/conformance";
  int runs = 0;
  for (auto& ent : std::filesystem::directory_iterator(dir)) {
    if (ent.path().extension() != ".vbs") continue;
    std::string text = ReadAll(ent.path());
    for (size_t cut = 0; cut < text.size(); cut += 53) {
      Eng e;
      e.host.CancelAfter = 50;
      std::string t = text.substr(0, cut);
      if (cut % 2) t[cut / 2] = static_cast<char>(t[cut / 2] ^ 0x5A);
      e.Run(t);
      EXPECT_TRUE(e.Run("Dim zz : zz = 1")) << e.in.LastError().Description;
      ++runs;
    }
  }
  EXPECT_GT(runs, 100);
}
