#include "model/file_util.h"
#include "session/commands.h"

namespace velmora {

void ArgStrSplit(Session& s, const std::string& line) {
  const std::string t = Trim(line);
  s.ArgStr.assign(1, std::string());
  bool quoted = false;
  for (size_t i = 0; i < t.size(); ++i) {
    char c = t[i];
    if (c == '"' || c == '\'') {
      if (i + 1 < t.size() && t[i + 1] == c) {
        // A doubled quote: one quote character, and the state stays as it was.
        s.ArgStr.back() += c;
        ++i;
      } else {
        quoted = !quoted;
      }
    } else if (c == ' ' && !quoted) {
      if (!s.ArgStr.back().empty()) s.ArgStr.emplace_back();
    } else {
      s.ArgStr.back() += c;
    }
  }
}

bool ArgStrEndsInExit(const Session& s) {
  return !s.ArgStr.empty() && UCase(s.ArgStr.back()) == "EXIT";
}

} // namespace velmora
