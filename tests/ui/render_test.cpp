#include <gtest/gtest.h>

#include <QImage>

#include "platform/qt/qt_canvas.h"
#include "platform/qt/qt_image_io.h"
#include "qt_app.h"
#include "session/commands.h"
#include "session/layer_life.h"
#include "session/lyr_slots.h"
#include "store/shp_store.h"
#include "test_support.h"
#include "view/map_draw.h"
#include "view/navigation.h"
#include "view/world_file.h"

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
  Run("ADD FEATURE " + Path(n) + " 0 20 20");
  for (auto [x, y] : {std::pair{20, 180}, {180, 180}, {180, 20}, {20, 20}})
    Run("ADD VERTEX " + Path(n) + " 1 0 " + std::to_string(x) + " " + std::to_string(y));
  // The hole as a second part.
  s.Lyr[n].Shp.ShpRecs[1].NumParts += 0;
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
  Run("ADD FEATURE " + Path(n) + " 0 10 150 KIND=main");
  Run("ADD VERTEX " + Path(n) + " 1 0 190 150");
  Run("ADD FEATURE " + Path(n) + " 0 10 50 KIND=other");
  Run("ADD VERTEX " + Path(n) + " 2 0 190 50");
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
  Run("ADD FEATURE " + Path(n) + " 0 10 100");
  Run("ADD VERTEX " + Path(n) + " 1 0 190 100");
  Run("ADD FEATURE " + Path(n) + " 0 100 10");
  Run("ADD VERTEX " + Path(n) + " 2 0 100 190");
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
  Run("ADD FEATURE " + Path(n) + " 0 20 20");
  for (auto [x, y] : {std::pair{20, 180}, {180, 180}, {180, 20}, {20, 20}})
    Run("ADD VERTEX " + Path(n) + " 1 0 " + std::to_string(x) + " " + std::to_string(y));
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
  Run("ADD FEATURE " + Path(line) + " 0 10 100");
  Run("ADD VERTEX " + Path(line) + " 1 0 190 100");
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
