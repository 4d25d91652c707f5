#include <gtest/gtest.h>

#include "session/commands.h"
#include "test_support.h"

using namespace velmora;

namespace {

struct ListHost : test::RecordingHost {
  int listChanged = 0;
  void LayerListChanged() override { ++listChanged; }
};

} // namespace

TEST(LstFile, RunsEveryLineAndReportsSuccess) {
  ListHost host;
  Session s(host);
  std::string dir = test::TempDir("lst");
  std::string path = dir + "run.lst";
  test::WriteFile(path, "SELECT a\r\nZOOM b\rSELECT c\n\nZOOM last");
  RunLstFile(s, path);
  ASSERT_EQ(host.logged.size(), 2u);
  EXPECT_EQ(host.logged[0], "Executing Lst file " + path);
  EXPECT_EQ(host.logged[1], path + " has been executed Successfully ");
  // CR LF, CR and LF all end a line; the last line needs no end.
  EXPECT_EQ(s.ArgStr, (std::vector<std::string>{"ZOOM", "last"}));
}

TEST(LstFile, StopsAfterALineEndingInExitInAnyCase) {
  test::RecordingHost host;
  Session s(host);
  std::string path = test::TempDir("lst") + "stop.lst";
  test::WriteFile(path, "\xEF\xBB\xBFSELECT a\nZOOM b eXiT\nSELECT never\n");
  RunLstFile(s, path);
  EXPECT_EQ(s.ArgStr, (std::vector<std::string>{"ZOOM", "b", "eXiT"}));
  ASSERT_EQ(host.logged.size(), 2u);
  EXPECT_EQ(host.logged[1], path + " has been executed Successfully ");
}

TEST(LstFile, MissingFileIsAnErrorAndNoSuccess) {
  test::RecordingHost host;
  Session s(host);
  RunLstFile(s, "/nonexistent/x.lst");
  ASSERT_EQ(host.logged.size(), 2u);
  EXPECT_EQ(host.logged[0], "Executing Lst file /nonexistent/x.lst");
  EXPECT_EQ(host.logged[1], " *** Error in RunLstFile ***");
  EXPECT_EQ(host.beeps, 1);
}

TEST(LstFile, OpenAnyFileDispatchesByExtension) {
  ListHost host;
  Session s(host);
  std::string dir = test::TempDir("open");
  test::WriteFile(dir + "notes.txt", "x");
  test::WriteFile(dir + "a.lst", "SELECT x\n");

  OpenAnyFile(s, "");
  EXPECT_EQ(host.listChanged, 0); // an empty path does nothing at all

  for (const char* web : {"page.htm", "PAGE.HTML", "x.asp", "x.jsp", "x.vbs", "x.js"})
    OpenAnyFile(s, dir + web);
  ASSERT_EQ(host.shellOpened.size(), 6u);
  EXPECT_EQ(host.shellOpened[1], dir + "PAGE.HTML");
  EXPECT_TRUE(host.logged.empty());

  // Any other document: the desktop's application, and a log line.
  OpenAnyFile(s, "\"" + dir + "notes.txt\"");
  ASSERT_EQ(host.shellOpened.size(), 7u);
  EXPECT_EQ(host.shellOpened[6], dir + "notes.txt");
  ASSERT_EQ(host.logged.size(), 1u);
  EXPECT_EQ(host.logged[0], "Open object " + dir + "notes.txt");

  // No extension (the first word of a command) and a missing document: nothing.
  OpenAnyFile(s, "OPEN");
  OpenAnyFile(s, dir + "missing.doc");
  // Layers, images, projects and coordinate systems go to their own readers.
  for (const char* f : {"a.shp", "a.dbf", "a.shx", "a.jpg", "a.tif", "a.png", "a.prj", "a.qmt"})
    OpenAnyFile(s, dir + f);
  EXPECT_EQ(host.shellOpened.size(), 7u);
  EXPECT_EQ(host.logged.size(), 1u);

  OpenAnyFile(s, dir + "a.lst");
  ASSERT_EQ(host.logged.size(), 3u);
  EXPECT_EQ(host.logged[1], "Executing Lst file " + dir + "a.lst");
  // Every call but the empty one refreshes the layer list.
  EXPECT_EQ(host.listChanged, 6 + 1 + 2 + 8 + 1);
}
