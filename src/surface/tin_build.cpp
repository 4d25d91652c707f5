#include "surface/tin_build.h"

#include <cmath>
#include <cstdio>

#include "edit/move_ops.h"
#include "frame/log.h"
#include "frame/lyr_slots.h"
#include "model/file_util.h"
#include "model/val.h"
#include "store/dbf_store.h"
#include "store/shp_bytes.h"
#include "store/shp_store.h"
#include "surface/surface_out.h"
#include "surface/tin_delaunay.h"
#include "surface/tin_matrix.h"

namespace velmora {

double PointHeight(Session& s, int lyr, int rec, int part, int vertex, int field) {
  if (field > 0) {
    ReadDbfRec(s, lyr, rec - 1);
    return Val(GetFieldValue(s, lyr, field));
  }
  if (field < 0) return 0;
  const ShpRecord& r = s.Lyr[lyr].Shp.ShpRecs[size_t(rec)];
  if (!shpio::HasZ(r.ShapeType)) return 0;
  auto z = r.Part(part).PartZ();
  return size_t(vertex) < z.size() ? z[size_t(vertex)] : 0;
}

std::vector<TinPoint> CollectPoints(Session& s, int lyr, int heightField, int criteria, int& badZ) {
  SurfaceState& st = s.Surface;
  std::vector<TinPoint> pts;
  badZ = 0;
  LyrRec& l = s.Lyr[lyr];
  st.TinScale = TinScaleOf(LeftExtend(l), BottomExtend(l), RightExtend(l), TopExtend(l));
  const int count = l.Shp.RecCount;
  for (int rec = 1; rec <= count && size_t(rec) < s.Lyr[lyr].Shp.ShpRecs.size(); ++rec) {
    if (s.Lyr[lyr].Shp.ShpRecs[size_t(rec)].ShapeType == 0) continue;
    bool sel = IsSelected(s, lyr, rec);
    if ((criteria == 2 && !sel) || (criteria == 3 && sel)) continue;
    double rowZ = 0;
    if (heightField > 0) rowZ = PointHeight(s, lyr, rec, 0, 0, heightField);
    const ShpRecord& r = s.Lyr[lyr].Shp.ShpRecs[size_t(rec)];
    for (int part = 0; part < int(r.Parts().size()); ++part) {
      const ShpPart& p = r.Part(part);
      auto xy = p.PartPoints();
      const size_t live = std::min(xy.size(), size_t(std::max(p.PartCount, 0)));
      for (size_t v = 0; v < live; ++v) {
        double x = xy[v].X * st.TinScale, y = xy[v].Y * st.TinScale;
        if (!std::isfinite(x) || !std::isfinite(y)) continue;
        double z = heightField > 0 ? rowZ : PointHeight(s, lyr, rec, part, int(v), heightField);
        float zf = float(z);
        if (!std::isfinite(zf)) {
          ++badZ;
          z = 0, zf = 0;
        }
        ScanBounds(st, x, y, z);
        pts.push_back(TinPoint{x, y, zf});
      }
    }
  }
  return pts;
}

bool SurfaceTicker::operator()(double add) {
  value_ += add;
  if (stopped_) return true;
  if ((++calls_ & 255) != 0) return false;
  double v = std::min(value_, max_);
  stopped_ = rf_.Step((long long)v, (long long)max_);
  return stopped_;
}

void SurfaceTicker::Caption(const std::string& text) {
  s_.host->FuncText(text);
}

bool ClaimSurface(Session& s, const std::string& op) {
  if (s.Surface.Busy) {
    LogMsg(s, " *** " + op + " has been canceled *** ");
    LogMsg(s, "Another surface function is running; please wait for it or terminate it");
    return false;
  }
  ResetSurface(s.Surface);
  s.Surface.Busy = true;
  return true;
}

void ReleaseSurface(Session& s) {
  s.Surface = SurfaceState{};
}

bool MakeSurface(Session& s, int lyr, int method, int heightField, int criteria,
                 SurfaceTicker& tick) {
  SurfaceState& st = s.Surface;
  auto t = [&](double add) { return tick(add); };
  tick.Caption("Loading Points Information");
  int badZ = 0;
  std::vector<TinPoint> raw;
  try {
    raw = CollectPoints(s, lyr, heightField, criteria, badZ);
  } catch (const std::bad_alloc&) {
    st.Err = true;
    return false;
  }
  if (badZ > 0)
    LogMsg(s, std::to_string(badZ) + " Point(s) without a finite height have been taken as 0");
  tick.Caption("Loading Points");
  const bool sorted = method == 1 || (method == 2 && st.TinNotGrid);
  if (sorted) {
    tick.Caption("Preparing Tin Surface(s)");
    std::vector<int> order = OrderPoints(st, raw, method);
    if (!PreparePoints(st, raw, order, method, t)) return false;
  } else if (!StorePoints(st, raw)) {
    return false;
  }
  if (tick.Stopped() || st.Err) return false;
  tick.Caption(method == 3 ? "Loading Tin Surface(s)" : "Building Tin Surface(s)");
  bool ok = method == 1 ? MakeDelaunay(st, t) : method == 2 ? MakeMatrix(st, t) : LoadTin(st, t);
  return ok && !tick.Stopped() && !st.Err;
}

int BuildTin(Session& s, int lyr, int criteria, int heightField, const std::string& toFile,
             int method) {
  const std::string canceled = " *** Build Tin Surface(s) has been canceled *** ";
  if (lyr < 1 || lyr > s.LyrCount || s.Lyr[lyr].LyrKind != 1 || method < 1 || method > 3 ||
      toFile.empty()) {
    LogMsg(s, canceled);
    return -1;
  }
  if (!ClaimSurface(s, "Build Tin Surface(s)")) return -1;
  RunningFunction rf(s, lyr, "Building Tin Surface(s) Analysis");
  if (!rf.Started()) {
    ReleaseSurface(s);
    return -1;
  }
  const std::string path = ReplaceExt(toFile, "shp");
  int out = OpenSurfaceOut(s, path, 15, "Make New Tin Shape File");
  if (out > 0) {
    rf.Finish(false);
    ReleaseSurface(s);
    LogMsg(s, canceled);
    return -1;
  }
  const std::string name = s.Lyr[lyr].LyrName;
  SurfaceTicker tick(s, rf, double(s.Lyr[lyr].Shp.RecCount) * 4);
  SurfaceState& st = s.Surface;
  int written = 0;
  if (MakeSurface(s, rf.Layer(), method, heightField, criteria, tick)) {
    tick.Caption("Building Tin Surface(s) Analysis");
    for (int t = 1; t <= st.TinTriCount; ++t) {
      const TinTri& tri = st.TinTris[size_t(t)];
      if (!WriteTriangle(s, out, st.TinPoints[size_t(tri.A)], st.TinPoints[size_t(tri.B)],
                         st.TinPoints[size_t(tri.C)], st.TinScale))
        break;
      ++written;
      if (tick(0.4)) break;
    }
  }
  const bool stopped = tick.Stopped() || rf.Terminated();
  rf.Finish(false);
  const bool saved = CloseSurfaceOut(s, out, path);
  ReleaseSurface(s);
  if (stopped)
    LogMsg(s, " *** Building Tin Surface(s) in Layer " + name + " has been terminated *** ");
  if (!saved) {
    LogMsg(s, canceled);
    return -1;
  }
  LogMsg(s, std::to_string(written) + " Tin Surface(s) have been Built Successfully in Layer " +
                FileNameOf(path));
  return written;
}

} // namespace velmora
