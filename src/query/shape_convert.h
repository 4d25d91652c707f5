#pragma once
#include <string>
#include <vector>

#include "model/session.h"

namespace velmora {

// The conversion of a feature to the shape type of another layer: the copy keeps what the
// destination's type can hold. A polygon into a line layer becomes its rings as parts; a line
// into a polygon layer its parts closed as rings; lines and polygons into a multipoint layer
// their vertices; anything into a point layer its first vertex; a multipoint into a line its
// points as one part. Z and M follow where both types have them, else 0.

enum class ShapeFamily { None, Point, MultiPoint, Line, Polygon, Special };
ShapeFamily FamilyOf(int shapeType);
// The word a refusal names a type by: "Point", "MultiPoint", "PolyLine", "Polygon" ...
std::string FamilyWord(int shapeType);

// Can a layer of `dstType` hold features of a layer of `srcType` in some form?
bool CanConvertType(int srcType, int dstType);

// One part as plain arrays (Z and M one per vertex, 0 where the type has none).
struct PlainPart {
  std::vector<XY> P;
  std::vector<double> Z, M;
};
// The live parts of a record, without its soft-deleted parts.
std::vector<PlainPart> PlainParts(const ShpRecord& r);
// The parts fitted to `dstType` from a feature of `srcType`; empty when nothing fits.
std::vector<PlainPart> ConvertParts(std::vector<PlainPart> parts, int srcType, int dstType);
// Appends a feature of the given parts (already fitted) to the layer, its box and label
// point computed; the new record number, 0 when there are no parts.
int AppendParts(Session& s, int lyr, const std::vector<PlainPart>& parts);
// The record converted and appended to `dstLyr`; 0 when nothing of it fits.
int AppendConverted(Session& s, int srcLyr, int rec, int dstLyr);

} // namespace velmora
