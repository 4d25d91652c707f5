#pragma once
#include <array>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "model/datum_table.h"
#include "model/lyr_record.h"

namespace velmora {

// The steps of the project file's layout. Versions are compared as the exact doubles.
inline constexpr double kProjOldest = 1.17;       // below: refused
inline constexpr double kProjUnitsStored = 1.18;  // below: the first layer decides the units
inline constexpr double kProjOneMapByte = 1.17;   // above: MapUnit is stored
inline constexpr double kProjEightMapBytes = 3.6; // above: all eight unit bytes
inline constexpr double kProjThematic = 3.9;      // thematic field, class count, class values
inline constexpr double kProjLabelColour = 3.91;  // the label colour
inline constexpr double kProjLabelFit = 4.0;      // label fitting and reference scale

// Bytes of selection stored after a selection count: (count + 7) / 8 rounded half to
// even, plus one. Below 1 for a count that no layer can have.
inline int64_t SelBytesStored(int32_t selCount) {
  return int64_t(std::nearbyint((double(selCount) + 7) / 8)) + 1;
}

// What the head and tail of a project file hold, as read; the rows go to their own list.
struct ProjectFileData {
  double Version = 0;
  std::array<uint8_t, 8> Reserved{};
  int32_t ViewW = 0, ViewH = 0;
  double Left = 0, Top = 0, Right = 0, Bottom = 0;
  int MapBytes = 0;               // 0, 1 or 8 of Units present
  std::array<uint8_t, 8> Units{}; // MapUnit, MapCoordsIdx, MapZone, MapSouth, MeasUnit, ...
  std::vector<LyrRec> Rows;       // rows 1 .. count, paths as stored
  bool HasDatums = false, HasTrans = false;
  std::vector<DatumDef> Datums;
  std::vector<DatumTrans> Trans;
};

// Parses a whole project file. False with `error` set when the file is shorter than what
// it announces or holds a count no layout allows; a version below 1.17 stops after the
// version with `Version` set and true.
bool ParseProjectFile(const std::vector<uint8_t>& bytes, ProjectFileData& d, std::string& error);

} // namespace velmora
