// The selection, find and bulk commands through the command language, as .lst files and the
// journal run them.
#include "query/selection.h"
#include "query_fixture.h"
#include "session/undo.h"

namespace velmora::test {
namespace {

struct CmdsTest : QueryFixture {
  int roads = 0, points = 0;
  void SetUp() override {
    QueryFixture::SetUp();
    roads = MakeOpen("roads", "WKT,name,lanes",
                     {"\"LINESTRING (0 0,1 0)\",Main Street,2", "\"LINESTRING (0 1,1 1)\",Side,1",
                      "\"LINESTRING (0 2,1 2)\",Main Road,4", "\"LINESTRING (0 3,1 3)\",Lane,1"});
    points = MakeOpen("points", "WKT,name,lanes", {"\"POINT (5 5)\",p,0"});
  }
  std::vector<int> Selected(int lyr) {
    std::vector<int> out;
    for (int r = 1; r <= s.Lyr[lyr].Shp.RecCount; ++r)
      if (IsSelected(s, lyr, r)) out.push_back(r);
    return out;
  }
};

TEST_F(CmdsTest, FindQueryWithTheDialogsNumbers) {
  Exec("FIND QUERY " + Q(roads) + " 1 1 name 1 main");
  EXPECT_EQ(Selected(roads), (std::vector<int>{1, 3}));
  EXPECT_TRUE(Logged("2 Features have been Selected in Layer roads.shp"));
  Exec("FIND QUERY " + Q(roads) + " 1 2 lanes 3 2"); // inside the selection, lanes > 2
  EXPECT_EQ(Selected(roads), std::vector<int>{3});
  Exec("FIND QUERY " + Q(roads) + " 2 1 name 2 'Side'");
  EXPECT_EQ(Selected(roads), (std::vector<int>{2, 3}));
  Exec("FIND QUERY " + Q(roads) + " 3 1 NONE 1 ROAD");
  EXPECT_EQ(Selected(roads), std::vector<int>{2});
  Exec("FIND QUERY " + Q(roads) + " 1 1 name 1 main MATCHCASE");
  EXPECT_TRUE(Selected(roads).empty());
  Exec("FIND QUERY " + Q(roads) + " 1 1 name 1 Main AND lanes 5 3");
  EXPECT_EQ(Selected(roads), std::vector<int>{3});
}

TEST_F(CmdsTest, FindQueryBadInputNeverCrashes) {
  Exec("FIND QUERY " + Q(roads) + " 1 1 nosuchfield 2 x");
  EXPECT_EQ(Selected(roads).size(), 4u); // the term is off: every row holds
  EXPECT_TRUE(Logged("Field nosuchfield is not in Layer roads.shp: its term is left out"));
  Exec("FIND QUERY " + Q(roads) + " 1 1 name 9 x"); // no such relation
  EXPECT_TRUE(Logged(" *** Find Values in Layer roads.shp has been canceled *** "));
  Exec("FIND QUERY " + Q(roads) + " 4 1 name 1 x"); // no such method: nothing
  Exec("FIND QUERY " + Q(roads) + " 1 1 lanes 2");  // empty value: 0
  EXPECT_TRUE(Selected(roads).empty());
  Exec("FIND QUERY " + Q(roads));
  Exec("FIND QUERY '/no/such/file.shp' 1 1 name 1 x");
}

TEST_F(CmdsTest, SelectionWordsByRange) {
  Exec("SELECTION ADD " + Q(roads) + " 3 1");
  EXPECT_EQ(Selected(roads), (std::vector<int>{1, 2, 3}));
  EXPECT_TRUE(Logged("3 Features have been Selected in Layer roads.shp"));
  Exec("SELECTION REMOVE " + Q(roads) + " 2 2");
  EXPECT_EQ(Selected(roads), (std::vector<int>{1, 3}));
  Exec("SELECTION INVERT " + Q(roads));
  EXPECT_EQ(Selected(roads), (std::vector<int>{2, 4}));
  Exec("SELECTION CLEAR " + Q(roads));
  EXPECT_TRUE(Selected(roads).empty());
  Exec("SELECT " + Q(roads)); // the word of the language that does nothing
  EXPECT_TRUE(Selected(roads).empty());
}

TEST_F(CmdsTest, BulkWordsAndTheJournal) {
  Exec("SELECTION ADD " + Q(roads) + " 1 2");
  Exec("COPY SELECTED " + Q(roads) + " " + Q(points));
  EXPECT_EQ(s.Lyr[points].Shp.RecCount, 3);
  EXPECT_EQ(Cell(points, 2, "name"), "Main Street");
  EXPECT_EQ(Cell(points, 3, "lanes"), "1");
  EXPECT_TRUE(Logged("2 Features have been Pasted in Layer points.shp"));
  Exec("CUT SELECTED " + Q(roads) + " " + Q(roads));
  EXPECT_TRUE(IsDeleted(s, roads, 1));
  EXPECT_EQ(s.Lyr[roads].Shp.RecCount, 6);
  UndoRun(s);
  EXPECT_FALSE(IsDeleted(s, roads, 1));
  EXPECT_TRUE(IsDeleted(s, roads, 5));
  Exec("SELECTION ADD " + Q(roads) + " 1 2");
  Exec("COMBINE SELECTED " + Q(roads) + " " + Q(roads));
  EXPECT_EQ(s.Lyr[roads].Shp.ShpRecs[7].NumParts, 2);
  Exec("DELETE SELECTED " + Q(roads));
  EXPECT_TRUE(IsDeleted(s, roads, 1));
  EXPECT_TRUE(IsDeleted(s, roads, 2));
  Exec("UNDELETE FEATURES " + Q(roads) + " 1 1");
  EXPECT_FALSE(IsDeleted(s, roads, 1));
  Exec("REMOVE DELETED " + Q(roads));
  EXPECT_EQ(s.Lyr[roads].Shp.RecCount, 4); // 1, 3, 4 and the combined one
  EXPECT_TRUE(Logged("Remove Deleted Features in Layer roads.shp"));
}

TEST_F(CmdsTest, CopyBetweenTypesThatCannotHoldEachOtherIsRefused) {
  Exec("SELECTION ADD " + Q(points) + " 1 1");
  Exec("COPY SELECTED " + Q(points) + " " + Q(roads));
  EXPECT_EQ(s.Lyr[roads].Shp.RecCount, 4);
  EXPECT_TRUE(Logged(" *** Copy Selected Features to roads.shp has been canceled *** "));
}

} // namespace
} // namespace velmora::test
