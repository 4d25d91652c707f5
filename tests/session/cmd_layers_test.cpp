// The command language on real layers: files made by GDAL, changed through command lines,
// read back. These need the shape and attribute stores and skip without them.
#include <gtest/gtest.h>

#include <stdexcept>

#include "model/file_util.h"
#include "session/commands.h"
#include "session/layer_life.h"
#include "store/dbf_store.h"
#include "store/shp_store.h"
#include "test_support.h"

using namespace velmora;

namespace {

// Feature 1: two parts, (0 0, 1 0, 2 0) and (10 10, 11 11); feature 2: (5 5, 6 6).
std::string MakeLines(const std::string& dir, const std::string& name) {
  std::string path = dir + name;
  std::string py = "from osgeo import ogr\n"
                   "ds = ogr.GetDriverByName('ESRI Shapefile').CreateDataSource('" +
                   path +
                   "')\n"
                   "l = ds.CreateLayer('x', geom_type=ogr.wkbLineString)\n"
                   "f = ogr.FieldDefn('NAME', ogr.OFTString); f.SetWidth(16); l.CreateField(f)\n"
                   "for n, w in [('first', 'MULTILINESTRING ((0 0,1 0,2 0),(10 10,11 11))'),\n"
                   "             ('second', 'LINESTRING (5 5,6 6)')]:\n"
                   "  ft = ogr.Feature(l.GetLayerDefn()); ft.SetField('NAME', n)\n"
                   "  ft.SetGeometry(ogr.CreateGeometryFromWkt(w)); l.CreateFeature(ft)\n"
                   "ds = None\n";
  test::WriteFile(dir + "make.py", py);
  int status = -1;
  test::RunCmd("/usr/bin/python3 '" + dir + "make.py' 2>&1", &status);
  EXPECT_EQ(status, 0);
  return path;
}

void Exec(Session& s, const std::string& line) {
  ArgStrSplit(s, line);
  ArgStrExecute(s);
}

std::string Info(const std::string& path) {
  return test::RunCmd("ogrinfo -ro -al '" + path + "' 2>&1");
}

struct CmdLayers : ::testing::Test {
  test::RecordingHost host;
  Session s{host};
  std::string dir = test::TempDir("cmd layers");
  std::string path;

  void SetUp() override {
    path = MakeLines(dir, "lines.shp");
    Exec(s, "OPEN LAYER '" + path + "'");
    if (s.LyrCount != 1) GTEST_SKIP() << "the layer stores are not built in";
    host.logged.clear();
  }
  const ShpPart& Part(int rec, int part) { return s.Lyr[1].Shp.ShpRecs[size_t(rec)].Part(part); }
  std::string Cell(int row) {
    ReadDbfRec(s, 1, row);
    return Trim(GetFieldValue(s, 1, 1));
  }
};

} // namespace

TEST_F(CmdLayers, RecordCommandsChangeTheGeometry) {
  const std::string q = "'" + path + "'";
  Exec(s, "Delete Feature " + q + " 2");
  EXPECT_TRUE(IsDeleted(s, 1, 2));
  Exec(s, "UNDelete Feature " + q + " 2");
  EXPECT_FALSE(IsDeleted(s, 1, 2));

  Exec(s, "Insert Vertex " + q + " 1 0 1 0.5 0.25");
  ASSERT_EQ(Part(1, 0).Size(), 4u);
  EXPECT_EQ(Part(1, 0).PartPoints()[1].X, 0.5);
  Exec(s, "Delete Vertex " + q + " 1 0 1");
  ASSERT_EQ(Part(1, 0).Size(), 3u);
  EXPECT_EQ(Part(1, 0).PartPoints()[1].X, 1);

  Exec(s, "Invert Part " + q + " 1 0");
  EXPECT_EQ(Part(1, 0).PartPoints()[0].X, 2);
  Exec(s, "SendPart Front " + q + " 1 0");
  EXPECT_EQ(Part(1, 1).PartPoints()[0].X, 2); // the first part is now drawn last
  Exec(s, "SendPart Back " + q + " 1 1");
  EXPECT_EQ(Part(1, 0).PartPoints()[0].X, 2);

  Exec(s, "Delete Part " + q + " 1 1");
  EXPECT_EQ(Part(1, 1).PartCount, 0);
  Exec(s, "UnDelete Part " + q + " 1 1");
  EXPECT_EQ(Part(1, 1).PartCount, 2);
  EXPECT_TRUE(host.logged.empty()); // the command language itself says nothing
}

TEST_F(CmdLayers, NumbersOutsideTheLayerDoNothing) {
  const std::string q = "'" + path + "'";
  for (const char* tail : {" 3", " 0", " -2"}) Exec(s, "Delete Feature " + q + tail);
  Exec(s, "Delete Part " + q + " 1 7");
  Exec(s, "Delete Part " + q + " 1 -1");
  Exec(s, "Insert Vertex " + q + " 1 0 9 1 1");
  Exec(s, "Delete Vertex " + q + " 2 0 2");
  Exec(s, "Add Vertex " + q + " 2 3 1 1");
  Exec(s, "Invert Part " + q + " 2 1");
  EXPECT_FALSE(IsDeleted(s, 1, 1));
  EXPECT_FALSE(IsDeleted(s, 1, 2));
  EXPECT_EQ(Part(1, 0).Size(), 3u);
  EXPECT_EQ(Part(2, 0).Size(), 2u);
  EXPECT_FALSE(s.Lyr[1].Shp.ShpChanged);
  EXPECT_TRUE(host.logged.empty());
}

TEST_F(CmdLayers, AddFeatureSetDataAndSaveAs) {
  const std::string q = "'" + path + "'";
  Exec(s, "ADD FEATURE " + q + " 0 100 200 NAME=new NOFIELD=1 BAD");
  Exec(s, "ADD VERTEX " + q + " 3 0 101 201");
  ASSERT_EQ(s.Lyr[1].Shp.RecCount, 3);
  EXPECT_EQ(Part(3, 0).Size(), 2u);
  EXPECT_EQ(Cell(2), "new");
  EXPECT_EQ(Cell(0), "first"); // the unknown field wrote nothing into the flag byte or a cell
  EXPECT_EQ(RightExtend(s.Lyr[1]), 101); // the extent follows the new feature

  Exec(s, "SET DATA " + q + " 1 'NAME=the first'");
  EXPECT_EQ(Cell(0), "the first");

  std::string copy = dir + "copy of lines.shp";
  Exec(s, "SAVE LAYER " + q + " AS '" + copy + "'");
  EXPECT_EQ(s.Lyr[1].Fsource, copy);
  std::string info = Info(copy);
  EXPECT_NE(info.find("Feature Count: 3"), std::string::npos) << info;
  EXPECT_NE(info.find("NAME (String) = the first"), std::string::npos) << info;
  EXPECT_NE(info.find("LINESTRING (100 200,101 201)"), std::string::npos) << info;
}

TEST_F(CmdLayers, ExitSavesAndRemovesTheNamedLayer) {
  std::string other = MakeLines(dir, "other.shp");
  Exec(s, "OPEN LAYER '" + other + "'");
  ASSERT_EQ(s.LyrCount, 2);
  Exec(s, "Delete Feature '" + path + "' 2 EXIT");
  ASSERT_EQ(s.LyrCount, 1);
  EXPECT_EQ(s.Lyr[1].Fsource, other);
  // Saved: the deleted feature keeps its number as a null shape.
  std::string info = Info(path);
  EXPECT_NE(info.find("MULTILINESTRING"), std::string::npos) << info;
  EXPECT_EQ(info.find("LINESTRING (5 5,6 6)"), std::string::npos) << info;
}

TEST_F(CmdLayers, SetDataWithExitRunsTheTailTwice) {
  std::string other = MakeLines(dir, "other.shp");
  Exec(s, "OPEN LAYER '" + other + "'");
  // The first round saves and removes lines.shp; the second acts on the layer that moved
  // into its place.
  Exec(s, "SET DATA '" + path + "' 2 NAME=changed EXIT");
  EXPECT_EQ(s.LyrCount, 0);
  EXPECT_NE(Info(path).find("NAME (String) = changed"), std::string::npos);
}

TEST_F(CmdLayers, RunTimeErrorsAreCaught) {
  struct ThrowingHost : test::RecordingHost {
    MsgAnswer MsgBox(const std::string&, const std::string&, MsgButtons, MsgAnswer) override {
      throw std::runtime_error("box");
    }
  } throwing;
  s.host = &throwing;
  s.ProjChanged = -1; // closing the project asks first
  Exec(s, "OPEN PROJECT /nonexistent/p.qmt");
  ASSERT_EQ(throwing.logged.size(), 1u);
  EXPECT_EQ(throwing.logged[0], " *** Error in ArgStrExecute ***");
  s.host = &host;
}

TEST_F(CmdLayers, AListMakesAndFillsALayer) {
  std::string made = dir + "made.shp";
  std::string lst = dir + "make.lst";
  test::WriteFile(lst, "MAKE LAYER '" + made +
                           "' AS POLYGON\r\n"
                           "OPEN LAYER '" +
                           made +
                           "'\r\n"
                           "ADD FIELD '" +
                           made +
                           "' Kind C 8 0\r\n"
                           "ADD FEATURE '" +
                           made +
                           "' 0 0 0 KIND=box\r\n"
                           "ADD VERTEX '" +
                           made +
                           "' 1 0 0 1\r\n"
                           "ADD VERTEX '" +
                           made +
                           "' 1 0 1 1\r\n"
                           "ADD VERTEX '" +
                           made +
                           "' 1 0 0 0\r\n"
                           "SAVE LAYER '" +
                           made +
                           "' exit\r\n"
                           "DELETE FEATURE '" +
                           made + "' 1\r\n");
  RunLstFile(s, lst);
  EXPECT_EQ(s.LyrCount, 1); // added, then saved and removed by the exit line
  std::string info = Info(made);
  EXPECT_NE(info.find("Kind (String) = box"), std::string::npos) << info;
  EXPECT_NE(info.find("POLYGON ((0 0,0 1,1 1,0 0))"), std::string::npos) << info;
}

TEST_F(CmdLayers, MakeLayerRefusesAnUnknownKindAndTheFilesOfAnOpenLayer) {
  Exec(s, "MAKE LAYER '" + dir + "new.shp' AS POLYLINEZ");
  ASSERT_EQ(host.logged.size(), 2u);
  EXPECT_EQ(host.logged[0], " *** Make New Layer " + dir + "new.shp has been canceled *** ");
  EXPECT_EQ(host.logged[1], "The kind is one of POINT, POINTM, POINTMZ, POLYLINE, POLYLINEM, "
                            "POLYLINEMZ, POLYGON, POLYGONM, POLYGONMZ, MULTIPOINTS, "
                            "MULTIPOINTSM, MULTIPOINTSMZ");
  EXPECT_FALSE(FileExists(dir + "new.shp"));

  // The open layer's files, named by their .shp in another case or by a companion.
  const std::string base = path.substr(0, path.size() - 4);
  std::string before;
  for (const char* ext : {".shp", ".shx", ".dbf"}) before += test::ReadFile(base + ext);
  host.logged.clear();
  Exec(s, "MAKE LAYER '" + dir + "LINES.SHP' AS POLYGON");
  Exec(s, "MAKE LAYER '" + base + ".dbf'");
  ASSERT_EQ(host.logged.size(), 4u);
  EXPECT_EQ(host.logged[0],
            " *** Make New POLYGON Layer " + dir + "LINES.SHP has been canceled *** ");
  EXPECT_EQ(host.logged[1], "Layer lines.shp is open on these files");
  EXPECT_EQ(host.logged[2], " *** Make New POINT Layer " + base + ".shp has been canceled *** ");
  std::string after;
  for (const char* ext : {".shp", ".shx", ".dbf"}) after += test::ReadFile(base + ext);
  EXPECT_EQ(after, before);
  EXPECT_EQ(s.Lyr[1].Shp.RecCount, 2);

  // Any case of a good kind word makes its layer.
  host.logged.clear();
  Exec(s, "MAKE LAYER '" + dir + "fresh.shp' AS polylinemz");
  ASSERT_EQ(host.logged.size(), 1u);
  EXPECT_EQ(host.logged[0], "Make New POLYLINEMZ Layer " + dir + "fresh.shp");
  const std::string made = test::ReadFile(dir + "fresh.shp");
  ASSERT_GE(made.size(), 100u);
  EXPECT_EQ(made[32], 13); // PolyLineZ
}

TEST_F(CmdLayers, ANumberValCannotHoldIsTheRunTimeErrorAndNeverReachesTheFile) {
  const std::string q = "'" + path + "'";
  Exec(s, "ADD FEATURE " + q + " 0 1e400 5 NAME=inf EXIT");
  Exec(s, "Insert Vertex " + q + " 1 0 1 -1E400 0");
  Exec(s, "Delete Feature " + q + " 1D999");
  EXPECT_EQ(host.logged, std::vector<std::string>(3, " *** Error in ArgStrExecute ***"));
  ASSERT_EQ(s.LyrCount, 1); // the EXIT tail did not run
  EXPECT_EQ(s.Lyr[1].Shp.RecCount, 2);
  EXPECT_EQ(Part(1, 0).Size(), 3u);
  EXPECT_FALSE(IsDeleted(s, 1, 1));
  // A tiny number is 0, no error.
  host.logged.clear();
  Exec(s, "Insert Vertex " + q + " 1 0 1 1e-400 0");
  EXPECT_TRUE(host.logged.empty());
  EXPECT_EQ(Part(1, 0).Size(), 4u);
  Exec(s, "SAVE LAYER " + q);
  std::string info = Info(path);
  EXPECT_EQ(info.find("inf"), std::string::npos) << info;
  EXPECT_NE(info.find("(0 0,0 0,1 0,2 0)"), std::string::npos) << info;
}
