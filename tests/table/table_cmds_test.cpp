#include <gtest/gtest.h>

#include "table_fixture.h"

using namespace velmora;

namespace {

struct TableCmds : test::TableFixture {};

} // namespace

TEST_F(TableCmds, FillSeriesAddRecordsAndConvert) {
  Open(6, "cmds");
  Exec("FILL SERIES '" + path + "' VAL 2 5 0.5 0.25");
  EXPECT_EQ(Last(), "Fill Series pts.shp");
  EXPECT_EQ(Num(1), 10);
  EXPECT_EQ(Num(2), 0.5);
  EXPECT_EQ(Num(5), 1.25);
  Exec("FILL SERIES '" + path + "' VAL 1 6 1 2 6");
  EXPECT_EQ(Num(3), 5);
  EXPECT_EQ(Num(4), 1); // past the stop: untouched

  Exec("ADD RECORDS '" + path + "' 3");
  EXPECT_EQ(Last(), "Add Records pts.shp");
  EXPECT_EQ(s.Lyr[lyr].Shp.RecCount, 9);

  ReadDbfRec(s, lyr, 0);
  SetFieldValue(s, lyr, 1, "\xC3\x83\xC2\xA9t\xC3\x83\xC2\xA9");
  WriteDbfRecSwap(s, lyr, 0);
  Exec("CONVERT UTF8 '" + path + "' NAME 1 2");
  EXPECT_EQ(Cell(1, "NAME"), "\xC3\xA9t\xC3\xA9");
  Exec("CONVERT ASCII '" + path + "' NAME 1 1");
  EXPECT_EQ(Cell(1, "NAME"), "\xC3\x83\xC2\xA9t\xC3\x83\xC2\xA9");
}

TEST_F(TableCmds, WrongArgumentsLogTheRefusal) {
  Open(3, "cmdsbad");
  const std::string q = "'" + path + "'";
  const std::pair<std::string, std::string> cases[] = {
      {"FILL SERIES " + q + " NOPE 1 2 1 1",
       " *** Fill Series to layer pts.shp has been canceled *** "},
      {"FILL SERIES " + q + " VAL 3 9 1 1",
       " *** Fill Series to layer pts.shp has been canceled *** "},
      {"FILL SERIES " + q + " VAL 1 2 1",
       " *** Fill Series to layer pts.shp has been canceled *** "},
      {"ADD RECORDS " + q + " 0", " *** Append Records to layer pts.shp has been canceled *** "},
      {"ADD RECORDS " + q + " many", " *** Append Records to layer pts.shp has been canceled *** "},
      {"CONVERT UTF8 " + q + " NAME 2 1",
       " *** Convert UTF Cells to layer pts.shp has been canceled *** "},
  };
  for (const auto& [line, msg] : cases) {
    Exec(line);
    EXPECT_EQ(Last(), msg) << line;
  }
  EXPECT_EQ(Num(1), 10);
  EXPECT_EQ(s.Lyr[lyr].Shp.RecCount, 3);
}
