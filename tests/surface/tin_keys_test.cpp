// The text keys that order the points and the segments, and the numeric order standing in
// for them.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "surface/tin_keys.h"
#include "surface/tin_points.h"

namespace velmora {
namespace {

TEST(TinKeys, FormatPadsTwentyDigitsAndDropsTrailingZeros) {
  EXPECT_EQ(FormatKey(12), "00000000000000000012.");
  EXPECT_EQ(FormatKey(0.5), "00000000000000000000.5");
  EXPECT_EQ(FormatKey(-3.25), "-00000000000000000003.25");
  EXPECT_EQ(FormatKey(-0.0), "00000000000000000000.");
  EXPECT_EQ(FormatKey(1e-30), "00000000000000000000.");
  EXPECT_EQ(FormatKey(0.1), "00000000000000000000.1000000000000000055511151");
}

TEST(TinKeys, NumbersCompareAsTheirTexts) {
  std::mt19937 g(1);
  std::uniform_real_distribution<double> u(0, 1);
  std::vector<double> v;
  for (int i = 0; i < 300; ++i) v.push_back(std::pow(10, u(g) * 40 - 30) * u(g));
  v.push_back(1e-26), v.push_back(2e-26), v.push_back(0), v.push_back(6e-26);
  for (double a : v)
    for (double b : v) {
      int text = FormatKey(a).compare(FormatKey(b));
      text = text < 0 ? -1 : text > 0 ? 1 : 0;
      ASSERT_EQ(CompareKeyMag(a, b), text) << a << " " << b;
    }
}

TEST(TinKeys, RowKeysRunNorthToSouthWestToEast) {
  std::vector<TinPoint> raw;
  for (double y : {-20.0, 15.0, 0.0, -3.0})
    for (double x : {7.0, -4.0, 12.0, -30.0, 0.5}) raw.push_back({x, y, 0});
  std::mt19937 g(2);
  std::shuffle(raw.begin(), raw.end(), g);
  SurfaceState st;
  std::vector<int> order = OrderPoints(st, raw, 2);
  for (size_t i = 1; i < order.size(); ++i) {
    const TinPoint &p = raw[size_t(order[i - 1])], &q = raw[size_t(order[i])];
    EXPECT_TRUE(p.Y > q.Y || (p.Y == q.Y && p.X < q.X))
        << p.X << "," << p.Y << " " << q.X << "," << q.Y;
  }
}

TEST(TinKeys, AZeroXKeepsThePreviousXPart) {
  // 1/0 fails: the point at X = 0 takes the X part of the point before it, here X = 5, and
  // so sorts as if it stood at X = 5.
  std::vector<TinPoint> raw = {{5, 1, 0}, {0, 1, 0}, {3, 1, 0}, {8, 1, 0}};
  SurfaceState st;
  std::vector<int> order = OrderPoints(st, raw, 2);
  EXPECT_EQ(order, (std::vector<int>{2, 0, 1, 3}));
}

} // namespace
} // namespace velmora
