// Saving a layer never costs the user a file: a failed save leaves the old files and keeps
// the layer with its changes, and nothing drops those changes without asking.
#include <gtest/gtest.h>

#include <filesystem>

#include "child_run.h"
#include "frame/lyr_slots.h"
#include "model/file_util.h"
#include "session/commands.h"
#include "session/layer_life.h"
#include "store/dbf_store.h"
#include "store/shp_store.h"
#include "test_support.h"

using namespace velmora;
using namespace velmora::test;
namespace fs = std::filesystem;

namespace {

struct Fixture {
  RecordingHost host;
  Session s{host};
  std::string dir = TempDir("lyr-save");
  Fixture() { Randomize(s, 1); }
  const std::string& Log(size_t back) const { return host.logged[host.logged.size() - 1 - back]; }
  void Exec(const std::string& line) {
    ArgStrSplit(s, line);
    ArgStrExecute(s);
  }
  void SetCell(int lyr, int row, const std::string& field, const std::string& value) {
    ReadDbfRec(s, lyr, row);
    SetFieldValue(s, lyr, FindField(s, lyr, field), value);
    WriteDbfRecSwap(s, lyr, row);
  }
  std::string Cell(int lyr, int row, const std::string& field) {
    ReadDbfRec(s, lyr, row);
    return Trim(GetFieldValue(s, lyr, FindField(s, lyr, field)));
  }
};

std::vector<std::string> Squares(int n) {
  std::vector<std::string> w;
  for (int i = 0; i < n; ++i) {
    std::string a = std::to_string(i), b = std::to_string(i + 1);
    w.push_back("POLYGON ((" + a + " 0," + a + " 1," + b + " 1," + b + " 0," + a + " 0))");
  }
  return w;
}

struct Files {
  std::string shp, shx, dbf;
};
Files Snapshot(const std::string& shp) {
  return {ReadFile(shp), ReadFile(ChangeExt(shp, "shx")), ReadFile(ChangeExt(shp, "dbf"))};
}
bool Same(const Files& a, const Files& b) {
  return a.shp == b.shp && a.shx == b.shx && a.dbf == b.dbf;
}

size_t TempFiles(const std::string& dir) {
  size_t n = 0;
  for (const auto& e : fs::directory_iterator(dir))
    if (e.path().filename().string().rfind("qmt", 0) == 0) ++n;
  return n;
}

size_t DumpedRows(const std::string& dbf) {
  std::string out = RunCmd("dbfdump '" + dbf + "' 2>&1");
  return size_t(std::count(out.begin(), out.end(), '\n')) - 1;
}

} // namespace

TEST(LayerSave, AFullDiskKeepsTheOldFilesTheChangesAndTheLayer) {
  Fixture f;
  std::string p = GdalLayer(f.dir, "a", Squares(60), "-lco SHPT=POLYGON");
  ASSERT_FALSE(p.empty());
  Files before = Snapshot(p);
  int code = InChild([&] {
    AddShape(f.s, p, false);
    if (f.s.LyrCount != 1) return 1;
    DeleteRec(f.s, 1, 3, true);
    f.SetCell(1, 4, "id", "changed");
    LimitFileSize(1500);
    SaveLyrAll(f.s, 1);
    if (f.Log(1) != " *** Save Layer a.shp has been canceled *** ") return 2;
    if (f.Log(0).find("file too large") == std::string::npos) return 3;
    const LyrRec& l = f.s.Lyr[1];
    if (!l.Shp.ShpChanged || !l.Dbf.DbfChanged || l.SaveErr.empty()) return 4;
    if (!IsDeleted(f.s, 1, 3) || f.Cell(1, 4, "id") != "changed") return 5;
    // Nothing drops the only copy of the changes.
    f.host.answers = {MsgAnswer::Yes, MsgAnswer::Yes, MsgAnswer::Yes};
    if (ConfirmRemoveLyr(f.s, 1) || ConfirmReloadLyr(f.s, 1)) return 6;
    if (ConfirmCloseProject(f.s, [](Session&) { return true; })) return 7;
    f.Exec("REMOVE LAYER '" + p + "'");
    if (f.s.LyrCount != 1 || f.Log(1) != " *** Remove Layer a.shp has been canceled *** ") return 8;
    f.Exec("SAVE LAYER '" + p + "' EXIT");
    if (f.s.LyrCount != 1 || !LyrChanged(f.s, 1)) return 9;
    // With room again the same layer saves.
    LimitFileSize(RLIM_INFINITY);
    SaveLyrAll(f.s, 1);
    if (f.Log(0) != "Save Layer a.shp" || LyrChanged(f.s, 1) || !f.s.Lyr[1].SaveErr.empty())
      return 10;
    CloseAllLyrs(f.s);
    return 0;
  });
  EXPECT_EQ(code, 0);
  // The child saved at last; the files it left read as the edit says.
  EXPECT_EQ(TempFiles(f.dir), 0u);
  EXPECT_FALSE(Same(Snapshot(p), before));
  EXPECT_NE(RunCmd("shpdump '" + p + "'").find("Shape:2 (NullShape)"), std::string::npos);
}

TEST(LayerSave, AFailedSaveLeavesTheFilesByteForByte) {
  Fixture f;
  std::string p = GdalLayer(f.dir, "a", Squares(60), "-lco SHPT=POLYGON");
  ASSERT_FALSE(p.empty());
  Files before = Snapshot(p);
  for (rlim_t limit : {rlim_t(300), rlim_t(1500), rlim_t(9000)}) {
    SCOPED_TRACE(limit);
    int code = InChild([&] {
      AddShape(f.s, p, false);
      DeleteRec(f.s, 1, 3, true);
      f.SetCell(1, 4, "id", "changed");
      LimitFileSize(limit);
      SaveLyrAll(f.s, 1);
      bool kept = LyrChanged(f.s, 1) && f.s.Lyr[1].Dbf.DbfChanged;
      CloseAllLyrs(f.s);
      return kept ? 0 : 1;
    });
    EXPECT_EQ(code, 0);
    EXPECT_TRUE(Same(Snapshot(p), before));
    EXPECT_EQ(TempFiles(f.dir), 0u);
  }
}

TEST(LayerSave, AReadOnlyLayerOpensAndItsSaveIsRefusedWithTheOfferOfSaveAs) {
  Fixture f;
  std::string p = GdalLayer(f.dir, "a", Squares(3), "-lco SHPT=POLYGON");
  ASSERT_FALSE(p.empty());
  std::string elsewhere = TempDir("lyr-save-to");
  Files before = Snapshot(p);
  int code = InChild([&] {
    if (!MakeFolderReadOnly(f.dir)) return kChildSkipped;
    AddShape(f.s, p, false);
    if (f.s.LyrCount != 1 || f.s.Lyr[1].LyrKind != 1 || f.Cell(1, 1, "id") != "2") return 1;
    DeleteRec(f.s, 1, 2, true);
    SaveLyrAll(f.s, 1);
    if (f.Log(1) != " *** Save Layer a.shp has been canceled *** ") return 2;
    if (f.Log(0).find("read-only") == std::string::npos) return 3;
    if (!SaveRefusedReadOnly(f.s, 1) || !IsDeleted(f.s, 1, 2)) return 4;
    f.host.answers = {MsgAnswer::Yes};
    if (!AskSaveAsInstead(f.s, 1)) return 5;
    if (f.host.boxes.back().rfind(" Save Layer Message Box |  Layer a.shp ", 0) != 0) return 6;
    SaveLyrAs(f.s, 1, elsewhere + "copy");
    if (f.s.Lyr[1].Fsource != elsewhere + "copy.shp" || LyrChanged(f.s, 1)) return 7;
    if (SaveRefusedReadOnly(f.s, 1)) return 8;
    CloseAllLyrs(f.s);
    return 0;
  });
  RestoreFolderModes(f.dir);
  if (code == kChildSkipped) GTEST_SKIP() << "no way to make a folder read-only here";
  EXPECT_EQ(code, 0);
  EXPECT_TRUE(Same(Snapshot(p), before));
  EXPECT_EQ(TempFiles(f.dir), 0u);
  EXPECT_NE(RunCmd("shpdump '" + elsewhere + "copy.shp'").find("Shape:1 (NullShape)"),
            std::string::npos);
}

TEST(LayerSave, SaveAsAddsTheExtensionAndReplacesAnOlderLayerWhole) {
  Fixture f;
  std::string p = GdalLayer(f.dir, "src", Squares(2), "-lco SHPT=POLYGON");
  std::string old = GdalLayer(f.dir, "old", Squares(5), "-lco SHPT=POLYGON");
  ASSERT_FALSE(p.empty() || old.empty());
  RunCmd("ogrinfo -q '" + old + "' -sql 'CREATE SPATIAL INDEX ON old' 2>&1");
  ASSERT_TRUE(fs::exists(f.dir + "old.qix"));
  fs::rename(f.dir + "old.dbf", f.dir + "old.DBF");
  AddShape(f.s, p, false);
  f.SetCell(1, 0, "id", "first");
  SaveLyrAs(f.s, 1, f.dir + "old");
  EXPECT_EQ(f.Log(0), "Save Layer src.shp As " + f.dir + "old.shp");
  EXPECT_EQ(f.s.Lyr[1].Fsource, f.dir + "old.shp");
  // The older layer's files are all replaced: its table of another case too, and its
  // index of records that are gone.
  EXPECT_FALSE(fs::exists(f.dir + "old.dbf"));
  EXPECT_FALSE(fs::exists(f.dir + "old.qix"));
  EXPECT_EQ(DumpedRows(f.dir + "old.DBF"), 2u);
  std::string info = RunCmd("ogrinfo -q -al '" + f.dir + "old.shp' 2>&1");
  EXPECT_NE(info.find("OGRFeature(old):1"), std::string::npos) << info;
  EXPECT_EQ(info.find("OGRFeature(old):2"), std::string::npos) << info;
  EXPECT_NE(info.find("id (String) = first"), std::string::npos) << info;
  EXPECT_EQ(f.Cell(1, 0, "id"), "first");
  EXPECT_EQ(f.s.Lyr[1].Shp.RecCount, 2);
  // The command line's SAVE LAYER AS adds the extension too.
  f.Exec("SAVE LAYER '" + f.dir + "old.shp' AS '" + f.dir + "third'");
  EXPECT_TRUE(fs::exists(f.dir + "third.shp"));
  EXPECT_TRUE(fs::exists(f.dir + "third.dbf"));
  EXPECT_EQ(f.s.Lyr[1].Fsource, f.dir + "third.shp");
}

TEST(LayerSave, ARowThatDidNotOpenIsNeverReportedSaved) {
  Fixture f;
  f.s.Lyr.Resize(1);
  f.s.LyrCount = 1;
  SetLyrDefaults(f.s, 1);
  f.s.Lyr[1].Fsource = f.dir + "gone.shp";
  f.s.Lyr[1].LyrName = "gone.shp";
  SaveLyrAll(f.s, 1);
  EXPECT_EQ(f.Log(1), " *** Save Layer gone.shp has been canceled *** ");
  EXPECT_NE(f.Log(0).find("not open"), std::string::npos);
  SaveLyrAs(f.s, 1, f.dir + "other.shp");
  EXPECT_EQ(f.Log(1), " *** Save Layer As has been canceled *** ");
  EXPECT_FALSE(fs::exists(f.dir + "other.shp"));
}

TEST(LayerSave, CompanionsOfAnyCaseAndTheLayerOfATable) {
  Fixture f;
  std::string src = GdalLayer(f.dir, "src", Squares(2), "-lco SHPT=POLYGON");
  ASSERT_FALSE(src.empty());
  for (const char* ext : {"shp", "shx", "dbf"}) {
    fs::copy_file(ChangeExt(src, ext), f.dir + "UP." + UCase(ext));
    fs::copy_file(ChangeExt(src, ext),
                  f.dir + (std::string(ext) == "dbf" ? "mix.DBF" : "mix." + std::string(ext)));
  }
  // Opened by its table, the layer has its own table, not a default one made beside it.
  AddShape(f.s, f.dir + "UP.DBF", false);
  AddShape(f.s, f.dir + "mix.shp", false);
  ASSERT_EQ(f.s.LyrCount, 2);
  EXPECT_EQ(f.s.Lyr[1].Fsource, f.dir + "UP.SHP");
  for (int n : {1, 2}) {
    EXPECT_EQ(f.Cell(n, 1, "id"), "2");
    EXPECT_GT(FindField(f.s, n, "WKT"), 0);
    f.SetCell(n, 1, "id", "two");
    DeleteRec(f.s, n, 1, true);
    SaveLyrAll(f.s, n);
    EXPECT_FALSE(LyrChanged(f.s, n));
  }
  for (const char* made : {"UP.shp", "UP.shx", "UP.dbf", "mix.dbf", "mix.SHX"})
    EXPECT_FALSE(fs::exists(f.dir + made)) << made;
  EXPECT_NE(ReadFile(f.dir + "mix.DBF").find("two"), std::string::npos);
  EXPECT_NE(ReadFile(f.dir + "UP.DBF").find("two"), std::string::npos);

  // OPEN LAYER of a layer's table or index finds the open layer.
  f.Exec("OPEN LAYER '" + f.dir + "mix.DBF'");
  f.Exec("OPEN LAYER '" + f.dir + "UP.SHX'");
  f.Exec("OPEN LAYER '" + f.dir + "up.dbf'");
  EXPECT_EQ(f.s.LyrCount, 2);
}

TEST(LayerSave, RemovingDeletedFeaturesReplacesGeometryAndTableTogether) {
  Fixture f;
  std::string p = GdalLayer(f.dir, "a", Squares(60), "-lco SHPT=POLYGON");
  ASSERT_FALSE(p.empty());
  AddShape(f.s, p, false);
  for (int rec = 1; rec <= 60; rec += 2) DeleteRec(f.s, 1, rec, false);
  f.SetCell(1, 1, "id", "kept");
  Files before = Snapshot(p);
  int code = InChild([&] {
    LimitFileSize(3000);
    std::string why;
    if (SaveLyrClean(f.s, 1, why) || why.find("too large") == std::string::npos) return 1;
    bool kept = LyrChanged(f.s, 1) && f.Cell(1, 1, "id") == "kept";
    CloseAllLyrs(f.s);
    return kept ? 0 : 2;
  });
  EXPECT_EQ(code, 0);
  EXPECT_TRUE(Same(Snapshot(p), before));
  std::string why;
  ASSERT_TRUE(SaveLyrClean(f.s, 1, why)) << why;
  EXPECT_FALSE(fs::exists(ChangeExt(p, "shx")));
  EXPECT_EQ(DumpedRows(ChangeExt(p, "dbf")), 30u);
  EXPECT_EQ(f.Cell(1, 0, "id"), "kept");
  ReloadLyr(f.s, 1);
  EXPECT_EQ(f.s.Lyr[1].Shp.RecCount, 30);
  EXPECT_EQ(f.s.Lyr[1].Shp.ShpRecs[1].Part(0).PartPoints()[0].X, 1);
  EXPECT_EQ(f.Cell(1, 0, "id"), "kept");
  EXPECT_EQ(f.Cell(1, 1, "id"), "4");
}
