#include "session/layer_menus.h"

#include <algorithm>

#include "frame/busy.h"
#include "frame/log.h"
#include "model/file_util.h"
#include "session/layer_life.h"
#include "session/map_init.h"

namespace velmora {

const char* const kLyrFilesFilter =
    "Layer files (*.shp)|*.shp|Bitmap files (*.bmp)|*.bmp|JPEG files (*.jpg)|*.jpg|GIF files "
    "(*.gif)|*.gif|TIFF files (*.tif)|*.tif|PNG files (*.png)|*.png|All files (*.*)|*.*";
const char* const kNewLyrFilter = "Layer files (*.shp)|*.shp|All files (*.*)|*.*";

const std::vector<std::string>& NewLyrKinds() {
  static const std::vector<std::string> kinds = {
      "POINT",        "POINTM",        "POINTMZ",   "POLYLINE",  "POLYLINEM",
      "POLYLINEMZ",   "POLYGON",       "POLYGONM",  "POLYGONMZ", "MULTIPOINTS",
      "MULTIPOINTSM", "MULTIPOINTSMZ", "MASKLAYOUT"};
  return kinds;
}

std::string NewLyrTitle(const std::string& kind) {
  return "Make New " + kind + " Layer";
}

std::string NewLyrDefaultName(const std::string& kind) {
  return kind + "New";
}

void RemoveSelectedLyrs(Session& s, std::vector<int> rows) {
  if (s.LyrCount == 0 || rows.empty() || DialogsBlock(s, "deleting layer")) return;
  std::sort(rows.rbegin(), rows.rend());
  bool removed = false;
  for (int n : rows) {
    if (n < 1 || n > s.LyrCount) continue;
    if (LyrIsBusy(s, n)) {
      RemoveLyr(s, n, false); // logs the refusal
      continue;
    }
    if (!ConfirmRemoveLyr(s, n)) continue;
    RemoveLyr(s, n, false);
    removed = true;
  }
  if (removed) s.host->MapRedraw();
}

void ReloadSelectedLyrs(Session& s, const std::vector<int>& rows) {
  for (int n : rows) ReloadLyr(s, n);
}

std::string DataSourceTitle(const Session& s, const std::vector<int>& rows) {
  std::string file;
  if (!rows.empty() && rows.front() >= 1 && rows.front() <= s.LyrCount)
    file = FileNameOf(s.Lyr[rows.front()].Fsource);
  return "Set Layer " + file + (rows.size() > 1 ? " and Multi Layers " : " ") + "Data Source";
}

void SetSelectedDataSource(Session& s, const std::vector<int>& rows, const std::string& path) {
  if (rows.empty() || path.empty()) return;
  // Names first: a reopen renames the row.
  std::vector<std::string> targets{path};
  const std::string dir = FolderOf(path);
  for (size_t i = 1; i < rows.size(); ++i)
    targets.push_back(
        rows[i] >= 1 && rows[i] <= s.LyrCount ? dir + FileNameOf(s.Lyr[rows[i]].Fsource) : "");
  for (size_t i = 0; i < rows.size(); ++i)
    if (!targets[i].empty()) SetLyrDataSource(s, rows[i], targets[i]);
}

LyrMenus ApplyLyrMenus(const Session& s, int n) {
  LyrMenus m;
  if (n < 1 || n > s.LyrCount || s.Lyr[n].LyrKind != 2) return m;
  m.UnRectify = s.Lyr[n].Img.ImgRectified != 0;
  m.Rectify = !m.UnRectify;
  return m;
}

bool NewProject(Session& s) {
  if (s.LyrCount == 0) return false;
  return s.host->StartSecondProcess();
}

} // namespace velmora
