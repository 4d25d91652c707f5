#include "frame/lyr_slots.h"

#include "frame/busy.h"
#include "model/file_util.h"

namespace velmora {

int FindFreeWorkLyr(const Session& s) {
  for (int i = 0; i >= -kWorkSlots; --i) {
    const LyrRec& l = s.Lyr[i];
    if (!l.LyrBusy && !l.Dbf.DbfOpen && !l.Shp.ShpOpen) return i;
  }
  return -kWorkSlots; // all taken: not provided for; the last slot is shared
}

void ClearLyr(Session& s, int n) {
  s.Lyr[n] = LyrRec{};
}

void SetLyrDefaults(Session& s, int n) {
  LyrRec& l = s.Lyr[n];
  SizeClasses(l, 0);
  l.CFCount = 0;
  l.CFName = 0;
  l.CFieldValues[0] = "";
  l.DVisable = 1;
  l.DScale = 0;
  l.DScaleLMT = {0, 0};
  l.DShowVrt = 0;
  l.DVrtDrawWidth = 2;
  l.CDrawMode[0] = 13;
  l.CDrawStyle[0] = 0;
  l.CDrawWidth[0] = 1;
  l.CFillStyle[0] = 0;
  l.SSelectable = 1;
  l.SDrawMode = 13, l.SDrawStyle = 0, l.SDrawWidth = 1, l.SFillStyle = 0;
  l.EEditable = 1;
  l.EDrawMode = 13, l.EDrawStyle = 0, l.EDrawWidth = 1, l.EVertexWidth = 5, l.EFillStyle = 0;
  l.LVisible = 0;
  l.LFName = 0;
  l.LfontName = "Times New Roman";
  l.LFontBold = 0, l.LFontItalic = 0;
  l.LFontSize = 8;
  l.LFontForceSize = 0;
  l.LSetRefereMapScale = 0;
  l.NDrawMode = 13, l.NDrawStyle = 0, l.NDrawWidth = 5, l.NFillStyle = 0;
  l.ProTab = 1;

  // Each byte from 1 to 255: a new random look each time a layer is added.
  auto rb = [&] { return uint8_t(int(Rnd(s) * 255) + 1); };
  auto three = [&](auto setter) {
    uint8_t r = rb(), g = rb(), b = rb();
    setter(r, g, b);
  };
  uint8_t r = rb(), g = rb(), b = rb();
  SetCForeColor(l, 0, r, g, b);
  SetLColor(l, r, g, b);
  three([&](uint8_t r2, uint8_t g2, uint8_t b2) { SetCFillColor(l, 0, r2, g2, b2); });
  three([&](uint8_t r2, uint8_t g2, uint8_t b2) { SetSForeColor(l, r2, g2, b2); });
  three([&](uint8_t r2, uint8_t g2, uint8_t b2) { SetSFillColor(l, r2, g2, b2); });
  three([&](uint8_t r2, uint8_t g2, uint8_t b2) { SetEForeColor(l, r2, g2, b2); });
  three([&](uint8_t r2, uint8_t g2, uint8_t b2) { SetEFillColor(l, r2, g2, b2); });
  three([&](uint8_t r2, uint8_t g2, uint8_t b2) { SetNForeColor(l, r2, g2, b2); });
  three([&](uint8_t r2, uint8_t g2, uint8_t b2) { SetNFillColor(l, r2, g2, b2); });
}

int FindLyrByFile(const Session& s, const std::string& path) {
  std::string want = UCase(path);
  for (int i = 1; i <= s.LyrCount; ++i)
    if (UCase(s.Lyr[i].Fsource) == want) return i;
  return -1;
}

void ForEachHeldLyr(Session& s, const std::function<void(int&)>& fn) {
  HeldLyrs& h = s.Held;
  fn(h.EdtLyr);
  for (int& n : h.SnapLyrs) fn(n);
  fn(h.CurFeatureLyr);
  fn(h.FromFeatureLyr);
  fn(h.ToFeatureLyr);
  for (int& n : h.VrtMoveLyrs) fn(n);
  fn(h.View3DLyr);
  fn(h.GPSLyr);
  fn(h.IdentifyLyr);
  fn(h.AddVertexLyr);
  fn(s.ActiveLyr);
}

void SwapLyr(Session& s, int from, int to) {
  if (from == to || from < 1 || to < 1 || from > s.LyrCount || to > s.LyrCount) return;
  int slot = FindFreeWorkLyr(s);
  LyrLock(s, slot, true, "Swap Layer");
  s.ProjChanged = -1;

  s.Lyr[slot] = std::move(s.Lyr[from]);
  ForEachHeldLyr(s, [&](int& n) {
    if (n == from) n = 0;
  });
  int step = to > from ? 1 : -1;
  for (int i = from; i != to; i += step) {
    int old = i + step;
    s.Lyr[i] = std::move(s.Lyr[old]);
    ForEachHeldLyr(s, [&](int& n) {
      if (n == old) n = i;
    });
  }
  s.Lyr[to] = std::move(s.Lyr[slot]);
  // The row that was "from" is held as 0 now; so is a state that held no layer.
  ForEachHeldLyr(s, [&](int& n) {
    if (n == 0) n = to;
  });

  LyrLock(s, slot, false, "");
  ClearLyr(s, slot);
}

} // namespace velmora
