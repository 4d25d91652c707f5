// Reading: both paths (through the index and sequential), every kind of empty or damaged
// record, and the state a layer is left in after the open.
#include <gtest/gtest.h>

#include "model/file_util.h"
#include "shp_test_util.h"

using namespace velmora;
using namespace velmora::test;

namespace {

std::vector<uint8_t> Line(std::vector<std::vector<XY>> parts, int type = 3) {
  Bytes b;
  double x0 = 1e300, y0 = 1e300, x1 = -1e300, y1 = -1e300;
  int n = 0;
  for (auto& p : parts)
    for (auto& v : p) {
      x0 = std::min(x0, v.X), y0 = std::min(y0, v.Y), x1 = std::max(x1, v.X),
      y1 = std::max(y1, v.Y);
      ++n;
    }
  if (n == 0) x0 = y0 = x1 = y1 = 0;
  b.I(type).Box(x0, y0, x1, y1).I(int(parts.size())).I(n);
  int start = 0;
  for (auto& p : parts) b.I(start), start += int(p.size());
  for (auto& p : parts)
    for (auto& v : p) b.D(v.X).D(v.Y);
  return b.b;
}

std::vector<uint8_t> Point(double x, double y) {
  return Bytes().I(1).D(x).D(y).b;
}

} // namespace

TEST(ShpRead, EmptyLayerOpensWithZeroExtentAndAFrameRecord) {
  std::string dir = TempDir("shp-read");
  ShpBuilder b(5);
  b.Write(dir + "e.shp", true);
  Session s;
  OpenAsLayer(s, dir + "e.shp");
  ASSERT_EQ(s.ShpErr, 0);
  const ShpBlock& B = s.Lyr[1].Shp;
  EXPECT_EQ(B.RecCount, 0);
  EXPECT_EQ(B.ShpHeader.Xmin, 0);
  EXPECT_EQ(B.ShpHeader.Ymax, 0);
  ASSERT_EQ(B.ShpRecs.size(), 1u);
  const ShpRecord& f = B.ShpRecs[0];
  EXPECT_EQ(f.ShapeType, 99);
  EXPECT_EQ(f.NumPoints, 5);
  ASSERT_EQ(f.Parts().size(), 1u);
  EXPECT_EQ(f.Part(0).Size(), 5u);
  EXPECT_EQ(B.ShpChanged, 0);
  EXPECT_EQ(s.Lyr[1].Fsource, dir + "e.shp");
  EXPECT_EQ(s.Lyr[1].SelBits.size(), 1u);
}

TEST(ShpRead, ExtentIsRecomputedFromLiveRecordsAndSelectionSized) {
  std::string dir = TempDir("shp-read");
  ShpBuilder b(3);
  for (int i = 0; i < 9; ++i) b.Add(Line({{{double(i), 1}, {double(i) + 0.5, -2}}}));
  b.Add(Line({}, 3)); // no parts: deleted, not counted in the extent
  b.Write(dir + "x.shp", true);
  Session s;
  OpenAsLayer(s, dir + "x.shp");
  ASSERT_EQ(s.ShpErr, 0);
  LyrRec& L = s.Lyr[1];
  EXPECT_EQ(L.Shp.RecCount, 10);
  EXPECT_EQ(LeftExtend(L), 0);
  EXPECT_EQ(RightExtend(L), 8.5);
  EXPECT_EQ(BottomExtend(L), -2);
  EXPECT_EQ(TopExtend(L), 1);
  EXPECT_EQ(L.SelBits.size(), size_t((10 + 7) / 8 + 1));
  EXPECT_EQ(L.SelCount, 10);
  EXPECT_EQ(L.Shp.ShpChanged, 0);
}

TEST(ShpRead, WithoutIndexRecordsAreNumberedByPositionAndATruncatedTailIsDropped) {
  std::string dir = TempDir("shp-read");
  ShpBuilder b(1);
  b.Add(Point(1, 1));
  b.Add(Point(2, 2));
  b.Add(Point(3, 3));
  auto bytes = b.ShpBytes();
  // Record numbers in the file are not looked at.
  bytes[100 + 3] = 77;
  std::string full(bytes.begin(), bytes.end());
  WriteFile(dir + "p.shp", full);
  Session s;
  OpenAsLayer(s, dir + "p.shp");
  ASSERT_EQ(s.ShpErr, 0);
  EXPECT_EQ(s.Lyr[1].Shp.RecCount, 3);
  EXPECT_EQ(s.Lyr[1].Shp.ShpRecs[3].Part(0).PartPoints()[0].X, 3);
  EXPECT_EQ(s.Lyr[1].Shp.ShpRecs.size(), 4u); // cut to the count

  WriteFile(dir + "p.shp", full.substr(0, full.size() - 5));
  Session t;
  OpenAsLayer(t, dir + "p.shp");
  ASSERT_EQ(t.ShpErr, 0);
  EXPECT_EQ(t.Lyr[1].Shp.RecCount, 2);
  EXPECT_EQ(t.Lyr[1].Shp.ShpRecs[2].Part(0).PartPoints()[0].Y, 2);
}

TEST(ShpRead, EmptyFeaturesAndPartsTakeTheirSettledForms) {
  std::string dir = TempDir("shp-read");
  ShpBuilder b(3);
  b.Add(Line({{{0, 0}, {1, 1}}}));
  b.Add(Line({}));                     // no parts
  b.Add(Bytes().I(0).b);               // null shape
  b.Add(Line({{{5, 5}, {6, 7}}, {}})); // an empty last part
  b.Write(dir + "e.shp", true);
  Session s;
  OpenAsLayer(s, dir + "e.shp");
  ASSERT_EQ(s.ShpErr, 0);
  LyrRec& L = s.Lyr[1];
  ASSERT_EQ(L.Shp.RecCount, 4);
  // No parts: deleted, one empty part with one point at the layer's left top.
  const ShpRecord& r2 = L.Shp.ShpRecs[2];
  EXPECT_EQ(r2.ShapeType, 0);
  EXPECT_EQ(r2.NumParts, 0);
  EXPECT_EQ(r2.NumPoints, 0);
  ASSERT_EQ(r2.PartSlots(), 1);
  ASSERT_EQ(r2.Part(0).Size(), 1u);
  EXPECT_EQ(r2.Xmin, r2.Xmax);
  // Null shape: one empty part, one zero point.
  const ShpRecord& r3 = L.Shp.ShpRecs[3];
  EXPECT_TRUE(IsDeleted(s, 1, 3));
  ASSERT_EQ(r3.PartSlots(), 1);
  EXPECT_EQ(r3.Part(0).PartPoints()[0].X, 0);
  // The empty part of a line: flag -1, one placeholder point from the box.
  const ShpRecord& r4 = L.Shp.ShpRecs[4];
  EXPECT_EQ(r4.ShapeType, 3);
  ASSERT_EQ(r4.NumParts, 2);
  EXPECT_EQ(r4.Part(0).PartFlag, 0);
  EXPECT_EQ(r4.Part(1).PartFlag, -1);
  EXPECT_EQ(r4.Part(1).PartCount, 0);
  ASSERT_EQ(r4.Part(1).Size(), 1u);
  EXPECT_EQ(r4.Part(1).PartPoints()[0].X, 5);
  EXPECT_EQ(r4.Part(1).PartStart, 2);
  // Saved, the feature without parts is a type 0 record under its own number.
  SaveShp(s, 1, dir + "e2.shp");
  ASSERT_EQ(s.ShpErr, 0);
  std::string shx = ReadFile(dir + "e2.shx"), shp = ReadFile(dir + "e2.shp");
  int32_t off2 = BE32At(shx, 100 + 8);
  EXPECT_EQ(BE32At(shp, size_t(2 * off2)), 2);
  EXPECT_EQ(LE32At(shp, size_t(2 * off2 + 8)), 0);
}

TEST(ShpRead, EmptyPolygonPartHasNoPlaceholder) {
  std::string dir = TempDir("shp-read");
  ShpBuilder b(5);
  b.Add(Line({{}, {{0, 0}, {1, 0}, {1, 1}, {0, 0}}}, 5));
  b.Write(dir + "g.shp", true);
  Session s;
  OpenAsLayer(s, dir + "g.shp");
  ASSERT_EQ(s.ShpErr, 0);
  const ShpRecord& r = s.Lyr[1].Shp.ShpRecs[1];
  EXPECT_EQ(r.Part(0).PartFlag, -1);
  EXPECT_EQ(r.Part(0).Size(), 0u);
  EXPECT_EQ(r.Part(1).PartCount, 4);
}

TEST(ShpRead, UnknownTypeWordsKeepTheirRecordWithoutGeometry) {
  std::string dir = TempDir("shp-read");
  ShpBuilder b(1);
  b.Add(Point(1, 2));
  b.Add(Bytes().I(7).D(9).D(9).b);
  b.Add(Bytes().I(200).b);
  b.Add(Point(3, 4));
  b.Write(dir + "u.shp", true);
  Session s;
  OpenAsLayer(s, dir + "u.shp");
  ASSERT_EQ(s.ShpErr, 0);
  const ShpBlock& B = s.Lyr[1].Shp;
  EXPECT_EQ(B.ShpRecs[2].ShapeType, 7);
  EXPECT_EQ(B.ShpRecs[2].PartSlots(), 0);
  EXPECT_EQ(B.ShpRecs[3].ShapeType, 200);
  EXPECT_EQ(B.ShpRecs[4].Part(0).PartPoints()[0].Y, 4);
}

TEST(ShpRead, ZRecordsWithoutMeasuresReadTheirMeasuresAsZero) {
  std::string dir = TempDir("shp-read");
  ShpBuilder b(13);
  for (int k = 0; k < 2; ++k) {
    Bytes r;
    r.I(13).Box(0, 0, 1, 1).I(1).I(2).I(0).D(0).D(0).D(1).D(1);
    r.D(5).D(6).D(5).D(6); // Z range and values; no M block
    b.Add(r.b);
  }
  for (bool shx : {true, false}) {
    b.Write(dir + "z.shp", shx);
    Session s;
    OpenAsLayer(s, dir + "z.shp");
    ASSERT_EQ(s.ShpErr, 0);
    ASSERT_EQ(s.Lyr[1].Shp.RecCount, 2);
    const ShpPart& p = s.Lyr[1].Shp.ShpRecs[2].Part(0);
    EXPECT_EQ(p.PartZ()[1], 6);
    EXPECT_EQ(p.PartM()[1], 0);
  }
}

TEST(ShpRead, DamagedFilesFailTheOpenWithoutHarm) {
  std::string dir = TempDir("shp-bad");
  ShpBuilder b(3);
  b.Add(Line({{{0, 0}, {1, 1}}}));
  b.Add(Line({{{2, 2}, {3, 3}}}));
  auto shp = b.ShpBytes();
  auto shx = b.ShxBytes();
  auto put = [&](std::vector<uint8_t> p, std::vector<uint8_t> x) {
    WriteFile(dir + "d.shp", std::string(p.begin(), p.end()));
    if (x.empty())
      KillFile(dir + "d.shx");
    else
      WriteFile(dir + "d.shx", std::string(x.begin(), x.end()));
    Session s;
    OpenAsLayer(s, dir + "d.shp");
    return s.ShpErr;
  };
  EXPECT_EQ(put(shp, shx), 0);
  // Truncated .shp behind an index that still points at the record.
  EXPECT_EQ(put({shp.begin(), shp.end() - 10}, shx), 1);
  // An index whose stated length is larger than its own file.
  {
    auto x = shx;
    x[27] = 200;
    EXPECT_EQ(put(shp, x), 1);
  }
  // An entry that points past the end of the .shp.
  {
    auto x = shx;
    x[108] = 0x10;
    EXPECT_EQ(put(shp, x), 1);
  }
  // Negative and absurd counts.
  for (int32_t bad : {-1, 0x7fffffff, 1 << 28}) {
    auto p = shp;
    std::memcpy(&p[100 + 8 + 36], &bad, 4); // NumParts of record 1
    EXPECT_EQ(put(p, shx), 1) << bad;
    p = shp;
    std::memcpy(&p[100 + 8 + 40], &bad, 4); // NumPoints
    EXPECT_EQ(put(p, shx), 1) << bad;
    // Without an index the damaged record and all behind it are a truncated tail.
    EXPECT_EQ(put(p, {}), 0);
  }
  // File codes.
  {
    auto p = shp;
    p[3] = 0;
    EXPECT_EQ(put(p, shx), 1);
    auto x = shx;
    x[3] = 0;
    EXPECT_EQ(put(shp, x), 1);
  }
  // Too short to hold a header; missing .shp.
  EXPECT_EQ(put({shp.begin(), shp.begin() + 60}, {}), 1);
  KillFile(dir + "d.shp");
  Session s;
  OpenAsLayer(s, dir + "d.shp");
  EXPECT_EQ(s.ShpErr, 1);
  EXPECT_EQ(s.Lyr[1].LyrKind, 0);
}

TEST(ShpRead, AShortIndexSkipsTheRecordsItCannotHold) {
  std::string dir = TempDir("shp-short");
  ShpBuilder b(1);
  b.Add(Point(1, 1));
  b.Add(Point(2, 2));
  // 56 words: (56 - 50) / 4 = 1.5 rounds to 2 records, but entry 2 lies past 56 words.
  b.Write(dir + "s.shp", true, 56);
  Session s;
  OpenAsLayer(s, dir + "s.shp");
  ASSERT_EQ(s.ShpErr, 0);
  EXPECT_EQ(s.Lyr[1].Shp.RecCount, 2);
  EXPECT_EQ(s.Lyr[1].Shp.ShpRecs[1].Part(0).PartPoints()[0].X, 1);
  EXPECT_EQ(s.Lyr[1].Shp.ShpRecs[2].ShapeType, 0);
  // 52 words: 0.5 rounds half to even, to no record.
  b.Write(dir + "s.shp", true, 52);
  Session t;
  OpenAsLayer(t, dir + "s.shp");
  EXPECT_EQ(t.Lyr[1].Shp.RecCount, 0);
}

TEST(ShpRead, FrameLayerRecordFollowsTheExtent) {
  std::string dir = TempDir("shp-frame");
  ShpBuilder b(99);
  b.Add(Line({{{0, 0}, {10, 0}, {10, 5}, {0, 5}, {0, 0}}}, 99));
  auto bytes = b.ShpBytes();
  double ext[4] = {100, 200, 300, 400};
  std::memcpy(&bytes[36], ext, sizeof ext);
  WriteFile(dir + "f.shp", std::string(bytes.begin(), bytes.end()));
  Session s;
  OpenAsLayer(s, dir + "f.shp");
  ASSERT_EQ(s.ShpErr, 0);
  const ShpRecord& f = s.Lyr[1].Shp.ShpRecs[0];
  auto P = f.Part(0).PartPoints();
  EXPECT_EQ(P[0].X, 100);
  EXPECT_EQ(P[0].Y, 400);
  EXPECT_EQ(P[2].X, 300);
  EXPECT_EQ(P[2].Y, 200);
  EXPECT_EQ(f.Xmin, 100);
  EXPECT_EQ(f.Ymax, 400);
  EXPECT_EQ(s.Lyr[1].Shp.ShpChanged, 0);
}
