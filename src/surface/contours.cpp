#include "surface/contours.h"

#include <charconv>

#include "frame/busy.h"
#include "frame/log.h"
#include "model/file_util.h"
#include "surface/contour_cut.h"
#include "surface/surface_out.h"
#include "surface/tin_build.h"

namespace velmora {

namespace {
std::string LevelText(float z) {
  char buf[64];
  auto r = std::to_chars(buf, buf + sizeof buf, z);
  return std::string(buf, r.ptr);
}
} // namespace

int BuildContours(Session& s, int lyr, int criteria, int heightField, float interval, float base,
                  const std::string& toFile, int method) {
  const std::string canceled = " *** Contour Surface(s) Analysis has been canceled *** ";
  if (lyr < 1 || lyr > s.LyrCount || s.Lyr[lyr].LyrKind != 1 || method < 1 || method > 3 ||
      toFile.empty()) {
    LogMsg(s, canceled);
    return -1;
  }
  if (!ClaimSurface(s, "Contour Surface(s) Analysis")) return -1;
  RunningFunction rf(s, lyr, "Contour Surface(s) Analysis");
  if (!rf.Started()) {
    ReleaseSurface(s);
    return -1;
  }
  const std::string path = ReplaceExt(toFile, "shp");
  int out = OpenSurfaceOut(s, path, 13, "Make New Contour Shape File");
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
  bool failed = false;
  if (MakeSurface(s, rf.Layer(), method, heightField, criteria, tick)) {
    tick.Caption("Building Contour(s)");
    IndexTriangles(st);
    for (float z : ContourLevels(st.TinMinZ, st.TinMaxZ, interval, base)) {
      tick.Caption("Building Contour(s) for Height " + LevelText(z) + " Unit (s)");
      try {
        CutTriangles(st, z);
      } catch (const std::bad_alloc&) {
        st.ContourSegs = {};
        st.ContourSegCount = 0;
        failed = true;
        break;
      }
      ChainContours(st, [&](const std::vector<double>& xy) {
        if (!WriteContourLine(s, out, xy, z, st.TinScale)) {
          failed = true;
          return false;
        }
        ++written;
        return !tick(0.4);
      });
      if (failed || tick.Stopped() || tick(1)) break;
    }
  }
  const bool stopped = tick.Stopped() || rf.Terminated();
  rf.Finish(false);
  const bool saved = CloseSurfaceOut(s, out, path);
  ReleaseSurface(s);
  if (stopped)
    LogMsg(s, " *** Contour Surface(s) Analysis in Layer " + name + " has been terminated *** ");
  if (!saved) {
    LogMsg(s, canceled);
    return -1;
  }
  LogMsg(s, std::to_string(written) + " Countours have been Built Successfully to Layer " +
                FileNameOf(path));
  return written;
}

} // namespace velmora
