// The product's TIN against the plain algorithm on edge cases, random and gridded sets.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "surface/tin_delaunay.h"
#include "surface/tin_matrix.h"
#include "surface/tin_points.h"
#include "tin_oracle.h"

namespace velmora {
namespace {

struct Product {
  SurfaceState St;
  bool Ok = true;
};

SurfaceState Bounds(const std::vector<TinPoint>& raw) {
  SurfaceState st;
  for (const TinPoint& p : raw) ScanBounds(st, p.X, p.Y, p.Z);
  return st;
}

void RunProduct(Product& pr, const std::vector<TinPoint>& raw, int method) {
  pr.St = Bounds(raw);
  SurfaceState& st = pr.St;
  if (method == 1 || (method == 2 && st.TinNotGrid))
    PreparePoints(st, raw, OrderPoints(st, raw, method), method, nullptr);
  else
    StorePoints(st, raw);
  pr.Ok = method == 1   ? MakeDelaunay(st, nullptr)
          : method == 2 ? MakeMatrix(st, nullptr)
                        : LoadTin(st, nullptr);
}

// Same points in the same order, same triangles with the same corners in the same order.
void ExpectSame(const std::vector<TinPoint>& raw, int method, int minTris = 0) {
  Product pr;
  RunProduct(pr, raw, method);
  oracle::TinResult want = oracle::BuildTin(Bounds(raw), raw, method);
  const SurfaceState& st = pr.St;
  ASSERT_TRUE(pr.Ok);
  ASSERT_EQ(st.TinPointCount, int(want.Points.size()) - 1);
  for (int i = 1; i <= st.TinPointCount; ++i) {
    ASSERT_EQ(st.TinPoints[size_t(i)].X, want.Points[size_t(i)].X) << i;
    ASSERT_EQ(st.TinPoints[size_t(i)].Y, want.Points[size_t(i)].Y) << i;
    ASSERT_EQ(st.TinPoints[size_t(i)].Z, want.Points[size_t(i)].Z) << i;
  }
  ASSERT_EQ(st.TinTriCount, int(want.Tris.size()) - 1);
  for (int t = 1; t <= st.TinTriCount; ++t) {
    const TinTri &a = st.TinTris[size_t(t)], &b = want.Tris[size_t(t)];
    ASSERT_TRUE(a.A == b.A && a.B == b.B && a.C == b.C)
        << "triangle " << t << ": " << a.A << " " << a.B << " " << a.C << " against " << b.A << " "
        << b.B << " " << b.C;
  }
  EXPECT_GE(st.TinTriCount, minTris);
}

std::vector<TinPoint> Random(int n, double x0, double y0, double size, uint32_t seed) {
  std::mt19937 g(seed);
  std::uniform_real_distribution<double> u(0, size);
  std::vector<TinPoint> pts;
  for (int i = 0; i < n; ++i) {
    double x = x0 + u(g), y = y0 + u(g);
    pts.push_back({x, y, float(std::sin(x / 50) * 30 + std::cos(y / 70) * 20)});
  }
  return pts;
}

// Rows from north to south, west to east: the order of a grid file.
std::vector<TinPoint> Grid(int cols, int rows, double x0, double y0, double step) {
  std::vector<TinPoint> pts;
  for (int r = rows - 1; r >= 0; --r)
    for (int c = 0; c < cols; ++c)
      pts.push_back({x0 + c * step, y0 + r * step, float(r * 0.7 + c * 0.3)});
  return pts;
}

TEST(TinCompare, FewerThanThreePointsMakeNoTriangle) {
  ExpectSame({}, 1);
  ExpectSame({{1, 1, 0}}, 1);
  ExpectSame({{1, 1, 0}, {5, 5, 1}}, 1);
  ExpectSame({{1, 1, 0}, {5, 5, 1}, {7, 1, 1}}, 2); // fewer than 4 for the matrix
}

TEST(TinCompare, CollinearAndCoincidentPointsMakeNoTriangle) {
  std::vector<TinPoint> line, spot;
  for (int i = 0; i < 40; ++i) line.push_back({10.0 + i * 3, 20.0 + i * 3, float(i)});
  for (int i = 0; i < 40; ++i) spot.push_back({10, 20, float(i)});
  ExpectSame(line, 1);
  ExpectSame(spot, 1);
  Product pr;
  RunProduct(pr, line, 1);
  EXPECT_EQ(pr.St.TinTriCount, 0);
  RunProduct(pr, spot, 1);
  EXPECT_EQ(pr.St.TinPointCount, 1); // the rest are duplicates
}

TEST(TinCompare, SquareGetsTwoTriangles) {
  std::vector<TinPoint> sq = {{0, 0, 1}, {10, 0, 2}, {0, 10, 3}, {10, 10, 4}};
  ExpectSame(sq, 1, 2);
  Product pr;
  RunProduct(pr, sq, 1);
  EXPECT_EQ(pr.St.TinTriCount, 2);
}

TEST(TinCompare, DuplicatesAtTheSameDistanceAreDropped) {
  // (3, 4) and (4, 3) are both 5 from the corner but far apart: both stay. (3, 4.001) is
  // at another distance: it stays too, though near.
  std::vector<TinPoint> pts = {{0, 0, 0}, {3, 4, 1},     {4, 3, 2},
                               {3, 4, 9}, {3, 4.001, 3}, {9, 1, 4}};
  ExpectSame(pts, 1);
  Product pr;
  RunProduct(pr, pts, 1);
  EXPECT_EQ(pr.St.TinPointCount, 5);
}

TEST(TinCompare, PerfectGridWithDelaunay) {
  auto g = Grid(30, 25, 1000, 2000, 10);
  ExpectSame(g, 1, 2 * 29 * 24);
}

TEST(TinCompare, GridInUtmCoordinates) {
  ExpectSame(Grid(30, 30, 500000, 4000000, 30), 1, 2 * 29 * 29);
}

TEST(TinCompare, GridInScaledDegrees) {
  // 35.0 degrees scaled no longer fits the i32 bounds: the corner's X stays 0.
  ExpectSame(Grid(25, 25, 35.0 * 1e8, 31.0 * 1e8, 0.001 * 1e8), 1, 2 * 24 * 24);
}

TEST(TinCompare, RandomPoints) {
  ExpectSame(Random(3000, 0, 0, 1000, 1), 1, 5000);
}

TEST(TinCompare, RandomPointsFarFromTheOrigin) {
  ExpectSame(Random(2000, 500000, 4000000, 3000, 2), 1, 3000);
}

TEST(TinCompare, RandomDenseSmallSteps) {
  // Spacing near the 0.01 shrink of the circles.
  ExpectSame(Random(1500, 100, 100, 3, 3), 1, 1000);
}

TEST(TinCompare, JitteredGrid) {
  std::mt19937 g(4);
  std::uniform_real_distribution<double> u(-0.5, 0.5);
  auto pts = Grid(40, 40, 0, 0, 10);
  for (auto& p : pts) p.X += u(g), p.Y += u(g);
  ExpectSame(pts, 1, 2000);
}

TEST(TinCompare, MatrixInGridOrderAndShuffled) {
  auto g = Grid(40, 30, 100, 100, 5);
  ExpectSame(g, 2, 2 * 39 * 29);
  std::mt19937 rng(5);
  auto sh = g;
  std::shuffle(sh.begin(), sh.end(), rng);
  ExpectSame(sh, 2, 2 * 39 * 29);
  Product a, b;
  RunProduct(a, g, 2);
  RunProduct(b, sh, 2);
  ASSERT_EQ(a.St.TinTriCount, b.St.TinTriCount);
  for (int t = 1; t <= a.St.TinTriCount; ++t)
    EXPECT_EQ(a.St.TinTris[size_t(t)].C, b.St.TinTris[size_t(t)].C);
}

TEST(TinCompare, MatrixWithNegativeAndZeroCoordinates) {
  auto g = Grid(20, 20, -50, -50, 5); // crosses X = 0 and Y = 0
  std::mt19937 rng(6);
  std::shuffle(g.begin(), g.end(), rng);
  ExpectSame(g, 2);
}

TEST(TinCompare, RaggedGridRows) {
  auto g = Grid(20, 15, 0, 0, 1);
  g.erase(g.begin() + 37); // one row a point short
  ExpectSame(g, 2);
  ExpectSame(g, 1);
}

TEST(TinCompare, CocircularRingsAndLatticeSubsets) {
  // Many points on one circle, and integer lattice points with holes: co-circular ties.
  std::vector<TinPoint> rings;
  for (int r = 1; r <= 6; ++r)
    for (int k = 0; k < 60; ++k) {
      double a = k * 6.283185307179586 / 60;
      rings.push_back({500 + r * 40 * std::cos(a), 500 + r * 40 * std::sin(a), float(r)});
    }
  rings.push_back({500, 500, 0});
  ExpectSame(rings, 1, 300);
  std::mt19937 g(9);
  std::vector<TinPoint> lattice;
  for (int y = 0; y < 45; ++y)
    for (int x = 0; x < 45; ++x)
      if (g() % 3) lattice.push_back({double(x), double(y), float(x ^ y)});
  std::shuffle(lattice.begin(), lattice.end(), g);
  ExpectSame(lattice, 1, 1500);
}

TEST(TinCompare, ClustersAndNearDuplicates) {
  std::mt19937 g(10);
  std::normal_distribution<double> n(0, 1);
  std::vector<TinPoint> pts;
  for (int c = 0; c < 12; ++c) {
    double cx = 1000 + 400 * (c % 4), cy = 3000 + 300 * (c / 4);
    for (int i = 0; i < 150; ++i) {
      double x = cx + n(g) * (c % 3 == 0 ? 0.2 : 25), y = cy + n(g) * (c % 3 == 0 ? 0.2 : 25);
      pts.push_back({x, y, float(c)});
      if (i % 10 == 0) pts.push_back({x + 0.001, y, float(c)});
    }
  }
  ExpectSame(pts, 1, 2000);
}

TEST(TinCompare, RandomSetsOfManySeeds) {
  for (uint32_t seed = 20; seed < 32; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 g(seed);
    double scale = seed % 3 == 0 ? 1e8 : seed % 3 == 1 ? 1 : 0.5;
    double x0 = seed % 2 ? 35.1 * scale : 0, y0 = seed % 2 ? 31.9 * scale : 0;
    ExpectSame(Random(400 + int(g() % 600), x0, y0, 0.01 * scale * 1000, seed), 1);
  }
}

TEST(TinCompare, LinesAtManySlopes) {
  // Points on one line: the angle test finds no triangle, or rounding lets one through;
  // either way the product agrees with the plain loops.
  for (double slope : {0.0, 1.0, 0.7, 1.0 / 3, 2.5}) {
    SCOPED_TRACE(slope);
    std::vector<TinPoint> line;
    for (int i = 0; i < 120; ++i) line.push_back({5 + i * 0.37, 9 + i * 0.37 * slope, float(i)});
    ExpectSame(line, 1);
    std::vector<TinPoint> vertical;
    for (int i = 0; i < 60; ++i) vertical.push_back({5, 9 + i * 0.37 * (slope + 1), float(i)});
    ExpectSame(vertical, 1);
  }
}

} // namespace
} // namespace velmora
