// The windowed file under the store: reads see every write, whichever way they come.

#include "dbf_fixture.h"
#include "store/dbf_files.h"

using namespace velmora;
using namespace velmora::test;

TEST(DbfFiles, ReadsSeeWritesInsideAndOutsideTheWindow) {
  std::string dir = TempDir("dbf-files");
  std::string bytes(600000, '\0');
  for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = char(i * 7 % 251);
  WriteFile(dir + "f.bin", bytes);

  WindowedFile f;
  ASSERT_TRUE(f.Open(dir + "f.bin", WindowedFile::Mode::ReadWrite));
  EXPECT_EQ(f.Size(), 600000);
  // A walk through the file in records of 37 bytes, with writes in between.
  char rec[37];
  for (uint64_t off = 0; off + 37 <= 600000; off += 37) {
    ASSERT_EQ(f.ReadAt(off, rec, 37), 37u);
    ASSERT_EQ(std::string(rec, 37), bytes.substr(off, 37)) << off;
    if (off % (37 * 1000) == 0) { // into the window ahead, and behind it
      std::string patch = "patched-" + std::to_string(off);
      ASSERT_TRUE(f.WriteAt(off + 100, patch.data(), patch.size()));
      bytes.replace(size_t(off + 100), patch.size(), patch);
      if (off >= 5000) {
        ASSERT_TRUE(f.WriteAt(off - 5000, "x", 1));
        bytes[size_t(off - 5000)] = 'x';
      }
    }
  }
  // Jumps back and forth, and a read past the end.
  for (uint64_t off : {599990ull, 10ull, 300000ull, 5000ull, 599999ull}) {
    size_t got = f.ReadAt(off, rec, 20);
    EXPECT_EQ(got, std::min<size_t>(20, size_t(600000 - off)));
    EXPECT_EQ(std::string(rec, got), bytes.substr(size_t(off), got));
  }
  // Appending grows the file and reads find the new bytes.
  ASSERT_TRUE(f.WriteAt(600000, "tail", 4));
  EXPECT_EQ(f.ReadAt(599998, rec, 6), 6u);
  EXPECT_EQ(std::string(rec + 2, 4), "tail");
  f.Close();
  bytes += "tail";
  EXPECT_EQ(ReadFile(dir + "f.bin"), bytes);
}

TEST(DbfFiles, AReadOnlyFileRefusesWrites) {
  std::string dir = TempDir("dbf-ro");
  WriteFile(dir + "f.bin", "abc");
  WindowedFile f;
  ASSERT_TRUE(f.Open(dir + "f.bin", WindowedFile::Mode::Read));
  EXPECT_FALSE(f.WriteAt(0, "x", 1));
  char c[3];
  EXPECT_EQ(f.ReadAt(0, c, 3), 3u);
  EXPECT_FALSE(f.Open(dir + "missing.bin", WindowedFile::Mode::Read));
  EXPECT_EQ(f.ReadAt(0, c, 3), 0u);
}
