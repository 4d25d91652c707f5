// Saving a layer: its .shx, .shp and .dbf written as new files and put in place together,
// or, on any failure, the old files left as they were and the changes kept in memory.
#include <string>

#include "frame/busy.h"
#include "frame/log.h"
#include "frame/refusal_log.h"
#include "model/companion_file.h"
#include "model/file_util.h"
#include "model/safe_file.h"
#include "session/layer_life.h"
#include "store/dbf_store.h"
#include "store/shp_store.h"
#include "view/raster_layer.h"

namespace velmora {

namespace {

// The geometry (when `shp`) and the edited rows of the table into one set, committed.
bool WriteLyrFiles(Session& s, int index, bool shp, std::string& why) {
  SafeFileSet files;
  ShpSaved saved;
  bool dbf = s.Lyr[index].Dbf.DbfChanged != 0;
  bool ok = (!shp || WriteShpFiles(s, index, s.Lyr[index].Fsource, false, files, saved)) &&
            (!dbf || WriteDbfFile(s, index, files)) && files.Commit();
  if (!ok) {
    why = files.Error();
    return false;
  }
  if (shp) ApplyShpSaved(s, index, saved);
  if (dbf) ApplyDbfSaved(s, index);
  return true;
}

void SaveRow(Session& s, int index, bool all) {
  if (!all && !LyrChanged(s, index)) return;
  SetLyrTerminate(s, index, false);
  LyrLock(s, index, true, "Save Layer");
  std::string why;
  bool ok = true;
  const int kind = s.Lyr[index].LyrKind;
  if (kind == 0) {
    ok = false; // a row whose file did not open has nothing to write
    why = s.Lyr[index].Fsource + ": the layer is not open";
  } else if (kind == 1) {
    ok = WriteLyrFiles(s, index, all || s.Lyr[index].Shp.ShpChanged, why);
    s.LyrErr = ok ? 0 : 1;
  }
  LyrRec& l = s.Lyr[index];
  if (ok && l.Img.ImgChanged) {
    ok = SaveImage(s, index, l.Fsource);
    if (ok) l.Img.ImgChanged = 0;
  }
  if (ok && l.Img.WorldChanged) {
    SaveWorld(s, index, l.Fsource);
    l.Img.WorldChanged = 0;
  }
  LyrLock(s, index, false, "");
  l.SaveErr = ok ? "" : why.empty() ? std::string("write error") : why;
  if (ok)
    LogMsg(s, "Save Layer " + l.LyrName);
  else
    LogCanceled(s, "Save Layer " + l.LyrName, l.SaveErr);
  s.host->LayerItemChanged(index);
}

// Removes what an older layer of that name left beside the new files: a spatial index of
// other records, a table when the saved layer had none, a code page that is not the table's.
void DropOldCompanions(const std::string& path, bool tableWritten, bool cpgWritten) {
  std::vector<std::string> exts = {"qix", "sbn", "sbx"};
  if (!tableWritten) exts.push_back("dbf");
  if (!cpgWritten) exts.push_back("cpg");
  for (const std::string& ext : exts) {
    std::string p = CompanionPath(path, ext);
    if (FileExists(p)) KillFile(p);
  }
}

} // namespace

void SaveLyr(Session& s, int index) {
  if (index < 1 || index > s.LyrCount || LyrBusyCanceled(s, index, "Save Layer")) return;
  SaveRow(s, index, false);
}

void SaveLyrAll(Session& s, int index) {
  if (index < 1 || index > s.LyrCount || LyrBusyCanceled(s, index, "Save Layer")) return;
  SaveRow(s, index, true);
}

void SaveLyrAs(Session& s, int index, const std::string& pathIn) {
  if (index < 1 || index > s.LyrCount || LyrBusyCanceled(s, index, "Save Layer As")) return;
  std::string path = pathIn;
  bool frame = s.Lyr[index].Shp.ShpType == 99;
  if (!frame && ExtOf(path).empty()) path += ".shp";
  if (UCase(path) == UCase(s.Lyr[index].Fsource)) return;
  std::string oldName = s.Lyr[index].LyrName;
  LyrLock(s, index, true, "Save as Layer");
  if (!frame) {
    SafeFileSet files;
    ShpSaved saved;
    bool table = s.Lyr[index].Dbf.DbfExists != 0;
    bool cpg = table && s.Lyr[index].Dbf.CodePage != 0;
    bool ok = s.Lyr[index].LyrKind == 1 && WriteShpFiles(s, index, path, false, files, saved) &&
              WriteDbfAs(s, index, path, files) && files.Commit();
    if (!ok) {
      std::string why = files.Error();
      if (s.Lyr[index].LyrKind != 1) why = s.Lyr[index].Fsource + ": the layer is not open";
      LogCanceled(s, "Save Layer As", why);
      LyrLock(s, index, false, "");
      return;
    }
    DropOldCompanions(path, table, cpg);
  } else if (!SaveImageAs(s, index, path)) {
    LogMsg(s, " *** Save Layer As has been canceled *** ");
    LyrLock(s, index, false, "");
    return;
  }
  OpenLyrFile(s, index, path);
  s.Lyr[index].SaveErr.clear();
  s.LastDir = FolderOf(path);
  LyrLock(s, index, false, "");
  LogMsg(s, "Save Layer " + oldName + " As " + path);
  s.host->LayerListChanged();
  s.host->MapRedraw();
}

bool SaveLyrClean(Session& s, int index, std::string& why) {
  if (index < 1 || index > s.LyrCount || s.Lyr[index].LyrKind != 1) {
    why = "the layer is not open";
    return false;
  }
  SafeFileSet files;
  ShpSaved saved;
  std::string table;
  const std::string path = s.Lyr[index].Fsource;
  if (!WriteShpFiles(s, index, path, true, files, saved) ||
      !WriteDbfClean(s, index, path, files, table) || !files.Commit()) {
    why = files.Error();
    return false;
  }
  ApplyShpSaved(s, index, saved);
  ApplyDbfCleaned(s, index, table);
  return true;
}

bool SaveRefusedReadOnly(const Session& s, int index) {
  return index >= 1 && index <= s.LyrCount &&
         s.Lyr[index].SaveErr.find("read-only") != std::string::npos && LyrChanged(s, index);
}

bool AskSaveAsInstead(Session& s, int index) {
  if (!SaveRefusedReadOnly(s, index)) return false;
  return s.host->MsgBox("  Layer " + s.Lyr[index].LyrName +
                            " can't be written (read-only).\n  Would you like to save it as "
                            "another file ?   \n",
                        " Save Layer Message Box ", MsgButtons::YesNo,
                        MsgAnswer::No) == MsgAnswer::Yes;
}

} // namespace velmora
