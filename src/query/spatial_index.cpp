#include "query/spatial_index.h"

#include <algorithm>
#include <cmath>

#include "query/spatial.h"

namespace velmora {

namespace {

constexpr uint32_t kFan = 16;
constexpr uint32_t kLeaf = 0x80000000u;

float Down(double v) {
  float f = float(v);
  return double(f) > v ? std::nextafter(f, -INFINITY) : f;
}
float Up(double v) {
  float f = float(v);
  return double(f) < v ? std::nextafter(f, INFINITY) : f;
}

struct Item {
  float x1, y1, x2, y2;
  int32_t id;
  float cx() const { return x1 * 0.5f + x2 * 0.5f; }
  float cy() const { return y1 * 0.5f + y2 * 0.5f; }
};

// Sort-tile-recursive order: vertical slices by centre X, each sorted by centre Y, so
// that runs of kFan make compact nodes.
template <class T, class Cx, class Cy> void TileOrder(std::vector<T>& v, Cx cx, Cy cy) {
  size_t n = v.size(), nodes = (n + kFan - 1) / kFan;
  size_t slices = size_t(std::ceil(std::sqrt(double(nodes))));
  size_t per = slices ? (n + slices - 1) / slices : n;
  std::sort(v.begin(), v.end(), [&](const T& a, const T& b) { return cx(a) < cx(b); });
  for (size_t i = 0; i < n; i += per) {
    auto e = v.begin() + ptrdiff_t(std::min(n, i + per));
    std::sort(v.begin() + ptrdiff_t(i), e, [&](const T& a, const T& b) { return cy(a) < cy(b); });
  }
}

} // namespace

BoxIndex BuildBoxIndex(const Session& s, int lyr) {
  BoxIndex ix;
  const ShpBlock& B = s.Lyr[lyr].Shp;
  ix.BoxGen = B.BoxGen;
  ix.RecCount = B.RecCount;
  std::vector<Item> items;
  int n = std::min<int>(B.RecCount, int(B.ShpRecs.size()) - 1);
  items.reserve(size_t(std::max(n, 0)));
  for (int r = 1; r <= n; ++r) {
    const ShpRecord& rec = B.ShpRecs[size_t(r)];
    if (rec.ShapeType == 0) continue;
    double x1 = Min(rec.Xmin, rec.Xmax), x2 = Max(rec.Xmin, rec.Xmax);
    double y1 = Min(rec.Ymin, rec.Ymax), y2 = Max(rec.Ymin, rec.Ymax);
    if (std::isnan(x1) || std::isnan(x2) || std::isnan(y1) || std::isnan(y2)) continue;
    items.push_back({Down(x1), Down(y1), Up(x2), Up(y2), r});
  }
  if (items.empty()) return ix;
  TileOrder(
      items, [](const Item& i) { return i.cx(); }, [](const Item& i) { return i.cy(); });
  ix.Ids.reserve(items.size());
  std::vector<BoxIndex::Node> level;
  for (size_t i = 0; i < items.size(); i += kFan) {
    size_t e = std::min(items.size(), i + kFan);
    BoxIndex::Node nd{items[i].x1, items[i].y1, items[i].x2,
                      items[i].y2, uint32_t(i), uint32_t(e - i) | kLeaf};
    for (size_t k = i; k < e; ++k) {
      nd.x1 = std::min(nd.x1, items[k].x1), nd.y1 = std::min(nd.y1, items[k].y1);
      nd.x2 = std::max(nd.x2, items[k].x2), nd.y2 = std::max(nd.y2, items[k].y2);
      ix.Ids.push_back(items[k].id);
    }
    level.push_back(nd);
  }
  // Upper levels: each level's nodes go to Nodes, their parents are made from them.
  while (true) {
    if (level.size() > 1)
      TileOrder(
          level, [](const BoxIndex::Node& a) { return a.x1 * 0.5f + a.x2 * 0.5f; },
          [](const BoxIndex::Node& a) { return a.y1 * 0.5f + a.y2 * 0.5f; });
    uint32_t base = uint32_t(ix.Nodes.size());
    ix.Nodes.insert(ix.Nodes.end(), level.begin(), level.end());
    if (level.size() == 1) break;
    std::vector<BoxIndex::Node> up;
    for (size_t i = 0; i < level.size(); i += kFan) {
      size_t e = std::min(level.size(), i + kFan);
      BoxIndex::Node nd{level[i].x1, level[i].y1,        level[i].x2,
                        level[i].y2, base + uint32_t(i), uint32_t(e - i)};
      for (size_t k = i; k < e; ++k) {
        nd.x1 = std::min(nd.x1, level[k].x1), nd.y1 = std::min(nd.y1, level[k].y1);
        nd.x2 = std::max(nd.x2, level[k].x2), nd.y2 = std::max(nd.y2, level[k].y2);
      }
      up.push_back(nd);
    }
    level.swap(up);
  }
  return ix;
}

void SearchBoxIndex(const BoxIndex& ix, double x1, double y1, double x2, double y2,
                    std::vector<int32_t>& out) {
  if (ix.Nodes.empty()) return;
  double lx = Min(x1, x2), hx = Max(x1, x2), ly = Min(y1, y2), hy = Max(y1, y2);
  if (!(lx <= hx) || !(ly <= hy)) return; // NaN: nothing meets it
  uint32_t stack[256];                    // 15 per level at most, and no tree is 16 levels deep
  int top = 0;
  stack[top++] = uint32_t(ix.Nodes.size() - 1);
  while (top > 0) {
    const BoxIndex::Node& nd = ix.Nodes[stack[--top]];
    if (nd.x1 > hx || nd.x2 < lx || nd.y1 > hy || nd.y2 < ly) continue;
    if (nd.count & kLeaf) {
      // Leaves keep no boxes of their entries: the node's box is the filter, so the
      // entries are checked against the records by the caller's exact test.
      for (uint32_t k = 0; k < (nd.count & ~kLeaf); ++k) out.push_back(ix.Ids[nd.first + k]);
    } else {
      for (uint32_t k = 0; k < nd.count; ++k) stack[top++] = nd.first + k;
    }
  }
}

size_t BoxIndexBytes(const BoxIndex& ix) {
  return ix.Nodes.capacity() * sizeof(BoxIndex::Node) + ix.Ids.capacity() * sizeof(int32_t);
}

} // namespace velmora
