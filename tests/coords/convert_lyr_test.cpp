#include <gtest/gtest.h>

#include <set>

#include "coords/convert_lyr.h"
#include "coords/display_xy.h"
#include "coords/image_warp.h"
#include "coords/utm_transform.h"
#include "frame/busy.h"
#include "test_support.h"

namespace velmora {
namespace {

TEST(ConvertCoords, PointsAndBoxesGoBothWays) {
  Session s;
  CoordConv fwd{CoordDir::GeoToGrid, 23, 32, false};
  XY g = ConvertPoint(s, fwd, XY{9, 45}); // (lon, lat) in
  XY direct = LatLonToUTM(s, 45, 9, 32, false, 23);
  EXPECT_EQ(g.X, direct.X);
  EXPECT_EQ(g.Y, direct.Y);
  CoordConv inv{CoordDir::GridToGeo, 23, 32, false};
  XY back = ConvertPoint(s, inv, g);
  EXPECT_NEAR(back.X, 9, 1e-9);
  EXPECT_NEAR(back.Y, 45, 1e-9);

  // The box goes by its left-top and right-bottom corners.
  ShpRecord r;
  r.ShapeType = 5;
  r.Xmin = 8, r.Ymin = 44, r.Xmax = 10, r.Ymax = 46;
  r.LabelX = 9, r.LabelY = 45;
  ConvertRecCoords(s, fwd, r);
  XY lt = LatLonToUTM(s, 46, 8, 32, false, 23), rb = LatLonToUTM(s, 44, 10, 32, false, 23);
  EXPECT_EQ(r.Xmin, lt.X);
  EXPECT_EQ(r.Ymax, lt.Y);
  EXPECT_EQ(r.Xmax, rb.X);
  EXPECT_EQ(r.Ymin, rb.Y);
  EXPECT_EQ(r.LabelX, direct.X);
  EXPECT_EQ(r.LabelY, direct.Y);
  ConvertRecCoords(s, inv, r);
  EXPECT_NEAR(r.LabelX, 9, 1e-9);
  EXPECT_NEAR(r.Xmin, 8, 1e-9);
  EXPECT_NEAR(r.Ymin, 44, 1e-9);
}

TEST(ConvertCoords, ZoneTexts) {
  int z = 0;
  EXPECT_FALSE(ZoneTextOk("0", z));
  EXPECT_FALSE(ZoneTextOk("61", z));
  EXPECT_FALSE(ZoneTextOk("", z));
  EXPECT_FALSE(ZoneTextOk("  ", z));
  EXPECT_FALSE(ZoneTextOk("abc", z));
  EXPECT_FALSE(ZoneTextOk("-5", z));
  EXPECT_TRUE(ZoneTextOk("60", z));
  EXPECT_EQ(z, 60);
  EXPECT_TRUE(ZoneTextOk(" 1 ", z));
  EXPECT_EQ(z, 1);
  EXPECT_TRUE(ZoneTextOk("32abc", z)); // the leading number counts
  EXPECT_EQ(z, 32);
}

struct LayerFixture : ::testing::Test {
  test::RecordingHost host;
  Session s{host};
  void SetUp() override {
    s.Lyr.Resize(1);
    s.LyrCount = 1;
    LyrRec& l = s.Lyr[1];
    l.LyrName = "roads";
    l.LyrKind = 1;
    l.Shp.RecCount = 3;
    l.Shp.ShpRecs.resize(4);
    LeftExtend(l) = 8, BottomExtend(l) = 44, RightExtend(l) = 10, TopExtend(l) = 46;
    int types[] = {0, 1, 99, 0};
    for (int i = 1; i <= 3; ++i) {
      ShpRecord& r = l.Shp.ShpRecs[size_t(i)];
      r.ShapeType = types[i];
      r.LabelX = 9, r.LabelY = 45;
    }
  }
  ConvertCoordsArgs Args(CoordDir dir, const std::string& zone) {
    ConvertCoordsArgs a;
    a.Lyr = 1, a.Datum = 23, a.Dir = dir, a.ZoneText = zone;
    return a;
  }
};

TEST_F(LayerFixture, ConvertsFeaturesInTheRunningFrame) {
  ASSERT_EQ(ConvertCoordsCmd(s, Args(CoordDir::GeoToGrid, "32")), ConvertStatus::Converted);
  LyrRec& l = s.Lyr[1];
  XY label = LatLonToUTM(s, 45, 9, 32, false, 23);
  EXPECT_EQ(l.Shp.ShpRecs[1].LabelX, label.X);
  EXPECT_EQ(l.Shp.ShpRecs[1].LabelY, label.Y);
  // Type 99 and deleted records keep their coordinates.
  EXPECT_EQ(l.Shp.ShpRecs[2].LabelX, 9.0);
  EXPECT_EQ(l.Shp.ShpRecs[3].LabelY, 45.0);
  EXPECT_EQ(l.Shp.ShpChanged, -1);
  EXPECT_EQ(l.LyrBusy, 0);
  EXPECT_EQ(host.yields, 3); // one after each record
  ASSERT_FALSE(host.logged.empty());
  EXPECT_EQ(host.logged.back(),
            "Converting Coordinates System in Layer roads from Geographic to World Geodetic "
            "System 1984 (WGS 84)");
  ASSERT_EQ(ConvertCoordsCmd(s, Args(CoordDir::GridToGeo, "32")), ConvertStatus::Converted);
  EXPECT_NEAR(l.Shp.ShpRecs[1].LabelX, 9, 1e-9);
  EXPECT_EQ(host.logged.back(), "Converting Coordinates System in Layer roads from World "
                                "Geodetic System 1984 (WGS 84) to Geographic ");
}

TEST_F(LayerFixture, CornerZonesAdviseOnGeographicLayers) {
  std::string lb, rt;
  ASSERT_TRUE(CornerZones(s, 1, lb, rt));
  EXPECT_EQ(lb, "North 32");
  EXPECT_EQ(rt, "North 32");
  BottomExtend(s.Lyr[1]) = -5, LeftExtend(s.Lyr[1]) = -179;
  ASSERT_TRUE(CornerZones(s, 1, lb, rt));
  EXPECT_EQ(lb, "South 1");
  RightExtend(s.Lyr[1]) = 500000; // a grid layer
  EXPECT_FALSE(CornerZones(s, 1, lb, rt));
  EXPECT_EQ(lb, "");
  EXPECT_EQ(rt, "");
}

TEST_F(LayerFixture, RefusalsAndBadZones) {
  for (const char* zone : {"0", "61", ""}) {
    EXPECT_EQ(ConvertCoordsCmd(s, Args(CoordDir::GeoToGrid, zone)), ConvertStatus::BadZone);
  }
  EXPECT_EQ(s.Lyr[1].Shp.ShpRecs[1].LabelX, 9.0);
  EXPECT_TRUE(host.logged.empty());

  ConvertCoordsArgs zero = Args(CoordDir::GeoToGrid, "31");
  zero.Datum = 0; // record 0 never reaches the arithmetic
  EXPECT_EQ(ConvertCoordsCmd(s, zero), ConvertStatus::NotReady);

  // Images wait for the image store's pixels: refused, and the layer is left as it is.
  s.Lyr[1].LyrKind = 2;
  EXPECT_EQ(ConvertCoordsCmd(s, Args(CoordDir::GeoToGrid, "31")), ConvertStatus::NotReady);
  EXPECT_EQ(host.logged.back(), " *** Converting Coordinates System in Layer roads from "
                                "Geographic to World Geodetic System 1984 (WGS 84) has been "
                                "canceled *** ");
  EXPECT_EQ(LeftExtend(s.Lyr[1]), 8.0);
  s.Lyr[1].LyrKind = 1;

  LyrLock(s, 1, true, "Something Else");
  EXPECT_EQ(ConvertCoordsCmd(s, Args(CoordDir::GridToGeo, "31")), ConvertStatus::Busy);
  EXPECT_EQ(host.logged.back(), " *** Converting Coordinates System in Layer roads from World "
                                "Geodetic System 1984 (WGS 84) to Geographic has been canceled "
                                "*** ");
  EXPECT_EQ(ConvertCoordsCmd(s, Args(CoordDir::GeoToGrid, "31")), ConvertStatus::Busy);
  EXPECT_EQ(host.logged.back(), " *** Converting Coordinates System in Layer roads from "
                                "Geographic to World Geodetic System 1984 (WGS 84) has been "
                                "canceled *** ");
  EXPECT_EQ(s.Lyr[1].Shp.ShpRecs[1].LabelX, 9.0);
}

// A host that presses "Terminate" during the first yield.
struct TerminatingHost : test::RecordingHost {
  Session* s = nullptr;
  void Yield() override {
    ++yields;
    SetLyrTerminate(*s, 1, true);
  }
};

TEST(ConvertCoordsTerminate, StopsAfterTheRecordInHand) {
  TerminatingHost host;
  Session s{host};
  host.s = &s;
  s.Lyr.Resize(1);
  s.LyrCount = 1;
  s.Lyr[1].LyrName = "pts";
  s.Lyr[1].LyrKind = 1;
  s.Lyr[1].Shp.RecCount = 2;
  s.Lyr[1].Shp.ShpRecs.resize(3);
  for (int i = 1; i <= 2; ++i) {
    s.Lyr[1].Shp.ShpRecs[size_t(i)].ShapeType = 1;
    s.Lyr[1].Shp.ShpRecs[size_t(i)].LabelX = 3;
  }
  ConvertCoordsArgs a;
  a.Lyr = 1, a.Datum = 23, a.ZoneText = "31";
  EXPECT_EQ(ConvertCoordsCmd(s, a), ConvertStatus::Terminated);
  EXPECT_NE(s.Lyr[1].Shp.ShpRecs[1].LabelX, 3.0); // converted
  EXPECT_EQ(s.Lyr[1].Shp.ShpRecs[2].LabelX, 3.0); // left as it was: a mix of systems
  EXPECT_EQ(s.Lyr[1].LyrBusy, 0);
  EXPECT_EQ(host.logged.back(), " *** Converting Coordinates System in Layer pts from "
                                "Geographic to World Geodetic System 1984 (WGS 84) has been "
                                "canceled *** ");
}

BgrImage Striped(int w, int h) {
  BgrImage img;
  img.W = w, img.H = h;
  img.Bits.resize(size_t(w * h * 3));
  for (size_t i = 0; i < img.Bits.size(); ++i) img.Bits[i] = uint8_t(10 + (i * 37) % 200);
  return img;
}

TEST(ImageWarp, EveryTargetPixelIsASourceColourOrWhite) {
  Session s;
  BgrImage src = Striped(40, 30);
  std::set<uint32_t> colours;
  for (size_t i = 0; i < src.Bits.size(); i += 3)
    colours.insert(uint32_t(src.Bits[i]) | uint32_t(src.Bits[i + 1]) << 8 |
                   uint32_t(src.Bits[i + 2]) << 16);
  WorldExtent ext{2.0, 1.0, 4.0, 0.0};
  BgrImage dst;
  WorldExtent out;
  int rows = 0;
  CoordConv c{CoordDir::GeoToGrid, 23, 31, false};
  WarpImage(s, c, src, ext, dst, out, [&](int) { return ++rows, false; });
  EXPECT_EQ(rows, 30);
  ASSERT_EQ(dst.W, 40);
  ASSERT_EQ(dst.H, 30);
  int white = 0;
  for (size_t i = 0; i < dst.Bits.size(); i += 3) {
    uint32_t col =
        uint32_t(dst.Bits[i]) | uint32_t(dst.Bits[i + 1]) << 8 | uint32_t(dst.Bits[i + 2]) << 16;
    if (col == 0xffffff)
      ++white;
    else
      EXPECT_TRUE(colours.count(col)) << i;
  }
  EXPECT_LT(white, 40 * 30 / 4); // most of the picture is covered
  XY tl = LatLonToUTM(s, 1.0, 2.0, 31, false, 23), br = LatLonToUTM(s, 0.0, 4.0, 31, false, 23);
  EXPECT_EQ(out.Left, tl.X);
  EXPECT_EQ(out.Top, tl.Y);
  EXPECT_EQ(out.Right, br.X);
  EXPECT_EQ(out.Bottom, br.Y);
}

TEST(ImageWarp, NarrowImagesAndTerminate) {
  Session s;
  CoordConv c{CoordDir::GeoToGrid, 23, 31, false};
  BgrImage dst;
  WorldExtent out;
  WarpImage(s, c, Striped(2, 5), WorldExtent{2, 1, 3, 0}, dst, out, nullptr);
  ASSERT_EQ(dst.Bits.size(), 2u * 5 * 3);
  for (uint8_t b : dst.Bits) EXPECT_EQ(b, 0xff);

  int rows = 0;
  WarpImage(s, c, Striped(20, 20), WorldExtent{2, 1, 3, 0}, dst, out,
            [&](int) { return ++rows == 2; });
  EXPECT_EQ(rows, 2);

  // A picture whose buffer is short, or a degenerate extent, is left white without harm.
  BgrImage bad = Striped(10, 10);
  bad.Bits.resize(20);
  WarpImage(s, c, bad, WorldExtent{2, 1, 3, 0}, dst, out, nullptr);
  EXPECT_EQ(dst.Bits.size(), 300u);
  WarpImage(s, c, Striped(10, 10), WorldExtent{2, 1, 2, 1}, dst, out, nullptr);
  for (uint8_t b : dst.Bits) EXPECT_EQ(b, 0xff);
}

TEST(DisplayXY, LayerAndMapKinds) {
  Session s;
  XY p{9, 45};
  s.MapUnit = 0;
  EXPECT_EQ(ToDisplayXY(s, p, 0).X, 9.0); // same kind: as is
  s.MapUnit = 1, s.MapCoordsIdx = 23, s.MapZone = 32, s.MapSouth = 0;
  XY g = ToDisplayXY(s, p, 0);
  XY want = LatLonToUTM(s, 45, 9, 32, false, 23);
  EXPECT_EQ(g.X, want.X);
  EXPECT_EQ(g.Y, want.Y);
  s.MapUnit = 0, s.MeasCoordsIdx = 23, s.MeasZone = 32;
  XY back = ToDisplayXY(s, g, 1);
  EXPECT_NEAR(back.X, 9, 1e-9);
  EXPECT_NEAR(back.Y, 45, 1e-9);
  s.MeasCoordsIdx = 0; // record 0 has no axes: left alone
  EXPECT_EQ(ToDisplayXY(s, g, 1).X, g.X);
}

} // namespace
} // namespace velmora
