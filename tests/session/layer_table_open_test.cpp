// A layer's own table at OPEN LAYER: a damaged one is read as far as it is sound and left
// exactly as it was; one that cannot be read refuses the layer with the reason; only a
// layer without any table gets the default one. Edits whose rows cannot be stored stop
// the command line.
#include <gtest/gtest.h>

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "frame/lyr_slots.h"
#include "model/file_util.h"
#include "session/commands.h"
#include "session/layer_life.h"
#include "store/dbf_store.h"
#include "test_support.h"

using namespace velmora;
using namespace velmora::test;

namespace {

struct Fixture {
  RecordingHost host;
  Session s{host};
  std::string dir = TempDir("lyr table");
  // Four points with NAME p1 .. p4, made by GDAL; the table's bytes.
  std::string shp =
      GdalLayer(dir, "pts", {"POINT (1 1)", "POINT (2 2)", "POINT (3 3)", "POINT (4 4)"});
  std::string dbf = ChangeExt(shp, "dbf");
  std::string good = ReadFile(dbf);

  void Exec(const std::string& line) {
    ArgStrSplit(s, line);
    ArgStrExecute(s);
  }
  // Puts `bytes` as the table with an old time, opens the layer by the command, and checks
  // that the table is as it was. The layer's number, or 0.
  int OpenWith(const std::string& bytes) {
    WriteFile(dbf, bytes);
    struct timespec old[2] = {{1000000000, 0}, {1000000000, 0}};
    ::utimensat(AT_FDCWD, dbf.c_str(), old, 0);
    host.logged.clear();
    Exec("OPEN LAYER '" + shp + "'");
    EXPECT_EQ(ReadFile(dbf), bytes);
    EXPECT_EQ(MtimeNs(dbf), 1000000000LL * 1000000000);
    return std::max(FindLyrByFile(s, shp), 0);
  }
  void Close(int n) {
    if (n > 0) RemoveLyr(s, n, false);
    EXPECT_EQ(s.LyrCount, 0);
  }
  std::string Id(int n, int row) {
    ReadDbfRec(s, n, row);
    return Trim(GetFieldValue(s, n, 1));
  }
};

} // namespace

TEST(LayerTableOpen, ADamagedTableIsReadAsFarAsSoundAndLeftAsItWas) {
  Fixture f;
  ASSERT_FALSE(f.shp.empty());
  const int headerLen = 3 * 32 + 1, recLen = 1 + 80 + 80; // id and WKT, C 80 each
  ASSERT_EQ(f.good.size(), size_t(headerLen + 4 * recLen + 1));

  struct Case {
    const char* What;
    std::string Bytes;
    int Rows;
  };
  std::vector<Case> cases;
  cases.push_back({"short last record", f.good.substr(0, size_t(headerLen + 3 * recLen + 4)), 3});
  cases.push_back({"two rows missing", f.good.substr(0, size_t(headerLen + 2 * recLen)), 2});
  std::string b = f.good;
  Put32(b, 4, 1000);
  cases.push_back({"header counting more rows than the file holds", b, 4});
  b = f.good;
  Put32(b, 4, 3);
  cases.push_back({"header counting fewer rows", b, 3});
  // Padding between the field table and the rows, the header length counting it.
  b = f.good.substr(0, size_t(headerLen)) + std::string(30, '\0') +
      f.good.substr(size_t(headerLen));
  Put16(b, 8, headerLen + 30);
  cases.push_back({"odd padding behind the terminator", b, 4});

  for (const Case& c : cases) {
    SCOPED_TRACE(c.What);
    int n = f.OpenWith(c.Bytes);
    ASSERT_EQ(n, 1);
    EXPECT_EQ(f.host.logged.back(), "Add Layer " + f.shp);
    EXPECT_EQ(f.s.Lyr[n].Dbf.DbfRecCount, c.Rows);
    EXPECT_EQ(f.s.Lyr[n].Dbf.DbfChanged, 0);
    for (int r = 0; r < c.Rows; ++r) EXPECT_EQ(f.Id(n, r), std::to_string(r + 1));
    f.Close(n);
  }
}

TEST(LayerTableOpen, ATableThatCannotBeReadRefusesTheLayerWithTheReason) {
  Fixture f;
  ASSERT_FALSE(f.shp.empty());
  std::string b = f.good;
  Put16(b, 10, 0);
  struct Case {
    const char* What;
    std::string Bytes;
    std::string Why;
  };
  std::vector<Case> cases = {
      {"empty", "", "truncated at byte 0, inside the table header"},
      {"cut in the field table", f.good.substr(0, 50),
       "truncated at byte 50, inside the field table of 97 bytes"},
      {"record length 0", b, "record length 0"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.What);
    EXPECT_EQ(f.OpenWith(c.Bytes), 0);
    EXPECT_EQ(f.s.LyrCount, 0);
    ASSERT_EQ(f.host.logged.size(), 2u);
    EXPECT_EQ(f.host.logged[0], " *** Add Layer " + f.shp + " has been canceled *** ");
    EXPECT_EQ(f.host.logged[1], "pts.dbf: " + c.Why);
  }
  // Nothing was made beside it either.
  EXPECT_EQ(RunCmd("ls '" + f.dir + "' | grep -ci dbf"), "1\n");
}

TEST(LayerTableOpen, OnlyALayerWithoutATableGetsTheDefaultOne) {
  Fixture f;
  ASSERT_FALSE(f.shp.empty());
  KillFile(f.dbf);
  f.Exec("OPEN LAYER '" + f.shp + "'");
  ASSERT_EQ(f.s.LyrCount, 1);
  EXPECT_EQ(f.Id(1, 3), "4");
  EXPECT_EQ(ReadFile(f.dbf).back(), '\x1a');
}

TEST(LayerTableOpen, ARowThatCannotBeStoredStopsTheLineAndKeepsTheLayer) {
  Fixture f;
  ASSERT_FALSE(f.shp.empty());
  f.Exec("OPEN LAYER '" + f.shp + "'");
  ASSERT_EQ(f.s.LyrCount, 1);
  f.s.MapView.MapMode = 2; // files opened for reading only
  f.host.logged.clear();
  f.Exec("SET DATA '" + f.shp + "' 2 ID=twenty EXIT");
  ASSERT_EQ(f.host.logged.size(), 3u);
  EXPECT_EQ(f.host.logged[0], " *** Data Edit pts.shp has been canceled *** ");
  EXPECT_EQ(f.host.logged[1], "swap file: read-only");
  EXPECT_EQ(f.host.logged[2], " *** Error in ArgStrExecute ***");
  EXPECT_EQ(f.s.LyrCount, 1) << "the tail's save and remove did not run";
  EXPECT_EQ(f.Id(1, 1), "2");
  EXPECT_EQ(ReadFile(f.dbf), f.good);
}

TEST(LayerTableOpen, ALayerInAReadOnlyFolderOpensAndTakesCellEdits) {
  if (::geteuid() == 0) GTEST_SKIP() << "permissions do not bind root";
  Fixture f;
  ASSERT_FALSE(f.shp.empty());
  for (const char* ext : {"shp", "shx", "dbf"}) ::chmod(ChangeExt(f.shp, ext).c_str(), 0444);
  ::chmod(f.dir.c_str(), 0555);
  f.Exec("OPEN LAYER '" + f.shp + "'");
  ASSERT_EQ(f.s.LyrCount, 1);
  f.Exec("SET DATA '" + f.shp + "' 2 ID=twenty");
  EXPECT_EQ(f.Id(1, 1), "twenty");
  EXPECT_NE(FolderOf(f.s.Lyr[1].Dbf.SwapPath), f.dir);
  // A layer without a table opens there too, with none.
  std::string bare = ChangeExt(f.shp, "dbf");
  ::chmod(f.dir.c_str(), 0755);
  std::string other = GdalLayer(f.dir, "bare", {"POINT (5 5)"});
  KillFile(ChangeExt(other, "dbf"));
  ::chmod(f.dir.c_str(), 0555);
  f.Exec("OPEN LAYER '" + other + "'");
  EXPECT_EQ(f.s.LyrCount, 2);
  EXPECT_FALSE(FileExists(ChangeExt(other, "dbf")));
  RemoveLyr(f.s, 2, false);
  RemoveLyr(f.s, 1, false);
  ::chmod(f.dir.c_str(), 0755);
  EXPECT_EQ(ReadFile(bare), f.good);
}
