// libFuzzer target: any bytes as a pair of network files (.ntx then .net, split where the
// first two bytes say) for a layer of up to 4095 features. A damaged pair is refused or
// read whole, never read out of bounds; a table that is taken must hold only links that
// name features of the layer, within its own run of records.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "network/net_files.h"

using namespace velmora;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 4) return 0;
  const int recCount = (data[0] | (data[1] << 8)) & 0x0fff;
  const size_t split = std::min(size - 4, size_t(data[2] | (data[3] << 8)) * 8);
  const std::string_view all(reinterpret_cast<const char*>(data) + 4, size - 4);
  NetNodeTable t;
  std::string why;
  if (!ReadNetTables(all.substr(0, split), all.substr(split), recCount, t, why)) {
    if (why.empty() || t.Loaded) std::abort();
    return 0;
  }
  if (t.NetNodeUB != recCount || t.First.size() != size_t(recCount) + 2) std::abort();
  for (int n = 1; n <= recCount; ++n) {
    const NetLink* k = t.LinksOf(n);
    for (int c = 0; c <= t.LinkUB(n); ++c)
      if (k[c].LinkFeature < 1 || k[c].LinkFeature > recCount) std::abort();
  }
  return 0;
}
