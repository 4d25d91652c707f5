#pragma once
#include <functional>
#include <string>

#include "model/session.h"

namespace velmora {

// The life of a layer: adding, opening into a row, saving, removing, reloading.

// The twelve kinds a user can make, and "MASKLAYOUT"; 0 for an unknown word.
int ShapeTypeOfKind(const std::string& kindWord);

void AddShape(Session& s, const std::string& path, bool readOnly);
void OpenLyrFile(Session& s, int index, const std::string& path);
// Grows Lyr by one row, sets defaults, opens the file; a failed open shrinks it again.
void NewLyrRow(Session& s, const std::string& path);
void RemoveLyr(Session& s, int index, bool redraw);
void SaveLyr(Session& s, int index);
void SaveLyrAll(Session& s, int index);
void SaveLyrAs(Session& s, int index, const std::string& path);
bool ConfirmRemoveLyr(Session& s, int index);
bool ConfirmReloadLyr(Session& s, int index);
// `saveProject` saves the project and tells whether it succeeded; by default Save Project
// does (falling to its dialog when ProjFile is ""). Yes goes on only after a good save.
bool ConfirmCloseProject(Session& s, const std::function<bool(Session&)>& saveProject = nullptr);
void CheckFirstLyrUnits(Session& s, int index);
// Makes the empty layer file of the kind (in a work slot) and adds it: the make-new menu.
void MakeNewLyr(Session& s, const std::string& path, int shapeType, const std::string& kindWord,
                bool add);
void ReloadLyr(Session& s, int index);
void SetLyrDataSource(Session& s, int index, const std::string& path);
// Closes the geometry, attribute and network sides of a row.
void CloseLyrFiles(Session& s, int index);
// Closes every row and empties the layer table.
void CloseAllLyrs(Session& s);

} // namespace velmora
