// The default tables, tables made from other layers' fields, and rows copied between them.
#include "dbf_fixture.h"
#include "frame/lyr_slots.h"
#include "store/dbf_store.h"

using namespace velmora;
using namespace velmora::test;

namespace {

using Rows = std::vector<std::vector<std::string>>;
using Maker = void (*)(Session&, int, const std::string&);

// Makes the table for a layer of `n` features and returns what GDAL reads from it.
Rows Made(Maker make, int n, Session& s, int& lyr) {
  std::string dir = TempDir("dbf-def");
  lyr = AddLayerRow(s, dir + "d.shp", n);
  make(s, lyr, dir + "d.shp");
  EXPECT_EQ(s.DbfErr, 0);
  EXPECT_EQ(s.Lyr[lyr].Dbf.DbfExists, -1);
  EXPECT_EQ(s.Lyr[lyr].Dbf.DbfChanged, 0) << "a new table is no change";
  return GdalRows(dir + "d.dbf");
}

Rows Made(Maker make, int n) {
  Session s;
  int lyr;
  return Made(make, n, s, lyr);
}

} // namespace

TEST(DbfDefaults, ShapesWithoutATableGetIdsOneToRecCount) {
  Session s;
  int lyr;
  Rows r = Made(NewDbfDefault, 12, s, lyr);
  ASSERT_EQ(r.size(), 13u);
  EXPECT_EQ(r[0], (std::vector<std::string>{"ID:String"}));
  for (int i = 1; i <= 12; ++i) EXPECT_EQ(r[size_t(i)][0], std::to_string(i));
  EXPECT_EQ(s.Lyr[lyr].Dbf.DbfRecCount, 12);
  EXPECT_EQ(s.Lyr[lyr].Dbf.DbfFields[1].FieldLength, 10);
  ReadDbfRec(s, lyr, 11);
  EXPECT_EQ(GetFieldValue(s, lyr, 1), "12        ");
}

TEST(DbfDefaults, EachKindHasItsFieldsAndRowDefaults) {
  Rows dem = Made(NewDbfDem, 2);
  EXPECT_EQ(dem[0],
            (std::vector<std::string>{"ID:String", "LON_X:Real", "LAT_Y:Real", "Z_MTR:Integer"}));
  EXPECT_EQ(dem[2], (std::vector<std::string>{"2", "0.0", "0.0", "0"}));
  EXPECT_EQ(Made(NewDbfTin, 1)[0], (std::vector<std::string>{"ID:String", "AverageZ:Real"}));
  EXPECT_EQ(Made(NewDbfContour, 1)[1], (std::vector<std::string>{"1", "0.0"}));
  Rows dxf = Made(NewDbfDxf, 1);
  EXPECT_EQ(dxf[0], (std::vector<std::string>{"ID:String", "Layer:String", "Entity:String",
                                              "Text:String"}));
  EXPECT_EQ(dxf[1], (std::vector<std::string>{"1", "<null>", "<null>", "<null>"})) << "blank text";
  EXPECT_EQ(Made(NewDbfControl, 1)[0],
            (std::vector<std::string>{"ID:String", "SRC_X:Real", "SRC_Y:Real", "DIS_X:Real",
                                      "DIS_Y:Real"}));
  Rows gps = Made(NewDbfGps, 2);
  EXPECT_EQ(gps[0][0], "User:String") << "no ID";
  EXPECT_EQ(gps[2], (std::vector<std::string>{"<null>", "0.0", "<null>", "0.0", "0.0", "0"}));
}

TEST(DbfDefaults, TheMaskLayoutTable) {
  Session s;
  int lyr;
  Rows r = Made(NewDbfMask, 2, s, lyr);
  EXPECT_EQ(r[0].size(), 17u);
  EXPECT_EQ(r[2], (std::vector<std::string>{"2", "PolyLine", "Y", "0.0", "0.0", "0", "0", "0", "0",
                                            "Times New Roman", "N", "N", "10.0", "N", "N", "0.0",
                                            "<null>"}));
  ReadDbfRec(s, lyr, 0);
  EXPECT_EQ(GetFieldValue(s, lyr, FindField(s, lyr, "fsize")), "   10") << "N 5.2 holds 10";
  EXPECT_EQ(GetFieldType(s, lyr, FindField(s, lyr, "VISIBLE")), "Logical");
  EXPECT_EQ(GetFieldLength(s, lyr, FindField(s, lyr, "LabelText")), 100);
}

TEST(DbfDefaults, TablesFromAnotherLayersFields) {
  Session s;
  std::string dir = TempDir("dbf-from");
  int src = AddLayerRow(s, dir + "s.shp", 0);
  InitDbf(s, src);
  AddField(s, src, "Name", 'C', 20, 0);
  AddField(s, src, "Len", 'N', 12, 3);
  AddField(s, src, "NAME", 'C', 5, 0); // the same name again
  CreateDbf(s, src, dir + "s.shp");
  int dst = AddLayerRow(s, dir + "d.shp", 0);

  NewDbfFrom(s, src, dst, dir + "d.shp", -1);
  EXPECT_EQ(s.Lyr[dst].Dbf.DbfFieldCount, 3);
  NewDbfFrom(s, src, dst, dir + "d.shp", 0);
  ASSERT_EQ(s.Lyr[dst].Dbf.DbfFieldCount, 2);
  EXPECT_EQ(GetFieldLength(s, dst, 1), 20);
  EXPECT_EQ(GetFieldDecimals(s, dst, 2), 3);
  EXPECT_EQ(s.Lyr[dst].Dbf.DbfRecCount, 0);
  CloseDbf(s, dst);
  std::string bytes = ReadFile(dir + "d.dbf");
  EXPECT_EQ(bytes.substr(32, 4), "Name") << "names keep their case";
  EXPECT_EQ(LayoutOf(bytes).RecLen, 1 + 20 + 12);
}

TEST(DbfDefaults, TheMergedListTakesVisibleLayersWithASelection) {
  Session s;
  std::string dir = TempDir("dbf-merge");
  auto layer = [&](const std::string& name, std::vector<std::string> fields, bool sel,
                   bool visible) {
    int l = AddLayerRow(s, dir + name + ".shp", 1);
    InitDbf(s, l);
    for (auto& f : fields) AddField(s, l, f, 'C', 8, 0);
    CreateDbf(s, l, dir + name + ".shp");
    s.Lyr[l].SelBits = {uint8_t(sel ? 2 : 0)};
    s.Lyr[l].DVisable = visible ? 1 : 0;
    return l;
  };
  layer("a", {"ROAD", "WIDTH"}, true, true);
  layer("b", {"width", "CLASS"}, true, true);
  layer("c", {"HIDDEN"}, true, false);
  layer("d", {"NOSEL"}, false, true);
  int out = FindFreeWorkLyr(s);
  NewDbfMerged(s, out, dir + "m.shp");
  EXPECT_EQ(s.DbfErr, 0);
  std::string names;
  for (int f = 1; f <= s.Lyr[out].Dbf.DbfFieldCount; ++f) names += GetFieldName(s, out, f) + " ";
  EXPECT_EQ(names, "ROAD WIDTH CLASS ");
  CloseDbf(s, out);
}

TEST(DbfDefaults, RowsCopyByPositionOrByNameAndAddNumbers) {
  Session s;
  std::string dir = TempDir("dbf-copy");
  int a = AddLayerRow(s, dir + "a.shp", 1);
  InitDbf(s, a);
  AddField(s, a, "NAME", 'C', 8, 0);
  AddField(s, a, "LEN", 'N', 8, 2);
  AddField(s, a, "ONLYA", 'C', 4, 0);
  CreateDbf(s, a, dir + "a.shp");
  ClearDbfBuf(s, a);
  SetFieldValue(s, a, 1, "main");
  SetFieldValue(s, a, 2, "2.5");
  SetFieldValue(s, a, 3, "zz");
  WriteDbfRec(s, a, 0);
  SetDbfRecCount(s, a, 1);

  int b = AddLayerRow(s, dir + "b.shp", 0);
  InitDbf(s, b);
  AddField(s, b, "LEN", 'N', 10, 1);
  AddField(s, b, "name", 'C', 6, 0);
  CreateDbf(s, b, dir + "b.shp");

  AddDbfRec(s, b, 0);
  CopyRow(s, a, 0, b, 0, false); // by name
  ReadDbfRec(s, b, 0);
  EXPECT_EQ(GetFieldValue(s, b, 1), "       2.5");
  EXPECT_EQ(GetFieldValue(s, b, 2), "main  ");
  AddRow(s, a, 0, b, 0, false); // numbers add up, text is copied
  AddRow(s, a, 0, b, 0, false);
  ReadDbfRec(s, b, 0);
  EXPECT_EQ(Trim(GetFieldValue(s, b, 1)), "7.5");
  EXPECT_EQ(Trim(GetFieldValue(s, b, 2)), "main");

  AddDbfRec(s, b, 1);
  CopyRow(s, a, 0, b, 1, true); // by position: NAME into LEN, LEN into name
  ReadDbfRec(s, b, 1);
  EXPECT_EQ(Trim(GetFieldValue(s, b, 1)), "0");
  EXPECT_EQ(Trim(GetFieldValue(s, b, 2)), "2.5");
  EXPECT_EQ(s.Lyr[b].Dbf.DbfRecCount, 2);
  EXPECT_EQ(s.Lyr[b].Dbf.DbfChanged, -1);
}
