// The folders of src/ stand in floors: each includes only folders below it, so the folder
// graph has no circle, and only the window, the program and the Qt platform see Qt.
#include <filesystem>

#include <gtest/gtest.h>

#include "include_graph.h"
#include "test_support.h"

namespace velmora::arch {
namespace {

const std::string kSrc = std::string(VELMORA_SOURCE_DIR) + "/src";

TEST(Floors, SourceFoldersFormNoCircle) {
  FolderGraph g = ReadFolderGraph(kSrc);
  ASSERT_TRUE(g.folders.count("model")) << "the tree was not found under " << kSrc;
  Circle c = FindCircle(g);
  EXPECT_TRUE(c.folders.empty()) << "circle of folders: " << DescribeSteps(c);
}

TEST(Floors, CoreFoldersTakeNoQtHeader) {
  FolderGraph g = ReadFolderGraph(kSrc);
  for (const FolderInclude& q : g.qtIncludes)
    EXPECT_TRUE(IsQtFolder(q.from)) << "a Qt header in core folder " << q.from << ": " << q.file
                                    << ":" << q.line << ": " << q.text;
}

TEST(Floors, GroundFloorIncludesOnlyThePlatformInterfaces) {
  FolderGraph g = ReadFolderGraph(kSrc);
  for (const auto& [key, inc] : g.edges) {
    if (key.first == "platform")
      ADD_FAILURE() << "the platform interfaces include " << inc.file << ": " << inc.text;
    if (key.first == "model" && key.second != "platform")
      ADD_FAILURE() << "the ground floor includes " << inc.file << ": " << inc.text;
  }
}

// The check itself, on a small tree made for it.
class FloorsCheck : public ::testing::Test {
protected:
  std::string root = test::TempDir("floors");
  void Put(const std::string& rel, const std::string& text) {
    std::filesystem::create_directories(std::filesystem::path(root + "/" + rel).parent_path());
    test::WriteFile(root + "/" + rel, text);
  }
};

TEST_F(FloorsCheck, NamesTheFoldersAndTheIncludeThatClosesACircle) {
  Put("a/x.h", "#pragma once\n#include \"b/y.h\"\n");
  Put("b/y.h", "#include <string>\n#include \"c/z.h\"\n#include \"y2.h\"\n");
  Put("c/z.cpp", "// #include \"a/x.h\" is only a comment\n\n  #  include \"a/x.h\"\n");
  Circle c = FindCircle(ReadFolderGraph(root));
  EXPECT_EQ(Describe(c), "a -> b -> c -> a, closed by c/z.cpp:3:   #  include \"a/x.h\"");
  EXPECT_EQ(DescribeSteps(c), Describe(c) + "\n  a/x.h:2: #include \"b/y.h\""
                                            "\n  b/y.h:2: #include \"c/z.h\""
                                            "\n  c/z.cpp:3:   #  include \"a/x.h\"");

  // Cut the circle: the tree passes.
  Put("c/z.cpp", "#include \"c/w.h\"\n#include \"w.h\"\n");
  EXPECT_EQ(Describe(FindCircle(ReadFolderGraph(root))), "");
}

TEST_F(FloorsCheck, ANestedFolderIsANodeOfItsOwn) {
  Put("platform/host.h", "#pragma once\n");
  Put("platform/qt/qt_host.h", "#include \"platform/host.h\"\n#include <QObject>\n");
  FolderGraph g = ReadFolderGraph(root);
  EXPECT_EQ(Describe(FindCircle(g)), "");
  ASSERT_EQ(g.qtIncludes.size(), 1u);
  EXPECT_TRUE(IsQtFolder(g.qtIncludes[0].from));

  Put("platform/canvas.h", "#include \"platform/qt/qt_host.h\"\n");
  EXPECT_EQ(Describe(FindCircle(ReadFolderGraph(root))),
            "platform -> platform/qt -> platform, closed by platform/qt/qt_host.h:1: "
            "#include \"platform/host.h\"");
}

TEST_F(FloorsCheck, FindsQtHeadersInCoreFolders) {
  Put("store/a.cpp", "#include <QString>\n#include <QtCore/QFile>\n#include <queue>\n");
  Put("ui/b.cpp", "#include <QWidget>\n");
  FolderGraph g = ReadFolderGraph(root);
  int core = 0;
  for (const FolderInclude& q : g.qtIncludes) core += IsQtFolder(q.from) ? 0 : 1;
  EXPECT_EQ(core, 2);
  EXPECT_EQ(g.qtIncludes.size(), 3u);
}

} // namespace
} // namespace velmora::arch
