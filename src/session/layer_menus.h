#pragma once
#include <string>
#include <vector>

#include "model/session.h"

namespace velmora {

// What the layer and project menus of the main window do. Rows are user layer numbers
// as selected in the layer list, 1 on top.

// The file filters of the layer dialogs, in the "description|pattern|..." form.
extern const char* const kLyrFilesFilter; // add layer and set data source
extern const char* const kNewLyrFilter;   // make new layer

// The words of the "Make New Layer" menu: the twelve kinds, then "MASKLAYOUT".
const std::vector<std::string>& NewLyrKinds();
std::string NewLyrTitle(const std::string& kind);       // "Make New <kind> Layer"
std::string NewLyrDefaultName(const std::string& kind); // "<kind>New"

// Remove: refused while a dialog is open; walks the selection from the bottom up, asks
// for each and redraws once at the end.
void RemoveSelectedLyrs(Session& s, std::vector<int> rows);
// "ReLoad Layer" for each selected layer.
void ReloadSelectedLyrs(Session& s, const std::vector<int>& rows);
// The title of the data source dialog for this selection.
std::string DataSourceTitle(const Session& s, const std::vector<int>& rows);
// The first selected layer takes `path`; each further one the file of its own name in the
// folder of `path`.
void SetSelectedDataSource(Session& s, const std::vector<int>& rows, const std::string& path);

// The two rectify menu items of the active layer.
struct LyrMenus {
  bool Rectify = false, UnRectify = false;
};
LyrMenus ApplyLyrMenus(const Session& s, int n);

// New Project: a second copy of the program, only when this one holds layers.
bool NewProject(Session& s);
// Close Project, ClearProject and the window caption are the project's (project.h).

} // namespace velmora
