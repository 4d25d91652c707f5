#include "network/walk_line.h"

#include <algorithm>
#include <cmath>

#include "store/shp_access.h"

namespace velmora {

double WalkLine(const ShpRecord& r, int a, XY pointA, int b, XY pointB, std::vector<XY>* pts) {
  XY from = pointA, to = pointB;
  if (a > b) {
    std::swap(a, b);
    std::swap(from, to);
  }
  if (pts) pts->assign(1, from);
  double len = 0;
  XY last = from;
  auto add = [&](XY p) {
    const double dx = p.X - last.X, dy = p.Y - last.Y;
    len += std::sqrt(dx * dx + dy * dy);
    last = p;
    if (pts) pts->push_back(p);
  };
  long hi = long(b) - 1; // the last vertex walked
  const long lo = std::max(a, 0);
  for (const ShpPart& part : r.Parts()) {
    // Each part begins again at the start point, which stands at index 0 of the path.
    hi = std::min(hi, long(shpio::LiveCount(part)) - 1);
    auto P = part.PartPoints();
    for (long v = lo; v <= hi; ++v) add(P[size_t(v)]);
    add(to);
  }
  return len;
}

} // namespace velmora
