#include <gtest/gtest.h>

#include "model/file_util.h"
#include "test_support.h"
#include "view/raster_layer.h"
#include "view/tiff_dir.h"
#include "view/world_file.h"

using namespace velmora;
using velmora::test::RunCmd;
using velmora::test::TempDir;
using velmora::test::WriteFile;

TEST(WorldFile, NamesFollowTheExtension) {
  EXPECT_EQ(WorldFileName("/a/b.tif"), "/a/b.tfw");
  EXPECT_EQ(WorldFileName("/a/b.JPG"), "/a/b.jgw");
  EXPECT_EQ(WorldFileName("c:\\m\\b.bmp"), "c:\\m\\b.bpw");
  EXPECT_EQ(WorldFileName("/a/b.png"), "/a/b.pgw");
  EXPECT_EQ(WorldFileName("/a/b.gif"), "/a/b.gfw");
  EXPECT_EQ(WorldFileName("/a/b.tfw"), "/a/b.tfw");
}

TEST(WorldFile, WriteThenReadGivesTheSameExtentAndSignsDoNotMatter) {
  Session s;
  std::string dir = TempDir("world");
  ASSERT_TRUE(WriteWorldFile(dir + "m.jpg", 1000, 5000, 1200, 4900, 400, 200));
  std::string text = velmora::test::ReadFile(dir + "m.jgw");
  EXPECT_EQ(text, "0.5000000000000\r\n0\r\n0\r\n-0.5000000000000\r\n1000.2500000000000\r\n"
                  "5000.2500000000000\r\n");
  double l = 0, t = 0, r = 0, b = 0;
  int16_t found = 0;
  ReadWorldFile(s, dir + "m.jpg", l, t, r, b, 400, 200, found);
  EXPECT_EQ(found, -1);
  EXPECT_DOUBLE_EQ(l, 1000);
  EXPECT_DOUBLE_EQ(t, 5000);
  EXPECT_DOUBLE_EQ(r, 1200);
  EXPECT_DOUBLE_EQ(b, 4900);

  // Negative pixel sizes read the same as positive ones; rotation terms are ignored.
  WriteFile(dir + "n.pgw", "-0.5\n0.1\n0.1\n0.5\n1000.25\n5000.25\n");
  double l2 = 0, t2 = 0, r2 = 0, b2 = 0;
  found = 0;
  ReadWorldFile(s, dir + "n.png", l2, t2, r2, b2, 400, 200, found);
  EXPECT_DOUBLE_EQ(l2, 1000);
  EXPECT_DOUBLE_EQ(b2, 4900);

  // A missing file leaves `found` alone.
  found = 7;
  ReadWorldFile(s, dir + "none.png", l2, t2, r2, b2, 1, 1, found);
  EXPECT_EQ(found, 7);
}

namespace {

void Extent(Session& s, double l, double b, double r, double t) {
  s.Lyr.Resize(1);
  s.LyrCount = 1;
  LeftExtend(s.Lyr[1]) = l, BottomExtend(s.Lyr[1]) = b;
  RightExtend(s.Lyr[1]) = r, TopExtend(s.Lyr[1]) = t;
}

} // namespace

TEST(Rectify, ScaleAboutPutsTheSecondPointOnItsTarget) {
  Session s;
  Extent(s, 0, -100, 200, 0);
  // a = (0, 0) stays, b = (100, -50) must land on (300, -150): three times in both axes.
  ScaleImageAbout(s, 1, 0, 0, 100, -50, 300, -150);
  EXPECT_DOUBLE_EQ(LeftExtend(s.Lyr[1]), 0);
  EXPECT_DOUBLE_EQ(RightExtend(s.Lyr[1]), 600);
  EXPECT_DOUBLE_EQ(TopExtend(s.Lyr[1]), 0);
  EXPECT_DOUBLE_EQ(BottomExtend(s.Lyr[1]), -300);
}

TEST(Rectify, EqualSourceXLeavesXAndEqualSourceYStopsAfterX) {
  Session s;
  Extent(s, 0, -100, 200, 0);
  ScaleImageAbout(s, 1, 10, -10, 10, -60, 40, -110); // same X: only Y scales (by 2)
  EXPECT_DOUBLE_EQ(LeftExtend(s.Lyr[1]), 0);
  EXPECT_DOUBLE_EQ(RightExtend(s.Lyr[1]), 200);
  EXPECT_DOUBLE_EQ(TopExtend(s.Lyr[1]), 10);
  EXPECT_DOUBLE_EQ(BottomExtend(s.Lyr[1]), -190);

  Extent(s, 0, -100, 200, 0);
  ScaleImageAbout(s, 1, 10, -10, 60, -10, 110, -40); // same Y: X scales by 2, Y untouched
  EXPECT_DOUBLE_EQ(LeftExtend(s.Lyr[1]), -10);
  EXPECT_DOUBLE_EQ(RightExtend(s.Lyr[1]), 390);
  EXPECT_DOUBLE_EQ(TopExtend(s.Lyr[1]), 0);
  EXPECT_DOUBLE_EQ(BottomExtend(s.Lyr[1]), -100);
}

TEST(AutoBalance, BlackTurnsWhiteAndGreysSpread) {
  DibBits b;
  b.Width = 2;
  b.Height = 2;
  b.Bits.assign(size_t(b.Stride()) * 2, 0);
  auto px = [&](int x, int y, uint8_t v) {
    uint8_t* p = &b.Bits[size_t(y * b.Stride() + x * 3)];
    p[0] = p[1] = p[2] = v;
  };
  px(0, 0, 0), px(1, 0, 50), px(0, 1, 100), px(1, 1, 200);
  AutoBalanceBits(b);
  // The black pixel counts as white and comes out at the top of the range.
  EXPECT_GT(b.Bits[0], b.Bits[3 + 0]);
  EXPECT_LT(b.Bits[3], b.Bits[size_t(b.Stride())]);
}

class TiffFiles : public ::testing::Test {
protected:
  std::string dir = TempDir("tiff");
  Session s;
  // A 4 by 3 Int16 grid made by GDAL, placed at (1000, 2000) with 10 m pixels.
  std::string MakeTiff(const std::string& name, const std::string& extra) {
    WriteFile(dir + "g.asc", "ncols 4\nnrows 3\nxllcorner 0\nyllcorner 0\ncellsize 1\n"
                             "1 2 3 4\n5 6 7 8\n9 10 11 -12\n");
    int st = 0;
    RunCmd("gdal_translate -q -ot Int16 -of GTiff -a_ullr 1000 2000 1040 1970 " + extra + " " +
               dir + "g.asc " + dir + name + " 2>&1",
           &st);
    EXPECT_EQ(st, 0);
    return dir + name;
  }
};

TEST_F(TiffFiles, DirectoryGivesSizeTiePointAndScale) {
  std::string path = MakeTiff("geo.tif", "-a_srs EPSG:32633");
  ReadTiffTags(s, path);
  EXPECT_EQ(s.Tiff.TiffErr, 0);
  EXPECT_EQ(s.Tiff.TiffWidth, 4);
  EXPECT_EQ(s.Tiff.TiffHeight, 3);
  EXPECT_EQ(s.Tiff.TiffBits, 16);
  EXPECT_EQ(s.Tiff.TiffSamples, 1);
  EXPECT_EQ(s.Tiff.TiffBytesPerPixel, 2);
  EXPECT_EQ(s.Tiff.TiffHasGeo, -1);
  EXPECT_DOUBLE_EQ(s.Tiff.TiffTie[3], 1000);
  EXPECT_DOUBLE_EQ(s.Tiff.TiffTie[4], 2000);
  EXPECT_DOUBLE_EQ(s.Tiff.TiffScale[0], 10);
  EXPECT_DOUBLE_EQ(s.Tiff.TiffScale[1], 10);
  EXPECT_FALSE(s.Tiff.TiffGeoKeys.empty());
}

TEST_F(TiffFiles, IdlImageBecomesAGreyRamp) {
  std::string path = MakeTiff("idl.tif", "-mo TIFFTAG_SOFTWARE=IDL");
  DibBits bits;
  ASSERT_TRUE(ReadIdlTiffBits(s, path, bits));
  EXPECT_NE(s.Tiff.TiffSoftware.find("IDL"), std::string::npos);
  ASSERT_EQ(bits.Width, 4);
  ASSERT_EQ(bits.Height, 3);
  // Top left (1) and bottom right (-12, the minimum) of the picture; rows are bottom-up.
  uint8_t topLeft = bits.Bits[size_t(2 * bits.Stride())];
  uint8_t bottomRight = bits.Bits[3 * 3];
  uint8_t topRight = bits.Bits[size_t(2 * bits.Stride() + 9)];
  EXPECT_EQ(bottomRight, 0);
  EXPECT_GT(topRight, topLeft);
  EXPECT_EQ(bits.Bits[2 * 3], 255);                         // 11, the maximum: bottom row
  EXPECT_EQ(bits.Bits[size_t(1 * bits.Stride() + 9)], 222); // 8 on the ramp from -12 to 11
}

TEST(TiffBadInput, EmptyShortAndLyingFilesNeverCrash) {
  Session s;
  std::string dir = TempDir("badtiff");
  WriteFile(dir + "empty.tif", "");
  ReadTiffTags(s, dir + "empty.tif");
  EXPECT_EQ(s.Tiff.TiffErr, 1);
  EXPECT_EQ(s.Tiff.TiffStrips.size(), 1u);

  // Directory offset past the end.
  WriteFile(dir + "far.tif", std::string("II*\0\xff\xff\xff\x7f", 8));
  ReadTiffTags(s, dir + "far.tif");
  EXPECT_EQ(s.Tiff.TiffErr, 0);
  EXPECT_EQ(s.Tiff.TiffWidth, 0);

  // One entry claiming a billion strip offsets, and a huge image with no data.
  std::string f("II*\0\x08\0\0\0", 8);
  f += std::string("\x03\0", 2);
  f += std::string("\x11\x01\x04\0\0\xca\x9a\x3b\x20\0\0\0", 12); // 273: 1e9 longs at 32
  f += std::string("\x00\x01\x04\0\x01\0\0\0\xff\xff\0\0", 12);   // width 65535
  f += std::string("\x01\x01\x04\0\x01\0\0\0\xff\xff\0\0", 12);   // height 65535
  WriteFile(dir + "lie.tif", f);
  ReadTiffTags(s, dir + "lie.tif");
  EXPECT_EQ(s.Tiff.TiffWidth, 65535);
  EXPECT_LE(s.Tiff.TiffStrips.size(), 1u);
  DibBits bits;
  EXPECT_FALSE(ReadIdlTiffBits(s, dir + "lie.tif", bits));
  EXPECT_EQ(s.Tiff.TiffErr, 1);

  // Big-endian files are not read: defaults.
  WriteFile(dir + "mm.tif", std::string("MM\0*\0\0\0\x08", 8));
  ReadTiffTags(s, dir + "mm.tif");
  EXPECT_EQ(s.Tiff.TiffWidth, 0);
}
