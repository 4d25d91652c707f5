// Every table written here ends in the end-of-file byte right behind its last row, so that
// a reader counting rows by the file's size and GDAL both see exactly the rows the header
// counts: new tables, "Save Dbf As", "Clean DBF File", a field added, and a save that
// extends the table.
#include "dbf_fixture.h"
#include "store/dbf_store.h"
#include "table/field_struct.h"

using namespace velmora;
using namespace velmora::test;

namespace {

// The header's count, checked against the file's size as a dBase reader counts, the last
// byte, and the rows GDAL reads.
void ExpectRows(const std::string& path, int rows) {
  SCOPED_TRACE(path);
  std::string bytes = ReadFile(path);
  ASSERT_GT(bytes.size(), 32u);
  DbfLayout l = LayoutOf(bytes);
  EXPECT_EQ(l.RecCount, rows);
  EXPECT_EQ(bytes.size(), size_t(l.HeaderLen + rows * l.RecLen + 1));
  EXPECT_EQ((int(bytes.size()) - l.HeaderLen) / l.RecLen, rows);
  EXPECT_EQ(bytes.back(), '\x1a');
  EXPECT_EQ(GdalRows(path).size(), size_t(rows) + 1) << "the field line and the rows";
}

struct Layer {
  RecordingHost host;
  Session s{host};
  std::string dir = TempDir("dbf-eof");
  std::string shp = dir + "parcels.shp";
  int lyr = 0;
  // A default table of `features` rows, of which those in `deleted` are deleted features.
  explicit Layer(int features, std::vector<int> deleted = {}) {
    lyr = AddLayerRow(s, shp, features);
    auto& recs = s.Lyr[lyr].Shp.ShpRecs;
    recs.resize(size_t(features) + 1);
    for (int i = 1; i <= features; ++i) recs[size_t(i)].ShapeType = 1;
    for (int d : deleted) recs[size_t(d)].ShapeType = 0;
    NewDbfDefault(s, lyr, shp);
    EXPECT_EQ(s.DbfErr, 0);
  }
  void Edit(int row, const std::string& id) {
    ReadDbfRec(s, lyr, row);
    SetFieldValue(s, lyr, 1, id);
    WriteDbfRecSwap(s, lyr, row);
  }
};

} // namespace

TEST(DbfEndByte, TablesWrittenHereEndBehindTheirLastRow) {
  Layer t(5, {2});
  ExpectRows(t.dir + "parcels.dbf", 5);

  t.Edit(4, "last");
  SaveDbfAs(t.s, t.lyr, t.dir + "copy.dbf");
  ExpectRows(t.dir + "copy.dbf", 5);
  EXPECT_EQ(GdalRows(t.dir + "copy.dbf").back().at(0), "last");

  // Rows added at the end, and the last row edited, saved in place.
  AddDbfRec(t.s, t.lyr, 5);
  t.Edit(5, "six");
  SaveDbf(t.s, t.lyr);
  EXPECT_EQ(t.s.DbfErr, 0);
  ExpectRows(t.dir + "parcels.dbf", 6);
  t.Edit(5, "SIX");
  SaveDbf(t.s, t.lyr);
  ExpectRows(t.dir + "parcels.dbf", 6);
  EXPECT_EQ(GdalRows(t.dir + "parcels.dbf").back().at(0), "SIX");

  // Clean DBF File drops the row of the deleted feature.
  CleanDbf(t.s, t.lyr, t.shp);
  ExpectRows(t.dir + "parcels.dbf", 4);
  t.s.Lyr[t.lyr].Shp.RecCount = 4;

  t.s.Lyr[t.lyr].LyrKind = 1;
  ASSERT_TRUE(AddFieldToLyr(t.s, t.lyr, "AREA", 'N', 12, 3));
  ExpectRows(t.dir + "parcels.dbf", 4);
  EXPECT_EQ(GdalRows(t.dir + "parcels.dbf").at(0),
            (std::vector<std::string>{"ID:String", "AREA:Real"}));
}

TEST(DbfEndByte, AnEditedMiddleRowKeepsTheFlagOfTheRowBehindIt) {
  std::string dir = TempDir("dbf-eof-gdal");
  MakeGdalTable(dir, "g", {"A"}, {"String(4)"}, {{"x"}, {"y"}, {"z"}});
  std::string before = ReadFile(dir + "g.dbf");
  Session s;
  int lyr = AddLayerRow(s, dir + "g.shp", 3);
  OpenDbf(s, lyr, dir + "g.shp");
  ReadDbfRec(s, lyr, 1);
  SetFieldValue(s, lyr, 1, "Y");
  WriteDbfRecSwap(s, lyr, 1);
  SaveDbf(s, lyr);
  std::string after = ReadFile(dir + "g.dbf");
  EXPECT_EQ(after.size(), before.size());
  EXPECT_EQ(RowBytes(after, 1), " Y   ");
  EXPECT_EQ(RowBytes(after, 2), RowBytes(before, 2));
  ExpectRows(dir + "g.dbf", 3);
}
