// "Save Dbf As" and "Clean DBF File": whole tables written from a layer's rows, in the
// running-function frame on a work slot.
#include "dbf_fixture.h"
#include "frame/busy.h"
#include "store/dbf_store.h"

using namespace velmora;
using namespace velmora::test;

namespace {

// Asks every running work slot to stop at its first yield.
class StoppingHost : public RecordingHost {
public:
  Session* s = nullptr;
  void Yield() override {
    RecordingHost::Yield();
    for (int i = 0; i >= -kWorkSlots; --i)
      if (s->Lyr[i].LyrBusy) SetLyrTerminate(*s, i, true);
  }
};

struct Layer {
  StoppingHost host;
  Session s{host};
  std::string dir = TempDir("dbf-copy");
  std::string shp = dir + "parcels.shp";
  int lyr = 0;
  // `rows` table rows, `features` shapes, of which those in `deleted` are deleted.
  Layer(int rows, int features, std::vector<int> deleted = {}) {
    host.s = &s;
    lyr = AddLayerRow(s, shp, features);
    InitDbf(s, lyr);
    AddField(s, lyr, "REC", 'N', 6, 0);
    AddField(s, lyr, "Note", 'C', 10, 0);
    CreateDbf(s, lyr, shp);
    for (int r = 0; r < rows; ++r) {
      SetFieldValue(s, lyr, 0, " ");
      SetFieldValue(s, lyr, 1, std::to_string(r + 1));
      SetFieldValue(s, lyr, 2, "note" + std::to_string(r + 1));
      WriteDbfRec(s, lyr, r);
    }
    SetDbfRecCount(s, lyr, rows);
    CloseDbf(s, lyr);
    OpenDbf(s, lyr, shp);
    auto& recs = s.Lyr[lyr].Shp.ShpRecs;
    recs.resize(size_t(features) + 1);
    for (int i = 1; i <= features; ++i) recs[size_t(i)].ShapeType = 1;
    for (int d : deleted) recs[size_t(d)].ShapeType = 0;
  }
  void Edit(int row, const std::string& note) {
    ReadDbfRec(s, lyr, row);
    SetFieldValue(s, lyr, 2, note);
    WriteDbfRecSwap(s, lyr, row);
  }
  bool Logged(const std::string& line) {
    for (auto& l : host.logged)
      if (l == line) return true;
    return false;
  }
  bool SlotsFree() {
    for (int i = 0; i >= -kWorkSlots; --i)
      if (s.Lyr[i].LyrBusy || s.Lyr[i].Dbf.DbfOpen) return false;
    return true;
  }
};

using Rows = std::vector<std::vector<std::string>>;

} // namespace

TEST(DbfCopy, SaveDbfAsWritesTheRowsWithTheirUnsavedEdits) {
  Layer t(4, 4);
  t.Edit(2, "edited");
  std::string before = ReadFile(t.dir + "parcels.dbf");
  SaveDbfAs(t.s, t.lyr, t.dir + "copy.dbf");
  EXPECT_EQ(GdalRows(t.dir + "copy.dbf"), (Rows{{"REC:Integer", "Note:String"},
                                                {"1", "note1"},
                                                {"2", "note2"},
                                                {"3", "edited"},
                                                {"4", "note4"}}));
  EXPECT_EQ(ReadFile(t.dir + "parcels.dbf"), before) << "the layer's own table waits";
  EXPECT_EQ(t.s.Lyr[t.lyr].Dbf.DbfChanged, -1);
  EXPECT_TRUE(t.Logged("Save Dbf As parcels.shp"));
  EXPECT_TRUE(t.SlotsFree());
}

TEST(DbfCopy, SaveDbfAsNeedsATable) {
  Layer t(1, 1);
  CloseDbf(t.s, t.lyr);
  SaveDbfAs(t.s, t.lyr, t.dir + "copy.dbf");
  EXPECT_FALSE(FileExists(t.dir + "copy.dbf"));
}

TEST(DbfCopy, CleanDbfDropsDeletedRowsAndBlanksFeaturesBeyondTheTable) {
  Layer t(5, 8, {2, 5});
  t.Edit(3, "kept edit");
  CleanDbf(t.s, t.lyr, t.shp);
  EXPECT_EQ(t.s.DbfErr, 0);
  const DbfBlock& b = t.s.Lyr[t.lyr].Dbf;
  EXPECT_EQ(b.DbfExists, -1);
  EXPECT_EQ(b.DbfRecCount, 6);
  EXPECT_EQ(b.DbfChanged, 0);
  EXPECT_EQ(GdalRows(t.dir + "parcels.dbf"), (Rows{{"REC:Integer", "Note:String"},
                                                   {"1", "note1"},
                                                   {"3", "note3"},
                                                   {"4", "kept edit"},
                                                   {"<null>", "<null>"},
                                                   {"<null>", "<null>"},
                                                   {"<null>", "<null>"}}));
  EXPECT_TRUE(FilesStartingWith(t.dir, "qmt").empty());
  EXPECT_TRUE(t.Logged("Clean DBF File parcels.shp"));
  EXPECT_TRUE(t.SlotsFree());
  ReadDbfRec(t.s, t.lyr, 2);
  EXPECT_EQ(Trim(GetFieldValue(t.s, t.lyr, 2)), "kept edit");
}

TEST(DbfCopy, ATerminatedCleanLeavesTheOldTable) {
  Layer t(600, 600, {1});
  std::string before = ReadFile(t.dir + "parcels.dbf");
  CleanDbf(t.s, t.lyr, t.shp);
  EXPECT_GT(t.host.yields, 0);
  EXPECT_EQ(ReadFile(t.dir + "parcels.dbf"), before);
  EXPECT_EQ(t.s.Lyr[t.lyr].Dbf.DbfRecCount, 600);
  EXPECT_EQ(t.s.Lyr[t.lyr].Dbf.DbfExists, -1);
  EXPECT_TRUE(FilesStartingWith(t.dir, "qmt").empty());
  EXPECT_FALSE(t.Logged("Clean DBF File parcels.shp"));
  EXPECT_TRUE(t.SlotsFree());
}
