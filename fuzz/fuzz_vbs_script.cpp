// The script engine over any text: parse, then run with a host that cancels soon, so that
// a loop without end stops; nothing may crash or allocate without bound.
#include <cstddef>
#include <cstdint>
#include <string>

#include "vbs/interp.h"

namespace {
struct QuietHost : vbs::EngineHost {
  int asks = 0;
  int MsgBox(const std::string&, int, const std::string&) override { return 1; }
  bool Cancelled() override { return ++asks > 20; }
};
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string text(reinterpret_cast<const char*>(data), size);
  QuietHost host;
  vbs::Interp in(&host);
  in.ExecuteStatement(text);
  vbs::Value v;
  in.Eval(text, v);
  return 0;
}
