#include <gtest/gtest.h>

#include "session/cmd_line.h"
#include "session/commands.h"
#include "session/map_init.h"
#include "session/start_session.h"
#include "test_support.h"

using namespace velmora;
using Args = std::vector<std::string>;

TEST(CmdLine, OurOptionsAndTheRest) {
  CmdLineOpts o = ParseCmdLine({});
  EXPECT_EQ(o.Mode, RunMode::Window);
  EXPECT_TRUE(o.Args.empty());
  o = ParseCmdLine({"--headless", "a b.lst", "EXIT"});
  EXPECT_EQ(o.Mode, RunMode::Headless);
  EXPECT_EQ(o.Args, (Args{"a b.lst", "EXIT"}));
  EXPECT_EQ(ParseCmdLine({"x", "--help"}).Mode, RunMode::Help);
  EXPECT_EQ(ParseCmdLine({"--version", "--headless"}).Mode, RunMode::Version);
  o = ParseCmdLine({"--headless", "--frob"});
  EXPECT_EQ(o.Mode, RunMode::Misuse);
  EXPECT_NE(o.Error.find("--frob"), std::string::npos);
  EXPECT_EQ(o.Error.find('\n'), std::string::npos);
  // Behind "--" nothing is ours; single dashes are never ours.
  o = ParseCmdLine({"--headless", "--", "--frob", "-x"});
  EXPECT_EQ(o.Mode, RunMode::Headless);
  EXPECT_EQ(o.Args, (Args{"--frob", "-x"}));
  EXPECT_EQ(VersionText(), std::string("velmora ") + VELMORA_VERSION);
  EXPECT_NE(UsageText().find("--headless"), std::string::npos);
}

TEST(CmdStart, MapInitPutsTheSessionAsAfterStart) {
  Session s;
  s.MapView.ViewW = 1000, s.MapView.ViewH = 700;
  s.MapView.MapLeft = 5, s.MapView.MapTool = 4, s.MapView.MapTarget = 3;
  s.MapUnit = 1, s.MeasCoordsIdx = 2;
  s.Lyr.Resize(3);
  s.LyrCount = 3, s.ActiveLyr = 2;
  s.Held.EdtLyr = 3;
  s.Lyr[-4].LyrBusy = -1;
  s.UndoList.resize(9), s.UndoPos = 5, s.UndoCount = 8;
  s.ViewHist.resize(4), s.ViewPos = 3, s.ViewCount = 4;
  MapInit(s);
  EXPECT_EQ(s.MapView.MapTool, 1);
  EXPECT_EQ(s.MapView.MapTarget, 1);
  EXPECT_EQ(s.MapView.MapLeft, 0);
  EXPECT_EQ(s.MapView.ViewW, 1000); // fixed when the window was arranged
  EXPECT_EQ(s.MapView.ViewH, 700);
  EXPECT_EQ(s.MapUnit, 0);
  EXPECT_EQ(s.MapZone, 1);
  EXPECT_EQ(s.MeasUnit, 1);
  EXPECT_EQ(s.MeasCoordsIdx, 23);
  EXPECT_EQ(s.LyrCount, 0);
  EXPECT_EQ(s.Lyr.Count(), 0);
  EXPECT_EQ(s.ActiveLyr, 0);
  EXPECT_EQ(s.Held.EdtLyr, 0);
  EXPECT_TRUE(s.Lyr[-4].LyrBusy); // work slots stay as they are
  EXPECT_EQ(s.UndoPos, 1);
  EXPECT_EQ(s.UndoCount, 1);
  EXPECT_EQ(s.UndoList.size(), 2u);
  EXPECT_TRUE(s.ViewHist.empty());
  EXPECT_EQ(s.ViewPos, 0);
  EXPECT_EQ(s.ProjVersion, kProjVersion);
}

TEST(CmdStart, StartRunsTheCommandLineAndOpensItsFirstWord) {
  test::RecordingHost host;
  Session s(host);
  s.ProgramDir = "/opt/velmora/";
  std::string dir = test::TempDir("start dir");
  test::WriteFile(dir + "a list.lst", "SELECT x\n");
  EXPECT_FALSE(StartSession(s, {dir + "a list.lst"}));
  EXPECT_EQ(s.LastDir, "/opt/velmora/");
  EXPECT_EQ(s.CommandBar.rfind(" >>  " + Banner() + "\r\n >>  ", 0), 0u);
  ASSERT_EQ(host.logged.size(), 2u);
  EXPECT_EQ(host.logged[0], "Executing Lst file " + dir + "a list.lst");
  EXPECT_EQ(s.MapView.MapTarget, 1);
}

TEST(CmdStart, ExitEndsTheProgram) {
  std::string dir = test::TempDir("start");
  test::WriteFile(dir + "plain.lst", "SELECT x\nZOOM y\n");
  test::WriteFile(dir + "ends.lst", "SELECT x\nZOOM y Exit\nSELECT z\n");
  {
    Session s;
    EXPECT_TRUE(StartSession(s, {dir + "plain.lst", "exit"}));
  }
  {
    Session s;
    EXPECT_FALSE(StartSession(s, {dir + "plain.lst"}));
  }
  {
    // A list that stopped at an exit line leaves that line in ArgStr, as a drop would.
    Session s;
    EXPECT_TRUE(StartSession(s, {dir + "ends.lst"}));
  }
  {
    Session s;
    EXPECT_FALSE(StartSession(s, {}));
    EXPECT_TRUE(StartSession(s, {"SELECT", "ALL", "EXIT"}));
  }
}
