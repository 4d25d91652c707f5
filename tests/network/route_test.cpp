// The route search against its step-by-step oracle: the same lines, points and length on
// grids and random networks, search after search on one loaded network; the exact option
// against the bounded search where that one finds the optimum; the commands.
#include <gtest/gtest.h>

#include <cmath>

#include "model/file_util.h"
#include "net_fixture.h"
#include "network/build_net.h"
#include "network/net_files.h"
#include "network/route_run.h"
#include "network/route_search.h"
#include "session/commands.h"
#include "store/dbf_store.h"

using namespace velmora;
using namespace velmora::test;

namespace {

// A stop on feature f at the middle of its segment ending at vertex v (part 0).
NetLink StopOn(const Session& s, int lyr, int f, int v) {
  const ShpPart& p = s.Lyr[lyr].Shp.ShpRecs[size_t(f)].Part(0);
  const XY a = p.PartPoints()[size_t(v - 1)], b = p.PartPoints()[size_t(v)];
  return {f, (a.X + b.X) / 2, (a.Y + b.Y) / 2, v};
}

void ExpectSameRoute(const Session& s, int lyr, const OracleRoute& want) {
  const NetBlock& net = s.Lyr[lyr].Net;
  EXPECT_EQ(net.NetRouteLen, want.Len);
  ASSERT_EQ(net.NetRoutes.size(), want.Routes.size());
  for (size_t i = 0; i < want.Routes.size(); ++i) {
    EXPECT_EQ(net.NetRoutes[i].RouteFeature, want.Routes[i].RouteFeature) << i;
    ASSERT_EQ(net.NetRoutes[i].RoutePts.size(), want.Routes[i].RoutePts.size()) << i;
    for (size_t k = 0; k < want.Routes[i].RoutePts.size(); ++k) {
      EXPECT_EQ(net.NetRoutes[i].RoutePts[k].X, want.Routes[i].RoutePts[k].X);
      EXPECT_EQ(net.NetRoutes[i].RoutePts[k].Y, want.Routes[i].RoutePts[k].Y);
    }
  }
}

struct Net {
  NetFixture f;
  int lyr = 0;
  std::vector<OracleNode> nodes;
  int longRoutes = 0; // routes over more than one line
  Net(const std::vector<std::string>& wkts, double tol = 0) {
    lyr = f.Lines("net", wkts);
    if (lyr < 1 || !BuildNet(f.s, lyr, tol)) return;
    nodes = OracleLoad(ReadFile(NtxPathOf(f.s.Lyr[lyr])), ReadFile(NetPathOf(f.s.Lyr[lyr])),
                       f.s.Lyr[lyr].Shp.RecCount);
    LoadNet(f.s, lyr);
  }
  // The product and the oracle between two stops; both keep what they learnt.
  void Compare(const NetLink& a, const NetLink& b) {
    f.s.Net.NetStops[1] = a;
    f.s.Net.NetStops[2] = b;
    ClearLayerRoute(f.s, lyr);
    ASSERT_EQ(GetShortestPath(f.s, lyr), RouteStatus::Done);
    const OracleRoute want = OracleSearch(f.s, lyr, nodes, a, b);
    SCOPED_TRACE("from " + std::to_string(a.LinkFeature) + " to " + std::to_string(b.LinkFeature));
    ExpectSameRoute(f.s, lyr, want);
    if (want.Routes.size() > 1) ++longRoutes;
    const NetNodeTable& t = f.s.Lyr[lyr].Net.NetNodes;
    for (size_t i = 1; i < nodes.size(); ++i) {
      ASSERT_EQ(bool(t.Seen[i]), nodes[i].Seen) << i;
      ASSERT_EQ(t.Remaining[i], nodes[i].Remaining) << i;
    }
  }
};

} // namespace

TEST(RouteSearch, BlockGridEqualsTheOracle) {
  Net n(GridWkts(8, 100, true));
  ASSERT_FALSE(n.nodes.empty());
  const int count = n.f.s.Lyr[n.lyr].Shp.RecCount;
  std::mt19937 rng(5);
  std::uniform_int_distribution<int> pick(1, count);
  for (int k = 0; k < 12; ++k)
    n.Compare(StopOn(n.f.s, n.lyr, pick(rng), 1), StopOn(n.f.s, n.lyr, pick(rng), 1));
  EXPECT_GE(n.longRoutes, 8);
}

TEST(RouteSearch, StreetGridEqualsTheOracle) {
  Net n(GridWkts(9, 50, false));
  ASSERT_FALSE(n.nodes.empty());
  std::mt19937 rng(9);
  std::uniform_int_distribution<int> pick(1, 18), seg(1, 8);
  for (int k = 0; k < 12; ++k)
    n.Compare(StopOn(n.f.s, n.lyr, pick(rng), seg(rng)), StopOn(n.f.s, n.lyr, pick(rng), seg(rng)));
  EXPECT_GE(n.longRoutes, 8);
}

TEST(RouteSearch, RandomNetworksEqualTheOracle) {
  for (unsigned seed : {1u, 2u, 3u}) {
    Net n(RandomWkts(400, 1000, seed), seed == 3 ? 5 : 0);
    ASSERT_FALSE(n.nodes.empty());
    std::mt19937 rng(seed);
    std::uniform_int_distribution<int> pick(1, 400);
    for (int k = 0; k < 8; ++k)
      n.Compare(StopOn(n.f.s, n.lyr, pick(rng), 1), StopOn(n.f.s, n.lyr, pick(rng), 1));
    EXPECT_GE(n.longRoutes, 3) << seed;
  }
}

TEST(RouteSearch, SameLineIdenticalStopsAndCrossingLines) {
  Net n({"LINESTRING (0 0,10 0,20 0)", "LINESTRING (15 -5,15 5)", "LINESTRING (50 50,60 60)"});
  ASSERT_FALSE(n.nodes.empty());
  Session& s = n.f.s;
  // On one line: its stretch between the two points, at the first factor.
  n.Compare({1, 2, 0, 1}, {1, 12, 0, 2});
  EXPECT_EQ(s.Lyr[n.lyr].Net.NetRouteLen, 10);
  ASSERT_EQ(s.Lyr[n.lyr].Net.NetRoutes.size(), 1u);
  EXPECT_EQ(s.Lyr[n.lyr].Net.NetRoutes[0].RoutePts.size(), 3u);
  // The same point twice: length 0 and no piece.
  n.Compare({1, 2, 0, 1}, {1, 2, 0, 1});
  EXPECT_EQ(s.Lyr[n.lyr].Net.NetRouteLen, 0);
  EXPECT_TRUE(s.Lyr[n.lyr].Net.NetRoutes.empty());
  // Two crossing lines: two pieces meeting at the crossing.
  n.Compare({1, 2, 0, 1}, {2, 15, 4, 1});
  const auto& r = s.Lyr[n.lyr].Net.NetRoutes;
  ASSERT_EQ(r.size(), 2u);
  EXPECT_EQ(r[0].RoutePts.back().X, 15);
  EXPECT_EQ(r[1].RoutePts.front().X, 15);
  EXPECT_DOUBLE_EQ(s.Lyr[n.lyr].Net.NetRouteLen, 13 + 4);
  // A line with no links as To: no route after the last factor.
  n.Compare({1, 2, 0, 1}, {3, 55, 55, 1});
  EXPECT_TRUE(s.Lyr[n.lyr].Net.NetRoutes.empty());
  EXPECT_EQ(s.Lyr[n.lyr].Net.NetRouteLen, 0);
}

TEST(RouteSearch, FactorFieldScalesLines) {
  NetFixture f;
  const std::string shp = GdalLayer(
      f.dir, "fac", {"LINESTRING (0 0,100 0)", "LINESTRING (50 -10,50 10)"}, "-lco SHPT=ARC");
  ASSERT_FALSE(shp.empty());
  AddShape(f.s, shp, false);
  const int lyr = FindLyrByFile(f.s, shp);
  ASSERT_TRUE(BuildNet(f.s, lyr, 0));
  LyrRec& l = f.s.Lyr[lyr];
  l.NuseFactor = 1;
  l.NfactorField = 1; // "id": 1 and 2
  auto nodes = OracleLoad(ReadFile(NtxPathOf(l)), ReadFile(NetPathOf(l)), 2);
  f.s.Net.NetStops[1] = {1, 10, 0, 1};
  f.s.Net.NetStops[2] = {2, 50, 10, 1};
  ASSERT_EQ(GetShortestPath(f.s, lyr), RouteStatus::Done);
  const OracleRoute want = OracleSearch(f.s, lyr, nodes, {1, 10, 0, 1}, {2, 50, 10, 1});
  ExpectSameRoute(f.s, lyr, want);
  EXPECT_DOUBLE_EQ(f.s.Lyr[lyr].Net.NetRouteLen, 40 * 1 + 10 * 2);
}

TEST(RouteSearch, ExactOptionMatchesWhereTheBoundedSearchIsOptimal) {
  Net n(GridWkts(10, 100, true));
  ASSERT_FALSE(n.nodes.empty());
  Session& s = n.f.s;
  const int count = s.Lyr[n.lyr].Shp.RecCount;
  std::mt19937 rng(21);
  std::uniform_int_distribution<int> pick(1, count);
  for (int k = 0; k < 10; ++k) {
    s.Net.NetStops[1] = StopOn(s, n.lyr, pick(rng), 1);
    s.Net.NetStops[2] = StopOn(s, n.lyr, pick(rng), 1);
    ASSERT_EQ(GetShortestPath(s, n.lyr), RouteStatus::Done);
    const double bounded = s.Lyr[n.lyr].Net.NetRouteLen;
    ASSERT_EQ(GetExactShortestPath(s, n.lyr), RouteStatus::Done);
    const double exact = s.Lyr[n.lyr].Net.NetRouteLen;
    // On a grid every monotone route is a shortest one: Manhattan length.
    const NetLink& a = s.Net.NetStops[1];
    const NetLink& b = s.Net.NetStops[2];
    const double manhattan = std::fabs(a.LinkX - b.LinkX) + std::fabs(a.LinkY - b.LinkY);
    EXPECT_NEAR(exact, bounded, 1e-9) << k;
    EXPECT_LE(exact, manhattan + 200 + 1e-9) << k; // a stop mid-block may need a detour
    double pieces = 0;
    for (const NetRoute& r : s.Lyr[n.lyr].Net.NetRoutes)
      for (size_t i = 1; i < r.RoutePts.size(); ++i)
        pieces += std::hypot(r.RoutePts[i].X - r.RoutePts[i - 1].X,
                             r.RoutePts[i].Y - r.RoutePts[i - 1].Y);
    EXPECT_NEAR(pieces, exact, 1e-6);
  }
}

TEST(RouteSearch, NotBuiltAsksToBuildFirst) {
  NetFixture f;
  const int lyr = f.Lines("nb", {"LINESTRING (0 0,1 1)"});
  f.s.Net.NetStops[1] = f.s.Net.NetStops[2] = {1, 0.5, 0.5, 1};
  EXPECT_EQ(GetShortestPath(f.s, lyr), RouteStatus::NotBuilt);
  ASSERT_FALSE(f.host.boxes.empty());
  EXPECT_EQ(f.host.boxes.back(), "nb.shp : NetWork Message Box |  Please Build Network first\r\n "
                                 "Before Getting Shortest Path ");
}

TEST(RouteCommands, BuildAndSearchByCommand) {
  NetFixture f;
  const std::string shp = GdalLayer(f.dir, "cmd", GridWkts(6, 100, true), "-lco SHPT=ARC");
  ASSERT_FALSE(shp.empty());
  auto exec = [&](const std::string& line) {
    ArgStrSplit(f.s, line);
    ArgStrExecute(f.s);
  };
  exec("BUILD NETWORK \"" + shp + "\" 0");
  const int lyr = FindLyrByFile(f.s, shp);
  ASSERT_GT(lyr, 0);
  EXPECT_TRUE(FileExists(ChangeExt(shp, "net")));
  EXPECT_EQ(f.host.logged.back(), "Building Shortest Path NetWork for Layer cmd.shp");
  exec("SHORTEST PATH \"" + shp + "\" 50 0 450 500");
  const size_t n = f.host.logged.size();
  ASSERT_GE(n, 3u);
  EXPECT_EQ(f.host.logged[n - 3], "Get Shortest Path in Layer cmd.shp");
  EXPECT_EQ(f.host.logged[n - 2], "Shortest Path Length = 900");
  EXPECT_EQ(f.host.logged[n - 1].rfind("Shortest Path Features = ", 0), 0u);
  exec("SHORTEST PATH \"" + shp + "\" 50 0 450 500 EXACT");
  EXPECT_EQ(f.host.logged[f.host.logged.size() - 2], "Shortest Path Length = 900");
  exec("CLEAR SHORTEST PATH");
  EXPECT_EQ(f.host.logged.back(), "Clear Shortest Path");
  EXPECT_TRUE(f.s.Lyr[lyr].Net.NetRoutes.empty());
  // No line at a point: refused with the reason.
  exec("SHORTEST PATH \"" + shp + "\" 50 50 450 500");
  EXPECT_EQ(f.host.logged.back(), " *** no line of the layer at From *** ");
}

namespace {

// Sets the terminate flag of the layer at every yield of the search.
struct StopHost : RecordingHost {
  Session* s = nullptr;
  int lyr = 0;
  void Yield() override {
    if (s && s->Lyr[lyr].LyrBusy) s->Lyr[lyr].LyrTerminate = -1;
  }
};

} // namespace

TEST(RouteSearch, TerminateStopsTheSearchAndLogsTheCancel) {
  StopHost host;
  Session s{host};
  s.MapView.MapTarget = 1;
  const std::string dir = TempDir("route stop");
  const std::string shp = GdalLayer(dir, "g", GridWkts(6, 100, true), "-lco SHPT=ARC");
  ASSERT_FALSE(shp.empty());
  AddShape(s, shp, false);
  const int lyr = FindLyrByFile(s, shp);
  ASSERT_TRUE(BuildNet(s, lyr, 0));
  s.Net.NetStops[1] = StopOn(s, lyr, 1, 1);
  s.Net.NetStops[2] = StopOn(s, lyr, s.Lyr[lyr].Shp.RecCount, 1);
  host.s = &s, host.lyr = lyr;
  EXPECT_EQ(RunRoute(s, lyr, false), RouteStatus::Canceled);
  EXPECT_EQ(host.logged.back(), " *** Get Shortest Path in Layer g.shp has been canceled *** ");
  EXPECT_EQ(s.Lyr[lyr].LyrBusy, 0);
  EXPECT_TRUE(s.Lyr[lyr].Net.NetRoutes.empty());
}
