#include <gtest/gtest.h>

#include <QImage>

#include "coords/convert_lyr.h"
#include "frame/lyr_slots.h"
#include "model/file_util.h"
#include "platform/qt/qt_canvas.h"
#include "platform/qt/qt_image_io.h"
#include "qt_app.h"
#include "session/commands.h"
#include "session/layer_life.h"
#include "store/dbf_store.h"
#include "store/shp_store.h"
#include "test_support.h"
#include "view/map_draw.h"
#include "view/navigation.h"
#include "view/raster_layer.h"
#include "view/world_file.h"
#include <array>
#include <cstdio>

using namespace velmora;

namespace {

struct ImagesHost : test::RecordingHost {
  QtImageIO images;
  ImageIO* Images() override { return &images; }
};

// A session of layers made through the command language, drawn at 200 by 200 pixels
// over the world square (0, 0) .. (200, 200): one map unit is one pixel.
class Render : public ::testing::Test {
protected:
  ImagesHost host;
  Session s{host};
  std::string dir = test::TempDir("render");
  QImage img{200, 200, QImage::Format_RGB32};

  void SetUp() override {
    test::App();
    s.MapView.ViewW = 200;
    s.MapView.ViewH = 200;
  }
  void Run(const std::string& line) {
    ArgStrSplit(s, line);
    ArgStrExecute(s);
  }
  // Makes and opens a layer; returns its number.
  int Layer(const std::string& name, const std::string& kind) {
    std::string path = dir + name + ".shp";
    Run("MAKE LAYER " + path + " AS " + kind);
    Run("OPEN LAYER " + path);
    return s.LyrCount;
  }
  std::string Path(int n) { return s.Lyr[n].Fsource; }
  // A two-vertex line as feature `f` of layer n, with field pairs.
  void Line(int n, int f, int x1, int y1, int x2, int y2, const std::string& pairs = "") {
    Run("ADD FEATURE " + Path(n) + " 0 " + std::to_string(x1) + " " + std::to_string(y1) + pairs);
    Run("ADD VERTEX " + Path(n) + " " + std::to_string(f) + " 0 " + std::to_string(x2) + " " +
        std::to_string(y2));
  }
  // The square (20, 20) .. (180, 180) as feature 1 of layer n.
  void Square(int n) {
    Run("ADD FEATURE " + Path(n) + " 0 20 20");
    for (auto [x, y] : {std::pair{20, 180}, {180, 180}, {180, 20}, {20, 20}})
      Run("ADD VERTEX " + Path(n) + " 1 0 " + std::to_string(x) + " " + std::to_string(y));
  }
  void Plain(int n, RGB3 fore, RGB3 fill, int fillStyle = 0) {
    SetCForeColor(s.Lyr[n], 0, fore.R, fore.G, fore.B);
    SetCFillColor(s.Lyr[n], 0, fill.R, fill.G, fill.B);
    s.Lyr[n].CFillStyle[0] = uint8_t(fillStyle);
  }
  void Draw() {
    SetFitSides(s, 0, 200, 200, 0);
    s.MapView.MapFactor = 1;
    DrawArgs a;
    a.Left = 0, a.Top = 200, a.Right = 200, a.Bottom = 0;
    {
      QtCanvas c(img, &host.images);
      c.Clear(PackRGB(255, 255, 255));
      MapDraw(s, 1, 2, &c, a);
    }
  }
  QColor At(int x, int y) { return img.pixelColor(x, y); }
};

const RGB3 kRed{255, 0, 0}, kBlue{0, 0, 255}, kGreen{0, 160, 0}, kBlack{0, 0, 0};

} // namespace

TEST_F(Render, PolygonWithAHoleFillsTheRingAndLeavesTheHole) {
  int n = Layer("gons", "POLYGON");
  Square(n);
  // The hole as a second part.
  AddPart(s, n, 1);
  for (auto [x, y] : {std::pair{80, 80}, {120, 80}, {120, 120}, {80, 120}, {80, 80}})
    AddVertex(s, n, 1, 1, x, y, 0, 0);
  RecalcExtent(s, n);
  Plain(n, kBlack, kBlue);
  Draw();
  EXPECT_EQ(At(50, 50), QColor(0, 0, 255));
  EXPECT_EQ(At(100, 100), QColor(255, 255, 255)); // the hole
  EXPECT_EQ(At(10, 10), QColor(255, 255, 255));
  EXPECT_EQ(At(20, 100), QColor(0, 0, 0)); // the outline
}

TEST_F(Render, PointsAreSquaresOfTheClassWidthAndSelectionOutlinesThem) {
  int n = Layer("pts", "POINT");
  Run("ADD FEATURE " + Path(n) + " 0 50 150");
  Run("ADD FEATURE " + Path(n) + " 0 150 50");
  Plain(n, kRed, kRed);
  s.Lyr[n].CDrawWidth[0] = 3;
  SetSForeColor(s.Lyr[n], 0, 160, 0);
  SetSFillColor(s.Lyr[n], 0, 160, 0);
  s.Lyr[n].SDrawWidth = 6;
  s.Lyr[n].SelBits[0] |= 1 << 2; // feature 2
  Draw();
  // Feature 1 at pixel (50, 50): a square from 47 to 52.
  EXPECT_EQ(At(50, 50), QColor(255, 0, 0));
  EXPECT_EQ(At(48, 48), QColor(255, 0, 0));
  EXPECT_EQ(At(45, 50), QColor(255, 255, 255));
  // Feature 2 at (150, 150): the class square over a larger selected one.
  EXPECT_EQ(At(150, 150), QColor(255, 0, 0));
  EXPECT_EQ(At(145, 150), QColor(0, 160, 0));
}

TEST_F(Render, ClassesComeFromTheTableAndUnknownValuesUseClassZero) {
  int n = Layer("roads", "POLYLINE");
  Run("ADD FIELD " + Path(n) + " KIND C 10 0");
  Line(n, 1, 10, 150, 190, 150, " KIND=main");
  Line(n, 2, 10, 50, 190, 50, " KIND=other");
  LyrRec& l = s.Lyr[n];
  Plain(n, kBlack, kBlack);
  l.CFName = 2; // ID is field 1
  l.CFCount = 1;
  SizeClasses(l, 1);
  l.CFieldValues[1] = "main";
  SetCForeColor(l, 1, 255, 0, 0);
  l.CDrawMode[1] = 13, l.CDrawStyle[1] = 0, l.CDrawWidth[1] = 1, l.CFillStyle[1] = 0;
  Draw();
  EXPECT_EQ(At(100, 50), QColor(255, 0, 0));
  EXPECT_EQ(At(100, 150), QColor(0, 0, 0));
}

TEST_F(Render, ScaleLimitsHideALayerAndDeletedFeaturesAreNotDrawn) {
  int n = Layer("lines", "POLYLINE");
  Line(n, 1, 10, 100, 190, 100);
  Line(n, 2, 100, 10, 100, 190);
  Plain(n, kBlack, kBlack);
  s.Lyr[n].DShowVrt = 1;
  Run("DELETE FEATURE " + Path(n) + " 2");
  Draw();
  EXPECT_EQ(At(50, 100), QColor(0, 0, 0));
  EXPECT_EQ(At(100, 50), QColor(255, 255, 255));
  EXPECT_EQ(At(100, 10), QColor(255, 255, 255)); // nor its vertices

  s.Lyr[n].DScale = 1; // limits (0, 0): hidden at every scale above 0
  Draw();
  EXPECT_GT(s.View.MapScale, 0);
  EXPECT_EQ(At(50, 100), QColor(255, 255, 255));
}

TEST_F(Render, SelectedPolygonWithNoLineAndHollowFillShowsNothing) {
  int n = Layer("sel", "POLYGON");
  Square(n);
  Plain(n, kBlack, kBlue);
  s.Lyr[n].SDrawStyle = 5;
  s.Lyr[n].SFillStyle = 1;
  s.Lyr[n].SelBits[0] |= 1 << 1;
  Draw();
  EXPECT_EQ(At(100, 100), QColor(255, 255, 255));
  EXPECT_EQ(At(20, 100), QColor(255, 255, 255));
}

TEST_F(Render, ImagesLieUnderEveryVectorLayerWhateverTheListSays) {
  // A 20 by 20 green picture placed over the whole view by its world file.
  QImage pic(20, 20, QImage::Format_RGB32);
  pic.fill(QColor(0, 160, 0));
  ASSERT_TRUE(pic.save(QString::fromStdString(dir + "pic.png")));
  ASSERT_TRUE(WriteWorldFile(dir + "pic.png", 0, 200, 200, 0, 20, 20));
  int line = Layer("over", "POLYLINE");
  Line(line, 1, 10, 100, 190, 100);
  Plain(line, kRed, kRed);
  s.GdipReady = true;
  AddShape(s, dir + "pic.png", false);
  ASSERT_EQ(s.LyrCount, 2) << "image layer refused";
  EXPECT_EQ(s.Lyr[2].LyrKind, 2);
  SwapLyr(s, 2, 1); // the image on top of the list
  Draw();
  EXPECT_EQ(At(100, 100), QColor(255, 0, 0));
  EXPECT_EQ(At(100, 50), QColor(0, 160, 0));
}

namespace {

// A 40 by 20 RGB picture made by GDAL: left half red, right half blue, placed at
// (1000, 2000) with 10-unit pixels.
std::string GdalPicture(const std::string& dir, const std::string& name, const std::string& args) {
  test::WriteFile(dir + "r.asc", [] {
    std::string t = "ncols 40\nnrows 20\nxllcorner 1000\nyllcorner 1800\ncellsize 10\n";
    for (int y = 0; y < 20; ++y) {
      for (int x = 0; x < 40; ++x) t += x < 20 ? "1 " : "2 ";
      t += "\n";
    }
    return t;
  }());
  test::WriteFile(dir + "r.txt", "1 255 0 0\n2 0 0 255\n");
  int st = 0;
  test::RunCmd("gdaldem color-relief -q " + dir + "r.asc " + dir + "r.txt " + dir + "rgb.tif 2>&1",
               &st);
  EXPECT_EQ(st, 0);
  test::RunCmd("gdal_translate -q " + args + " " + dir + "rgb.tif " + dir + name + " 2>&1", &st);
  EXPECT_EQ(st, 0);
  return dir + name;
}

} // namespace

TEST_F(Render, GdalPicturesArePlacedByWorldFileAndTiePointsAndDrawn) {
  s.GdipReady = true;
  // GeoTIFF tie points and pixel scale.
  std::string tif = GdalPicture(dir, "geo.tif", "-of GTiff");
  AddShape(s, tif, false);
  ASSERT_EQ(s.LyrCount, 1);
  EXPECT_EQ(s.Lyr[1].LyrKind, 2);
  EXPECT_DOUBLE_EQ(LeftExtend(s.Lyr[1]), 1000);
  EXPECT_DOUBLE_EQ(TopExtend(s.Lyr[1]), 2000);
  EXPECT_DOUBLE_EQ(RightExtend(s.Lyr[1]), 1400);
  EXPECT_DOUBLE_EQ(BottomExtend(s.Lyr[1]), 1800);
  EXPECT_EQ(s.Lyr[1].Shp.ShpType, 99);
  EXPECT_TRUE(FileExists(dir + "geo.shp")); // the frame, made at first open
  EXPECT_TRUE(FileExists(dir + "geo.dbf"));

  // A PNG with GDAL's world file: the sixth line is read as half a pixel above the top
  // edge, so the picture sits one pixel row lower than GDAL places it.
  std::string png = GdalPicture(dir, "w.png", "-of PNG -co WORLDFILE=YES");
  ASSERT_TRUE(FileExists(dir + "w.wld") || FileExists(dir + "w.pgw"));
  if (!FileExists(dir + "w.pgw")) std::rename((dir + "w.wld").c_str(), (dir + "w.pgw").c_str());
  AddShape(s, png, false);
  ASSERT_EQ(s.LyrCount, 2);
  EXPECT_DOUBLE_EQ(LeftExtend(s.Lyr[2]), 1000);
  EXPECT_DOUBLE_EQ(TopExtend(s.Lyr[2]), 1990);
  EXPECT_DOUBLE_EQ(BottomExtend(s.Lyr[2]), 1790);

  // Drawn stretched into their extents: the whole view is the GeoTIFF's square.
  s.Lyr[2].DVisable = 0;
  s.MapView.ViewW = 200, s.MapView.ViewH = 100;
  QImage view(200, 100, QImage::Format_RGB32);
  {
    QtCanvas c(view, &host.images);
    c.Clear(PackRGB(255, 255, 255));
    DrawArgs a;
    a.Left = 1000, a.Top = 2000, a.Right = 1400, a.Bottom = 1800;
    MapDraw(s, 1, 2, &c, a);
  }
  EXPECT_EQ(view.pixelColor(50, 50), QColor(255, 0, 0));
  EXPECT_EQ(view.pixelColor(150, 50), QColor(0, 0, 255));
}

TEST_F(Render, TwoControlPointsRectifyAndTheWorldFileFollows) {
  s.GdipReady = true;
  std::string png = GdalPicture(dir, "c.png", "-of PNG");
  AddShape(s, png, false);
  ASSERT_EQ(s.LyrCount, 1);
  // Unplaced: the picture's pixels below and right of the origin.
  EXPECT_DOUBLE_EQ(RightExtend(s.Lyr[1]), 40);
  EXPECT_DOUBLE_EQ(BottomExtend(s.Lyr[1]), -20);
  // Two control points as rows of the frame's table and records of the frame.
  for (auto [sx, sy, dx, dy] : {std::array<double, 4>{0, 0, 500, 300}, {40, -20, 900, 100}}) {
    // The row first: a blank row written to the table moves its point to the origin.
    AddRec(s, 1);
    int rec = s.Lyr[1].Shp.RecCount;
    AddDbfRec(s, 1, rec - 1);
    AddVertex(s, 1, rec, 0, sx, sy, 0, 0);
    AddVertex(s, 1, rec, 0, dx, dy, 0, 0);
    UpdateControlPt(s, 1, rec);
  }
  ASSERT_EQ(s.Lyr[1].Dbf.DbfFieldCount, 5);
  ASSERT_EQ(s.Lyr[1].Shp.RecCount, 2);
  ReadDbfRec(s, 1, 1);
  EXPECT_EQ(Trim(GetFieldValue(s, 1, 4)), "900");
  RectifyImage(s, 1);
  EXPECT_DOUBLE_EQ(LeftExtend(s.Lyr[1]), 500);
  EXPECT_DOUBLE_EQ(TopExtend(s.Lyr[1]), 300);
  EXPECT_DOUBLE_EQ(RightExtend(s.Lyr[1]), 900);
  EXPECT_DOUBLE_EQ(BottomExtend(s.Lyr[1]), 100);
  EXPECT_EQ(s.Lyr[1].Img.ImgRectified, -1);
  double l = 0, t = 0, r = 0, b = 0;
  int16_t found = 0;
  ReadWorldFile(s, png, l, t, r, b, 40, 20, found);
  EXPECT_EQ(found, -1);
  EXPECT_DOUBLE_EQ(l, 500);
  EXPECT_DOUBLE_EQ(b, 100);

  UnRectifyImage(s, 1);
  EXPECT_EQ(s.Lyr[1].Img.ImgRectified, 0);
  EXPECT_DOUBLE_EQ(LeftExtend(s.Lyr[1]), 500); // the world file written by the rectify
}

TEST_F(Render, AnImageLayerMovesToAGridWithOnlyItsOwnColoursOrWhite) {
  s.GdipReady = true;
  // The red and blue picture placed in degrees around 9 E, 45 N by its world file.
  std::string png = GdalPicture(dir, "deg.png", "-of PNG");
  ASSERT_TRUE(WriteWorldFile(png, 8.5, 45.5, 9.5, 45.0, 40, 20));
  AddShape(s, png, false);
  ASSERT_EQ(s.LyrCount, 1);
  ConvertCoordsArgs a;
  a.Lyr = 1, a.Datum = 23, a.Dir = CoordDir::GeoToGrid, a.ZoneText = "32";
  ASSERT_EQ(ConvertCoordsCmd(s, a), ConvertStatus::Converted);
  LyrRec& l = s.Lyr[1];
  // Zone 32's central meridian is 9 E: the picture straddles x = 500 km.
  EXPECT_LT(LeftExtend(l), 500000);
  EXPECT_GT(RightExtend(l), 500000);
  EXPECT_GT(BottomExtend(l), 4.9e6);
  EXPECT_EQ(l.Img.ImgChanged, -1);
  DibBits bits;
  ASSERT_TRUE(host.images.GetBits(l.Img.ImgPic, bits));
  int coloured = 0;
  for (int y = 0; y < bits.Height; ++y)
    for (int x = 0; x < bits.Width; ++x) {
      const uint8_t* p = &bits.Bits[size_t(y * bits.Stride() + x * 3)];
      bool red = p[0] == 0 && p[1] == 0 && p[2] == 255, blue = p[0] == 255 && !p[1] && !p[2];
      bool white = p[0] == 255 && p[1] == 255 && p[2] == 255;
      EXPECT_TRUE(red || blue || white);
      coloured += red || blue;
    }
  EXPECT_GT(coloured, 40 * 20 / 2);
}

TEST_F(Render, LabelsAreWrittenAtTheAnchorWithinTheirScales) {
  int n = Layer("named", "POINT");
  Run("ADD FIELD " + Path(n) + " NAME C 20 0");
  Run("ADD FEATURE " + Path(n) + " 0 100 100 NAME=WWWWWW");
  Plain(n, RGB3{255, 255, 255}, RGB3{255, 255, 255}); // the point itself white on white
  LyrRec& l = s.Lyr[n];
  l.LVisible = 1;
  l.LFName = 2;
  l.LFontSize = 14;
  l.LfontName = "DejaVu Sans";
  SetLColor(l, 0, 0, 255);
  auto blueAround = [&] {
    int blue = 0;
    for (int y = 80; y < 120; ++y)
      for (int x = 50; x < 150; ++x) blue += At(x, y) == QColor(0, 0, 255);
    return blue;
  };
  Draw();
  EXPECT_GT(blueAround(), 20);
  l.LScale = 1; // limits (0, 0): no label at this scale
  Draw();
  EXPECT_EQ(blueAround(), 0);
}

TEST_F(Render, MultipointsAndZAndMTypesDrawLikeTheirPlainKinds) {
  int mp = Layer("mpts", "MULTIPOINTSMZ");
  Run("ADD FEATURE " + Path(mp) + " 0 30 170");
  Run("ADD VERTEX " + Path(mp) + " 1 0 60 170");
  Plain(mp, kRed, kRed);
  int ln = Layer("linem", "POLYLINEM");
  Line(ln, 1, 10, 100, 190, 100);
  Plain(ln, kBlue, kBlue);
  int gz = Layer("gonz", "POLYGONMZ");
  Run("ADD FEATURE " + Path(gz) + " 0 20 20");
  for (auto [x, y] : {std::pair{20, 60}, {60, 60}, {60, 20}, {20, 20}})
    Run("ADD VERTEX " + Path(gz) + " 1 0 " + std::to_string(x) + " " + std::to_string(y));
  Plain(gz, kBlack, kGreen);
  Draw();
  EXPECT_EQ(At(30, 30), QColor(255, 0, 0)); // each point of the multipoint a square
  EXPECT_EQ(At(60, 30), QColor(255, 0, 0));
  EXPECT_EQ(At(45, 30), QColor(255, 255, 255));
  EXPECT_EQ(At(100, 100), QColor(0, 0, 255));
  EXPECT_EQ(At(40, 160), QColor(0, 160, 0));
}

TEST_F(Render, AnImageShowsItsFrameOutlineOverThePicture) {
  s.GdipReady = true;
  std::string png = GdalPicture(dir, "f.png", "-of PNG");
  ASSERT_TRUE(WriteWorldFile(png, 20, 180, 180, 20, 40, 20));
  AddShape(s, png, false);
  ASSERT_EQ(s.LyrCount, 1);
  s.Lyr[1].CDrawStyle[0] = 0; // an image layer's outline is off by default: on here
  SetCForeColor(s.Lyr[1], 0, 0, 0, 0);
  Draw();
  EXPECT_EQ(At(20, 100), QColor(0, 0, 0)); // the frame's left edge
  EXPECT_EQ(At(50, 100), QColor(255, 0, 0));
  EXPECT_EQ(At(10, 100), QColor(255, 255, 255));
}

TEST_F(Render, ImageSavedUnderAnotherNameTakesItsWorldFileAlong) {
  s.GdipReady = true;
  std::string png = GdalPicture(dir, "a.png", "-of PNG");
  ASSERT_TRUE(WriteWorldFile(png, 100, 500, 500, 300, 40, 20));
  AddShape(s, png, false);
  ASSERT_EQ(s.LyrCount, 1);
  SaveLyrAs(s, 1, dir + "b.jpg");
  EXPECT_TRUE(FileExists(dir + "b.jpg"));
  EXPECT_TRUE(FileExists(dir + "b.jgw"));
  EXPECT_EQ(s.Lyr[1].Fsource, dir + "b.jpg");
  EXPECT_EQ(s.Lyr[1].LyrKind, 2);
  EXPECT_DOUBLE_EQ(LeftExtend(s.Lyr[1]), 100);
  EXPECT_DOUBLE_EQ(BottomExtend(s.Lyr[1]), 300);
  EXPECT_EQ(host.images.Width(s.Lyr[1].Img.ImgPic), 40);
}

TEST_F(Render, EditingAControlPointRowMovesItsRecord) {
  s.GdipReady = true;
  std::string png = GdalPicture(dir, "cp.png", "-of PNG");
  AddShape(s, png, false);
  ASSERT_EQ(s.LyrCount, 1);
  AddRec(s, 1);
  AddDbfRec(s, 1, 0);
  AddVertex(s, 1, 1, 0, 1, 1, 0, 0);
  AddVertex(s, 1, 1, 0, 2, 2, 0, 0);
  ReadDbfRec(s, 1, 0);
  SetFieldValue(s, 1, 2, "5");
  SetFieldValue(s, 1, 3, "-6");
  SetFieldValue(s, 1, 4, "700");
  SetFieldValue(s, 1, 5, "800");
  WriteDbfRecSwap(s, 1, 0);
  auto pts = s.Lyr[1].Shp.ShpRecs[1].Part(0).PartPoints();
  EXPECT_DOUBLE_EQ(pts[0].X, 5);
  EXPECT_DOUBLE_EQ(pts[0].Y, -6);
  EXPECT_DOUBLE_EQ(pts[1].X, 700);
  EXPECT_DOUBLE_EQ(pts[1].Y, 800);
  EXPECT_DOUBLE_EQ(s.Lyr[1].Shp.ShpRecs[1].Xmax, 700);
}
