#include "coords/prj_file.h"
#include "frame/log.h"
#include "model/companion_file.h"
#include "model/file_util.h"
#include "session/commands.h"
#include "session/layer_life.h"
#include "session/project.h"

namespace velmora {

void OpenAnyFile(Session& s, const std::string& given) {
  if (given.empty()) return;
  std::string path;
  for (char c : given)
    if (c != '"') path += c;
  const std::string ext = ExtOf(path);

  if (ext == "qmt") {
    if (ConfirmCloseProject(s)) LoadProject(s, path);
  } else if (ext == "shp" || ext == "jpg" || ext == "gif" || ext == "bmp") {
    AddShape(s, path, false);
  } else if (ext == "dbf" || ext == "shx") {
    AddShape(s, CompanionPath(path, "shp"), false);
  } else if (ext == "tif" || ext == "png") {
    if (s.GdipReady) AddShape(s, path, false);
  } else if (ext == "prj") {
    LoadPrjFile(s, path);
  } else if (ext == "htm" || ext == "html" || ext == "asp" || ext == "jsp" || ext == "vbs" ||
             ext == "js") {
    s.host->ShellOpen(path);
  } else if (ext == "lst") {
    RunLstFile(s, path);
  } else if (!ext.empty() && FileExists(path)) {
    // Any other document goes to the desktop's application for it. A word without an
    // extension (the first word of a command line) is no document.
    s.host->ShellOpen(path);
    LogMsg(s, "Open object " + path);
  }
  s.host->LayerListChanged();
}

} // namespace velmora
