#pragma once
#include <cstdint>
#include <string>

namespace velmora {

// Copies the first `bytes` of the file open at `src` into the empty file open at `dst`,
// sharing the blocks where the file system can, else inside the kernel, else through a
// buffer. False with `why` ("disk full", ...) on failure.
bool CopyFileBytes(int src, int dst, uint64_t bytes, std::string& why);

} // namespace velmora
