#pragma once
#include <string>

#include "model/session.h"
#include "platform/image_io.h"

namespace velmora {

// Image layers: a picture placed by its world file, tie points or control points, with a
// frame (a type 99 shape file of the picture's name) whose table holds the control points.

// Opens the picture and its frame into row n; LyrErr 0 or 1.
void OpenImage(Session& s, int n, const std::string& path);
// Opens or makes the frame and its control-point table.
void OpenImgFrame(Session& s, int n, const std::string& path);
void ApplyWorldExtent(Session& s, int n);
void ApplyTiffGeo(Session& s, int n);
// The frame record (slot 0) from the extent.
void RebuildImgFrame(Session& s, int n);
void RectifyImage(Session& s, int n);
void UnRectifyImage(Session& s, int n);
// Moves the extent by the first control point's shift.
void ShiftImage(Session& s, int n, double srcX, double srcY, double disX, double disY);
// Scales the extent about a, separately in X and Y, so that b falls on c.
void ScaleImageAbout(Session& s, int n, double ax, double ay, double bx, double by, double cx,
                     double cy);
void AutoBalanceImage(Session& s, int n);
// Histogram equalisation of the pixels, black turned white first.
void AutoBalanceBits(DibBits& bits);
bool SaveImage(Session& s, int n, const std::string& path);
bool SaveImageAs(Session& s, int n, const std::string& path);
void SaveWorld(Session& s, int n, const std::string& path);
// The control point of a table row (fields 2 to 5, in the buffer) moves the vertices of
// its record of the frame: source first, destination second.
void ControlPtFromRow(Session& s, int n, int row);
// The control-point row of a record of the frame changed: the table follows the vertices.
void UpdateControlPt(Session& s, int n, int rec);

} // namespace velmora
