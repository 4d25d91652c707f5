#include "coords/convert_lyr.h"

#include <cmath>
#include <cstdlib>

#include "coords/image_warp.h"
#include "coords/utm_zone.h"
#include "frame/busy.h"
#include "frame/log.h"
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

void ConvertShpCoords(Session& s, int lyr, const CoordConv& c, RunningFunction& rf) {
  LyrRec& l = s.Lyr[lyr];
  ConvertBox(s, c, LeftExtend(l), BottomExtend(l), RightExtend(l), TopExtend(l));
  const int count = l.Shp.RecCount;
  for (int i = 1; i <= count && size_t(i) < s.Lyr[lyr].Shp.ShpRecs.size(); ++i) {
    ShpRecord& r = s.Lyr[lyr].Shp.ShpRecs[size_t(i)];
    if (Convertible(r.ShapeType)) {
      ConvertRecCoords(s, c, r);
      RecalcRecBox(s, lyr, i);
    }
    if (rf.Step(i, count + 1)) break;
  }
  s.Lyr[lyr].Shp.ShpChanged = -1;
  RecalcExtent(s, lyr);
}

} // namespace

bool ConvertLyrCoords(Session& s, int lyr, int srcDatum, int dstDatum, int zone, bool south) {
  if (lyr < 1 || lyr > s.LyrCount) return false;
  CoordConv c;
  c.Dir = srcDatum != 0 ? CoordDir::GridToGeo : CoordDir::GeoToGrid;
  c.Datum = srcDatum != 0 ? srcDatum : dstDatum;
  c.Zone = zone;
  c.South = south;
  const std::string& name = s.Lyr[lyr].LyrName;
  std::string caption =
      "Converting Coordinates in Layer " + name +
      (c.Dir == CoordDir::GridToGeo ? " from " + RecordName(s, c.Datum) + " to Geographic "
                                    : " from Geographic to " + RecordName(s, c.Datum));
  RunningFunction rf(s, lyr, "Coordinates System Converting", caption);
  if (!rf.Started()) return false;
  s.host->Progress(0, s.Lyr[lyr].Shp.RecCount + 1);
  bool done = false;
  if (s.Lyr[lyr].LyrKind == 1) {
    ConvertShpCoords(s, lyr, c, rf);
    done = true;
  } else if (s.Lyr[lyr].LyrKind == 2) {
    done = ConvertImgCoords(s, lyr, c, [&rf](int row) { return rf.Step(row, row + 1); });
  }
  rf.Finish(false);
  if (!done) return false;
  MapFull(s);
  s.host->MapRedraw();
  return true;
}

bool ZoneTextOk(const std::string& text, int& zone) {
  std::string t = Trim(text);
  char* end = nullptr;
  double v = t.empty() ? 0 : std::strtod(t.c_str(), &end);
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
  bool done = a.Dir == CoordDir::GridToGeo ? ConvertLyrCoords(s, a.Lyr, a.Datum, 0, zone, a.South)
                                           : ConvertLyrCoords(s, a.Lyr, 0, a.Datum, zone, a.South);
  if (!done) {
    LogMsg(s, cancelLine());
    return ConvertStatus::NotReady;
  }
  if (a.Lyr <= s.LyrCount && s.Lyr[a.Lyr].LyrTerminate) {
    LogMsg(s, cancelLine());
    return ConvertStatus::Terminated;
  }
  LogMsg(s, ConvertCoordsText(s, a));
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
