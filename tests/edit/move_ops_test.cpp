// The movement primitives: points, angles, ratios, frames and control points, the ordinate
// flags by type, and what each scope of the dispatchers reaches.
#include <cmath>

#include "edit/edit_ops.h"
#include "edit/move_ops.h"
#include "edit_fixture.h"

using namespace velmora;
using namespace velmora::test;

namespace {

constexpr double kPi = 3.14159265358979;

struct MoveOps : EditFixture {};

TEST(MovePoints, ScaleAndRotateAboutAPivot) {
  double x = 3, y = 4;
  ScalePoint(x, y, 3, 4, 7, -2); // the pivot stays, whatever the factors
  EXPECT_EQ(x, 3);
  EXPECT_EQ(y, 4);
  x = 5, y = 4;
  ScalePoint(x, y, 3, 4, 2, 3);
  EXPECT_DOUBLE_EQ(x, 7);
  EXPECT_DOUBLE_EQ(y, 4);
  x = 2, y = 1;
  RotatePoint(x, y, 1, 1, kPi / 2); // counter-clockwise
  EXPECT_NEAR(x, 1, 1e-12);
  EXPECT_NEAR(y, 2, 1e-12);
}

TEST(MovePoints, AngleOfCarriesTheFirstRayOntoTheSecond) {
  EXPECT_EQ(FlatAngle(0, 5), 90);
  EXPECT_EQ(FlatAngle(-3, 0), 0);
  for (double a = 0; a < 360; a += 37.5) {
    for (double b = 0; b < 360; b += 22.5) {
      const double ax = 2 + 3 * std::cos(a * kPi / 180), ay = 1 + 3 * std::sin(a * kPi / 180);
      const double bx = 2 + 5 * std::cos(b * kPi / 180), by = 1 + 5 * std::sin(b * kPi / 180);
      double ang = AngleOf(2, 1, ax, ay, bx, by);
      EXPECT_GT(ang, -360);
      EXPECT_LT(ang, 360);
      double x = ax, y = ay;
      RotatePoint(x, y, 2, 1, ang * kPi / 180);
      // On the ray of b: same direction, at a's distance.
      EXPECT_NEAR(std::atan2(y - 1, x - 2), std::atan2(by - 1, bx - 2), 1e-9)
          << "a " << a << " b " << b;
    }
  }
}

TEST(MovePoints, ScaleRatioOfAPointOnThePivotIsOne) {
  EXPECT_EQ(ScaleRatio(10, 12, 10), 1.0);
  EXPECT_DOUBLE_EQ(ScaleRatio(10, 12, 16), 3.0);
  EXPECT_DOUBLE_EQ(ScaleRatio(10, 12, 4), 3.0);
}

TEST_F(MoveOps, AFrameStaysRectangularWhenACornerMoves) {
  const int lyr = Layer("frame", "MASKLAYOUT", {{{{0, 10}, {10, 10}, {10, 0}, {0, 0}, {0, 10}}}});
  ASSERT_EQ(s.Lyr[lyr].Shp.ShpType, 100);
  MoveVertexTo(s, lyr, 1, 0, 0, -2, 12, kMoveXY, 0, 0);
  EXPECT_EQ(Get(lyr, 1).Parts[0],
            (std::vector<std::array<double, 4>>{
                {-2, 12, 0, 0}, {10, 12, 0, 0}, {10, 0, 0, 0}, {-2, 0, 0, 0}, {-2, 12, 0, 0}}));
  MoveVertexTo(s, lyr, 1, 0, 2, 15, -5, kMoveXY, 0, 0); // the opposite corner
  EXPECT_EQ(Get(lyr, 1).Parts[0],
            (std::vector<std::array<double, 4>>{
                {-2, 12, 0, 0}, {15, 12, 0, 0}, {15, -5, 0, 0}, {-2, -5, 0, 0}, {-2, 12, 0, 0}}));
  MoveVertexTo(s, lyr, 1, 0, 1, 11, 11, kMoveXY, 0, 0);
  EXPECT_EQ(Vertex(lyr, 1, 0, 2).X, 11);
  EXPECT_EQ(Vertex(lyr, 1, 0, 0).Y, 11);
  EXPECT_EQ(Vertex(lyr, 1, 0, 4).Y, 11);
}

TEST_F(MoveOps, FlagsReachOnlyTheOrdinatesTheTypeHas) {
  const int mz = Layer("mz", "POLYLINEMZ", {{{{0, 0}, {1, 1}}}});
  const int m = Layer("m", "POLYLINEM", {{{{0, 0}, {1, 1}}}});
  MoveVertexTo(s, mz, 1, 0, 1, 5, 6, kMoveX | kMoveM | kMoveZ, 7, 8);
  EXPECT_EQ(Get(mz, 1).Parts[0][1], (std::array<double, 4>{5, 1, 8, 7}));
  MoveVertexTo(s, m, 1, 0, 1, 5, 6, kMoveY | kMoveM | kMoveZ, 7, 8);
  EXPECT_EQ(Get(m, 1).Parts[0][1], (std::array<double, 4>{1, 6, 0, 7}));
  // Scaling and rotating leave M and Z alone.
  ScaleFeature(s, mz, 1, 0, 0, 2, 2);
  EXPECT_EQ(Get(mz, 1).Parts[0][1], (std::array<double, 4>{10, 2, 8, 7}));
  // Out of range: nothing, and no failure.
  MoveVertexTo(s, mz, 2, 0, 0, 1, 1, kMoveXY, 0, 0);
  MoveVertexTo(s, mz, 1, 3, 0, 1, 1, kMoveXY, 0, 0);
  MoveVertexTo(s, mz, 1, 0, 9, 1, 1, kMoveXY, 0, 0);
  EXPECT_EQ(Get(mz, 1).Parts[0][0], (std::array<double, 4>{0, 0, 0, 0}));
}

TEST_F(MoveOps, ByOffsetKeepsTheBoxAndMarksTheExtentStale) {
  const int lyr = Layer("l", "POLYLINE", {{{{0, 0}, {1, 1}}}, {{{5, 5}, {6, 6}}}});
  MoveFeatureBy(s, lyr, 2, 10, 20, kMoveXY, 0, 0);
  const ShpRecord& r = s.Lyr[lyr].Shp.ShpRecs[2];
  EXPECT_EQ(r.Xmin, 15);
  EXPECT_EQ(r.Ymax, 26);
  EXPECT_TRUE(s.Lyr[lyr].Shp.ExtentStale);
}

// Which features of two layers the seven scopes of rotate and scale reach.
TEST_F(MoveOps, TheScopesOfRotateAndScale) {
  for (int mode = 0; mode <= 6; ++mode) {
    CloseAllLyrs(s);
    const int a =
        Layer("a" + std::to_string(mode), "POLYLINE",
              {{{{0, 0}, {1, 0}}, {{2, 0}, {3, 0}}}, {{{5, 5}, {6, 5}}}, {{{7, 7}, {8, 8}}}});
    const int b =
        Layer("b" + std::to_string(mode), "POLYLINE", {{{{9, 9}, {9, 8}}}, {{{4, 4}, {3, 3}}}});
    SelectOnly(s, a, 3);
    SelectOnly(s, b, 2);
    const auto a0 = All(a), b0 = All(b);
    s.Edit.MoveMode = mode;
    ScaleScope(s, a, 1, 0, 0, 0, 2, 2);
    const auto a1 = All(a), b1 = All(b);
    auto changed = [](const std::vector<Shape>& x, const std::vector<Shape>& y) {
      std::string c;
      for (size_t i = 0; i < x.size(); ++i) c += x[i] == y[i] ? '.' : 'x';
      return c;
    };
    const char* wantA[] = {"x..", "x..", "x..", "x.x", "xxx", "x.x", "xxx"};
    const char* wantB[] = {"..", "..", "..", "..", "..", ".x", "xx"};
    EXPECT_EQ(changed(a0, a1), wantA[mode]) << "mode " << mode;
    EXPECT_EQ(changed(b0, b1), wantB[mode]) << "mode " << mode;
    if (mode <= 1) {
      EXPECT_EQ(a1[0].Parts[1], a0[0].Parts[1]) << "only the part";
    }
    if (mode == 2) {
      EXPECT_NE(a1[0].Parts[1], a0[0].Parts[1]) << "the whole feature";
    }
  }
}

TEST_F(MoveOps, AnImagesFrameLayerMovesOnlyWhenNamed) {
  const int img = Layer("ctl", "POLYLINE", {{{{1, 1}, {2, 2}}}});
  // A control point layer: type 99 records of two vertices.
  s.Lyr[img].Shp.ShpType = 99;
  s.Lyr[img].Shp.ShpRecs[1].ShapeType = 99;
  SelectOnly(s, img, 1);
  const int lines = Layer("lines", "POLYLINE", {{{{0, 0}, {1, 0}}}});
  MoveSelectedBy(s, img, lines, 1, 5, 5, kMoveXY, 0, 0);
  EXPECT_EQ(Vertex(img, 1, 0, 0).X, 1);
  MoveSelectedBy(s, img, img, 1, 5, 5, kMoveXY, 0, 0);
  EXPECT_EQ(Vertex(img, 1, 0, 0).X, 6);
  // Scale and rotate skip a control point's part.
  ScaleFeature(s, img, 1, 0, 0, 2, 2);
  EXPECT_EQ(Vertex(img, 1, 0, 0).X, 6);
}

} // namespace
