#pragma once
// What the reader, the writer and the record side share inside the store.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "model/session.h"

namespace velmora::shpio {

// A whole file in memory: mapped when the system allows, else read. False when the file
// can't be opened or read.
class FileBytes {
public:
  FileBytes() = default;
  FileBytes(const FileBytes&) = delete;
  FileBytes& operator=(const FileBytes&) = delete;
  ~FileBytes();
  const uint8_t* data() const { return map_ ? map_ : buf_.get(); }
  size_t size = 0;

private:
  friend bool ReadWholeFile(const std::string& path, FileBytes& out);
  std::unique_ptr<uint8_t[]> buf_;
  uint8_t* map_ = nullptr;
};
bool ReadWholeFile(const std::string& path, FileBytes& out);

// Asks for large pages under a big block about to be filled.
void AdviseHugePages(void* p, size_t bytes);

// The frame record of slot 0: one part of five vertices.
void MakeFrameRecord(ShpRecord& r);
// Sets the record to the state of a deleted empty feature: no counters, one empty part
// holding one point at (x, y), the box on that point.
void MakeEmptyDeleted(ShpRecord& r, double x, double y);
// The vertex, Z and M arrays of `part` made to fit `shapeType`.
void FitPartToType(ShpPart& part, int shapeType);

} // namespace velmora::shpio
