// The life of a layer on top of the stores: add, open into a row, save, remove, reload.
#include "session/layer_life.h"

#include "table/table_refresh.h"

#include <array>
#include <utility>

#include "frame/busy.h"
#include "frame/log.h"
#include "frame/lyr_slots.h"
#include "frame/refusal_log.h"
#include "model/companion_file.h"
#include "model/file_util.h"
#include "platform/image_io.h"
#include "session/lyr_files.h"
#include "session/project.h"
#include "session/undo.h"
#include "store/dbf_store.h"
#include "store/shp_store.h"
#include "view/map_toolbar.h"
#include "view/raster_layer.h"

namespace velmora {

namespace {

constexpr std::array<std::pair<const char*, int>, 13> kKinds = {{
    {"POINT", 1},
    {"POINTM", 21},
    {"POINTMZ", 11},
    {"POLYLINE", 3},
    {"POLYLINEM", 23},
    {"POLYLINEMZ", 13},
    {"POLYGON", 5},
    {"POLYGONM", 25},
    {"POLYGONMZ", 15},
    {"MULTIPOINTS", 8},
    {"MULTIPOINTSM", 28},
    {"MULTIPOINTSMZ", 18},
    {"MASKLAYOUT", 100},
}};

bool IsPointKind(int t) {
  return t == 1 || t == 8 || t == 11 || t == 18 || t == 21 || t == 28;
}

bool HasChanges(const LyrRec& l) {
  // An edited picture or a moved one is a change to save like any other.
  return l.Shp.ShpChanged || l.Dbf.DbfChanged || l.Img.ImgChanged || l.Img.WorldChanged;
}

// Opens the shape file of a row and its attribute side.
void OpenShapeRow(Session& s, int index, const std::string& path) {
  LyrRec& l = s.Lyr[index];
  l.Net = NetBlock{};
  if (l.Dbf.DbfOpen || l.Dbf.SwapOpen) CloseDbf(s, index);
  l.LyrKind = 0;
  OpenShp(s, index, path);
  s.LyrErr = s.ShpErr;
  if (s.ShpErr) return;
  LyrRec& r = s.Lyr[index];
  if (r.Shp.ShpType == 99) {
    s.LyrErr = 2; // a raster's frame: the caller opens the image
    return;
  }
  std::string dbf = CompanionPath(path, "dbf");
  s.DbfErr = 0;
  OpenDbf(s, index, dbf);
  if (s.DbfErr == 1 && FileExists(dbf)) {
    // The user's table is never replaced: a table that cannot be read refuses the layer,
    // and the file stays as it is.
    s.LyrErr = 1;
    s.LyrErrText = s.DbfErrText.empty() ? FileNameOf(dbf) + ": cannot be read" : s.DbfErrText;
    return;
  }
  if (s.DbfErr == 1) { // no table: the default one is made
    s.DbfErr = 0;
    if (r.Shp.ShpType == 100)
      NewDbfMask(s, index, dbf);
    else
      NewDbfDefault(s, index, dbf);
    // Where none can be made (a read-only folder) the layer opens without a table.
    if (s.DbfErr) InitDbf(s, index);
    s.DbfErr = 0;
    // A table made to stand beside the geometry is no change of the layer.
    s.Lyr[index].Dbf.DbfChanged = 0;
    s.Lyr[index].Shp.ShpChanged = 0;
  }
  LyrRec& done = s.Lyr[index];
  done.LyrKind = 1;
  done.LyrName = FileNameOf(done.Fsource);
  if (IsPointKind(done.Shp.ShpType)) {
    if (done.CDrawWidth.empty()) SizeClasses(done, 0);
    done.CDrawWidth[0] = 3;
    done.SDrawWidth = 3;
  }
}

void OpenImageRow(Session& s, int index, const std::string& path) {
  OpenImage(s, index, path);
  LyrRec& l = s.Lyr[index];
  if (s.LyrErr || l.LyrKind != 2) {
    l.LyrKind = 0;
    if (!s.LyrErr) s.LyrErr = 1;
    return;
  }
  l.LyrName = FileNameOf(path);
  if (l.CDrawStyle.empty()) SizeClasses(l, 0);
  l.CDrawStyle[0] = 5;
  SetEForeColor(l, 0, 0, 255);
  SetEFillColor(l, 255, 0, 0);
  l.SSelectable = 0;
}

} // namespace

int ShapeTypeOfKind(const std::string& kindWord) {
  std::string w = UCase(Trim(kindWord));
  for (const auto& [word, code] : kKinds)
    if (w == word) return code;
  return 0;
}

std::string KindWordList() {
  std::string out;
  for (const auto& [word, code] : kKinds) {
    if (code == 100) continue; // the mask layout is no kind of the make menus
    out += (out.empty() ? "" : ", ") + std::string(word);
  }
  return out;
}

void OpenLyrFile(Session& s, int index, const std::string& path) {
  s.LyrErrText.clear();
  std::string ext = ExtOf(path);
  if (ext == "shp" || ext == "tmp") {
    OpenShapeRow(s, index, path);
  } else if (IsImageExt(ext) && (s.GdipReady || !(ext == "tif" || ext == "png"))) {
    OpenImageRow(s, index, path);
  } else {
    s.Lyr[index].LyrKind = 0; // quietly no layer
    s.LyrErr = 1;
  }
  if (s.Lyr[index].LyrKind) InitDataUndo(s, index); // a fresh journal of cell edits
  if (index >= 1 && index <= s.LyrCount) s.host->LayerItemChanged(index);
}

void NewLyrRow(Session& s, const std::string& path) {
  int n = s.LyrCount + 1;
  s.Lyr.Resize(n);
  s.LyrCount = n;
  SetLyrDefaults(s, n);
  OpenLyrFile(s, n, path);
  if (s.Lyr[n].LyrKind == 0) {
    CloseLyrFiles(s, n);
    s.LyrCount = n - 1;
    s.Lyr.Resize(n - 1);
  }
}

void AddShape(Session& s, const std::string& pathIn, bool readOnly) {
  if (DialogsBlock(s, "adding layer")) return;
  std::string path = pathIn;
  std::string ext = ExtOf(path);
  if (ext == "dbf" || ext == "shx") path = CompanionPath(path, "shp");
  s.LastDir = FolderOf(path);
  if (!FileExists(path)) return;
  WaitCursor(s);
  int before = s.LyrCount;
  s.LyrErrText.clear();
  NewLyrRow(s, path);
  if (s.LyrErr == 2) {
    LogMsg(s, " *** Add Layer " + path +
                  " has been canceled, Please Open its Raster Image file Instead *** ");
  } else if (s.LyrErr == 1 || s.LyrCount == before) {
    LogMsg(s, " *** Add Layer " + path + " has been canceled *** ");
    if (!s.LyrErrText.empty()) LogMsg(s, s.LyrErrText);
  } else {
    int n = s.LyrCount;
    s.ActiveLyr = n;
    s.host->LayerListChanged();
    if (n == 1) {
      CheckFirstLyrUnits(s, n);
      FirstLyrView(s); // the zoom-in tool and the full extent
    } else {
      s.host->MapRedraw();
    }
    LogMsg(s, "Add Layer " + path);
    if (readOnly) s.Lyr[n].EEditable = 0;
    s.ProjChanged = -1;
  }
  NormalCursor(s);
}

void CheckFirstLyrUnits(Session& s, int index) {
  if (s.LyrCount != 1) return;
  LyrRec& l = s.Lyr[index];
  if (LeftExtend(l) < -360 || TopExtend(l) > 180 || RightExtend(l) > 360 || BottomExtend(l) < -180)
    s.MapUnit = 1;
}

void MakeNewLyr(Session& s, const std::string& path, int shapeType, const std::string& kindWord,
                bool add) {
  if (DialogsBlock(s, "making New layer")) return;
  // Making the files anew would empty a layer that is open on them.
  if (int open = FindLyrOnFiles(s, path)) {
    LogMsg(s, " *** Make New " + kindWord + " Layer " + path + " has been canceled *** ");
    LogMsg(s, "Layer " + s.Lyr[open].LyrName + " is open on these files");
    return;
  }
  int slot = FindFreeWorkLyr(s);
  LyrLock(s, slot, true, "Make New Shape File");
  NewShp(s, slot, path, shapeType);
  bool ok = s.ShpErr == 0;
  CloseShp(s, slot);
  ClearLyr(s, slot);
  if (!ok) {
    LogMsg(s, " *** Make New " + kindWord + " Layer " + path + " has been canceled *** ");
    return;
  }
  s.LastDir = FolderOf(path);
  LogMsg(s, "Make New " + kindWord + " Layer " + path);
  if (add) AddShape(s, ReplaceExt(path, "shp"), false);
}

void CloseLyrFiles(Session& s, int index) {
  LyrRec& l = s.Lyr[index];
  if (l.Img.ImgPic && s.host->Images()) s.host->Images()->Free(l.Img.ImgPic);
  l.Img = ImgBlock{};
  l.Net = NetBlock{};
  CloseShp(s, index);
  if (l.Dbf.DbfOpen || l.Dbf.SwapOpen) CloseDbf(s, index);
  SizeRecs(s, index, 0);
  s.Lyr[index].Shp.RecCount = 0;
}

void RemoveLyr(Session& s, int index, bool redraw) {
  if (index < 1 || index > s.LyrCount || LyrBusyCanceled(s, index, "Remove Layer")) return;
  LogMsg(s, "Remove Layer " + s.Lyr[index].LyrName);
  s.ProjChanged = -1;
  UndoPurgeLyr(s, s.Lyr[index].Fsource);
  unInstFrmTbl(s, index);
  CloseLyrFiles(s, index);
  for (int i = index; i < s.LyrCount; ++i) s.Lyr[i] = std::move(s.Lyr[i + 1]);
  HeldLyrs& h = s.Held;
  for (int* held : {&h.EdtLyr, &h.CurFeatureLyr, &h.AddVertexLyr, &s.ActiveLyr})
    if (*held == index) *held = 0;
  s.LyrCount -= 1;
  s.Lyr.Resize(s.LyrCount);
  if (s.ActiveLyr > s.LyrCount) s.ActiveLyr = 0;
  s.host->LayerListChanged();
  if (redraw) s.host->MapRedraw();
}

namespace {

// Yes saves and goes on, No goes on, Cancel stops. A save that failed stops too: the
// changes are the only copy.
bool AskSaveChanges(Session& s, int index, const std::string& title) {
  LyrRec& l = s.Lyr[index];
  MsgAnswer a = s.host->MsgBox("  Would you like to save the changes in layer " + l.LyrName +
                                   " to " + l.Fsource + " ?   \n",
                               title, MsgButtons::YesNoCancel, MsgAnswer::Cancel);
  if (a == MsgAnswer::Cancel) return false;
  if (a == MsgAnswer::Yes) SaveLyr(s, index);
  return a == MsgAnswer::No || !LyrChanged(s, index);
}

} // namespace

bool ConfirmRemoveLyr(Session& s, int index) {
  if (index < 1 || index > s.LyrCount) return false;
  const std::string title = " Remove layer Message Box ";
  if (HasChanges(s.Lyr[index])) return AskSaveChanges(s, index, title);
  return s.host->MsgBox("  Are you sure you would like to remove layer " + s.Lyr[index].LyrName +
                            " ?   \n",
                        title, MsgButtons::YesNo, MsgAnswer::Yes) == MsgAnswer::Yes;
}

bool ConfirmReloadLyr(Session& s, int index) {
  if (index < 1 || index > s.LyrCount) return false;
  if (!HasChanges(s.Lyr[index])) return true;
  return AskSaveChanges(s, index, " Reload layer Message Box ");
}

bool ConfirmCloseProject(Session& s, const std::function<bool(Session&)>& saveProject) {
  if (s.LyrCount == 0) return true;
  bool changed = s.ProjChanged != 0;
  for (int i = 1; i <= s.LyrCount && !changed; ++i) changed = HasChanges(s.Lyr[i]);
  if (!changed) return true;
  MsgAnswer a =
      s.host->MsgBox("  Would you like to save the changes to " + s.ProjFile + " ?   ",
                     " Close Project Message Box ", MsgButtons::YesNoCancel, MsgAnswer::Cancel);
  if (a == MsgAnswer::Cancel) return false;
  if (a == MsgAnswer::No) return true;
  if (!(saveProject ? saveProject(s) : SaveProjectMenu(s))) return false;
  // A layer whose save failed keeps the session open: its changes are the only copy.
  for (int i = 1; i <= s.LyrCount; ++i)
    if (LyrChanged(s, i)) return false;
  return true;
}

bool LyrBusyCanceled(Session& s, int index, const std::string& op) {
  if (!LyrIsBusyMsg(s, index)) return false;
  LogMsg(s, " *** " + op + " " + s.Lyr[index].LyrName + " has been canceled *** ");
  return true;
}

bool LyrChanged(const Session& s, int index) {
  return index >= 1 && index <= s.LyrCount && HasChanges(s.Lyr[index]);
}

void ReloadLyr(Session& s, int index) {
  if (index < 1 || index > s.LyrCount || LyrBusyCanceled(s, index, "Reload Layer")) return;
  if (!ConfirmReloadLyr(s, index)) return;
  OpenLyrFile(s, index, s.Lyr[index].Fsource);
  if (s.Lyr[index].LyrKind == 0)
    LogCanceled(s, "Reload Layer " + s.Lyr[index].LyrName,
                s.LyrErrText.empty() ? s.Lyr[index].Fsource + ": cannot be read" : s.LyrErrText);
  else
    LogMsg(s, "Reload Layer " + s.Lyr[index].LyrName);
  s.host->MapRedraw();
}

void SetLyrDataSource(Session& s, int index, const std::string& path) {
  if (index < 1 || index > s.LyrCount || LyrIsBusyMsg(s, index)) return;
  OpenLyrFile(s, index, path);
  s.LastDir = FolderOf(path);
  s.ProjChanged = -1;
  LogMsg(s, "Set data Source Layer " + s.Lyr[index].LyrName);
  s.host->MapRedraw();
}

void CloseAllLyrs(Session& s) {
  for (int i = s.LyrCount; i >= 1; --i) CloseLyrFiles(s, i);
  s.LyrCount = 0;
  s.Lyr.Resize(0);
  s.ActiveLyr = 0;
}

} // namespace velmora
