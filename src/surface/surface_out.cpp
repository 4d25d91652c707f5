#include "surface/surface_out.h"

#include <charconv>

#include "frame/busy.h"
#include "frame/log.h"
#include "frame/lyr_slots.h"
#include "model/file_util.h"
#include "store/dbf_store.h"
#include "store/shp_store.h"

namespace velmora {

namespace {

// A surface layer that could not be made whole is of no use: its files go.
void DropSurfaceFiles(const std::string& path) {
  for (const char* ext : {"shp", "shx", "dbf"}) KillFile(ReplaceExt(path, ext));
}

std::string Fixed3(double v) {
  char buf[64];
  auto r = std::to_chars(buf, buf + sizeof buf, v, std::chars_format::fixed, 3);
  return r.ec == std::errc() ? std::string(buf, r.ptr) : std::string("0");
}

// A new feature of one part with its vertexes, and its row.
bool AddFeature(Session& s, int out, const std::vector<double>& xy, const std::vector<double>& z,
                const std::string& value) {
  AddRec(s, out);
  const int rec = s.Lyr[out].Shp.RecCount;
  ShpRecord& r = s.Lyr[out].Shp.ShpRecs[size_t(rec)];
  ShpPart& p = r.Part(0);
  const size_t n = z.size();
  p.Resize(n);
  auto pts = p.PartPoints();
  auto zs = p.PartZ();
  for (size_t i = 0; i < n; ++i) {
    pts[i] = XY{xy[2 * i], xy[2 * i + 1]};
    if (i < zs.size()) zs[i] = z[i];
  }
  p.PartCount = int32_t(n);
  p.PartFlag = 0;
  r.NumParts = 1;
  r.NumPoints = int32_t(n);
  RecalcRecBox(s, out, rec);
  SetFieldValue(s, out, 0, " ");
  SetFieldValue(s, out, 1, std::to_string(rec));
  SetFieldValue(s, out, 2, value);
  WriteDbfRec(s, out, rec - 1);
  return s.DbfErr == 0;
}

} // namespace

int OpenSurfaceOut(Session& s, const std::string& path, int shapeType,
                   const std::string& busyFunc) {
  if (FindLyrByFile(s, path) > 0) {
    LogMsg(s, "Layer " + s.Lyr[FindLyrByFile(s, path)].LyrName + " is open on these files");
    return 1;
  }
  const int slot = FindFreeWorkLyr(s);
  ClearLyr(s, slot);
  LyrLock(s, slot, true, busyFunc);
  s.Lyr[slot].LyrName = FileNameOf(path);
  s.Lyr[slot].Fsource = path;
  s.Lyr[slot].LyrKind = 1;
  NewShp(s, slot, path, shapeType);
  if (s.ShpErr == 0) {
    if (shapeType == 15)
      NewDbfTin(s, slot, path);
    else
      NewDbfContour(s, slot, path);
  }
  if (s.ShpErr || s.DbfErr) {
    CloseShp(s, slot);
    CloseDbf(s, slot);
    ClearLyr(s, slot);
    DropSurfaceFiles(path);
    return 1;
  }
  return slot;
}

bool WriteTriangle(Session& s, int out, const TinPoint& a, const TinPoint& b, const TinPoint& c,
                   double scale) {
  float sum = a.Z + b.Z + c.Z;
  double avg = sum == 0 ? double(sum) : double(sum) * (1.0 / 3);
  std::vector<double> xy = {a.X / scale, a.Y / scale, b.X / scale, b.Y / scale,
                            c.X / scale, c.Y / scale, a.X / scale, a.Y / scale};
  return AddFeature(s, out, xy, {a.Z, b.Z, c.Z, a.Z}, Fixed3(avg));
}

bool WriteContourLine(Session& s, int out, const std::vector<double>& xy, float z, double scale) {
  std::vector<double> pts(xy.size());
  for (size_t i = 0; i < xy.size(); ++i) pts[i] = xy[i] / scale;
  return AddFeature(s, out, pts, std::vector<double>(xy.size() / 2, double(z)), Fixed3(z));
}

bool CloseSurfaceOut(Session& s, int out, const std::string& path) {
  bool ok = s.DbfErr == 0;
  SetDbfRecCount(s, out, s.Lyr[out].Shp.RecCount);
  ok = ok && s.DbfErr == 0;
  CloseDbf(s, out);
  RecalcExtent(s, out);
  SaveShp(s, out, path);
  ok = ok && s.ShpErr == 0;
  CloseShp(s, out);
  SizeRecs(s, out, 0);
  ClearLyr(s, out);
  if (!ok) DropSurfaceFiles(path);
  return ok;
}

} // namespace velmora
