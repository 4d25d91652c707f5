#pragma once
#include <cstdint>
#include <string>

namespace velmora {

// Bytes the system can still give this process without swapping others out (MemAvailable
// of the kernel, with the free swap); 0 when unknown.
uint64_t AvailableMemory();
// "" when `bytes` for a picture of width by height pixels fit in memory, else why not:
// "20000 x 20000 pixels needs 1145 MB, 800 MB free".
std::string MemoryRefusal(uint64_t bytes, int64_t width, int64_t height);

} // namespace velmora
