#pragma once
// The planar geometry library: predicates on raw map coordinates with one tolerance in map
// units. Nothing is projected. Shared by find by location, the network build, surfaces and
// the editor.
//
// `details`: null, or the crossing record to write the answer's position into (the
// session's own is s.Loc.Cross). Features are named by layer and record number; a deleted
// record (type 0), a record out of range and a feature without live vertices fail every
// predicate. Start arguments resume a search after an earlier hit.
#include "model/location_types.h"
#include "model/session.h"
#include "model/shp_types.h"

namespace velmora {

double Distance(double x1, double y1, double x2, double y2);
double SquaredDistance(double x1, double y1, double x2, double y2);
// Ties return the second argument, for both.
double Min(double a, double b);
double Max(double a, double b);
// v lies between a and b, in either order, each bound widened by tol; bounds included.
bool InRangeTol(double v, double a, double b, double tol);
// min(a) <= max(b) + tol and min(b) - tol <= max(a).
bool RangesOverlap(double a1, double a2, double b1, double b2, double tol);
// 1 left of the line a-b, -1 right of it, 0 on it.
int Side(double px, double py, double ax, double ay, double bx, double by);

// Segments A = a1-a2 and B = b1-b2 cross. An exactly zero determinant answers false:
// parallel and collinear segments never cross. The point of the two lines must lie within
// each segment's box widened by tol, each axis alone: the tolerance widens boxes, not the
// segments. Details: the point, and the kinds (1 inside, 2 within tol of the first end,
// else 4 within tol of the second end) in CrossKindA and CrossKindB.
bool SegCross(XY a1, XY a2, XY b1, XY b2, CrossResult* details, double tol);
// A proper crossing: no end vertex shared, both parameters inside the open range 0..1.
bool SegCrossStrict(XY a1, XY a2, XY b1, XY b2);
// The point of the two infinite lines; 0, 0 when they are parallel.
XY LineIntersection(XY a1, XY a2, XY b1, XY b2);
// The distance from p to the segment a-b is at most tol (by the projection parameter: the
// perpendicular inside 0..1, the nearer end outside).
bool PointNearSeg(XY p, XY a, XY b, double tol);
// The same; details get the nearest point and the kinds: CrossKindB 2 (the point p), and
// CrossKindA 2 at the segment's first end, 4 at its second, 1 between them; an end within
// tol of p is preferred to the foot of the perpendicular.
bool PointNearSegDetails(XY p, XY a, XY b, CrossResult* details, double tol);

// Point tests against one feature. Details also get HitLyr, HitType, HitFeature and the
// part and vertex of the hit (a segment's first vertex); inside a polygon, away from its
// edges, the point itself with kinds 0 and HitPart, HitVertex -1.
bool PointOnPoint(const Session& s, int layer, int feature, XY p, CrossResult* details, double tol);
bool PointOnMultipoint(const Session& s, int layer, int feature, XY p, CrossResult* details,
                       double tol, int start = 0);
bool PointOnLine(const Session& s, int layer, int feature, XY p, CrossResult* details, double tol,
                 int startPart = 0, int startVertex = 0);
// Inside a ring (even-odd over all rings, so holes are holes) or within tol of an edge.
bool PointInPolygonOrEdge(const Session& s, int layer, int feature, XY p, CrossResult* details,
                          double tol, int startPart = 0, int startVertex = 0);
// Inside and farther than tol from every edge.
bool PointInPolygonStrict(const Session& s, int layer, int feature, XY p, CrossResult* details,
                          double tol);
// Inside or on an edge: the variant of "inside or intersect".
bool PointInPolygonLoose(const Session& s, int layer, int feature, XY p, CrossResult* details,
                         double tol);

// The first segment of the feature (from startPart, startVertex) that a-b crosses by
// SegCross (A = a-b, B = the feature's segment); HitPart and HitVertex name it.
bool FeatureCrossSeg(const Session& s, int layer, int feature, XY a, XY b, CrossResult* details,
                     double tol, int startPart = 0, int startVertex = 0);

// Feature a (layer a, record fa) against feature b.
// Any contact: a's vertices tested against b, a's segments crossed with b's, and b's
// vertices tested against a, so that the answer does not depend on the order. A feature
// meets itself.
bool FeaturesIntersect(const Session& s, int a, int fa, int b, int fb, CrossResult* details,
                       double tol);
// Every vertex of a passes the point test against b (strict inside a polygon) and no
// segment of a properly crosses a segment of b.
bool FeatureInside(const Session& s, int a, int fa, int b, int fb, CrossResult* details,
                   double tol);
// The same with a polygon's edges counted as inside.
bool FeatureInsideOrEdge(const Session& s, int a, int fa, int b, int fb, CrossResult* details,
                         double tol);
// A vertex of a lies inside or on b, or a segment of a crosses b.
bool FeatureTouchInside(const Session& s, int a, int fa, int b, int fb, CrossResult* details,
                        double tol);
// a lies partly inside b and partly outside it: a vertex strictly inside and a vertex
// beyond tol outside, or (b a polygon) a segment of a properly crossing b's edge.
bool FeatureOverlap(const Session& s, int a, int fa, int b, int fb, CrossResult* details,
                    double tol);

// The raster mask of one feature, which the point tests against that feature consult.
// Built only when s.Loc.MaskOn is set and the picture can be made; otherwise the tests run
// in full. It never changes an answer, only spares work.
void BuildMask(Session& s, int layer, int feature, double tol);
void FreeMask(Session& s);
// True when the mask of this feature shows p far from it.
bool MaskRejects(const Session& s, int layer, int feature, XY p);

} // namespace velmora
