#include "store/dbf_files.h"

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "model/file_util.h"

namespace velmora {

namespace {
constexpr size_t kWindow = 256 * 1024;
constexpr size_t kMinWindow = 4096;
} // namespace

bool WindowedFile::Open(const std::string& path, Mode mode) {
  Close();
  int flags = mode == Mode::Read ? O_RDONLY : mode == Mode::ReadWrite ? O_RDWR : O_RDWR | O_CREAT;
  fd_ = ::open(NativePath(path).c_str(), flags | O_CLOEXEC, 0644);
  writable_ = fd_ >= 0 && mode != Mode::Read;
  winLen_ = 0;
  lastOff_ = lastEnd_ = 0;
  if (fd_ < 0) return false;
  // A small table gets a small window.
  int64_t size = Size();
  winCap_ = std::clamp(size_t(size < 0 ? 0 : size), kMinWindow, kWindow);
  return true;
}

void WindowedFile::Close() {
  if (fd_ >= 0) ::close(fd_);
  fd_ = -1;
  writable_ = false;
  winLen_ = 0;
  win_.reset();
}

int64_t WindowedFile::Size() const {
  if (fd_ < 0) return -1;
  struct stat st;
  return ::fstat(fd_, &st) == 0 ? int64_t(st.st_size) : -1;
}

size_t WindowedFile::ReadAt(uint64_t off, void* dst, size_t n) {
  if (fd_ < 0 || n == 0) return 0;
  bool walk = off >= lastOff_ && off <= lastEnd_ + kMinWindow;
  lastOff_ = off;
  lastEnd_ = off + n;
  if (off >= winOff_ && off + n <= winOff_ + winLen_) {
    std::memcpy(dst, win_.get() + (off - winOff_), n);
    return n;
  }
  if (!walk || n >= winCap_) { // a jump, or more than a window: straight from the file
    ssize_t got = ::pread(fd_, dst, n, off_t(off));
    return got > 0 ? size_t(got) : 0;
  }
  if (!win_) win_ = std::make_unique_for_overwrite<uint8_t[]>(winCap_);
  ssize_t got = ::pread(fd_, win_.get(), winCap_, off_t(off));
  winOff_ = off;
  winLen_ = got > 0 ? size_t(got) : 0;
  size_t have = std::min(n, winLen_);
  std::memcpy(dst, win_.get(), have);
  return have;
}

bool WindowedFile::WriteAt(uint64_t off, const void* src, size_t n) {
  if (fd_ < 0 || !writable_) return false;
  const auto* p = static_cast<const uint8_t*>(src);
  size_t done = 0;
  while (done < n) {
    ssize_t put = ::pwrite(fd_, p + done, n - done, off_t(off + done));
    if (put <= 0) return false;
    done += size_t(put);
  }
  // Keep the window true to the file where the write overlaps it.
  uint64_t a = std::max(off, winOff_), b = std::min(off + n, winOff_ + winLen_);
  if (a < b) std::memcpy(win_.get() + (a - winOff_), p + (a - off), size_t(b - a));
  return true;
}

DbfFiles::~DbfFiles() {
  Dbf.Close();
  if (Swap.IsOpen()) {
    Swap.Close();
    KillFile(SwapPath);
  }
}

} // namespace velmora
