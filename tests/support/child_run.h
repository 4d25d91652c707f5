#pragma once
// Faults that a test can't cause in its own process without harm: a disk that fills up, a
// folder that can't be written. Each runs in a forked child, which reports by exit code.
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace velmora::test {

// The exit code of a child that could not set up its fault.
inline constexpr int kChildSkipped = 77;

// Runs `body` in a forked child and returns its exit code (-1 when it died). The child
// leaves through _exit, so nothing of the test's state is torn down twice.
inline int InChild(const std::function<int()>& body) {
  std::fflush(nullptr);
  pid_t pid = ::fork();
  if (pid == 0) ::_exit(body());
  int status = 0;
  ::waitpid(pid, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// No file of this process may grow past `bytes`, as on a disk that is full: the write
// fails with EFBIG instead of raising SIGXFSZ. RLIM_INFINITY gives the room back.
inline void LimitFileSize(rlim_t bytes) {
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit lim{};
  ::getrlimit(RLIMIT_FSIZE, &lim);
  lim.rlim_cur = bytes;
  ::setrlimit(RLIMIT_FSIZE, &lim);
}

// Makes `dir` and its files read-only for the calling (child) process: by their modes for
// an ordinary user, and for root, who writes through modes, by a read-only bind in a mount
// namespace of the child's own. False when neither can be had.
inline bool MakeFolderReadOnly(const std::string& dir) {
  namespace fs = std::filesystem;
  if (::geteuid() != 0) {
    for (const auto& e : fs::directory_iterator(dir)) ::chmod(e.path().c_str(), 0444);
    return ::chmod(dir.c_str(), 0555) == 0;
  }
  if (::unshare(CLONE_NEWNS) != 0) return false;
  if (::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) return false;
  if (::mount(dir.c_str(), dir.c_str(), nullptr, MS_BIND, nullptr) != 0) return false;
  return ::mount(nullptr, dir.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr) == 0;
}

// Gives the folder and its files back their write modes (after MakeFolderReadOnly as an
// ordinary user), so that the test's cleanup can remove them.
inline void RestoreFolderModes(const std::string& dir) {
  namespace fs = std::filesystem;
  ::chmod(dir.c_str(), 0755);
  for (const auto& e : fs::directory_iterator(dir)) ::chmod(e.path().c_str(), 0644);
}

} // namespace velmora::test
