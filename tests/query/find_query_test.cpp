#include "query/find_query.h"

#include <random>

#include "query/selection.h"
#include "query_fixture.h"

namespace velmora::test {
namespace {

struct FindTest : QueryFixture {
  int lyr = 0;
  void SetUp() override {
    QueryFixture::SetUp();
    // name (text), num (real), code (text), an empty name in row 4.
    lyr =
        MakeOpen("towns", "WKT,name,num,code",
                 {"\"POINT (0 0)\",Alpha,1.0,1", "\"POINT (1 1)\",beta,2.5,1.0",
                  "\"POINT (2 2)\",ABC,-3,abc", "\"POINT (3 3)\",,10,", "\"POINT (4 4)\",abc,1,x"});
  }
  QueryTerm Term(const std::string& field, int rel, const std::string& value, bool mcase = false) {
    QueryTerm t;
    t.QLayer = lyr;
    if (field == "NONE")
      t.QType = kQueryWholeRow;
    else
      t.QField = FindField(s, lyr, field);
    t.QRelation = rel;
    t.QValue = value;
    t.QMatchCase = mcase ? -1 : 0;
    return t;
  }
  std::vector<int> Selected(int n = 0) {
    std::vector<int> out;
    n = n ? n : lyr;
    for (int r = 1; r <= s.Lyr[n].Shp.RecCount; ++r)
      if (IsSelected(s, n, r)) out.push_back(r);
    return out;
  }
  std::vector<int> Find(const QueryTerm& t, int method = 1, int criteria = 1) {
    EXPECT_GE(FindQuery(s, lyr, method, criteria, {t}), 0);
    return Selected();
  }
};

TEST_F(FindTest, LikeIsContainmentAndEmptyLikeMatchesOnlyEmptyCells) {
  EXPECT_EQ(Find(Term("name", 1, "b")), (std::vector<int>{2, 3, 5}));
  EXPECT_EQ(Find(Term("name", 1, "")), std::vector<int>{4});
  EXPECT_EQ(Find(Term("name", 1, "   ")), std::vector<int>{4}); // trailing spaces go
}

TEST_F(FindTest, NumericEqualityIsOfNumbersTextEqualityOfTexts) {
  EXPECT_EQ(GetFieldType(s, lyr, FindField(s, lyr, "num")), "Numeric");
  EXPECT_EQ(Find(Term("num", 2, "1")), (std::vector<int>{1, 5}));
  EXPECT_EQ(Find(Term("num", 2, "1.0")), (std::vector<int>{1, 5}));
  EXPECT_EQ(Find(Term("code", 2, "1")), std::vector<int>{1});
  EXPECT_EQ(Find(Term("num", 3, "2")), (std::vector<int>{2, 4}));
  EXPECT_EQ(Find(Term("num", 6, "1")), (std::vector<int>{1, 3, 5}));
  EXPECT_EQ(Find(Term("num", 7, "1")), (std::vector<int>{2, 3, 4}));
  // Texts compare as texts: "10" sorts before "2".
  EXPECT_EQ(Find(Term("code", 4, "2")), (std::vector<int>{1, 2, 4}));
}

TEST_F(FindTest, MatchCaseDecides) {
  EXPECT_EQ(Find(Term("name", 2, "abc")), (std::vector<int>{3, 5}));
  EXPECT_EQ(Find(Term("name", 2, "abc", true)), std::vector<int>{5});
  EXPECT_EQ(Find(Term("name", 1, "A", true)), (std::vector<int>{1, 3}));
}

TEST_F(FindTest, WholeRowTermSearchesEveryField) {
  EXPECT_EQ(Find(Term("NONE", 1, "ABC")), (std::vector<int>{3, 5}));
  EXPECT_EQ(Find(Term("NONE", 1, "2.5")), std::vector<int>{2});
}

TEST_F(FindTest, BadTermsFollowTheRulesWithoutHarm) {
  QueryTerm missing = Term("name", 2, "Alpha");
  missing.QField = 99; // no such field: the term is off, every row matches
  EXPECT_EQ(Find(missing).size(), 5u);
  QueryTerm off = Term("name", 2, "Alpha");
  off.QField = 0;
  EXPECT_EQ(Find(off).size(), 5u);
  // A number that does not parse is 0; an empty value too.
  EXPECT_EQ(Find(Term("num", 3, "abc")), (std::vector<int>{1, 2, 4, 5}));
  EXPECT_EQ(Find(Term("num", 4, "")), std::vector<int>{3});
}

TEST_F(FindTest, NoRowsSelectsNothingAndReportsZero) {
  const int empty = MakeOpen("none", "WKT,name", {});
  ASSERT_GT(empty, 0);
  QueryTerm t = Term("name", 1, "");
  t.QLayer = empty;
  t.QField = FindField(s, empty, "name");
  EXPECT_EQ(FindValues(s, empty, 1, 1, {t}), 0);
  EXPECT_TRUE(Logged("0 Features have been Selected in Layer none.shp"));
}

TEST_F(FindTest, NewSelectionEmptiesTheOtherLayers) {
  const int other = MakeOpen("other", "WKT,name", {"\"POINT (9 9)\",x"});
  SelectRec(s, other, 1);
  Find(Term("name", 1, "A"));
  EXPECT_TRUE(Selected(other).empty());
  SelectRec(s, other, 1);
  Find(Term("name", 1, "A"), 2);
  EXPECT_EQ(Selected(other), std::vector<int>{1});
}

TEST_F(FindTest, BusyLayerAsksWhetherToTerminate) {
  s.Lyr[lyr].LyrBusy = -1;
  s.Lyr[lyr].BusyFunc = "Copy Selected Features";
  host.answers = {MsgAnswer::Yes};
  EXPECT_EQ(FindValues(s, lyr, 1, 1, {Term("name", 1, "a")}), -1);
  ASSERT_EQ(host.boxes.size(), 1u);
  EXPECT_EQ(host.boxes[0], "towns.shp : Query Message Box |  Would you like to Terminate Copy "
                           "Selected Features Function in layer towns.shp ?   \r\n");
  EXPECT_EQ(s.Lyr[lyr].LyrTerminate, -1);
}

// A host whose yield is the user pressing "Terminate" on the layer.
struct TerminatingHost : RecordingHost {
  Session* s = nullptr;
  int lyr = 0;
  void Yield() override { s->Lyr[lyr].LyrTerminate = -1; }
};

TEST_F(FindTest, TerminatedFindReportsTheCancelAndKeepsTheRest) {
  SelectRec(s, lyr, 5);
  TerminatingHost th;
  th.s = &s, th.lyr = lyr;
  Host* before = s.host;
  s.host = &th;
  s.MapView.MapTarget = 1;
  const int found = FindValues(s, lyr, 1, 1, {Term("name", 1, "")});
  s.host = before;
  EXPECT_EQ(found, -1);
  bool canceled = false;
  for (const std::string& l : th.logged)
    canceled |= l == " *** Find Values in Layer towns.shp has been canceled *** ";
  EXPECT_TRUE(canceled);
  EXPECT_TRUE(IsSelected(s, lyr, 5)); // the rows after the first were left alone
}

// The nine loops as stated, row by row, as the oracle.
std::vector<bool> Oracle(std::vector<bool> sel, const std::vector<bool>& match, int method,
                         int criteria) {
  for (size_t r = 0; r < sel.size(); ++r) {
    const bool admitted = criteria == 1 || (criteria == 2 ? sel[r] : !sel[r]);
    if (!admitted) {
      if (method == 1 && criteria == 3) sel[r] = false; // New from Outside clears the rest
      continue;
    }
    if (method == 1) sel[r] = match[r];
    if (method == 2 && match[r]) sel[r] = true;
    if (method == 3 && match[r]) sel[r] = false;
  }
  return sel;
}

TEST_F(FindTest, NineLoopsAgreeWithTheOracle) {
  std::vector<std::string> rows;
  std::mt19937 rng(7);
  const int n = 300;
  std::vector<int> values;
  for (int i = 0; i < n; ++i) {
    values.push_back(int(rng() % 10));
    rows.push_back("\"POINT (" + std::to_string(i) + " 0)\"," + std::to_string(values.back()));
  }
  const int big = MakeOpen("big", "WKT,v", rows);
  for (int method = 1; method <= 3; ++method) {
    for (int criteria = 1; criteria <= 3; ++criteria) {
      std::vector<bool> sel(n), match(n);
      ClearSelection(s, big);
      for (int i = 0; i < n; ++i) {
        sel[size_t(i)] = rng() % 2;
        if (sel[size_t(i)]) SelectRec(s, big, i + 1);
        match[size_t(i)] = values[size_t(i)] >= 5;
      }
      QueryTerm t;
      t.QLayer = big;
      t.QField = FindField(s, big, "v");
      t.QRelation = 5;
      t.QValue = "5";
      FindQuery(s, big, method, criteria, {t});
      const std::vector<bool> want = Oracle(sel, match, method, criteria);
      for (int i = 0; i < n; ++i)
        ASSERT_EQ(IsSelected(s, big, i + 1), want[size_t(i)])
            << "method " << method << " criteria " << criteria << " record " << i + 1;
    }
  }
}

TEST_F(FindTest, NestedFindAndsItsTermsThroughTheSecondSet) {
  std::vector<QueryTerm> terms = {Term("name", 1, "A"), Term("num", 5, "1")};
  EXPECT_EQ(NestedFind(s, lyr, 1, 1, terms), 3); // Alpha 1.0, beta 2.5, abc 1; not ABC -3
  EXPECT_EQ(Selected(), (std::vector<int>{1, 2, 5}));
  EXPECT_TRUE(IsQrySel(s, lyr, 1));
  EXPECT_FALSE(IsQrySel(s, lyr, 3));
  // The same terms through FindQuery select the same.
  ClearSelection(s, lyr);
  EXPECT_EQ(FindQuery(s, lyr, 1, 1, terms), 3);
  EXPECT_EQ(Selected(), (std::vector<int>{1, 2, 5}));
  // Within the selection, the marks of a further term narrow it.
  EXPECT_EQ(NestedFind(s, lyr, 1, 2, {Term("num", 3, "2")}), 1);
  EXPECT_EQ(Selected(), std::vector<int>{2});
}

TEST_F(FindTest, UniqueValuesAreDedupedAndOrderedByTheirKeys) {
  const int nums = MakeOpen("nums", "WKT,v",
                            {"\"POINT (0 0)\",10", "\"POINT (0 0)\",-1", "\"POINT (0 0)\",3",
                             "\"POINT (0 0)\",0", "\"POINT (0 0)\",-2", "\"POINT (0 0)\",3"});
  auto list = UpdateUnique(s, nums, 1, FindField(s, nums, "v"), "");
  std::vector<std::string> values;
  for (auto& [k, v] : list) values.push_back(v);
  EXPECT_EQ(values, (std::vector<std::string>{"-2", "-1", "0", "3", "10"}));
  EXPECT_TRUE(Logged("5 Features have been updated Unique in Layer nums.shp"));
  auto none = UpdateUnique(s, nums, 1, 0, "");
  ASSERT_EQ(none.size(), 1u);
  EXPECT_EQ(none[0].second, "None");
}

TEST_F(FindTest, SortKeysOfDatesNumbersAndTexts) {
  s.Locale.ShortDate = "dd/mm/yyyy";
  EXPECT_EQ(UniqueSortKey(s, "03/02/2021"), "20210203");
  EXPECT_EQ(UniqueSortKey(s, "-2"), "+-0.5");
  EXPECT_EQ(UniqueSortKey(s, "3"), "-000000000003");
  EXPECT_EQ(UniqueSortKey(s, "2.25"), "-000000000002.25");
  EXPECT_EQ(UniqueSortKey(s, "  road "), "road");
}

} // namespace
} // namespace velmora::test
