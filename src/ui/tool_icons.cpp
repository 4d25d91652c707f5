#include "ui/tool_icons.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QPolygonF>
#include <cmath>

namespace velmora {

namespace {

void Magnifier(QPainter& p, bool plus) {
  p.setPen(QPen(QColor(40, 40, 40), 2.2));
  p.setBrush(QColor(220, 235, 250));
  p.drawEllipse(QPointF(10, 10), 7, 7);
  p.setPen(QPen(QColor(40, 40, 40), 3.5, Qt::SolidLine, Qt::RoundCap));
  p.drawLine(QPointF(15.5, 15.5), QPointF(21, 21));
  p.setPen(QPen(QColor(20, 90, 170), 2));
  p.drawLine(QPointF(6.5, 10), QPointF(13.5, 10));
  if (plus) p.drawLine(QPointF(10, 6.5), QPointF(10, 13.5));
}

void Arrow(QPainter& p, bool left) {
  QPolygonF a;
  a << QPointF(3, 12) << QPointF(11, 4) << QPointF(11, 8.5) << QPointF(21, 8.5) << QPointF(21, 15.5)
    << QPointF(11, 15.5) << QPointF(11, 20);
  if (!left)
    for (QPointF& pt : a) pt.setX(24 - pt.x());
  p.setPen(QPen(QColor(30, 80, 140), 1.2));
  p.setBrush(QColor(90, 150, 220));
  p.drawPolygon(a);
}

} // namespace

QIcon MakeToolIcon(ToolIcon kind) {
  QPixmap pm(24, 24);
  pm.fill(Qt::transparent);
  QPainter p(&pm);
  p.setRenderHint(QPainter::Antialiasing);
  switch (kind) {
  case ToolIcon::FullExtent:
    p.setPen(QPen(QColor(30, 80, 140), 1.5));
    p.setBrush(QColor(120, 180, 230));
    p.drawEllipse(QPointF(12, 12), 9.5, 9.5);
    p.setBrush(Qt::NoBrush);
    p.drawEllipse(QPointF(12, 12), 4.5, 9.5);
    p.drawLine(QPointF(2.5, 12), QPointF(21.5, 12));
    break;
  case ToolIcon::ZoomIn:
    Magnifier(p, true);
    break;
  case ToolIcon::SelectBox: // a dashed box over a highlighted feature
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(250, 220, 60));
    p.drawEllipse(QRectF(8, 8, 9, 9));
    p.setPen(QPen(QColor(40, 40, 40), 1.2, Qt::DashLine));
    p.setBrush(Qt::NoBrush);
    p.drawRect(QRectF(3, 3, 18, 18));
    break;
  case ToolIcon::Measure: // a ruler
    p.setPen(QPen(QColor(40, 40, 40), 1.2));
    p.setBrush(QColor(240, 210, 110));
    p.drawRect(QRectF(2, 8, 20, 8));
    for (int i = 0; i < 5; ++i)
      p.drawLine(QPointF(5 + i * 4, 8), QPointF(5 + i * 4, i % 2 ? 11 : 13));
    break;
  case ToolIcon::EditFeature: // a polygon with its vertices
  case ToolIcon::CreateFeature: {
    QPolygonF g;
    g << QPointF(4, 18) << QPointF(7, 5) << QPointF(19, 7) << QPointF(20, 19);
    p.setPen(QPen(QColor(30, 80, 140), 1.5));
    p.setBrush(kind == ToolIcon::EditFeature ? QColor(160, 200, 240) : QColor(Qt::transparent));
    p.drawPolygon(g);
    p.setBrush(QColor(200, 40, 40));
    for (const QPointF& v : g) p.drawRect(QRectF(v.x() - 2, v.y() - 2, 4, 4));
    if (kind == ToolIcon::CreateFeature) {
      p.setPen(QPen(QColor(20, 130, 20), 2.2));
      p.drawLine(QPointF(12, 9), QPointF(12, 17));
      p.drawLine(QPointF(8, 13), QPointF(16, 13));
    }
    break;
  }
  case ToolIcon::ZoomOut:
    Magnifier(p, false);
    break;
  case ToolIcon::Pan: {
    p.setPen(QPen(QColor(40, 40, 40), 2, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(12, 3), QPointF(12, 21));
    p.drawLine(QPointF(3, 12), QPointF(21, 12));
    p.setBrush(QColor(40, 40, 40));
    p.setPen(Qt::NoPen);
    for (int r = 0; r < 4; ++r) {
      p.save();
      p.translate(12, 12);
      p.rotate(90 * r);
      p.drawPolygon(QPolygonF{QPointF(0, -11), QPointF(-4, -6), QPointF(4, -6)});
      p.restore();
    }
    break;
  }
  case ToolIcon::ZoomPrevious:
    Arrow(p, true);
    break;
  case ToolIcon::ZoomNext:
    Arrow(p, false);
    break;
  case ToolIcon::Terminate: {
    QPolygonF oct;
    for (int i = 0; i < 8; ++i) {
      double a = (22.5 + 45 * i) * 3.14159265358979 / 180;
      oct << QPointF(12 + 10 * std::cos(a), 12 + 10 * std::sin(a));
    }
    p.setPen(QPen(QColor(130, 0, 0), 1.2));
    p.setBrush(QColor(210, 30, 30));
    p.drawPolygon(oct);
    p.setPen(QPen(Qt::white, 2.5, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(8, 8), QPointF(16, 16));
    p.drawLine(QPointF(16, 8), QPointF(8, 16));
    break;
  }
  }
  return QIcon(pm);
}

} // namespace velmora
