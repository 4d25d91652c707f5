// Project files composed byte by byte, one for each step of the layout, read back.
#include <gtest/gtest.h>

#include <fstream>

#include "model/datum_types.h"
#include "model/file_util.h"
#include "project_bytes.h"
#include "session/layer_life.h"
#include "session/project.h"
#include "test_support.h"

using namespace velmora;
using namespace velmora::test;

namespace {

// A point layer by GDAL: two points far outside degrees, so the extent says metres.
std::string PointLayer(const std::string& dir, const std::string& name) {
  return GdalLayer(dir, name, {"POINT (500000 4000000)", "POINT (500100 4000100)"});
}

struct ProjectRead : ::testing::Test {
  RecordingHost host;
  Session s{host};
  std::string dir = TempDir("proj read");
  void SetUp() override { s.MapView.ViewW = 400, s.MapView.ViewH = 300; }
  std::string Write(const std::string& name, const Bytes& b) {
    WriteFile(dir + name, b.b);
    return dir + name;
  }
  std::string LastLog() const { return host.logged.empty() ? "" : host.logged.back(); }
  void ExpectEmpty() {
    EXPECT_EQ(s.LyrErr, 1);
    EXPECT_EQ(s.LyrCount, 0);
    EXPECT_EQ(s.Lyr.Count(), 0);
    EXPECT_EQ(s.ProjFile, "");
  }
};

} // namespace

TEST_F(ProjectRead, Version117HasNoMapBytesAndTheFirstLayerSetsTheUnits) {
  std::string shp = PointLayer(dir, "pts");
  Bytes b = ProjHead(1.17, 1, 500000, 4000100, 500100, 4000000);
  RowSpec r;
  r.path = shp;
  ProjRow(b, 1.17, r);
  std::string p = Write("old.qmt", b);
  ReadProject(s, p);
  ASSERT_EQ(s.LyrErr, 0) << LastLog();
  ASSERT_EQ(s.LyrCount, 1);
  EXPECT_EQ(s.MapUnit, 1) << "below 1.18 the extent of the first layer decides";
  EXPECT_EQ(s.MapZone, 1) << "no map bytes: the units stay as MapInit left them";
  const LyrRec& l = s.Lyr[1];
  EXPECT_EQ(l.LyrKind, 1);
  EXPECT_EQ(l.LyrName, "Roads layer") << "the stored name, not the file's";
  EXPECT_EQ(l.CFName, 0);
  EXPECT_EQ(l.CFCount, 0);
  ASSERT_EQ(l.CFieldValues.size(), 1u);
  EXPECT_EQ(l.CDrawWidth[0], 1) << "the stored symbology wins over a point layer's default";
  // No label colour before 3.91: the colour of class 0.
  EXPECT_EQ(l.LColor, PackRGB(10, 20, 30));
  EXPECT_EQ(l.LFontForceSize, 0);
  EXPECT_EQ(l.LRefereMapScale, 0);
  EXPECT_EQ(l.LScaleLMT[1], 5000) << "the items after the missing ones are in step";
  EXPECT_EQ(LastLog(), "Open Project  " + p + "   ->    Version : 1.170");
}

TEST_F(ProjectRead, OneMapByteUpTo36AndEightAbove) {
  for (double v : {1.171, 3.6, 3.61}) {
    std::string shp = PointLayer(dir, "a");
    Bytes b = ProjHead(v, 1, 0, 10, 10, 0, {1, 5, 36, 1, 0, 7, 2, 1});
    RowSpec r;
    r.path = shp;
    ProjRow(b, v, r);
    ReadProject(s, Write("m.qmt", b));
    ASSERT_EQ(s.LyrErr, 0) << v << " " << LastLog();
    EXPECT_EQ(s.MapUnit, 1) << v;
    if (v > 3.6) {
      EXPECT_EQ(s.MapCoordsIdx, 5);
      EXPECT_EQ(s.MapZone, 36);
      EXPECT_EQ(s.MapSouth, 1);
      EXPECT_EQ(s.MeasUnit, 0);
      EXPECT_EQ(s.MeasCoordsIdx, 7);
      EXPECT_EQ(s.MeasZone, 2);
      EXPECT_EQ(s.MeasSouth, 1);
    } else {
      EXPECT_EQ(s.MapZone, 1) << v;
      EXPECT_EQ(s.MeasCoordsIdx, 23) << v;
    }
    EXPECT_EQ(s.Lyr[1].VBScriptFile, "http://example.org/s.vbs") << v;
  }
}

TEST_F(ProjectRead, ThematicClassesFrom39LabelColourFrom391FittingFrom40) {
  struct Step {
    double v;
    int cfCount;
    bool labelColour, fit;
  };
  for (Step st :
       {Step{3.8, 0, false, false}, Step{3.9, 2, false, false}, Step{3.91, 2, true, false},
        Step{4.0, 2, true, true}, Step{16.007, 2, true, true}}) {
    SCOPED_TRACE(st.v);
    std::string shp = PointLayer(dir, "t");
    Bytes b = ProjHead(st.v, 1, 0, 10, 10, 0);
    RowSpec r;
    r.path = shp;
    r.classValues = {"", "Main", "Side"};
    ProjRow(b, st.v, r);
    ReadProject(s, Write("t.qmt", b));
    ASSERT_EQ(s.LyrErr, 0) << LastLog();
    const LyrRec& l = s.Lyr[1];
    EXPECT_EQ(l.CFCount, st.cfCount);
    EXPECT_EQ(l.CFName, st.cfCount ? 3 : 0);
    ASSERT_EQ(l.CForeColor.size(), size_t(st.cfCount) + 1);
    if (st.cfCount) {
      EXPECT_EQ(l.CFieldValues[2], "Side");
      EXPECT_EQ(l.CForeColor[2], PackRGB(12, 20, 30));
      EXPECT_EQ(l.CDrawWidth[2], 3);
    }
    EXPECT_EQ(l.LColor, st.labelColour ? PackRGB(60, 61, 62) : PackRGB(10, 20, 30));
    EXPECT_EQ(l.LRGB.G, st.labelColour ? 61 : 20);
    EXPECT_EQ(l.LFontForceSize, st.fit ? 1 : 0);
    EXPECT_EQ(l.LSetRefereMapScale, st.fit ? 1 : 0);
    EXPECT_EQ(l.LRefereMapScale, st.fit ? 25000 : 0);
    // The fixed items of the row, all in their places.
    EXPECT_EQ(l.SForeColor, PackRGB(40, 41, 42));
    EXPECT_EQ(l.SDrawStyle, 1);
    EXPECT_EQ(l.SFillStyle, 3);
    EXPECT_EQ(l.EFillColor, PackRGB(53, 54, 55));
    EXPECT_EQ(l.EDrawStyle, 2);
    EXPECT_EQ(l.EVertexWidth, 7) << "the edit pen stores the vertex width before the width";
    EXPECT_EQ(l.EDrawWidth, 3);
    EXPECT_EQ(l.EFillStyle, 4);
    EXPECT_EQ(l.LfontName, "Arial");
    EXPECT_EQ(l.LFontSize, 12);
    EXPECT_EQ(l.NfactorField, 4);
    EXPECT_EQ(l.NFillColor, PackRGB(73, 74, 75));
    EXPECT_EQ(l.NDrawWidth, 5);
    EXPECT_EQ(l.HFName, 5);
    EXPECT_EQ(l.HswName, "viewer");
    EXPECT_EQ(l.HtFixed, 30);
    EXPECT_EQ(l.HtFName, 6);
    EXPECT_EQ(l.HtSource, 1);
    EXPECT_EQ(l.HtScaleLMT[1], 0);
    EXPECT_EQ(l.SavedExtent[2], 100.0f);
    EXPECT_EQ(l.VBScriptSRC, 2);
    EXPECT_EQ(l.VBScripttext, "x = 1");
    EXPECT_EQ(l.VBFuncListOpt, 0);
    EXPECT_EQ(l.ProTab, 1);
  }
}

TEST_F(ProjectRead, SelectionBytesFollowTheHalfEvenRoundingAndTheSelectionSurvivesTheOpen) {
  // (5 + 7) / 8 = 1.5 rounds to 2: three bytes. (13 + 7) / 8 = 2.5 rounds to 2: three.
  // (0 + 7) / 8 = 0.875 rounds to 1: two.
  for (int32_t count : {5, 13, 0}) {
    SCOPED_TRACE(count);
    std::string shp = PointLayer(dir, "sel");
    Bytes b = ProjHead(16.007, 2, 0, 10, 10, 0);
    RowSpec r;
    r.path = shp;
    r.selCount = count;
    r.sel = count == 0 ? std::vector<uint8_t>{0x04, 0} : std::vector<uint8_t>{0x04, 0, 0};
    ProjRow(b, 16.007, r);
    r.name = "second";
    ProjRow(b, 16.007, r);
    ReadProject(s, Write("sel.qmt", b));
    ASSERT_EQ(s.LyrErr, 0) << LastLog();
    ASSERT_EQ(s.LyrCount, 2);
    EXPECT_EQ(s.Lyr[2].LyrName, "second");
    EXPECT_EQ(s.Lyr[2].VBScripttext, "x = 1");
    EXPECT_EQ(s.Lyr[1].SelBits.at(0), 0x04) << "record 2 stays selected";
    EXPECT_EQ(s.Lyr[1].SelCount, 2) << "the count of the open";
  }
}

TEST_F(ProjectRead, TailBlocksAreOptionalAndAddUserCoordinateRecords) {
  std::string shp = PointLayer(dir, "d");
  Bytes b = ProjHead(16.007, 1, 0, 10, 10, 0);
  RowSpec r;
  r.path = shp;
  ProjRow(b, 16.007, r);
  // Ends after its layers.
  ReadProject(s, Write("none.qmt", b));
  EXPECT_EQ(s.LyrErr, 0) << LastLog();
  EXPECT_EQ(s.DatumTbl.size(), size_t(kBuiltInDatums));

  Bytes first = b;
  ProjTail(first, false);
  ReadProject(s, Write("first.qmt", first));
  EXPECT_EQ(s.LyrErr, 0) << LastLog();
  ASSERT_EQ(s.DatumTbl.size(), size_t(kBuiltInDatums) + 1);
  EXPECT_EQ(s.DatumTbl[24].CrdName, "My Grid");
  EXPECT_EQ(s.DatumTbl[24].TransDX, 0);

  Bytes both = b;
  ProjTail(both);
  ReadProject(s, Write("both.qmt", both));
  ASSERT_EQ(s.LyrErr, 0) << LastLog();
  ASSERT_EQ(s.DatumTbl.size(), size_t(kBuiltInDatums) + 1) << "reopening doesn't pile records up";
  const DatumRec& d = s.DatumTbl[24];
  EXPECT_EQ(d.SphName, "My Spheroid");
  EXPECT_EQ(d.SMB, 6356752.314245);
  EXPECT_EQ(d.CM, 33.0);
  EXPECT_EQ(d.SF, 0.9996);
  EXPECT_EQ(d.FNorthS, d.FNorth);
  EXPECT_EQ(d.TransDZ, 300.0);
  EXPECT_EQ(d.TransRY, -2.5);
  EXPECT_EQ(d.TransScale, 3.25);
}

TEST_F(ProjectRead, StoredWindowIsFittedToThisScreen) {
  std::string shp = PointLayer(dir, "w");
  // A 200 by 100 window on a 400 by 300 view: the width limits, 0.5 a pixel.
  Bytes b = ProjHead(16.007, 1, 0, 100, 200, 0, {1, 0, 36, 0, 1, 23, 1, 0}, 1024, 768);
  RowSpec r;
  r.path = shp;
  ProjRow(b, 16.007, r);
  ReadProject(s, Write("w.qmt", b));
  ASSERT_EQ(s.LyrErr, 0);
  EXPECT_EQ(s.MapView.ViewW, 400) << "the stored view size is not this screen's";
  EXPECT_EQ(s.MapView.MapFactor, 0.5);
  EXPECT_EQ(s.MapView.MapLeft, 0);
  EXPECT_EQ(s.MapView.MapRight, 200);
  EXPECT_EQ(s.MapView.MapTop, 125);
  EXPECT_EQ(s.MapView.MapBottom, -25);
  EXPECT_EQ(s.ViewCount, 1);
  EXPECT_EQ(s.MapView.MapTool, 2);
  EXPECT_EQ(s.ActiveLyr, 1);
  EXPECT_EQ(s.ProjVersion, 16.007);
  EXPECT_EQ(s.ProjReserved[7], 0xA7);
  EXPECT_EQ(WindowCaption(s), "w.qmt : Velmora GIS");
}

TEST_F(ProjectRead, MissingLayerStaysClosedAndRelativePathsFollowTheProject) {
  std::string shp = PointLayer(dir, "here");
  Bytes b = ProjHead(16.007, 2, 0, 10, 10, 0);
  RowSpec r;
  r.path = "here.shp"; // beside the project
  ProjRow(b, 16.007, r);
  r.name = "gone";
  r.path = "/nonexistent/folder/gone.shp";
  ProjRow(b, 16.007, r);
  std::string p = Write("rel.qmt", b);
  ReadProject(s, p);
  ASSERT_EQ(s.LyrErr, 0) << LastLog();
  ASSERT_EQ(s.LyrCount, 2);
  EXPECT_EQ(s.Lyr[1].Fsource, dir + "here.shp");
  EXPECT_EQ(s.Lyr[1].LyrKind, 1);
  EXPECT_EQ(s.Lyr[2].LyrKind, 0);
  EXPECT_EQ(s.Lyr[2].LyrName, "gone");
  EXPECT_EQ(s.Lyr[2].Fsource, "/nonexistent/folder/gone.shp");
  EXPECT_EQ(s.Lyr[2].LfontName, "Arial");
}

TEST_F(ProjectRead, ALayoutReadOpensOnlyLayersThatShowInTheWindow) {
  std::string shp = PointLayer(dir, "lay");
  Bytes b = ProjHead(16.007, 3, 0, 10, 10, 0);
  RowSpec r;
  r.path = shp;
  ProjRow(b, 16.007, r); // extent 0 .. 100: overlaps
  r.visible = 0;
  ProjRow(b, 16.007, r); // hidden
  r.visible = 1;
  r.extent[0] = 500, r.extent[2] = 600; // beside the window
  ProjRow(b, 16.007, r);
  std::string p = Write("lay.qmt", b);
  s.MapView.MapTarget = 2;
  int w = 0, h = 0;
  double L = 0, T = 0, R = 0, B = 0;
  ReadLyrs(s, p, w, h, L, T, R, B);
  ASSERT_EQ(s.LyrErr, 0);
  EXPECT_EQ(w, 640);
  EXPECT_EQ(T, 10);
  EXPECT_EQ(s.Lyr[1].LyrKind, 1);
  EXPECT_EQ(s.Lyr[2].LyrKind, 0);
  EXPECT_EQ(s.Lyr[2].LoadSkipped, 1);
  EXPECT_EQ(s.Lyr[3].LoadSkipped, 1);
  // Flags keep items out of the caller's variables.
  w = -1, T = -1;
  ReadLyrs(s, p, w, h, L, T, R, B, kKeepViewW | kKeepTop);
  EXPECT_EQ(w, -1);
  EXPECT_EQ(T, -1);
  EXPECT_EQ(R, 10);
  CloseAllLyrs(s);
}

TEST_F(ProjectRead, BadFilesGiveTheirMessageAndAnEmptySession) {
  std::string shp = PointLayer(dir, "bad");
  Bytes good = ProjHead(16.007, 1, 0, 10, 10, 0);
  RowSpec r;
  r.path = shp;
  ProjRow(good, 16.007, r);

  // First a project that opens, so that each failure has a session to empty.
  auto openGood = [&] {
    ReadProject(s, Write("good.qmt", good));
    ASSERT_EQ(s.LyrCount, 1);
  };

  openGood();
  std::string old = Write("old.qmt", ProjHead(1.16, 1, 0, 1, 1, 0));
  ReadProject(s, old);
  EXPECT_EQ(LastLog(), "Can not open an Old Version Prject : " + old);
  ExpectEmpty();

  openGood();
  Bytes cut = good;
  cut.b.resize(cut.b.size() - 20);
  std::string p = Write("cut.qmt", cut);
  ReadProject(s, p);
  EXPECT_EQ(LastLog(), "Can not open Prject " + p + " : Input past end of file");
  ExpectEmpty();

  // A name of two thousand million characters in a file of two hundred bytes.
  openGood();
  Bytes huge = ProjHead(16.007, 1, 0, 10, 10, 0);
  huge.I32(0x7FFFFFF0).Str("x");
  p = Write("huge.qmt", huge);
  ReadProject(s, p);
  EXPECT_EQ(LastLog(), "Can not open Prject " + p + " : Input past end of file");
  ExpectEmpty();

  // Counts no file can hold: layers, classes, selection, coordinate records.
  for (int which = 0; which < 4; ++which) {
    SCOPED_TRACE(which);
    openGood();
    Bytes bad = ProjHead(16.007, which == 0 ? -3 : 1, 0, 10, 10, 0);
    RowSpec rr;
    rr.path = shp;
    if (which == 1) rr.classValues.clear(); // class count -1
    if (which == 2) rr.selCount = -100;
    ProjRow(bad, 16.007, rr);
    if (which == 3) bad.I32(1 << 30);
    p = Write("count.qmt", bad);
    ReadProject(s, p);
    EXPECT_EQ(LastLog().rfind("Can not open Prject " + p + " : ", 0), 0u) << LastLog();
    ExpectEmpty();
  }

  // An empty file is a truncated one; a missing file is no project at all.
  openGood();
  p = Write("empty.qmt", Bytes{});
  ReadProject(s, p);
  ExpectEmpty();
  size_t logged = host.logged.size();
  ReadProject(s, dir + "absent.qmt");
  EXPECT_EQ(host.logged.size(), logged);
}
