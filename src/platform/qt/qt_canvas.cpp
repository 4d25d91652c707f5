#include "platform/qt/qt_canvas.h"

#include "platform/qt/qt_image_io.h"

#include <QPainterPath>
#include <QPolygon>
#include <vector>

namespace velmora {

namespace {

// GDI's sixteen binary raster operations of pen P on destination D. Black and white need no
// operation: they are the copy of a black or white pen.
QPainter::CompositionMode RasterOp(int drawMode) {
  switch (drawMode) {
  case 2: // not merge pen: ~(P | D)
    return QPainter::RasterOp_NotSourceAndNotDestination;
  case 3: // mask not pen: D & ~P
    return QPainter::RasterOp_NotSourceAndDestination;
  case 4: // not copy pen: ~P
    return QPainter::RasterOp_NotSource;
  case 5: // mask pen not: P & ~D
    return QPainter::RasterOp_SourceAndNotDestination;
  case 6: // not: ~D
    return QPainter::RasterOp_NotDestination;
  case 7: // xor pen: P ^ D
    return QPainter::RasterOp_SourceXorDestination;
  case 8: // not mask pen: ~(P & D)
    return QPainter::RasterOp_NotSourceOrNotDestination;
  case 9: // mask pen: P & D
    return QPainter::RasterOp_SourceAndDestination;
  case 10: // not xor pen: ~(P ^ D)
    return QPainter::RasterOp_NotSourceXorDestination;
  case 11: // nop: D
    return QPainter::CompositionMode_Destination;
  case 12: // merge not pen: D | ~P
    return QPainter::RasterOp_NotSourceOrDestination;
  case 14: // merge pen not: P | ~D
    return QPainter::RasterOp_SourceOrNotDestination;
  case 15: // merge pen: P | D
    return QPainter::RasterOp_SourceOrDestination;
  default: // 1 black, 13 copy pen, 16 white
    return QPainter::CompositionMode_SourceOver;
  }
}

Qt::PenStyle LineStyle(int style) {
  switch (style) {
  case 1:
    return Qt::DashLine;
  case 2:
    return Qt::DotLine;
  case 3:
    return Qt::DashDotLine;
  case 4:
    return Qt::DashDotDotLine;
  case 5:
    return Qt::NoPen;
  default:
    return Qt::SolidLine;
  }
}

Qt::BrushStyle FillStyle(int style) {
  switch (style) {
  case 0:
    return Qt::SolidPattern;
  case 2:
    return Qt::HorPattern;
  case 3:
    return Qt::VerPattern;
  case 4:
    return Qt::BDiagPattern;
  case 5:
    return Qt::FDiagPattern;
  case 6:
    return Qt::CrossPattern;
  case 7:
    return Qt::DiagCrossPattern;
  default:
    return Qt::NoBrush;
  }
}

} // namespace

QColor QtCanvas::ToQColor(Colour c) {
  return QColor(c & 0xFF, (c >> 8) & 0xFF, (c >> 16) & 0xFF);
}

QtCanvas::QtCanvas(QImage& image, const QtImageIO* images) : image_(image), images_(images) {
  Begin();
}

QtCanvas::~QtCanvas() {
  End();
}

void QtCanvas::Begin() {
  if (p_) return;
  p_ = std::make_unique<QPainter>(&image_);
  p_->setRenderHint(QPainter::Antialiasing, false);
  p_->setRenderHint(QPainter::TextAntialiasing, false);
  p_->setRenderHint(QPainter::SmoothPixmapTransform, true);
}

void QtCanvas::End() {
  if (p_) p_->end();
  p_.reset();
}

void QtCanvas::Clear(Colour c) {
  Begin();
  p_->setCompositionMode(QPainter::CompositionMode_Source);
  p_->fillRect(image_.rect(), ToQColor(c));
  p_->setCompositionMode(mode_);
}

// Black and white paint pen and brush in their colour whatever was asked for.
QColor QtCanvas::ModeColour(Colour c) const {
  if (drawMode_ == 1) return Qt::black;
  if (drawMode_ == 16) return Qt::white;
  return ToQColor(c);
}

void QtCanvas::SetPen(Colour c, int drawMode, int style, int width) {
  Begin();
  drawMode_ = drawMode;
  QColor col = ModeColour(c);
  // As on GDI, a broken line style holds only for pens one pixel wide.
  Qt::PenStyle ps = width > 1 && style != 5 ? Qt::SolidLine : LineStyle(style);
  QPen pen(col, width < 1 ? 1 : width, ps, Qt::SquareCap, Qt::MiterJoin);
  if (width <= 1) pen.setCosmetic(true);
  p_->setPen(pen);
  mode_ = RasterOp(drawMode);
  p_->setCompositionMode(mode_);
  SetBrush(brushColour_, brushStyle_);
}

void QtCanvas::SetBrush(Colour c, int fillStyle) {
  Begin();
  brushColour_ = c, brushStyle_ = fillStyle;
  p_->setBrush(QBrush(ModeColour(c), FillStyle(fillStyle)));
}

// PixPt and QPoint are both two ints, x then y: the points go to the painter as they are.
static_assert(sizeof(PixPt) == sizeof(QPoint) && alignof(PixPt) == alignof(QPoint));
static const QPoint* AsQPoints(const PixPt* p) {
  return reinterpret_cast<const QPoint*>(p);
}

void QtCanvas::Polyline(const PixPt* pts, size_t n) {
  if (n == 0) return;
  if (n == 1)
    p_->drawPoint(pts[0].x, pts[0].y);
  else
    p_->drawPolyline(AsQPoints(pts), int(n));
}

void QtCanvas::PolyPolygon(const PixPt* pts, const int* counts, size_t rings) {
  if (rings == 1) {
    p_->drawPolygon(AsQPoints(pts), counts[0], Qt::OddEvenFill);
    return;
  }
  QPainterPath path;
  path.setFillRule(Qt::OddEvenFill);
  size_t at = 0;
  for (size_t r = 0; r < rings; ++r) {
    QPolygonF poly;
    poly.reserve(counts[r]);
    for (int i = 0; i < counts[r]; ++i, ++at) poly.append(QPointF(pts[at].x, pts[at].y));
    path.addPolygon(poly);
    path.closeSubpath();
  }
  p_->drawPath(path);
}

void QtCanvas::Rectangle(int x1, int y1, int x2, int y2) {
  if (x2 < x1) std::swap(x1, x2);
  if (y2 < y1) std::swap(y1, y2);
  if (x2 - x1 < 1 || y2 - y1 < 1) {
    p_->drawPoint(x1, y1);
    return;
  }
  // GDI leaves out the right and bottom edge.
  p_->drawRect(x1, y1, x2 - x1 - 1, y2 - y1 - 1);
}

void QtCanvas::Text(int x, int y, double angle, const std::string& text, const std::string& font,
                    int pointSize, bool bold, bool italic, Colour c) {
  QFont f(QString::fromStdString(font));
  f.setPointSize(pointSize < 1 ? 1 : pointSize);
  f.setBold(bold);
  f.setItalic(italic);
  p_->save();
  p_->setCompositionMode(QPainter::CompositionMode_SourceOver);
  p_->setFont(f);
  p_->setPen(ToQColor(c));
  p_->translate(x, y);
  if (angle != 0) p_->rotate(-angle);
  QString s = QString::fromStdString(text);
  QFontMetrics fm(f);
  // Centred on the anchor.
  p_->drawText(-fm.horizontalAdvance(s) / 2, fm.ascent() / 2, s);
  p_->restore();
}

void QtCanvas::StretchImage(int handle, int x1, int y1, int x2, int y2) {
  const QImage* img = images_ ? images_->Get(handle) : nullptr;
  if (!img || img->isNull() || x1 == x2 || y1 == y2) return;
  // Only the part of the picture that falls on the surface is stretched: a large picture
  // seen close up costs no more than the surface.
  const QRectF target(QPointF(std::min(x1, x2), std::min(y1, y2)),
                      QPointF(std::max(x1, x2), std::max(y1, y2)));
  const QRectF seen = target.intersected(QRectF(0, 0, image_.width(), image_.height()));
  if (seen.isEmpty()) return;
  const double kx = img->width() / target.width(), ky = img->height() / target.height();
  const QRectF source((seen.left() - target.left()) * kx, (seen.top() - target.top()) * ky,
                      seen.width() * kx, seen.height() * ky);
  p_->save();
  p_->setCompositionMode(QPainter::CompositionMode_SourceOver);
  p_->setRenderHint(QPainter::SmoothPixmapTransform, true); // half-tone stretching
  p_->drawImage(seen, *img, source);
  p_->restore();
}

} // namespace velmora
