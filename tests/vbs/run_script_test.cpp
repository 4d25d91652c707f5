// Scripts over layers that GDAL made: RunScript, the QMTVBS members, the commands.
#include <gtest/gtest.h>

#include <cmath>

#include "frame/busy.h"
#include "model/file_util.h"
#include "session/commands.h"
#include "session/layer_life.h"
#include "store/dbf_store.h"
#include "table/run_script.h"
#include "table/script_host.h"
#include "test_support.h"

using namespace velmora;

namespace {

// Lines with NAME C 20, VAL N 10.2, CNT N 5.0 and DAY D, written by GDAL's Python bindings.
std::string MakeLayer(const std::string& dir, const std::string& extraField = "", int rows = 6) {
  std::string path = dir + "roads.shp";
  std::string py =
      "from osgeo import ogr\n"
      "ds = ogr.GetDriverByName('ESRI Shapefile').CreateDataSource('" +
      path +
      "')\n"
      "l = ds.CreateLayer('roads', geom_type=ogr.wkbLineString)\n"
      "f = ogr.FieldDefn('NAME', ogr.OFTString); f.SetWidth(20); l.CreateField(f)\n"
      "f = ogr.FieldDefn('VAL', ogr.OFTReal); f.SetWidth(10); f.SetPrecision(2); l.CreateField(f)\n"
      "f = ogr.FieldDefn('CNT', ogr.OFTInteger); f.SetWidth(5); l.CreateField(f)\n"
      "l.CreateField(ogr.FieldDefn('DAY', ogr.OFTDate))\n" +
      (extraField.empty() ? std::string()
                          : "l.CreateField(ogr.FieldDefn('" + extraField + "', ogr.OFTString))\n") +
      "names = ['Main Street', 'say \"hi\"', 'Elm', '', 'Oak Lane', 'x']\n"
      "for i in range(" +
      std::to_string(rows) +
      "):\n"
      "  ft = ogr.Feature(l.GetLayerDefn()); ft.SetField('NAME', names[i % 6])\n"
      "  ft.SetField('VAL', 1.25 + i * 7.5); ft.SetField('CNT', i * 3)\n"
      "  ft.SetField('DAY', '%04d-%02d-%02d' % (2020 + i, 1 + i, 10 + i))\n"
      "  ft.SetGeometry(ogr.CreateGeometryFromWkt('LINESTRING (%d 0, %d 3.5)' % (i + 10, i + "
      "10)))\n"
      "  l.CreateFeature(ft)\n"
      "ds = None\n";
  test::WriteFile(dir + "make.py", py);
  int status = -1;
  std::string out = test::RunCmd("/usr/bin/python3 " + dir + "make.py 2>&1", &status);
  EXPECT_EQ(status, 0) << out;
  return path;
}

struct Fixture {
  test::RecordingHost host;
  Session s{host};
  int Open(const std::string& path) {
    AddShape(s, path, false);
    EXPECT_GE(s.LyrCount, 1);
    return s.LyrCount;
  }
  std::string Cell(int lyr, int row, const std::string& field) {
    ReadDbfRec(s, lyr, row);
    return GetFieldValue(s, lyr, FindField(s, lyr, field));
  }
  bool LoggedCanceled() const {
    for (const std::string& m : host.logged)
      if (m.find("has been canceled") != std::string::npos) return true;
    return false;
  }
  void Cmd(const std::string& line) {
    ArgStrSplit(s, line);
    ArgStrExecute(s);
  }
};

// The literal algorithm: for every record one block of "Dim" and assignment lines in front
// of the whole script, executed anew in one engine, each variable read back by its name.
void RunComposed(Session& s, int lyr, const std::string& script) {
  SessionEngineHost eh(s, lyr);
  vbs::Interp in(&eh, s.Locale.DecimalSep);
  auto q = std::make_shared<QmtVbs>(s);
  in.AddObject("QMTVBS", q, true);
  int nf = s.Lyr[lyr].Dbf.DbfFieldCount;
  for (int rec = 1; rec <= s.Lyr[lyr].Dbf.DbfRecCount; ++rec) {
    ReadDbfRec(s, lyr, rec - 1);
    std::string block =
        "SetLayerNo " + std::to_string(lyr) + "\r\nSetRecNo " + std::to_string(rec) + "\r\n";
    for (int f = 1; f <= nf; ++f) {
      std::string name = GetFieldName(s, lyr, f);
      std::string lit = ScriptLiteral(s, lyr, f);
      if (lit.empty()) lit = "Empty"; // an empty number cell: the block would not compile
      block += "Dim " + name + "\r\n" + name + " = " + lit + "\r\n";
    }
    block += script + "\r\n";
    ASSERT_TRUE(in.ExecuteStatement(block)) << in.LastError().Description;
    for (int f = 1; f <= nf; ++f) {
      vbs::Value v;
      ASSERT_TRUE(in.Eval(GetFieldName(s, lyr, f), v));
      SetFieldValue(s, lyr, f, ScriptCellText(s, lyr, f, v, in.Cv()));
    }
    WriteDbfRecSwap(s, lyr, rec - 1);
  }
}

} // namespace

TEST(RunScript, ChangesRowsThroughTheirFieldVariables) {
  std::string dir = test::TempDir("vbs_rows");
  Fixture fx;
  int lyr = fx.Open(MakeLayer(dir));
  fx.s.Lyr[lyr].VBScripttext =
      "If VAL > 10 Then NAME = UCase(NAME)\nCNT = CNT + 1\nVAL = VAL * 2\n";
  ASSERT_TRUE(RunScript(fx.s, lyr, 0, 0, false));
  EXPECT_EQ(fx.s.Lyr[lyr].LyrBusy, 0);
  EXPECT_NE(fx.s.Lyr[lyr].Dbf.DbfChanged, 0);
  EXPECT_EQ(Trim(fx.Cell(lyr, 0, "NAME")), "Main Street");
  EXPECT_EQ(Trim(fx.Cell(lyr, 0, "VAL")), "2.5");
  EXPECT_EQ(Trim(fx.Cell(lyr, 0, "CNT")), "1");
  EXPECT_EQ(Trim(fx.Cell(lyr, 2, "NAME")), "ELM");
  EXPECT_EQ(Trim(fx.Cell(lyr, 2, "VAL")), "32.5");
  EXPECT_EQ(Trim(fx.Cell(lyr, 5, "CNT")), "16");
}

TEST(RunScript, ParsedOnceGivesWhatTheComposedBlocksGive) {
  const std::string script = "Dim k\nk = k + 1\n"
                             "If Len(NAME) > 3 Then\n  NAME = Left(NAME, 3) & k\nElse\n  NAME = "
                             "NAME & \"-\" & CNT\nEnd If\n"
                             "VAL = Round(VAL / 3, 2) + Length(0)\nCNT = CNT Mod 4 + GetRecNo\n"
                             "DAY = DateAdd(\"m\", 1, DAY)\n";
  Fixture a, b;
  int la = a.Open(MakeLayer(test::TempDir("vbs_once_a")));
  int lb = b.Open(MakeLayer(test::TempDir("vbs_once_b")));
  a.s.Lyr[la].VBScripttext = script;
  ASSERT_TRUE(RunScript(a.s, la, 0, 0, false));
  RunComposed(b.s, lb, script);
  ASSERT_EQ(a.s.Lyr[la].Dbf.DbfRecCount, b.s.Lyr[lb].Dbf.DbfRecCount);
  for (int row = 0; row < a.s.Lyr[la].Dbf.DbfRecCount; ++row) {
    ReadDbfRec(a.s, la, row);
    ReadDbfRec(b.s, lb, row);
    EXPECT_EQ(GetRowText(a.s, la), GetRowText(b.s, lb)) << "row " << row;
  }
  EXPECT_EQ(Trim(a.Cell(la, 0, "NAME")), "Mai1");
  EXPECT_EQ(Trim(a.Cell(la, 0, "DAY")), Trim(b.Cell(lb, 0, "DAY")));
}

TEST(RunScript, AReadingScriptLeavesTheTableUnchanged) {
  Fixture fx;
  int lyr = fx.Open(MakeLayer(test::TempDir("vbs_read")));
  fx.s.Lyr[lyr].VBScripttext =
      "t = t & NAME & VAL & CNT & DAY\nNAME = NAME\nVAL = VAL\nDAY = DAY\n";
  ASSERT_TRUE(RunScript(fx.s, lyr, 0, 0, false));
  EXPECT_EQ(fx.s.Lyr[lyr].Dbf.DbfChanged, 0);
  EXPECT_EQ(fx.Cell(lyr, 1, "NAME").substr(0, 8), "say \"hi\"");
}

TEST(RunScript, AQuoteInATextCellSurvives) {
  Fixture fx;
  int lyr = fx.Open(MakeLayer(test::TempDir("vbs_quote")));
  fx.s.Lyr[lyr].VBScripttext = "CNT = 99\nIf InStr(NAME, \"\"\"\") > 0 Then VAL = 1\n";
  ASSERT_TRUE(RunScript(fx.s, lyr, 0, 0, false));
  EXPECT_EQ(Trim(fx.Cell(lyr, 1, "NAME")), "say \"hi\"");
  EXPECT_EQ(Trim(fx.Cell(lyr, 1, "VAL")), "1");
  EXPECT_EQ(Trim(fx.Cell(lyr, 1, "CNT")), "99");
}

TEST(RunScript, LengthIsAWholeNumber) {
  Fixture fx;
  int lyr = fx.Open(MakeLayer(test::TempDir("vbs_len")));
  fx.s.Lyr[lyr].VBScripttext = "NAME = TypeName(Length(0))\nCNT = Length(0)\n";
  ASSERT_TRUE(RunScript(fx.s, lyr, 0, 0, false));
  EXPECT_EQ(Trim(fx.Cell(lyr, 0, "NAME")), "Long");
  EXPECT_EQ(Trim(fx.Cell(lyr, 0, "CNT")), "4"); // 3.5 rounded
}

TEST(RunScript, AFieldNamedLikeAKeywordEndsTheRunAtDim) {
  Fixture fx;
  int lyr = fx.Open(MakeLayer(test::TempDir("vbs_kw"), "Next"));
  fx.s.Lyr[lyr].VBScripttext = "CNT = 5\n";
  EXPECT_FALSE(RunScript(fx.s, lyr, 0, 0, false));
  EXPECT_TRUE(fx.LoggedCanceled());
  EXPECT_EQ(fx.s.Lyr[lyr].LyrBusy, 0);
  EXPECT_EQ(fx.s.Lyr[lyr].Dbf.DbfChanged, 0);
}

TEST(RunScript, AScriptErrorEndsTheRunUnlockedWithItsMessage) {
  Fixture fx;
  int lyr = fx.Open(MakeLayer(test::TempDir("vbs_err")));
  fx.s.Lyr[lyr].VBScripttext = "CNT = 7\nIf GetRecNo = 3 Then x = 1 / 0\n";
  EXPECT_FALSE(RunScript(fx.s, lyr, 0, 0, false));
  EXPECT_EQ(fx.s.Lyr[lyr].LyrBusy, 0);
  bool found = false;
  for (const std::string& m : fx.host.logged)
    if (m.find("Division by zero (line 2)") != std::string::npos) found = true;
  EXPECT_TRUE(found);
  EXPECT_EQ(Trim(fx.Cell(lyr, 1, "CNT")), "7"); // rows before the error keep their change
  EXPECT_EQ(Trim(fx.Cell(lyr, 3, "CNT")), "9");
  // a syntax error: nothing runs
  fx.s.Lyr[lyr].VBScripttext = "CNT = 1\nIf CNT Then\n";
  EXPECT_FALSE(RunScript(fx.s, lyr, 0, 0, false));
  EXPECT_EQ(Trim(fx.Cell(lyr, 4, "CNT")), "12");
}

namespace {
// Terminates the layer after a number of yields, as a press of "Terminate" would.
struct TerminatingHost : test::RecordingHost {
  Session* s = nullptr;
  int after = 2;
  void Yield() override {
    if (s && --after == 0) SetLyrTerminate(*s, 1, true);
  }
};
} // namespace

TEST(RunScript, ACancelLeavesEarlierRowsChanged) {
  TerminatingHost host;
  Session s(host);
  host.s = &s;
  AddShape(s, MakeLayer(test::TempDir("vbs_cancel")), false);
  ASSERT_EQ(s.LyrCount, 1);
  s.Lyr[1].VBScripttext = "CNT = 500\n";
  RunScript(s, 1, 0, 0, false);
  EXPECT_EQ(s.Lyr[1].LyrBusy, 0);
  ReadDbfRec(s, 1, 0);
  EXPECT_EQ(Trim(GetFieldValue(s, 1, FindField(s, 1, "CNT"))), "500");
  ReadDbfRec(s, 1, 5);
  EXPECT_EQ(Trim(GetFieldValue(s, 1, FindField(s, 1, "CNT"))), "15");
}

TEST(RunScript, AnEndlessScriptStopsAtTerminate) {
  TerminatingHost host;
  Session s(host);
  host.s = &s;
  host.after = 3;
  AddShape(s, MakeLayer(test::TempDir("vbs_forever")), false);
  s.Lyr[1].VBScripttext = "Do\n n = n + 1\nLoop\n";
  EXPECT_FALSE(RunScript(s, 1, 0, 0, false));
  EXPECT_EQ(s.Lyr[1].LyrBusy, 0);
}

TEST(RunScript, MoveToMinXPutsTheLeftEdgeAtTheValue) {
  Fixture fx;
  int lyr = fx.Open(MakeLayer(test::TempDir("vbs_move")));
  fx.s.Lyr[lyr].VBScripttext = "If GetRecNo = 2 Then MoveToMinX 0, 0, 0\nVAL = GetMinX(0, 0)\n";
  ASSERT_TRUE(RunScript(fx.s, lyr, 0, 0, false));
  EXPECT_DOUBLE_EQ(fx.s.Lyr[lyr].Shp.ShpRecs[2].Xmin, 0.0);
  EXPECT_EQ(Trim(fx.Cell(lyr, 1, "VAL")), "0");
  EXPECT_EQ(Trim(fx.Cell(lyr, 2, "VAL")), "12");
}

TEST(RunScript, MembersReachRecordsGeometryAndSelection) {
  Fixture fx;
  int lyr = fx.Open(MakeLayer(test::TempDir("vbs_members")));
  fx.s.Lyr[lyr].VBScripttext = "NAME = LayerName(0) & \"|\" & RecordsCount(0) & \"|\" & "
                               "PartsCount(0, 0) & \"|\" & VertexesCount(0, 0, 0)\n"
                               "VAL = GetVertexY(1, 0, 0, 0) + GetVertexX(9, 0, 0, 0)\n"
                               "If GetRecNo Mod 2 = 0 Then SelectIt 0, 0\n"
                               "If GetRecNo = 1 Then CNT = Len(GetFieldValue(\" NAME \", 2, 0))\n";
  int before = fx.s.Lyr[lyr].SelCount;
  ASSERT_TRUE(RunScript(fx.s, lyr, 0, 0, false));
  EXPECT_EQ(Trim(fx.Cell(lyr, 0, "NAME")), "roads.shp|6|1|2");
  EXPECT_EQ(Trim(fx.Cell(lyr, 0, "VAL")), "3.5");
  EXPECT_EQ(Trim(fx.Cell(lyr, 0, "CNT")), "20"); // the whole cell of record 2
  EXPECT_EQ(fx.s.Lyr[lyr].SelCount, before + 3) << before;
  // RUN SCRIPT over the selected records only
  fx.s.Lyr[lyr].VBScripttext = "CNT = 1000\n";
  fx.Cmd("RUN SCRIPT \"" + fx.s.Lyr[lyr].Fsource + "\" SELECTED");
  EXPECT_EQ(Trim(fx.Cell(lyr, 1, "CNT")), "1000");
  EXPECT_EQ(Trim(fx.Cell(lyr, 2, "CNT")), "6");
  EXPECT_EQ(Trim(fx.Cell(lyr, 0, "CNT")), "20");
  // and over a range
  fx.s.Lyr[lyr].VBScripttext = "CNT = 7\n";
  fx.Cmd("RUN SCRIPT \"" + fx.s.Lyr[lyr].Fsource + "\" 5 3");
  EXPECT_EQ(Trim(fx.Cell(lyr, 1, "CNT")), "1000");
  EXPECT_EQ(Trim(fx.Cell(lyr, 2, "CNT")), "7");
  EXPECT_EQ(Trim(fx.Cell(lyr, 4, "CNT")), "7");
  EXPECT_EQ(Trim(fx.Cell(lyr, 5, "CNT")), "1000");
}

TEST(RunScript, SetScriptTakesTheScriptFromAFile) {
  std::string dir = test::TempDir("vbs_file");
  Fixture fx;
  int lyr = fx.Open(MakeLayer(dir));
  test::WriteFile(dir + "s.vbs", "\r\n  CNT = CNT * 10  \r\n\r\n");
  fx.Cmd("SET SCRIPT \"" + fx.s.Lyr[lyr].Fsource + "\" \"" + dir + "s.vbs\"");
  EXPECT_EQ(fx.s.Lyr[lyr].VBScriptSRC, 1);
  EXPECT_EQ(LoadLyrScript(fx.s, lyr), "CNT = CNT * 10\r\n");
  fx.Cmd("RUN SCRIPT \"" + fx.s.Lyr[lyr].Fsource + "\"");
  EXPECT_EQ(Trim(fx.Cell(lyr, 5, "CNT")), "150");
}

namespace {
struct FetchHost : test::RecordingHost {
  bool ok = true;
  std::string served = "CNT = 42";
  bool FetchText(const std::string& url, std::string& text) override {
    if (!ok || url != "http://example.test/s.vbs") return false;
    text = served;
    return true;
  }
};
} // namespace

TEST(RunScript, AnAddressIsFetchedAndKeptForWhenItFails) {
  FetchHost host;
  Session s(host);
  AddShape(s, MakeLayer(test::TempDir("vbs_url")), false);
  s.Lyr[1].VBScriptSRC = 1;
  s.Lyr[1].VBScriptFile = "http://example.test/s.vbs";
  EXPECT_EQ(LoadLyrScript(s, 1), "CNT = 42\r\n");
  EXPECT_EQ(s.Lyr[1].VBScriptDownload, "CNT = 42");
  host.ok = false;
  EXPECT_EQ(LoadLyrScript(s, 1), "CNT = 42\r\n");
}

TEST(ScriptHost, AngleTextsAndTheJavaScriptWriter) {
  EXPECT_EQ(DegreesText(7.5), "07");
  EXPECT_EQ(MinutesText(7.5), "30");
  EXPECT_NEAR(SecondsOf(7.5125), 45.0, 1e-9);
  EXPECT_EQ(EncryptStr(""), "");
  EXPECT_EQ(EncryptStr("Ab"), "eval(unescape(\"\\x41\\x62\")) ;");
}

TEST(RunScript, NumbersCrossWithTheSessionsDecimalSeparator) {
  Fixture fx;
  fx.s.Locale.DecimalSep = ',';
  int lyr = fx.Open(MakeLayer(test::TempDir("vbs_comma")));
  fx.s.Lyr[lyr].VBScripttext = "VAL = VAL * 2\nNAME = CStr(VAL) & \"|\" & TypeName(VAL) & \"|\" & "
                               "GetFieldValue(\"NOPE\", 0, 0) & \"|\" & EOF(0)\n";
  ASSERT_TRUE(RunScript(fx.s, lyr, 0, 0, false));
  EXPECT_EQ(Trim(fx.Cell(lyr, 0, "NAME")), "2,5|Double||False");
  EXPECT_EQ(Trim(fx.Cell(lyr, 0, "VAL")), "2,5");
  fx.s.Locale.DecimalSep = '.';
  EXPECT_EQ(Trim(fx.Cell(lyr, 0, "VAL")), "2.5"); // the file holds a point
}
