#include "ui/map_widget.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include "view/gestures.h"
#include "view/map_tools.h"
#include "view/navigation.h"

namespace velmora {

MapWidget::MapWidget(Session& s, QWidget* parent) : QWidget(parent), s_(s) {
  setMouseTracking(true);
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_OpaquePaintEvent);
  setMinimumSize(200, 150);
  UpdateCursor();
}

MapWidget::~MapWidget() = default;

Canvas* MapWidget::MapBuf() {
  int w = std::max(1, s_.MapView.ViewW), h = std::max(1, s_.MapView.ViewH);
  if (buf_.width() != w || buf_.height() != h) {
    canvas_.reset();
    buf_ = QImage(w, h, QImage::Format_RGB32);
    buf_.fill(Qt::white);
  }
  if (!canvas_) canvas_ = std::make_unique<QtCanvas>(buf_, images_);
  return canvas_.get();
}

void MapWidget::MapShow() {
  canvas_.reset(); // ends painting
  update();
  emit ViewChanged();
}

void MapWidget::paintEvent(QPaintEvent*) {
  QPainter p(this);
  p.fillRect(rect(), Qt::white);
  QPoint offset(0, 0);
  if (drag_ == Drag::Pan || drag_ == Drag::MiddlePan) offset = to_ - from_;
  if (!buf_.isNull() && !canvas_) p.drawImage(offset, buf_);
  if (drag_ == Drag::Box) {
    p.setPen(QPen(Qt::black, 1, Qt::DashLine));
    p.setBrush(Qt::NoBrush);
    p.drawRect(QRect(from_, to_).normalized());
  }
}

void MapWidget::UpdateCursor() {
  switch (s_.MapView.MapTool) {
  case kToolZoomIn:
  case kToolZoomOut:
    setCursor(Qt::CrossCursor);
    break;
  case kToolPan:
    setCursor(Qt::OpenHandCursor);
    break;
  default:
    setCursor(Qt::ArrowCursor);
  }
}

void MapWidget::mousePressEvent(QMouseEvent* e) {
  from_ = to_ = e->position().toPoint();
  if (s_.LyrCount == 0) return;
  if (e->button() == Qt::MiddleButton) {
    panReturnTool_ = s_.MapView.MapTool;
    s_.MapView.MapTool = kToolPan;
    drag_ = Drag::MiddlePan;
    setCursor(Qt::ClosedHandCursor);
    return;
  }
  if (e->button() != Qt::LeftButton) return;
  switch (s_.MapView.MapTool) {
  case kToolZoomIn:
  case kToolZoomOut:
    drag_ = Drag::Box;
    break;
  case kToolPan:
    drag_ = Drag::Pan;
    setCursor(Qt::ClosedHandCursor);
    break;
  default:
    break;
  }
}

void MapWidget::mouseMoveEvent(QMouseEvent* e) {
  QPoint at = e->position().toPoint();
  emit StatusTextChanged(QString::fromStdString(ScaleStatusText(s_, at.x(), at.y())));
  if (drag_ == Drag::None) return;
  to_ = at;
  update();
}

void MapWidget::mouseReleaseEvent(QMouseEvent* e) {
  Drag was = drag_;
  drag_ = Drag::None;
  to_ = e->position().toPoint();
  QPoint d = to_ - from_;
  switch (was) {
  case Drag::Box:
    ToolGesture(s_, from_.x(), from_.y(), to_.x(), to_.y());
    break;
  case Drag::Pan:
    PanByPixels(s_, d.x(), d.y());
    break;
  case Drag::MiddlePan:
    PanByPixels(s_, d.x(), d.y());
    s_.MapView.MapTool = panReturnTool_;
    break;
  case Drag::None:
    break;
  }
  UpdateCursor();
  update();
}

void MapWidget::wheelEvent(QWheelEvent* e) {
  if (s_.LyrCount == 0 || e->angleDelta().y() == 0) return;
  // The wheel works as a click of the zoom tools at the pointer.
  QPoint at = e->position().toPoint();
  int keep = s_.MapView.MapTool;
  s_.MapView.MapTool = e->angleDelta().y() > 0 ? kToolZoomIn : kToolZoomOut;
  ToolGesture(s_, at.x(), at.y(), at.x(), at.y());
  s_.MapView.MapTool = keep;
}

void MapWidget::keyPressEvent(QKeyEvent* e) {
  int code = 0;
  switch (e->key()) {
  case Qt::Key_Left:
    code = 37;
    break;
  case Qt::Key_Up:
    code = 38;
    break;
  case Qt::Key_Right:
    code = 39;
    break;
  case Qt::Key_Down:
    code = 40;
    break;
  default:
    QWidget::keyPressEvent(e);
    return;
  }
  ArrowKeyPan(s_, code);
}

} // namespace velmora
