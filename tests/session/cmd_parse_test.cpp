#include <gtest/gtest.h>

#include "cmd_test_util.h"
#include "session/cmd_parse.h"
#include "session/commands.h"
#include "test_support.h"

using namespace velmora;
using velmora::test::AddLayers;

namespace {

std::vector<CmdCall> Parse(Session& s, const std::string& line) {
  ArgStrSplit(s, line);
  return ParseArgStr(s);
}

CmdCall One(Session& s, const std::string& line) {
  auto calls = Parse(s, line);
  EXPECT_EQ(calls.size(), 1u) << line;
  return calls.empty() ? CmdCall{} : calls[0];
}

// One line per branch of the table, with exactly its least number of tokens.
struct Branch {
  const char* line;
  CmdOp op;
};
const Branch kBranches[] = {
    {"MAKE LAYER /data/new.shp", CmdOp::MakeLayer},
    {"MAKE LAYER /data/new.shp AS POLYGON", CmdOp::MakeLayer},
    {"OPEN PROJECT /data/p", CmdOp::OpenProject},
    {"OPEN LAYER /data/new.shp", CmdOp::OpenLayer},
    {"ADD FIELD /data/l1.shp NAME C 20 0", CmdOp::AddField},
    {"ADD FEATURE /data/l1.shp 0 1.5 2.5", CmdOp::AddFeature},
    {"ADD VERTEX /data/l1.shp 2 0 1.5 2.5", CmdOp::AddVertex},
    {"LOADREDOUNDO FEATURE /data/l1.shp 2", CmdOp::LoadRedoUndo},
    {"SAVEREDOUNDO FEATURE /data/l1.shp 2", CmdOp::LoadRedoUndo},
    {"COMBINE FEATURE /data/l1.shp 2 0 3 0 1 4 0 1 0", CmdOp::CombineFeature},
    {"UNCOMBINE FEATURE /data/l1.shp 2 4", CmdOp::UncombineFeature},
    {"DIVIDE FEATURE /data/l1.shp 2 0 3 0 6", CmdOp::DivideFeature},
    {"UNDIVIDE FEATURE /data/l1.shp 2 6", CmdOp::UndivideFeature},
    {"INVERT PART /data/l1.shp 2 0", CmdOp::InvertPart},
    {"SENDPART FRONT /data/l1.shp 2 0", CmdOp::SendPartFront},
    {"SENDPART BACK /data/l1.shp 2 1", CmdOp::SendPartBack},
    {"DELETE FEATURE /data/l1.shp 2", CmdOp::DeleteFeature},
    {"DELETE PART /data/l1.shp 2 0", CmdOp::DeletePart},
    {"DELETE VERTEX /data/l1.shp 2 0 3", CmdOp::DeleteVertex},
    {"UNDELETE FEATURE /data/l1.shp 2", CmdOp::UndeleteFeature},
    {"UNDELETE PART /data/l1.shp 2 0", CmdOp::UndeletePart},
    {"INSERT VERTEX /data/l1.shp 2 0 3 1.5 2.5", CmdOp::InsertVertex},
    {"MOVELEN VERTEX /data/l1.shp 2 0 1 1 2 2 2 4", CmdOp::MoveLen},
    {"MOVETO VERTEX /data/l1.shp 2 0 3 1.5 2.5 0 0", CmdOp::MoveTo},
    {"ROTATE VERTEX /data/l1.shp 2 0 0 1 1 45 2 1", CmdOp::Rotate},
    {"SCALE VERTEX /data/l1.shp 2 0 0 1 1 2 3 2 1", CmdOp::Scale},
    {"SAVE LAYER /data/l1.shp", CmdOp::SaveLayer},
    {"SAVE LAYER /data/l1.shp AS /data/copy.shp", CmdOp::SaveLayerAs},
    {"REMOVE LAYER /data/l1.shp", CmdOp::RemoveLayer},
    {"SET DATA /data/l1.shp 2 NAME=x", CmdOp::SetData},
};

} // namespace

TEST(CmdParse, EachBranchAtItsLeastBoundAndNothingBelow) {
  Session s;
  AddLayers(s, 1);
  for (const Branch& b : kBranches) {
    ArgStrSplit(s, b.line);
    std::vector<std::string> full = s.ArgStr;
    auto calls = ParseArgStr(s);
    ASSERT_EQ(calls.size(), 1u) << b.line;
    EXPECT_EQ(calls[0].Op, b.op) << b.line;
    // One token fewer: no command, and no layer for the EXIT tail either.
    s.ArgStr.pop_back();
    calls = ParseArgStr(s);
    bool none = calls.empty() || calls[0].Op == CmdOp::None ||
                // the long form falls back to the short one
                (b.op == CmdOp::MakeLayer || b.op == CmdOp::SaveLayerAs);
    EXPECT_TRUE(none) << b.line;
    if (b.op != CmdOp::MakeLayer && b.op != CmdOp::SaveLayerAs && !calls.empty()) {
      EXPECT_EQ(calls[0].Lyr, 0) << b.line;
    }
  }
}

TEST(CmdParse, KeywordsInAnyCaseAndTheFourNoOpWords) {
  Session s;
  AddLayers(s, 1);
  EXPECT_EQ(One(s, "UnDelete Part '/data/l1.shp' 2 0").Op, CmdOp::UndeletePart);
  EXPECT_EQ(One(s, "sendpart front '/data/L1.SHP' 2 0").Op, CmdOp::SendPartFront);
  for (const char* line : {"SAVE PROJECT", "Set Vertex", "select anything", "ZOOM in"})
    EXPECT_EQ(One(s, line).Op, CmdOp::NoOp) << line;
  EXPECT_EQ(One(s, "FROB LAYER /data/l1.shp").Op, CmdOp::None);
  EXPECT_TRUE(Parse(s, "DELETE").empty()); // one word is no command
  EXPECT_TRUE(Parse(s, "").empty());
}

TEST(CmdParse, FeatureCommandsNeedTheLayerAndARecordInRange) {
  Session s;
  AddLayers(s, 2, 5);
  CmdCall c = One(s, "DELETE FEATURE '/data/l2.shp' 5");
  EXPECT_EQ(c.Op, CmdOp::DeleteFeature);
  EXPECT_EQ(c.Lyr, 2);
  EXPECT_EQ(c.I, std::vector<int32_t>{5});
  // Above RecCount: nothing, but the layer stays named for the EXIT tail.
  c = One(s, "DELETE FEATURE '/data/l2.shp' 6");
  EXPECT_EQ(c.Op, CmdOp::None);
  EXPECT_EQ(c.Lyr, 2);
  EXPECT_EQ(One(s, "DELETE FEATURE '/data/l2.shp' 0").Op, CmdOp::None);
  EXPECT_EQ(One(s, "DELETE FEATURE '/data/l2.shp' -1").Op, CmdOp::None);
  // A layer not in the session.
  c = One(s, "DELETE FEATURE '/data/l9.shp' 1");
  EXPECT_EQ(c.Op, CmdOp::None);
  EXPECT_EQ(c.Lyr, 0);
  // Double quotes left inside a token are no part of the path.
  EXPECT_EQ(One(s, "DELETE FEATURE '/data/\"l2.shp\"' 1").Lyr, 2);
  // Numbers are read with Val: "4.6" is 5, "3abc" is 3.
  c = One(s, "DELETE VERTEX /data/l1.shp 4.6 3abc x");
  EXPECT_EQ(c.I, (std::vector<int32_t>{5, 3, 0}));
}

TEST(CmdParse, ArgumentsInTheirOrder) {
  Session s;
  AddLayers(s, 2);
  CmdCall c = One(s, "MoveLen Vertex '/data/l1.shp' 3 1 10 20 30.5 40 2 5");
  EXPECT_EQ(c.I, (std::vector<int32_t>{3, 1, 2, 5}));
  EXPECT_EQ(c.X, (std::vector<double>{10, 20, 30.5, 40}));
  c = One(s, "Scale Vertex '/data/l1.shp' 3 1 0 7 8 1.5 0.5 2 6");
  EXPECT_EQ(c.I, (std::vector<int32_t>{3, 1, 0, 2, 6}));
  EXPECT_EQ(c.X, (std::vector<double>{7, 8, 1.5, 0.5}));
  c = One(s, "Rotate Vertex '/data/l1.shp' 3 1 0 7 8 -90 0 0");
  EXPECT_EQ(c.X, (std::vector<double>{7, 8, -90}));
  c = One(s, "Combine Feature '/data/l1.shp' 1 2 3 4 2 5 6 7 8");
  EXPECT_EQ(c.I, (std::vector<int32_t>{1, 2, 3, 4, 2, 5, 6, 7, 8}));
  c = One(s, "ADD FIELD '/data/l1.shp' Road_Name numeric 12 3");
  EXPECT_EQ(c.Text, "Road_Name");
  EXPECT_EQ(c.I, (std::vector<int32_t>{'N', 12, 3}));
  c = One(s, "OPEN PROJECT \"/data/my proj.qmx\"");
  EXPECT_EQ(c.Path, "/data/my proj.qmt");
}

TEST(CmdParse, MakeLayerKindAndExistingPath) {
  Session s;
  AddLayers(s, 1);
  EXPECT_EQ(One(s, "MAKE LAYER /data/n.shp AS polygonm").Text, "POLYGONM");
  EXPECT_EQ(One(s, "MAKE LAYER /data/n.shp").Text, "POINT");
  // A word other than AS in place 3: the kind is ignored.
  EXPECT_EQ(One(s, "MAKE LAYER /data/n.shp LIKE POLYGON").Text, "POINT");
  // A layer of the path is found for the EXIT tail; the make itself refuses its files.
  CmdCall c = One(s, "MAKE LAYER /DATA/L1.SHP AS POLYGON");
  EXPECT_EQ(c.Op, CmdOp::MakeLayer);
  EXPECT_EQ(c.Lyr, 1);
  EXPECT_EQ(One(s, "OPEN LAYER /data/l1.shp").Op, CmdOp::None);
}

TEST(CmdParse, PairsSkipTokensWithoutAValue) {
  Session s;
  AddLayers(s, 1);
  CmdCall c = One(s, "ADD FEATURE /data/l1.shp 0 1 2 NAME=Main 'TYPE=a=b' BAD EMPTY= =x EXIT");
  ASSERT_EQ(c.Pairs.size(), 3u);
  EXPECT_EQ(c.Pairs[0].Field, "NAME");
  EXPECT_EQ(c.Pairs[0].Value, "Main");
  EXPECT_EQ(c.Pairs[1].Field, "TYPE");
  EXPECT_EQ(c.Pairs[1].Value, "a=b");
  EXPECT_EQ(c.Pairs[2].Field, "");
  // SET DATA may name a layer not yet in the session: it is opened first.
  c = One(s, "SET DATA '/data/other.shp' 3 A=1 B=2");
  EXPECT_EQ(c.Op, CmdOp::SetData);
  EXPECT_EQ(c.Lyr, 0);
  EXPECT_EQ(c.Path, "/data/other.shp");
  EXPECT_EQ(c.Pairs.size(), 2u);
}

TEST(CmdParse, SaveAndRemoveForms) {
  Session s;
  AddLayers(s, 1);
  EXPECT_EQ(One(s, "SAVE LAYER /data/l1.shp AS '/data/a b.shp'").Text, "/data/a b.shp");
  EXPECT_EQ(One(s, "SAVE LAYER /data/l1.shp TO /data/x.shp").Op, CmdOp::SaveLayer);
  EXPECT_EQ(One(s, "SAVE LAYER /data/none.shp").Op, CmdOp::None);
  // REMOVE takes exactly three tokens.
  EXPECT_EQ(One(s, "REMOVE LAYER /data/l1.shp").Op, CmdOp::RemoveLayer);
  CmdCall c = One(s, "REMOVE LAYER /data/l1.shp EXIT");
  EXPECT_EQ(c.Op, CmdOp::None);
  EXPECT_EQ(c.Lyr, 0);
}

TEST(CmdParse, MoveToCarriesFurtherGroupsOfTen) {
  Session s;
  AddLayers(s, 2, 5);
  std::string g1 = "MoveTo Vertex '/data/l1.shp' 1 0 0 1 2 0 0";
  std::string g2 = " MoveTo Vertex '/data/l2.shp' 9 0 1 3 4 0 0"; // record above RecCount
  std::string g3 = " MoveTo Vertex '/data/l2.shp' 5 0 2 5 6 2 3";
  auto calls = Parse(s, g1 + g2 + g3);
  ASSERT_EQ(calls.size(), 3u);
  EXPECT_EQ(calls[0].Lyr, 1);
  EXPECT_EQ(calls[1].Op, CmdOp::None);
  EXPECT_EQ(calls[2].Op, CmdOp::MoveTo);
  EXPECT_EQ(calls[2].Lyr, 2);
  EXPECT_EQ(calls[2].I, (std::vector<int32_t>{5, 0, 2, 2, 3}));
  EXPECT_EQ(calls[2].X, (std::vector<double>{5, 6}));
  // A group that stops short of its tenth token is not read.
  calls = Parse(s, g1 + " MoveTo Vertex '/data/l2.shp' 5 0 2 5 6 2");
  EXPECT_EQ(calls.size(), 1u);
}

TEST(CmdExecute, SkippedCommandsTouchNothing) {
  test::RecordingHost host;
  Session s(host);
  AddLayers(s, 2, 3);
  const std::string before = s.Lyr[2].LyrName + s.Lyr[2].Fsource;
  for (const char* line :
       {"DELETE FEATURE /data/l2.shp 4", "DELETE", "REMOVE LAYER /data/l2.shp x y",
        "ADD FEATURE /data/l2.shp 0 1", "SELECT", "ZOOM ALL", "SAVE PROJECT x",
        "INSERT VERTEX /data/l9.shp 1 0 0 1 1", "MOVETO VERTEX /data/l2.shp 4 0 0 1 1 0 0"}) {
    ArgStrSplit(s, line);
    ArgStrExecute(s);
  }
  EXPECT_TRUE(host.logged.empty());
  EXPECT_TRUE(host.boxes.empty());
  EXPECT_EQ(host.beeps, 0);
  EXPECT_EQ(s.LyrCount, 2);
  EXPECT_EQ(s.Lyr[2].LyrName + s.Lyr[2].Fsource, before);
  EXPECT_EQ(s.Lyr[2].Shp.RecCount, 3);
}

TEST(CmdExecute, TheExitTailActsOnTheLayerTheBranchFound) {
  Session s;
  AddLayers(s, 3, 0);
  // What each branch hands to the tail.
  auto found = [&](const std::string& line) {
    ArgStrSplit(s, line);
    int n = 0;
    for (const CmdCall& c : ParseArgStr(s)) n = c.Lyr;
    return n;
  };
  EXPECT_EQ(found("DELETE FEATURE /data/l2.shp 99 EXIT"), 2); // skipped, but found
  EXPECT_EQ(found("MOVETO VERTEX /data/l1.shp 1 0 0 1 1 0 0 "
                  "MOVETO VERTEX /data/l3.shp 1 0 0 1 1 0 EXIT"),
            3);
  EXPECT_EQ(found("SAVE LAYER /data/none.shp EXIT"), 0);
  EXPECT_EQ(found("REMOVE LAYER /data/l2.shp EXIT"), 0);
  EXPECT_EQ(found("SELECT x EXIT"), 0);

  // The tail itself: whatever the layer service does with it, the other rows stay as they
  // were and keep their order.
  ArgStrSplit(s, "SAVE LAYER '/data/l3.shp' exit");
  EXPECT_TRUE(ArgStrEndsInExit(s));
  ArgStrExecute(s);
  ASSERT_GE(s.LyrCount, 2);
  EXPECT_EQ(s.Lyr[1].Fsource, "/data/l1.shp");
  EXPECT_EQ(s.Lyr[2].Fsource, "/data/l2.shp");
}
