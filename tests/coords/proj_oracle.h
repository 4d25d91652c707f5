#pragma once
#include <string>
#include <vector>

#include "test_support.h"

namespace velmora::test {

struct Pt {
  double A = 0, B = 0;
};

// Runs PROJ's cs2cs from `from` to `to` over the points (in cs2cs's own input order) and
// returns its first two output columns. Empty when cs2cs is missing or failed.
inline std::vector<Pt> Cs2cs(const std::string& from, const std::string& to,
                             const std::vector<Pt>& in) {
  std::string dir = TempDir("cs2cs");
  std::string text;
  char line[96];
  for (const Pt& p : in) {
    std::snprintf(line, sizeof line, "%.15f %.15f\n", p.A, p.B);
    text += line;
  }
  WriteFile(dir + "/in.txt", text);
  int status = -1;
  std::string out =
      RunCmd("cs2cs -f %.12f " + from + " +to " + to + " < " + dir + "/in.txt", &status);
  std::vector<Pt> res;
  if (status != 0) return res;
  const char* p = out.c_str();
  for (size_t i = 0; i < in.size(); ++i) {
    char* end = nullptr;
    Pt r;
    r.A = std::strtod(p, &end);
    if (end == p) return {};
    p = end;
    r.B = std::strtod(p, &end);
    if (end == p) return {};
    p = end;
    std::strtod(p, &end); // the height column
    p = end;
    res.push_back(r);
  }
  return res;
}

} // namespace velmora::test
