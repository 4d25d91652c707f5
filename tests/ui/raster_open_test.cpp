// Image layers opened from files made by GDAL: every common layout in place with its
// pixels, refusals with their reasons, and saves that never damage the old files.
#include <gtest/gtest.h>

#include <QImage>
#include <algorithm>
#include <cmath>
#include <csignal>
#include <filesystem>
#include <random>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "coords/convert_lyr.h"
#include "model/file_util.h"
#include "platform/qt/qt_image_io.h"
#include "qt_app.h"
#include "session/layer_life.h"
#include "store/dbf_store.h"
#include "store/shp_store.h"
#include "test_support.h"
#include "view/raster_layer.h"
#include "view/world_file.h"

using namespace velmora;

namespace {

struct PictureHost : test::RecordingHost {
  QtImageIO images;
  std::vector<std::pair<long long, long long>> progress;
  ImageIO* Images() override { return &images; }
  void Progress(long long value, long long max) override { progress.push_back({value, max}); }
};

const QColor kRed(255, 0, 0), kBlue(0, 0, 255), kGreen(0, 160, 0), kYellow(255, 255, 0);
const QColor kWhite(255, 255, 255), kBlack(0, 0, 0);

// An ASCII grid of 40 by 20 cells, one value for each quarter: top left, top right,
// bottom left, bottom right; `extra` lines go after the header.
std::string Quarters(const std::string& tl, const std::string& tr, const std::string& bl,
                     const std::string& br, const std::string& extra = "") {
  std::string t = "ncols 40\nnrows 20\nxllcorner 0\nyllcorner 0\ncellsize 1\n" + extra;
  for (int y = 0; y < 20; ++y) {
    for (int x = 0; x < 40; ++x) t += (y < 10 ? (x < 20 ? tl : tr) : (x < 20 ? bl : br)) + " ";
    t += "\n";
  }
  return t;
}

class RasterOpen : public ::testing::Test {
protected:
  PictureHost host;
  Session s{host};
  std::string dir = test::TempDir("raster");

  void SetUp() override {
    test::App();
    s.GdipReady = true;
  }

  void Gdal(const std::string& cmd) {
    int st = 0;
    std::string out = test::RunCmd(cmd + " 2>&1", &st);
    ASSERT_EQ(st, 0) << cmd << "\n" << out;
  }
  // The quarters red, blue, green, yellow as an RGB GeoTIFF by gdaldem.
  std::string Rgb() {
    test::WriteFile(dir + "q.asc", Quarters("1", "2", "3", "4"));
    test::WriteFile(dir + "q.txt", "1 255 0 0\n2 0 0 255\n3 0 160 0\n4 255 255 0\n");
    if (!FileExists(dir + "rgb.tif"))
      Gdal("gdaldem color-relief -q " + dir + "q.asc " + dir + "q.txt " + dir + "rgb.tif");
    return dir + "rgb.tif";
  }
  // The same quarters as indexes 1 to 4 of a colour table.
  std::string Palette() {
    Rgb();
    test::WriteFile(dir + "pal.vrt",
                    "<VRTDataset rasterXSize=\"40\" rasterYSize=\"20\"><VRTRasterBand "
                    "dataType=\"Byte\" band=\"1\"><ColorInterp>Palette</ColorInterp><ColorTable>"
                    "<Entry c1=\"0\" c2=\"0\" c3=\"0\" c4=\"255\"/>"
                    "<Entry c1=\"255\" c2=\"0\" c3=\"0\" c4=\"255\"/>"
                    "<Entry c1=\"0\" c2=\"0\" c3=\"255\" c4=\"255\"/>"
                    "<Entry c1=\"0\" c2=\"160\" c3=\"0\" c4=\"255\"/>"
                    "<Entry c1=\"255\" c2=\"255\" c3=\"0\" c4=\"255\"/></ColorTable>"
                    "<SimpleSource><SourceFilename relativeToVRT=\"1\">q.asc</SourceFilename>"
                    "<SourceBand>1</SourceBand></SimpleSource></VRTRasterBand></VRTDataset>");
    return dir + "pal.vrt";
  }
  // gdal_translate of `src` to `name`, placed at (1000, 2000) to (1400, 1800).
  std::string Translate(const std::string& src, const std::string& name, const std::string& args) {
    Gdal("gdal_translate -q -a_ullr 1000 2000 1400 1800 " + args + " " + src + " " + dir + name);
    return dir + name;
  }
  // GDAL's world file (".wld") under the name the program looks for.
  void TakeWorldFile(const std::string& path) {
    std::string wld = ChangeExt(path, "wld");
    if (FileExists(wld)) std::filesystem::rename(wld, WorldFileName(path));
  }
  // Adds the layer; its number, or 0 when refused.
  int Open(const std::string& path) {
    int before = s.LyrCount;
    AddShape(s, path, false);
    return s.LyrCount > before ? s.LyrCount : 0;
  }
  QColor Pixel(int n, int x, int y) {
    const QImage* img = host.images.Get(s.Lyr[n].Img.ImgPic);
    return img ? img->pixelColor(x, y) : QColor();
  }
  void ExpectNear(int n, int x, int y, const QColor& want, int tol) {
    QColor got = Pixel(n, x, y);
    EXPECT_LE(std::abs(got.red() - want.red()), tol)
        << x << "," << y << " " << got.name().toStdString();
    EXPECT_LE(std::abs(got.green() - want.green()), tol)
        << x << "," << y << " " << got.name().toStdString();
    EXPECT_LE(std::abs(got.blue() - want.blue()), tol)
        << x << "," << y << " " << got.name().toStdString();
  }
  void ExpectQuarters(int n, const QColor& tl, const QColor& tr, const QColor& bl, const QColor& br,
                      int tol = 0) {
    ASSERT_EQ(host.images.Width(s.Lyr[n].Img.ImgPic), 40);
    ASSERT_EQ(host.images.Height(s.Lyr[n].Img.ImgPic), 20);
    ExpectNear(n, 5, 3, tl, tol);
    ExpectNear(n, 34, 3, tr, tol);
    ExpectNear(n, 5, 16, bl, tol);
    ExpectNear(n, 34, 16, br, tol);
  }
  void ExpectExtent(int n, double l, double t, double r, double b) {
    EXPECT_DOUBLE_EQ(LeftExtend(s.Lyr[n]), l);
    EXPECT_DOUBLE_EQ(TopExtend(s.Lyr[n]), t);
    EXPECT_DOUBLE_EQ(RightExtend(s.Lyr[n]), r);
    EXPECT_DOUBLE_EQ(BottomExtend(s.Lyr[n]), b);
  }
  // A grey picture of 200 by 200 pixels of noise, which doesn't compress.
  std::string Noise(const std::string& name, const std::string& args) {
    std::mt19937 gen(7);
    std::string grid = "ncols 200\nnrows 200\nxllcorner 0\nyllcorner 0\ncellsize 1\n";
    for (int i = 0; i < 200 * 200; ++i)
      grid += std::to_string(gen() % 256) + (i % 200 == 199 ? "\n" : " ");
    test::WriteFile(dir + "noise.asc", grid);
    Gdal("gdal_translate -q -ot Byte " + args + " " + dir + "noise.asc " + dir + name);
    return dir + name;
  }
  // The log line after the refusal of adding `path`.
  std::string Reason(const std::string& path) {
    const auto& log = host.logged;
    for (size_t i = 0; i + 1 < log.size(); ++i)
      if (log[i] == " *** Add Layer " + path + " has been canceled *** ") return log[i + 1];
    return "(no refusal)";
  }
};

TEST_F(RasterOpen, GeoTiffsOfEveryCommonLayoutOpenInPlaceWithTheirPixels) {
  struct Case {
    const char* name;
    const char* args;
    int tol;
  };
  const Case cases[] = {
      {"strips.tif", "-co COMPRESS=NONE", 0},
      {"lzw_tiles.tif", "-co COMPRESS=LZW -co TILED=YES -co BLOCKXSIZE=16 -co BLOCKYSIZE=16", 0},
      {"deflate.tif", "-co COMPRESS=DEFLATE -co PREDICTOR=2", 0},
      {"packbits.tif", "-co COMPRESS=PACKBITS", 0},
      {"jpeg.tif", "-co COMPRESS=JPEG -co JPEG_QUALITY=95", 40},
      {"ycbcr.tif", "-co COMPRESS=JPEG -co PHOTOMETRIC=YCBCR -co JPEG_QUALITY=95", 40},
      {"planes.tif", "-co INTERLEAVE=BAND -co COMPRESS=LZW", 0},
      {"motorola.tif", "-co ENDIANNESS=BIG -co COMPRESS=LZW -co PREDICTOR=2", 0},
      {"bigtiff.tif", "-co BIGTIFF=YES -co TILED=YES -co BLOCKXSIZE=16 -co BLOCKYSIZE=16", 0},
      {"big_motorola.tif", "-co BIGTIFF=YES -co ENDIANNESS=BIG -co COMPRESS=DEFLATE", 0},
  };
  std::string rgb = Rgb();
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    std::string path = Translate(rgb, c.name, c.args);
    int n = Open(path);
    ASSERT_GT(n, 0) << Reason(path);
    EXPECT_EQ(s.Lyr[n].LyrKind, 2);
    ExpectExtent(n, 1000, 2000, 1400, 1800);
    ExpectQuarters(n, kRed, kBlue, kGreen, kYellow, c.tol);
    EXPECT_FALSE(FileExists(ChangeExt(path, "tfw"))) << "opening wrote a world file";
  }
  // Palette pictures go through their colour table.
  std::string pal = Translate(Palette(), "palette.tif", "-co COMPRESS=LZW");
  int n = Open(pal);
  ASSERT_GT(n, 0) << Reason(pal);
  ExpectExtent(n, 1000, 2000, 1400, 1800);
  ExpectQuarters(n, kRed, kBlue, kGreen, kYellow);
}

TEST_F(RasterOpen, OtherFormatsOpenByTheirWorldFilesWithTheirPixels) {
  struct Case {
    const char* name;
    std::string src;
    const char* args;
    int tol;
  };
  const Case cases[] = {
      {"p.png", Rgb(), "-of PNG -co WORLDFILE=YES", 0},
      {"b.bmp", Rgb(), "-of BMP -co WORLDFILE=YES", 0},
      {"j.jpg", Rgb(), "-of JPEG -co WORLDFILE=YES -co QUALITY=95", 40},
      {"k.jp2", Rgb(),
       "-of JP2OpenJPEG -co REVERSIBLE=YES -co QUALITY=100 -co GeoJP2=NO -co GMLJP2=NO", 0},
      {"g.gif", Palette(), "-of GIF -co WORLDFILE=YES", 0},
      {"pp.png", Palette(), "-of PNG -co WORLDFILE=YES", 0},
      {"pb.bmp", Palette(), "-of BMP -co WORLDFILE=YES", 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    std::string path = Translate(c.src, c.name, c.args);
    TakeWorldFile(path);
    bool world = FileExists(WorldFileName(path));
    int n = Open(path);
    ASSERT_GT(n, 0) << Reason(path);
    // A world file's sixth line is half a pixel above the top edge to this program: the
    // picture lies one pixel row (10 units) lower than GDAL puts it.
    if (world)
      ExpectExtent(n, 1000, 1990, 1400, 1790);
    else
      ExpectExtent(n, 0, 0, 40, -20);
    ExpectQuarters(n, kRed, kBlue, kGreen, kYellow, c.tol);
  }
}

TEST_F(RasterOpen, WideSamplesShowOnTheGreyRampFromMinimumToMaximumWithoutNoData) {
  struct Case {
    const char* name;
    std::string grid;
    const char* args;
  };
  // Top left the minimum (black), top right the maximum (white), bottom left half way,
  // bottom right no-data: white, and left out of the range.
  const Case cases[] = {
      {"i16.tif", Quarters("-100", "1000", "450", "-9999", "NODATA_value -9999\n"), "-ot Int16"},
      {"u16.tif", Quarters("100", "60000", "30050", "0"), "-ot UInt16 -a_nodata 0"},
      {"i32.tif", Quarters("-2000000", "2000000", "0", "-2147483647"),
       "-ot Int32 -a_nodata -2147483647 -co COMPRESS=DEFLATE"},
      {"f32.tif", Quarters("-1.5", "2.5", "0.5", "-3.0e38", "NODATA_value -3.0e38\n"),
       "-ot Float32 -co COMPRESS=LZW -co PREDICTOR=3"},
      {"f32_be.tif", Quarters("-1.5", "2.5", "0.5", "-9999", "NODATA_value -9999\n"),
       "-ot Float32 -co ENDIANNESS=BIG -co TILED=YES -co BLOCKXSIZE=16 -co BLOCKYSIZE=16"},
  };
  const QColor mid(128, 128, 128);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    test::WriteFile(dir + "v.asc", c.grid);
    std::string path = Translate(dir + "v.asc", c.name, c.args);
    int n = Open(path);
    ASSERT_GT(n, 0) << Reason(path);
    ExpectExtent(n, 1000, 2000, 1400, 1800);
    ExpectQuarters(n, kBlack, kWhite, mid, kWhite);
  }
  // Samples of fewer than 8 bits are stretched to the full range.
  test::WriteFile(dir + "b.asc", Quarters("1", "0", "0", "1"));
  std::string one = Translate(dir + "b.asc", "bits1.tif", "-ot Byte -co NBITS=1");
  int n = Open(one);
  ASSERT_GT(n, 0) << Reason(one);
  ExpectQuarters(n, kWhite, kBlack, kBlack, kWhite);
  test::WriteFile(dir + "n.asc", Quarters("15", "0", "5", "10"));
  std::string four = Translate(dir + "n.asc", "bits4.tif", "-ot Byte -co NBITS=4");
  n = Open(four);
  ASSERT_GT(n, 0) << Reason(four);
  ExpectQuarters(n, kWhite, kBlack, QColor(85, 85, 85), QColor(170, 170, 170));
}

TEST_F(RasterOpen, AnAlphaBandLaysThePictureOverWhite) {
  Rgb();
  test::WriteFile(dir + "qa.txt", "1 255 0 0 255\n2 0 0 255 255\n3 0 160 0 255\n4 255 255 0 0\n");
  Gdal("gdaldem color-relief -q -alpha " + dir + "q.asc " + dir + "qa.txt " + dir + "rgba0.tif");
  std::string path = Translate(dir + "rgba0.tif", "rgba.tif", "-co COMPRESS=LZW");
  int n = Open(path);
  ASSERT_GT(n, 0) << Reason(path);
  ExpectQuarters(n, kRed, kBlue, kGreen, kWhite);
}

TEST_F(RasterOpen, UnreadablePicturesAreRefusedWithTheirReasonAndLeftUntouched) {
  // A GeoTIFF cut in half: its directory says where the tiles should be.
  std::string whole = Noise("whole.tif", "-co COMPRESS=LZW -co TILED=YES");
  std::string bytes = test::ReadFile(whole);
  ASSERT_GT(bytes.size(), 20000u);
  std::string cut = dir + "cut.tif";
  test::WriteFile(cut, bytes.substr(0, bytes.size() / 2));
  EXPECT_EQ(Open(cut), 0);
  EXPECT_EQ(Reason(cut).rfind("truncated at byte " + std::to_string(bytes.size() / 2), 0), 0u)
      << Reason(cut);
  EXPECT_EQ(test::ReadFile(cut), bytes.substr(0, bytes.size() / 2));
  EXPECT_FALSE(FileExists(dir + "cut.shp")) << "a frame was made for a refused picture";

  // A PNG cut short.
  std::string png = Noise("whole.png", "-of PNG");
  std::string pbytes = test::ReadFile(png);
  std::string pcut = dir + "cut.png";
  test::WriteFile(pcut, pbytes.substr(0, pbytes.size() / 2));
  EXPECT_EQ(Open(pcut), 0);
  EXPECT_EQ(Reason(pcut), "truncated at byte " + std::to_string(pbytes.size() / 2));

  // A compression no decoder here knows: the compression tag of a classic little-endian
  // TIFF set to 34712 (JPEG 2000).
  std::string odd = Noise("odd.tif", "-co COMPRESS=NONE");
  std::string obytes = test::ReadFile(odd);
  ASSERT_EQ(obytes.substr(0, 4), std::string("II*\0", 4));
  uint32_t ifd = uint8_t(obytes[4]) | uint8_t(obytes[5]) << 8 | uint8_t(obytes[6]) << 16 |
                 uint32_t(uint8_t(obytes[7])) << 24;
  int entries = uint8_t(obytes[ifd]) | uint8_t(obytes[ifd + 1]) << 8;
  bool patched = false;
  for (int i = 0; i < entries; ++i) {
    size_t at = ifd + 2 + 12 * size_t(i);
    if (uint8_t(obytes[at]) == 0x03 && uint8_t(obytes[at + 1]) == 0x01) { // tag 259
      obytes[at + 8] = char(34712 & 0xff);
      obytes[at + 9] = char(34712 >> 8);
      patched = true;
    }
  }
  ASSERT_TRUE(patched);
  test::WriteFile(odd, obytes);
  EXPECT_EQ(Open(odd), 0);
  EXPECT_EQ(Reason(odd), "unsupported compression 34712 (JPEG 2000)");
  EXPECT_EQ(test::ReadFile(odd), obytes);

  // A picture larger than any memory: a sparse GeoTIFF of a million by a million pixels.
  std::string huge = dir + "huge.tif";
  Gdal("gdal_create -q -of GTiff -outsize 1000000 1000000 -bands 3 -ot Byte -co SPARSE_OK=TRUE "
       "-co BLOCKYSIZE=1000 " +
       huge);
  EXPECT_EQ(Open(huge), 0);
  EXPECT_EQ(Reason(huge).rfind("1000000 x 1000000 pixels needs 2861023 MB, ", 0), 0u)
      << Reason(huge);

  // Not a picture at all.
  std::string junk = dir + "junk.jpg";
  test::WriteFile(junk, "this is no picture");
  EXPECT_EQ(Open(junk), 0);
  EXPECT_NE(Reason(junk), "(no refusal)");
  EXPECT_FALSE(Reason(junk).empty());
  EXPECT_EQ(s.LyrCount, 0);
}

TEST_F(RasterOpen, UnplacedPicturesLieInTheirPixelsAndNeverGetAWorldFileOfPixels) {
  // Ground control points only: tie points without a pixel scale can't place the picture.
  Gdal("gdal_translate -q -gcp 0 0 1000 2000 -gcp 40 0 1400 2000 -gcp 0 20 1000 1800 " + Rgb() +
       " " + dir + "gcps.tif");
  int n = Open(dir + "gcps.tif");
  ASSERT_GT(n, 0) << Reason(dir + "gcps.tif");
  ExpectExtent(n, 0, 0, 40, -20);
  // A world file of words is no placement either.
  std::string png = Translate(Rgb(), "words.png", "-of PNG");
  test::WriteFile(dir + "words.pgw", "one\ntwo\nthree\nfour\nfive\nsix\n");
  int m = Open(png);
  ASSERT_GT(m, 0) << Reason(png);
  ExpectExtent(m, 0, 0, 40, -20);
  // Edited and saved: the picture is written, the world file is not.
  s.Lyr[n].Img.ImgChanged = -1;
  SaveLyr(s, n);
  EXPECT_EQ(host.logged.back(), "Save Layer gcps.tif");
  EXPECT_FALSE(FileExists(dir + "gcps.tfw"));
  SaveLyrAs(s, n, dir + "copy.png");
  EXPECT_TRUE(FileExists(dir + "copy.png"));
  EXPECT_FALSE(FileExists(dir + "copy.pgw"));
  EXPECT_EQ(test::ReadFile(dir + "words.pgw"), "one\ntwo\nthree\nfour\nfive\nsix\n");
}

TEST_F(RasterOpen, UnRectifyGoesBackToThePlaceTheWorldFileGaveAtOpen) {
  std::string png = Translate(Rgb(), "r.png", "-of PNG");
  ASSERT_TRUE(WriteWorldFile(png, 100, 500, 500, 300, 40, 20));
  int n = Open(png);
  ASSERT_GT(n, 0);
  ExpectExtent(n, 100, 500, 500, 300);
  // One control point moves the picture; the rectify writes the new world file.
  AddRec(s, n);
  AddDbfRec(s, n, 0);
  AddVertex(s, n, 1, 0, 0, 0, 0, 0);
  AddVertex(s, n, 1, 0, 1000, 2000, 0, 0);
  UpdateControlPt(s, n, 1);
  RectifyImage(s, n);
  ExpectExtent(n, 1000, 2000, 1040, 1980);
  UnRectifyImage(s, n);
  ExpectExtent(n, 100, 500, 500, 300);
}

TEST_F(RasterOpen, ConvertingAPictureShowsItsProgressFromNoneToAHundred) {
  std::string png = Translate(Rgb(), "deg.png", "-of PNG");
  ASSERT_TRUE(WriteWorldFile(png, 8.5, 45.5, 9.5, 45.0, 40, 20));
  int n = Open(png);
  ASSERT_GT(n, 0);
  host.progress.clear();
  ConvertCoordsArgs a;
  a.Lyr = n, a.Datum = 23, a.Dir = CoordDir::GeoToGrid, a.ZoneText = "32";
  ASSERT_EQ(ConvertCoordsCmd(s, a), ConvertStatus::Converted);
  std::vector<long long> shown;
  for (auto [value, max] : host.progress)
    if (max == 100) shown.push_back(value);
  ASSERT_FALSE(shown.empty());
  EXPECT_EQ(shown.front(), 0);
  EXPECT_EQ(shown.back(), 100);
  EXPECT_TRUE(std::is_sorted(shown.begin(), shown.end()));
  EXPECT_EQ(host.progress.back(), (std::pair<long long, long long>{0, 0})); // hidden at the end
}

TEST_F(RasterOpen, SavesReplaceThePictureAndWorldFileWholeOrNotAtAll) {
  std::string png = Noise("s.png", "-of PNG");
  ASSERT_TRUE(WriteWorldFile(png, 100, 500, 500, 300, 200, 200));
  int n = Open(png);
  ASSERT_GT(n, 0);
  const std::string oldPng = test::ReadFile(png), oldWorld = test::ReadFile(dir + "s.pgw");
  auto entries = [&] {
    size_t k = 0;
    for ([[maybe_unused]] auto& e : std::filesystem::directory_iterator(dir)) ++k;
    return k;
  };
  const size_t before = entries();
  // A disk that takes no more than 2000 bytes of a file, in a child process.
  s.Lyr[n].Img.ImgChanged = -1;
  s.Lyr[n].Img.WorldChanged = -1;
  LeftExtend(s.Lyr[n]) = 0;
  pid_t pid = ::fork();
  if (pid == 0) {
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit lim{2000, 2000};
    ::setrlimit(RLIMIT_FSIZE, &lim);
    host.logged.clear();
    SaveLyr(s, n);
    bool refused = host.logged.size() == 2 &&
                   host.logged[0] == " *** Save Layer s.png has been canceled *** " &&
                   s.Lyr[n].Img.ImgChanged == -1;
    // The reason goes back to the parent through the only file left out of the check.
    test::WriteFile(dir + "../raster-save-reason.txt", refused ? host.logged[1] : "");
    ::_exit(refused ? 0 : 1);
  }
  int status = 0;
  ::waitpid(pid, &status, 0);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  std::string reason = test::ReadFile(dir + "../raster-save-reason.txt");
  std::filesystem::remove(dir + "../raster-save-reason.txt");
  EXPECT_NE(reason.find("too large"), std::string::npos) << reason;
  EXPECT_EQ(test::ReadFile(png), oldPng);
  EXPECT_EQ(test::ReadFile(dir + "s.pgw"), oldWorld);
  EXPECT_EQ(entries(), before) << "temporary files left behind";

  // The same save with room: both files replaced, the picture readable by GDAL.
  SaveLyr(s, n);
  EXPECT_EQ(host.logged.back(), "Save Layer s.png");
  EXPECT_NE(test::ReadFile(dir + "s.pgw"), oldWorld);
  EXPECT_EQ(entries(), before);
  int st = 0;
  std::string info = test::RunCmd("gdalinfo " + png + " 2>&1", &st);
  EXPECT_EQ(st, 0);
  EXPECT_NE(info.find("Size is 200, 200"), std::string::npos) << info;

  // Saved as a TIFF (its writer seeks and reads back): GDAL reads it with the same pixels.
  SaveLyrAs(s, n, dir + "t.tif");
  ASSERT_EQ(s.Lyr[n].Fsource, dir + "t.tif");
  std::string sum = test::RunCmd("gdalinfo -checksum " + dir + "t.tif 2>&1", &st);
  EXPECT_EQ(st, 0);
  EXPECT_EQ(sum.find("Checksum=-1"), std::string::npos) << sum;
  EXPECT_TRUE(FileExists(dir + "t.tfw"));
  EXPECT_EQ(Pixel(n, 7, 9), QImage(QString::fromStdString(png)).pixelColor(7, 9));
}

} // namespace
