// Saves that other programs read as this one does, and that never damage the old files.
#include <gtest/gtest.h>

#include <filesystem>

#include "child_run.h"
#include "model/file_util.h"
#include "shp_test_util.h"

using namespace velmora;
using namespace velmora::test;

namespace {

// The geometry lines of an ogrinfo listing, one a feature ("" for none).
std::vector<std::string> GdalGeoms(const std::string& shp) {
  std::string t = RunCmd("ogrinfo -q -al -geom=ISO_WKT '" + shp + "' 2>&1");
  std::vector<std::string> out;
  std::string line;
  for (char c : t) {
    if (c != '\n') {
      line += c;
      continue;
    }
    if (line.rfind("OGRFeature", 0) == 0) out.emplace_back();
    if (line.rfind("  ", 0) == 0 && line.find(" = ") == std::string::npos && !out.empty())
      out.back() = line.substr(2);
    line.clear();
  }
  return out;
}

size_t TempFiles(const std::string& dir) {
  size_t n = 0;
  for (const auto& e : std::filesystem::directory_iterator(dir))
    if (e.path().filename().string().rfind("qmt", 0) == 0) ++n;
  return n;
}

} // namespace

TEST(ShpSave, AMiddlePartDeletedReadsBackInGdalAsTheOtherParts) {
  std::string dir = TempDir("shp-parts");
  std::string poly = OgrShp(dir, "p", "POLYGON",
                            {"MULTIPOLYGON (((0 0,0 1,1 1,1 0,0 0)),((5 5,5 6,6 6,6 5,5 5)),"
                             "((9 9,9 10,10 10,10 9,9 9)))",
                             "POLYGON ((20 20,20 21,21 21,20 20))"});
  std::string zm =
      OgrShp(dir, "z", "POLYGONZM",
             {"MULTIPOLYGON ZM (((0 0 1 2,0 1 1 2,1 1 1 2,0 0 1 2)),"
              "((5 5 7 8,5 6 7 8,6 6 7 8,5 5 7 8)),((9 9 3 4,9 10 3 4,10 10 3 4,9 9 3 4)))"});
  std::string line =
      OgrShp(dir, "l", "ARC",
             {"MULTILINESTRING ((0 0,1 1),(2 2,3 3,4 4),(5 5,6 6))", "LINESTRING (7 7,8 8)"});
  ASSERT_FALSE(poly.empty() || zm.empty() || line.empty());
  struct Want {
    std::string src;
    std::vector<std::string> geoms;
  };
  for (const Want& w :
       {Want{poly,
             {"MULTIPOLYGON (((0 0,0 1,1 1,1 0,0 0)),((9 9,9 10,10 10,10 9,9 9)))",
              "POLYGON ((20 20,20 21,21 21,20 20))"}},
        Want{zm,
             {"MULTIPOLYGON ZM (((0 0 1 2,0 1 1 2,1 1 1 2,0 0 1 2)),((9 9 3 4,9 10 3 4,10 10 3 "
              "4,9 9 3 4)))"}},
        Want{line, {"MULTILINESTRING ((0 0,1 1),(5 5,6 6))", "LINESTRING (7 7,8 8)"}}}) {
    SCOPED_TRACE(w.src);
    Session s;
    OpenAsLayer(s, w.src);
    ASSERT_EQ(s.ShpErr, 0);
    DeletePart(s, 1, 1, 1, true);
    std::string out = ChangeExt(w.src, "") + "out.shp";
    SaveShp(s, 1, out);
    ASSERT_EQ(s.ShpErr, 0);
    EXPECT_EQ(GdalGeoms(out), w.geoms);
    std::string d = ShpDump(out);
    EXPECT_EQ(d.find("rror"), std::string::npos) << d;
    std::string bytes = ReadFile(out);
    EXPECT_EQ(bytes.size(), size_t(2 * BE32At(bytes, 24)));
  }
}

TEST(ShpSave, DeletedRecordsAreValidNullRecordsThatShapelibAndGdalRead) {
  std::string dir = TempDir("shp-null");
  std::string src =
      OgrShp(dir, "a", "ARC",
             {"LINESTRING (0 0,1 1,2 2)", "LINESTRING (3 3,4 4)", "LINESTRING (5 5,6 6)"});
  ASSERT_FALSE(src.empty());
  Session s;
  OpenAsLayer(s, src);
  DeleteRec(s, 1, 1, true);
  DeleteRec(s, 1, 3, true);
  SaveShp(s, 1, dir + "b.shp");
  ASSERT_EQ(s.ShpErr, 0);
  std::string shp = ReadFile(dir + "b.shp"), shx = ReadFile(dir + "b.shx");
  // The first record has no predecessor: two words of type 0.
  EXPECT_EQ(BE32At(shx, 100), 50);
  EXPECT_EQ(BE32At(shx, 104), 2);
  EXPECT_EQ(LE32At(shp, 108), 0);
  EXPECT_EQ(BE32At(shp, 112), 2); // the next record's number follows at once
  // The last one takes its predecessor's slot, zero behind the type word.
  int32_t off3 = BE32At(shx, 116), len3 = BE32At(shx, 120);
  EXPECT_EQ(len3, BE32At(shx, 112));
  EXPECT_EQ(shp.substr(size_t(2 * off3 + 8)), std::string(size_t(2 * len3), '\0'));
  EXPECT_EQ(shp.size(), size_t(2 * BE32At(shp, 24)));
  std::string d = ShpDump(dir + "b.shp");
  EXPECT_EQ(d.find("rror"), std::string::npos) << d;
  EXPECT_NE(d.find("Shape:0 (NullShape)"), std::string::npos) << d;
  EXPECT_NE(d.find("Shape:2 (NullShape)"), std::string::npos) << d;
  EXPECT_EQ(GdalGeoms(dir + "b.shp"), (std::vector<std::string>{"", "LINESTRING (3 3,4 4)", ""}));
  // Read again, the records keep their numbers.
  Session t;
  OpenAsLayer(t, dir + "b.shp");
  ASSERT_EQ(t.Lyr[1].Shp.RecCount, 3);
  EXPECT_TRUE(IsDeleted(t, 1, 1));
  EXPECT_FALSE(IsDeleted(t, 1, 2));
  EXPECT_TRUE(IsDeleted(t, 1, 3));
}

TEST(ShpSave, AZLayerWithoutMeasuresRoundTripsByteForByte) {
  std::string dir = TempDir("shp-z");
  struct Case {
    const char* shpt;
    std::vector<std::string> wkts;
  };
  for (const Case& c :
       {Case{"ARCZ",
             {"LINESTRING Z (0 0 1,1 1 2)", "MULTILINESTRING Z ((4 4 4,5 5 5),(6 6 6,7 7 7))"}},
        Case{"POLYGONZ", {"POLYGON Z ((0 0 1,0 1 2,1 1 3,0 0 1))"}},
        Case{"POINTZ", {"POINT Z (1 2 3)", "POINT Z (4 5 6)"}},
        Case{"MULTIPOINTZ", {"MULTIPOINT Z ((1 2 3),(4 5 6))"}}}) {
    SCOPED_TRACE(c.shpt);
    std::string src = OgrShp(dir, c.shpt, c.shpt, c.wkts);
    ASSERT_FALSE(src.empty());
    Session s;
    OpenAsLayer(s, src);
    ASSERT_EQ(s.ShpErr, 0);
    EXPECT_EQ(s.Lyr[1].Shp.ZWithoutM, -1);
    std::string out = dir + c.shpt + "_out.shp";
    SaveShp(s, 1, out);
    ASSERT_EQ(s.ShpErr, 0);
    EXPECT_TRUE(ReadFile(src) == ReadFile(out)) << "shp bytes differ";
    EXPECT_TRUE(ReadFile(ChangeExt(src, "shx")) == ReadFile(ChangeExt(out, "shx")));
  }
  // A record added to such a layer has no M block either; a new Z layer writes M.
  Session s;
  OpenAsLayer(s, dir + "ARCZ.shp");
  AddRec(s, 1);
  AddVertex(s, 1, 3, 0, 1, 1, 9, 0);
  AddVertex(s, 1, 3, 0, 2, 2, 9, 0);
  SaveShp(s, 1, dir + "more.shp");
  std::string x = ReadFile(dir + "more.shx");
  EXPECT_EQ(BE32At(x, 100 + 16 + 4), 30 + 2 + 12 * 2);
  EXPECT_EQ(GdalGeoms(dir + "more.shp").back(), "LINESTRING Z (1 1 9,2 2 9)");
  // A measure given by an edit is kept: the M block comes back.
  s.Lyr[1].Shp.ShpRecs[3].Part(0).PartM()[0] = 4;
  SaveShp(s, 1, dir + "more.shp");
  x = ReadFile(dir + "more.shx");
  EXPECT_EQ(BE32At(x, 100 + 16 + 4), 38 + 2 + 16 * 2);
  Session n;
  n.Lyr.Resize(1);
  n.LyrCount = 1;
  NewShp(n, 1, dir + "new.shp", 13);
  n.Lyr[1].LyrKind = 1;
  AddRec(n, 1);
  AddVertex(n, 1, 1, 0, 1, 1, 9, 0);
  AddVertex(n, 1, 1, 0, 2, 2, 9, 0);
  SaveShp(n, 1, dir + "new.shp");
  EXPECT_EQ(BE32At(ReadFile(dir + "new.shx"), 104), 38 + 2 + 16 * 2);
}

TEST(ShpSave, CompanionsAreFoundWhateverTheirCase) {
  std::string dir = TempDir("shp-case");
  std::string src = OgrShp(dir, "a", "POINT", {"POINT (1 1)", "POINT (2 2)", "POINT (3 3)"});
  ASSERT_FALSE(src.empty());
  namespace fs = std::filesystem;
  // The index makes the count: without it the sequential read would find the same three,
  // so it is cut to two records, which only a read through it gives.
  std::string shx = ReadFile(dir + "a.shx");
  shx.resize(100 + 16);
  shx[24] = 0, shx[25] = 0, shx[26] = 0, shx[27] = 58;
  WriteFile(dir + "UP.SHX", shx);
  fs::copy_file(src, dir + "UP.SHP");
  WriteFile(dir + "mix.SHX", shx);
  fs::copy_file(src, dir + "mix.shp");
  for (const char* name : {"UP.SHP", "mix.shp"}) {
    SCOPED_TRACE(name);
    Session s;
    OpenAsLayer(s, dir + name);
    ASSERT_EQ(s.ShpErr, 0);
    EXPECT_EQ(s.Lyr[1].Shp.RecCount, 2);
    DeleteRec(s, 1, 2, true);
    SaveShp(s, 1, dir + name);
    ASSERT_EQ(s.ShpErr, 0);
  }
  // The saves went to the files that were there; no second index of another case.
  EXPECT_FALSE(fs::exists(dir + "UP.shx"));
  EXPECT_FALSE(fs::exists(dir + "mix.shx"));
  EXPECT_EQ(ReadFile(dir + "UP.SHX").size(), 100u + 16);
  EXPECT_EQ(ReadFile(dir + "mix.SHX").size(), 100u + 16);
  EXPECT_EQ(LE32At(ReadFile(dir + "mix.shp"), 100 + 28 + 8), 0); // record 2 deleted

  // A new layer clears the old files of every case.
  WriteFile(dir + "n.DBF", "x");
  WriteFile(dir + "N.SHX", "x");
  Session s;
  s.Lyr.Resize(1);
  s.LyrCount = 1;
  NewShp(s, 1, dir + "n.shp", 1);
  CloseShp(s, 1);
  EXPECT_FALSE(fs::exists(dir + "n.DBF"));
  EXPECT_FALSE(fs::exists(dir + "N.SHX"));
  EXPECT_TRUE(fs::exists(dir + "n.shp"));
}

TEST(ShpSave, AFullDiskLeavesTheOldFilesAndTheEditsInMemory) {
  std::string dir = TempDir("shp-full");
  std::vector<std::string> wkts;
  for (int i = 0; i < 60; ++i)
    wkts.push_back("POLYGON ((" + std::to_string(i) + " 0,0 1,1 1," + std::to_string(i) + " 0))");
  std::string src = OgrShp(dir, "a", "POLYGON", wkts);
  ASSERT_FALSE(src.empty());
  std::string shp = ReadFile(src), shx = ReadFile(ChangeExt(src, "shx"));
  ASSERT_GT(shp.size(), 4000u);
  int code = InChild([&] {
    Session s;
    OpenAsLayer(s, src);
    if (s.ShpErr) return 1;
    DeleteRec(s, 1, 5, true);
    LimitFileSize(2000); // room for the new index, none for the new .shp
    SafeFileSet files;
    ShpSaved saved;
    if (WriteShpFiles(s, 1, src, false, files, saved) && files.Commit()) return 2;
    if (files.Error().find("too large") == std::string::npos) return 3;
    SaveShp(s, 1, src);
    if (s.ShpErr != 1) return 4;
    // The layer is as it was before the save: changed, the record deleted, its header.
    const ShpBlock& B = s.Lyr[1].Shp;
    if (!B.ShpChanged || !IsDeleted(s, 1, 5) || B.ShpHeader.FileLength != int(shp.size() / 2))
      return 5;
    return 0;
  });
  EXPECT_EQ(code, 0);
  EXPECT_TRUE(ReadFile(src) == shp);
  EXPECT_TRUE(ReadFile(ChangeExt(src, "shx")) == shx);
  EXPECT_EQ(TempFiles(dir), 0u);
}

TEST(ShpSave, AReadOnlyFolderIsRefusedAndLeftAsItWas) {
  std::string dir = TempDir("shp-ro");
  std::string src = OgrShp(dir, "a", "POINT", {"POINT (1 1)", "POINT (2 2)"});
  ASSERT_FALSE(src.empty());
  std::string shp = ReadFile(src);
  int code = InChild([&] {
    if (!MakeFolderReadOnly(dir)) return kChildSkipped;
    Session s;
    OpenAsLayer(s, src); // a layer that can't be written still opens
    if (s.ShpErr) return 1;
    DeleteRec(s, 1, 1, true);
    SafeFileSet files;
    ShpSaved saved;
    if (WriteShpFiles(s, 1, src, false, files, saved)) return 2;
    if (files.Error().find("read-only") == std::string::npos) return 3;
    return s.Lyr[1].Shp.ShpChanged ? 0 : 4;
  });
  RestoreFolderModes(dir);
  if (code == kChildSkipped) GTEST_SKIP() << "no way to make a folder read-only here";
  EXPECT_EQ(code, 0);
  EXPECT_TRUE(ReadFile(src) == shp);
  EXPECT_EQ(TempFiles(dir), 0u);
}
