#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "mem_layers.h"
#include "query/spatial.h"
#include "test_support.h"

namespace velmora {
namespace {

using test::MemFeature;
using test::MemLayer;
using test::Pts;
using test::Square;

XY P(double x, double y) {
  return {x, y};
}

TEST(SpatialNumbers, MinAndMaxReturnTheSecondOnTies) {
  EXPECT_TRUE(std::signbit(Min(0.0, -0.0)));
  EXPECT_FALSE(std::signbit(Min(-0.0, 0.0)));
  EXPECT_TRUE(std::signbit(Max(0.0, -0.0)));
  EXPECT_EQ(Min(3, 2), 2);
  EXPECT_EQ(Max(3, 2), 3);
}

TEST(SpatialNumbers, RangesIncludeTheirWidenedBoundsInEitherOrder) {
  EXPECT_TRUE(InRangeTol(5, 5, 1, 0));
  EXPECT_TRUE(InRangeTol(1, 5, 1, 0));
  EXPECT_FALSE(InRangeTol(5.5, 1, 5, 0.4));
  EXPECT_TRUE(InRangeTol(5.5, 5, 1, 0.5));
  EXPECT_TRUE(InRangeTol(0.5, 1, 5, 0.5));
  EXPECT_TRUE(RangesOverlap(0, 1, 1, 2, 0));
  EXPECT_TRUE(RangesOverlap(1, 0, 2, 1, 0));
  EXPECT_FALSE(RangesOverlap(0, 1, 1.5, 2, 0.4));
  EXPECT_TRUE(RangesOverlap(0, 1, 1.5, 2, 0.5));
  EXPECT_TRUE(RangesOverlap(1.5, 2, 0, 1, 0.5));
  EXPECT_DOUBLE_EQ(Distance(0, 0, 3, 4), 5);
  EXPECT_DOUBLE_EQ(SquaredDistance(0, 0, 3, 4), 25);
}

TEST(SpatialNumbers, SideOfALine) {
  EXPECT_EQ(Side(0, 1, 0, 0, 1, 0), 1);
  EXPECT_EQ(Side(0, -1, 0, 0, 1, 0), -1);
  EXPECT_EQ(Side(5, 0, 0, 0, 1, 0), 0);
}

TEST(SpatialSegments, CrossingWithItsPointAndKinds) {
  CrossResult d;
  ASSERT_TRUE(SegCross(P(0, 0), P(2, 2), P(0, 2), P(2, 0), &d, 0));
  EXPECT_DOUBLE_EQ(d.CrossX, 1);
  EXPECT_DOUBLE_EQ(d.CrossY, 1);
  EXPECT_EQ(d.CrossKindA, 1);
  EXPECT_EQ(d.CrossKindB, 1);
  // A T-junction at B's first vertex, inside A.
  ASSERT_TRUE(SegCross(P(0, 0), P(4, 0), P(1, 0), P(1, 3), &d, 0));
  EXPECT_EQ(d.CrossKindB, 2);
  EXPECT_EQ(d.CrossKindA, 1);
  ASSERT_TRUE(SegCross(P(0, 0), P(4, 0), P(1, 3), P(1, 0), &d, 0));
  EXPECT_EQ(d.CrossKindB, 4);
  ASSERT_TRUE(SegCross(P(4, 0), P(0, 0), P(4, 0), P(4, 3), &d, 0));
  EXPECT_EQ(d.CrossKindA, 2);
  EXPECT_EQ(d.CrossKindB, 2);
}

TEST(SpatialSegments, ParallelAndCollinearNeverCross) {
  EXPECT_FALSE(SegCross(P(0, 0), P(2, 0), P(0, 1), P(2, 1), nullptr, 5));
  EXPECT_FALSE(SegCross(P(0, 0), P(4, 0), P(1, 0), P(3, 0), nullptr, 0));
  EXPECT_FALSE(SegCrossStrict(P(0, 0), P(4, 0), P(1, 0), P(3, 0)));
}

TEST(SpatialSegments, TheToleranceWidensBoxesNotSegments) {
  // A vertical line stopping 0.05 short of a horizontal one.
  EXPECT_FALSE(SegCross(P(0, 0), P(4, 0), P(1, 0.05), P(1, 3), nullptr, 0));
  EXPECT_TRUE(SegCross(P(0, 0), P(4, 0), P(1, 0.05), P(1, 3), nullptr, 0.1));
  // A segment far beside another, but whose lines meet inside the widened boxes: only when
  // the point falls within tol of both boxes on each axis.
  EXPECT_FALSE(SegCross(P(0, 0), P(4, 0), P(5, 1), P(6, 2), nullptr, 0.5));
  EXPECT_TRUE(SegCross(P(0, 0), P(4, 0), P(4.2, 0.2), P(6, 2), nullptr, 0.5));
}

TEST(SpatialSegments, StrictCrossingExcludesSharedAndEndVertices) {
  EXPECT_TRUE(SegCrossStrict(P(0, 0), P(2, 2), P(0, 2), P(2, 0)));
  EXPECT_FALSE(SegCrossStrict(P(0, 0), P(2, 2), P(0, 0), P(2, 0)));
  EXPECT_FALSE(SegCrossStrict(P(0, 0), P(4, 0), P(1, 0), P(1, 3)));
  EXPECT_FALSE(SegCrossStrict(P(0, 0), P(1, 1), P(3, 0), P(3, 5)));
}

TEST(SpatialSegments, LineIntersectionOfInfiniteLines) {
  XY q = LineIntersection(P(0, 0), P(1, 0), P(5, 1), P(5, 2));
  EXPECT_DOUBLE_EQ(q.X, 5);
  EXPECT_DOUBLE_EQ(q.Y, 0);
  q = LineIntersection(P(0, 0), P(1, 0), P(0, 1), P(1, 1));
  EXPECT_EQ(q.X, 0);
  EXPECT_EQ(q.Y, 0);
}

TEST(SpatialSegments, PointNearSegmentByProjection) {
  EXPECT_TRUE(PointNearSeg(P(1, 0.1), P(0, 0), P(2, 0), 0.1));
  EXPECT_FALSE(PointNearSeg(P(1, 0.11), P(0, 0), P(2, 0), 0.1));
  // Beyond the end: the distance to the end, not to the line.
  EXPECT_FALSE(PointNearSeg(P(2.08, 0.08), P(0, 0), P(2, 0), 0.1));
  EXPECT_TRUE(PointNearSeg(P(2.06, 0.06), P(0, 0), P(2, 0), 0.1));
  EXPECT_TRUE(PointNearSeg(P(1, 1), P(1, 1), P(1, 1), 0));
  CrossResult d;
  ASSERT_TRUE(PointNearSegDetails(P(0.05, 0.05), P(0, 0), P(2, 0), &d, 0.1));
  EXPECT_EQ(d.CrossKindB, 2);
  EXPECT_EQ(d.CrossKindA, 2);
  EXPECT_EQ(d.CrossX, 0);
  ASSERT_TRUE(PointNearSegDetails(P(1.95, 0.05), P(0, 0), P(2, 0), &d, 0.1));
  EXPECT_EQ(d.CrossKindA, 4);
  EXPECT_EQ(d.CrossX, 2);
  ASSERT_TRUE(PointNearSegDetails(P(1, 0.05), P(0, 0), P(2, 0), &d, 0.1));
  EXPECT_EQ(d.CrossKindA, 1);
  EXPECT_DOUBLE_EQ(d.CrossX, 1);
  EXPECT_DOUBLE_EQ(d.CrossY, 0);
}

struct SpatialFeatures : ::testing::Test {
  test::RecordingHost host;
  Session s{host};
};

TEST_F(SpatialFeatures, PointsOnPointsMultipointsAndLines) {
  int pts = MemLayer(s, 1), multi = MemLayer(s, 8), lines = MemLayer(s, 3);
  int p = MemFeature(s, pts, {{{1, 1}}});
  int m = MemFeature(s, multi, {{{0, 0}, {5, 5}, {9, 9}}});
  int l = MemFeature(s, lines, {{{0, 0}, {10, 0}}, {{0, 5}, {10, 5}}});
  EXPECT_TRUE(PointOnPoint(s, pts, p, P(1.04, 1), nullptr, 0.05));
  EXPECT_FALSE(PointOnPoint(s, pts, p, P(1.06, 1), nullptr, 0.05));
  CrossResult d;
  EXPECT_TRUE(PointOnMultipoint(s, multi, m, P(5, 5), &d, 0, 0));
  EXPECT_EQ(d.HitVertex, 1);
  EXPECT_FALSE(PointOnMultipoint(s, multi, m, P(5, 5), &d, 0, 2));
  ASSERT_TRUE(PointOnLine(s, lines, l, P(3, 5.01), &d, 0.02, 0, 0));
  EXPECT_EQ(d.HitLyr, lines);
  EXPECT_EQ(d.HitFeature, l);
  EXPECT_EQ(d.HitPart, 1);
  EXPECT_EQ(d.HitVertex, 0);
  EXPECT_EQ(d.HitType, 3);
  EXPECT_FALSE(PointOnLine(s, lines, l, P(3, 5.03), nullptr, 0.02, 0, 0));
}

TEST_F(SpatialFeatures, PolygonWithAHole) {
  int g = MemLayer(s, 5);
  Pts hole = {{4, 4}, {6, 4}, {6, 6}, {4, 6}, {4, 4}};
  int f = MemFeature(s, g, {Square(0, 0, 10), hole});
  EXPECT_TRUE(PointInPolygonStrict(s, g, f, P(2, 2), nullptr, 0));
  EXPECT_FALSE(PointInPolygonStrict(s, g, f, P(5, 5), nullptr, 0));
  EXPECT_FALSE(PointInPolygonLoose(s, g, f, P(5, 5), nullptr, 0));
  // On the hole's edge and on the outer edge: loose, not strict.
  EXPECT_TRUE(PointInPolygonLoose(s, g, f, P(4, 5), nullptr, 0));
  EXPECT_FALSE(PointInPolygonStrict(s, g, f, P(4, 5), nullptr, 0));
  EXPECT_TRUE(PointInPolygonLoose(s, g, f, P(0, 5), nullptr, 0));
  EXPECT_TRUE(PointInPolygonOrEdge(s, g, f, P(-0.01, 5), nullptr, 0.01, 0, 0));
  EXPECT_FALSE(PointInPolygonStrict(s, g, f, P(0.01, 5), nullptr, 0.01));
  EXPECT_FALSE(PointInPolygonLoose(s, g, f, P(11, 5), nullptr, 0));
}

TEST_F(SpatialFeatures, DegenerateRingsAndEmptyPartsAreSkipped) {
  int g = MemLayer(s, 5);
  int f = MemFeature(s, g, {{}, {{1, 1}}, {{2, 2}, {3, 3}}, Square(0, 0, 10)});
  EXPECT_TRUE(PointInPolygonStrict(s, g, f, P(5, 5), nullptr, 0));
  int empty = MemFeature(s, g, {{}});
  EXPECT_FALSE(PointInPolygonLoose(s, g, empty, P(0, 0), nullptr, 1));
  EXPECT_FALSE(FeaturesIntersect(s, g, empty, g, f, nullptr, 1));
  EXPECT_FALSE(FeatureInside(s, g, empty, g, f, nullptr, 1));
  EXPECT_FALSE(FeaturesIntersect(s, g, f, g, 99, nullptr, 1));
}

TEST_F(SpatialFeatures, FeatureCrossSegFindsAndResumes) {
  int lines = MemLayer(s, 3);
  int l = MemFeature(s, lines, {{{0, 0}, {10, 0}, {10, 10}}, {{0, 5}, {20, 5}}});
  CrossResult d;
  ASSERT_TRUE(FeatureCrossSeg(s, lines, l, P(5, -1), P(15, 6), &d, 0, 0, 0));
  EXPECT_EQ(d.HitPart, 0);
  EXPECT_EQ(d.HitVertex, 0);
  ASSERT_TRUE(FeatureCrossSeg(s, lines, l, P(5, -1), P(15, 6), &d, 0, 0, 1));
  EXPECT_EQ(d.HitPart, 0);
  EXPECT_EQ(d.HitVertex, 1);
  ASSERT_TRUE(FeatureCrossSeg(s, lines, l, P(5, -1), P(15, 6), &d, 0, 1, 0));
  EXPECT_EQ(d.HitPart, 1);
  EXPECT_FALSE(FeatureCrossSeg(s, lines, l, P(5, -1), P(15, 6), &d, 0, 1, 1));
}

TEST_F(SpatialFeatures, PolygonsSharingAnEdgeIntersectAtToleranceZero) {
  int g = MemLayer(s, 5);
  int a = MemFeature(s, g, {Square(0, 0, 1)});
  int b = MemFeature(s, g, {Square(1, 0, 1)});
  int c = MemFeature(s, g, {Square(2.5, 0, 1)});
  EXPECT_TRUE(FeaturesIntersect(s, g, a, g, b, nullptr, 0));
  EXPECT_FALSE(FeaturesIntersect(s, g, a, g, c, nullptr, 0));
  EXPECT_TRUE(FeaturesIntersect(s, g, a, g, a, nullptr, 0));
  EXPECT_FALSE(FeatureOverlap(s, g, a, g, b, nullptr, 0));
  EXPECT_FALSE(FeatureInside(s, g, a, g, b, nullptr, 0));
}

TEST_F(SpatialFeatures, IntersectDoesNotDependOnTheOrder) {
  int gons = MemLayer(s, 5), pts = MemLayer(s, 1), lines = MemLayer(s, 3);
  int county = MemFeature(s, gons, {Square(0, 0, 10)});
  int town = MemFeature(s, pts, {{{3, 3}}});
  int road = MemFeature(s, lines, {{{0, 0}, {10, 0}}});
  int lane = MemFeature(s, lines, {{{2, 0}, {5, 0}}}); // on the road, no vertex of it shared
  int by = MemFeature(s, pts, {{{4, 0}}});
  EXPECT_TRUE(FeaturesIntersect(s, pts, town, gons, county, nullptr, 0));
  EXPECT_TRUE(FeaturesIntersect(s, gons, county, pts, town, nullptr, 0));
  EXPECT_TRUE(FeaturesIntersect(s, lines, road, lines, lane, nullptr, 0));
  EXPECT_TRUE(FeaturesIntersect(s, lines, lane, lines, road, nullptr, 0));
  EXPECT_TRUE(FeaturesIntersect(s, lines, road, pts, by, nullptr, 0));
  EXPECT_TRUE(FeaturesIntersect(s, pts, by, lines, road, nullptr, 0));
  // Touching inside counts a's parts only.
  EXPECT_TRUE(FeatureTouchInside(s, pts, town, gons, county, nullptr, 0));
  EXPECT_FALSE(FeatureTouchInside(s, gons, county, pts, town, nullptr, 0));
}

TEST_F(SpatialFeatures, InsideStrictAndWithEdges) {
  int g = MemLayer(s, 5), lines = MemLayer(s, 3);
  int big = MemFeature(s, g, {Square(0, 0, 10)});
  int small = MemFeature(s, g, {Square(2, 2, 2)});
  int edge = MemFeature(s, g, {Square(0, 2, 2)}); // shares part of big's left edge
  int across = MemFeature(s, g, {Square(9, 2, 2)});
  int line = MemFeature(s, lines, {{{1, 1}, {9, 9}}});
  int out = MemFeature(s, lines, {{{1, 1}, {12, 1}}});
  EXPECT_TRUE(FeatureInside(s, g, small, g, big, nullptr, 0));
  EXPECT_FALSE(FeatureInside(s, g, big, g, small, nullptr, 0));
  EXPECT_FALSE(FeatureInside(s, g, edge, g, big, nullptr, 0));
  EXPECT_TRUE(FeatureInsideOrEdge(s, g, edge, g, big, nullptr, 0));
  EXPECT_FALSE(FeatureInsideOrEdge(s, g, across, g, big, nullptr, 0));
  EXPECT_TRUE(FeatureInside(s, lines, line, g, big, nullptr, 0));
  EXPECT_FALSE(FeatureInside(s, lines, out, g, big, nullptr, 0));
  EXPECT_TRUE(FeatureOverlap(s, g, across, g, big, nullptr, 0));
  EXPECT_TRUE(FeatureOverlap(s, lines, out, g, big, nullptr, 0));
  EXPECT_FALSE(FeatureOverlap(s, g, small, g, big, nullptr, 0));
  EXPECT_FALSE(FeatureOverlap(s, g, big, g, small, nullptr, 0));
}

TEST_F(SpatialFeatures, CrossingSquaresOverlapWithoutAVertexInside) {
  int g = MemLayer(s, 5);
  int wide = MemFeature(s, g, {{{0, 4}, {0, 6}, {10, 6}, {10, 4}, {0, 4}}});
  int tall = MemFeature(s, g, {{{4, 0}, {4, 10}, {6, 10}, {6, 0}, {4, 0}}});
  EXPECT_TRUE(FeatureOverlap(s, g, wide, g, tall, nullptr, 0));
  EXPECT_TRUE(FeaturesIntersect(s, g, wide, g, tall, nullptr, 0));
  EXPECT_FALSE(FeatureInsideOrEdge(s, g, wide, g, tall, nullptr, 0));
}

TEST_F(SpatialFeatures, DeletedFeaturesFailEverything) {
  int g = MemLayer(s, 5);
  int a = MemFeature(s, g, {Square(0, 0, 10)});
  int gone = MemFeature(s, g, {Square(0, 0, 10)}, 0);
  EXPECT_FALSE(FeaturesIntersect(s, g, a, g, gone, nullptr, 1));
  EXPECT_FALSE(FeaturesIntersect(s, g, gone, g, gone, nullptr, 1));
  EXPECT_FALSE(FeatureInsideOrEdge(s, g, gone, g, a, nullptr, 1));
  EXPECT_FALSE(FeatureTouchInside(s, g, a, g, gone, nullptr, 1));
  EXPECT_FALSE(FeatureOverlap(s, g, a, g, gone, nullptr, 1));
  EXPECT_FALSE(PointInPolygonLoose(s, g, gone, P(5, 5), nullptr, 1));
  EXPECT_FALSE(FeatureCrossSeg(s, g, gone, P(-1, 5), P(11, 5), nullptr, 1));
}

// A star of many points and a winding line: the mask's answers equal the full tests'.
TEST_F(SpatialFeatures, TheMaskNeverChangesAnAnswer) {
  int g = MemLayer(s, 5), lines = MemLayer(s, 3), multi = MemLayer(s, 8);
  Pts star, wind, dots;
  for (int i = 0; i <= 200; ++i) {
    double a = 2 * M_PI * i / 200, r = i % 2 ? 40 : 100;
    star.push_back({500 + r * std::cos(a), 300 + r * std::sin(a)});
    wind.push_back({i * 5.0, 300 + 80 * std::sin(i / 7.0)});
    if (i % 10 == 0) dots.push_back({i * 5.0, 300 + 80 * std::cos(i / 9.0)});
  }
  star.back() = star.front();
  int f = MemFeature(s, g, {star});
  int l = MemFeature(s, lines, {wind});
  int m = MemFeature(s, multi, {dots});
  std::mt19937 rng(7);
  std::uniform_real_distribution<double> ux(-10, 1010), uy(180, 420);
  for (double tol : {0.0, 0.5, 3.0}) {
    std::vector<XY> probe;
    for (int i = 0; i < 4000; ++i) probe.push_back({ux(rng), uy(rng)});
    // Points near the edges, where a rounding would show.
    for (size_t i = 0; i + 1 < star.size(); ++i)
      probe.push_back({star[i].first + tol * 0.999, star[i].second});
    for (size_t i = 0; i < wind.size(); ++i)
      probe.push_back({wind[i].first, wind[i].second + tol * 0.999});
    std::vector<int> full;
    s.Loc.MaskOn = false;
    for (XY p : probe)
      full.push_back(PointInPolygonOrEdge(s, g, f, p, nullptr, tol) * 4 +
                     PointOnLine(s, lines, l, p, nullptr, tol) * 2 +
                     PointOnMultipoint(s, multi, m, p, nullptr, tol));
    s.Loc.MaskOn = true;
    int rejected = 0;
    // Once per layer, then all probes.
    for (auto [lyr, rec, bit] : {std::tuple{g, f, 4}, {lines, l, 2}, {multi, m, 1}}) {
      BuildMask(s, lyr, rec, tol);
      ASSERT_TRUE(s.Loc.Mask.Active);
      for (size_t i = 0; i < probe.size(); ++i) {
        XY p = probe[i];
        bool got = bit == 4   ? PointInPolygonOrEdge(s, lyr, rec, p, nullptr, tol)
                   : bit == 2 ? PointOnLine(s, lyr, rec, p, nullptr, tol)
                              : PointOnMultipoint(s, lyr, rec, p, nullptr, tol);
        ASSERT_EQ(got, (full[i] & bit) != 0) << "tol " << tol << " point " << p.X << " " << p.Y;
        rejected += MaskRejects(s, lyr, rec, p);
      }
    }
    EXPECT_GT(rejected, 2000);
    FreeMask(s);
    EXPECT_FALSE(s.Loc.Mask.Active);
  }
}

TEST_F(SpatialFeatures, NoMaskForAPointOrATooLargeTolerance) {
  int pts = MemLayer(s, 1), g = MemLayer(s, 5);
  int p = MemFeature(s, pts, {{{1, 1}}});
  int f = MemFeature(s, g, {Square(0, 0, 10)});
  BuildMask(s, pts, p, 0);
  EXPECT_FALSE(s.Loc.Mask.Active);
  BuildMask(s, g, f, 5);
  EXPECT_FALSE(s.Loc.Mask.Active);
  EXPECT_TRUE(PointInPolygonLoose(s, g, f, P(-3, -3), nullptr, 5));
  BuildMask(s, g, f, 0.001);
  EXPECT_TRUE(s.Loc.Mask.Active);
  EXPECT_TRUE(MaskRejects(s, g, f, P(-0.5, 5)) == false); // outside its pixels: not judged
}

} // namespace
} // namespace velmora
