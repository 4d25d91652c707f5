#pragma once
// Layers built in memory for the geometry tests: no files, features from plain vertex lists.
#include <utility>
#include <vector>

#include "model/session.h"

namespace velmora::test {

using Pts = std::vector<std::pair<double, double>>;

// A new user layer of `shapeType` at the end of the table; its number.
inline int MemLayer(Session& s, int shapeType) {
  s.LyrCount += 1;
  if (s.Lyr.Count() < s.LyrCount) s.Lyr.Resize(s.LyrCount);
  LyrRec& l = s.Lyr[s.LyrCount];
  l = LyrRec();
  l.LyrKind = 1;
  l.LyrName = "mem" + std::to_string(s.LyrCount);
  l.Fsource = "/mem/" + l.LyrName + ".shp";
  l.Shp.ShpType = shapeType;
  l.Shp.ShpRecs.resize(1);
  return s.LyrCount;
}

// Adds a feature with the given parts; its record number. Type 0 adds a deleted record.
inline int MemFeature(Session& s, int lyr, const std::vector<Pts>& parts, int type = -1) {
  LyrRec& l = s.Lyr[lyr];
  ShpRecord r;
  r.ShapeType = type < 0 ? l.Shp.ShpType : type;
  r.ResizeParts(int(parts.size()));
  bool first = true;
  for (size_t k = 0; k < parts.size(); ++k) {
    ShpPart& p = r.Part(int(k));
    p.Resize(parts[k].size());
    p.PartCount = int(parts[k].size());
    p.PartStart = r.NumPoints;
    for (size_t i = 0; i < parts[k].size(); ++i) {
      auto [x, y] = parts[k][i];
      p.PartPoints()[i] = XY{x, y};
      if (first || x < r.Xmin) r.Xmin = x;
      if (first || x > r.Xmax) r.Xmax = x;
      if (first || y < r.Ymin) r.Ymin = y;
      if (first || y > r.Ymax) r.Ymax = y;
      first = false;
    }
    r.NumPoints += int(parts[k].size());
  }
  l.Shp.ShpRecs.push_back(std::move(r));
  l.Shp.RecCount = int(l.Shp.ShpRecs.size()) - 1;
  size_t bytes = size_t(l.Shp.RecCount + 7) / 8 + 1;
  l.SelBits.resize(bytes, 0);
  l.QryBits.resize(bytes, 0);
  return l.Shp.RecCount;
}

inline Pts Square(double x, double y, double side) {
  return {{x, y}, {x, y + side}, {x + side, y + side}, {x + side, y}, {x, y}};
}

} // namespace velmora::test
