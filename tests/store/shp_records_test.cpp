// The record side: delete and undelete, vertices, parts, copies, and the measures.
#include <gtest/gtest.h>

#include <cmath>

#include "frame/busy.h"
#include "shp_test_util.h"

using namespace velmora;
using namespace velmora::test;

namespace {

// A fresh layer of `type` in row 1 with nothing on disk.
void NewLayer(Session& s, int type) {
  s.Lyr.Resize(1);
  s.LyrCount = 1;
  s.Lyr[1].LyrKind = 1;
  s.Lyr[1].LyrName = "mem";
  s.Lyr[1].Shp.ShpType = type;
  SizeRecs(s, 1, 0);
}

// Adds one record with the given parts of vertices (z = x + y, m = 10 * x).
int AddFeature(Session& s, std::vector<std::vector<XY>> parts) {
  AddRec(s, 1);
  int rec = s.Lyr[1].Shp.RecCount;
  for (size_t i = 0; i < parts.size(); ++i) {
    if (i > 0) AddPart(s, 1, rec);
    for (XY v : parts[i]) AddVertex(s, 1, rec, int(i), v.X, v.Y, v.X + v.Y, 10 * v.X);
  }
  RecalcRecBox(s, 1, rec);
  return rec;
}

const ShpRecord& Rec(const Session& s, int rec) {
  return s.Lyr[1].Shp.ShpRecs[size_t(rec)];
}

} // namespace

TEST(ShpRecords, AddRecGivesOnePlaceholderPartAndVerticesReplaceIt) {
  Session s;
  NewLayer(s, 13);
  AddRec(s, 1);
  const ShpRecord& r = Rec(s, 1);
  EXPECT_EQ(r.ShapeType, 13);
  EXPECT_EQ(r.NumPoints, 0);
  ASSERT_EQ(r.PartSlots(), 1);
  EXPECT_EQ(r.Part(0).Size(), 1u);
  EXPECT_EQ(r.Part(0).PartZ().size(), 1u);
  EXPECT_EQ(r.Part(0).PartM().size(), 1u);
  AddVertex(s, 1, 1, 0, 1, 2, 3, 4);
  AddVertex(s, 1, 1, 0, -1, 5, -3, 9);
  InsertVertex(s, 1, 1, 0, 1, 0, 0, 7, 8);
  const ShpRecord& q = Rec(s, 1);
  EXPECT_EQ(q.NumPoints, 3);
  ASSERT_EQ(q.Part(0).Size(), 3u);
  EXPECT_EQ(q.Part(0).PartPoints()[1].X, 0);
  EXPECT_EQ(q.Part(0).PartZ()[1], 7);
  EXPECT_EQ(q.Part(0).PartM()[2], 9);
  EXPECT_EQ(q.Xmin, -1);
  EXPECT_EQ(q.Ymax, 5);
  EXPECT_EQ(q.Zmin, -3);
  EXPECT_EQ(q.Mmax, 9);
  EXPECT_EQ(s.Lyr[1].Shp.ShpChanged, -1);
  // Selection sets cover the records the array can hold.
  EXPECT_GE(s.Lyr[1].SelBits.size() * 8, s.Lyr[1].Shp.ShpRecs.size() - 1);
}

TEST(ShpRecords, PointRecordsTakeOneVertexOnly) {
  Session s;
  NewLayer(s, 1);
  AddRec(s, 1);
  AddVertex(s, 1, 1, 0, 1, 1, 0, 0);
  AddVertex(s, 1, 1, 0, 2, 2, 0, 0);
  EXPECT_EQ(Rec(s, 1).NumPoints, 1);
  EXPECT_EQ(Rec(s, 1).Part(0).Size(), 1u);
  DeleteVertices(s, 1, 1, 0, 0, 1);
  EXPECT_TRUE(IsDeleted(s, 1, 1));
}

TEST(ShpRecords, DeletePartIsSoftAndUndeleteBringsTheRecordBack) {
  Session s;
  NewLayer(s, 3);
  int r = AddFeature(s, {{{0, 0}, {1, 1}}});
  DeletePart(s, 1, r, 0, true);
  EXPECT_TRUE(IsDeleted(s, 1, r));
  EXPECT_EQ(Rec(s, r).Part(0).Size(), 2u);
  UndeletePart(s, 1, r, 0, true);
  EXPECT_FALSE(IsDeleted(s, 1, r));
  EXPECT_EQ(Rec(s, r).NumPoints, 2);
  UndeletePart(s, 1, r, 0, false); // twice counts once
  EXPECT_EQ(Rec(s, r).NumPoints, 2);

  DeleteRec(s, 1, r, false);
  EXPECT_TRUE(IsDeleted(s, 1, r));
  UndeleteRec(s, 1, r, true);
  EXPECT_EQ(Rec(s, r).ShapeType, 3);
  EXPECT_EQ(RightExtend(s.Lyr[1]), 1);

  int g = AddFeature(s, {{{0, 0}, {1, 1}}, {{5, 5}, {6, 6}, {7, 7}}});
  DeletePartRange(s, 1, g, 0, 1, false);
  EXPECT_TRUE(IsDeleted(s, 1, g));
  // Operations beyond the records do nothing.
  DeleteRec(s, 1, 99, true);
  UndeletePart(s, 1, 99, 0, true);
  EXPECT_FALSE(IsDeleted(s, 1, 99));
}

TEST(ShpRecords, PartsEmptyInTheFileStayDeleted) {
  Session s;
  NewLayer(s, 3);
  int r = AddFeature(s, {{{0, 0}, {1, 1}}});
  ShpRecord& rec = s.Lyr[1].Shp.ShpRecs[size_t(r)];
  rec.InsertPart(1).PartFlag = -1;
  rec.NumParts = 2;
  UndeletePart(s, 1, r, 1, false);
  EXPECT_EQ(Rec(s, r).NumPoints, 2);
}

TEST(ShpRecords, DeleteVerticesShiftsZAndMAndARingRangeWraps) {
  Session s;
  NewLayer(s, 15);
  int r = AddFeature(s, {{{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0}, {5, 0}}});
  DeleteVertices(s, 1, r, 0, 1, 2);
  const ShpPart& p = Rec(s, r).Part(0);
  ASSERT_EQ(p.Size(), 4u);
  EXPECT_EQ(p.PartPoints()[1].X, 3);
  EXPECT_EQ(p.PartZ()[1], 3);
  EXPECT_EQ(p.PartM()[3], 50);
  EXPECT_EQ(Rec(s, r).NumPoints, 4);
  EXPECT_EQ(p.PartCount, 4);
  // 0 3 4 5: delete from 3 (value 5) round to 0 (value 0).
  DeleteVerticesRing(s, 1, r, 0, 3, 0, true);
  const ShpPart& q = Rec(s, r).Part(0);
  ASSERT_EQ(q.Size(), 2u);
  EXPECT_EQ(q.PartPoints()[0].X, 3);
  EXPECT_EQ(q.PartPoints()[1].X, 4);
  DeleteVertices(s, 1, r, 0, 0, 10);
  EXPECT_TRUE(IsDeleted(s, 1, r));
}

TEST(ShpRecords, CopyRecToFitsZAndMToTheDestination) {
  Session s;
  NewLayer(s, 13);
  int r = AddFeature(s, {{{0, 0}, {1, 2}}});
  s.Lyr.Resize(2);
  s.LyrCount = 2;
  s.Lyr[2].LyrKind = 1;
  s.Lyr[2].Shp.ShpType = 23;
  SizeRecs(s, 2, 0);
  CopyRecTo(s, 1, r, 2, 0, true);
  ASSERT_EQ(s.Lyr[2].Shp.RecCount, 1);
  const ShpRecord& c = s.Lyr[2].Shp.ShpRecs[1];
  EXPECT_EQ(c.ShapeType, 23);
  EXPECT_TRUE(c.Part(0).PartZ().empty());
  ASSERT_EQ(c.Part(0).PartM().size(), 2u);
  EXPECT_EQ(c.Part(0).PartM()[1], 10);
  EXPECT_EQ(TopExtend(s.Lyr[2]), 2);
  // A copy is its own: changing it leaves the source alone.
  s.Lyr[2].Shp.ShpRecs[1].Part(0).PartPoints()[0].X = 42;
  EXPECT_EQ(Rec(s, r).Part(0).PartPoints()[0].X, 0);
  // Into a plain layer, both arrays go; onto an existing record, it is replaced.
  s.Lyr[2].Shp.ShpType = 3;
  CopyRecTo(s, 1, r, 2, 1, false);
  EXPECT_EQ(s.Lyr[2].Shp.RecCount, 1);
  EXPECT_TRUE(s.Lyr[2].Shp.ShpRecs[1].Part(0).PartM().empty());
  // Appending a record of its own layer to itself.
  CopyRecTo(s, 1, r, 1, 0, false);
  EXPECT_EQ(Rec(s, 2).Part(0).PartZ()[1], 3);
}

TEST(ShpRecords, PartOrderAndDirection) {
  Session s;
  NewLayer(s, 23);
  int r = AddFeature(s, {{{0, 0}, {1, 1}}, {{5, 5}, {6, 6}, {7, 7}}});
  ASSERT_EQ(Rec(s, r).NumParts, 2);
  MovePartUp(s, 1, r, 0); // the first can't go up
  EXPECT_EQ(Rec(s, r).Part(0).Size(), 2u);
  MovePartUp(s, 1, r, 1);
  EXPECT_EQ(Rec(s, r).Part(0).Size(), 3u);
  MovePartDown(s, 1, r, 1); // the last can't go down
  EXPECT_EQ(Rec(s, r).Part(1).Size(), 2u);
  ReversePart(s, 1, r, 0);
  EXPECT_EQ(Rec(s, r).Part(0).PartPoints()[0].X, 7);
  EXPECT_EQ(Rec(s, r).Part(0).PartM()[0], 70);
  // Vertices copied forward and back into another part.
  CopyVerticesFwd(s, 1, r, 0, 0, 1, 1, r, 1, 0);
  CopyVerticesBack(s, 1, r, 0, 0, 1, 1, r, 1, 0);
  const ShpPart& p = Rec(s, r).Part(1);
  ASSERT_EQ(p.Size(), 6u);
  EXPECT_EQ(p.PartPoints()[0].X, 6);
  EXPECT_EQ(p.PartPoints()[1].X, 7);
  EXPECT_EQ(p.PartPoints()[2].X, 7);
  EXPECT_EQ(p.PartPoints()[3].X, 6);
  EXPECT_EQ(Rec(s, r).NumPoints, 3 + 6);
}

TEST(ShpRecords, AddPartGathersPointsAndConvertLineGonSwapsTypes) {
  Session s;
  NewLayer(s, 8);
  int r = AddFeature(s, {{{0, 0}, {1, 1}, {2, 2}}});
  AddPart(s, 1, r);
  EXPECT_EQ(Rec(s, r).NumParts, 1);
  EXPECT_EQ(Rec(s, r).Part(0).PartCount, 3);

  Session t;
  NewLayer(t, 3);
  AddFeature(t, {{{0, 0}, {1, 1}}});
  ConvertLineGon(t, 1, 3, 15); // another family: ignored
  EXPECT_EQ(t.Lyr[1].Shp.ShpType, 3);
  ConvertLineGon(t, 1, 3, 5);
  EXPECT_EQ(t.Lyr[1].Shp.ShpType, 5);
  EXPECT_EQ(t.Lyr[1].Shp.ShpRecs[1].ShapeType, 5);
}

TEST(ShpMeasures, LengthsAndAreasFollowTheirSettledDefinitions) {
  Session s;
  NewLayer(s, 5);
  // A square with a hole that winds the other way: the area counts both rings.
  int r = AddFeature(
      s, {{{0, 0}, {0, 10}, {10, 10}, {10, 0}, {0, 0}}, {{2, 2}, {4, 2}, {4, 4}, {2, 4}, {2, 2}}});
  EXPECT_EQ(PartArea(s, 1, r, 0), 100);
  EXPECT_EQ(RecArea(s, 1, r), 104);
  EXPECT_EQ(PartLengthPlain(s, 1, r, 0), 40);
  EXPECT_EQ(RecLength(s, 1, r), 48);
  // The centroid: the hole winds the other way and pulls the anchor off it.
  const ShpRecord& g = Rec(s, r);
  EXPECT_EQ(g.LabelReady, 1);
  EXPECT_NEAR(g.LabelX, (100 * 5 - 4 * 3) / 96.0, 1e-12);

  // Open chains leave out the closing segment; areas of a line treat it as a ring.
  Session t;
  NewLayer(t, 3);
  int l = AddFeature(t, {{{0, 0}, {3, 0}, {1, 4}}});
  EXPECT_NEAR(PartLength(t, 1, l, 0), 3 + std::sqrt(20.0), 1e-9);
  EXPECT_EQ(PartArea(t, 1, l, 0), 6);
  // Nine decimals.
  int m = AddFeature(t, {{{0, 0}, {1234567.1234567891, 0}}});
  EXPECT_EQ(PartLengthPlain(t, 1, m, 0), 1234567.123456789);
  // The anchor of a line is the middle of its longest segment.
  const ShpRecord& a = t.Lyr[1].Shp.ShpRecs[size_t(l)];
  EXPECT_EQ(a.LabelX, 2);
  EXPECT_EQ(a.LabelY, 2);
  EXPECT_NEAR(a.LabelAngle, std::atan2(-4, 2), 1e-12); // ends ordered by X: (1,4) then (3,0)

  Session p;
  NewLayer(p, 8);
  int mp = AddFeature(p, {{{0, 0}, {4, 2}}});
  EXPECT_EQ(PartLength(p, 1, mp, 0), 0);
  EXPECT_EQ(p.Lyr[1].Shp.ShpRecs[size_t(mp)].LabelX, 2);
}

TEST(ShpMeasures, WorkSlotsGetNoLabelAnchor) {
  Session s;
  s.Lyr[-1].Shp.ShpType = 1;
  s.Lyr[-1].LyrKind = 1;
  SizeRecs(s, -1, 0);
  AddRec(s, -1);
  AddVertex(s, -1, 1, 0, 3, 4, 0, 0);
  RecalcRecBox(s, -1, 1);
  EXPECT_EQ(s.Lyr[-1].Shp.ShpRecs[1].LabelReady, 0);
  EXPECT_EQ(s.Lyr[-1].Shp.ShpRecs[1].Xmax, 3);
}

TEST(ShpMeasures, ValidateRebuildsBoxesInTheRunningFrame) {
  RecordingHost host;
  Session s(host);
  NewLayer(s, 3);
  int r = AddFeature(s, {{{0, 0}, {1, 1}}});
  AddFeature(s, {{{5, 5}, {6, 9}}});
  s.Lyr[1].Shp.ShpRecs[size_t(r)].Xmin = -100; // a stale box
  ValidateLyrBoundaries(s, 1);
  EXPECT_EQ(Rec(s, r).Xmin, 0);
  EXPECT_EQ(TopExtend(s.Lyr[1]), 9);
  EXPECT_EQ(s.Lyr[1].LyrBusy, 0);
  ASSERT_FALSE(host.logged.empty());
  EXPECT_EQ(host.logged.back(), "Validate Layer boundaries mem");
  EXPECT_GE(host.yields, 2);

  LyrLock(s, 1, true, "Other");
  ValidateLyrBoundaries(s, 1);
  EXPECT_EQ(host.logged.back(), " *** Validate Layer boundaries mem has been canceled *** ");
}
