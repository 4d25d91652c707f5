// Layers through the program's command line: files made by GDAL, changed and saved by
// `velmora --headless`, read again by GDAL and shapelib; --render and --transform.
#include <gtest/gtest.h>

#include <QImage>

#include "app_support.h"

using namespace velmora::test;

namespace {

// shpdump's report without the line that names the file.
std::string Dump(const std::string& shp) {
  std::string out = RunCmd("shpdump " + Quote(shp) + " 2>&1");
  size_t eol = out.find('\n');
  return eol == std::string::npos ? out : out.substr(eol + 1);
}

std::string MakeParcels(const std::string& dir) {
  WriteFile(dir + "p.csv",
            "id,owner,area,WKT\n"
            "1,Anna,10.5,\"POLYGON ((0 0,0 10,10 10,10 0,0 0),(2 2,4 2,4 4,2 4,2 2))\"\n"
            "2,Ben,3.25,\"POLYGON ((20 0,20 5,25 5,20 0))\"\n"
            "3,Cleo,7,\"MULTIPOLYGON (((30 0,30 3,33 3,30 0)),((40 0,40 4,44 4,40 0)))\"\n");
  int st = 0;
  RunCmd("ogr2ogr -q -f 'ESRI Shapefile' -nlt MULTIPOLYGON " + Quote(dir + "parcels.shp") + " " +
             Quote(dir + "p.csv") + " -oo KEEP_GEOM_COLUMNS=NO -oo AUTODETECT_TYPE=YES 2>&1",
         &st);
  EXPECT_EQ(st, 0);
  return dir + "parcels.shp";
}

} // namespace

TEST(HeadlessLayers, SaveAsGivesTheSameShapesAsTheOriginal) {
  std::string dir = TempDir("saveas");
  std::string src = MakeParcels(dir);
  WriteFile(dir + "run.lst",
            "OPEN LAYER " + src + "\nSAVE LAYER " + src + " AS " + dir + "copy.shp\n");
  int st = -1;
  std::string out = Velmora("--headless " + Quote(dir + "run.lst"), &st);
  EXPECT_EQ(st, 0);
  EXPECT_NE(out.find("Save Layer parcels.shp As " + dir + "copy.shp"), std::string::npos) << out;
  EXPECT_EQ(Dump(dir + "copy.shp"), Dump(src));
  EXPECT_EQ(ReadFile(dir + "copy.shp"), ReadFile(src));
  EXPECT_EQ(ReadFile(dir + "copy.shx"), ReadFile(dir + "parcels.shx"));
}

TEST(HeadlessLayers, SetDataChangesOnlyTheNamedRows) {
  std::string dir = TempDir("setdata");
  std::string src = MakeParcels(dir);
  std::string before = ReadFile(dir + "parcels.dbf");
  WriteFile(dir + "run.lst", "SET DATA " + src + " 2 OWNER=Bea AREA=4.5\nSAVE LAYER " + src + "\n");
  int st = -1;
  Velmora("--headless " + Quote(dir + "run.lst"), &st);
  EXPECT_EQ(st, 0);
  std::string info = RunCmd("ogrinfo -ro -al -q " + Quote(src) + " 2>&1");
  EXPECT_NE(info.find("owner (String) = Bea"), std::string::npos) << info;
  EXPECT_NE(info.find("area (Real) = 4.5"), std::string::npos) << info;
  EXPECT_NE(info.find("owner (String) = Anna"), std::string::npos) << info;
  // Rows 1 and 3 keep their bytes; so does the header.
  std::string after = ReadFile(dir + "parcels.dbf");
  ASSERT_EQ(after.size(), before.size());
  int header = uint8_t(before[8]) | uint8_t(before[9]) << 8;
  int rec = uint8_t(before[10]) | uint8_t(before[11]) << 8;
  EXPECT_EQ(after.substr(0, size_t(header)), before.substr(0, size_t(header)));
  EXPECT_EQ(after.substr(size_t(header), size_t(rec)), before.substr(size_t(header), size_t(rec)));
  EXPECT_EQ(after.substr(size_t(header + 2 * rec)), before.substr(size_t(header + 2 * rec)));
  EXPECT_NE(after.substr(size_t(header + rec), size_t(rec)),
            before.substr(size_t(header + rec), size_t(rec)));
}

TEST(HeadlessLayers, RenderDrawsTheFullExtentIntoAnImage) {
  std::string dir = TempDir("render");
  std::string src = MakeParcels(dir);
  int st = -1;
  Velmora("--render " + Quote(dir + "map.png") + " --size 300x120 " + Quote(src), &st);
  EXPECT_EQ(st, 0);
  QImage img(QString::fromStdString(dir + "map.png"));
  ASSERT_FALSE(img.isNull());
  EXPECT_EQ(img.width(), 300);
  EXPECT_EQ(img.height(), 120);
  // White margins around the data, the data somewhere in the middle.
  EXPECT_EQ(img.pixelColor(0, 0), QColor(Qt::white));
  int drawn = 0;
  for (int y = 0; y < img.height(); ++y)
    for (int x = 0; x < img.width(); ++x) drawn += img.pixelColor(x, y) != QColor(Qt::white);
  EXPECT_GT(drawn, 300);
  Velmora("--render " + Quote(dir + "x.png") + " --size 0x5", &st);
  EXPECT_EQ(st, 2);
}

TEST(HeadlessLayers, AGeoTiffIsDrawnAndACutOneRefusedWithItsReason) {
  std::string dir = TempDir("picture");
  int st = -1;
  RunCmd("gdal_create -q -of GTiff -outsize 256 256 -bands 3 -burn 0 -burn 0 -burn 255 "
         "-a_ullr 0 256 256 0 -co TILED=YES -co COMPRESS=JPEG " +
             Quote(dir + "blue.tif") + " 2>&1",
         &st);
  ASSERT_EQ(st, 0);
  Velmora("--render " + Quote(dir + "map.png") + " --size 100x100 " + Quote(dir + "blue.tif"), &st);
  EXPECT_EQ(st, 0);
  QImage map(QString::fromStdString(dir + "map.png"));
  ASSERT_FALSE(map.isNull());
  QColor c = map.pixelColor(50, 50);
  EXPECT_LT(c.red(), 30);
  EXPECT_GT(c.blue(), 225);

  std::string bytes = ReadFile(dir + "blue.tif");
  WriteFile(dir + "cut.tif", bytes.substr(0, bytes.size() - 100));
  std::vector<std::string> lines = Lines(Velmora("--headless " + Quote(dir + "cut.tif"), &st));
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0], " *** Add Layer " + dir + "cut.tif has been canceled *** ");
  EXPECT_EQ(lines[1].rfind("truncated at byte " + std::to_string(bytes.size() - 100), 0), 0u)
      << lines[1];
}

TEST(HeadlessLayers, TransformFilterAnswersLineByLine) {
  std::string dir = TempDir("transform");
  WriteFile(dir + "in.txt", "45 9\nnot numbers\n-33.9 18.4\n");
  int st = -1;
  std::string out = RunCmd(
      Quote(VELMORA_BINARY) + " --transform < " + Quote(dir + "in.txt") + " 2>/dev/null", &st);
  auto lines = Lines(out);
  ASSERT_EQ(lines.size(), 3u);
  // 45 N 9 E is on the central meridian of zone 32: x = 500 km.
  EXPECT_EQ(lines[0].rfind("500000", 0), 0u) << lines[0];
  EXPECT_EQ(lines[1], "");
  EXPECT_FALSE(lines[2].empty());
}

TEST(HeadlessLayers, ASaveUnderAFileSizeLimitLeavesTheOldFilesAndNoTemporaries) {
  std::string dir = TempDir("fsize");
  std::string csv = "code,WKT\n";
  for (int i = 0; i < 300; ++i)
    csv += "r" + std::to_string(i) + ",\"LINESTRING (" + std::to_string(i) + " 0," +
           std::to_string(i + 1) + " 1)\"\n";
  WriteFile(dir + "r.csv", csv);
  int st = 0;
  RunCmd("ogr2ogr -q -f 'ESRI Shapefile' -nlt LINESTRING " + Quote(dir + "roads.shp") + " " +
             Quote(dir + "r.csv") + " -oo KEEP_GEOM_COLUMNS=NO 2>&1",
         &st);
  ASSERT_EQ(st, 0);
  const std::string src = dir + "roads.shp";
  std::string before;
  for (const char* ext : {"shp", "shx", "dbf"}) before += ReadFile(dir + "roads." + ext);
  WriteFile(dir + "run.lst", "SET DATA " + src + " 2 code=CHANGED\nDELETE FEATURE " + src +
                                 " 1\nSAVE LAYER " + src + "\n");
  // 8 KB: the new .dbf and .shp cannot be written whole.
  std::string out = RunCmd("ulimit -f 8; " + Quote(VELMORA_BINARY) + " --headless " +
                               Quote(dir + "run.lst") + " 2>&1",
                           &st);
  EXPECT_EQ(st, 0) << out;
  EXPECT_NE(out.find(" *** Save Layer roads.shp has been canceled *** "), std::string::npos) << out;
  EXPECT_NE(out.find("file too large"), std::string::npos) << out;
  std::string after;
  for (const char* ext : {"shp", "shx", "dbf"}) after += ReadFile(dir + "roads." + ext);
  EXPECT_EQ(after, before);
  EXPECT_EQ(RunCmd("ls " + Quote(dir) + " | grep -c '^qmt' || true"), "0\n");
}
