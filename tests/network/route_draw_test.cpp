// The route drawn over its layer: piece by piece in the network pen, and not at all when
// the layer is hidden at the map's scale.
#include <gtest/gtest.h>

#include "net_fixture.h"
#include "platform/canvas.h"
#include "view/map_draw.h"

using namespace velmora;
using namespace velmora::test;

namespace {

struct PenCanvas : Canvas {
  struct Line {
    Colour pen;
    int mode, style, width;
    std::vector<PixPt> pts;
  };
  std::vector<Line> lines;
  Colour pen = 0;
  int mode = 0, style = 0, width = 0;
  int Width() const override { return 200; }
  int Height() const override { return 200; }
  void Clear(Colour) override {}
  void SetPen(Colour c, int m, int st, int w) override { pen = c, mode = m, style = st, width = w; }
  void SetBrush(Colour, int) override {}
  void Polyline(const PixPt* p, size_t n) override {
    lines.push_back({pen, mode, style, width, std::vector<PixPt>(p, p + n)});
  }
  void PolyPolygon(const PixPt*, const int*, size_t) override {}
  void Rectangle(int, int, int, int) override {}
  void Text(int, int, double, const std::string&, const std::string&, int, bool, bool,
            Colour) override {}
};

} // namespace

TEST(RouteDraw, PiecesInTheNetworkPenUnderTheLayersScale) {
  NetFixture f;
  const int lyr = f.Lines("d", {"LINESTRING (0 0,100 0)"});
  ASSERT_GT(lyr, 0);
  Session& s = f.s;
  s.MapView.MapFactor = 1, s.MapView.MapLeft = 0, s.MapView.MapTop = 100;
  s.View.ClipLeft = 0, s.View.ClipRight = 200, s.View.ClipBottom = -100, s.View.ClipTop = 100;
  LyrRec& l = s.Lyr[lyr];
  l.NForeColor = 0x0000ff, l.NDrawMode = 13, l.NDrawStyle = 2, l.NDrawWidth = 5;
  l.Net.NetRoutes = {{1, {{10, 0}, {20, 0}, {20, 10}}}};
  PenCanvas c;
  DrawLyr(s, c, lyr);
  ASSERT_GE(c.lines.size(), 2u);
  const auto& a = c.lines[c.lines.size() - 2];
  const auto& b = c.lines.back();
  EXPECT_EQ(a.pen, 0x0000ffu);
  EXPECT_EQ(a.width, 5);
  EXPECT_EQ(a.style, 2);
  ASSERT_EQ(a.pts.size(), 2u);
  EXPECT_EQ(a.pts[0].x, 10);
  EXPECT_EQ(a.pts[0].y, 100);
  EXPECT_EQ(b.pts[1].x, 20);
  EXPECT_EQ(b.pts[1].y, 90);
  // Out of the layer's scale range: neither the layer nor its route.
  l.DScale = 1, l.DScaleLMT = {1000, 2000};
  s.View.MapScale = 50;
  PenCanvas hidden;
  DrawLyr(s, hidden, lyr);
  EXPECT_TRUE(hidden.lines.empty());
}
