#include <gtest/gtest.h>

#include "frame/busy.h"
#include "frame/lyr_slots.h"
#include "test_support.h"

using namespace velmora;

namespace {

void AddRows(Session& s, int n) {
  s.Lyr.Resize(n);
  s.LyrCount = n;
  for (int i = 1; i <= n; ++i) {
    SetLyrDefaults(s, i);
    s.Lyr[i].LyrName = "L" + std::to_string(i);
    s.Lyr[i].Fsource = "/data/l" + std::to_string(i) + ".shp";
  }
}

std::string Names(const Session& s) {
  std::string out;
  for (int i = 1; i <= s.LyrCount; ++i) out += s.Lyr[i].LyrName + " ";
  return out;
}

} // namespace

TEST(LyrSlots, WorkSlotsAlwaysPresentAndFreeSlotSkipsBusyOnes) {
  Session s;
  EXPECT_EQ(FindFreeWorkLyr(s), 0);
  s.Lyr[0].LyrBusy = -1;
  s.Lyr[-1].Shp.ShpOpen = -1;
  s.Lyr[-2].Dbf.DbfOpen = -1;
  EXPECT_EQ(FindFreeWorkLyr(s), -3);
  ClearLyr(s, 0);
  EXPECT_EQ(FindFreeWorkLyr(s), 0);
  EXPECT_NO_THROW(s.Lyr[-100].LyrName = "x");
}

TEST(LyrSlots, DefaultsGiveRandomColoursInRangeAndLabelFollowsForeColour) {
  Session s;
  Randomize(s, 7);
  AddRows(s, 2);
  const LyrRec& l = s.Lyr[1];
  EXPECT_EQ(l.CDrawMode[0], 13);
  EXPECT_EQ(l.EVertexWidth, 5);
  EXPECT_EQ(l.NDrawWidth, 5);
  EXPECT_EQ(l.LfontName, "Times New Roman");
  EXPECT_EQ(l.LColor, l.CForeColor[0]);
  for (RGB3 c : {l.CForeRGB[0], l.SFillRGB, l.NFillRGB}) {
    EXPECT_GE(c.R, 1);
    EXPECT_GE(c.G, 1);
    EXPECT_GE(c.B, 1);
  }
  EXPECT_EQ(l.SFillColor, PackRGB(l.SFillRGB.R, l.SFillRGB.G, l.SFillRGB.B));
  // Two layers of the same session differ.
  EXPECT_NE(s.Lyr[1].CForeColor[0], s.Lyr[2].CForeColor[0]);
}

TEST(LyrSlots, ColourSettersKeepBothFormsInStep) {
  LyrRec l;
  SetCForeColor(l, 2, 0x11, 0x22, 0x33);
  EXPECT_EQ(l.CForeColor.size(), 3u);
  EXPECT_EQ(l.CForeColor[2], 0x332211u);
  EXPECT_EQ(GetCForeRGB(l, 2).G, 0x22);
  SetNFillColor(l, 255, 0, 0);
  EXPECT_EQ(l.NFillColor, 0xFFu);
}

TEST(LyrSlots, FindLyrByFileIsCaseBlindAndReturnsTheFirst) {
  Session s;
  AddRows(s, 3);
  s.Lyr[3].Fsource = s.Lyr[2].Fsource;
  EXPECT_EQ(FindLyrByFile(s, "/DATA/L2.SHP"), 2);
  EXPECT_EQ(FindLyrByFile(s, "/data/none.shp"), -1);
}

TEST(LyrSlots, SwapMovesRowsAndRenumbersHeldNumbers) {
  Session s;
  AddRows(s, 5);
  s.ActiveLyr = 2;
  s.Held.EdtLyr = 4;
  s.Held.GPSLyr = 3;
  s.Held.SnapLyrs = {2, 5};
  s.Held.IdentifyLyr = 0; // "no layer" ends at `to`: kept as it is
  SwapLyr(s, 2, 4);
  EXPECT_EQ(Names(s), "L1 L3 L4 L2 L5 ");
  EXPECT_EQ(s.ActiveLyr, 4);
  EXPECT_EQ(s.Held.EdtLyr, 3);
  EXPECT_EQ(s.Held.GPSLyr, 2);
  EXPECT_EQ(s.Held.SnapLyrs, (std::vector<int>{4, 5}));
  EXPECT_EQ(s.Held.IdentifyLyr, 4);
  EXPECT_EQ(s.ProjChanged, -1);
  // The work slot is released and empty.
  EXPECT_EQ(s.Lyr[0].LyrBusy, 0);
  EXPECT_EQ(s.Lyr[0].LyrName, "");

  SwapLyr(s, 5, 1);
  EXPECT_EQ(Names(s), "L5 L1 L3 L4 L2 ");
  EXPECT_EQ(s.ActiveLyr, 5);
}
