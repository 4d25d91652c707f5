// The project menus: Open, Save, Save As, Close, and the caption they leave.
#include "frame/busy.h"
#include "frame/log.h"
#include "model/file_util.h"
#include "session/layer_life.h"
#include "session/map_init.h"
#include "session/project.h"

namespace velmora {

namespace {

constexpr const char* kProduct = "Velmora GIS";

bool BusyRefusal(Session& s, const std::string& op) {
  if (!AnyLyrBusy(s)) return false;
  LogMsg(s, " *** " + op + " has been canceled *** ");
  return true;
}

// The Save Project dialog from `proposed`; "" when cancelled.
std::string AskSavePath(Session& s, const std::string& proposed) {
  return s.host->SaveFileDialog(kSaveProjectTitle, kProjectFilter, proposed);
}

bool SaveTo(Session& s, const std::string& path, const std::string& logText) {
  s.LastDir = FolderOf(path);
  WriteProject(s, path);
  if (s.LyrErr) return false;
  LogMsg(s, logText + s.ProjFile);
  return true;
}

} // namespace

void ClearProject(Session& s) {
  CloseAllLyrs(s);
  s.host->LayerListChanged();
  MapInit(s);
  s.ProjFile = "";
  s.ProjChanged = 0;
  s.ProjReserved = {};
  s.host->MapRedraw();
}

void OpenProjectMenu(Session& s, const std::function<std::string()>& askPath) {
  if (BusyRefusal(s, "Open Project")) return;
  if (!ConfirmCloseProject(s)) return;
  std::string path = askPath ? askPath() : std::string();
  if (path.empty()) return;
  ReadProject(s, path);
}

void OpenProjectMenu(Session& s, const std::string& path) {
  OpenProjectMenu(s, [&path] { return path; });
}

bool SaveProjectMenu(Session& s) {
  if (s.LyrCount == 0) return false;
  if (BusyRefusal(s, "Save Project")) return false;
  std::string path = s.ProjFile;
  if (path.empty()) path = AskSavePath(s, s.LastDir + kNewProjectName);
  if (path.empty()) return false;
  return SaveTo(s, path, "Save Project ");
}

bool SaveProjectAsMenu(Session& s) {
  if (s.LyrCount == 0) return false;
  if (BusyRefusal(s, "Save Project As")) return false;
  std::string proposed = s.ProjFile.empty() ? s.LastDir + kNewProjectName : s.ProjFile;
  std::string path = AskSavePath(s, proposed);
  if (path.empty()) return false;
  return SaveTo(s, path, "Save Project As ");
}

bool CloseProjectMenu(Session& s) {
  if (s.LyrCount == 0 && s.ProjFile.empty()) return false;
  if (BusyRefusal(s, "Close Project")) return false;
  if (!ConfirmCloseProject(s)) return false;
  LogMsg(s, "Close Project " + s.ProjFile);
  ClearProject(s);
  return true;
}

std::string WindowCaption(const Session& s) {
  if (s.ProjFile.empty() || s.LyrCount == 0) return kProduct;
  return FileNameOf(s.ProjFile) + " : " + kProduct;
}

} // namespace velmora
