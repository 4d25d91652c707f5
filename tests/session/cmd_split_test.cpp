#include <gtest/gtest.h>

#include "model/val.h"
#include "session/commands.h"
#include "session/start_session.h"

using namespace velmora;
using Tokens = std::vector<std::string>;

namespace {
Tokens Split(const std::string& line) {
  Session s;
  ArgStrSplit(s, line);
  return s.ArgStr;
}
} // namespace

TEST(CmdSplit, BlanksAndQuotes) {
  EXPECT_EQ(Split(R"(Delete   Feature   'C:\a b\c.shp'   3)"),
            (Tokens{"Delete", "Feature", R"(C:\a b\c.shp)", "3"}));
  EXPECT_EQ(Split("'it''s'"), Tokens{"it's"});
  // Either quote closes what the other opened.
  EXPECT_EQ(Split(R"("abc' def)"), (Tokens{"abc", "def"}));
  EXPECT_EQ(Split(R"(a "x y' b)"), (Tokens{"a", "x y", "b"}));
  // A doubled double quote inside a run, and quotes in the middle of a word.
  EXPECT_EQ(Split(R"("say ""hi""" x)"), (Tokens{R"(say "hi")", "x"}));
  EXPECT_EQ(Split("ab'c d'e"), Tokens{"abc de"});
  // Blanks at both ends go; tabs are no blanks.
  EXPECT_EQ(Split("   SELECT    ZOOM   "), (Tokens{"SELECT", "ZOOM"}));
  EXPECT_EQ(Split("a\tb"), Tokens{"a\tb"});
}

TEST(CmdSplit, EmptyLinesGiveOneEmptyToken) {
  EXPECT_EQ(Split(""), Tokens{""});
  EXPECT_EQ(Split("     "), Tokens{""});
  // A quote that opens an empty run leaves an empty token behind a blank.
  EXPECT_EQ(Split("a \""), (Tokens{"a", ""}));
}

TEST(CmdSplit, JoinedArgumentsComeBackWhole) {
  Tokens args = {"OPEN", "LAYER", "/tmp/a b/it's \"here\".shp", "EXIT"};
  EXPECT_EQ(Split(JoinArgs(args)), args);
  // Without blanks an argument goes as it is, and its quotes act as on any line.
  EXPECT_EQ(Split(JoinArgs({"'x'", "y"})), (Tokens{"x", "y"}));
  EXPECT_EQ(JoinArgs({}), "");
}

TEST(CmdVal, LeadingNumberOrZero) {
  EXPECT_EQ(Val("12.5abc"), 12.5);
  EXPECT_EQ(Val("abc"), 0);
  EXPECT_EQ(Val(""), 0);
  EXPECT_EQ(Val("-3"), -3);
  EXPECT_EQ(Val("+.5"), 0.5);
  EXPECT_EQ(Val("1 2 3"), 123); // blanks anywhere are passed over
  EXPECT_EQ(Val("1e3"), 1000);
  EXPECT_EQ(Val("2D2"), 200);
  EXPECT_EQ(Val("7e"), 7);  // an exponent without digits is no exponent
  EXPECT_EQ(Val("1,5"), 1); // "." is the only decimal point
  EXPECT_EQ(Val("&H10"), 16);
  EXPECT_EQ(Val("&HFFFF"), -1);
  EXPECT_EQ(Val("&O17"), 15);
  EXPECT_EQ(Val("-"), 0);
  EXPECT_EQ(Val("."), 0);
}

TEST(CmdVal, IntegersRoundHalfToEvenAndClamp) {
  EXPECT_EQ(ValLong("2.5"), 2);
  EXPECT_EQ(ValLong("3.5"), 4);
  EXPECT_EQ(ValLong("-2.7"), -3);
  EXPECT_EQ(ValLong("1e30"), INT32_MAX);
  EXPECT_EQ(ValLong("-1e999"), INT32_MIN);
  EXPECT_EQ(ValLong("x"), 0);
}
