#pragma once
#include "model/edit_types.h"
#include "model/session.h"

namespace velmora {

// Lengths and areas in metres through the measuring conversion: when the map is in degrees
// and the measure in metres, each vertex goes to the UTM grid of the measuring system in
// the zone of the first vertex; otherwise it stays as it is.

struct FeatureMeasure {
  double Total = 0, Part = 0;
};
FeatureMeasure MeasureLength(const Session& s, int lyr, int rec, int part);
FeatureMeasure MeasureArea(const Session& s, int lyr, int rec, int part);
double FreeDistance(const Session& s, double x1, double y1, double x2, double y2);

// mnuLength, mnuArea and the release of the Measure tool: the log lines.
void LogLength(Session& s, const HitRec& h);
void LogArea(Session& s, const HitRec& h);
void LogFreeDistance(Session& s, double x1, double y1, double x2, double y2);

} // namespace velmora
