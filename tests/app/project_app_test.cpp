// Projects through the program: opened headless with their log lines, and drawn by
// --render at the window that opening them gives.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "project_bytes.h"
#include "test_support.h"

using namespace velmora::test;

namespace {

std::string Q(const std::string& s) {
  return "'" + s + "'";
}

// A square polygon 0 .. 100 by GDAL, and a project beside it whose window is that square,
// drawn in solid red.
std::string SquareProject(const std::string& dir) {
  {
    std::ofstream f(dir + "sq.csv");
    f << "id,WKT\n1,\"POLYGON ((0 0,0 100,100 100,100 0,0 0))\"\n";
  }
  // No second field: the row's labels (field 2) have no text to write over the square.
  RunCmd("ogr2ogr -q -f 'ESRI Shapefile' " + Q(dir + "sq.shp") + " " + Q(dir + "sq.csv") +
         " -oo KEEP_GEOM_COLUMNS=NO");
  Bytes b = ProjHead(16.007, 1, 0, 100, 100, 0, {1, 0, 36, 0, 1, 23, 1, 0}, 1000, 1000);
  RowSpec r;
  r.path = "sq.shp";
  r.classValues = {""};
  r.cfName = 0;
  r.sel = {0, 0};
  ProjRow(b, 16.007, r);
  WriteFile(dir + "sq.qmt", b.b);
  return dir + "sq.qmt";
}

// A binary PPM as Qt writes it: "P6", width, height, 255, then RGB triples.
struct Ppm {
  int w = 0, h = 0;
  std::string px;
  bool Red(int x, int y) const {
    size_t i = 3 * (size_t(y) * size_t(w) + size_t(x));
    return px.size() >= i + 3 && uint8_t(px[i]) == 255 && px[i + 1] == 0 && px[i + 2] == 0;
  }
};

Ppm ReadPpm(const std::string& path) {
  std::istringstream in(ReadFile(path));
  Ppm p;
  std::string magic;
  int maxv = 0;
  in >> magic >> p.w >> p.h >> maxv;
  in.get();
  p.px.assign(std::istreambuf_iterator<char>(in), {});
  return p;
}

} // namespace

TEST(ProjectApp, HeadlessOpensAProjectAndLogsIt) {
  std::string dir = TempDir("proj app");
  std::string p = SquareProject(dir);
  int status = -1;
  std::string out = RunCmd(Q(VELMORA_BINARY) + " --headless " + Q(p) + " 2>/dev/null", &status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(out, "Open Project  " + p + "   ->    Version : 16.007\n");
  // A damaged project says so and the program goes on.
  WriteFile(dir + "bad.qmt", ReadFile(p).substr(0, 90));
  out = RunCmd(Q(VELMORA_BINARY) + " --headless " + Q(dir + "bad.qmt") + " 2>/dev/null", &status);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(out, "Can not open Prject " + dir + "bad.qmt : Input past end of file\n");
}

TEST(ProjectApp, RenderDrawsTheStoredWindowFittedToTheImage) {
  std::string dir = TempDir("proj render");
  std::string p = SquareProject(dir);
  int status = -1;
  RunCmd(Q(VELMORA_BINARY) + " --render " + Q(dir + "out.ppm") + " --size 200x100 " + Q(p) +
             " 2>&1",
         &status);
  ASSERT_EQ(status, 0);
  Ppm img = ReadPpm(dir + "out.ppm");
  ASSERT_EQ(img.w, 200);
  ASSERT_EQ(img.h, 100);
  // The 100 by 100 window on a 200 by 100 image: one unit a pixel, the square in columns
  // 50 to 150 over the whole height (the full extent would leave a margin around it).
  EXPECT_TRUE(img.Red(55, 50));
  EXPECT_TRUE(img.Red(145, 50));
  EXPECT_TRUE(img.Red(100, 3));
  EXPECT_TRUE(img.Red(100, 96));
  EXPECT_FALSE(img.Red(45, 50));
  EXPECT_FALSE(img.Red(155, 50));
}
