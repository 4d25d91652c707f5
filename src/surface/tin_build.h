#pragma once
#include <string>
#include <vector>

#include "frame/busy.h"
#include "model/session.h"
#include "surface/tin_points.h"

namespace velmora {

// The height source of a surface: a field of the table, the shapes' own Z, or none.
constexpr int kHeightNone = -1;
constexpr int kHeightShapeZ = 0;

// The height of one vertex: Val of the field's text in the feature's row, the vertex's Z
// for the Z shape types, else 0.
double PointHeight(Session& s, int lyr, int rec, int part, int vertex, int field);

// The vertexes of the features of the layer chosen by `criteria` (1 all, 2 selected,
// 3 unselected), X and Y scaled by the layer's TinScale, in arrival order. Sets TinScale
// and the bounds (ScanBounds). `badZ` counts heights that aren't finite, taken as 0.
std::vector<TinPoint> CollectPoints(Session& s, int lyr, int heightField, int criteria, int& badZ);

// The progress of a surface run over its stages, on the busy frame of the source layer.
class SurfaceTicker {
public:
  SurfaceTicker(Session& s, RunningFunction& rf, double max) : s_(s), rf_(rf), max_(max) {}
  bool operator()(double add);
  void Caption(const std::string& text);
  bool Stopped() const { return stopped_; }

private:
  Session& s_;
  RunningFunction& rf_;
  double max_, value_ = 0;
  unsigned calls_ = 0;
  bool stopped_ = false;
};

// LoadPoints, PreparePoints and MakeTriangles for `method` (1 Delaunay, 2 matrix, 3 a TIN
// layer's triangles) into s.Surface. False when stopped or on an error.
bool MakeSurface(Session& s, int lyr, int method, int heightField, int criteria,
                 SurfaceTicker& tick);

// Claims the surface arrays for one function; false (and the refusal logged) when
// another surface function holds them.
bool ClaimSurface(Session& s, const std::string& op);
void ReleaseSurface(Session& s);

// Builds the TIN of layer `lyr` into a new PolygonZ layer `toFile` with the fields ID and
// AverageZ. Returns the number of triangles written, -1 when nothing was built. The new
// layer is saved and closed; the caller adds it to the map.
int BuildTin(Session& s, int lyr, int criteria, int heightField, const std::string& toFile,
             int method);

} // namespace velmora
