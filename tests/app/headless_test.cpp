// The program end to end: `velmora --headless` on command files, and its options.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "app_support.h"

using velmora::test::ReadFile;
using velmora::test::RunCmd;
using velmora::test::TempDir;
using velmora::test::WriteFile;

using velmora::test::Lines;
using velmora::test::Quote;
using velmora::test::Velmora;

TEST(Headless, RunsAListAndLogsEachMessageAsALine) {
  std::string dir = TempDir("app dir");
  std::string lst = dir + "my list.lst";
  WriteFile(lst, "SELECT all\nZOOM full\n");
  int status = -1;
  std::string out = Velmora("--headless " + Quote(lst), &status);
  EXPECT_EQ(status, 0);
  auto lines = Lines(out);
  ASSERT_EQ(lines.size(), 2u) << out;
  EXPECT_EQ(lines[0], "Executing Lst file " + lst);
  EXPECT_EQ(lines[1], lst + " has been executed Successfully ");
  EXPECT_EQ(out.find(">>"), std::string::npos); // no prompt on standard output
}

TEST(Headless, ErrorsAreLinesTooAndTheExitStatusStaysZero) {
  int status = -1;
  std::string out = Velmora("--headless /nonexistent/none.lst EXIT", &status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(Lines(out), (std::vector<std::string>{"Executing Lst file /nonexistent/none.lst",
                                                  " *** Error in RunLstFile ***"}));
  // No arguments: nothing to do, nothing said.
  EXPECT_EQ(Velmora("--headless", &status), "");
  EXPECT_EQ(status, 0);
}

TEST(Headless, HelpVersionAndMisuse) {
  int status = -1;
  std::string help = Velmora("--help", &status);
  EXPECT_EQ(status, 0);
  EXPECT_NE(help.find("--headless"), std::string::npos);
  EXPECT_EQ(Velmora("--version", &status), std::string("velmora ") + VELMORA_VERSION + "\n");
  EXPECT_EQ(status, 0);
  std::string err = Velmora("--headless --nonsense x.lst", &status, true);
  EXPECT_EQ(status, 2);
  EXPECT_EQ(Lines(err).size(), 1u) << err;
  EXPECT_NE(err.find("--nonsense"), std::string::npos);
}

TEST(Window, StartsAndEndsOnExit) {
  // Offscreen, so no display is needed; EXIT ends the program after the start-up.
  std::string dir = TempDir("win");
  WriteFile(dir + "a.lst", "SELECT all\n");
  int status = -1;
  Velmora("-platform offscreen " + Quote(dir + "a.lst") + " EXIT", &status);
  EXPECT_EQ(status, 0);
}

TEST(Headless, SampleListMakesLayersOnceTheStoresAreThere) {
  // The bundled sample, pointed at a folder of our own.
  std::string dir = TempDir("sample");
  std::string text = ReadFile(std::string(VELMORA_SOURCE_DIR) + "/sample/sample.lst");
  ASSERT_FALSE(text.empty());
  for (size_t at; (at = text.find("/tmp/velmora-sample/")) != std::string::npos;)
    text.replace(at, 20, dir);
  WriteFile(dir + "sample.lst", text);
  int status = -1;
  std::string out = Velmora("--headless " + Quote(dir + "sample.lst"), &status);
  EXPECT_EQ(status, 0);
  EXPECT_NE(out.find(dir + "sample.lst has been executed Successfully "), std::string::npos);
  if (ReadFile(dir + "parcels.shp").empty()) GTEST_SKIP() << "the shape store is not built in";

  std::string info = RunCmd("ogrinfo -ro -al " + Quote(dir + "parcels.shp") + " 2>&1", &status);
  EXPECT_NE(info.find("Feature Count: 2"), std::string::npos) << info;
  EXPECT_NE(info.find("South East"), std::string::npos) << info;
  EXPECT_NE(info.find("POLYGON ((0 0,0 10,10 10,10 0,0 0))"), std::string::npos) << info;
  info = RunCmd("ogrinfo -ro -al " + Quote(dir + "wells.shp") + " 2>&1", &status);
  EXPECT_NE(info.find("Feature Count: 2"), std::string::npos) << info;
  EXPECT_NE(info.find("= W2"), std::string::npos) << info;
}
