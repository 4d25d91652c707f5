#include <gtest/gtest.h>

#include <sstream>

#include "coords/transform_filter.h"
#include "coords/utm_transform.h"
#include "proj_oracle.h"

namespace velmora {
namespace {

struct FilterRun {
  int status;
  std::string out, err;
};

FilterRun Filter(Session& s, const std::string& input, const TransformOptions& opt) {
  std::istringstream in(input);
  std::ostringstream out, err;
  int st = RunTransformFilter(s, in, out, err, opt);
  return {st, out.str(), err.str()};
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> out;
  std::istringstream in(text);
  for (std::string l; std::getline(in, l);) out.push_back(l);
  return out;
}

TEST(TransformFilter, ArgumentsAreParsed) {
  TransformOptions o;
  std::string err;
  ASSERT_TRUE(ParseTransformArgs(
      {"--transform", "--datum", "5", "--zone", "33", "--south", "--inverse"}, o, err))
      << err;
  EXPECT_EQ(o.Datum, 5);
  EXPECT_EQ(o.Zone, 33);
  EXPECT_TRUE(o.South);
  EXPECT_TRUE(o.Inverse);

  TransformOptions d;
  ASSERT_TRUE(ParseTransformArgs({}, d, err));
  EXPECT_EQ(d.Datum, 23);
  EXPECT_EQ(d.Zone, 0);

  for (std::vector<std::string> bad : {std::vector<std::string>{"--zone", "0"},
                                       {"--zone", "61"},
                                       {"--zone", ""},
                                       {"--zone"},
                                       {"--datum", "0"},
                                       {"--datum", "x"},
                                       {"--datum", "3", "--prj", "a.prj"},
                                       {"--bogus"},
                                       {"--inverse"}}) {
    TransformOptions b;
    std::string e;
    EXPECT_FALSE(ParseTransformArgs(bad, b, e)) << bad[0];
    EXPECT_FALSE(e.empty());
  }
}

TEST(TransformFilter, ForwardTakesEachPointsZone) {
  Session s;
  FilterRun r = Filter(s, "45 9\n-33.9 18.4\n  60\t5  \n", TransformOptions{});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.err, "");
  std::vector<std::string> lines = Lines(r.out);
  ASSERT_EQ(lines.size(), 3u);
  // Round trip of the printed digits: the text is the double itself.
  XY cape = LatLonToUTM(s, -33.9, 18.4, 34, false, 23);
  char want[80];
  std::snprintf(want, sizeof want, "%.17g %.17g", cape.X, cape.Y);
  EXPECT_EQ(lines[1], want);
  // The first point against PROJ in its zone 32.
  std::vector<test::Pt> p = test::Cs2cs("+proj=longlat +datum=WGS84",
                                        "+proj=utm +zone=32 +datum=WGS84", {{9, 45}, {5, 60}});
  ASSERT_EQ(p.size(), 2u);
  double x, y;
  ASSERT_EQ(std::sscanf(lines[0].c_str(), "%lf %lf", &x, &y), 2);
  EXPECT_NEAR(x, p[0].A, 1e-3);
  EXPECT_NEAR(y, p[0].B, 1e-3);
  ASSERT_EQ(std::sscanf(lines[2].c_str(), "%lf %lf", &x, &y), 2); // Norway: zone 32 too
  EXPECT_NEAR(x, p[1].A, 1e-3);
}

TEST(TransformFilter, BadLinesGiveEmptyLinesAndGoOn) {
  Session s;
  TransformOptions o;
  o.Zone = 31;
  FilterRun r = Filter(s, "10 3\nabc\n\n1 2 3\n10,5 3\n1e400 3\n10 3", o);
  EXPECT_EQ(r.status, 1);
  std::vector<std::string> lines = Lines(r.out);
  ASSERT_EQ(lines.size(), 7u);
  EXPECT_FALSE(lines[0].empty());
  for (int i = 1; i <= 5; ++i) EXPECT_EQ(lines[size_t(i)], "") << i;
  EXPECT_EQ(lines[6], lines[0]); // last line without a newline still converted
  EXPECT_EQ(Lines(r.err).size(), 5u);
  EXPECT_NE(r.err.find("line 2"), std::string::npos);
  // Out of range is not a bad line: it is the origin.
  FilterRun o2 = Filter(s, "95 3\n", o);
  EXPECT_EQ(o2.out, "0 0\n");
}

TEST(TransformFilter, InverseWritesLatitudeFirst) {
  Session s;
  TransformOptions o;
  o.Inverse = true, o.Zone = 34, o.South = true;
  XY cape = LatLonToUTM(s, -33.9, 18.4, 34, true, 23);
  char in[80];
  std::snprintf(in, sizeof in, "%.17g %.17g\n", cape.X, cape.Y);
  FilterRun r = Filter(s, in, o);
  double lat, lon;
  ASSERT_EQ(std::sscanf(r.out.c_str(), "%lf %lf", &lat, &lon), 2);
  EXPECT_NEAR(lat, -33.9, 1e-9);
  EXPECT_NEAR(lon, 18.4, 1e-9);
}

TEST(TransformFilter, PrjRecordAndUnusableRecords) {
  Session s;
  std::string dir = test::TempDir("filter");
  int st = -1;
  test::WriteFile(dir + "/bng.prj", test::RunCmd("gdalsrsinfo -o wkt_esri EPSG:27700", &st));
  TransformOptions o;
  o.PrjFile = dir + "/bng.prj";
  FilterRun r = Filter(s, "49 -2\n", o);
  EXPECT_EQ(r.status, 0) << r.err;
  double x, y;
  ASSERT_EQ(std::sscanf(r.out.c_str(), "%lf %lf", &x, &y), 2);
  EXPECT_NEAR(x, 400000, 1e-6); // the true origin of the grid
  EXPECT_NEAR(y, -100000, 1e-6);

  Session s2;
  TransformOptions none;
  none.PrjFile = dir + "/missing.prj";
  EXPECT_EQ(Filter(s2, "1 1\n", none).status, 2);
  TransformOptions far;
  far.Datum = 24;
  FilterRun f = Filter(s2, "1 1\n", far);
  EXPECT_EQ(f.status, 2);
  EXPECT_EQ(f.out, "");
}

} // namespace
} // namespace velmora
