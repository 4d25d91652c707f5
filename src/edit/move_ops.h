#pragma once
#include "model/session.h"

namespace velmora {

// The primitives that change coordinates of existing geometry: by a target point, by an
// offset, by a rotation or by a scale, from one vertex to all features of all visible
// layers. Out-of-range numbers do nothing. `flags`: bit 1 X, bit 2 Y, bit 4 M, bit 8 Z;
// only the ordinates the shape type has are touched.

enum MoveFlag { kMoveX = 1, kMoveY = 2, kMoveM = 4, kMoveZ = 8, kMoveXY = 3 };

// The captions of the seven scopes of frmMoveSettings, 0 .. 6.
const char* MoveModeCaption(int mode);

void MoveVertexTo(Session& s, int lyr, int rec, int part, int vertex, double x, double y, int flags,
                  double m, double z);
// A frame (type 100, five vertices) stays a right-angled rectangle when a corner moves.
void KeepMaskRect(Session& s, int lyr, int rec, int vertex);
// A control point's vertex 0 writes SRC_X, SRC_Y, vertex 1 DIS_X, DIS_Y of its row.
void UpdateControlPt(Session& s, int lyr, int rec, int vertex, double x, double y);

void MovePartTo(Session& s, int lyr, int rec, int part, int vertex, double x, double y, int flags,
                double m, double z);
void MoveFeatureTo(Session& s, int lyr, int rec, int part, int vertex, double x, double y,
                   int flags, double m, double z);
void MoveSelectedTo(Session& s, int lyr, int refLyr, int rec, int part, int vertex, double x,
                    double y, int flags, double m, double z);
void MoveAllTo(Session& s, int lyr, int refLyr, int rec, int part, int vertex, double x, double y,
               int flags, double m, double z);
void MovePartBy(Session& s, int lyr, int rec, int part, double dx, double dy, int flags, double dm,
                double dz);
void MoveFeatureBy(Session& s, int lyr, int rec, double dx, double dy, int flags, double dm,
                   double dz);
void MoveSelectedBy(Session& s, int lyr, int refLyr, int rec, double dx, double dy, int flags,
                    double dm, double dz);
void MoveAllBy(Session& s, int lyr, int refLyr, double dx, double dy, int flags, double dm,
               double dz);

void ScalePoint(double& x, double& y, double px, double py, double sx, double sy);
void RotatePoint(double& x, double& y, double px, double py, double radians);
void ScalePart(Session& s, int lyr, int rec, int part, double px, double py, double sx, double sy);
void ScaleFeature(Session& s, int lyr, int rec, double px, double py, double sx, double sy);
void ScaleSelected(Session& s, int lyr, int refLyr, int rec, double px, double py, double sx,
                   double sy);
void ScaleAll(Session& s, int lyr, int refLyr, double px, double py, double sx, double sy);
void RotatePart(Session& s, int lyr, int rec, int part, double px, double py, double radians);
void RotateFeature(Session& s, int lyr, int rec, double px, double py, double radians);
void RotateSelected(Session& s, int lyr, int refLyr, int rec, double px, double py, double radians);
void RotateAll(Session& s, int lyr, int refLyr, double px, double py, double radians);

// Dispatch on s.Edit.MoveMode: 0 and 1 the part, 2 the feature, 3 the selection of this
// layer, 4 all of it, 5 and 6 the same over every visible open layer.
void RotateScope(Session& s, int lyr, int rec, int part, double px, double py, double radians);
void ScaleScope(Session& s, int lyr, int rec, int part, double px, double py, double sx, double sy);

void SetPivot(Session& s, double x, double y);
void SetRotAngle(Session& s, double degrees);
void SetScales(Session& s, double sx, double sy);

// The acute angle of a ray to the X axis, in degrees: 90 for a vertical ray.
double FlatAngle(double dx, double dy);
// The angle in degrees (-360 .. 360) that turns the ray p->a onto the ray p->b.
double AngleOf(double px, double py, double ax, double ay, double bx, double by);
// |(b - p) / (a - p)|; exactly 0 gives 1.
double ScaleRatio(double p, double a, double b);

// Is record `rec` of the layer selected?
bool IsSelected(const Session& s, int lyr, int rec);
// Does the layer take part in the scopes over all layers (visible and open)?
bool InScopeOfAllLyrs(const Session& s, int lyr);

} // namespace velmora
