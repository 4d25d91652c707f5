#include <exception>
#include <fstream>

#include "frame/log.h"
#include "model/file_util.h"
#include "session/commands.h"

namespace velmora {

namespace {

// One line of text ending in CR LF, LF or CR; false at the end of the file.
bool ReadTextLine(std::istream& in, std::string& line) {
  line.clear();
  std::istream::int_type c;
  bool any = false;
  while ((c = in.get()) != std::istream::traits_type::eof()) {
    any = true;
    if (c == '\n') return true;
    if (c == '\r') {
      if (in.peek() == '\n') in.get();
      return true;
    }
    line += char(c);
  }
  return any;
}

} // namespace

void RunLstFile(Session& s, const std::string& path) {
  LogMsg(s, "Executing Lst file " + path);
  try {
    std::ifstream in(NativePath(path), std::ios::binary);
    if (!in) {
      LogMsg(s, " *** Error in RunLstFile ***");
      return;
    }
    std::string line;
    bool first = true;
    while (ReadTextLine(in, line)) {
      // A byte order mark left by an editor is no part of the first command.
      if (first && line.rfind("\xEF\xBB\xBF", 0) == 0) line.erase(0, 3);
      first = false;
      ArgStrSplit(s, line);
      bool last = ArgStrEndsInExit(s);
      ArgStrExecute(s);
      if (last) break;
    }
  } catch (const std::exception&) {
    LogMsg(s, " *** Error in RunLstFile ***");
    return;
  }
  LogMsg(s, path + " has been executed Successfully ");
}

} // namespace velmora
