// velmora --script: the conformance table through the program, layers opened first, errors.
#include <gtest/gtest.h>

#include <filesystem>

#include "app_support.h"

using namespace velmora;
using test::Lines;
using test::Quote;
using test::Velmora;

TEST(ScriptApp, ConformanceTablePassesThroughTheProgram) {
  std::filesystem::path dir = std::filesystem::path(VELMORA_SOURCE_DIR) / "tests/vbs/conformance";
  for (auto& ent : std::filesystem::directory_iterator(dir)) {
    if (ent.path().extension() != ".vbs") continue;
    int st = -1;
    std::string out = Velmora("--script " + Quote(ent.path().string()), &st);
    EXPECT_EQ(st, 0) << ent.path().filename();
    std::vector<std::string> lines = Lines(out);
    ASSERT_FALSE(lines.empty()) << ent.path().filename();
    EXPECT_EQ(lines.back(), "done") << ent.path().filename();
    for (const std::string& l : lines)
      EXPECT_NE(l.rfind("FAIL", 0), 0u) << ent.path().filename() << ": " << l;
  }
}

TEST(ScriptApp, ErrorsGiveStatusOneAndTheirMessage) {
  std::string dir = test::TempDir("script_app_err");
  test::WriteFile(dir + "rt.vbs", "MsgBox \"before\"\nx = 1 / 0\nMsgBox \"after\"\n");
  test::WriteFile(dir + "syn.vbs", "MsgBox \"never\"\nIf Then\n");
  int st = -1;
  std::string out = Velmora("--script " + Quote(dir + "rt.vbs"), &st, true);
  EXPECT_EQ(st, 1);
  EXPECT_NE(out.find("before"), std::string::npos);
  EXPECT_EQ(out.find("after"), std::string::npos);
  EXPECT_NE(out.find("Division by zero (line 2)"), std::string::npos);
  out = Velmora("--script " + Quote(dir + "syn.vbs"), &st, true);
  EXPECT_EQ(st, 1);
  EXPECT_EQ(out.find("never"), std::string::npos);
  EXPECT_NE(out.find("compilation error"), std::string::npos);
  out = Velmora("--script " + Quote(dir + "missing.vbs"), &st, true);
  EXPECT_EQ(st, 1);
}

TEST(ScriptApp, LayersOfTheStartLineAreThereForTheScript) {
  std::string dir = test::TempDir("script_app_lyr");
  std::string shp = test::GdalLayer(dir, "pts", {"POINT (1 2)", "POINT (3 4)", "POINT (-5 6)"});
  ASSERT_FALSE(shp.empty());
  test::WriteFile(dir + "s.vbs", "MsgBox LayerName(1) & \" \" & RecordsCount(1)\n"
                                 "MsgBox GetMinX(3, 1) & \" \" & GetFieldValue(\"id\", 2, 1)\n"
                                 "MsgBox InputBox(\"Name?\", \"t\", \"dflt\")\n");
  int st = -1;
  std::string out = Velmora("--script " + Quote(dir + "s.vbs") + " " + Quote(shp), &st);
  EXPECT_EQ(st, 0);
  std::vector<std::string> lines = Lines(out);
  ASSERT_GE(lines.size(), 3u) << out;
  EXPECT_EQ(lines[lines.size() - 3], "pts.shp 3");
  EXPECT_EQ(lines[lines.size() - 2].substr(0, 3), "-5 ");
  EXPECT_EQ(lines.back(), "dflt");
}

TEST(ScriptApp, CommandsOfALstFileRunALayersScriptAndTheSaveKeepsIt) {
  std::string dir = test::TempDir("script_app_lst");
  std::string shp = test::GdalLayer(dir, "pts", {"POINT (1 2)", "POINT (3 4)", "POINT (5 6)"});
  ASSERT_FALSE(shp.empty());
  test::WriteFile(dir + "s.vbs", "id = id * 100 + GetRecNo\r\n");
  test::WriteFile(dir + "run.lst", "SET SCRIPT \"" + shp + "\" \"" + dir +
                                       "s.vbs\"\nRUN SCRIPT \"" + shp + "\" 2 3\nSAVE LAYER \"" +
                                       shp + "\" EXIT\n");
  int st = -1;
  std::string log = Velmora("--headless " + Quote(dir + "run.lst"), &st, true);
  EXPECT_EQ(st, 0) << log;
  // GDAL reads what the save wrote
  std::string out = test::RunCmd("ogrinfo -q -al " + Quote(shp) + " 2>&1 | grep 'id (' ");
  std::vector<std::string> lines = Lines(out);
  ASSERT_EQ(lines.size(), 3u) << out << log;
  EXPECT_NE(lines[0].find("= 1"), std::string::npos) << lines[0];
  EXPECT_NE(lines[1].find("= 202"), std::string::npos) << lines[1];
  EXPECT_NE(lines[2].find("= 303"), std::string::npos) << lines[2];
}
