#pragma once
#include <string>

namespace velmora {

// One coordinate system: an ellipsoid, a Transverse Mercator grid on it, and the
// seven-parameter shift from its datum to WGS 84.
struct DatumRec {
  std::string SphName;   // ellipsoid code in a built-in record, the spheroid's name in a user one
  std::string CrdName;   // the name every list shows
  double SMA = 0;        // semi-major axis, metres
  double SMB = 0;        // semi-minor axis, metres
  double Flattining = 0; // inverse flattening a / (a - b)
  double FEast = 0;
  double FNorth = 0;  // added in the northern half
  double FNorthS = 0; // added in the southern half
  double CM = 0;      // central meridian, degrees; kCMFromZone: taken from the zone
  double SF = 0;      // scale factor on the central meridian
  double LatOrg = 0;  // latitude of origin, degrees
  double TransDX = 0, TransDY = 0, TransDZ = 0; // metres
  double TransRX = 0, TransRXRad = 0;           // arc-seconds as entered, and radians
  double TransRY = 0, TransRYRad = 0;
  double TransRZ = 0, TransRZRad = 0;
  double TransScale = 0; // parts per million
};

// The staging record that a .prj file is read into; kept between reads.
struct PrjStageRec : DatumRec {
  std::string PrjText;
  bool PrjIsTM = false;
  bool PrjLoading = false;
};

inline constexpr int kWgs84Idx = 23;      // the hub of every datum shift
inline constexpr int kBuiltInDatums = 24; // records 0 .. 23; user records follow
inline constexpr double kCMFromZone = 9999.0;

} // namespace velmora
