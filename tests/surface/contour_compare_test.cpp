// The product's contour lines against the plain cut and chain.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "contour_oracle.h"
#include "surface/contour_cut.h"
#include "surface/tin_delaunay.h"
#include "surface/tin_matrix.h"
#include "surface/tin_points.h"

namespace velmora {
namespace {

SurfaceState MakeTin(const std::vector<TinPoint>& raw, int method) {
  SurfaceState st;
  for (const TinPoint& p : raw) ScanBounds(st, p.X, p.Y, p.Z);
  if (method == 1 || (method == 2 && st.TinNotGrid))
    PreparePoints(st, raw, OrderPoints(st, raw, method), method, nullptr);
  else
    StorePoints(st, raw);
  if (method == 1)
    MakeDelaunay(st, nullptr);
  else
    MakeMatrix(st, nullptr);
  return st;
}

std::vector<oracle::ContourLine> Product(SurfaceState st, float interval, float base) {
  std::vector<oracle::ContourLine> out;
  IndexTriangles(st);
  for (float z : ContourLevels(st.TinMinZ, st.TinMaxZ, interval, base)) {
    CutTriangles(st, z);
    ChainContours(st, [&](const std::vector<double>& xy) {
      out.push_back({z, xy});
      return true;
    });
  }
  return out;
}

void ExpectSame(const SurfaceState& tin, float interval, float base, size_t minLines = 1) {
  auto want = oracle::BuildContours(tin, interval, base);
  auto got = Product(tin, interval, base);
  ASSERT_EQ(got.size(), want.size());
  for (size_t i = 0; i < got.size(); ++i) {
    ASSERT_EQ(got[i].Z, want[i].Z) << i;
    ASSERT_EQ(got[i].XY, want[i].XY) << "line " << i;
  }
  EXPECT_GE(got.size(), minLines);
}

std::vector<TinPoint> Hill(int cols, int rows, double x0, double y0, double step) {
  std::vector<TinPoint> pts;
  for (int r = rows - 1; r >= 0; --r)
    for (int c = 0; c < cols; ++c) {
      double x = c * step, y = r * step;
      float z = float(100 * std::exp(-((x - 120) * (x - 120) + (y - 100) * (y - 100)) / 5000) +
                      30 * std::sin(x / 40) + 0.1 * y);
      pts.push_back({x0 + x, y0 + y, z});
    }
  return pts;
}

TEST(ContourCompare, HillOnAMatrix) {
  auto tin = MakeTin(Hill(50, 45, 1000, 2000, 5), 2);
  ExpectSame(tin, 10, 0, 10);
  ExpectSame(tin, 2.5, 1.25, 40);
}

TEST(ContourCompare, HillOnADelaunayTinOfRandomPoints) {
  std::mt19937 g(8);
  std::uniform_real_distribution<double> u(0, 250);
  std::vector<TinPoint> raw;
  for (int i = 0; i < 3000; ++i) {
    double x = u(g), y = u(g);
    raw.push_back({x - 100, y - 100,
                   float(100 * std::exp(-((x - 120) * (x - 120) + (y - 100) * (y - 100)) / 5000) +
                         30 * std::sin(x / 40))});
  }
  ExpectSame(MakeTin(raw, 1), 5, 0, 20);
}

TEST(ContourCompare, IntegerHeightsThroughCornersAndEdges) {
  // Levels through vertexes and along shared edges: the corner rule and SameAsLast.
  std::vector<TinPoint> raw;
  for (int r = 9; r >= 0; --r)
    for (int c = 0; c < 10; ++c) raw.push_back({c * 10.0, r * 10.0, float((c + r) % 4)});
  ExpectSame(MakeTin(raw, 2), 1, 0, 3);
  ExpectSame(MakeTin(raw, 1), 1, 0, 3);
}

TEST(ContourCompare, FlatTriangleHasNoCut) {
  std::vector<TinPoint> raw = {{0, 10, 5}, {10, 10, 5}, {0, 0, 5}, {10, 0, 5}};
  auto tin = MakeTin(raw, 2);
  ASSERT_EQ(tin.TinTriCount, 2);
  EXPECT_TRUE(Product(tin, 1, 0).empty());
  ExpectSame(tin, 1, 0, 0);
}

TEST(ContourCompare, LevelThroughOneCornerAndTheFarEdgeMakesOneSegment) {
  SurfaceState st;
  st.TinPoints = {{}, {0, 0, 0}, {10, 0, 5}, {5, 10, 10}};
  st.TinPointCount = 3;
  st.TinTris = {{}, {1, 2, 3}};
  st.TinTriCount = 1;
  double p[6];
  EXPECT_EQ(CutTriangle(st, 1, 5, p), 2);
  EXPECT_DOUBLE_EQ(p[0], 10);
  EXPECT_DOUBLE_EQ(p[1], 0);
  EXPECT_DOUBLE_EQ(p[2], 2.5);
  EXPECT_DOUBLE_EQ(p[3], 5);
}

TEST(ContourCompare, IntervalZeroAndNegative) {
  EXPECT_EQ(ContourLevels(0.2, 3.5, 0, 0), (std::vector<float>{0, 1, 2, 3}));
  EXPECT_EQ(ContourLevels(0.2, 3.5, -2, 0), (std::vector<float>{0, 2}));
  EXPECT_EQ(ContourLevels(12, 20, 5, 1), (std::vector<float>{11, 16}));
  // A step lost in single precision ends the levels instead of looping.
  EXPECT_LE(ContourLevels(1e9, 1e9 + 100, 1, 0).size(), 1u);
  EXPECT_TRUE(ContourLevels(0, INFINITY, 1, 0).empty());
}

} // namespace
} // namespace velmora
