#include <gtest/gtest.h>

#include <cstdio>

#include "frame/log.h"
#include "test_support.h"

using namespace velmora;

TEST(LogMsg, EachLineEndsInThePrompt) {
  test::RecordingHost host;
  Session s(host);
  LogInit(s, "banner");
  EXPECT_EQ(s.CommandBar, " >>  banner\r\n >>  ");
  LogMsg(s, "Add Layer a.shp");
  EXPECT_EQ(s.CommandBar, " >>  banner\r\n >>  Add Layer a.shp\r\n >>  ");
  EXPECT_EQ(s.LogKeepFrom, int(s.CommandBar.size()) - 5);
  EXPECT_EQ(s.CommandBar.substr(size_t(s.LogKeepFrom)), " >>  ");
  EXPECT_EQ(host.logged, std::vector<std::string>{"Add Layer a.shp"});
}

TEST(LogMsg, OnlyWhenTheMapDrawsToTheWindow) {
  test::RecordingHost host;
  Session s(host);
  LogInit(s, "b");
  s.MapView.MapTarget = 3;
  LogMsg(s, " *** x *** ");
  EXPECT_EQ(s.CommandBar, " >>  b\r\n >>  ");
  EXPECT_TRUE(host.logged.empty());
  EXPECT_EQ(host.beeps, 0);
}

TEST(LogMsg, RefusalsBeep) {
  test::RecordingHost host;
  Session s(host);
  LogMsg(s, " *** Save Layer a has been canceled *** ");
  LogMsg(s, "*** no blank in front");
  LogMsg(s, "Save Layer a *** ");
  EXPECT_EQ(host.beeps, 1);
}

TEST(LogMsg, CutsToTheLastPromptBelowTheLowMarkWhenPastTheHighMark) {
  Session s;
  LogInit(s, "b");
  // Lines of 100 characters: 107 with the line end and the prompt.
  auto line = [](int i) {
    char head[16];
    std::snprintf(head, sizeof head, "m%05d", i);
    return std::string(head) + std::string(94, '.');
  };
  int lastBelow = -1;
  size_t before = 0;
  for (int i = 0; s.CommandBar.size() >= before; ++i) {
    ASSERT_LT(i, 1000);
    before = s.CommandBar.size();
    LogMsg(s, line(i));
    EXPECT_LE(s.CommandBar.size(), 49000u + 107u);
    if (s.CommandBar.size() < 27000 && s.CommandBar.size() > before) lastBelow = i;
  }
  // What is left starts at the prompt behind line `lastBelow`.
  std::string expectStart = std::string(" >>  ") + line(lastBelow + 1);
  EXPECT_EQ(s.CommandBar.substr(0, expectStart.size()), expectStart);
  EXPECT_EQ(s.CommandBar.substr(s.CommandBar.size() - 5), " >>  ");
  EXPECT_LT(s.CommandBar.size(), 27000u);
  // Below the low mark again, so the next line sets the mark anew.
  LogMsg(s, "next");
  EXPECT_EQ(s.LogKeepFrom, int(s.CommandBar.size()) - 5);
}
