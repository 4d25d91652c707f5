#pragma once
#include <functional>
#include <string>

#include "model/session.h"

namespace velmora {

// The project file (.qmt): the view, the map's units, every layer's source path and
// symbology, and the user's coordinate systems. No geometry: layers reopen from their files.

// Which of the six view items ReadLyrs keeps out of the caller's variables.
enum ReadLyrsKeep : unsigned {
  kKeepViewW = 1,
  kKeepViewH = 2,
  kKeepLeft = 4,
  kKeepTop = 8,
  kKeepRight = 16,
  kKeepBottom = 32,
};

// Parses the file into the layer table and opens each layer (OpenDeferred). Sets ProjFile,
// ProjVersion, the units and the user coordinate records; LyrErr 1 on a refused or damaged
// file, which leaves no layers.
void ReadLyrs(Session& s, const std::string& path, int& viewW, int& viewH, double& left,
              double& top, double& right, double& bottom, unsigned keep = 0);
// Opens row `n` of a project: at once when the map draws to the window, otherwise (a layout)
// only when the layer would show in the window given.
void OpenDeferred(Session& s, int n, int w, int h, double left, double top, double right,
                  double bottom);
// Open Project and OPEN PROJECT: clears the session, reads the file, fits its window.
void ReadProject(Session& s, const std::string& path);
// The name the command interpreter and OpenAnyFile call.
inline void LoadProject(Session& s, const std::string& path) {
  ReadProject(s, path);
}
// Saves every changed layer and writes the project; LyrErr 1 on failure.
void WriteProject(Session& s, const std::string& path);

// Closes every layer and puts the session as after start.
void ClearProject(Session& s);

// The menus. The dialog texts are these:
inline constexpr const char* kOpenProjectTitle = "Open Project";
inline constexpr const char* kSaveProjectTitle = "Save Project";
inline constexpr const char* kProjectFilter = "Maps files (*.qmt)|*.qmt|All files (*.*)|*.*";
inline constexpr const char* kProjectExt = "qmt";
inline constexpr const char* kProjectPattern = "*.qmt";
inline constexpr const char* kNewProjectName = "NewProject";

// Open Project: refused while a layer is busy, then ConfirmCloseProject, then `askPath`
// (the Open Project dialog, "" when cancelled), then the read.
void OpenProjectMenu(Session& s, const std::function<std::string()>& askPath);
void OpenProjectMenu(Session& s, const std::string& path);
// Save Project: with no project file yet, the Save Project dialog first. True when saved.
bool SaveProjectMenu(Session& s);
// Save Project As: always the dialog, starting at the present project.
bool SaveProjectAsMenu(Session& s);
// Close Project: refused while a layer is busy, then ConfirmCloseProject, the log line
// and ClearProject. False when refused or cancelled.
bool CloseProjectMenu(Session& s);
// The main window's caption: "<project file name> : Velmora GIS", or the product alone.
std::string WindowCaption(const Session& s);

} // namespace velmora
