// Writes that fail: a row that does not reach the swap file is reported and kept out of
// the table, an undo that cannot finish leaves its group whole, and a save that cannot
// write every row keeps the edits. The full disk is a file-size limit in a child process.
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "dbf_fixture.h"
#include "store/dbf_store.h"

using namespace velmora;
using namespace velmora::test;

namespace {

struct Table : SmallTable {
  explicit Table(int n) : SmallTable("dbf-fail", n, 3, RowNumber) {}
  // The swap file's descriptor made read-only under the store, as a file gone bad would be.
  void BreakSwap() {
    int ro = ::open(B().SwapPath.c_str(), O_RDONLY);
    ASSERT_GE(ro, 0);
    ASSERT_EQ(::dup2(ro, B().SwapFile), B().SwapFile);
    ::close(ro);
  }
};

// Runs `body` in a child process whose files may not grow past `limit` bytes (a full disk);
// the child's exit code is the number of the first check that failed, 0 when all held.
int UnderSizeLimit(off_t limit, const std::function<int()>& body) {
  pid_t pid = ::fork();
  if (pid == 0) {
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit lim{rlim_t(limit), rlim_t(limit)};
    ::setrlimit(RLIMIT_FSIZE, &lim);
    ::_exit(body());
  }
  int status = 0;
  ::waitpid(pid, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 100;
}

} // namespace

TEST(DbfWriteFailure, ASwapWriteThatFailsIsReportedAndTheCellKeepsItsValue) {
  Table t(5);
  t.Edit(1, "one");
  ASSERT_EQ(t.s.DbfErr, 0);
  t.host.logged.clear();
  t.BreakSwap();
  t.Edit(3, "three");
  EXPECT_EQ(t.s.DbfErr, 1);
  ASSERT_EQ(t.host.logged.size(), 2u);
  EXPECT_EQ(t.host.logged[0], " *** Data Edit roads.shp has been canceled *** ");
  EXPECT_EQ(t.host.logged[1], "swap file " + t.B().SwapPath + ": Bad file descriptor");
  EXPECT_EQ(t.B().SwapIndex[3], -1) << "no slot for a row that is not there";
  EXPECT_EQ(t.B().SwapTop, 0);
  EXPECT_EQ(t.Code(3), "r3");
  EXPECT_EQ(t.Code(1), "one");
  // What did reach the swap file is saved.
  SaveDbf(t.s, t.lyr);
  EXPECT_EQ(t.s.DbfErr, 0);
  EXPECT_EQ(RowBytes(ReadFile(t.dbf), 1), " one          1");
  EXPECT_EQ(RowBytes(ReadFile(t.dbf), 3), " r3           3");
}

TEST(DbfWriteFailure, AFullDiskStopsTheEditAndAnAddedRowIsNoRow) {
  Table t(5);
  std::string before = ReadFile(t.dbf);
  int code = UnderSizeLimit(8, [&] {
    t.Edit(2, "two");
    if (t.s.DbfErr != 1) return 1;
    if (t.host.logged.size() != 2) return 2;
    if (t.host.logged[1] != "swap file " + t.B().SwapPath + ": file too large") return 3;
    if (t.B().DbfChanged) return 4;
    if (t.Code(2) != "r2") return 5;
    AddDbfRec(t.s, t.lyr, 5);
    if (t.s.DbfErr != 1 || t.B().DbfRecCount != 5) return 6;
    return 0;
  });
  EXPECT_EQ(code, 0);
  EXPECT_EQ(ReadFile(t.dbf), before);
}

TEST(DbfWriteFailure, AnUndoThatCannotFinishPutsBackWhatItChanged) {
  Table t(5);
  t.Edit(0, "zero"); // row 0 has its slot; row 3 would need a new one
  NoteDataUndo(t.s, t.lyr, 1, 1);
  AddDataUndoItem(t.s, t.lyr, 4, 1, "four");
  t.Edit(0, "nil");
  int code = UnderSizeLimit(off_t(t.B().DbfRecLen + 1), [&] {
    UndoDataEdit(t.s, t.lyr, true);
    if (t.s.DbfErr != 1) return 1;
    if (t.Code(0) != "nil") return 2; // traded, then traded back
    if (t.Code(3) != "r3") return 3;
    const DataUndoJournal& j = t.B().DataUndo;
    if (j.UndoPos != 1) return 4; // still to be undone
    const auto& items = j.UndoGroups[1].Items;
    if (items[0].Value != "zero  " || items[1].Value != "four") return 5;
    return 0;
  });
  EXPECT_EQ(code, 0);
  // Without the limit the same undo goes through.
  UndoDataEdit(t.s, t.lyr, true);
  EXPECT_EQ(t.Code(0), "zero");
  EXPECT_EQ(t.Code(3), "four");
  EXPECT_EQ(t.B().DataUndo.UndoPos, 0);
}

TEST(DbfWriteFailure, ASaveThatCannotWriteEveryRowKeepsTheEdits) {
  Table t(3);
  t.Edit(1, "one");
  AddDbfRec(t.s, t.lyr, 3);
  t.Edit(3, "three");
  std::string before = ReadFile(t.dbf);
  int code = UnderSizeLimit(off_t(before.size()), [&] { // the table may not grow
    SaveDbf(t.s, t.lyr);
    if (t.s.DbfErr != 1) return 1;
    if (t.s.DbfErrText.find("roads.dbf: file too large") == std::string::npos) return 2;
    if (!t.B().DbfChanged || !t.B().SwapOpen) return 3;
    if (t.Code(3) != "three" || t.Code(1) != "one") return 4;
    return 0;
  });
  EXPECT_EQ(code, 0);
  SaveDbf(t.s, t.lyr);
  EXPECT_EQ(t.s.DbfErr, 0);
  std::string after = ReadFile(t.dbf);
  EXPECT_EQ(LayoutOf(after).RecCount, 4);
  EXPECT_EQ(RowBytes(after, 3), " three         ");
}

TEST(DbfWriteFailure, TheTableIsReadThroughAReadOnlyDescriptorUntilAWriteIsAsked) {
  Table t(3);
  auto mode = [&] { return ::fcntl(t.B().DbfFile, F_GETFL) & O_ACCMODE; };
  EXPECT_EQ(mode(), O_RDONLY);
  t.Edit(2, "two");
  EXPECT_EQ(t.Code(1), "r1");
  EXPECT_EQ(mode(), O_RDONLY) << "edits go to the swap file";
  SaveDbf(t.s, t.lyr);
  EXPECT_EQ(mode(), O_RDONLY) << "a save writes a new file and reads it again";
  EXPECT_EQ(t.Code(2), "two");
}

TEST(DbfWriteFailure, TheSwapFileGoesToTheUsersTemporaryFolderWhenTheLayersCannotTakeIt) {
  Table t(3);
  std::string tmp = TempDir("dbf-usertmp");
  const char* old = std::getenv("TMPDIR");
  std::string keep = old ? old : "";
  ::setenv("TMPDIR", tmp.c_str(), 1);
  // The layer's folder is gone from under the open table: no file can be made there.
  std::string moved = t.dir.substr(0, t.dir.size() - 1) + "-moved/";
  ASSERT_EQ(::rename(t.dir.c_str(), moved.c_str()), 0);
  t.Edit(1, "one");
  EXPECT_EQ(t.s.DbfErr, 0);
  EXPECT_EQ(FolderOf(t.B().SwapPath), tmp);
  EXPECT_EQ(t.Code(1), "one");
  CloseDbf(t.s, t.lyr);
  EXPECT_TRUE(FilesStartingWith(tmp, "qmt").empty());
  ::rename(moved.c_str(), t.dir.c_str());
  if (old)
    ::setenv("TMPDIR", keep.c_str(), 1);
  else
    ::unsetenv("TMPDIR");
}

TEST(DbfWriteFailure, AReadOnlyFolderOpensAndEditsIntoTheTemporaryFolder) {
  if (::geteuid() == 0) GTEST_SKIP() << "permissions do not bind root";
  Table t(3);
  std::string before = ReadFile(t.dbf);
  ::chmod(t.dbf.c_str(), 0444);
  ::chmod(t.dir.c_str(), 0555);
  OpenDbf(t.s, t.lyr, t.shp);
  EXPECT_EQ(t.s.DbfErr, 0);
  t.Edit(0, "zero");
  EXPECT_EQ(t.s.DbfErr, 0);
  EXPECT_NE(FolderOf(t.B().SwapPath), t.dir);
  EXPECT_EQ(t.Code(0), "zero");
  SaveDbf(t.s, t.lyr);
  EXPECT_EQ(t.s.DbfErr, 1);
  EXPECT_EQ(t.s.DbfErrText, "roads.dbf: read-only");
  EXPECT_EQ(t.B().DbfChanged, -1);
  EXPECT_EQ(t.Code(0), "zero");
  CloseDbf(t.s, t.lyr);
  ::chmod(t.dir.c_str(), 0755);
  ::chmod(t.dbf.c_str(), 0644);
  EXPECT_EQ(ReadFile(t.dbf), before);
}
