#include "platform/memory_limit.h"

#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace velmora {

namespace {

uint64_t MegaBytes(uint64_t bytes) {
  return (bytes + (1u << 20) - 1) >> 20;
}

} // namespace

uint64_t AvailableMemory() {
  std::FILE* f = std::fopen("/proc/meminfo", "r");
  if (!f) {
    long pages = sysconf(_SC_AVPHYS_PAGES), size = sysconf(_SC_PAGESIZE);
    return pages > 0 && size > 0 ? uint64_t(pages) * uint64_t(size) : 0;
  }
  uint64_t avail = 0, swap = 0;
  char line[256];
  while (std::fgets(line, sizeof line, f)) {
    unsigned long long kb = 0;
    if (std::sscanf(line, "MemAvailable: %llu kB", &kb) == 1) avail = kb * 1024;
    if (std::sscanf(line, "SwapFree: %llu kB", &kb) == 1) swap = kb * 1024;
  }
  std::fclose(f);
  return avail ? avail + swap : 0;
}

std::string MemoryRefusal(uint64_t bytes, int64_t width, int64_t height) {
  uint64_t avail = AvailableMemory();
  if (avail == 0 || bytes <= avail) return "";
  return std::to_string(width) + " x " + std::to_string(height) + " pixels needs " +
         std::to_string(MegaBytes(bytes)) + " MB, " + std::to_string(avail >> 20) + " MB free";
}

} // namespace velmora
