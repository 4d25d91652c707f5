#include "model/datum_table.h"

#include <array>

#include "model/angles.h"

namespace velmora {

namespace {

struct BuiltIn {
  const char* crd;
  const char* sph;
  double a, b;
};

constexpr std::array<BuiltIn, kBuiltInDatums> kBuiltIns = {{
    {"Geographic", "Geo", 0, 0},
    {"Airy 1930", "AA", 6377563.396, 6356256.909},
    {"Australian National", "AN", 6378160.0, 6356774.719},
    {"Bessel 1841 Ethiopia,Indonesia,Japan,Korea", "BR", 6377397.155, 6356078.963},
    {"Bessel 1841 Nambia", "BN", 6377483.865, 6356165.383},
    {"Clarke 1866 (NAD 1927)", "CC", 6378206.4, 6356583.8},
    {"Clarke 1880", "CD", 6378249.145, 6356514.87},
    {"Everest Brunei & E. Malasia (Sabah & Sarawak)", "EB", 6377298.556, 6356097.55},
    {"Everest India 1830", "EA", 6377276.345, 6356075.413},
    {"Everest India 1956", "EC", 6377301.243, 6356100.228},
    {"Everest Pakistan", "EF", 6377309.613, 6356109.571},
    {"Everest W. Malasia and Singapore 1948", "EE", 6377304.063, 6356103.039},
    {"Everest W. Malasia 1969", "ED", 6377295.664, 6356094.668},
    {"Geodetic Reference System 1980 (NAD 1983)", "RF", 6378137.0, 6356752.3141},
    {"Helmert 1906", "HE", 6378200.0, 6356818.17},
    {"Hough 1960", "HO", 6378270.0, 6356794.343},
    {"Indonesian 1974", "ID", 6378160.0, 6356774.504},
    {"International 1924", "IN", 6378388.0, 6356911.946},
    {"Krassovsky 1940", "KA", 6378245.0, 6356863.019},
    {"Modified Airy", "AM", 6377340.189, 6356034.448},
    {"Modified Fischer 1960 (South Asia)", "FA", 6378155.0, 6356773.32},
    {"South American 1969", "SA", 6378160.0, 6356774.719},
    {"World Geodetic System 1972 (WGS 72)", "WD", 6378135.0, 6356750.52},
    // b rounded to four decimals: the grids of this record have always used it.
    {"World Geodetic System 1984 (WGS 84)", "WE", 6378137.0, 6356752.3142},
}};

bool InTable(const Session& s, int index) {
  return index >= 0 && size_t(index) < s.DatumTbl.size();
}

DatumItems Items(const Session& s, int first, int last) {
  DatumItems out;
  for (int i = first < 0 ? 0 : first; i <= last && InTable(s, i); ++i)
    out.emplace_back(s.DatumTbl[size_t(i)].CrdName, i);
  return out;
}

} // namespace

void InitDatums(Session& s) {
  s.DatumTbl.assign(kBuiltIns.size(), DatumRec{});
  for (size_t i = 0; i < kBuiltIns.size(); ++i) {
    const BuiltIn& b = kBuiltIns[i];
    SetDatum(s, int(i),
             DatumDef{b.crd, b.sph, b.a, b.b, 0, 500000.0, 0.0, 1e7, kCMFromZone, 0.9996, 0.0},
             DatumTrans{});
  }
}

void SetDatum(Session& s, int index, const DatumDef& d, const DatumTrans& t) {
  if (!InTable(s, index)) return;
  DatumRec& r = s.DatumTbl[size_t(index)];
  r.CrdName = d.CrdName;
  r.SphName = d.SphName;
  r.SMA = d.SMA;
  r.SMB = d.SMB;
  r.Flattining = d.Flat == 0 ? FlatFromAxes(d.SMA, d.SMB) : d.Flat;
  r.FEast = d.FEast;
  r.FNorth = d.FNorth;
  r.FNorthS = d.FNorthS;
  r.CM = d.CM;
  r.SF = d.SF;
  r.LatOrg = d.LatOrg;
  SetDatumTrans(s, index, t);
}

int AddDatum(Session& s, const DatumDef& d, const DatumTrans& t) {
  s.DatumTbl.emplace_back();
  int index = int(s.DatumTbl.size()) - 1;
  SetDatum(s, index, d, t);
  return index;
}

void SetDatumTrans(Session& s, int index, const DatumTrans& t) {
  if (!InTable(s, index)) return;
  DatumRec& r = s.DatumTbl[size_t(index)];
  r.TransDX = t.DX;
  r.TransDY = t.DY;
  r.TransDZ = t.DZ;
  r.TransRX = t.RX;
  r.TransRXRad = SecToRad(t.RX);
  r.TransRY = t.RY;
  r.TransRYRad = SecToRad(t.RY);
  r.TransRZ = t.RZ;
  r.TransRZRad = SecToRad(t.RZ);
  r.TransScale = t.Scale;
}

void RemoveDatum(Session& s, int index) {
  if (!InTable(s, index)) return;
  s.DatumTbl.erase(s.DatumTbl.begin() + index);
}

DatumDef DatumDefOf(const DatumRec& r) {
  return DatumDef{r.CrdName, r.SphName, r.SMA, r.SMB, r.Flattining, r.FEast,
                  r.FNorth,  r.FNorthS, r.CM,  r.SF,  r.LatOrg};
}

DatumTrans DatumTransOf(const DatumRec& r) {
  return DatumTrans{r.TransDX, r.TransDY, r.TransDZ, r.TransRX, r.TransRY, r.TransRZ, r.TransScale};
}

DatumItems FillDatumCmb(const Session& s, int first) {
  return Items(s, first, int(s.DatumTbl.size()) - 1);
}

DatumItems FillSpheroidCmb(const Session& s, int first) {
  return Items(s, first, kWgs84Idx);
}

double FlatFromAxes(double a, double b) {
  if (a == 0) return 0;
  return 1 / ((a - b) / a);
}

double MinorFromFlat(double a, double flat) {
  if (flat == 0) return 0;
  return a - a * (1 / flat);
}

} // namespace velmora
