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
// A shape layer's path without an extension gets ".shp".
void SaveLyrAs(Session& s, int index, const std::string& path);
// The files of "Remove Deleted Features": the .shp without the deleted records and the
// table without their rows, put in place together; the .shx goes. On failure the old files
// stay and `why` says why. The caller opens the layer again.
bool SaveLyrClean(Session& s, int index, std::string& why);
// True when the layer has changes that no file holds yet.
bool LyrChanged(const Session& s, int index);
// True when the last save of the layer failed because its files or folder can't be
// written: the window then offers Save As.
bool SaveRefusedReadOnly(const Session& s, int index);
// Asks whether to save a read-only layer under another name.
bool AskSaveAsInstead(Session& s, int index);
// The busy test of a layer operation: when the layer is busy, logs
// " *** <op> <name> has been canceled *** " and is true.
bool LyrBusyCanceled(Session& s, int index, const std::string& op);
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
