#include <gtest/gtest.h>

#include <functional>

#include "cmd_test_util.h"
#include "frame/busy.h"
#include "frame/lyr_slots.h"
#include "session/commands.h"
#include "session/layer_life.h"
#include "session/project.h"
#include "test_support.h"

using namespace velmora;
using velmora::test::AddLayers;

TEST(BusyProtocol, RefusalMessagesWordForWord) {
  test::RecordingHost host;
  Session s(host);
  AddLayers(s, 2);
  EXPECT_FALSE(LyrIsBusyMsg(s, 1));
  LyrLock(s, 2, true, "Build Tin Surface");
  EXPECT_TRUE(LyrIsBusy(s, 2));
  EXPECT_TRUE(LyrIsBusyMsg(s, 2));
  EXPECT_TRUE(AnyLyrBusyMsg(s));
  ASSERT_EQ(host.logged.size(), 2u);
  EXPECT_EQ(host.logged[0], " *** Sorry Layer l2.shp is busy with Build Tin Surface function, "
                            "Please terminate it first, or Please wait *** ");
  EXPECT_EQ(host.logged[1], host.logged[0]);
  EXPECT_EQ(host.beeps, 2);
  // A number above LyrCount is never busy; a work slot counts for AnyLyrBusy only.
  EXPECT_FALSE(LyrIsBusy(s, 3));
  LyrLock(s, 2, false, "");
  LyrLock(s, -7, true, "Make New Shape File");
  EXPECT_FALSE(AnyLyrBusyMsg(s));
  EXPECT_TRUE(AnyLyrBusy(s));
}

TEST(BusyProtocol, TerminateMessagesAndARemovedLayer) {
  test::RecordingHost host;
  Session s(host);
  AddLayers(s, 2);
  LyrLock(s, 2, true, "Contour");
  EXPECT_FALSE(LyrTerminated(s, 2));
  SetLyrTerminate(s, 2, true);
  EXPECT_TRUE(LyrTerminated(s, 2));
  EXPECT_EQ(host.logged.back(), " *** Function Contour in Layer l2.shp has been terminated *** ");
  // The layer went away under the function: its number is above LyrCount now.
  s.Lyr.Resize(1);
  s.LyrCount = 1;
  EXPECT_TRUE(LyrTerminated(s, 2));
  EXPECT_EQ(host.logged.back(), " *** A Function has been terminated in the closed Layer *** ");
  EXPECT_TRUE(LyrMustStop(s, 2));
  EXPECT_FALSE(LyrMustStop(s, 1));
}

TEST(BusyProtocol, TerminateAllAsksOnlyWhenSomethingRuns) {
  test::RecordingHost host;
  Session s(host);
  AddLayers(s, 3);
  TerminateAllRunning(s);
  EXPECT_TRUE(host.boxes.empty());

  LyrLock(s, 1, true, "A");
  LyrLock(s, 3, true, "B");
  host.answers = {MsgAnswer::No};
  TerminateAllRunning(s);
  ASSERT_EQ(host.boxes.size(), 1u);
  EXPECT_EQ(host.boxes[0],
            "Terminate Message Box | Would you like to Terminate All Running Functions ?   ");
  EXPECT_FALSE(AnyLyrMustStop(s));

  host.answers = {MsgAnswer::Yes};
  TerminateAllRunning(s);
  EXPECT_TRUE(s.Lyr[1].LyrTerminate);
  EXPECT_FALSE(s.Lyr[2].LyrTerminate); // not busy, not told
  EXPECT_TRUE(s.Lyr[3].LyrTerminate);
}

TEST(BusyProtocol, RunningFunctionRefusesABusyLayer) {
  test::RecordingHost host;
  Session s(host);
  AddLayers(s, 1);
  LyrLock(s, 1, true, "Save Layer");
  {
    RunningFunction rf(s, 1, "Validate Layer boundaries");
    EXPECT_FALSE(rf.Started());
  }
  ASSERT_EQ(host.logged.size(), 2u);
  EXPECT_EQ(host.logged[1], " *** Validate Layer boundaries l1.shp has been canceled *** ");
  // The refusal leaves the other function's lock alone.
  EXPECT_EQ(s.Lyr[1].BusyFunc, "Save Layer");
  EXPECT_TRUE(s.Lyr[1].LyrBusy);
}

TEST(BusyProtocol, RunningFunctionLocksStepsAndUnlocksOnEveryExit) {
  test::RecordingHost host;
  Session s(host);
  AddLayers(s, 1);
  s.Lyr[1].LyrTerminate = -1; // left over from an earlier run
  auto run = [&](bool earlyReturn) {
    RunningFunction rf(s, 1, "Clean DBF File");
    EXPECT_TRUE(rf.Started());
    EXPECT_TRUE(s.Lyr[1].LyrBusy);
    EXPECT_EQ(s.Lyr[1].BusyFunc, "Clean DBF File");
    EXPECT_FALSE(rf.Step(1, 2)); // the old flag was cleared at entry
    if (earlyReturn) return;
    rf.Finish();
  };
  run(true);
  EXPECT_FALSE(s.Lyr[1].LyrBusy);
  EXPECT_TRUE(host.logged.empty()); // no success line without Finish
  run(false);
  EXPECT_FALSE(s.Lyr[1].LyrBusy);
  EXPECT_EQ(host.logged, std::vector<std::string>{"Clean DBF File l1.shp"});
  EXPECT_EQ(host.yields, 2);
}

TEST(BusyProtocol, RunningFunctionStopsWhenTerminatedOrRemoved) {
  test::RecordingHost host;
  Session s(host);
  AddLayers(s, 2);
  {
    RunningFunction rf(s, 2, "Build Network");
    s.Lyr[2].LyrTerminate = -1;
    EXPECT_TRUE(rf.Step(1, 10));
    rf.Finish();
  }
  EXPECT_EQ(host.logged.back(),
            " *** Function Build Network in Layer l2.shp has been terminated *** ");
  EXPECT_FALSE(s.Lyr[2].LyrBusy);
  {
    RunningFunction rf(s, 2, "Build Network");
    s.Lyr.Resize(1);
    s.LyrCount = 1;
    EXPECT_TRUE(rf.Step(1, 10));
  }
  EXPECT_EQ(host.logged.back(), " *** A Function has been terminated in the closed Layer *** ");
}

TEST(BusyProtocol, OpenDialogsInTheirFixedOrder) {
  test::RecordingHost host;
  Session s(host);
  EXPECT_EQ(OpenDialogs(s), "");
  EXPECT_FALSE(DialogsBlock(s, "adding layer"));
  host.openDialogs = {"Data Table", "Edit Feature Data", "Add records", "Find by Data"};
  EXPECT_EQ(OpenDialogs(s),
            "\"Add records\", \"Edit Feature Data\", \"Find by Data\", \"Data Table\", ");
  // Renaming ignores the forms that are told of a rename.
  EXPECT_EQ(OpenToolDialogs(s), "\"Add records\", \"Find by Data\", ");
  EXPECT_TRUE(DialogsBlock(s, "deleting layer"));
  ASSERT_EQ(host.boxes.size(), 1u);
  EXPECT_EQ(host.boxes[0], "Close menu(s) Message Box|Please close \"Add records\", \"Edit "
                           "Feature Data\", \"Find by Data\", \"Data Table\", menu(s) before "
                           "deleting layer");
}

namespace {

// A host whose event loop runs what the test puts in it, once per turn.
struct ScriptedHost : test::RecordingHost {
  std::vector<std::function<void()>> turns;
  void Yield() override {
    RecordingHost::Yield();
    if (yields <= int(turns.size()) && turns[size_t(yields - 1)]) turns[size_t(yields - 1)]();
  }
};

} // namespace

TEST(BusyProtocol, ARunningFunctionFollowsItsLayerWhenOtherLayersMove) {
  ScriptedHost host;
  Session s(host);
  AddLayers(s, 3);
  RunningFunction rf(s, 3, "Build Network");
  ASSERT_TRUE(rf.Started());
  host.turns = {[&] { RemoveLyr(s, 1, false); }, [&] { SwapLyr(s, 1, 2); }, nullptr};
  EXPECT_FALSE(rf.Step(1, 3)); // the row above went: l3.shp is row 2 now
  EXPECT_EQ(rf.Layer(), 2);
  EXPECT_FALSE(rf.Step(2, 3)); // moved to the top
  EXPECT_EQ(rf.Layer(), 1);
  EXPECT_EQ(s.Lyr[1].Fsource, "/data/l3.shp");
  // Terminate reaches it under its new number.
  s.Lyr[1].LyrTerminate = -1;
  EXPECT_TRUE(rf.Step(3, 3));
  EXPECT_EQ(host.logged.back(),
            " *** Function Build Network in Layer l3.shp has been terminated *** ");
  rf.Finish();
  EXPECT_FALSE(s.Lyr[1].LyrBusy);
  EXPECT_EQ(s.Lyr[1].BusyFunc, "");
  EXPECT_FALSE(s.Lyr[2].LyrBusy);
}

TEST(BusyProtocol, AFunctionWhoseLayerWentNeverTouchesTheRowThatTookItsNumber) {
  ScriptedHost host;
  Session s(host);
  AddLayers(s, 3);
  s.Lyr[3].BusyFunc = "kept";
  {
    RunningFunction rf(s, 2, "Build Network");
    // Gone by a way other than RemoveLyr (which refuses a busy layer): l3 takes number 2.
    host.turns = {[&] {
      s.Lyr[2] = std::move(s.Lyr[3]);
      s.Lyr.Resize(2);
      s.LyrCount = 2;
    }};
    EXPECT_TRUE(rf.Step(1, 5));
    EXPECT_TRUE(rf.Gone());
    EXPECT_EQ(host.logged.back(), " *** A Function has been terminated in the closed Layer *** ");
    const size_t said = host.logged.size();
    EXPECT_TRUE(rf.Step(2, 5)); // still stopped, and said once
    EXPECT_EQ(host.logged.size(), said);
  }
  EXPECT_EQ(s.Lyr[2].Fsource, "/data/l3.shp");
  EXPECT_EQ(s.Lyr[2].BusyFunc, "kept");
  EXPECT_FALSE(s.Lyr[2].LyrBusy);
}

TEST(BusyProtocol, OpeningAProjectWhileAFunctionRunsIsRefusedWithTheBusyQuestion) {
  test::RecordingHost host;
  Session s(host);
  AddLayers(s, 2);
  LyrLock(s, 2, true, "Build Tin Surface");
  const std::string question =
      "Terminate Message Box |  Would you like to Terminate Build Tin Surface Function in layer "
      "l2.shp ?   ";
  host.answers = {MsgAnswer::No};
  ArgStrSplit(s, "OPEN PROJECT /data/other.qmt");
  ArgStrExecute(s);
  ASSERT_EQ(host.boxes, std::vector<std::string>{question});
  EXPECT_EQ(host.logged.back(), " *** Open Project has been canceled *** ");
  EXPECT_FALSE(s.Lyr[2].LyrTerminate);

  host.answers = {MsgAnswer::Yes};
  OpenAnyFile(s, "/data/other.qmt");
  EXPECT_EQ(host.boxes.size(), 2u);
  EXPECT_TRUE(s.Lyr[2].LyrTerminate); // Yes asks the function to stop; the open is refused

  bool asked = false;
  OpenProjectMenu(s, [&] {
    asked = true;
    return std::string("/data/other.qmt");
  });
  EXPECT_FALSE(asked);
  EXPECT_EQ(host.logged.back(), " *** Open Project has been canceled *** ");
  EXPECT_EQ(s.LyrCount, 2);
  EXPECT_EQ(s.Lyr[2].Fsource, "/data/l2.shp");
  EXPECT_TRUE(s.Lyr[2].LyrBusy);

  // A work slot alone: refused without a question.
  LyrLock(s, 2, false, "");
  LyrLock(s, -3, true, "Make New Shape File");
  host.boxes.clear();
  EXPECT_TRUE(ProjectOpenRefused(s));
  EXPECT_TRUE(host.boxes.empty());
  LyrLock(s, -3, false, "");
  EXPECT_FALSE(ProjectOpenRefused(s));
}
