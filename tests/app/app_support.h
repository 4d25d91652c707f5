#pragma once
#include <sstream>
#include <string>
#include <vector>

#include "test_support.h"

namespace velmora::test {

// A word for the shell, in single quotes.
inline std::string Quote(const std::string& s) {
  std::string q = "'";
  for (char c : s) q += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return q + "'";
}

// Runs the built program with `args`; its standard output.
inline std::string Velmora(const std::string& args, int* status, bool withStderr = false) {
  std::string cmd = Quote(VELMORA_BINARY) + " " + args + (withStderr ? " 2>&1" : " 2>/dev/null");
  return RunCmd(cmd, status);
}

inline std::vector<std::string> Lines(const std::string& out) {
  std::vector<std::string> v;
  std::istringstream in(out);
  for (std::string l; std::getline(in, l);) v.push_back(l);
  return v;
}

} // namespace velmora::test
