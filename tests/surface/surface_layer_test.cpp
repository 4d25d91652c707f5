// BUILD TIN and BUILD CONTOURS on point layers made by GDAL, the results read back by GDAL.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "child_run.h"
#include "model/file_util.h"
#include "session/commands.h"
#include "surface/tin_points.h"
#include "test_support.h"
#include "tin_oracle.h"

using namespace velmora;

namespace {

// A PointZ layer: a 12 x 10 grid at 10 units from (x0, y0) (steps `step`), in shuffled order,
// with HGT = Z and NAME = the height as text.
std::string MakePoints(const std::string& dir, const std::string& name, double x0, double y0,
                       double step) {
  std::ostringstream py;
  py.precision(17);
  py << "from osgeo import ogr\nimport random\nrandom.seed(3)\n"
     << "ds = ogr.GetDriverByName('ESRI Shapefile').CreateDataSource('" << dir + name << "')\n"
     << "l = ds.CreateLayer('p', geom_type=ogr.wkbPoint25D)\n"
     << "f = ogr.FieldDefn('HGT', ogr.OFTReal); f.SetWidth(12); f.SetPrecision(3); "
        "l.CreateField(f)\n"
     << "f = ogr.FieldDefn('NAME', ogr.OFTString); f.SetWidth(12); l.CreateField(f)\n"
     << "pts = [(c, r) for r in range(10) for c in range(12)]\nrandom.shuffle(pts)\n"
     << "for c, r in pts:\n"
     << "  x = " << x0 << " + c * " << step << "; y = " << y0 << " + r * " << step << "\n"
     << "  z = round(c * 1.5 + r * 2.25 + (c * r) % 7, 3)\n"
     << "  ft = ogr.Feature(l.GetLayerDefn()); ft.SetField('HGT', z); ft.SetField('NAME', 'h%g' % "
        "z)\n"
     << "  ft.SetGeometry(ogr.CreateGeometryFromWkt('POINT Z (%r %r %r)' % (x, y, z)))\n"
     << "  l.CreateFeature(ft)\n"
     << "ds = None\n";
  test::WriteFile(dir + "make.py", py.str());
  int status = -1;
  test::RunCmd("/usr/bin/python3 '" + dir + "make.py' 2>&1", &status);
  EXPECT_EQ(status, 0);
  return dir + name;
}

struct Feature {
  std::string Id;
  double Value = 0;
  std::vector<std::array<double, 3>> Pts;
};
struct Dump {
  std::string Type;
  std::vector<Feature> Features;
};

// The layer as GDAL reads it.
Dump ReadBack(const std::string& dir, const std::string& path, const std::string& field) {
  std::string py =
      "from osgeo import ogr\nds = ogr.Open('" + path +
      "')\nl = ds.GetLayer(0)\nprint(ogr.GeometryTypeToName(l.GetGeomType()))\n"
      "for f in l:\n  g = f.GetGeometryRef()\n"
      "  r = g.GetGeometryRef(0) if g.GetGeometryCount() else g\n"
      "  print(f.GetField('ID') if l.GetLayerDefn().GetFieldIndex('ID') >= 0 else f.GetFID() + 1,"
      " repr(f.GetField('" +
      field +
      "')), r.GetPointCount(),"
      " ' '.join('%r %r %r' % r.GetPoint(i) for i in range(r.GetPointCount())))\n";
  test::WriteFile(dir + "read.py", py);
  std::istringstream in(test::RunCmd("/usr/bin/python3 '" + dir + "read.py' 2>&1"));
  Dump d;
  std::getline(in, d.Type);
  std::string line;
  while (std::getline(in, line)) {
    std::istringstream ls(line);
    Feature f;
    int n = 0;
    ls >> f.Id >> f.Value >> n;
    for (int i = 0; i < n; ++i) {
      std::array<double, 3> p{};
      ls >> p[0] >> p[1] >> p[2];
      f.Pts.push_back(p);
    }
    d.Features.push_back(f);
  }
  return d;
}

struct SurfaceLayers : ::testing::Test {
  test::RecordingHost host;
  Session s{host};
  std::string dir = test::TempDir("surface");

  void Exec(const std::string& line) {
    ArgStrSplit(s, line);
    ArgStrExecute(s);
  }
  bool Logged(const std::string& text) const {
    for (const auto& l : host.logged)
      if (l.find(text) != std::string::npos) return true;
    return false;
  }
};

TEST_F(SurfaceLayers, TinFromAHeightField) {
  std::string src = MakePoints(dir, "pts.shp", 1000, 2000, 10);
  Exec("BUILD TIN \"" + src + "\" \"" + dir + "tin.shp\" 1 HGT");
  ASSERT_TRUE(Logged(" Tin Surface(s) have been Built Successfully in Layer tin.shp"))
      << host.logged.back();
  Dump d = ReadBack(dir, dir + "tin.shp", "AverageZ");
  EXPECT_NE(d.Type.find("3D"), std::string::npos);
  EXPECT_NE(d.Type.find("Polygon"), std::string::npos);
  ASSERT_EQ(d.Features.size(), size_t(2 * 11 * 9));
  EXPECT_TRUE(Logged(std::to_string(d.Features.size()) + " Tin Surface(s) have been Built"));
  for (size_t i = 0; i < d.Features.size(); ++i) {
    const Feature& f = d.Features[i];
    EXPECT_EQ(f.Id, std::to_string(i + 1));
    ASSERT_EQ(f.Pts.size(), 4u);
    EXPECT_EQ(f.Pts[0], f.Pts[3]);
    double mean = (f.Pts[0][2] + f.Pts[1][2] + f.Pts[2][2]) / 3;
    EXPECT_NEAR(f.Value, mean, 0.0006);
  }
  // The new layer is on the map.
  EXPECT_EQ(s.LyrCount, 2);
  EXPECT_EQ(s.Lyr[2].LyrName, "tin.shp");
}

// A disk that fills up during the build: the run is refused, the source keeps its bytes and
// no unfinished TIN is left behind.
TEST_F(SurfaceLayers, AFullDiskLeavesNoUnfinishedLayer) {
  std::string src = MakePoints(dir, "pts.shp", 1000, 2000, 10);
  const std::string before = test::ReadFile(src) + test::ReadFile(ReplaceExt(src, "dbf"));
  const std::string out = dir + "tin.shp";
  const int code = test::InChild([&] {
    test::LimitFileSize(4096);
    Exec("BUILD TIN \"" + src + "\" \"" + out + "\" 1 HGT");
    const bool refused = Logged(" *** Build Tin Surface(s) has been canceled *** ");
    return refused ? 0 : 1;
  });
  EXPECT_EQ(code, 0);
  EXPECT_EQ(test::ReadFile(src) + test::ReadFile(ReplaceExt(src, "dbf")), before);
  for (const char* ext : {"shp", "shx", "dbf"})
    EXPECT_FALSE(std::filesystem::exists(ReplaceExt(out, ext))) << ext;
}

TEST_F(SurfaceLayers, TheTrianglesAreThoseOfThePlainAlgorithm) {
  std::string src = MakePoints(dir, "pts.shp", 500000, 4000000, 30);
  Exec("BUILD TIN \"" + src + "\" \"" + dir + "tin.shp\" 1 Z");
  Dump d = ReadBack(dir, dir + "tin.shp", "AverageZ");
  Dump pts = ReadBack(dir, src, "HGT");
  std::vector<TinPoint> raw;
  SurfaceState st;
  ASSERT_EQ(pts.Features.size(), 120u);
  for (const Feature& f : pts.Features) {
    ASSERT_EQ(f.Pts.size(), 1u);
    raw.push_back({f.Pts[0][0], f.Pts[0][1], float(f.Pts[0][2])});
    ScanBounds(st, f.Pts[0][0], f.Pts[0][1], f.Pts[0][2]);
  }
  oracle::TinResult want = oracle::BuildTin(st, raw, 1);
  ASSERT_EQ(d.Features.size(), want.Tris.size() - 1);
  for (size_t t = 1; t < want.Tris.size(); ++t) {
    const Feature& f = d.Features[t - 1];
    const TinPoint& a = want.Points[size_t(want.Tris[t].A)];
    const TinPoint& c = want.Points[size_t(want.Tris[t].C)];
    EXPECT_EQ(f.Pts[0][0], a.X);
    EXPECT_EQ(f.Pts[0][1], a.Y);
    EXPECT_EQ(f.Pts[2][0], c.X);
    EXPECT_EQ(f.Pts[2][2], double(c.Z));
  }
}

TEST_F(SurfaceLayers, DegreesRoundTripAndNoneGivesZeroHeights) {
  std::string src = MakePoints(dir, "geo.shp", 35.2, 31.7, 0.001);
  Exec("BUILD TIN \"" + src + "\" \"" + dir + "tin.shp\" 1 NONE");
  Dump d = ReadBack(dir, dir + "tin.shp", "AverageZ");
  ASSERT_EQ(d.Features.size(), size_t(2 * 11 * 9));
  for (const Feature& f : d.Features) {
    EXPECT_EQ(f.Value, 0);
    for (const auto& p : f.Pts) {
      EXPECT_EQ(p[2], 0);
      double c = (p[0] - 35.2) / 0.001, r = (p[1] - 31.7) / 0.001;
      EXPECT_NEAR(c, std::round(c), 1e-6);
      EXPECT_NEAR(r, std::round(r), 1e-6);
    }
  }
}

TEST_F(SurfaceLayers, MatrixFromShuffledPointsAndATextField) {
  std::string src = MakePoints(dir, "pts.shp", 10, 10, 5);
  Exec("BUILD TIN \"" + src + "\" \"" + dir + "m.shp\" 2 NAME");
  Dump d = ReadBack(dir, dir + "m.shp", "AverageZ");
  // The keys sort the shuffled grid into rows; the text "h12.5" reads as 0.
  ASSERT_EQ(d.Features.size(), size_t(2 * 11 * 9));
  for (const Feature& f : d.Features) EXPECT_EQ(f.Value, 0);
}

TEST_F(SurfaceLayers, NothingSelectedGivesAnEmptyLayer) {
  std::string src = MakePoints(dir, "pts.shp", 10, 10, 5);
  Exec("BUILD TIN \"" + src + "\" \"" + dir + "e.shp\" 1 HGT 2");
  EXPECT_TRUE(Logged("0 Tin Surface(s) have been Built Successfully in Layer e.shp"));
  EXPECT_TRUE(test::RunCmd("ogrinfo -so -al '" + dir + "e.shp' 2>&1").find("Feature Count: 0") !=
              std::string::npos);
}

TEST_F(SurfaceLayers, ContoursFromAHeightField) {
  std::string src = MakePoints(dir, "pts.shp", 1000, 2000, 10);
  Exec("BUILD CONTOURS \"" + src + "\" \"" + dir + "c.shp\" 1 HGT 5 0");
  ASSERT_TRUE(Logged(" Countours have been Built Successfully to Layer c.shp"))
      << host.logged.back();
  Dump d = ReadBack(dir, dir + "c.shp", "CONTOUR");
  EXPECT_NE(d.Type.find("3D"), std::string::npos);
  EXPECT_NE(d.Type.find("Line String"), std::string::npos);
  ASSERT_GT(d.Features.size(), 5u);
  for (const Feature& f : d.Features) {
    EXPECT_EQ(std::fmod(f.Value, 5), 0);
    EXPECT_GE(f.Pts.size(), 2u);
    for (const auto& p : f.Pts) EXPECT_EQ(p[2], f.Value);
  }
  EXPECT_EQ(s.LyrCount, 2);
}

TEST_F(SurfaceLayers, BadCommandsAreCanceled) {
  std::string src = MakePoints(dir, "pts.shp", 10, 10, 5);
  Exec("BUILD TIN \"" + src + "\" \"" + dir + "x.shp\" 3 HGT");
  EXPECT_TRUE(Logged(" *** Build Tin Surface(s) has been canceled *** "));
  host.logged.clear();
  Exec("BUILD TIN \"" + src + "\" \"" + dir + "x.shp\" 1 NOSUCHFIELD");
  EXPECT_TRUE(Logged(" *** Build Tin Surface(s) has been canceled *** "));
  host.logged.clear();
  Exec("BUILD CONTOURS \"" + src + "\" \"" + dir + "x.shp\" 1 HGT ten 0");
  EXPECT_TRUE(Logged(" *** Contour Surface(s) Analysis has been canceled *** "));
  EXPECT_FALSE(FileExists(dir + "x.shp"));
}

TEST_F(SurfaceLayers, OneSurfaceFunctionAtATime) {
  std::string src = MakePoints(dir, "pts.shp", 10, 10, 5);
  s.Surface.Busy = true;
  Exec("BUILD TIN \"" + src + "\" \"" + dir + "x.shp\" 1 HGT");
  EXPECT_TRUE(Logged(" *** Build Tin Surface(s) has been canceled *** "));
  EXPECT_FALSE(FileExists(dir + "x.shp"));
}

TEST_F(SurfaceLayers, TerminateStopsTheBuild) {
  std::string src = MakePoints(dir, "pts.shp", 10, 10, 5);
  Exec("ADD \"" + src + "\"");
  // Terminate once the first yield comes.
  struct StopHost : test::RecordingHost {
    Session* s = nullptr;
    void Yield() override {
      if (s && s->LyrCount >= 1) s->Lyr[1].LyrTerminate = -1;
    }
  } stopper;
  Session t{stopper};
  stopper.s = &t;
  ArgStrSplit(t, "BUILD TIN \"" + src + "\" \"" + dir + "t.shp\" 1 HGT");
  ArgStrExecute(t);
  bool said = false;
  for (const auto& l : stopper.logged)
    if (l.find(" *** Building Tin Surface(s) in Layer pts.shp has been terminated *** ") !=
        std::string::npos)
      said = true;
  EXPECT_TRUE(said);
  EXPECT_FALSE(t.Surface.Busy);
  EXPECT_EQ(t.Lyr[1].LyrBusy, 0);
}

TEST_F(SurfaceLayers, HeightsThatArentFiniteAreTakenAsZero) {
  std::string py =
      "from osgeo import ogr\n"
      "ds = ogr.GetDriverByName('ESRI Shapefile').CreateDataSource('" +
      dir +
      "nan.shp')\nl = ds.CreateLayer('p', geom_type=ogr.wkbPoint25D)\n"
      "for r in range(6):\n  for c in range(6):\n"
      "    z = 12345.5 if r == 2 else r + c\n"
      "    g = ogr.Geometry(ogr.wkbPoint25D); g.AddPoint(c * 10.0, r * 10.0, z)\n"
      "    ft = ogr.Feature(l.GetLayerDefn()); ft.SetGeometry(g); l.CreateFeature(ft)\n"
      "ds = None\n"
      // GDAL writes no such heights: they are put into the file's bytes.
      "import struct, math\nb = open('" +
      dir +
      "nan.shp', 'rb').read()\n"
      "for v in [math.nan, math.inf, -math.inf] * 2:\n"
      "  b = b[:100] + b[100:].replace(struct.pack('<d', 12345.5), struct.pack('<d', v), 1)\n"
      "open('" +
      dir + "nan.shp', 'wb').write(b)\n";
  test::WriteFile(dir + "make.py", py);
  int status = -1;
  test::RunCmd("/usr/bin/python3 '" + dir + "make.py' 2>&1", &status);
  ASSERT_EQ(status, 0);
  Exec("BUILD TIN \"" + dir + "nan.shp\" \"" + dir + "t.shp\" 1 Z");
  EXPECT_TRUE(Logged("6 Point(s) without a finite height have been taken as 0"));
  EXPECT_TRUE(Logged("50 Tin Surface(s) have been Built Successfully in Layer t.shp"));
  Exec("BUILD CONTOURS \"" + dir + "nan.shp\" \"" + dir + "c.shp\" 2 Z 1 0");
  EXPECT_TRUE(Logged(" Countours have been Built Successfully to Layer c.shp"));
}

} // namespace
