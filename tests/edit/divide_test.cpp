// Divide and combine: the records they make, the copied attribute row, undo through the
// journal's snapshot, redo, and the same edits replayed from a command file.
#include <fstream>

#include "edit/divide_cmds.h"
#include "edit/divide_ops.h"
#include "edit/edit_ops.h"
#include "edit_fixture.h"
#include "store/dbf_store.h"

using namespace velmora;
using namespace velmora::test;

namespace {

using V = std::vector<std::array<double, 4>>;

struct Divide : EditFixture {
  HitRec Hit(int lyr, int kind, int f, int p, int v) {
    HitRec h;
    h.HitKind = uint8_t(kind), h.HitLyr = lyr, h.HitType = s.Lyr[lyr].Shp.ShpType;
    h.HitFeature = f, h.HitPart = p, h.HitVertex = v;
    if (kind == 2) h.HitX = Vertex(lyr, f, p, v).X, h.HitY = Vertex(lyr, f, p, v).Y;
    return h;
  }
  // Undo gives `before` back, redo `after`, and undo once more `before`.
  void UndoRedo(int lyr, const std::vector<Shape>& before, const std::vector<Shape>& after) {
    UndoRun(s);
    EXPECT_EQ(Live(lyr), before);
    RedoRun(s);
    EXPECT_EQ(Live(lyr), after);
    UndoRun(s);
    EXPECT_EQ(Live(lyr), before);
    RedoRun(s);
  }
  // The features that are not deleted.
  std::vector<Shape> Live(int lyr) {
    std::vector<Shape> v;
    for (const Shape& sh : All(lyr))
      if (sh.Type != 0) v.push_back(sh);
    return v;
  }
};

TEST_F(Divide, ALineAtAnInnerVertexWithACopyOfItsRow) {
  const int lyr = Layer("roads", "POLYLINE", {{{{0, 0}, {1, 0}, {2, 0}, {3, 1}}}});
  Exec("ADD FIELD " + QuotedPath(Path(lyr)) + " NAME C 10 0");
  Exec("SET DATA " + QuotedPath(Path(lyr)) + " 1 NAME=Main");
  const auto before = Live(lyr);
  EXPECT_FALSE(DivideLineOp(s, Hit(lyr, 2, 1, 0, 0))) << "not at an end";
  ASSERT_TRUE(DivideLineOp(s, Hit(lyr, 2, 1, 0, 2)));
  ASSERT_EQ(s.Lyr[lyr].Shp.RecCount, 2);
  EXPECT_EQ(Get(lyr, 1).Parts[0], (V{{0, 0, 0, 0}, {1, 0, 0, 0}, {2, 0, 0, 0}}));
  EXPECT_EQ(Get(lyr, 2).Parts[0], (V{{2, 0, 0, 0}, {3, 1, 0, 0}}));
  ReadDbfRec(s, lyr, 1);
  EXPECT_EQ(GetFieldValue(s, lyr, FindField(s, lyr, "NAME")).substr(0, 4), "Main");
  EXPECT_EQ(s.UndoList[1].RedoLine, "Divide Feature " + QuotedPath(Path(lyr)) + " 1 0 2 0 2");
  EXPECT_EQ(s.UndoList[1].UndoLine, "UnDivide Feature " + QuotedPath(Path(lyr)) + " 1 2");
  UndoRedo(lyr, before, Live(lyr));
}

TEST_F(Divide, ALineOnASegmentGetsTheVertexFirst) {
  const int lyr = Layer("roads", "POLYLINE", {{{{0, 0}, {4, 0}}}});
  HitRec h = Hit(lyr, 1, 1, 0, 1);
  h.HitX = 1.5, h.HitY = 0;
  ASSERT_TRUE(DivideLineOp(s, h));
  EXPECT_EQ(Get(lyr, 1).Parts[0], (V{{0, 0, 0, 0}, {1.5, 0, 0, 0}}));
  EXPECT_EQ(Get(lyr, 2).Parts[0], (V{{1.5, 0, 0, 0}, {4, 0, 0, 0}}));
  UndoRun(s);
  UndoRun(s);
  EXPECT_EQ(Live(lyr), (std::vector<Shape>{{3, {V{{0, 0, 0, 0}, {4, 0, 0, 0}}}}}));
}

TEST_F(Divide, APolygonAlongALineBetweenTwoVertices) {
  const Ring ring = {{0, 0}, {0, 10}, {10, 10}, {10, 0}, {0, 0}};
  const Ring hole = {{2, 2}, {3, 2}, {3, 3}, {2, 2}};
  const int lyr = Layer("parcels", "POLYGON", {{ring, hole}});
  const auto before = Live(lyr);
  ASSERT_TRUE(StartDividePolygon(s, Hit(lyr, 2, 1, 0, 0)));
  EXPECT_FALSE(CanCompleteDivide(s, Hit(lyr, 2, 1, 0, 1))) << "a neighbour makes no cut";
  ASSERT_TRUE(CompleteDividePolygon(s, Hit(lyr, 2, 1, 0, 2)));
  EXPECT_EQ(Get(lyr, 1).Parts[0], (V{{0, 0, 0, 0}, {0, 10, 0, 0}, {10, 10, 0, 0}, {0, 0, 0, 0}}));
  EXPECT_EQ(Get(lyr, 1).Parts.size(), 2u) << "the hole stays";
  EXPECT_EQ(Get(lyr, 2).Parts[0], (V{{10, 10, 0, 0}, {10, 0, 0, 0}, {0, 0, 0, 0}, {10, 10, 0, 0}}));
  EXPECT_EQ(s.UndoList[1].RedoLine, "Divide Feature " + QuotedPath(Path(lyr)) + " 1 0 0 2 2");
  UndoRedo(lyr, before, Live(lyr));
}

TEST_F(Divide, TwoLinesAtEveryPairOfEnds) {
  struct Case {
    int v1, v2;
    V want;
  };
  // a runs (0,0)-(1,0), b (1,0)-(2,1) or reversed; the joined line keeps a's direction.
  const std::vector<Case> cases = {
      {1, 0, {{0, 0, 0, 0}, {1, 0, 0, 0}, {2, 1, 0, 0}}},
      {1, 1, {{0, 0, 0, 0}, {1, 0, 0, 0}, {2, 1, 0, 0}}},
      {0, 0, {{2, 1, 0, 0}, {1, 0, 0, 0}, {0, 0, 0, 0}, {1, 0, 0, 0}}},
      {0, 1, {{2, 1, 0, 0}, {1, 0, 0, 0}, {0, 0, 0, 0}, {1, 0, 0, 0}}},
  };
  int n = 0;
  for (const Case& c : cases) {
    CloseAllLyrs(s);
    UndoClear(s);
    const Ring b = c.v2 == 0 ? Ring{{1, 0}, {2, 1}} : Ring{{2, 1}, {1, 0}};
    const int lyr = Layer("l" + std::to_string(n++), "POLYLINE", {{{{0, 0}, {1, 0}}}, {b}});
    const auto before = Live(lyr);
    ASSERT_TRUE(CombineJournalled(s, lyr, 1, 0, c.v1, 0, 2, 0, c.v2, 0));
    EXPECT_TRUE(IsDeleted(s, lyr, 2));
    EXPECT_EQ(Get(lyr, 1).Parts[0], c.want) << c.v1 << " " << c.v2;
    EXPECT_EQ(s.UndoList[1].UndoLine, "UnCombine Feature " + QuotedPath(Path(lyr)) + " 2 1");
    UndoRedo(lyr, before, Live(lyr));
  }
}

TEST_F(Divide, CombinePolylineFindsTheLineEndingOnTheSamePoint) {
  const int lyr =
      Layer("l", "POLYLINE", {{{{0, 0}, {1, 0}}}, {{{5, 5}, {6, 6}}}, {{{1, 0}, {1, 3}}}});
  ASSERT_TRUE(CombineLineOp(s, Hit(lyr, 2, 1, 0, 1)));
  EXPECT_TRUE(IsDeleted(s, lyr, 3));
  EXPECT_EQ(Get(lyr, 1).Parts[0], (V{{0, 0, 0, 0}, {1, 0, 0, 0}, {1, 3, 0, 0}}));
  // No partner on the point: the pick waits for the next one.
  ASSERT_TRUE(CombineLineOp(s, Hit(lyr, 2, 2, 0, 0)));
  EXPECT_EQ(s.Edit.Pending, PendingPick::CombineLine);
  ASSERT_TRUE(CombineLineOp(s, Hit(lyr, 2, 1, 0, 0)));
  EXPECT_TRUE(IsDeleted(s, lyr, 1));
  EXPECT_EQ(Get(lyr, 2).Parts[0],
            (V{{1, 3, 0, 0}, {1, 0, 0, 0}, {0, 0, 0, 0}, {5, 5, 0, 0}, {6, 6, 0, 0}}));
}

TEST_F(Divide, TwoPolygonsAlongTheirSharedEdge) {
  const Ring a = {{0, 0}, {0, 10}, {10, 10}, {10, 0}, {0, 0}};
  const Ring b = {{10, 0}, {10, 10}, {20, 10}, {20, 0}, {10, 0}};
  const int lyr = Layer("p", "POLYGON", {{a}, {b}});
  const auto before = Live(lyr);
  // The edge (10,10)-(10,0): segment ending at vertex 3 of a, at vertex 1 of b.
  HitRec ha = Hit(lyr, 1, 1, 0, 3), hb = Hit(lyr, 1, 2, 0, 1);
  ASSERT_TRUE(StartCombinePolygon(s, ha));
  EXPECT_FALSE(CanCompleteCombine(s, Hit(lyr, 1, 2, 0, 2)));
  ASSERT_TRUE(CompleteCombinePolygon(s, hb));
  EXPECT_TRUE(IsDeleted(s, lyr, 2));
  EXPECT_EQ(Get(lyr, 1).Parts[0], (V{{10, 0, 0, 0},
                                     {0, 0, 0, 0},
                                     {0, 10, 0, 0},
                                     {10, 10, 0, 0},
                                     {20, 10, 0, 0},
                                     {20, 0, 0, 0},
                                     {10, 0, 0, 0}}));
  UndoRedo(lyr, before, Live(lyr));
  // A polygon of the other orientation shares the edge the same way round.
  CloseAllLyrs(s);
  UndoClear(s);
  const Ring c = {{10, 10}, {10, 0}, {20, 0}, {20, 10}, {10, 10}};
  const int l2 = Layer("q", "POLYGON", {{a}, {c}});
  ASSERT_TRUE(CombineJournalled(s, l2, 1, 0, 2, 3, 2, 0, 0, 1));
  EXPECT_EQ(Get(l2, 1).Parts[0].size(), 7u);
  EXPECT_EQ(RecArea(s, l2, 1), 200);
}

TEST_F(Divide, TheJournalsLinesReplayFromACommandFile) {
  const Ring a = {{0, 0}, {0, 10}, {10, 10}, {10, 0}, {0, 0}};
  const Ring b = {{10, 0}, {10, 10}, {20, 10}, {20, 0}, {10, 0}};
  const int lyr = Layer("p", "POLYGON", {{a}, {b}});
  const std::string original = Path(lyr);
  ASSERT_TRUE(CombineJournalled(s, lyr, 1, 0, 2, 3, 2, 0, 0, 1));
  ASSERT_TRUE(DivideJournalled(s, lyr, 1, 0, 1, 4));
  const auto edited = All(lyr);
  const std::string lines = s.UndoList[1].RedoLine + "\n" + s.UndoList[2].RedoLine + "\n";
  // The same layer made again elsewhere, and the lines run on it from a file.
  CloseAllLyrs(s);
  const int again = Layer("p", "POLYGON", {{a}, {b}});
  ASSERT_EQ(Path(again), original);
  const std::string lst = dir + "replay.lst";
  std::ofstream(lst) << lines;
  RunLstFile(s, lst);
  EXPECT_EQ(All(again), edited);
}

} // namespace
