// Projects written and read back, and the project menus with their dialogs and messages.
#include <gtest/gtest.h>

#include <fstream>

#include "frame/busy.h"
#include "model/datum_table.h"
#include "model/file_util.h"
#include "project_bytes.h"
#include "session/layer_life.h"
#include "session/project.h"
#include "store/shp_store.h"
#include "test_support.h"

using namespace velmora;
using namespace velmora::test;

namespace {

std::string Lines(const std::string& dir, const std::string& name) {
  return GdalLayer(dir, name, {"LINESTRING (0 0,10 10)", "LINESTRING (20 0,30 40)"});
}

struct DialogHost : RecordingHost {
  std::vector<std::string> dialogs; // "title|filter|default"
  std::string answer;
  std::string SaveFileDialog(const std::string& title, const std::string& filter,
                             const std::string& dflt) override {
    dialogs.push_back(title + "|" + filter + "|" + dflt);
    return answer;
  }
};

struct ProjectWrite : ::testing::Test {
  DialogHost host;
  Session s{host};
  std::string dir = TempDir("proj write");
  void SetUp() override { Randomize(s, 7); }
  std::string LastLog() const { return host.logged.empty() ? "" : host.logged.back(); }
};

} // namespace

TEST_F(ProjectWrite, RoundTripKeepsWhatIsStoredAndLosesWhatIsNot) {
  AddShape(s, Lines(dir, "a"), false);
  AddShape(s, Lines(dir, "b"), false);
  ASSERT_EQ(s.LyrCount, 2);
  LyrRec& a = s.Lyr[1];
  a.LyrName = "  Renamed  ";
  SizeClasses(a, 2);
  a.CFCount = 2, a.CFName = 1;
  a.CFieldValues = {"", "x", "y"};
  SetCForeColor(a, 2, 1, 2, 3);
  SetLColor(a, 9, 8, 7);
  a.LFontForceSize = 1, a.LRefereMapScale = 12345.5;
  a.HtScaleLMT = {3, 4};
  a.EVertexWidth = 9, a.EDrawWidth = 2;
  a.VBScripttext = " text ";
  a.SelBits[0] = 0x06;
  DatumDef def{"Grid A", "Sph", 6378137, 6356752.3, 0, 500000, 10, 99, 21, 0.9996, 0};
  AddDatum(s, def, DatumTrans{1, 2, 3, 4, 5, 6, 7});
  s.MapView.MapLeft = -5, s.MapView.MapTop = 50, s.MapView.MapRight = 45, s.MapView.MapBottom = 0;
  s.MapZone = 33, s.MeasCoordsIdx = 4;
  DeleteRec(s, 2, 1, true); // saved by the project's save

  std::string p = dir + "round.qmt";
  WriteProject(s, p);
  ASSERT_EQ(s.LyrErr, 0) << LastLog();
  EXPECT_EQ(s.Lyr[2].Shp.ShpChanged, 0);

  Session t{host};
  t.MapView.ViewW = 500, t.MapView.ViewH = 500;
  ReadProject(t, p);
  ASSERT_EQ(t.LyrErr, 0) << LastLog();
  ASSERT_EQ(t.LyrCount, 2);
  const LyrRec& r = t.Lyr[1];
  EXPECT_EQ(r.LyrName, "Renamed");
  EXPECT_EQ(r.Fsource, dir + "a.shp");
  EXPECT_EQ(r.CFCount, 2);
  EXPECT_EQ(r.CFieldValues[2], "y");
  EXPECT_EQ(r.CForeColor[2], PackRGB(1, 2, 3));
  EXPECT_EQ(r.CForeColor[0], a.CForeColor[0]);
  EXPECT_EQ(r.SFillColor, a.SFillColor);
  EXPECT_EQ(r.NForeColor, a.NForeColor);
  EXPECT_EQ(r.LColor, PackRGB(9, 8, 7));
  EXPECT_EQ(r.LRefereMapScale, 12345.5);
  EXPECT_EQ(r.EVertexWidth, 9);
  EXPECT_EQ(r.EDrawWidth, 2);
  EXPECT_EQ(r.VBScripttext, "text");
  EXPECT_EQ(r.HtScaleLMT[1], 0) << "not stored";
  EXPECT_EQ(r.SelBits[0], 0x06);
  EXPECT_EQ(r.SavedExtent[3], 40.0f);
  EXPECT_TRUE(IsDeleted(t, 2, 1));
  EXPECT_EQ(t.MapZone, 33);
  EXPECT_EQ(t.MeasCoordsIdx, 4);
  ASSERT_EQ(t.DatumTbl.size(), size_t(kBuiltInDatums) + 1);
  EXPECT_EQ(t.DatumTbl[24].CrdName, "Grid A");
  EXPECT_EQ(t.DatumTbl[24].FNorthS, 10) << "FNorthS follows FNorth";
  EXPECT_EQ(t.DatumTbl[24].TransScale, 7);
  // The stored window (-5 .. 45 by 0 .. 50) fitted to 500 by 500.
  EXPECT_EQ(t.MapView.MapLeft, -5);
  EXPECT_EQ(t.MapView.MapTop, 50);
  CloseAllLyrs(t);
  CloseAllLyrs(s);
}

TEST_F(ProjectWrite, LayersBesideTheProjectMoveWithItOthersKeepTheirPath) {
  std::string other = TempDir("proj other");
  AddShape(s, Lines(dir, "near"), false);
  AddShape(s, Lines(other, "far"), false);
  WriteProject(s, dir + "moving.qmt");
  ASSERT_EQ(s.LyrErr, 0);
  std::string bytes = ReadFile(dir + "moving.qmt");
  EXPECT_NE(bytes.find(std::string("\x08\0\0\0near.shp", 12)), std::string::npos);
  EXPECT_NE(bytes.find(other + "far.shp"), std::string::npos);
  CloseAllLyrs(s);

  std::string moved = TempDir("proj moved");
  for (const char* ext : {"shp", "shx", "dbf", "qmt"}) {
    std::string from = dir + (std::string(ext) == "qmt" ? "moving" : "near") + "." + ext;
    std::rename(from.c_str(), (moved + FileNameOf(from)).c_str());
  }
  ReadProject(s, moved + "moving.qmt");
  ASSERT_EQ(s.LyrErr, 0);
  EXPECT_EQ(s.Lyr[1].Fsource, moved + "near.shp");
  EXPECT_EQ(s.Lyr[1].LyrKind, 1);
  EXPECT_EQ(s.Lyr[2].Fsource, other + "far.shp");
  EXPECT_EQ(s.Lyr[2].LyrKind, 1);
  CloseAllLyrs(s);
}

TEST_F(ProjectWrite, AMissingLayerSurvivesTheNextSave) {
  Bytes b = ProjHead(16.007, 1, 0, 10, 10, 0);
  RowSpec r;
  r.name = "lost";
  r.path = "/nowhere/lost.shp";
  r.extent[0] = -7;
  ProjRow(b, 16.007, r);
  WriteFile(dir + "lost.qmt", b.b);
  ReadProject(s, dir + "lost.qmt");
  ASSERT_EQ(s.LyrCount, 1);
  ASSERT_EQ(s.Lyr[1].LyrKind, 0);
  WriteProject(s, dir + "again.qmt");
  Session t{host};
  ReadProject(t, dir + "again.qmt");
  ASSERT_EQ(t.LyrCount, 1);
  EXPECT_EQ(t.Lyr[1].LyrName, "lost");
  EXPECT_EQ(t.Lyr[1].Fsource, "/nowhere/lost.shp");
  EXPECT_EQ(t.Lyr[1].SavedExtent[0], -7.0f);
  EXPECT_EQ(t.Lyr[1].SelBits, (std::vector<uint8_t>{0x02, 0x00}));
  EXPECT_EQ(t.Lyr[1].CFieldValues.at(1), "A");
}

TEST_F(ProjectWrite, MenusAskTheirDialogAndLog) {
  // Nothing to do without layers.
  EXPECT_FALSE(SaveProjectMenu(s));
  EXPECT_FALSE(SaveProjectAsMenu(s));
  EXPECT_TRUE(host.dialogs.empty());
  EXPECT_EQ(WindowCaption(s), "Velmora GIS");

  AddShape(s, Lines(dir, "m"), false);
  s.LastDir = dir;
  // No project yet: the dialog proposes NewProject in LastDir; cancelled, nothing.
  EXPECT_FALSE(SaveProjectMenu(s));
  ASSERT_EQ(host.dialogs.size(), 1u);
  EXPECT_EQ(host.dialogs[0],
            "Save Project|Maps files (*.qmt)|*.qmt|All files (*.*)|*.*|" + dir + "NewProject");
  EXPECT_FALSE(FileExists(dir + "NewProject.qmt"));

  host.answer = dir + "first";
  EXPECT_TRUE(SaveProjectMenu(s));
  EXPECT_EQ(s.ProjFile, dir + "first.qmt");
  EXPECT_TRUE(FileExists(dir + "first.qmt"));
  EXPECT_EQ(LastLog(), "Save Project " + dir + "first.qmt");
  EXPECT_EQ(WindowCaption(s), "first.qmt : Velmora GIS");

  // With a project the save asks nothing; Save As starts at the present project.
  EXPECT_TRUE(SaveProjectMenu(s));
  EXPECT_EQ(host.dialogs.size(), 2u);
  host.answer = dir + "second.qmt";
  EXPECT_TRUE(SaveProjectAsMenu(s));
  EXPECT_EQ(host.dialogs.back().substr(host.dialogs.back().rfind('|') + 1), dir + "first.qmt");
  EXPECT_EQ(LastLog(), "Save Project As " + dir + "second.qmt");

  // Busy layers refuse the menus.
  LyrLock(s, 1, true, "Save Layer");
  EXPECT_FALSE(SaveProjectMenu(s));
  EXPECT_EQ(LastLog(), " *** Save Project has been canceled *** ");
  OpenProjectMenu(s, dir + "first.qmt");
  EXPECT_EQ(LastLog(), " *** Open Project has been canceled *** ");
  CloseProjectMenu(s);
  EXPECT_EQ(LastLog(), " *** Close Project has been canceled *** ");
  LyrLock(s, 1, false, "");

  // A write that fails says so.
  WriteProject(s, "/nonexistent-folder/x.qmt");
  EXPECT_EQ(s.LyrErr, 1);
  EXPECT_EQ(LastLog().rfind(" *** Save has been canceled  : ", 0), 0u) << LastLog();

  // Close asks (the project changed), Yes saves it, then the session is as after start.
  s.ProjFile = dir + "second.qmt";
  s.ProjChanged = -1;
  host.answers = {MsgAnswer::Yes};
  CloseProjectMenu(s);
  EXPECT_EQ(host.boxes.back(), " Close Project Message Box |  Would you like to save the changes "
                               "to " +
                                   dir + "second.qmt ?   ");
  EXPECT_EQ(host.logged[host.logged.size() - 2], "Save Project " + dir + "second.qmt");
  EXPECT_EQ(LastLog(), "Close Project " + dir + "second.qmt");
  EXPECT_EQ(s.LyrCount, 0);
  EXPECT_EQ(s.ProjFile, "");
  EXPECT_EQ(s.MapView.MapTool, 1);
  EXPECT_EQ(WindowCaption(s), "Velmora GIS");

  // Open: the dialog comes after the question; cancelled, nothing happens.
  OpenProjectMenu(s, [] { return std::string(); });
  EXPECT_EQ(s.LyrCount, 0);
  OpenProjectMenu(s, dir + "second.qmt");
  EXPECT_EQ(s.LyrCount, 1);
  EXPECT_EQ(s.LastDir, dir);
  CloseAllLyrs(s);
}
