// Saves of a table: a new file with the edited rows, put in place only when complete.
#include <sys/stat.h>

#include "child_run.h"
#include "dbf_fixture.h"
#include "frame/lyr_slots.h"
#include "store/dbf_store.h"
#include "store/shp_store.h"

using namespace velmora;
using namespace velmora::test;

namespace {

struct Table : SmallTable {
  explicit Table(int n) : SmallTable("dbf-save", n) {}
};

ino_t Inode(const std::string& path) {
  struct stat st {};
  ::stat(path.c_str(), &st);
  return st.st_ino;
}

// The rows dbfdump lists (its first line names the fields).
size_t DumpedRows(const std::string& dbf) {
  std::string out = RunCmd("dbfdump '" + dbf + "' 2>&1");
  return size_t(std::count(out.begin(), out.end(), '\n')) - 1;
}

} // namespace

TEST(DbfSave, TheSaveWritesANewFileOfTheOldRowsAndTheEdits) {
  Table t(10);
  std::string before = ReadFile(t.dbf);
  ino_t old = Inode(t.dbf);
  t.Edit(7, "seven");
  t.Edit(2, "two");
  t.Edit(3, "three");
  AddDbfRec(t.s, t.lyr, 10);
  t.Edit(10, "ten");
  SaveDbf(t.s, t.lyr);
  ASSERT_EQ(t.s.DbfErr, 0);
  EXPECT_EQ(t.B().DbfChanged, 0);
  EXPECT_TRUE(FilesStartingWith(t.dir, "qmt").empty());
  EXPECT_NE(Inode(t.dbf), old);
  std::string after = ReadFile(t.dbf);
  DbfLayout l = LayoutOf(after);
  EXPECT_EQ(l.RecCount, 11);
  EXPECT_EQ(after.substr(0, 4), before.substr(0, 4));
  EXPECT_EQ(after.substr(8, size_t(l.HeaderLen) - 8), before.substr(8, size_t(l.HeaderLen) - 8));
  EXPECT_EQ(RowBytes(after, 2), " two        0.5");
  EXPECT_EQ(RowBytes(after, 3), " three     0.75");
  EXPECT_EQ(RowBytes(after, 7), " seven     1.75");
  EXPECT_EQ(RowBytes(after, 10), " ten           ");
  for (int r : {0, 1, 4, 5, 6, 8, 9}) EXPECT_EQ(RowBytes(after, r), RowBytes(before, r));
  // Exactly the header's rows, then the end-of-file byte: other readers count the same.
  EXPECT_EQ(after.size(), size_t(l.HeaderLen + 11 * l.RecLen + 1));
  EXPECT_EQ(after.back(), '\x1A');
  EXPECT_EQ(DumpedRows(t.dbf), 11u);
  EXPECT_EQ(GdalRows(t.dbf).size(), 12u);
  // The layer reads the new file, and saves again.
  EXPECT_EQ(t.Code(7), "seven");
  EXPECT_EQ(t.Code(8), "r8");
  t.Edit(8, "eight");
  SaveDbf(t.s, t.lyr);
  EXPECT_EQ(RowBytes(ReadFile(t.dbf), 8), " eight        2");
  EXPECT_EQ(RowBytes(ReadFile(t.dbf), 7), " seven     1.75");
}

TEST(DbfSave, AFullDiskLeavesTheOldTableAndTheEditsInTheSwapFile) {
  Table t(300);
  std::string before = ReadFile(t.dbf);
  int code = InChild([&] {
    t.Edit(5, "five");
    LimitFileSize(before.size() / 2);
    SaveDbf(t.s, t.lyr);
    int r = 0;
    if (t.s.DbfErr != 1)
      r = 1;
    else if (t.B().DbfChanged != -1 || !t.B().SwapOpen)
      r = 2;
    else if (t.Code(5) != "five" || t.Code(6) != "r6")
      r = 3;
    SafeFileSet files;
    if (!r &&
        (WriteDbfFile(t.s, t.lyr, files) || files.Error().find("too large") == std::string::npos))
      r = 4;
    CloseDbf(t.s, t.lyr); // takes the swap file along
    return r;
  });
  EXPECT_EQ(code, 0);
  EXPECT_TRUE(ReadFile(t.dbf) == before);
  EXPECT_TRUE(FilesStartingWith(t.dir, "qmt").empty());
}

TEST(DbfSave, SaveDbfAsReplacesALongerTableWhole) {
  Table t(3);
  Table big(20);
  t.Edit(1, "one");
  SaveDbfAs(t.s, t.lyr, big.dbf);
  ASSERT_EQ(t.s.DbfErr, 0);
  EXPECT_EQ(t.host.logged.back(), "Save Dbf As roads.shp");
  std::string bytes = ReadFile(big.dbf);
  DbfLayout l = LayoutOf(bytes);
  EXPECT_EQ(l.RecCount, 3);
  EXPECT_LE(bytes.size(), size_t(l.HeaderLen + 3 * l.RecLen + 1));
  EXPECT_EQ(RowBytes(bytes, 1), " one       0.25");
  EXPECT_EQ(DumpedRows(big.dbf), 3u);
  EXPECT_TRUE(FilesStartingWith(big.dir, "qmt").empty());
  // The layer's own table and its edit are untouched.
  EXPECT_EQ(t.B().DbfChanged, -1);
  EXPECT_EQ(t.Code(1), "one");
}

TEST(DbfSave, CleanDbfUnderAFullDiskKeepsTheTableAndItsEdits) {
  Table t(300);
  std::string before = ReadFile(t.dbf);
  // Features to go with the rows: every third one deleted.
  t.s.Lyr[t.lyr].Shp.ShpRecs.resize(301);
  for (int r = 1; r <= 300; ++r) t.s.Lyr[t.lyr].Shp.ShpRecs[size_t(r)].ShapeType = r % 3 ? 3 : 0;
  int code = InChild([&] {
    t.Edit(4, "four");
    LimitFileSize(before.size() / 2);
    CleanDbf(t.s, t.lyr, t.shp);
    int r = 0;
    if (t.s.DbfErr != 1)
      r = 1;
    else if (t.host.logged.size() < 2 || t.host.logged[t.host.logged.size() - 2] !=
                                             " *** Clean DBF File roads.shp has been canceled *** ")
      r = 2;
    else if (t.B().DbfChanged != -1 || t.Code(4) != "four" || t.B().DbfRecCount != 300)
      r = 3;
    CloseDbf(t.s, t.lyr);
    return r;
  });
  EXPECT_EQ(code, 0);
  EXPECT_TRUE(ReadFile(t.dbf) == before);
  EXPECT_TRUE(FilesStartingWith(t.dir, "qmt").empty());
  // With room, the clean table has the rows of the live features only.
  t.Edit(4, "four");
  CleanDbf(t.s, t.lyr, t.shp);
  EXPECT_EQ(t.s.DbfErr, 0);
  EXPECT_EQ(t.B().DbfRecCount, 200);
  EXPECT_EQ(t.Code(3), "four"); // row 4 is the fourth live one
  EXPECT_EQ(DumpedRows(t.dbf), 200u);
}
