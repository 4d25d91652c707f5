#include "store/file_copy.h"

#include <algorithm>
#include <cerrno>
#include <linux/fs.h>
#include <memory>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "model/safe_file.h"

namespace velmora {

namespace {

bool Fail(std::string& why, int err) {
  why = ErrnoText(err ? err : EIO);
  return false;
}

} // namespace

bool CopyFileBytes(int src, int dst, uint64_t bytes, std::string& why) {
  struct stat st {};
  if (::fstat(src, &st) != 0) return Fail(why, errno);
  // A clone shares the whole file; what lies past `bytes` is cut off again.
  if (uint64_t(st.st_size) >= bytes && ::ioctl(dst, FICLONE, src) == 0)
    return ::ftruncate(dst, off_t(bytes)) == 0 || Fail(why, errno);
  off_t in = 0, out = 0;
  bool kernel = true;
  std::unique_ptr<char[]> buf;
  constexpr size_t kChunk = 1 << 20;
  while (uint64_t(in) < bytes) {
    size_t want = size_t(std::min<uint64_t>(bytes - uint64_t(in), 64u << 20));
    if (kernel) {
      ssize_t n = ::copy_file_range(src, &in, dst, &out, want, 0);
      if (n > 0) continue;
      if (n == 0) return Fail(why, EIO); // the file is shorter than it said
      if (errno == EINTR) continue;
      if (errno != EXDEV && errno != ENOSYS && errno != EINVAL && errno != EOPNOTSUPP)
        return Fail(why, errno);
      kernel = false; // not between these files: copy through memory
    }
    if (!buf) buf = std::make_unique<char[]>(kChunk);
    ssize_t n = ::pread(src, buf.get(), std::min(want, kChunk), in);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return Fail(why, n < 0 ? errno : EIO);
    for (ssize_t done = 0; done < n;) {
      ssize_t w = ::pwrite(dst, buf.get() + done, size_t(n - done), out + done);
      if (w < 0 && errno == EINTR) continue;
      if (w <= 0) return Fail(why, w < 0 ? errno : ENOSPC);
      done += w;
    }
    in += n;
    out += n;
  }
  return true;
}

} // namespace velmora
