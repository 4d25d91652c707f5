// The life of a layer: add, make, save, save as, reload, remove, with their messages.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "frame/busy.h"
#include "frame/lyr_slots.h"
#include "model/file_util.h"
#include "session/layer_life.h"
#include "store/shp_store.h"
#include "test_support.h"

using namespace velmora;
using namespace velmora::test;

namespace {

// A shapefile made by GDAL from WKT rows.
std::string Ogr(const std::string& dir, const std::string& name, const std::string& shpt,
                const std::vector<std::string>& wkts) {
  return GdalLayer(dir, name, wkts, "-lco SHPT=" + shpt);
}

std::string Dump(const std::string& shp) {
  std::string d = RunCmd("shpdump '" + shp + "' 2>&1");
  return d;
}

struct Fixture {
  RecordingHost host;
  Session s{host};
  std::string dir = TempDir("lyr");
  Fixture() { Randomize(s, 1); }
  std::string LastLog() const { return host.logged.empty() ? "" : host.logged.back(); }
};

} // namespace

TEST(LayerLife, AddShapeOpensTheLayerAndTellsTheList) {
  Fixture f;
  std::string p = Ogr(f.dir, "roads", "ARC", {"LINESTRING (500000 4000000,500100 4000100)"});
  AddShape(f.s, p, false);
  ASSERT_EQ(f.s.LyrCount, 1);
  EXPECT_EQ(f.s.LyrErr, 0);
  EXPECT_EQ(f.s.ActiveLyr, 1);
  const LyrRec& l = f.s.Lyr[1];
  EXPECT_EQ(l.LyrKind, 1);
  EXPECT_EQ(l.LyrName, "roads.shp");
  EXPECT_EQ(l.Fsource, p);
  EXPECT_EQ(l.Shp.RecCount, 1);
  EXPECT_EQ(l.Shp.ShpChanged, 0);
  EXPECT_EQ(f.LastLog(), "Add Layer " + p);
  EXPECT_EQ(f.s.LastDir, f.dir);
  EXPECT_EQ(f.s.MapUnit, 1); // a projected first layer
  EXPECT_EQ(f.s.MapView.MapTool, 2);

  // Points draw wider; a read-only add can't be edited.
  std::string q = Ogr(f.dir, "pts", "POINT", {"POINT (1 2)"});
  AddShape(f.s, ChangeExt(q, "dbf"), true);
  ASSERT_EQ(f.s.LyrCount, 2);
  EXPECT_EQ(f.s.Lyr[2].Fsource, q);
  EXPECT_EQ(f.s.Lyr[2].CDrawWidth[0], 3);
  EXPECT_EQ(f.s.Lyr[2].SDrawWidth, 3);
  EXPECT_EQ(f.s.Lyr[2].EEditable, 0);
  EXPECT_EQ(f.s.ActiveLyr, 2);
  // The same file twice: two layers; the first is found by its path.
  AddShape(f.s, ChangeExt(q, "shx"), false);
  EXPECT_EQ(f.s.LyrCount, 3);
  EXPECT_EQ(FindLyrByFile(f.s, q), 2);
}

TEST(LayerLife, FirstLayerInDegreesKeepsTheMapInDegrees) {
  Fixture f;
  AddShape(f.s, Ogr(f.dir, "geo", "POINT", {"POINT (10 50)", "POINT (-170 -80)"}), false);
  ASSERT_EQ(f.s.LyrCount, 1);
  EXPECT_EQ(f.s.MapUnit, 0);
}

TEST(LayerLife, AddShapeRefusalsAndFailures) {
  Fixture f;
  AddShape(f.s, f.dir + "missing.shp", false);
  EXPECT_EQ(f.s.LyrCount, 0);
  EXPECT_TRUE(f.host.logged.empty());

  // A frame file: the user is sent to the image.
  std::string frame = Ogr(f.dir, "frame", "ARC", {"LINESTRING (0 0,1 1)"});
  {
    std::string b = ReadFile(frame);
    b[32] = 99;
    WriteFile(frame, b);
    std::string x = ReadFile(ChangeExt(frame, "shx"));
    x[32] = 99;
    WriteFile(ChangeExt(frame, "shx"), x);
  }
  AddShape(f.s, frame, false);
  EXPECT_EQ(f.s.LyrCount, 0);
  EXPECT_EQ(f.s.LyrErr, 2);
  EXPECT_EQ(f.LastLog(), " *** Add Layer " + frame +
                             " has been canceled, Please Open its Raster Image file Instead *** ");

  WriteFile(f.dir + "junk.shp", "not a shapefile at all, not even close to one......");
  AddShape(f.s, f.dir + "junk.shp", false);
  EXPECT_EQ(f.s.LyrCount, 0);
  EXPECT_EQ(f.s.LyrErr, 1);
  EXPECT_EQ(f.LastLog(), " *** Add Layer " + f.dir + "junk.shp has been canceled *** ");

  // An open dialog blocks the add.
  f.host.openDialogs = {"Data Table", "Find by Data"};
  AddShape(f.s, Ogr(f.dir, "ok", "POINT", {"POINT (1 1)"}), false);
  EXPECT_EQ(f.s.LyrCount, 0);
  ASSERT_FALSE(f.host.boxes.empty());
  EXPECT_EQ(f.host.boxes.back(), "Close menu(s) Message Box|Please close \"Find by Data\", "
                                 "\"Data Table\", menu(s) before adding layer");
}

TEST(LayerLife, MakeNewLayerOfEveryKind) {
  Fixture f;
  const char* kinds[] = {"POINT",        "POINTM",        "POINTMZ",   "POLYLINE",  "POLYLINEM",
                         "POLYLINEMZ",   "POLYGON",       "POLYGONM",  "POLYGONMZ", "MULTIPOINTS",
                         "MULTIPOINTSM", "MULTIPOINTSMZ", "MASKLAYOUT"};
  int codes[] = {1, 21, 11, 3, 23, 13, 5, 25, 15, 8, 28, 18, 100};
  for (int i = 0; i < 13; ++i) {
    EXPECT_EQ(ShapeTypeOfKind(kinds[i]), codes[i]);
    std::string p = f.dir + std::string(kinds[i]) + "New.shp";
    MakeNewLyr(f.s, p, codes[i], kinds[i], false);
    EXPECT_EQ(f.LastLog(), "Make New " + std::string(kinds[i]) + " Layer " + p);
    std::string h = ReadFile(p);
    ASSERT_EQ(h.size(), 100u);
    EXPECT_EQ(uint8_t(h[32]), codes[i]);
  }
  EXPECT_EQ(ShapeTypeOfKind("polygonm"), 25);
  EXPECT_EQ(ShapeTypeOfKind("CIRCLE"), 0);
  EXPECT_EQ(f.s.LyrCount, 0); // made, not added
  EXPECT_EQ(FindFreeWorkLyr(f.s), 0);
  EXPECT_EQ(f.s.Lyr[0].Shp.ShpOpen, 0);

  MakeNewLyr(f.s, f.dir + "added.shp", 13, "POLYLINEMZ", true);
  ASSERT_EQ(f.s.LyrCount, 1);
  EXPECT_EQ(f.s.Lyr[1].Shp.ShpType, 13);
  EXPECT_EQ(f.s.Lyr[1].Shp.RecCount, 0);
  EXPECT_EQ(f.LastLog(), "Add Layer " + f.dir + "added.shp");
}

TEST(LayerLife, EditSaveAndSaveAsGiveFilesThatShapelibReadsAlike) {
  Fixture f;
  std::string p = Ogr(f.dir, "parcels", "POLYGON",
                      {"POLYGON ((0 0,0 10,10 10,10 0,0 0),(2 2,4 2,4 4,2 4,2 2))",
                       "POLYGON ((20 20,20 30,30 30,20 20))"});
  std::string before = Dump(p);
  AddShape(f.s, p, false);
  ASSERT_EQ(f.s.LyrCount, 1);
  // Save as under another name: the same geometry, the row now on the new file.
  SaveLyrAs(f.s, 1, f.dir + "copy.shp");
  EXPECT_EQ(f.LastLog(), "Save Layer parcels.shp As " + f.dir + "copy.shp");
  EXPECT_EQ(Dump(f.dir + "copy.shp"), before);
  EXPECT_EQ(ReadFile(f.dir + "copy.shp"), ReadFile(p));
  EXPECT_EQ(f.s.Lyr[1].Fsource, f.dir + "copy.shp");
  EXPECT_EQ(f.s.Lyr[1].LyrName, "copy.shp");
  EXPECT_EQ(f.s.Lyr[1].LyrBusy, 0);

  // Unchanged: SaveLyr says nothing; SaveLyrAll writes anyway.
  size_t logs = f.host.logged.size();
  SaveLyr(f.s, 1);
  EXPECT_EQ(f.host.logged.size(), logs);
  SaveLyrAll(f.s, 1);
  EXPECT_EQ(f.LastLog(), "Save Layer copy.shp");

  // An edit, then a save: the deleted record keeps its number.
  DeleteRec(f.s, 1, 1, true);
  EXPECT_EQ(f.s.Lyr[1].Shp.ShpChanged, -1);
  SaveLyr(f.s, 1);
  EXPECT_EQ(f.LastLog(), "Save Layer copy.shp");
  EXPECT_EQ(f.s.Lyr[1].Shp.ShpChanged, 0);
  std::string d = Dump(f.dir + "copy.shp");
  EXPECT_NE(d.find("Shape:0 (NullShape)"), std::string::npos) << d;
  EXPECT_NE(d.find("Shape:1 (Polygon)"), std::string::npos) << d;

  // Busy: refused with the layer's message.
  LyrLock(f.s, 1, true, "Find by Data");
  SaveLyrAll(f.s, 1);
  EXPECT_EQ(f.LastLog(), " *** Save Layer copy.shp has been canceled *** ");
  SaveLyrAs(f.s, 1, f.dir + "other.shp");
  EXPECT_EQ(f.LastLog(), " *** Save Layer As copy.shp has been canceled *** ");
  EXPECT_FALSE(FileExists(f.dir + "other.shp"));
  LyrLock(f.s, 1, false, "");
}

TEST(LayerLife, ConfirmationsAskWithTheirTextsAndAct) {
  Fixture f;
  std::string p = Ogr(f.dir, "a", "POINT", {"POINT (1 1)", "POINT (2 2)"});
  AddShape(f.s, p, false);
  ASSERT_EQ(f.s.LyrCount, 1);

  f.host.answers = {MsgAnswer::No};
  EXPECT_FALSE(ConfirmRemoveLyr(f.s, 1));
  EXPECT_EQ(
      f.host.boxes.back(),
      " Remove layer Message Box |  Are you sure you would like to remove layer a.shp ?   \n");
  EXPECT_TRUE(ConfirmReloadLyr(f.s, 1)); // nothing to lose: no question
  EXPECT_EQ(f.host.boxes.size(), 1u);

  DeleteRec(f.s, 1, 2, true);
  std::string save = "  Would you like to save the changes in layer a.shp to " + p + " ?   \n";
  f.host.answers = {MsgAnswer::Cancel};
  EXPECT_FALSE(ConfirmRemoveLyr(f.s, 1));
  EXPECT_EQ(f.host.boxes.back(), " Remove layer Message Box |" + save);
  f.host.answers = {MsgAnswer::No};
  EXPECT_TRUE(ConfirmReloadLyr(f.s, 1));
  EXPECT_EQ(f.host.boxes.back(), " Reload layer Message Box |" + save);
  EXPECT_EQ(f.s.Lyr[1].Shp.ShpChanged, -1);

  // Close project: No goes on; Yes stops when the project can't be saved; a saver that succeeds
  // goes on.
  f.s.ProjFile = "/p/x.qmt";
  f.host.answers = {MsgAnswer::No};
  EXPECT_TRUE(ConfirmCloseProject(f.s));
  EXPECT_EQ(f.host.boxes.back(),
            " Close Project Message Box |  Would you like to save the changes to /p/x.qmt ?   ");
  f.host.answers = {MsgAnswer::Yes};
  EXPECT_FALSE(ConfirmCloseProject(f.s));
  // A project saved while a layer's changes were not: the session stays. (The Yes above
  // saved the layer before the project's own write failed: mark it changed again.)
  f.s.Lyr[1].Shp.ShpChanged = -1;
  f.host.answers = {MsgAnswer::Yes};
  EXPECT_FALSE(ConfirmCloseProject(f.s, [](Session&) { return true; }));
  f.host.answers = {MsgAnswer::Yes};
  EXPECT_TRUE(ConfirmCloseProject(f.s, [](Session& s) {
    SaveLyr(s, 1);
    return true;
  }));
  EXPECT_NE(Dump(p).find("Shape:1 (NullShape)"), std::string::npos);

  // Yes saves the layer and goes on.
  DeleteRec(f.s, 1, 1, true);
  f.host.answers = {MsgAnswer::Yes};
  EXPECT_TRUE(ConfirmRemoveLyr(f.s, 1));
  EXPECT_EQ(f.s.Lyr[1].Shp.ShpChanged, 0);
  EXPECT_NE(Dump(p).find("Shape:0 (NullShape)"), std::string::npos);
}

TEST(LayerLife, ReloadDiscardsChangesAndDataSourcePointsElsewhere) {
  Fixture f;
  std::string a = Ogr(f.dir, "a", "POINT", {"POINT (1 1)", "POINT (2 2)"});
  std::string b = Ogr(f.dir, "b", "POINT", {"POINT (5 5)"});
  AddShape(f.s, a, false);
  DeleteRec(f.s, 1, 1, true);
  f.host.answers = {MsgAnswer::No};
  ReloadLyr(f.s, 1);
  EXPECT_FALSE(IsDeleted(f.s, 1, 1));
  EXPECT_EQ(f.LastLog(), "Reload Layer a.shp");
  f.s.ProjChanged = 0;
  SetLyrDataSource(f.s, 1, b);
  EXPECT_EQ(f.s.Lyr[1].Shp.RecCount, 1);
  EXPECT_EQ(f.s.Lyr[1].Fsource, b);
  EXPECT_EQ(f.s.ProjChanged, -1);
  EXPECT_EQ(f.LastLog(), "Set data Source Layer b.shp");
}

TEST(LayerLife, RemoveShiftsRowsAndClearsWhatPointedAtTheLayer) {
  Fixture f;
  for (const char* n : {"a", "b", "c"})
    AddShape(f.s, Ogr(f.dir, n, "POINT", {"POINT (1 1)"}), false);
  ASSERT_EQ(f.s.LyrCount, 3);
  f.s.ActiveLyr = 2;
  f.s.Held.EdtLyr = 2;
  f.s.Held.AddVertexLyr = 2;
  f.s.Held.CurFeatureLyr = 2;
  f.s.ProjChanged = 0;
  RemoveLyr(f.s, 2, true);
  EXPECT_EQ(f.LastLog(), "Remove Layer b.shp");
  ASSERT_EQ(f.s.LyrCount, 2);
  EXPECT_EQ(f.s.Lyr[2].LyrName, "c.shp");
  EXPECT_EQ(f.s.ActiveLyr, 0);
  EXPECT_EQ(f.s.Held.EdtLyr, 0);
  EXPECT_EQ(f.s.Held.AddVertexLyr, 0);
  EXPECT_EQ(f.s.ProjChanged, -1);

  LyrLock(f.s, 1, true, "Save Layer");
  RemoveLyr(f.s, 1, false);
  EXPECT_EQ(f.s.LyrCount, 2);
  EXPECT_EQ(f.LastLog(), " *** Remove Layer a.shp has been canceled *** ");
  LyrLock(f.s, 1, false, "");
  CloseAllLyrs(f.s);
  EXPECT_EQ(f.s.LyrCount, 0);
  EXPECT_TRUE(ConfirmCloseProject(f.s));
}

TEST(LayerLife, AReloadOfAFileThatIsGoneSaysSo) {
  Fixture f;
  std::string p = Ogr(f.dir, "gone", "POINT", {"POINT (1 1)"});
  AddShape(f.s, p, false);
  ASSERT_EQ(f.s.LyrCount, 1);
  std::filesystem::remove(p);
  ReloadLyr(f.s, 1);
  EXPECT_NE(f.LastLog().find("*** "), std::string::npos) << f.LastLog();
  bool canceled = false;
  for (const std::string& line : f.host.logged)
    canceled = canceled || line == " *** Reload Layer gone.shp has been canceled *** ";
  EXPECT_TRUE(canceled);
}
