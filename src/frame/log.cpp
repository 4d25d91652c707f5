#include "frame/log.h"

namespace velmora {

namespace {
constexpr size_t kKeepBelow = 27000; // below this length the last prompt is the cut mark
constexpr size_t kCutAbove = 49000;  // above it the log is cut down to the mark
} // namespace

void LogInit(Session& s, const std::string& banner) {
  s.CommandBar = std::string(kPrompt) + banner + "\r\n" + kPrompt;
  s.LogKeepFrom = 0;
}

void LogMsg(Session& s, const std::string& text) {
  if (s.MapView.MapTarget != 1) return;
  s.CommandBar += text;
  s.CommandBar += "\r\n";
  s.CommandBar += kPrompt;
  size_t len = s.CommandBar.size();
  if (len < kKeepBelow) s.LogKeepFrom = int32_t(len - 5);
  if (len > kCutAbove) {
    size_t from = size_t(s.LogKeepFrom);
    s.CommandBar = from < len ? s.CommandBar.substr(from) : std::string();
  }
  s.host->LogAppended(text);
  if (text.rfind(" *** ", 0) == 0) s.host->Beep();
}

} // namespace velmora
