// The map surface draws GDI's sixteen raster operations as operations on the pixels, and
// the window measures its screen.
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QImage>
#include <QScreen>

#include "platform/colour.h"
#include "platform/qt/qt_canvas.h"
#include "platform/qt/qt_screen.h"
#include "qt_app.h"

using namespace velmora;

namespace {

// What GDI gives for pen P on destination D, one 8-bit channel at a time.
uint8_t Rop2(int mode, uint8_t p, uint8_t d) {
  switch (mode) {
  case 1:
    return 0;
  case 2:
    return uint8_t(~(p | d));
  case 3:
    return uint8_t(d & ~p);
  case 4:
    return uint8_t(~p);
  case 5:
    return uint8_t(p & ~d);
  case 6:
    return uint8_t(~d);
  case 7:
    return uint8_t(p ^ d);
  case 8:
    return uint8_t(~(p & d));
  case 9:
    return uint8_t(p & d);
  case 10:
    return uint8_t(~(p ^ d));
  case 11:
    return d;
  case 12:
    return uint8_t(d | ~p);
  case 13:
    return p;
  case 14:
    return uint8_t(p | ~d);
  case 15:
    return uint8_t(p | d);
  default:
    return 0xFF; // 16
  }
}

} // namespace

TEST(CanvasModes, EachOfTheSixteenRasterOperationsActsOnPenAndSurface) {
  test::App();
  const uint8_t P[3] = {0xF0, 0x0F, 0xA5}, D[3] = {0x33, 0xCC, 0x5A};
  for (int mode = 1; mode <= 16; ++mode) {
    QImage img(12, 12, QImage::Format_RGB32);
    {
      QtCanvas c(img);
      c.Clear(PackRGB(D[0], D[1], D[2]));
      c.SetPen(PackRGB(P[0], P[1], P[2]), mode, 0, 1);
      c.SetBrush(PackRGB(P[0], P[1], P[2]), 0);
      c.Rectangle(2, 2, 10, 10); // the fill inside, the outline on its edge
      // A line drawn with the same pen across the free top row.
      PixPt line[2] = {{0, 0}, {11, 0}};
      c.Polyline(line, 2);
    }
    for (QPoint at : {QPoint(5, 5), QPoint(6, 0)}) {
      QRgb px = img.pixel(at);
      EXPECT_EQ(qRed(px), Rop2(mode, P[0], D[0])) << "mode " << mode << " at " << at.x();
      EXPECT_EQ(qGreen(px), Rop2(mode, P[1], D[1])) << "mode " << mode << " at " << at.x();
      EXPECT_EQ(qBlue(px), Rop2(mode, P[2], D[2])) << "mode " << mode << " at " << at.x();
    }
    QRgb outside = img.pixel(0, 11);
    EXPECT_EQ(qRed(outside), D[0]) << mode;
    EXPECT_EQ(qBlue(outside), D[2]) << mode;
  }
}

TEST(CanvasModes, XorTwiceGivesTheSurfaceBack) {
  test::App();
  QImage img(8, 8, QImage::Format_RGB32);
  QtCanvas c(img);
  c.Clear(PackRGB(10, 200, 30));
  c.SetPen(PackRGB(255, 255, 0), 7, 0, 1);
  c.SetBrush(PackRGB(255, 255, 0), 0);
  c.Rectangle(1, 1, 7, 7);
  c.Rectangle(1, 1, 7, 7);
  c.End();
  EXPECT_EQ(img.pixelColor(4, 4), QColor(10, 200, 30));
}

TEST(ScreenMeasures, FromTheScreensRealDensityOrTheDesktopsOr96) {
  ScreenMeasures m = MeasuresOfDensity(120, 110, 96, 96);
  EXPECT_DOUBLE_EQ(m.PixPerMeter, 120 / 0.0254);
  EXPECT_DOUBLE_EQ(m.TwipsPerPixelX, 12);
  EXPECT_DOUBLE_EQ(m.TwipsPerPixelY, 1440.0 / 110);
  // A screen that reports no size, or an absurd one, falls back to the desktop's density.
  m = MeasuresOfDensity(0, 5000, 144, 144);
  EXPECT_DOUBLE_EQ(m.PixPerMeter, 144 / 0.0254);
  EXPECT_DOUBLE_EQ(m.TwipsPerPixelY, 10);
  m = MeasuresOfDensity(0, 0, 0, 0);
  EXPECT_DOUBLE_EQ(m.PixPerMeter, 96 / 0.0254);
  EXPECT_DOUBLE_EQ(m.TwipsPerPixelX, 15);
  // Headless defaults are the same 96 dots an inch.
  ScreenMeasures none;
  EXPECT_DOUBLE_EQ(none.PixPerMeter, 96 / 0.0254);
  EXPECT_DOUBLE_EQ(none.TwipsPerPixelX, 15);

  test::App();
  QScreen* sc = QGuiApplication::primaryScreen();
  ASSERT_NE(sc, nullptr);
  m = MeasureScreen(nullptr);
  ScreenMeasures want = MeasuresOfDensity(sc->physicalDotsPerInchX(), sc->physicalDotsPerInchY(),
                                          sc->logicalDotsPerInchX(), sc->logicalDotsPerInchY());
  EXPECT_DOUBLE_EQ(m.PixPerMeter, want.PixPerMeter);
  EXPECT_DOUBLE_EQ(m.TwipsPerPixelY, want.TwipsPerPixelY);
}
