#include "session/remove_deleted.h"

#include "frame/busy.h"
#include "frame/log.h"
#include "frame/refusal_log.h"
#include "model/safe_file.h"
#include "session/layer_life.h"
#include "store/shp_store.h"

namespace velmora {

bool RemoveDeleted(Session& s, int lyr) {
  if (lyr < 1 || lyr > s.LyrCount || s.Lyr[lyr].LyrKind != 1) return false;
  RunningFunction rf(s, lyr, "Remove Deleted Features");
  if (!rf.Started()) return false;
  const std::string what = "Remove Deleted Features in Layer " + s.Lyr[lyr].LyrName;
  std::string why;
  if (!SaveLyrClean(s, lyr, why)) {
    rf.Finish(false);
    LogCanceled(s, what, why);
    return false;
  }
  // The clean save moved each selection bit to its record's new number.
  std::vector<uint8_t> sel = s.Lyr[lyr].SelBits;
  const std::string path = s.Lyr[lyr].Fsource;
  OpenLyrFile(s, lyr, path);
  bool ok = s.Lyr[lyr].LyrKind == 1;
  if (ok) {
    sel.resize(s.Lyr[lyr].SelBits.size(), 0);
    s.Lyr[lyr].SelBits = std::move(sel);
    SafeFileSet files;
    ShpSaved saved;
    ok = WriteShpFiles(s, lyr, path, false, files, saved) && files.Commit();
    if (ok)
      ApplyShpSaved(s, lyr, saved);
    else
      why = files.Error();
  } else {
    why = s.LyrErrText.empty() ? path + ": cannot be read" : s.LyrErrText;
  }
  rf.Finish(false);
  // The picked feature and the edit layer named records that have new numbers now.
  s.Edit.EditHit = HitRec{};
  s.Edit.MenuHit = HitRec{};
  s.View.EditFeature = 0, s.View.EditHotPart = -1, s.View.EditHotVertex = -1;
  s.Held.CurFeatureLyr = 0;
  s.Query.SelDirty = -1;
  if (ok)
    LogMsg(s, what);
  else
    LogCanceled(s, what, why);
  s.host->TableDataChanged(lyr);
  s.host->LayerItemChanged(lyr);
  s.host->MapRedraw();
  return ok;
}

} // namespace velmora
