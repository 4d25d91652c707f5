#include "model/safe_file.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "model/file_util.h"

namespace velmora {

namespace {

std::string DirOf(const std::string& nativePath) {
  size_t p = nativePath.rfind('/');
  if (p == std::string::npos) return ".";
  if (p == 0) return "/";
  return nativePath.substr(0, p);
}

void SyncDir(const std::string& dir) {
  int fd = ::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return;
  ::fsync(fd);
  ::close(fd);
}

} // namespace

std::string ErrnoText(int err) {
  switch (err) {
  case EROFS:
  case EACCES:
  case EPERM:
    return "read-only";
  case ENOSPC:
  case EDQUOT:
    return "disk full";
  case EFBIG:
    return "file too large";
  case ENOENT:
    return "folder not found";
  case EBUSY:
  case ETXTBSY:
    return "file locked";
  default:
    return std::strerror(err);
  }
}

SafeFileSet::~SafeFileSet() {
  Abandon();
}

void SafeFileSet::Fail(std::string why) {
  if (!failed_) error_ = std::move(why);
  failed_ = true;
}

SafeFileSet::Entry* SafeFileSet::Find(int fd) {
  for (Entry& e : entries_)
    if (e.fd == fd && fd >= 0) return &e;
  return nullptr;
}

int SafeFileSet::Open(const std::string& target) {
  std::string native = NativePath(target);
  std::string dir = DirOf(native);
  struct stat st {};
  bool exists = ::stat(native.c_str(), &st) == 0;
  if (exists && ::access(native.c_str(), W_OK) != 0) {
    Fail(target + ": read-only");
    return -1;
  }
  if (::access(dir.c_str(), W_OK) != 0) {
    Fail(dir + ": " + ErrnoText(errno));
    return -1;
  }
  std::string temp = TempName(dir, "qmt");
  if (temp.empty()) {
    Fail(dir + ": " + ErrnoText(errno ? errno : EACCES));
    return -1;
  }
  int fd = ::open(temp.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
  if (fd < 0) {
    int err = errno;
    ::unlink(temp.c_str());
    Fail(target + ": " + ErrnoText(err));
    return -1;
  }
  if (exists) ::fchmod(fd, st.st_mode & 07777);
  entries_.push_back({native, temp, fd});
  return fd;
}

bool SafeFileSet::Write(int fd, const void* data, size_t n) {
  Entry* e = Find(fd);
  if (!e) {
    Fail("write to a file that is not open");
    return false;
  }
  const char* p = static_cast<const char*>(data);
  while (n > 0) {
    ssize_t w = ::write(fd, p, n);
    if (w < 0) {
      if (errno == EINTR) continue;
      Fail(e->target + ": " + ErrnoText(errno));
      return false;
    }
    if (w == 0) {
      Fail(e->target + ": " + ErrnoText(ENOSPC));
      return false;
    }
    p += w;
    n -= size_t(w);
  }
  return true;
}

std::string SafeFileSet::TempPath(int fd) const {
  for (const Entry& e : entries_)
    if (e.fd == fd && fd >= 0) return e.temp;
  return "";
}

bool SafeFileSet::Commit() {
  if (!failed_) {
    for (Entry& e : entries_) {
      if (::fsync(e.fd) != 0) {
        Fail(e.target + ": " + ErrnoText(errno));
        break;
      }
      int fd = e.fd;
      e.fd = -1;
      if (::close(fd) != 0) {
        Fail(e.target + ": " + ErrnoText(errno));
        break;
      }
    }
  }
  if (failed_) {
    Abandon();
    return false;
  }
  for (size_t i = 0; i < entries_.size(); ++i) {
    Entry& e = entries_[i];
    if (::rename(e.temp.c_str(), e.target.c_str()) != 0) {
      Fail(e.target + ": " + ErrnoText(errno));
      // The renames before this one are done; the rest are abandoned.
      entries_.erase(entries_.begin(), entries_.begin() + long(i));
      Abandon();
      return false;
    }
    e.temp.clear();
  }
  for (const Entry& e : entries_) SyncDir(DirOf(e.target));
  entries_.clear();
  return true;
}

void SafeFileSet::Abandon() {
  for (Entry& e : entries_) {
    if (e.fd >= 0) ::close(e.fd);
    e.fd = -1;
    if (!e.temp.empty()) ::unlink(e.temp.c_str());
  }
  entries_.clear();
}

bool SyncFile(const std::string& path) {
  std::string native = NativePath(path);
  int fd = ::open(native.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  bool ok = ::fsync(fd) == 0;
  ::close(fd);
  if (ok) SyncDir(DirOf(native));
  return ok;
}

bool SafeWriteFile(const std::string& path, std::string_view bytes, std::string* why) {
  SafeFileSet set;
  int fd = set.Open(path);
  if (fd >= 0 && set.Write(fd, bytes) && set.Commit()) return true;
  if (why) *why = set.Error();
  return false;
}

} // namespace velmora
