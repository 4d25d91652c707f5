#include <gtest/gtest.h>

#include <random>

#include "frame/busy.h"
#include "location_layers.h"
#include "location_oracle.h"
#include "mem_layers.h"
#include "query/spatial_index.h"
#include "session/commands.h"
#include "session/layer_life.h"
#include "session/map_init.h"
#include "store/dbf_store.h"
#include "store/shp_store.h"

namespace velmora {
namespace {

using test::LocationFiles;

struct LocationLayers : ::testing::Test {
  static inline std::string dir;
  static inline LocationFiles files;
  static void SetUpTestSuite() {
    dir = test::TempDir("location");
    files = test::MakeLocationFiles(dir);
  }

  // One session for the oracle, one for the product, with the same layers and selections.
  test::RecordingHost hostA, hostB;
  Session a{hostA}, b{hostB};
  void SetUp() override {
    ASSERT_FALSE(files.Multi.empty()) << "ogr2ogr failed";
    for (Session* s : {&a, &b}) {
      MapInit(*s);
      for (const std::string& p : {files.Grid, files.Stars, files.Points, files.Lines, files.Multi})
        AddShape(*s, p, false);
      ASSERT_EQ(s->LyrCount, 5);
      // Every third feature selected; a few deleted.
      for (int l = 1; l <= 5; ++l) {
        for (int r = 3; r <= s->Lyr[l].Shp.RecCount; r += 3)
          test::OracleSet(s->Lyr[l].SelBits, r, true);
        for (int r = 5; r <= s->Lyr[l].Shp.RecCount; r += 97) DeleteRec(*s, l, r, false);
      }
    }
  }
  void TearDown() override {
    for (Session* s : {&a, &b})
      while (s->LyrCount > 0) RemoveLyr(*s, s->LyrCount, false);
  }
  int Lyr(const Session& s, const std::string& path) {
    for (int i = 1; i <= s.LyrCount; ++i)
      if (s.Lyr[i].Fsource == path) return i;
    return 0;
  }
  static std::string Stem(const std::string& path) {
    size_t slash = path.rfind('/'), dot = path.rfind('.');
    return path.substr(slash + 1, dot - slash - 1);
  }
  void Same(LocationQuery q) {
    int want = test::OracleFindByLocation(a, q, false);
    int got = FindByLocation(b, q);
    SCOPED_TRACE("find " + a.Lyr[q.FindLyr].LyrName + " ref " + a.Lyr[q.RefLyr].LyrName +
                 " relation " + std::to_string(q.Relation) + " method " + std::to_string(q.Method) +
                 " criteria " + std::to_string(q.Criteria) + " tol " + std::to_string(q.Tol));
    EXPECT_EQ(got, want);
    int n = a.Lyr[q.FindLyr].Shp.RecCount;
    for (int f = 1; f <= n; ++f) {
      ASSERT_EQ(test::OracleBit(b.Lyr[q.FindLyr].QryBits, f),
                test::OracleBit(a.Lyr[q.FindLyr].QryBits, f))
          << "mark of " << f;
      ASSERT_EQ(test::OracleBit(b.Lyr[q.FindLyr].SelBits, f),
                test::OracleBit(a.Lyr[q.FindLyr].SelBits, f))
          << "selection of " << f;
    }
  }
};

TEST_F(LocationLayers, EveryRelationEqualsThePlainLoops) {
  const std::vector<std::pair<std::string, std::string>> pairs = {
      {files.Points, files.Grid}, {files.Grid, files.Points}, {files.Lines, files.Grid},
      {files.Lines, files.Lines}, {files.Stars, files.Grid},  {files.Grid, files.Lines},
      {files.Multi, files.Stars}, {files.Stars, files.Stars}, {files.Points, files.Stars}};
  int turn = 0;
  for (const auto& [fp, rp] : pairs)
    for (int rel = 1; rel <= 9; ++rel)
      for (double tol : {0.0, 0.5}) {
        LocationQuery q;
        q.FindLyr = Lyr(a, fp);
        q.RefLyr = Lyr(a, rp);
        q.Relation = rel;
        q.Tol = tol;
        q.Method = 1 + turn % 3;
        q.Criteria = 1 + (turn / 3) % 3;
        q.RefSelectedOnly = turn % 4 == 3;
        ++turn;
        Same(q);
      }
}

TEST_F(LocationLayers, TransferredValuesEqualThePlainLoops) {
  // The complement first: it must leave the rows as they are.
  for (auto [fp, rp, rel] : {std::tuple{files.Points, files.Grid, 4},
                             {files.Points, files.Stars, 1},
                             {files.Lines, files.Grid, 1},
                             {files.Grid, files.Points, 8},
                             {files.Stars, files.Grid, 9}}) {
    LocationQuery q;
    q.FindLyr = Lyr(a, fp);
    q.RefLyr = Lyr(a, rp);
    q.Relation = rel;
    q.TransferFields = {"NAME", "zone"};
    Same(q);
    int n = a.Lyr[q.FindLyr].Dbf.DbfRecCount, changed = 0;
    for (int r = 0; r < n; ++r) {
      ReadDbfRec(a, q.FindLyr, r);
      ReadDbfRec(b, q.FindLyr, r);
      for (int f = 1; f <= 3; ++f)
        ASSERT_EQ(GetFieldValue(b, q.FindLyr, f), GetFieldValue(a, q.FindLyr, f)) << "row " << r;
      changed += GetFieldValue(b, q.FindLyr, 2).rfind(Stem(fp) + "-", 0) != 0;
    }
    if (rel != 4) {
      EXPECT_GT(changed, 0) << Stem(fp) << " " << Stem(rp) << " " << rel;
    } else {
      EXPECT_EQ(changed, 0); // the complements never transfer
    }
  }
}

TEST_F(LocationLayers, TheMaskLeavesTheResultsAsTheyAre) {
  for (int rel : {1, 3, 5, 8, 9})
    for (double tol : {0.0, 0.5}) {
      LocationQuery q;
      q.FindLyr = Lyr(a, files.Points);
      q.RefLyr = Lyr(a, files.Stars);
      q.Relation = rel;
      q.Tol = tol;
      int plain = test::OracleFindByLocation(a, q, false);
      std::vector<uint8_t> marks = a.Lyr[q.FindLyr].QryBits;
      EXPECT_EQ(test::OracleFindByLocation(b, q, true), plain);
      EXPECT_EQ(b.Lyr[q.FindLyr].QryBits, marks);
    }
}

TEST_F(LocationLayers, ALayerAgainstItselfMeetsItselfUnderIntersect) {
  LocationQuery q;
  q.FindLyr = q.RefLyr = Lyr(b, files.Lines);
  int live = 0;
  for (int r = 1; r <= b.Lyr[q.FindLyr].Shp.RecCount; ++r) live += !IsDeleted(b, q.FindLyr, r);
  EXPECT_EQ(FindByLocation(b, q), live);
}

TEST_F(LocationLayers, ClearFromAnEmptySelectionChangesNothing) {
  LocationQuery q;
  q.FindLyr = Lyr(b, files.Points);
  q.RefLyr = Lyr(b, files.Grid);
  q.Method = 3;
  auto& sel = b.Lyr[q.FindLyr].SelBits;
  std::fill(sel.begin(), sel.end(), 0);
  std::vector<uint8_t> before = sel;
  EXPECT_GT(FindByLocation(b, q), 0);
  EXPECT_EQ(b.Lyr[q.FindLyr].SelBits, before);
  EXPECT_EQ(hostB.logged.back(), "Find by Location in Layer " + b.Lyr[q.FindLyr].LyrName);
}

TEST_F(LocationLayers, DeletedFeaturesAreNeverSelectedNotEvenByAComplement) {
  LocationQuery q;
  q.FindLyr = Lyr(b, files.Points);
  q.RefLyr = Lyr(b, files.Grid);
  q.Relation = 2;
  FindByLocation(b, q);
  EXPECT_FALSE(test::OracleBit(b.Lyr[q.FindLyr].SelBits, 5));
  EXPECT_TRUE(IsDeleted(b, q.FindLyr, 5));
}

// Terminates the find layer at its fifth yield.
struct TerminatingHost : test::RecordingHost {
  Session* s = nullptr;
  int lyr = 0, at = 5;
  void Yield() override {
    if (++yields == at) SetLyrTerminate(*s, lyr, true);
  }
};

TEST(Location, ATerminateKeepsTheMarksFoundSoFar) {
  TerminatingHost host;
  Session s{host};
  MapInit(s);
  int pts = test::MemLayer(s, 1), gons = test::MemLayer(s, 5);
  for (int i = 0; i < 400; ++i) test::MemFeature(s, pts, {{{i + 0.5, 0.5}}});
  for (int i = 0; i < 400; ++i) test::MemFeature(s, gons, {test::Square(i, 0, 1)});
  host.s = &s;
  host.lyr = pts;
  LocationQuery q;
  q.FindLyr = pts;
  q.RefLyr = gons;
  int n = FindByLocation(s, q);
  EXPECT_GT(n, 0);
  EXPECT_LT(n, 400);
  EXPECT_EQ(host.logged.back(), " *** Find by Location has been canceled *** ");
  EXPECT_EQ(s.Lyr[pts].LyrBusy, 0);
  EXPECT_EQ(s.Lyr[gons].LyrBusy, 0);
}

TEST(Location, ABusyLayerAsksAndRefuses) {
  test::RecordingHost host;
  Session s{host};
  MapInit(s);
  int pts = test::MemLayer(s, 1), gons = test::MemLayer(s, 5);
  test::MemFeature(s, pts, {{{0.5, 0.5}}});
  test::MemFeature(s, gons, {test::Square(0, 0, 1)});
  LyrLock(s, gons, true, "Validate Layer boundaries");
  host.answers = {MsgAnswer::Yes};
  LocationQuery q;
  q.FindLyr = pts;
  q.RefLyr = gons;
  EXPECT_EQ(FindByLocation(s, q), -1);
  ASSERT_EQ(host.boxes.size(), 1u);
  EXPECT_EQ(host.boxes[0], s.Lyr[gons].LyrName +
                               " : Query Message Box |  Would you like to Terminate Validate Layer "
                               "boundaries\r\n Function in layer " +
                               s.Lyr[gons].LyrName + " ?   ");
  EXPECT_NE(s.Lyr[gons].LyrTerminate, 0);
  EXPECT_EQ(host.logged.back(), " *** Find by Location has been canceled *** ");
  LyrLock(s, gons, false, "");
  EXPECT_EQ(FindByLocation(s, q), 1);
}

TEST(Location, TheToleranceFollowsTheMapUnits) {
  Session s;
  s.MapUnit = 0;
  EXPECT_EQ(LocationDefaultTolerance(s), "0.0000001");
  s.MapUnit = 1;
  EXPECT_EQ(LocationDefaultTolerance(s), "0.01");
}

TEST(Location, TheIndexFindsEveryMeetingBox) {
  Session s;
  int l = test::MemLayer(s, 5);
  std::mt19937 rng(3);
  std::uniform_real_distribution<double> u(-1000, 1000), w(0, 30);
  for (int i = 0; i < 5000; ++i) {
    double x = u(rng) * 1e3 + 4e8, y = u(rng) * 1e3 - 7e6, d = w(rng) * 1e3;
    test::MemFeature(s, l, {test::Square(x, y, d)});
  }
  BoxIndex ix = BuildBoxIndex(s, l);
  EXPECT_LT(double(BoxIndexBytes(ix)) / 5000, 8.0);
  std::vector<int32_t> got;
  for (int k = 0; k < 300; ++k) {
    double x = u(rng) * 1e3 + 4e8, y = u(rng) * 1e3 - 7e6, d = w(rng) * 3e3;
    got.clear();
    SearchBoxIndex(ix, x, y, x + d, y + d, got);
    std::sort(got.begin(), got.end());
    for (int r = 1; r <= 5000; ++r) {
      const ShpRecord& rec = s.Lyr[l].Shp.ShpRecs[size_t(r)];
      bool meets = rec.Xmin <= x + d && rec.Xmax >= x && rec.Ymin <= y + d && rec.Ymax >= y;
      if (meets) {
        ASSERT_TRUE(std::binary_search(got.begin(), got.end(), r)) << r;
      }
    }
  }
}

TEST_F(LocationLayers, TheCommandRunsTheSameQueryAndTransfers) {
  std::string line =
      "FIND LOCATION \"" + files.Points + "\" 1 1 1 \"" + files.Stars + "\" 0 0.5 NAME,ZONE";
  ArgStrSplit(b, line);
  ArgStrExecute(b);
  LocationQuery q;
  q.FindLyr = Lyr(a, files.Points);
  q.RefLyr = Lyr(a, files.Stars);
  q.Tol = 0.5;
  q.TransferFields = {"NAME", "ZONE"};
  int want = test::OracleFindByLocation(a, q, false);
  EXPECT_EQ(hostB.logged.back(), std::to_string(want) +
                                     " Features have been Selected Successfully in Layer " +
                                     b.Lyr[q.FindLyr].LyrName);
  EXPECT_EQ(b.Lyr[q.FindLyr].SelBits, a.Lyr[q.FindLyr].SelBits);
  for (int r = 0; r < a.Lyr[q.FindLyr].Dbf.DbfRecCount; ++r) {
    ReadDbfRec(a, q.FindLyr, r);
    ReadDbfRec(b, q.FindLyr, r);
    ASSERT_EQ(GetFieldValue(b, q.FindLyr, 2), GetFieldValue(a, q.FindLyr, 2));
  }
  ArgStrSplit(b, "FIND LOCATION \"" + files.Points + "\" 1 1 10 \"" + files.Stars + "\" 0 0");
  ArgStrExecute(b);
  EXPECT_EQ(hostB.logged.back(), " *** Find by Location has been canceled *** ");
}

} // namespace
} // namespace velmora
