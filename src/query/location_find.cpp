// FindByLocation: the relation's loops with the candidate pairs filtered by a packed
// R-tree of the inner layer. The surviving pairs are visited in the order of the plain
// loops (outer record by record, inner in ascending record numbers), so marks and the
// transferred values are the same as those of the plain quadratic walk.
#include <algorithm>
#include <optional>

#include "frame/busy.h"
#include "frame/log.h"
#include "query/location.h"
#include "query/spatial_index.h"
#include "query/spatial_walk.h"

namespace velmora {

using namespace spatial;

const char* const kLocationMethods[3] = {"New Selection", "Add to Selection",
                                         "Clear From Selection"};
const char* const kLocationCriteria[3] = {"All Features", "Inside Selected Features",
                                          "Outside Selected Features"};
const char* const kLocationRelations[9] = {
    "Intersect",          "Not Intersect",        "Completely inside",
    "Completely outside", "Inside or Intersect",  "Outside or Intersect",
    "Completely Contain", "Contain or Intersect", "Overlap"};
const char* const kLocationRefCriteria[2] = {"All Features", "Selected Features"};

namespace {

const char* const kOperation = "Find by Location Query";

bool Bit(const std::vector<uint8_t>& b, int r) {
  size_t i = size_t(r) / 8;
  return i < b.size() && (b[i] >> (r % 8)) & 1;
}
void SetBit(std::vector<uint8_t>& b, int r, bool on) {
  size_t i = size_t(r) / 8;
  if (i >= b.size()) b.resize(i + 1, 0);
  uint8_t m = uint8_t(1u << (r % 8));
  b[i] = on ? uint8_t(b[i] | m) : uint8_t(b[i] & ~m);
}

bool TakesPart(const LyrRec& l, int criteria, int f) {
  return criteria == 1 || (criteria == 2) == Bit(l.SelBits, f);
}

bool ShapeLyr(const Session& s, int n) {
  return n >= 1 && n <= s.LyrCount && s.Lyr[n].LyrKind == 1;
}

// The terminate question for a busy layer; true when it was busy.
bool AskBusy(Session& s, int n) {
  if (!LyrIsBusy(s, n)) return false;
  const std::string source = s.Lyr[n].Fsource;
  bool yes = s.host->MsgBox("  Would you like to Terminate " + s.Lyr[n].BusyFunc + "\r\n" +
                                " Function in layer " + s.Lyr[n].LyrName + " ?   ",
                            s.Lyr[n].LyrName + " : Query Message Box ", MsgButtons::YesNo,
                            MsgAnswer::No) == MsgAnswer::Yes;
  // The box turned the event loop: the row is taken anew.
  if (yes && n <= s.LyrCount && s.Lyr[n].Fsource == source) SetLyrTerminate(s, n, true);
  return true;
}

size_t VertexCount(const ShpRecord& r) {
  size_t n = 0;
  for (const ShpPart& p : r.Parts()) n += Live(p).size();
  return n;
}

// The mask pays for its picture only when many candidates meet a large feature.
constexpr double kMaskWork = 2e6;

} // namespace

bool LocationRelationPositive(int relation) {
  return relation != 2 && relation != 4 && relation != 6;
}

bool LocationFindOuter(int relation) {
  return relation == 7 || relation == 8;
}

bool LocationPredicate(const Session& s, int relation, int find, int f, int ref, int g,
                       double tol) {
  switch (relation) {
  case 1:
  case 2:
    return FeaturesIntersect(s, find, f, ref, g, nullptr, tol);
  case 3:
    return FeatureInside(s, find, f, ref, g, nullptr, tol);
  case 4:
    return FeatureTouchInside(s, find, f, ref, g, nullptr, tol);
  case 5:
  case 6:
    return FeatureInsideOrEdge(s, find, f, ref, g, nullptr, tol);
  case 7:
    return FeatureInside(s, ref, g, find, f, nullptr, tol);
  case 8:
    return FeatureTouchInside(s, ref, g, find, f, nullptr, tol);
  case 9:
    return FeatureOverlap(s, find, f, ref, g, nullptr, tol);
  default:
    return false;
  }
}

std::string LocationDefaultTolerance(const Session& s) {
  return s.MapUnit != 0 ? "0.01" : "0.0000001";
}

int FindByLocation(Session& s, const LocationQuery& q) {
  const std::string canceled = " *** Find by Location has been canceled *** ";
  if (!ShapeLyr(s, q.FindLyr) || !ShapeLyr(s, q.RefLyr) || q.Method < 1 || q.Method > 3 ||
      q.Criteria < 1 || q.Criteria > 3 || q.Relation < 1 || q.Relation > 9 || !(q.Tol >= 0)) {
    LogMsg(s, canceled);
    return -1;
  }
  if (AskBusy(s, q.FindLyr) || (q.RefLyr != q.FindLyr && AskBusy(s, q.RefLyr))) {
    LogMsg(s, canceled);
    return -1;
  }
  const bool same = q.RefLyr == q.FindLyr;
  RunningFunction rfFind(s, q.FindLyr, kOperation);
  std::optional<RunningFunction> rfRef;
  if (!same) rfRef.emplace(s, q.RefLyr, kOperation);
  if (!rfFind.Started() || (rfRef && !rfRef->Started())) return -1;
  int find = q.FindLyr, ref = q.RefLyr;
  const double tol = q.Tol;
  const bool findOuter = LocationFindOuter(q.Relation);
  const bool transfer = !q.TransferFields.empty() && LocationRelationPositive(q.Relation);

  {
    LyrRec& F = s.Lyr[find];
    F.QryBits.assign(size_t(std::max(F.Shp.RecCount, 0) + 7) / 8 + 1, 0);
  }
  auto inner = [&] { return findOuter ? ref : find; };
  auto outer = [&] { return findOuter ? find : ref; };
  BoxIndex ix = BuildBoxIndex(s, inner());
  std::vector<int32_t> cand;
  bool stopped = false;
  long long work = 0;
  for (int o = 1; o <= s.Lyr[outer()].Shp.RecCount; ++o) {
    // A yield every few outer features and after much work; the rows may move meanwhile.
    if (o % 32 == 1 || work > 4096) {
      work = 0;
      long long max = s.Lyr[outer()].Shp.RecCount;
      stopped = rfFind.Step(o - 1, max) || (rfRef && rfRef->Step(o - 1, max));
      if (stopped || rfFind.Gone() || (rfRef && rfRef->Gone())) {
        stopped = true;
        break;
      }
      find = rfFind.Layer();
      ref = rfRef ? rfRef->Layer() : find;
      const ShpBlock& B = s.Lyr[inner()].Shp;
      if (B.BoxGen != ix.BoxGen || B.RecCount != ix.RecCount) ix = BuildBoxIndex(s, inner());
      if (o > s.Lyr[outer()].Shp.RecCount) break;
    }
    const ShpRecord* ro = Feat(s, outer(), o);
    if (!ro) continue;
    if (findOuter ? !TakesPart(s.Lyr[find], q.Criteria, o)
                  : q.RefSelectedOnly && !Bit(s.Lyr[ref].SelBits, o))
      continue;
    cand.clear();
    Box b = BoxOf(*ro);
    SearchBoxIndex(ix, b.x1 - tol, b.y1 - tol, b.x2 + tol, b.y2 + tol, cand);
    std::erase_if(cand, [&](int32_t c) {
      const ShpRecord* rc = Feat(s, inner(), c);
      return !rc || !BoxesMeet(*rc, *ro, tol);
    });
    if (cand.empty()) continue;
    std::sort(cand.begin(), cand.end());
    work += (long long)cand.size();
    bool masked = double(cand.size()) * double(VertexCount(*ro)) > kMaskWork;
    if (masked) BuildMask(s, outer(), o, tol);
    for (int32_t c : cand) {
      int f = findOuter ? o : c, g = findOuter ? c : o;
      if (findOuter ? q.RefSelectedOnly && !Bit(s.Lyr[ref].SelBits, g)
                    : !TakesPart(s.Lyr[find], q.Criteria, f))
        continue;
      // Without a transfer a second match of a marked feature changes nothing.
      if (!findOuter && !transfer && Bit(s.Lyr[find].QryBits, f)) continue;
      if (!LocationPredicate(s, q.Relation, find, f, ref, g, tol)) continue;
      SetBit(s.Lyr[find].QryBits, f, true);
      if (transfer) TransferData(s, ref, g, find, f, q.TransferFields);
      if (findOuter) break;
    }
    if (masked) FreeMask(s);
  }
  if (!stopped) {
    stopped = rfFind.Step(s.Lyr[outer()].Shp.RecCount, s.Lyr[outer()].Shp.RecCount) ||
              (rfRef && rfRef->Step(s.Lyr[outer()].Shp.RecCount, s.Lyr[outer()].Shp.RecCount));
  }
  if (rfFind.Gone()) return -1;
  find = rfFind.Layer();

  // The complement, the method, the count.
  LyrRec& F = s.Lyr[find];
  const int n = F.Shp.RecCount;
  if (!LocationRelationPositive(q.Relation))
    for (int f = 1; f <= n; ++f)
      if (F.Shp.ShpRecs[size_t(f)].ShapeType != 0 && TakesPart(F, q.Criteria, f))
        SetBit(F.QryBits, f, !Bit(F.QryBits, f));
  int count = 0;
  for (int f = 1; f <= n; ++f) {
    bool mark = Bit(F.QryBits, f);
    count += mark;
    if (q.Method == 1)
      SetBit(F.SelBits, f, mark);
    else if (mark)
      SetBit(F.SelBits, f, q.Method == 2);
  }
  rfFind.Finish(false);
  if (rfRef) rfRef->Finish(false);
  s.host->FuncText(std::to_string(count) + " Features have been Selected Successfully in Layer " +
                   s.Lyr[find].LyrName);
  LogMsg(s, stopped ? canceled : "Find by Location in Layer " + s.Lyr[find].LyrName);
  s.host->TableDataChanged(find);
  s.host->MapRedraw();
  return count;
}

} // namespace velmora
