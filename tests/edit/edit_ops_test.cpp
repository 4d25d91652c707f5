// The edit menu's operations: the edit, its log line, its journal pair, undo and redo, and
// the refusal on a busy layer that changes nothing.
#include "edit/edit_ops.h"
#include "edit_fixture.h"
#include "frame/busy.h"

using namespace velmora;
using namespace velmora::test;

namespace {

struct EditOps : EditFixture {
  int lyr = 0;
  void SetUp() override {
    EditFixture::SetUp();
    lyr = Layer("roads", "POLYLINE",
                {{{{0, 0}, {10, 0}, {10, 10}}, {{20, 20}, {30, 30}}, {{40, 40}, {50, 40}}}});
  }
  HitRec Hit(int kind, int f, int p, int v) {
    HitRec h;
    h.HitKind = uint8_t(kind), h.HitLyr = lyr, h.HitType = s.Lyr[lyr].Shp.ShpType;
    h.HitFeature = f, h.HitPart = p, h.HitVertex = v;
    return h;
  }
  // Undo gives `before` back, redo gives `after`.
  void UndoRedo(const Shape& before, const Shape& after) {
    UndoRun(s);
    EXPECT_EQ(Get(lyr, 1), before);
    RedoRun(s);
    EXPECT_EQ(Get(lyr, 1), after);
  }
};

TEST_F(EditOps, DeleteVertexLogsAndJournals) {
  const Shape before = Get(lyr, 1);
  ASSERT_TRUE(DeleteVertexOp(s, Hit(2, 1, 0, 1)));
  EXPECT_EQ(LastLog(), "Delete Vertex 10 , 0 in layer roads.shp");
  EXPECT_EQ(s.UndoList[1].RedoLine, "Delete Vertex " + QuotedPath(Path(lyr)) + " 1 0 1");
  EXPECT_EQ(s.UndoList[1].UndoLine, "Insert Vertex " + QuotedPath(Path(lyr)) + " 1 0 1 10 0");
  EXPECT_EQ(Get(lyr, 1).Parts[0].size(), 2u);
  UndoRedo(before, Get(lyr, 1));
}

TEST_F(EditOps, DeletePartAndFeature) {
  const Shape before = Get(lyr, 1);
  ASSERT_TRUE(DeletePartOp(s, Hit(1, 1, 1, 1)));
  EXPECT_EQ(LastLog(), "Delete Part 1 in Feature 1 in layer roads.shp");
  const Shape after = Get(lyr, 1);
  EXPECT_TRUE(after.Parts[1].empty());
  UndoRedo(before, after);
  ASSERT_TRUE(DeleteFeatureOp(s, Hit(1, 1, 0, 1)));
  EXPECT_EQ(LastLog(), "Delete Feature 1 in layer roads.shp");
  EXPECT_TRUE(IsDeleted(s, lyr, 1));
  UndoRun(s);
  EXPECT_FALSE(IsDeleted(s, lyr, 1));
}

TEST_F(EditOps, PartsToFrontAndBackUndoEachOther) {
  const Shape before = Get(lyr, 1);
  EXPECT_FALSE(BringPartToFrontOp(s, Hit(2, 1, 2, 0))) << "the last part is in front";
  EXPECT_FALSE(SendPartToBackOp(s, Hit(2, 1, 0, 0))) << "the first part is at the back";
  ASSERT_TRUE(BringPartToFrontOp(s, Hit(2, 1, 0, 0)));
  EXPECT_EQ(LastLog(), "Bring Part 0 to front in Feature 1 in layer roads.shp");
  Shape after = Get(lyr, 1);
  EXPECT_EQ(after.Parts[1], before.Parts[0]);
  EXPECT_EQ(after.Parts[0], before.Parts[1]);
  UndoRedo(before, after);
  UndoRun(s);
  ASSERT_TRUE(SendPartToBackOp(s, Hit(2, 1, 2, 0)));
  EXPECT_EQ(LastLog(), "Send Part 2 to back in Feature 1 in layer roads.shp");
  after = Get(lyr, 1);
  EXPECT_EQ(after.Parts[1], before.Parts[2]);
  UndoRedo(before, after);
}

TEST_F(EditOps, InvertTwiceRestoresTheOrder) {
  const Shape before = Get(lyr, 1);
  ASSERT_TRUE(InvertPartOp(s, Hit(1, 1, 0, 1)));
  EXPECT_EQ(LastLog(), "Invert Part 0 Direction in Feature 1 in layer roads.shp");
  EXPECT_EQ(Get(lyr, 1).Parts[0].front(), before.Parts[0].back());
  ASSERT_TRUE(InvertPartOp(s, Hit(1, 1, 0, 1)));
  EXPECT_EQ(Get(lyr, 1), before);
  UndoRun(s);
  UndoRun(s);
  EXPECT_EQ(Get(lyr, 1), before);
}

TEST_F(EditOps, InsertVertexNamesTheNewVertex) {
  const Shape before = Get(lyr, 1);
  HitRec h = Hit(1, 1, 0, 1);
  ASSERT_TRUE(InsertVertexOp(s, h, 5, 0));
  EXPECT_EQ(h.HitKind, 2);
  EXPECT_EQ(h.HitVertex, 1);
  EXPECT_EQ(Get(lyr, 1).Parts[0][1], (std::array<double, 4>{5, 0, 0, 0}));
  EXPECT_EQ(s.UndoList[1].RedoLine, "Insert Vertex " + QuotedPath(Path(lyr)) + " 1 0 1 5 0");
  UndoRedo(before, Get(lyr, 1));
}

TEST_F(EditOps, ABusyLayerRefusesAndNothingChanges) {
  const Shape before = Get(lyr, 1);
  LyrLock(s, lyr, true, "Validate Layer boundaries");
  EXPECT_FALSE(DeleteVertexOp(s, Hit(2, 1, 0, 1)));
  EXPECT_EQ(LastLog(), " *** Delete Vertex 10 , 0 in layer roads.shp has been canceled *** ");
  EXPECT_FALSE(DeletePartOp(s, Hit(2, 1, 0, 1)));
  EXPECT_EQ(LastLog(), " *** Delete Part 0 in Feature 1 in layer roads.shp has been canceled *** ");
  EXPECT_FALSE(DeleteFeatureOp(s, Hit(2, 1, 0, 1)));
  EXPECT_FALSE(InvertPartOp(s, Hit(2, 1, 0, 1)));
  EXPECT_FALSE(BringPartToFrontOp(s, Hit(2, 1, 0, 1)));
  HitRec h = Hit(1, 1, 0, 1);
  EXPECT_FALSE(InsertVertexOp(s, h, 5, 0));
  EXPECT_EQ(LastLog(), " *** Delete Vertex 5 , 0 in layer roads.shp has been canceled *** ");
  EXPECT_EQ(Get(lyr, 1), before);
  EXPECT_EQ(s.UndoCount, 1) << "nothing journalled";
  LyrLock(s, lyr, false, "");
}

TEST_F(EditOps, DeletingThePointOfAPointFeatureDeletesIt) {
  const int pts = Layer("pts", "POINT", {{{{1, 1}}}});
  HitRec h;
  h.HitKind = 2, h.HitLyr = pts, h.HitType = 1, h.HitFeature = 1;
  ASSERT_TRUE(DeleteVertexOp(s, h));
  EXPECT_EQ(s.Lyr[pts].Shp.ShpRecs[1].ShapeType, 0);
  UndoRun(s);
  EXPECT_EQ(s.Lyr[pts].Shp.ShpRecs[1].ShapeType, 1);
}

} // namespace
