#pragma once
#include <cstdio>

#include "platform/host.h"

namespace velmora {

// The host of a session without a window: every logged message is one line on an output
// stream (standard output by default), written at once; a yield does nothing and a
// question takes its default answer.
class HeadlessHost : public Host {
public:
  explicit HeadlessHost(std::FILE* out = stdout) : out_(out) {}
  void LogAppended(const std::string& msg) override;

private:
  std::FILE* out_;
};

} // namespace velmora
