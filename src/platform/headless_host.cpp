#include "platform/headless_host.h"

namespace velmora {

void HeadlessHost::LogAppended(const std::string& msg) {
  std::fwrite(msg.data(), 1, msg.size(), out_);
  std::fputc('\n', out_);
  std::fflush(out_);
}

} // namespace velmora
