// BuildNet against the quadratic walk it stands for: the same bytes on layers made by GDAL,
// and the cases of crossings, touches, overlaps, deleted lines and a terminate.
#include <gtest/gtest.h>

#include <cstring>

#include "frame/busy.h"
#include "model/file_util.h"
#include "net_fixture.h"
#include "network/build_net.h"
#include "network/net_files.h"

using namespace velmora;
using namespace velmora::test;

namespace {

struct Built {
  std::string net, ntx;
};

Built Build(NetFixture& f, int lyr, double tol) {
  EXPECT_TRUE(BuildNet(f.s, lyr, tol));
  return {ReadFile(NetPathOf(f.s.Lyr[lyr])), ReadFile(NtxPathOf(f.s.Lyr[lyr]))};
}

void ExpectSameAsOracle(NetFixture& f, int lyr, double tol) {
  Built got = Build(f, lyr, tol);
  std::string net, ntx;
  OracleBuild(f.s, lyr, tol, net, ntx);
  EXPECT_EQ(got.ntx, ntx) << "tolerance " << tol;
  EXPECT_EQ(got.net, net) << "tolerance " << tol;
}

NetLink LinkAt(const std::string& net, int k) {
  NetLink l;
  std::memcpy(&l.LinkFeature, net.data() + k * 24, 4);
  std::memcpy(&l.LinkX, net.data() + k * 24 + 4, 8);
  std::memcpy(&l.LinkY, net.data() + k * 24 + 12, 8);
  std::memcpy(&l.LinkVertex, net.data() + k * 24 + 20, 4);
  return l;
}

int32_t Row(const std::string& ntx, int i, int field) {
  int32_t v;
  std::memcpy(&v, ntx.data() + (i - 1) * 8 + field * 4, 4);
  return v;
}

} // namespace

TEST(BuildNet, RandomLinesEqualTheQuadraticWalk) {
  NetFixture f;
  const int lyr = f.Lines("random", RandomWkts(1500, 1000, 7));
  ASSERT_GT(lyr, 0);
  ExpectSameAsOracle(f, lyr, 0);
  ExpectSameAsOracle(f, lyr, 0.5);
  ExpectSameAsOracle(f, lyr, 25);
}

TEST(BuildNet, GridsAndMultiPartLinesEqualTheQuadraticWalk) {
  NetFixture f;
  const int blocks = f.Lines("blocks", GridWkts(12, 100, true));
  const int streets = f.Lines("streets", GridWkts(12, 100, false));
  std::vector<std::string> multi = RandomWkts(300, 500, 11);
  for (int i = 0; i < 60; ++i)
    multi.push_back("MULTILINESTRING ((" + Num(i * 8) + " 0," + Num(i * 8 + 3) + " 500),(0 " +
                    Num(i * 8) + ",500 " + Num(i * 8 + 1) + "))");
  const int parts = f.Lines("multi", multi);
  ASSERT_GT(blocks * streets * parts, 0);
  for (int lyr : {blocks, streets, parts}) {
    ExpectSameAsOracle(f, lyr, 0);
    ExpectSameAsOracle(f, lyr, 1);
  }
}

TEST(BuildNet, EndsTouchesAndOverlaps) {
  NetFixture f;
  const int lyr = f.Lines("cases", {
                                       "LINESTRING (0 0,5 0,10 0)",  // 1
                                       "LINESTRING (10 0,10 10)",    // 2 meets 1 at its end
                                       "LINESTRING (20 0,30 0)",     // 3
                                       "LINESTRING (22 0,28 0)",     // 4 lies on 3: no link
                                       "LINESTRING (50 50,60 60)",   // 5 crosses nothing
                                       "LINESTRING (5 -5,5 -0.004)", // 6 stops short of 1
                                   });
  ASSERT_GT(lyr, 0);
  Built b = Build(f, lyr, 0);
  ASSERT_EQ(b.ntx.size(), 6u * 8);
  // 1 and 2 share an end vertex: one link each way, on 1's last segment and 2's first.
  EXPECT_EQ(Row(b.ntx, 1, 1), 1);
  NetLink k = LinkAt(b.net, 0);
  EXPECT_EQ(k.LinkFeature, 2);
  EXPECT_EQ(k.LinkVertex, 2);
  EXPECT_EQ(k.LinkX, 10);
  EXPECT_EQ(Row(b.ntx, 2, 1), 1);
  EXPECT_EQ(LinkAt(b.net, 1).LinkVertex, 1);
  // Collinear overlap: nothing; a line that touches nothing has a count of 0 and the
  // offset of the row after it.
  for (int i : {3, 4, 5, 6}) EXPECT_EQ(Row(b.ntx, i, 1), 0) << i;
  EXPECT_EQ(Row(b.ntx, 5, 0), Row(b.ntx, 6, 0));
  EXPECT_EQ(b.net.size(), 2u * 24);
  // With a tolerance 6 reaches 1: the lines' point lies within both widened boxes.
  b = Build(f, lyr, 0.01);
  EXPECT_EQ(Row(b.ntx, 6, 1), 2); // one link for each of the two segments of 1 that end at x 5
  EXPECT_EQ(Row(b.ntx, 1, 1), 2);
  ExpectSameAsOracle(f, lyr, 0.01);
}

TEST(BuildNet, DeletedLinesGetNoLinksToThem) {
  NetFixture f;
  const int lyr = f.Lines(
      "del", {"LINESTRING (0 0,10 10)", "LINESTRING (0 10,10 0)", "LINESTRING (5 -1,5 11)"});
  ASSERT_GT(lyr, 0);
  f.s.Lyr[lyr].Shp.ShpRecs[2].ShapeType = 0;
  Built b = Build(f, lyr, 0);
  ASSERT_EQ(b.ntx.size(), 3u * 8);
  for (int k = 0; k < int(b.net.size() / 24); ++k) EXPECT_NE(LinkAt(b.net, k).LinkFeature, 2);
  ExpectSameAsOracle(f, lyr, 0);
}

TEST(BuildNet, EmptyAndMeasuredLayersAndOtherTypes) {
  NetFixture f;
  const int m =
      f.Lines("m", {"LINESTRING M (0 0 1,2 2 1)", "LINESTRING M (0 2 1,2 0 1)"}, "-lco SHPT=ARCM");
  ASSERT_GT(m, 0);
  Built b = Build(f, m, 0);
  EXPECT_EQ(b.ntx.size(), 16u);
  EXPECT_EQ(b.net.size(), 48u);
  const int pts = f.Lines("pts", {"POINT (1 1)"}, "");
  ASSERT_GT(pts, 0);
  EXPECT_FALSE(BuildNet(f.s, pts, 0));
  EXPECT_FALSE(FileExists(NetPathOf(f.s.Lyr[pts])));
  f.s.Lyr[m].Shp.RecCount = 0;
  b = Build(f, m, 0);
  EXPECT_TRUE(b.net.empty());
  EXPECT_TRUE(b.ntx.empty());
  EXPECT_EQ(f.host.logged.back(), "Building Shortest Path NetWork for Layer m.shp");
}

namespace {

// Sets the terminate flag of a layer at its first yield.
struct TerminatingHost : RecordingHost {
  Session* s = nullptr;
  int lyr = 0;
  void Yield() override {
    RecordingHost::Yield();
    if (s) SetLyrTerminate(*s, lyr, true);
  }
};

} // namespace

TEST(BuildNet, TerminateLeavesFilesOfTheRowsDone) {
  TerminatingHost host;
  Session s{host};
  s.MapView.MapTarget = 1;
  const std::string dir = TempDir("net terminate");
  const std::string shp = GdalLayer(dir, "big", RandomWkts(3000, 1000, 3));
  ASSERT_FALSE(shp.empty());
  AddShape(s, shp, false);
  const int lyr = FindLyrByFile(s, shp);
  host.s = &s, host.lyr = lyr;
  ASSERT_TRUE(BuildNet(s, lyr, 0));
  const std::string ntx = ReadFile(NtxPathOf(s.Lyr[lyr])), net = ReadFile(NetPathOf(s.Lyr[lyr]));
  const int rows = int(ntx.size() / 8);
  EXPECT_GT(rows, 0);
  EXPECT_LT(rows, 3000);
  // The rows written are the full build's, and the records are theirs.
  std::string fullNet, fullNtx;
  OracleBuild(s, lyr, 0, fullNet, fullNtx);
  EXPECT_EQ(ntx, fullNtx.substr(0, ntx.size()));
  EXPECT_EQ(net, fullNet.substr(0, net.size()));
  EXPECT_EQ(size_t(Row(ntx, rows, 0) + 24 * Row(ntx, rows, 1)), net.size());
  EXPECT_EQ(host.logged.back(), " *** Building Shortest Path NetWork has been canceled *** ");
  // Partial files are refused by the search.
  EXPECT_FALSE(LoadNet(s, lyr));
}
