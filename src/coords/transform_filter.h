#pragma once
#include <iosfwd>
#include <string>
#include <vector>

#include "model/session.h"

namespace velmora {

// The options of `velmora --transform`.
struct TransformOptions {
  int Datum = kWgs84Idx; // record of the grid side
  std::string PrjFile;   // when set, the record is the one this .prj file adds
  int Zone = 0;          // 0: each point's own zone (forward only)
  bool South = false;
  bool Inverse = false; // grid "x y" to "lat lon"
};

// Reads the arguments that follow "--transform" (a leading "--transform" is skipped).
// False with a message in `error` on an unknown or malformed argument.
bool ParseTransformArgs(const std::vector<std::string>& args, TransformOptions& opt,
                        std::string& error);

// The filter: one result line per input line of two numbers. Forward, "lat lon" degrees to
// "x y" metres through LatLonToUTM; inverse, "x y" to "lat lon" through UTMToLatLon. Numbers
// are written with 17 significant digits. A line that is not two numbers gives an empty
// line out and a message on `err`, and the run goes on. Returns 0 when every line was
// converted, 1 when some were not, 2 when the options can't be used (nothing is read).
int RunTransformFilter(Session& s, std::istream& in, std::ostream& out, std::ostream& err,
                       const TransformOptions& opt);

} // namespace velmora
