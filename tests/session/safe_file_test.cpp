#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "model/safe_file.h"

namespace fs = std::filesystem;
using namespace velmora;

namespace {

std::string Slurp(const fs::path& p) {
  std::ifstream in(p, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

fs::path FreshDir(const char* name) {
  fs::path d = fs::temp_directory_path() / ("velmora-safe-" + std::to_string(::getpid())) / name;
  fs::remove_all(d);
  fs::create_directories(d);
  return d;
}

size_t EntryCount(const fs::path& d) {
  return size_t(std::distance(fs::directory_iterator(d), fs::directory_iterator()));
}

} // namespace

TEST(SafeFile, ReplacesAllTargetsTogetherAndKeepsMode) {
  fs::path d = FreshDir("set");
  { std::ofstream(d / "a.shp") << "old a"; }
  ::chmod((d / "a.shp").c_str(), 0600);
  SafeFileSet set;
  int a = set.Open((d / "a.shp").string());
  int b = set.Open((d / "a.dbf").string());
  ASSERT_GE(a, 0);
  ASSERT_GE(b, 0);
  EXPECT_TRUE(set.Write(a, "new a"));
  EXPECT_TRUE(set.Write(b, "new b"));
  EXPECT_EQ(Slurp(d / "a.shp"), "old a");
  ASSERT_TRUE(set.Commit()) << set.Error();
  EXPECT_EQ(Slurp(d / "a.shp"), "new a");
  EXPECT_EQ(Slurp(d / "a.dbf"), "new b");
  EXPECT_EQ(fs::status(d / "a.shp").permissions() & fs::perms::all,
            fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_EQ(EntryCount(d), 2u);
}

TEST(SafeFile, AFailureLeavesTheOldFilesAndNoTemporaries) {
  fs::path d = FreshDir("fail");
  { std::ofstream(d / "a.shp") << "old a"; }
  SafeFileSet set;
  int a = set.Open((d / "a.shp").string());
  ASSERT_TRUE(set.Write(a, "new a"));
  set.Fail("the writer found a fault");
  EXPECT_FALSE(set.Commit());
  EXPECT_EQ(set.Error(), "the writer found a fault");
  EXPECT_EQ(Slurp(d / "a.shp"), "old a");
  EXPECT_EQ(EntryCount(d), 1u);
}

TEST(SafeFile, ReadOnlyTargetOrFolderIsRefused) {
  if (::geteuid() == 0) GTEST_SKIP() << "root writes everywhere";
  fs::path d = FreshDir("ro");
  { std::ofstream(d / "a.shp") << "old"; }
  ::chmod((d / "a.shp").c_str(), 0444);
  std::string why;
  EXPECT_FALSE(SafeWriteFile((d / "a.shp").string(), "new", &why));
  EXPECT_NE(why.find("read-only"), std::string::npos) << why;
  ::chmod((d / "a.shp").c_str(), 0644);
  ::chmod(d.c_str(), 0555);
  EXPECT_FALSE(SafeWriteFile((d / "a.shp").string(), "new", &why));
  EXPECT_NE(why.find("read-only"), std::string::npos) << why;
  ::chmod(d.c_str(), 0755);
  EXPECT_EQ(Slurp(d / "a.shp"), "old");
}

TEST(SafeFile, AFullDiskLeavesTheOldFile) {
  fs::path d = FreshDir("full");
  { std::ofstream(d / "a.shp") << "old"; }
  pid_t pid = ::fork();
  if (pid == 0) {
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit lim{1000, 1000};
    ::setrlimit(RLIMIT_FSIZE, &lim);
    std::string why;
    bool ok = SafeWriteFile((d / "a.shp").string(), std::string(5000, 'x'), &why);
    ::_exit(!ok && why.find("too large") != std::string::npos ? 0 : 1);
  }
  int status = 0;
  ::waitpid(pid, &status, 0);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  EXPECT_EQ(Slurp(d / "a.shp"), "old");
  EXPECT_EQ(EntryCount(d), 1u);
}
