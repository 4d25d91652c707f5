#include "session/identify.h"

#include "edit/hit_test.h"
#include "edit/pick_index.h"
#include "frame/log.h"
#include "model/file_util.h"
#include "store/dbf_store.h"

namespace velmora {

namespace {

// The newest feature of `lyr` under the pick box, 0 for none.
int HitOnLyr(Session& s, int lyr) {
  SetHitMargins(s, lyr, 1, 1);
  std::vector<int>& near = s.Edit.PickScratch;
  PickCandidates(s, lyr, s.View.PickLeft, s.View.PickBottom, s.View.PickRight, s.View.PickTop,
                 s.Edit.HitNow.HitVrtMargin, near);
  for (size_t i = near.size(); i-- > 0;)
    if (HitTestFeature(s, lyr, near[i], 0, 0)) return near[i];
  return 0;
}

} // namespace

std::vector<IdentifyHit> IdentifyAt(Session& s, double x, double y) {
  std::vector<IdentifyHit> hits;
  SetPickBox(s, x, y);
  const HitRec keep = s.Edit.HitNow; // the editor's test in progress stays as it was
  for (int lyr = 1; lyr <= s.LyrCount; ++lyr) {
    const LyrRec& L = s.Lyr[lyr];
    if (!L.DVisable || L.LyrKind != 1) continue;
    if (int rec = HitOnLyr(s, lyr)) hits.push_back({lyr, rec});
  }
  s.Edit.HitNow = keep;
  return hits;
}

std::vector<std::pair<std::string, std::string>> RecordFields(Session& s, int lyr, int rec) {
  std::vector<std::pair<std::string, std::string>> out;
  if (lyr < 1 || lyr > s.LyrCount || !s.Lyr[lyr].Dbf.DbfExists) return out;
  if (rec < 1 || rec > s.Lyr[lyr].Dbf.DbfRecCount) return out;
  ReadDbfRec(s, lyr, rec - 1);
  for (int f = 1; f <= s.Lyr[lyr].Dbf.DbfFieldCount; ++f)
    out.emplace_back(GetFieldName(s, lyr, f), GetFieldValue(s, lyr, f));
  return out;
}

std::string FollowHyperLink(Session& s, double x, double y) {
  SetPickBox(s, x, y);
  const HitRec keep = s.Edit.HitNow;
  std::string target;
  int lyr = 1;
  for (; lyr <= s.LyrCount && target.empty(); ++lyr) {
    const LyrRec& L = s.Lyr[lyr];
    if (!L.DVisable || L.LyrKind != 1 || !L.HVisible || !L.Dbf.DbfExists) continue;
    const int f = L.HFName;
    if (f < 1 || f > L.Dbf.DbfFieldCount) continue;
    const int rec = HitOnLyr(s, lyr);
    if (!rec) continue;
    ReadDbfRec(s, lyr, rec - 1);
    target = Trim(GetFieldValue(s, lyr, f));
    if (target.empty()) continue;
    const std::string beside = FolderOf(s.Lyr[lyr].Fsource) + target;
    if (!FileExists(target) && target.find("://") == std::string::npos && FileExists(beside))
      target = beside;
    const LyrRec& H = s.Lyr[lyr];
    const bool ok = H.HswUse && !Trim(H.HswName).empty() ? s.host->OpenWith(Trim(H.HswName), target)
                                                         : s.host->ShellOpen(target);
    if (!ok) {
      LogMsg(s, " *** HyperLink " + target + " has been canceled *** ");
      target.clear();
      break;
    }
  }
  s.Edit.HitNow = keep;
  return target;
}

} // namespace velmora
