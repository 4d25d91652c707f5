// The layer and project menus: remove, reload and data source of a selection, the rectify
// items, New and Close Project, the caption, and the first layer's view.
#include <gtest/gtest.h>

#include <fstream>

#include "frame/busy.h"
#include "frame/log.h"
#include "model/file_util.h"
#include "session/layer_life.h"
#include "session/layer_menus.h"
#include "session/project.h"
#include "test_support.h"
#include "view/map_toolbar.h"
#include "view/map_tools.h"

using namespace velmora;
using namespace velmora::test;

namespace {

struct CountingHost : RecordingHost {
  int redraws = 0, lists = 0, processes = 0;
  void MapRedraw() override { ++redraws; }
  void LayerListChanged() override { ++lists; }
  bool StartSecondProcess() override {
    ++processes;
    return true;
  }
};

// Point layers made by GDAL, one feature each.
std::string Ogr(const std::string& dir, const std::string& name, const std::string& wkt) {
  return GdalLayer(dir, name, {wkt});
}

struct MenusTest : ::testing::Test {
  CountingHost host;
  Session s{host};
  std::string dir = TempDir("menus");
  void SetUp() override {
    Randomize(s, 7);
    s.MapView.ViewW = 400, s.MapView.ViewH = 200;
  }
  void Add(const std::string& name, const std::string& wkt) {
    AddShape(s, Ogr(dir, name, wkt), false);
  }
  std::vector<std::string> Names() const {
    std::vector<std::string> v;
    for (int i = 1; i <= s.LyrCount; ++i) v.push_back(s.Lyr[i].LyrName);
    return v;
  }
};

} // namespace

TEST_F(MenusTest, FirstLayerSelectsZoomInAndShowsTheFullExtent) {
  EXPECT_FALSE(GetToolbarState(s).HasLayers);
  Add("a", "POINT (10 20)");
  Add("b", "POINT (100 50)"); // outside the first window: the view stays
  ToolbarState t = GetToolbarState(s);
  EXPECT_TRUE(t.HasLayers);
  EXPECT_EQ(t.Tool, kToolZoomIn);
  EXPECT_EQ(s.MapView.MapTool, kToolZoomIn);
  // One point: the factor's floor, centred on it.
  EXPECT_DOUBLE_EQ(s.MapView.MapFactor, 0.00015 / s.View.PixPerMeter);
  EXPECT_NEAR((s.MapView.MapLeft + s.MapView.MapRight) / 2, 10, 1e-9);
  EXPECT_NEAR((s.MapView.MapTop + s.MapView.MapBottom) / 2, 20, 1e-9);
  EXPECT_EQ(s.ViewCount, 1);
  EXPECT_EQ(host.redraws, 1); // only the second layer redraws at the same view
  ChooseMapTool(s, kToolPan);
  EXPECT_EQ(s.View.MapToolKeep, kToolPan);
  EXPECT_EQ(GetToolbarState(s).Tool, kToolPan);
}

TEST_F(MenusTest, RemoveWalksTheSelectionFromTheBottom) {
  for (const char* n : {"a", "b", "c", "d"}) Add(n, "POINT (1 1)");
  host.boxes.clear();
  host.redraws = 0;
  // d: Yes; c is busy; b: No; a: Yes.
  LyrLock(s, 3, true, "Build Tin Surface");
  host.answers = {MsgAnswer::Yes, MsgAnswer::No, MsgAnswer::Yes};
  RemoveSelectedLyrs(s, {1, 2, 3, 4});
  ASSERT_EQ(host.boxes.size(), 3u);
  EXPECT_EQ(
      host.boxes[0],
      " Remove layer Message Box |  Are you sure you would like to remove layer d.shp ?   \n");
  EXPECT_EQ(
      host.boxes[2],
      " Remove layer Message Box |  Are you sure you would like to remove layer a.shp ?   \n");
  EXPECT_EQ(Names(), (std::vector<std::string>{"b.shp", "c.shp"}));
  EXPECT_EQ(host.redraws, 1);
  bool refused = false;
  for (const std::string& m : host.logged)
    refused = refused || m == " *** Remove Layer c.shp has been canceled *** ";
  EXPECT_TRUE(refused);
  LyrLock(s, 2, false, "");

  // An open dialog refuses the whole menu.
  host.openDialogs = {"Find by Data"};
  host.boxes.clear();
  RemoveSelectedLyrs(s, {1});
  EXPECT_EQ(s.LyrCount, 2);
  ASSERT_EQ(host.boxes.size(), 1u);
  EXPECT_EQ(
      host.boxes[0],
      "Close menu(s) Message Box|Please close \"Find by Data\", menu(s) before deleting layer");
}

TEST_F(MenusTest, ReloadAndDataSourceOfSeveralLayers) {
  Add("a", "POINT (1 1)");
  Add("b", "POINT (2 2)");
  ReloadSelectedLyrs(s, {1, 2});
  EXPECT_EQ(host.logged[host.logged.size() - 2], "Reload Layer a.shp");
  EXPECT_EQ(host.logged.back(), "Reload Layer b.shp");

  EXPECT_EQ(DataSourceTitle(s, {2}), "Set Layer b.shp Data Source");
  EXPECT_EQ(DataSourceTitle(s, {1, 2}), "Set Layer a.shp and Multi Layers Data Source");

  // The first goes to the chosen file, the second to its own name in that folder.
  std::string other = TempDir("menus2");
  Ogr(other, "x", "POINT (5 5)");
  Ogr(other, "b", "POINT (6 6)");
  SetSelectedDataSource(s, {1, 2}, other + "x.shp");
  EXPECT_EQ(s.Lyr[1].Fsource, other + "x.shp");
  EXPECT_EQ(s.Lyr[2].Fsource, other + "b.shp");
  EXPECT_EQ(s.Lyr[1].LyrName, "x.shp");
  EXPECT_EQ(s.LastDir, other);
  EXPECT_EQ(host.logged.back(), "Set data Source Layer b.shp");
  EXPECT_NE(s.ProjChanged, 0);
}

TEST_F(MenusTest, RectifyItemsFollowTheActiveLayer) {
  Add("a", "POINT (1 1)");
  LyrMenus m = ApplyLyrMenus(s, 1);
  EXPECT_FALSE(m.Rectify || m.UnRectify); // a shape layer
  s.Lyr[1].LyrKind = 2;                   // seen as an image
  m = ApplyLyrMenus(s, 1);
  EXPECT_TRUE(m.Rectify);
  EXPECT_FALSE(m.UnRectify);
  s.Lyr[1].Img.ImgRectified = -1;
  m = ApplyLyrMenus(s, 1);
  EXPECT_FALSE(m.Rectify);
  EXPECT_TRUE(m.UnRectify);
  s.Lyr[1].LyrKind = 1;
  m = ApplyLyrMenus(s, 0);
  EXPECT_FALSE(m.Rectify || m.UnRectify);
}

TEST_F(MenusTest, NewProjectStartsASecondProcessOnlyWithLayers) {
  EXPECT_FALSE(NewProject(s));
  EXPECT_EQ(host.processes, 0);
  Add("a", "POINT (1 1)");
  EXPECT_TRUE(NewProject(s));
  EXPECT_EQ(host.processes, 1);
  EXPECT_EQ(s.LyrCount, 1); // this session goes on
}

TEST_F(MenusTest, CloseProjectRefusesWhileBusyThenAsksAndClears) {
  EXPECT_EQ(WindowCaption(s), "Velmora GIS");
  Add("a", "POINT (1 1)");
  s.ProjFile = dir + "world.qmt";
  ChooseMapTool(s, kToolPan);
  EXPECT_EQ(WindowCaption(s), "world.qmt : Velmora GIS");

  LyrLock(s, 1, true, "Save Layer");
  EXPECT_FALSE(CloseProjectMenu(s));
  EXPECT_EQ(host.logged.back(), " *** Close Project has been canceled *** ");
  LyrLock(s, 1, false, "");

  host.boxes.clear();
  host.answers = {MsgAnswer::Cancel};
  EXPECT_FALSE(CloseProjectMenu(s)); // the add changed the project: it asks
  ASSERT_EQ(host.boxes.size(), 1u);
  EXPECT_EQ(host.boxes[0], " Close Project Message Box |  Would you like to save the changes to " +
                               dir + "world.qmt ?   ");
  EXPECT_EQ(s.LyrCount, 1);

  host.answers = {MsgAnswer::No};
  host.lists = 0;
  EXPECT_TRUE(CloseProjectMenu(s));
  EXPECT_EQ(host.logged.back(), "Close Project " + dir + "world.qmt");
  EXPECT_EQ(s.LyrCount, 0);
  EXPECT_EQ(s.ActiveLyr, 0);
  EXPECT_EQ(s.ProjFile, "");
  EXPECT_EQ(s.ProjChanged, 0);
  EXPECT_EQ(s.ViewCount, 0);
  EXPECT_EQ(s.MapView.ViewW, 400); // the view size stays
  EXPECT_EQ(s.MapView.MapTool, 1);
  EXPECT_EQ(s.View.MapToolKeep, kToolZoomIn);
  EXPECT_FALSE(GetToolbarState(s).HasLayers);
  EXPECT_EQ(host.lists, 1);
  EXPECT_EQ(WindowCaption(s), "Velmora GIS");
  // The next first layer starts afresh.
  Add("b", "POINT (3 3)");
  EXPECT_EQ(s.MapView.MapTool, kToolZoomIn);
}

TEST(LayerMenus, MakeNewLayerTexts) {
  const auto& kinds = NewLyrKinds();
  ASSERT_EQ(kinds.size(), 13u);
  for (const std::string& k : kinds) EXPECT_NE(ShapeTypeOfKind(k), 0) << k;
  EXPECT_EQ(kinds.back(), "MASKLAYOUT");
  EXPECT_EQ(NewLyrTitle("POLYGONM"), "Make New POLYGONM Layer");
  EXPECT_EQ(NewLyrDefaultName("POINT"), "POINTNew");
}
