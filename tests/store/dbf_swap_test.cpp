// The record buffer, the swap file and the save: edits stay off the dbf until SaveDbf.
#include "dbf_fixture.h"
#include "frame/lyr_slots.h"
#include "store/dbf_store.h"

using namespace velmora;
using namespace velmora::test;

namespace {

struct Table : SmallTable {
  explicit Table(int n, int shpType = 3) : SmallTable("dbf-swap", n, shpType) {}
};

} // namespace

TEST(DbfSwap, FilesMadeHereEndInTheEndOfFileByteAndRowsCarryTheNextFlag) {
  Table t(3);
  std::string bytes = ReadFile(t.dbf);
  DbfLayout l = LayoutOf(bytes);
  EXPECT_EQ(l.HeaderLen, 2 * 32 + 33);
  EXPECT_EQ(l.RecLen, 1 + 6 + 8);
  EXPECT_EQ(l.RecCount, 3);
  EXPECT_EQ(bytes.size(), size_t(l.HeaderLen + 3 * l.RecLen + 1));
  EXPECT_EQ(bytes.back(), '\x1a');
  EXPECT_EQ(bytes.substr(96, 2), "\r ") << "13, then the first row over the zero byte";
  EXPECT_EQ(RowBytes(bytes, 1), " r1        0.25");
  EXPECT_EQ(t.B().DbfVersion, 3);

  // The buffer holds one byte more than the record: the next row's flag.
  std::string patched = bytes;
  patched[size_t(l.HeaderLen + 2 * l.RecLen)] = '*';
  WriteFile(t.dbf, patched);
  OpenDbf(t.s, t.lyr, t.shp);
  ReadDbfRec(t.s, t.lyr, 1);
  EXPECT_EQ(t.B().DbfBuf.size(), size_t(l.RecLen + 1));
  EXPECT_EQ(t.B().DbfBuf.back(), '*');
  EXPECT_EQ(GetFieldValue(t.s, t.lyr, 0), " ");
}

TEST(DbfSwap, AnEmptyTableIsItsHeaderAndTerminator) {
  Table t(0);
  std::string bytes = ReadFile(t.dbf);
  EXPECT_EQ(bytes.size(), 98u);
  EXPECT_EQ(bytes.substr(96), std::string("\r\0", 2));
  EXPECT_EQ(bytes.substr(32, 11), std::string("code\0\0\0\0\0\0\0", 11));
  EXPECT_EQ(bytes[32 + 11], 'C');
  EXPECT_EQ(bytes[64 + 16], 8);
  EXPECT_EQ(bytes[64 + 17], 2);
}

TEST(DbfSwap, EditsLiveInAQmtFileBesideTheLayerUntilTheSave) {
  Table t(10);
  std::string before = ReadFile(t.dbf);
  t.Edit(7, "seven");
  ASSERT_TRUE(t.B().SwapOpen);
  EXPECT_EQ(FolderOf(t.B().SwapPath), t.dir);
  EXPECT_EQ(FileNameOf(t.B().SwapPath).substr(0, 3), "qmt");
  EXPECT_TRUE(FileExists(t.B().SwapPath));
  EXPECT_EQ(t.B().DbfChanged, -1);
  t.Edit(2, "two");
  t.Edit(7, "SEVEN"); // a row edited twice keeps its slot
  EXPECT_EQ(t.B().SwapTop, 1);
  EXPECT_EQ(t.B().SwapIndex[7], 0);
  EXPECT_EQ(t.B().SwapIndex[2], 1);
  EXPECT_EQ(t.B().SwapIndex[3], -1);
  EXPECT_EQ(t.Code(7), "SEVEN");
  EXPECT_EQ(t.Code(3), "r3");
  EXPECT_EQ(ReadFile(t.dbf), before);

  SaveDbf(t.s, t.lyr);
  EXPECT_EQ(t.B().DbfChanged, 0);
  EXPECT_EQ(t.B().SwapOpen, 0);
  EXPECT_EQ(t.B().SwapTop, -1);
  EXPECT_EQ(t.B().SwapIndex.size(), 1u);
  EXPECT_TRUE(FilesStartingWith(t.dir, "qmt").empty());
  std::string after = ReadFile(t.dbf);
  EXPECT_EQ(RowBytes(after, 7), " SEVEN     1.75");
  EXPECT_EQ(RowBytes(after, 2), " two        0.5");
  for (int r : {0, 1, 3, 4, 5, 6, 8, 9}) EXPECT_EQ(RowBytes(after, r), RowBytes(before, r));
  EXPECT_EQ(after.size(), before.size());
}

TEST(DbfSwap, ClosingWithUnsavedEditsLeavesTheDbfAndNoSwapFile) {
  Table t(5);
  std::string before = ReadFile(t.dbf);
  t.Edit(1, "gone");
  AddDbfRec(t.s, t.lyr, 5);
  CloseDbf(t.s, t.lyr);
  EXPECT_EQ(ReadFile(t.dbf), before);
  EXPECT_TRUE(FilesStartingWith(t.dir, "qmt").empty());
  EXPECT_EQ(t.B().DbfExists, 0);
  EXPECT_EQ(t.B().DbfChanged, 0);

  // A row emptied without a close takes its swap file along too.
  OpenDbf(t.s, t.lyr, t.shp);
  t.Edit(1, "gone");
  ASSERT_FALSE(FilesStartingWith(t.dir, "qmt").empty());
  ClearLyr(t.s, t.lyr);
  EXPECT_TRUE(FilesStartingWith(t.dir, "qmt").empty());
  EXPECT_EQ(ReadFile(t.dbf), before);
}

TEST(DbfSwap, ARowOutOfRangeKeepsTheBuffer) {
  Table t(3);
  ReadDbfRec(t.s, t.lyr, 1);
  std::vector<uint8_t> buf = t.B().DbfBuf;
  for (int row : {-1, 3, 1000}) {
    ReadDbfRec(t.s, t.lyr, row);
    EXPECT_EQ(t.B().DbfBuf, buf);
    EXPECT_EQ(t.B().DbfCurRec, 1);
  }
  // Nor is a row past the one after the end written to the swap.
  SetFieldValue(t.s, t.lyr, 1, "x");
  WriteDbfRecSwap(t.s, t.lyr, 5);
  EXPECT_EQ(t.B().SwapOpen, 0);
}

TEST(DbfSwap, AddedRowsGrowTheTableAndTheSaveExtendsTheFile) {
  Table t(3);
  AddDbfRec(t.s, t.lyr, 3);
  EXPECT_EQ(t.B().DbfRecCount, 4);
  EXPECT_EQ(t.Code(3), "");
  t.Edit(3, "new");
  AddDbfRec(t.s, t.lyr, 4);
  EXPECT_EQ(t.B().DbfRecCount, 5);
  EXPECT_EQ(LayoutOf(ReadFile(t.dbf)).RecCount, 3);
  SaveDbf(t.s, t.lyr);
  std::string after = ReadFile(t.dbf);
  DbfLayout l = LayoutOf(after);
  EXPECT_EQ(l.RecCount, 5);
  EXPECT_EQ(RowBytes(after, 3), " new           ");
  EXPECT_EQ(RowBytes(after, 4), std::string(15, ' '));
  EXPECT_EQ(after.size(), size_t(l.HeaderLen + 5 * l.RecLen + 1));
  EXPECT_EQ(after.back(), '\x1a');
}

TEST(DbfSwap, ReadOnlyMapModeRefusesWrites) {
  Table t(3);
  std::string before = ReadFile(t.dbf);
  t.s.MapView.MapMode = 2;
  OpenDbf(t.s, t.lyr, t.shp);
  ASSERT_EQ(t.s.DbfErr, 0);
  EXPECT_EQ(t.Code(2), "r2");
  t.Edit(2, "nope");
  EXPECT_EQ(t.s.DbfErr, 1);
  EXPECT_EQ(t.B().DbfChanged, 0);
  EXPECT_EQ(t.Code(2), "r2");
  WriteDbfRec(t.s, t.lyr, 0);
  EXPECT_EQ(t.s.DbfErr, 1);
  CloseDbf(t.s, t.lyr);
  EXPECT_EQ(ReadFile(t.dbf), before);
  EXPECT_TRUE(FilesStartingWith(t.dir, "qmt").empty());
}

TEST(DbfSwap, SharedReadWriteModeEditsAndSaves) {
  Table t(3);
  t.s.MapView.MapMode = 4;
  OpenDbf(t.s, t.lyr, t.shp);
  t.Edit(0, "four");
  SaveDbf(t.s, t.lyr);
  EXPECT_EQ(RowBytes(ReadFile(t.dbf), 0), " four         0");
}

TEST(DbfSwap, AFrameLayerKeepsItsTableClosedBetweenOperations) {
  Table t(4, 99);
  EXPECT_EQ(t.B().DbfExists, -1);
  EXPECT_EQ(t.B().DbfOpen, 0);
  EXPECT_EQ(t.Code(3), "r3");
  EXPECT_EQ(t.B().DbfOpen, 0);
  t.Edit(3, "cp");
  SaveDbf(t.s, t.lyr);
  EXPECT_EQ(t.B().DbfOpen, 0);
  EXPECT_EQ(t.Code(3), "cp");
  EXPECT_EQ(RowBytes(ReadFile(t.dbf), 3), " cp        0.75");
}
