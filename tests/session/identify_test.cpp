#include <gtest/gtest.h>

#include "../table/table_fixture.h"
#include "session/identify.h"

using namespace velmora;

namespace {

struct Identify : test::TableFixture {
  // The map: 0.01 units a pixel with (0, 10) at the top left.
  void View() {
    MapViewRec& v = s.MapView;
    v.ViewW = 1000, v.ViewH = 1000;
    v.MapLeft = 0, v.MapRight = 10, v.MapTop = 10, v.MapBottom = 0, v.MapFactor = 0.01;
  }
  double Px(double x) { return (x - s.MapView.MapLeft) / s.MapView.MapFactor; }
  double Py(double y) { return (s.MapView.MapTop - y) / s.MapView.MapFactor; }
};

} // namespace

TEST_F(Identify, TheFeatureUnderThePointerWithItsFields) {
  Open(5, "ident");
  View();
  const auto hits = IdentifyAt(s, Px(3), Py(3));
  ASSERT_EQ(hits.size(), 1u);
  EXPECT_EQ(hits[0].Lyr, lyr);
  EXPECT_EQ(hits[0].Rec, 4);
  const auto fields = RecordFields(s, lyr, 4);
  ASSERT_EQ(fields.size(), 4u);
  EXPECT_EQ(fields[0].first, "NAME");
  EXPECT_EQ(Trim(fields[0].second), "n3");
  EXPECT_TRUE(IdentifyAt(s, Px(3.5), Py(2)).empty());
  s.Lyr[lyr].DVisable = 0; // hidden layers don't answer
  EXPECT_TRUE(IdentifyAt(s, Px(3), Py(3)).empty());
}

TEST_F(Identify, HyperLinkOpensTheFieldValue) {
  Open(3, "hyper");
  View();
  ReadDbfRec(s, lyr, 1);
  SetFieldValue(s, lyr, 1, "doc.txt");
  WriteDbfRecSwap(s, lyr, 1);
  test::WriteFile(dir + "doc.txt", "x");
  EXPECT_EQ(FollowHyperLink(s, Px(1), Py(1)), ""); // the layer doesn't answer the tool
  s.Lyr[lyr].HVisible = 1;
  s.Lyr[lyr].HFName = 1;
  EXPECT_EQ(FollowHyperLink(s, Px(1), Py(1)), dir + "doc.txt"); // found beside the layer
  ASSERT_EQ(host.shellOpened.size(), 1u);
  EXPECT_EQ(host.shellOpened[0], dir + "doc.txt");
  EXPECT_EQ(FollowHyperLink(s, Px(2), Py(1)), ""); // nothing under the pointer
}
