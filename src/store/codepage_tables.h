#pragma once
#include <cstdint>

namespace velmora {

// The upper half of a single-byte code page: the Unicode code point of bytes 0x80 .. 0xFF.
// The lower half of every page listed is ASCII. Sorted by page number.
struct SingleBytePage {
  int Page;
  const uint16_t* Upper; // 128 entries
};

extern const SingleBytePage kSingleBytePages[];
extern const int kSingleBytePageCount;

} // namespace velmora
