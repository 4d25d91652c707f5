// Writing: the writer's fixed order of operations and what it carries from the header.
#include <gtest/gtest.h>

#include "model/file_util.h"
#include "shp_test_util.h"

using namespace velmora;
using namespace velmora::test;

namespace {

std::vector<uint8_t> Line2(std::vector<XY> a, std::vector<XY> b) {
  Bytes r;
  r.I(3).Box(0, 0, 100, 100).I(2).I(int(a.size() + b.size())).I(0).I(int(a.size()));
  for (auto& v : a) r.D(v.X).D(v.Y);
  for (auto& v : b) r.D(v.X).D(v.Y);
  return r.b;
}

std::vector<uint8_t> Line1(std::vector<XY> a) {
  Bytes r;
  r.I(3).Box(0, 0, 100, 100).I(1).I(int(a.size())).I(0);
  for (auto& v : a) r.D(v.X).D(v.Y);
  return r.b;
}

} // namespace

TEST(ShpWrite, SoftDeletedPartsAreLeftOutOfTheirRecords) {
  std::string dir = TempDir("shp-w");
  ShpBuilder b(3);
  b.Add(Line2({{1, 1}, {2, 2}, {3, 3}}, {{7, 7}, {8, 8}}));
  b.Add(Line2({{4, 4}, {5, 5}}, {{9, 9}, {6, 6}}));
  b.Write(dir + "a.shp", true);
  Session s;
  OpenAsLayer(s, dir + "a.shp");
  ASSERT_EQ(s.ShpErr, 0);
  SaveShp(s, 1, dir + "whole.shp");
  DeletePart(s, 1, 1, 1, false);
  DeletePart(s, 1, 2, 1, false);
  EXPECT_EQ(s.Lyr[1].Shp.ShpRecs[1].NumPoints, 3);
  SaveShp(s, 1, dir + "b.shp");
  ASSERT_EQ(s.ShpErr, 0);
  std::string shp = ReadFile(dir + "b.shp"), shx = ReadFile(dir + "b.shx");
  // Record 1: one part of three vertices, and its length counts just those.
  EXPECT_EQ(LE32At(shp, 100 + 8 + 36), 1);
  EXPECT_EQ(LE32At(shp, 100 + 8 + 40), 3);
  int32_t len1 = BE32At(shx, 104);
  EXPECT_EQ(len1, 22 + 2 * 1 + 8 * 3);
  EXPECT_EQ(BE32At(shp, 100 + 4), len1);
  int32_t off2 = BE32At(shx, 108);
  EXPECT_EQ(off2, 50 + len1 + 4);
  EXPECT_EQ(BE32At(shp, size_t(2 * off2)), 2);
  // Nothing stands past the last record's length.
  EXPECT_EQ(shp.size(), size_t(2 * BE32At(shp, 24)));
  EXPECT_EQ(F64At(shp, shp.size() - 8), 5);
  std::string dump = ShpDump(dir + "b.shp");
  EXPECT_EQ(dump.find("rror"), std::string::npos) << dump;
  EXPECT_NE(dump.find("nVertices=3, nParts=1"), std::string::npos) << dump;
  EXPECT_NE(dump.find("nVertices=2, nParts=1"), std::string::npos) << dump;
  // The deleted parts stay in memory: undeleted, they are saved again.
  Session t;
  OpenAsLayer(t, dir + "b.shp");
  ASSERT_EQ(t.ShpErr, 0);
  EXPECT_EQ(t.Lyr[1].Shp.ShpRecs[2].NumParts, 1);
  EXPECT_EQ(t.Lyr[1].Shp.ShpRecs[2].Part(0).PartPoints()[1].X, 5);
  UndeletePart(s, 1, 1, 1, false);
  UndeletePart(s, 1, 2, 1, false);
  SaveShp(s, 1, dir + "c.shp");
  EXPECT_EQ(ReadFile(dir + "c.shx"), ReadFile(dir + "whole.shx"));
  EXPECT_NE(ShpDump(dir + "c.shp").find("nVertices=5, nParts=2"), std::string::npos);
}

TEST(ShpWrite, DeletedFirstPartGivesTheNextLivePartStartZero) {
  std::string dir = TempDir("shp-w");
  ShpBuilder b(3);
  b.Add(Line2({{1, 1}, {2, 2}}, {{7, 7}, {8, 8}, {9, 9}}));
  b.Write(dir + "a.shp", true);
  Session s;
  OpenAsLayer(s, dir + "a.shp");
  DeletePart(s, 1, 1, 0, false);
  SaveShp(s, 1, dir + "b.shp");
  ASSERT_EQ(s.ShpErr, 0);
  const ShpRecord& r = s.Lyr[1].Shp.ShpRecs[1];
  EXPECT_EQ(r.Part(0).PartStart, 0);
  EXPECT_EQ(r.Part(1).PartStart, 0);
  std::string shp = ReadFile(dir + "b.shp");
  EXPECT_EQ(LE32At(shp, 100 + 8 + 36), 1); // one live part
  EXPECT_EQ(LE32At(shp, 100 + 8 + 44), 0); // its start
  EXPECT_EQ(F64At(shp, 100 + 8 + 48), 7);  // its vertices, and only they
  EXPECT_EQ(shp.size(), 100u + 8 + 48 + 3 * 16);
}

TEST(ShpWrite, DeletedRecordKeepsItsNumberAndItsPredecessorsLength) {
  std::string dir = TempDir("shp-w");
  ShpBuilder b(3);
  b.Add(Line1({{1, 1}, {2, 2}, {3, 3}}));
  b.Add(Line1({{4, 4}, {5, 5}}));
  b.Add(Line1({{6, 6}, {7, 7}}));
  b.Write(dir + "a.shp", true);
  Session s;
  OpenAsLayer(s, dir + "a.shp");
  s.Lyr[1].SelBits[0] = 0xFF;
  DeleteRec(s, 1, 2, true);
  EXPECT_EQ(s.Lyr[1].SelBits[0] & 4, 0); // its selection bit went with it
  EXPECT_EQ(s.Lyr[1].Shp.ShpChanged, -1);
  SaveShp(s, 1, dir + "b.shp");
  ASSERT_EQ(s.ShpErr, 0);
  EXPECT_EQ(s.Lyr[1].Shp.ShpChanged, 0);
  std::string shp = ReadFile(dir + "b.shp"), shx = ReadFile(dir + "b.shx");
  ASSERT_EQ(shx.size(), 100u + 3 * 8);
  int32_t len1 = BE32At(shx, 104), off2 = BE32At(shx, 108), len2 = BE32At(shx, 112);
  EXPECT_EQ(len1, 22 + 2 + 8 * 3);
  EXPECT_EQ(len2, len1);
  EXPECT_EQ(LE32At(shp, size_t(2 * off2 + 8)), 0);
  EXPECT_EQ(BE32At(shx, 116), off2 + len2 + 4);
  Session t;
  OpenAsLayer(t, dir + "b.shp");
  ASSERT_EQ(t.ShpErr, 0);
  EXPECT_EQ(t.Lyr[1].Shp.RecCount, 3);
  EXPECT_TRUE(IsDeleted(t, 1, 2));
  EXPECT_EQ(t.Lyr[1].Shp.ShpRecs[3].Part(0).PartPoints()[1].X, 7);
  EXPECT_EQ(ShpDump(dir + "b.shp").find("rror"), std::string::npos);
}

TEST(ShpWrite, HeaderWordsVersionAndZMRangesAreCarried) {
  std::string dir = TempDir("shp-w");
  ShpBuilder b(13);
  b.unused = {1, -2, 0x01020304, 4, 5};
  b.version = 1234;
  b.zmin = -7, b.zmax = 70, b.mmin = 3, b.mmax = 30;
  Bytes r;
  r.I(13).Box(0, 0, 1, 1).I(1).I(2).I(0).D(0).D(0).D(1).D(1);
  r.D(1).D(2).D(1).D(2).D(3).D(4).D(3).D(4);
  b.Add(r.b);
  b.Write(dir + "a.shp", true);
  Session s;
  OpenAsLayer(s, dir + "a.shp");
  ASSERT_EQ(s.ShpErr, 0);
  SaveShp(s, 1, dir + "b.shp");
  ASSERT_EQ(s.ShpErr, 0);
  std::string in = ReadFile(dir + "a.shp"), out = ReadFile(dir + "b.shp");
  EXPECT_EQ(in.substr(4, 20), out.substr(4, 20));
  EXPECT_EQ(LE32At(out, 28), 1234);
  EXPECT_EQ(in.substr(68, 32), out.substr(68, 32));
  std::string x = ReadFile(dir + "b.shx");
  EXPECT_EQ(in.substr(4, 20), x.substr(4, 20));
  EXPECT_EQ(LE32At(x, 28), 1234);
  EXPECT_EQ(BE32At(x, 24), 50 + 4);
  EXPECT_EQ(in.substr(100), out.substr(100));
}

TEST(ShpWrite, NewShpStatesAHundredWordsAndRemovesTheOldFiles) {
  std::string dir = TempDir("shp-new");
  WriteFile(dir + "n.dbf", "x");
  WriteFile(dir + "n.shx", "x");
  Session s;
  s.Lyr.Resize(1);
  s.LyrCount = 1;
  NewShp(s, 1, dir + "n.shp", 25);
  ASSERT_EQ(s.ShpErr, 0);
  EXPECT_EQ(s.Lyr[1].Shp.ShpOpen, -1);
  CloseShp(s, 1);
  CloseShp(s, 1); // twice is harmless
  std::string h = ReadFile(dir + "n.shp");
  ASSERT_EQ(h.size(), 100u);
  EXPECT_EQ(BE32At(h, 0), 9994);
  EXPECT_EQ(BE32At(h, 24), 100);
  EXPECT_EQ(LE32At(h, 28), 1000);
  EXPECT_EQ(LE32At(h, 32), 25);
  EXPECT_FALSE(FileExists(dir + "n.dbf"));
  EXPECT_FALSE(FileExists(dir + "n.shx"));
  // It opens as an empty layer of its type.
  OpenAsLayer(s, dir + "n.shp");
  EXPECT_EQ(s.ShpErr, 0);
  EXPECT_EQ(s.Lyr[1].Shp.ShpType, 25);
  EXPECT_EQ(s.Lyr[1].Shp.RecCount, 0);
}

TEST(ShpWrite, CleanSaveDropsDeletedRecordsMovesSelectionAndLeavesNoIndex) {
  std::string dir = TempDir("shp-clean");
  std::string src =
      OgrShp(dir, "c", "POINT", {"POINT (1 1)", "POINT (2 2)", "POINT (3 3)", "POINT (4 4)"});
  ASSERT_FALSE(src.empty());
  Session s;
  OpenAsLayer(s, src);
  s.Lyr[1].SelBits[0] = uint8_t((1 << 3) | (1 << 4)); // records 3 and 4 selected
  DeleteRec(s, 1, 1, false);
  DeleteRec(s, 1, 2, false);
  s.Lyr[1].SelBits[0] = uint8_t(s.Lyr[1].SelBits[0] | (1 << 2)); // a stale bit on the new 2
  SaveShpClean(s, 1, dir + "c2.shp");
  ASSERT_EQ(s.ShpErr, 0);
  EXPECT_FALSE(FileExists(dir + "c2.shx"));
  EXPECT_EQ(s.Lyr[1].SelBits[0] & 0x06, 0x06); // old 3 and 4 are now 1 and 2
  Session t;
  OpenAsLayer(t, dir + "c2.shp");
  ASSERT_EQ(t.ShpErr, 0);
  EXPECT_EQ(t.Lyr[1].Shp.RecCount, 2);
  EXPECT_EQ(t.Lyr[1].Shp.ShpRecs[1].Part(0).PartPoints()[0].X, 3);

  // No deleted record: the same records, still no index.
  Session u;
  OpenAsLayer(u, src);
  SaveShpClean(u, 1, dir + "c3.shp");
  EXPECT_FALSE(FileExists(dir + "c3.shx"));
  EXPECT_EQ(ReadFile(dir + "c3.shp"), ReadFile(src));
}

TEST(ShpWrite, SaveOfAClosedRowFails) {
  std::string dir = TempDir("shp-w");
  Session s;
  s.Lyr.Resize(1);
  s.LyrCount = 1;
  SaveShp(s, 1, dir + "z.shp");
  EXPECT_EQ(s.ShpErr, 1);
  EXPECT_FALSE(FileExists(dir + "z.shp"));
}

TEST(ShpWrite, DeletedLastRecordLeavesItsSlotToTheStatedLength) {
  std::string dir = TempDir("shp-w");
  std::string src = OgrShp(dir, "t", "POINT", {"POINT (1 1)", "POINT (2 2)"});
  ASSERT_FALSE(src.empty());
  Session s;
  OpenAsLayer(s, src);
  DeleteRec(s, 1, 2, true);
  SaveShp(s, 1, dir + "t2.shp");
  ASSERT_EQ(s.ShpErr, 0);
  std::string shp = ReadFile(dir + "t2.shp");
  EXPECT_EQ(shp.size(), size_t(2 * BE32At(shp, 24)));
  EXPECT_EQ(LE32At(shp, shp.size() - 20), 0); // the type word; the rest reads as zeros
  std::string d = ShpDump(dir + "t2.shp");
  EXPECT_NE(d.find("Shape:1 (NullShape)"), std::string::npos) << d;
}
