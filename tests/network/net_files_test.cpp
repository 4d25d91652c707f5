// The network files: the reader takes what the build writes and refuses partial, stale and
// hostile files with a reason, without reading outside them.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "model/file_util.h"
#include "net_fixture.h"
#include "network/net_files.h"

using namespace velmora;
using namespace velmora::test;

namespace {

struct Pair {
  std::string ntx, net;
};

// Three lines: 1 has links to 2 and 3, 2 and 3 one each back to 1.
Pair Three() {
  Pair p;
  AppendNtxRow(p.ntx, 0, 2);
  AppendNtxRow(p.ntx, 48, 1);
  AppendNtxRow(p.ntx, 72, 1);
  AppendNetLink(p.net, {2, 1.5, 2.5, 1});
  AppendNetLink(p.net, {3, 3.5, 4.5, 2});
  AppendNetLink(p.net, {1, 1.5, 2.5, 3});
  AppendNetLink(p.net, {1, 3.5, 4.5, 1});
  return p;
}

} // namespace

TEST(NetFiles, RecordLayoutsAreLittleEndianAndPacked) {
  std::string net, ntx;
  AppendNetLink(net, {7, 1.0, -2.0, 3});
  AppendNtxRow(ntx, 24, 5);
  ASSERT_EQ(net.size(), 24u);
  ASSERT_EQ(ntx.size(), 8u);
  EXPECT_EQ(net.substr(0, 4), std::string("\x07\0\0\0", 4));
  EXPECT_EQ(net.substr(4, 8), std::string("\0\0\0\0\0\0\xf0\x3f", 8)); // 1.0
  EXPECT_EQ(net.substr(12, 8), std::string("\0\0\0\0\0\0\0\xc0", 8));  // -2.0
  EXPECT_EQ(net.substr(20, 4), std::string("\x03\0\0\0", 4));
  EXPECT_EQ(ntx, std::string("\x18\0\0\0\x05\0\0\0", 8));
}

TEST(NetFiles, ReadsRowsAndRecords) {
  Pair p = Three();
  NetNodeTable t;
  std::string why;
  ASSERT_TRUE(ReadNetTables(p.ntx, p.net, 3, t, why)) << why;
  EXPECT_EQ(t.NetNodeUB, 3);
  EXPECT_EQ(t.LinkUB(1), 1);
  EXPECT_EQ(t.LinkUB(2), 0);
  EXPECT_EQ(t.LinksOf(1)[1].LinkFeature, 3);
  EXPECT_EQ(t.LinksOf(3)[0].LinkVertex, 1);
  EXPECT_DOUBLE_EQ(t.LinksOf(2)[0].LinkY, 2.5);
  // Rows beyond the layer's features are not read, but a link to a feature the layer no
  // longer has makes the files stale.
  EXPECT_FALSE(ReadNetTables(p.ntx, p.net, 2, t, why));
}

TEST(NetFiles, RefusesShortStaleAndHostileFiles) {
  const Pair good = Three();
  NetNodeTable t;
  std::string why;
  // Fewer rows than features: a stale index or a terminated build.
  EXPECT_FALSE(ReadNetTables(good.ntx.substr(0, 16), good.net, 3, t, why));
  EXPECT_NE(why.find("2 rows for 3 features"), std::string::npos) << why;
  EXPECT_FALSE(t.Loaded);
  // Records cut off.
  EXPECT_FALSE(ReadNetTables(good.ntx, good.net.substr(0, 80), 3, t, why));
  // An offset past the end, a count that cannot fit, a negative count, a gap.
  for (auto [at, v] :
       {std::pair{16, 1 << 30}, std::pair{12, 0x7fffffff}, std::pair{4, -1}, std::pair{8, 72}}) {
    Pair p = good;
    Put32(p.ntx, size_t(at), uint32_t(v));
    EXPECT_FALSE(ReadNetTables(p.ntx, p.net, 3, t, why)) << at;
    EXPECT_NE(why.find("build the network again"), std::string::npos);
  }
  // A record naming a feature the layer does not have, or a point that is not a number.
  Pair p = good;
  Put32(p.net, 24, 9);
  EXPECT_FALSE(ReadNetTables(p.ntx, p.net, 3, t, why));
  p = good;
  const double nan = std::numeric_limits<double>::quiet_NaN();
  p.net.replace(28, 8, reinterpret_cast<const char*>(&nan), 8);
  EXPECT_FALSE(ReadNetTables(p.ntx, p.net, 3, t, why));
  // An empty layer reads empty files.
  EXPECT_TRUE(ReadNetTables("", "", 0, t, why));
}

TEST(NetFiles, LoadNetTakesLineLayersWithBothFiles) {
  NetFixture f;
  const int lyr =
      f.Lines("three", {"LINESTRING (0 0,2 2)", "LINESTRING (0 2,2 0)", "LINESTRING (3 0,3 3)"});
  ASSERT_GT(lyr, 0);
  EXPECT_FALSE(LoadNet(f.s, lyr)); // not built: quietly nothing
  EXPECT_TRUE(f.host.logged.empty() || f.host.logged.back().find("canceled") == std::string::npos);
  Pair p = Three();
  WriteFile(NtxPathOf(f.s.Lyr[lyr]), p.ntx);
  WriteFile(NetPathOf(f.s.Lyr[lyr]), p.net);
  ASSERT_TRUE(LoadNet(f.s, lyr));
  EXPECT_EQ(f.s.Lyr[lyr].Net.NetNodes.LinkUB(1), 1);
  WriteFile(NtxPathOf(f.s.Lyr[lyr]), p.ntx.substr(0, 8));
  EXPECT_FALSE(LoadNet(f.s, lyr));
  EXPECT_FALSE(f.s.Lyr[lyr].Net.NetNodes.Loaded);
  ASSERT_GE(f.host.logged.size(), 2u);
  EXPECT_EQ(f.host.logged[f.host.logged.size() - 2],
            " *** Load Shortest Path NetWork three.shp has been canceled *** ");
}

TEST(NetFiles, MeasuredLinesAreNeverLoaded) {
  NetFixture f;
  const int lyr =
      f.Lines("m", {"LINESTRING M (0 0 1,2 2 1)", "LINESTRING M (0 2 1,2 0 1)"}, "-lco SHPT=ARCM");
  ASSERT_GT(lyr, 0);
  ASSERT_EQ(f.s.Lyr[lyr].Shp.ShpType, 23);
  Pair p;
  AppendNtxRow(p.ntx, 0, 0);
  AppendNtxRow(p.ntx, 0, 0);
  WriteFile(NtxPathOf(f.s.Lyr[lyr]), p.ntx);
  WriteFile(NetPathOf(f.s.Lyr[lyr]), "");
  EXPECT_FALSE(LoadNet(f.s, lyr));
  EXPECT_FALSE(NetFilesReady(f.s, lyr));
}
