#include <gtest/gtest.h>

#include "session/undo.h"
#include "table/field_struct.h"
#include "table_fixture.h"

using namespace velmora;

namespace {

struct FieldChange : test::TableFixture {
  std::string Info() { return test::RunCmd("ogrinfo -ro -al " + path + " 2>&1"); }
};

} // namespace

TEST_F(FieldChange, DeleteRenameAndRetypeCarryValuesByName) {
  Open(4, "fields");
  // An unsaved edit goes into the rebuilt table as well.
  ReadDbfRec(s, lyr, 1);
  SetFieldValue(s, lyr, 1, "edited");
  WriteDbfRecSwap(s, lyr, 1);

  Exec("DELETE FIELD '" + path + "' OK");
  EXPECT_EQ(Last(), "Delete Field pts.shp");
  EXPECT_EQ(s.Lyr[lyr].Dbf.DbfFieldCount, 3);
  EXPECT_EQ(FindField(s, lyr, "OK"), -1);
  EXPECT_EQ(host.fieldsChanged.back(), lyr);

  Exec("RENAME FIELD '" + path + "' NAME Title");
  EXPECT_EQ(Last(), "Rename Field pts.shp");
  EXPECT_EQ(Cell(2, "TITLE"), "edited");

  Exec("CHANGE FIELD '" + path + "' VAL C 6 0");
  EXPECT_EQ(Last(), "Change Field pts.shp");
  EXPECT_EQ(Cell(1, "VAL"), "10");

  // Text to number: what isn't a number becomes blank, with a count in the log.
  Exec("CHANGE FIELD '" + path + "' TITLE N 8 0");
  EXPECT_EQ(host.logged[host.logged.size() - 2],
            "Change Field pts.shp: 4 values did not fit and were left blank");
  EXPECT_EQ(Cell(1, "TITLE"), "");

  const std::string info = Info();
  EXPECT_NE(info.find("Title: Integer (8.0)"), std::string::npos) << info;
  EXPECT_NE(info.find("VAL: String (6.0)"), std::string::npos) << info;
  EXPECT_EQ(info.find("OK:"), std::string::npos) << info;
  EXPECT_NE(info.find("VAL (String) = 7"), std::string::npos) << info;
}

TEST_F(FieldChange, NumbersNarrowedOrRetypedKeepWhatFits) {
  Open(12, "narrow");
  Exec("CHANGE FIELD '" + path + "' VAL N 2 0"); // 10 .. -1: "-1" and "10" fit, all fit
  EXPECT_EQ(Last(), "Change Field pts.shp");
  EXPECT_EQ(Num(1), 10);
  EXPECT_EQ(Num(12), -1);
  Exec("CHANGE FIELD '" + path + "' VAL N 1 0"); // two digits no longer fit
  EXPECT_EQ(Cell(1, "VAL"), "");
  EXPECT_EQ(Num(5), 6);
  EXPECT_EQ(Cell(12, "VAL"), "");
}

TEST_F(FieldChange, BadArgumentsAreRefusedAndChangeNothing) {
  Open(2, "badfields");
  for (const std::string& l :
       {"DELETE FIELD '" + path + "' NOPE", "RENAME FIELD '" + path + "' NAME VAL",
        "RENAME FIELD '" + path + "' NAME has-dash", "CHANGE FIELD '" + path + "' VAL Q 5 0",
        "CHANGE FIELD '" + path + "' VAL N 5 5", "CHANGE FIELD '" + path + "' VAL N x 0"}) {
    Exec(l);
    EXPECT_NE(Last().find("has been canceled"), std::string::npos) << l << " -> " << Last();
  }
  EXPECT_EQ(s.Lyr[lyr].Dbf.DbfFieldCount, 4);
  EXPECT_EQ(Cell(1, "NAME"), "n0");
}
