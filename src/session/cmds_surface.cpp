#include "session/cmds_surface.h"

#include "frame/log.h"
#include "frame/lyr_slots.h"
#include "model/file_util.h"
#include "session/layer_life.h"
#include "session/word_cmds.h"
#include "store/dbf_store.h"
#include "surface/contours.h"
#include "surface/tin_build.h"

namespace velmora {

namespace {

std::string Unquoted(const std::string& t) {
  std::string r;
  for (char c : t)
    if (c != '"') r += c;
  return r;
}

// The height token: a field of the layer, Z or NONE; false for an unknown field.
bool HeightOf(Session& s, int lyr, size_t i, int& field) {
  const std::string w = WordCmdWord(s, i);
  if (w == "Z") {
    field = kHeightShapeZ;
    return true;
  }
  if (w == "NONE" || w.empty()) {
    field = kHeightNone;
    return true;
  }
  field = FindField(s, lyr, Unquoted(s.ArgStr[i]));
  return field > 0;
}

int CriteriaOf(const Session& s, size_t i, bool& ok) {
  int c = 1;
  ok = i >= s.ArgStr.size() || (WordCmdInt(s, i, c) && c >= 1 && c <= 3);
  return c;
}

// Adds the new layer when it was written; its number, or the source's.
int AddResult(Session& s, int written, const std::string& out, int src) {
  if (written < 0) return src;
  int n = AddSurfaceLayer(s, out);
  return n > 0 ? n : src;
}

} // namespace

int AddSurfaceLayer(Session& s, const std::string& path) {
  const std::string shp = ReplaceExt(path, "shp");
  const int before = s.LyrCount;
  NewLyrRow(s, shp);
  if (s.LyrErr || s.LyrCount == before) {
    LogMsg(s, " *** Add Layer " + shp + " has been canceled *** ");
    return 0;
  }
  s.ActiveLyr = s.LyrCount;
  s.ProjChanged = -1;
  s.host->LayerListChanged();
  s.host->MapRedraw();
  LogMsg(s, "Add Layer " + shp);
  return s.LyrCount;
}

int RunBuildTin(Session& s) {
  const std::string canceled = " *** Build Tin Surface(s) has been canceled *** ";
  int lyr = WordCmdLyr(s, 2, true);
  int method = 0, field = 0;
  bool critOk = false;
  int criteria = CriteriaOf(s, 6, critOk);
  if (lyr < 1 || s.ArgStr.size() < 6 || !WordCmdInt(s, 4, method) || method < 1 || method > 2 ||
      !HeightOf(s, lyr, 5, field) || !critOk) {
    LogMsg(s, canceled);
    return lyr;
  }
  const std::string out = Unquoted(s.ArgStr[3]);
  return AddResult(s, BuildTin(s, lyr, criteria, field, out, method), out, lyr);
}

int RunBuildContours(Session& s) {
  const std::string canceled = " *** Contour Surface(s) Analysis has been canceled *** ";
  int lyr = WordCmdLyr(s, 2, true);
  int method = 0, field = 0;
  double interval = 0, base = 0;
  bool critOk = false;
  int criteria = CriteriaOf(s, 8, critOk);
  if (lyr < 1 || s.ArgStr.size() < 8 || !WordCmdInt(s, 4, method) || method < 1 || method > 3 ||
      !HeightOf(s, lyr, 5, field) || !WordCmdNum(s, 6, interval) || !WordCmdNum(s, 7, base) ||
      !critOk) {
    LogMsg(s, canceled);
    return lyr;
  }
  const std::string out = Unquoted(s.ArgStr[3]);
  return AddResult(
      s, BuildContours(s, lyr, criteria, field, float(interval), float(base), out, method), out,
      lyr);
}

} // namespace velmora
