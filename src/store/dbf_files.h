#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace velmora {

// One open file of the attribute store, read and written at offsets. Reads that follow
// each other through the file go through a read-ahead window, so that a walk over the rows
// costs one system call a window instead of one a row; a read elsewhere takes just its
// bytes. Writes go straight to the file and into the window.
class WindowedFile {
public:
  // Create makes a new, empty file (an old one of that name is cut to nothing).
  enum class Mode { Read, ReadWrite, Create };

  WindowedFile() = default;
  ~WindowedFile() { Close(); }
  WindowedFile(const WindowedFile&) = delete;
  WindowedFile& operator=(const WindowedFile&) = delete;

  bool Open(const std::string& path, Mode mode);
  void Close();
  bool IsOpen() const { return fd_ >= 0; }
  bool Writable() const { return writable_; }
  int Fd() const { return fd_; }
  // Length of the file now; -1 when closed.
  int64_t Size() const;
  // Reads up to `n` bytes at `off`; returns how many there were.
  size_t ReadAt(uint64_t off, void* dst, size_t n);
  bool WriteAt(uint64_t off, const void* src, size_t n);
  // The errno of the last failed open, read or write; 0 when none failed.
  int Error() const { return err_; }

private:
  int fd_ = -1;
  bool writable_ = false;
  int err_ = 0;
  std::unique_ptr<uint8_t[]> win_;
  size_t winCap_ = 0; // as large as the file was at the open, within bounds
  uint64_t winOff_ = 0;
  size_t winLen_ = 0;                  // valid bytes of the window
  uint64_t lastOff_ = 0, lastEnd_ = 0; // the read before, to tell a walk from a jump
};

// The open dbf and swap files of a layer (DbfBlock::Files). When the last row holding it
// goes, the files are closed and a swap file left behind is deleted.
struct DbfFiles {
  std::string DbfPath;
  WindowedFile Dbf;
  std::string SwapPath;
  WindowedFile Swap;
  // The row held by each slot of the swap file, so that a save visits only those rows.
  std::vector<int32_t> SlotRows;

  DbfFiles() = default;
  ~DbfFiles();
  DbfFiles(const DbfFiles&) = delete;
  DbfFiles& operator=(const DbfFiles&) = delete;
};

} // namespace velmora
