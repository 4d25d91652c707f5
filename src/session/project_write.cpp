#include <cerrno>
#include <cstdio>
#include <cstring>

#include "frame/log.h"
#include "model/file_util.h"
#include "session/layer_life.h"
#include "session/map_init.h"
#include "session/project.h"
#include "session/project_layout.h"

namespace velmora {

namespace {

// The file's bytes, built in memory and written at once.
struct Out {
  std::vector<uint8_t> b;

  void U8(uint8_t v) { b.push_back(v); }
  void I32(int32_t v) {
    for (int i = 0; i < 4; ++i) b.push_back(uint8_t(uint32_t(v) >> (8 * i)));
  }
  void F64(double v) {
    uint64_t u;
    std::memcpy(&u, &v, 8);
    for (int i = 0; i < 8; ++i) b.push_back(uint8_t(u >> (8 * i)));
  }
  void F32(float v) {
    uint32_t u;
    std::memcpy(&u, &v, 4);
    I32(int32_t(u));
  }
  void LStr(const std::string& s) {
    I32(int32_t(s.size()));
    b.insert(b.end(), s.begin(), s.end());
  }
  void Rgb(RGB3 c) { U8(c.R), U8(c.G), U8(c.B); }
};

void WriteHead(const Session& s, Out& o) {
  o.F64(kProjVersion);
  o.I32(s.LyrCount);
  for (uint8_t r : s.ProjReserved) o.U8(r);
  const MapViewRec& v = s.MapView;
  o.I32(v.ViewW);
  o.I32(v.ViewH);
  o.F64(v.MapLeft), o.F64(v.MapTop), o.F64(v.MapRight), o.F64(v.MapBottom);
  for (uint8_t u : {s.MapUnit, s.MapCoordsIdx, s.MapZone, s.MapSouth, s.MeasUnit, s.MeasCoordsIdx,
                    s.MeasZone, s.MeasSouth})
    o.U8(u);
}

// Only the file name when the layer lies beside the project.
std::string StoredPath(const Session& s, const std::string& fsource) {
  if (FolderOf(fsource) == FolderOf(s.ProjFile)) return FileNameOf(fsource);
  return fsource;
}

void WriteRowRest(Out& o, LyrRec& l) {
  o.I32(l.SelCount);
  int64_t selBytes = SelBytesStored(l.SelCount);
  for (int64_t i = 0; i < selBytes; ++i)
    o.U8(size_t(i) < l.SelBits.size() ? l.SelBits[size_t(i)] : 0);
  o.U8(l.DVisable);
  o.U8(l.DScale);
  o.F64(l.DScaleLMT[0]), o.F64(l.DScaleLMT[1]);
  o.U8(l.DShowVrt);
  o.U8(l.DVrtDrawWidth);
  if (l.CFCount < 0) l.CFCount = 0;
  if (l.CForeRGB.size() < size_t(l.CFCount) + 1) SizeClasses(l, l.CFCount);
  o.I32(l.CFName);
  o.I32(l.CFCount);
  for (size_t k = 0; k <= size_t(l.CFCount); ++k) {
    o.Rgb(GetCForeRGB(l, int(k)));
    o.Rgb(GetCFillRGB(l, int(k)));
    o.U8(l.CDrawMode[k]), o.U8(l.CDrawStyle[k]), o.U8(l.CDrawWidth[k]), o.U8(l.CFillStyle[k]);
    o.LStr(l.CFieldValues[k]);
  }
  o.U8(l.SSelectable);
  o.Rgb(GetSForeRGB(l)), o.Rgb(GetSFillRGB(l));
  o.U8(l.SDrawMode), o.U8(l.SDrawStyle), o.U8(l.SDrawWidth), o.U8(l.SFillStyle);
  o.U8(l.EEditable);
  o.Rgb(GetEForeRGB(l)), o.Rgb(GetEFillRGB(l));
  o.U8(l.EDrawMode), o.U8(l.EDrawStyle), o.U8(l.EVertexWidth), o.U8(l.EDrawWidth);
  o.U8(l.EFillStyle);
  o.U8(l.LVisible);
  o.I32(l.LFName);
  o.LStr(Trim(l.LfontName));
  o.U8(l.LFontBold), o.U8(l.LFontItalic), o.U8(l.LFontSize);
  o.Rgb(GetLRGB(l));
  o.U8(l.LFontForceSize), o.U8(l.LSetRefereMapScale);
  o.F64(l.LRefereMapScale);
  o.U8(l.LScale);
  o.F64(l.LScaleLMT[0]), o.F64(l.LScaleLMT[1]);
  o.U8(l.NuseFactor);
  o.I32(l.NfactorField);
  o.Rgb(GetNForeRGB(l)), o.Rgb(GetNFillRGB(l));
  o.U8(l.NDrawMode), o.U8(l.NDrawStyle), o.U8(l.NDrawWidth), o.U8(l.NFillStyle);
  o.U8(l.HVisible);
  o.I32(l.HFName);
  o.U8(l.HswUse);
  o.LStr(Trim(l.HswName));
  o.U8(l.HtVisible);
  o.I32(l.HtFixed);
  o.I32(l.HtFName);
  o.U8(l.HtSource), o.U8(l.HtScale);
  if (l.LyrKind) {
    o.F32(float(LeftExtend(l))), o.F32(float(BottomExtend(l)));
    o.F32(float(RightExtend(l))), o.F32(float(TopExtend(l)));
  } else { // a layer not open has no extent of its own: what was read goes back
    for (float e : l.SavedExtent) o.F32(e);
  }
  o.U8(l.VBScriptSRC);
  o.LStr(Trim(l.VBScripttext));
  o.LStr(Trim(l.VBScriptFile));
}

void WriteTail(const Session& s, Out& o) {
  size_t first = size_t(kBuiltInDatums);
  int32_t n = s.DatumTbl.size() > first ? int32_t(s.DatumTbl.size() - first) : 0;
  o.I32(n);
  for (int32_t i = 0; i < n; ++i) {
    const DatumRec& r = s.DatumTbl[first + size_t(i)];
    o.LStr(Trim(r.CrdName));
    o.LStr(Trim(r.SphName));
    for (double v : {r.SMA, r.SMB, r.Flattining, r.FEast, r.FNorth, r.CM, r.SF, r.LatOrg}) o.F64(v);
  }
  o.I32(n);
  for (int32_t i = 0; i < n; ++i) {
    const DatumRec& r = s.DatumTbl[first + size_t(i)];
    for (double v :
         {r.TransDX, r.TransDY, r.TransDZ, r.TransRX, r.TransRY, r.TransRZ, r.TransScale})
      o.F64(v);
  }
}

} // namespace

void WriteProject(Session& s, const std::string& path) {
  s.ProjFile = ChangeExt(path, "qmt");
  KillFile(s.ProjFile);
  s.LyrErr = 0;
  s.ProjChanged = 0;
  std::FILE* f = std::fopen(NativePath(s.ProjFile).c_str(), "wb");
  if (!f) {
    LogMsg(s, " *** Save has been canceled  : " + std::string(std::strerror(errno)) + " *** ");
    s.LyrErr = 1;
    return;
  }
  Out o;
  WriteHead(s, o);
  for (int n = 1; n <= s.LyrCount; ++n) {
    o.LStr(Trim(s.Lyr[n].LyrName));
    o.LStr(StoredPath(s, s.Lyr[n].Fsource));
    SaveLyr(s, n); // the selection count that follows is the one after the layer's save
    WriteRowRest(o, s.Lyr[n]);
  }
  WriteTail(s, o);
  bool ok = std::fwrite(o.b.data(), 1, o.b.size(), f) == o.b.size();
  int err = errno;
  ok = std::fclose(f) == 0 && ok;
  if (!ok) {
    LogMsg(s, " *** Save has been canceled  : " + std::string(std::strerror(err ? err : errno)) +
                  " *** ");
    s.LyrErr = 1;
    return;
  }
  s.LyrErr = 0; // a layer's own save reports itself
}

} // namespace velmora
