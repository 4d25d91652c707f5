#include "surface/point_tree.h"

#include <algorithm>

namespace velmora {

namespace {

constexpr int kLeaf = 8;

int Build(PointTree& t, const std::vector<TinPoint>& pts, int lo, int hi) {
  PointTreeNode nd{};
  nd.Lo = lo, nd.Hi = hi, nd.Left = nd.Right = -1;
  const TinPoint& f = pts[size_t(t.Perm[size_t(lo)])];
  nd.X0 = nd.X1 = f.X, nd.Y0 = nd.Y1 = f.Y;
  nd.MinIdx = nd.MaxIdx = t.Perm[size_t(lo)];
  for (int i = lo; i < hi; ++i) {
    int k = t.Perm[size_t(i)];
    const TinPoint& p = pts[size_t(k)];
    nd.X0 = std::min(nd.X0, p.X), nd.X1 = std::max(nd.X1, p.X);
    nd.Y0 = std::min(nd.Y0, p.Y), nd.Y1 = std::max(nd.Y1, p.Y);
    nd.MinIdx = std::min(nd.MinIdx, k), nd.MaxIdx = std::max(nd.MaxIdx, k);
  }
  int id = int(t.Nodes.size());
  t.Nodes.push_back(nd);
  if (hi - lo > kLeaf) {
    bool byX = nd.X1 - nd.X0 >= nd.Y1 - nd.Y0;
    int mid = lo + (hi - lo) / 2;
    std::nth_element(t.Perm.begin() + lo, t.Perm.begin() + mid, t.Perm.begin() + hi,
                     [&](int a, int b) {
                       const TinPoint &pa = pts[size_t(a)], &pb = pts[size_t(b)];
                       return byX ? pa.X < pb.X : pa.Y < pb.Y;
                     });
    int l = Build(t, pts, lo, mid);
    int r = Build(t, pts, mid, hi);
    t.Nodes[size_t(id)].Left = l;
    t.Nodes[size_t(id)].Right = r;
  }
  return id;
}

} // namespace

PointTree BuildPointTree(const std::vector<TinPoint>& pts, int n) {
  PointTree t;
  if (n < 1) return t;
  t.Perm.resize(size_t(n));
  for (int i = 0; i < n; ++i) t.Perm[size_t(i)] = i + 1;
  t.Nodes.reserve(size_t(n / 4 + 16));
  Build(t, pts, 0, n);
  return t;
}

} // namespace velmora
