#pragma once
#include <cstddef>
#include <string>

#include "platform/colour.h"

namespace velmora {

struct PixPt {
  int x = 0, y = 0;
};

// A drawing surface with the pen and brush model of the map: pen and brush numbers are
// the GDI ones. Draw modes: 13 copy pen (others: 1 black, 6 not, 7 xor pen, 9 mask pen,
// 11 nop, 15 merge pen, 16 white). Line styles: 0 solid, 1 dash, 2 dot, 3 dash-dot,
// 4 dash-dot-dot, 5 none. Fill styles: 0 solid, 1 hollow, 2 to 7 the six hatches.
// Coordinates are whole pixels; nothing is antialiased.
class Canvas {
public:
  virtual ~Canvas() = default;
  virtual int Width() const = 0;
  virtual int Height() const = 0;
  virtual void Clear(Colour c) = 0;
  virtual void SetPen(Colour c, int drawMode, int style, int width) = 0;
  virtual void SetBrush(Colour c, int fillStyle) = 0;
  virtual void Polyline(const PixPt* pts, size_t n) = 0;
  // All rings in one call, filled alternately, so that a hole is a hole.
  virtual void PolyPolygon(const PixPt* pts, const int* counts, size_t rings) = 0;
  // A rectangle from (x1, y1) to (x2, y2), the right and bottom edges excluded.
  virtual void Rectangle(int x1, int y1, int x2, int y2) = 0;
  // Text with its reference point at (x, y), turned by `angle` degrees counter-clockwise.
  virtual void Text(int x, int y, double angle, const std::string& text, const std::string& font,
                    int pointSize, bool bold, bool italic, Colour c) = 0;
  // An image of the session (by its handle) stretched into the rectangle.
  virtual void StretchImage(int handle, int x1, int y1, int x2, int y2) {
    (void)handle, (void)x1, (void)y1, (void)x2, (void)y2;
  }
};

} // namespace velmora
