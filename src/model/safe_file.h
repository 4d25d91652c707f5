#pragma once
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

// New contents for one or more files, written under temporary names in each target's
// folder and renamed over the targets only when every one of them is complete and
// flushed. Until Commit succeeds the old files are untouched; a set that is destroyed
// without a successful Commit removes its temporaries.
class SafeFileSet {
public:
  SafeFileSet() = default;
  SafeFileSet(const SafeFileSet&) = delete;
  SafeFileSet& operator=(const SafeFileSet&) = delete;
  ~SafeFileSet();

  // Opens a new temporary file beside `target` for writing and returns its descriptor,
  // or -1 with Error() saying why ("read-only" when the target or its folder cannot be
  // written). The temporary takes the target's permission bits when the target exists.
  int Open(const std::string& target);
  // Writes all of `n` bytes at the current position; false with Error() on any failure.
  bool Write(int fd, const void* data, size_t n);
  bool Write(int fd, std::string_view bytes) { return Write(fd, bytes.data(), bytes.size()); }
  // The temporary's own path, for writers that need to reopen it.
  std::string TempPath(int fd) const;

  // Flushes and closes every temporary, then renames each over its target and flushes
  // the folders. False with Error() when any step fails; before the first rename the old
  // files are all still intact and the temporaries are removed.
  bool Commit();
  // Removes the temporaries without touching the targets.
  void Abandon();

  const std::string& Error() const { return error_; }
  // Records a failure found by the caller (e.g. a writer's own check), so that Commit
  // refuses and the reason is kept.
  void Fail(std::string why);

private:
  struct Entry {
    std::string target, temp;
    int fd = -1;
  };
  Entry* Find(int fd);
  std::vector<Entry> entries_;
  std::string error_;
  bool failed_ = false;
};

// Writes `bytes` to `path` through a SafeFileSet of one file. On failure the old file is
// untouched and `why` (when given) says what went wrong.
bool SafeWriteFile(const std::string& path, std::string_view bytes, std::string* why = nullptr);

// Flushes a finished file and its folder to the disk; false when the file cannot be synced.
bool SyncFile(const std::string& path);

// The text of an errno value as the log shows it: "read-only", "disk full", ...
std::string ErrnoText(int err);

} // namespace velmora
