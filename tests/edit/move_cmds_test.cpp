// The four movement commands at each scope, journalled as the editor journals them, undone
// and redone through the command language, on every kind of shape.
#include "edit/edit_ops.h"
#include "edit_fixture.h"

using namespace velmora;
using namespace velmora::test;

namespace {

struct MoveCmds : EditFixture {
  int a = 0, b = 0;
  // Two layers of `kind`; feature 3 of a and 2 of b selected.
  void Make(const std::string& kind, bool points) {
    if (points) {
      a = Layer("a", kind, {{{{1, 1}}}, {{{2, 2}}}, {{{3, 3}}}});
      b = Layer("b", kind, {{{{9, 9}}}, {{{4, 4}}}});
    } else {
      a = Layer(
          "a", kind,
          {{{{1, 1}, {2, 1}, {2, 2}, {1, 1}}, {{1.2, 1.2}, {1.5, 1.3}, {1.2, 1.4}, {1.2, 1.2}}},
           {{{5, 5}, {6, 5}, {6, 6}, {5, 5}}},
           {{{7, 7}, {8, 7}, {8, 8}, {7, 7}}}});
      b = Layer("b", kind,
                {{{{9, 9}, {9, 8}, {8, 8}, {9, 9}}}, {{{4, 4}, {3, 3}, {3, 4}, {4, 4}}}});
    }
    SelectOnly(s, a, 3);
    SelectOnly(s, b, 2);
  }
  static std::string Changed(const std::vector<Shape>& x, const std::vector<Shape>& y) {
    std::string c;
    for (size_t i = 0; i < x.size(); ++i) c += x[i] == y[i] ? '.' : 'x';
    return c;
  }
  // Journals the pair with the selections, runs the redo line; checks what changed, then
  // that undo gives the start back and redo the result.
  void RoundTrip(const JournalLines& l, const std::string& wantA, const std::string& wantB,
                 const std::string& what) {
    const auto a0 = All(a), b0 = All(b);
    UndoAdd(s, l.Redo, l.Undo);
    UndoPutSel(s, a);
    UndoPutSel(s, b);
    Exec(l.Redo);
    const auto a1 = All(a), b1 = All(b);
    EXPECT_EQ(Changed(a0, a1), wantA) << what;
    EXPECT_EQ(Changed(b0, b1), wantB) << what;
    UndoRun(s);
    EXPECT_TRUE(Near(All(a), a0)) << what << " undo";
    EXPECT_TRUE(Near(All(b), b0)) << what << " undo";
    RedoRun(s);
    EXPECT_TRUE(Near(All(a), a1)) << what << " redo";
    EXPECT_TRUE(Near(All(b), b1)) << what << " redo";
    UndoRun(s);
  }
};

// What each scope reaches with Ctrl, for features a1 (named), a2, a3 (selected), b1, b2
// (selected). Without Ctrl the named vertex or feature alone moves.
TEST_F(MoveCmds, EveryScopeOfEveryCommandOnLinesAndPolygons) {
  for (const char* kind : {"POLYLINE", "POLYGON", "POLYGONMZ", "POLYLINEM"}) {
    CloseAllLyrs(s);
    UndoClear(s);
    Make(kind, false);
    const std::string pa = Path(a);
    const char* wantA[] = {"x..", "x..", "x.x", "x.x", "xxx", "x.x", "xxx"};
    const char* wantB[] = {"..", "..", "..", "..", "..", ".x", "xx"};
    const char* wantToA[] = {"x..", "x..", "x..", "x.x", "xxx", "x.x", "xxx"};
    const char* wantRotA[] = {"x..", "x..", "x..", "x.x", "xxx", "x.x", "xxx"};
    for (int scope = 0; scope <= 6; ++scope) {
      const std::string tag = std::string(kind) + " scope " + std::to_string(scope);
      RoundTrip(MoveLenLines(pa, 1, 0, 1, 1, 3.5, 2.25, 2, scope), wantA[scope], wantB[scope],
                "MoveLen " + tag);
      RoundTrip(MoveToLines(pa, {{1, 0, 1, 2, 1, 2.5, 0.5}}, 2, scope), wantToA[scope],
                wantB[scope], "MoveTo " + tag);
      RoundTrip(RotateLines(pa, 1, 0, 1, 1, 30, 2, scope), wantRotA[scope], wantB[scope],
                "Rotate " + tag);
      RoundTrip(ScaleLines(pa, 1, 0, 0, 1, 1, 1.5, 0.5, 2, scope), wantRotA[scope], wantB[scope],
                "Scale " + tag);
    }
    // Without Ctrl: MoveTo one vertex, MoveLen the feature, rotate and scale the part.
    const auto a0 = All(a);
    Exec(MoveToLines(pa, {{1, 0, 1, 2, 1, 2.5, 0.5}}, 0, 6).Redo);
    EXPECT_EQ(Get(a, 1).Parts[0][1][0], 2.5);
    EXPECT_EQ(Get(a, 1).Parts[0][0], a0[0].Parts[0][0]);
    Exec(RotateLines(pa, 1, 1, 0, 0, 90, 0, 6).Redo);
    EXPECT_EQ(Get(a, 1).Parts[0][0], a0[0].Parts[0][0]) << "part 1 alone turns";
    EXPECT_NE(Get(a, 1).Parts[1][0], a0[0].Parts[1][0]);
  }
}

TEST_F(MoveCmds, PointsAndMultipointsMoveToo) {
  for (const char* kind : {"POINT", "POINTMZ", "MULTIPOINTS"}) {
    CloseAllLyrs(s);
    UndoClear(s);
    Make(kind, true);
    const std::string pa = Path(a);
    RoundTrip(MoveToLines(pa, {{1, 0, 0, 1, 1, 4, 5}}, 0, 0), "x..", "..", kind);
    RoundTrip(MoveLenLines(pa, 2, 0, 0, 0, 1, 1, 2, 6), "xxx", "xx", kind);
    RoundTrip(RotateLines(pa, 1, 0, 0, 0, 45, 2, 5), "x.x", ".x", kind);
    RoundTrip(ScaleLines(pa, 1, 0, 0, 0, 0, 2, 2, 2, 4), "xxx", "..", kind);
  }
}

TEST_F(MoveCmds, AMoveToLineMovesAWholeListOfVertices) {
  a = Layer("a", "POLYLINE", {{{{0, 0}, {1, 0}, {2, 0}}}});
  b = Layer("b", "POLYLINE", {{{{1, 0}, {1, 5}}}});
  // Groups of ten tokens, each naming its own layer.
  Exec(MoveToLines(Path(a), {{1, 0, 1, 1, 0, 1, 2}}, 1, 0).Redo + " " +
       MoveToLines(Path(b), {{1, 0, 0, 1, 0, 1, 2}}, 1, 0).Redo);
  EXPECT_EQ(Vertex(a, 1, 0, 1).Y, 2);
  EXPECT_EQ(Vertex(b, 1, 0, 0).Y, 2);
  // The extents follow after the command.
  EXPECT_EQ(s.Lyr[a].Shp.ShpHeader.Ymax, 2);
  EXPECT_FALSE(s.Lyr[a].Shp.ExtentStale);
  // A group of too few tokens at the end is left alone; a record out of range does nothing.
  Exec("MoveTo Vertex " + QuotedPath(Path(a)) + " 9 0 0 5 5 0 0");
  Exec("MoveTo Vertex " + QuotedPath(Path(a)) + " 1 0 0 5 5 0 0 MoveTo Vertex");
  EXPECT_EQ(Vertex(a, 1, 0, 0).X, 5);
}

} // namespace
