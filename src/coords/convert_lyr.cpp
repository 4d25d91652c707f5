#include "coords/convert_lyr.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "coords/image_warp.h"
#include "coords/utm_zone.h"
#include "frame/busy.h"
#include "frame/log.h"
#include "model/c_numbers.h"
#include "model/file_util.h"
#include "store/shp_store.h"
#include "view/navigation.h"

namespace velmora {

namespace {

const std::string& RecordName(const Session& s, int datum) {
  static const std::string kNone;
  if (datum < 0 || size_t(datum) >= s.DatumTbl.size()) return kNone;
  return s.DatumTbl[size_t(datum)].CrdName;
}

bool Convertible(int shapeType) {
  return shapeType >= 1 && shapeType <= 100 && shapeType != 99;
}

// The row is taken anew by its number after every step: other layers may come and go
// while the function yields, which moves rows in memory and may renumber this one.
void ConvertShpCoords(Session& s, const CoordConv& c, RunningFunction& rf) {
  {
    LyrRec& l = s.Lyr[rf.Layer()];
    ConvertBox(s, c, LeftExtend(l), BottomExtend(l), RightExtend(l), TopExtend(l));
  }
  const int count = s.Lyr[rf.Layer()].Shp.RecCount;
  for (int i = 1; i <= count; ++i) {
    const int lyr = rf.Layer();
    if (size_t(i) >= s.Lyr[lyr].Shp.ShpRecs.size()) break;
    ShpRecord& r = s.Lyr[lyr].Shp.ShpRecs[size_t(i)];
    if (Convertible(r.ShapeType)) {
      ConvertRecCoords(s, c, r);
      RecalcRecBox(s, lyr, i);
    }
    if (rf.Step(i, count + 1)) break;
  }
  if (rf.Gone()) return;
  s.Lyr[rf.Layer()].Shp.ShpChanged = -1;
  RecalcExtent(s, rf.Layer());
}

} // namespace

bool ConvertLyrCoords(Session& s, int lyr, int srcDatum, int dstDatum, int zone, bool south,
                      ConvertEnd* end) {
  if (lyr < 1 || lyr > s.LyrCount) return false;
  CoordConv c;
  c.Dir = srcDatum != 0 ? CoordDir::GridToGeo : CoordDir::GeoToGrid;
  c.Datum = srcDatum != 0 ? srcDatum : dstDatum;
  c.Zone = zone;
  c.South = south;
  const std::string name = s.Lyr[lyr].LyrName;
  std::string caption =
      "Converting Coordinates in Layer " + name +
      (c.Dir == CoordDir::GridToGeo ? " from " + RecordName(s, c.Datum) + " to Geographic "
                                    : " from Geographic to " + RecordName(s, c.Datum));
  RunningFunction rf(s, lyr, "Coordinates System Converting", caption);
  if (!rf.Started()) return false;
  s.host->Progress(0, s.Lyr[lyr].Shp.RecCount + 1);
  bool done = false;
  if (s.Lyr[lyr].LyrKind == 1) {
    ConvertShpCoords(s, c, rf);
    done = !rf.Gone();
  } else if (s.Lyr[lyr].LyrKind == 2) {
    done = ConvertImgCoords(s, rf, c);
  }
  rf.Finish(false);
  if (end) *end = ConvertEnd{rf.Gone() ? 0 : rf.Layer(), rf.Terminated()};
  if (!done) return false;
  MapFull(s);
  s.host->MapRedraw();
  return true;
}

bool ZoneTextOk(const std::string& text, int& zone) {
  double v = 0;
  LeadingNumber(text, v);
  if (!(v > 0 && v < 61)) return false;
  zone = int(std::nearbyint(v));
  return zone >= 1 && zone <= 60;
}

std::string ConvertCoordsText(const Session& s, const ConvertCoordsArgs& a) {
  std::string name = a.Lyr >= 1 && a.Lyr <= s.LyrCount ? s.Lyr[a.Lyr].LyrName : std::string();
  std::string text = "Converting Coordinates System in Layer " + name;
  if (a.Dir == CoordDir::GeoToGrid) return text + " from Geographic to " + RecordName(s, a.Datum);
  return text + " from " + RecordName(s, a.Datum) + " to Geographic ";
}

ConvertStatus ConvertCoordsCmd(Session& s, const ConvertCoordsArgs& a) {
  const std::string refused = " *** " + ConvertCoordsText(s, a);
  auto cancelLine = [&] {
    // The grid-to-geographic text ends in a blank already.
    return a.Dir == CoordDir::GeoToGrid ? refused + " has been canceled *** "
                                        : refused + "has been canceled *** ";
  };
  if (a.Lyr < 1 || a.Lyr > s.LyrCount) return ConvertStatus::NotReady;
  if (LyrIsBusy(s, a.Lyr)) {
    LogMsg(s, cancelLine());
    return ConvertStatus::Busy;
  }
  SetLyrTerminate(s, a.Lyr, false);
  if (s.Lyr[a.Lyr].LyrKind == 0 || a.Datum < 1 || size_t(a.Datum) >= s.DatumTbl.size())
    return ConvertStatus::NotReady;
  int zone = 0;
  if (!ZoneTextOk(a.ZoneText, zone)) return ConvertStatus::BadZone;
  // Both lines name the layer as it was called: it may move while the conversion runs.
  const std::string canceled = cancelLine(), success = ConvertCoordsText(s, a);
  ConvertEnd end;
  bool done = a.Dir == CoordDir::GridToGeo
                  ? ConvertLyrCoords(s, a.Lyr, a.Datum, 0, zone, a.South, &end)
                  : ConvertLyrCoords(s, a.Lyr, 0, a.Datum, zone, a.South, &end);
  if (!done) {
    LogMsg(s, canceled);
    return end.Terminated ? ConvertStatus::Terminated : ConvertStatus::NotReady;
  }
  if (end.Terminated) {
    LogMsg(s, canceled);
    return ConvertStatus::Terminated;
  }
  LogMsg(s, success);
  return ConvertStatus::Converted;
}

bool CornerZones(const Session& s, int lyr, std::string& leftBottom, std::string& rightTop) {
  leftBottom.clear(), rightTop.clear();
  if (lyr < 1 || lyr > s.LyrCount) return false;
  const LyrRec& l = s.Lyr[lyr];
  const ShpMainHeader& h = l.Shp.ShpHeader;
  if (!(h.Xmin >= -180 && h.Xmax <= 180 && h.Ymin >= -90 && h.Ymax <= 90)) return false;
  auto text = [](double lat, double lon) {
    return std::string(IsSouth(lat) ? "South" : "North") + " " + std::to_string(UTMZone(lat, lon));
  };
  leftBottom = text(h.Ymin, h.Xmin);
  rightTop = text(h.Ymax, h.Xmax);
  return true;
}

} // namespace velmora
