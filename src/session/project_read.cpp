#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "frame/log.h"
#include "model/datum_table.h"
#include "model/file_util.h"
#include "session/layer_life.h"
#include "session/map_init.h"
#include "session/project.h"
#include "session/project_layout.h"
#include "view/map_tools.h"
#include "view/navigation.h"

namespace velmora {

namespace {

bool ReadAll(const std::string& path, std::vector<uint8_t>& out, std::string& error) {
  std::FILE* f = std::fopen(NativePath(path).c_str(), "rb");
  if (!f) {
    error = std::strerror(errno);
    return false;
  }
  uint8_t buf[65536];
  size_t n;
  while ((n = std::fread(buf, 1, sizeof buf, f)) > 0) out.insert(out.end(), buf, buf + n);
  bool ok = !std::ferror(f);
  if (!ok) error = std::strerror(errno);
  std::fclose(f);
  return ok;
}

void Refuse(Session& s, const std::string& message) {
  LogMsg(s, message);
  s.LyrErr = 1;
  if (s.LyrCount) CloseAllLyrs(s);
  s.Lyr.Resize(0);
  s.LyrCount = 0;
  s.ProjFile = "";
}

// The packed colours from their stored byte twins.
void RebuildColours(LyrRec& l) {
  for (size_t k = 0; k < l.CForeRGB.size(); ++k) {
    SetCForeColor(l, int(k), l.CForeRGB[k].R, l.CForeRGB[k].G, l.CForeRGB[k].B);
    SetCFillColor(l, int(k), l.CFillRGB[k].R, l.CFillRGB[k].G, l.CFillRGB[k].B);
  }
  SetSForeColor(l, l.SForeRGB.R, l.SForeRGB.G, l.SForeRGB.B);
  SetSFillColor(l, l.SFillRGB.R, l.SFillRGB.G, l.SFillRGB.B);
  SetEForeColor(l, l.EForeRGB.R, l.EForeRGB.G, l.EForeRGB.B);
  SetEFillColor(l, l.EFillRGB.R, l.EFillRGB.G, l.EFillRGB.B);
  SetLColor(l, l.LRGB.R, l.LRGB.G, l.LRGB.B);
  SetNForeColor(l, l.NForeRGB.R, l.NForeRGB.G, l.NForeRGB.B);
  SetNFillColor(l, l.NFillRGB.R, l.NFillRGB.G, l.NFillRGB.B);
}

// The user coordinate records of the file take the places from 24 up.
void PutDatums(Session& s, const ProjectFileData& d) {
  if (!d.HasDatums) return;
  if (s.DatumTbl.size() > size_t(kBuiltInDatums)) s.DatumTbl.resize(size_t(kBuiltInDatums));
  for (const DatumDef& def : d.Datums) AddDatum(s, def, DatumTrans{});
  for (size_t k = 0; k < d.Trans.size(); ++k) {
    int index = kBuiltInDatums + int(k);
    if (index < int(s.DatumTbl.size()))
      SetDatumTrans(s, index, d.Trans[k]);
    else
      AddDatum(s, DatumDef{}, d.Trans[k]);
  }
}

std::string VersionText(const Session& s, double v) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.3f", v);
  std::string t = buf;
  for (char& c : t)
    if (c == '.') c = s.Locale.DecimalSep;
  return t;
}

} // namespace

void OpenDeferred(Session& s, int n, int w, int h, double left, double top, double right,
                  double bottom) {
  LyrRec& l = s.Lyr[n];
  if (s.MapView.MapTarget != 1) {
    const auto& e = l.SavedExtent; // left, bottom, right, top
    bool worth = l.DVisable == 1 && right >= e[0] && left <= e[2] && bottom <= e[3] && top >= e[1];
    if (worth && l.DScale) {
      double scale = ScaleOfWindow(s, w, h, left, top, right, bottom);
      worth = scale >= l.DScaleLMT[0] && scale <= l.DScaleLMT[1];
    }
    if (!worth) {
      l.LyrKind = 0;
      l.LoadSkipped = 1;
      return;
    }
  }
  // The open sets a layer's look for a new layer; a project's row keeps what was stored,
  // and takes from the file only the geometry, the attributes and the picture.
  LyrRec stored = l;
  OpenLyrFile(s, n, stored.Fsource);
  LyrRec& opened = s.Lyr[n];
  if (opened.LyrKind) {
    std::vector<uint8_t> sel = std::move(stored.SelBits);
    sel.resize(opened.SelBits.size(), 0);
    LyrRec row = std::move(stored);
    row.LyrKind = opened.LyrKind;
    row.SelCount = opened.SelCount;
    row.SelBits = std::move(sel);
    row.QryBits = std::move(opened.QryBits);
    row.Shp = std::move(opened.Shp);
    row.Dbf = std::move(opened.Dbf);
    row.Net = std::move(opened.Net);
    row.Img = std::move(opened.Img);
    s.Lyr[n] = std::move(row);
  } else {
    CloseLyrFiles(s, n);
    s.Lyr[n] = std::move(stored); // name, path and look stay for a later save or reload
    s.Lyr[n].LyrKind = 0;
  }
  if (s.MapView.MapTarget == 1 && s.ProjVersion < kProjUnitsStored) CheckFirstLyrUnits(s, n);
}

void ReadLyrs(Session& s, const std::string& path, int& viewW, int& viewH, double& left,
              double& top, double& right, double& bottom, unsigned keep) {
  s.ProjFile = ChangeExt(path, "qmt");
  s.LyrErr = 0;
  s.ProjChanged = 0;
  std::vector<uint8_t> bytes;
  std::string error;
  ProjectFileData d;
  if (!ReadAll(path, bytes, error) || !ParseProjectFile(bytes, d, error)) {
    Refuse(s, "Can not open Prject " + path + " : " + error);
    return;
  }
  if (d.Version < kProjOldest) {
    Refuse(s, "Can not open an Old Version Prject : " + path);
    return;
  }
  s.ProjVersion = d.Version;
  s.ProjReserved = d.Reserved;
  if (!(keep & kKeepViewW)) viewW = d.ViewW;
  if (!(keep & kKeepViewH)) viewH = d.ViewH;
  if (!(keep & kKeepLeft)) left = d.Left;
  if (!(keep & kKeepTop)) top = d.Top;
  if (!(keep & kKeepRight)) right = d.Right;
  if (!(keep & kKeepBottom)) bottom = d.Bottom;
  uint8_t* units[8] = {&s.MapUnit,  &s.MapCoordsIdx,  &s.MapZone,  &s.MapSouth,
                       &s.MeasUnit, &s.MeasCoordsIdx, &s.MeasZone, &s.MeasSouth};
  for (int i = 0; i < d.MapBytes; ++i) *units[i] = d.Units[size_t(i)];

  if (s.LyrCount) CloseAllLyrs(s);
  const int count = int(d.Rows.size());
  s.Lyr.Resize(count);
  s.LyrCount = count;
  const std::string folder = FolderOf(s.ProjFile);
  for (int n = 1; n <= count; ++n) {
    LyrRec& l = s.Lyr[n];
    l = std::move(d.Rows[size_t(n - 1)]);
    if (FolderOf(l.Fsource).empty()) l.Fsource = folder + l.Fsource; // beside the project
    RebuildColours(l);
    l.ProTab = 1;
    l.Shp.ExtentStale = 0;
    l.LoadSkipped = 0;
  }
  for (int n = 1; n <= count; ++n) {
    OpenDeferred(s, n, viewW, viewH, left, top, right, bottom);
    s.LyrErr = 0; // a layer that failed stays in the table, closed
  }
  PutDatums(s, d);
}

void ReadProject(Session& s, const std::string& path) {
  if (!FileExists(path)) return;
  s.LastDir = FolderOf(path);
  ClearProject(s);
  int w = 0, h = 0;
  MapViewRec& v = s.MapView;
  ReadLyrs(s, path, w, h, v.MapLeft, v.MapTop, v.MapRight, v.MapBottom);
  if (s.LyrErr) return;
  s.host->LayerListChanged();
  s.ActiveLyr = s.LyrCount >= 1 ? 1 : 0;
  if (s.LyrCount >= 1) {
    // The stored window, fitted to the view of this screen (MapInit left the fit tool).
    SetFitSides(s, v.MapLeft, v.MapTop, v.MapRight, v.MapBottom);
    MapFitHist(s);
  }
  s.MapView.MapTool = 2; // zoom in
  LogMsg(s, "Open Project  " + s.ProjFile + "   ->    Version : " + VersionText(s, s.ProjVersion));
}

} // namespace velmora
