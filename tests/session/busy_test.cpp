#include <gtest/gtest.h>

#include "cmd_test_util.h"
#include "frame/busy.h"
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
