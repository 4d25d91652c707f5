#include "ui/map_widget.h"

#include <QCursor>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include "platform/qt/qt_host.h"
#include "query/selection.h"
#include "query/selection_menu.h"
#include "view/gestures.h"
#include "view/map_draw.h"
#include "view/map_tools.h"
#include "view/navigation.h"

namespace velmora {

namespace {

int KeysOf(Qt::KeyboardModifiers m) {
  return (m & Qt::ShiftModifier ? kShiftKey : 0) | (m & Qt::ControlModifier ? kCtrlKey : 0) |
         (m & Qt::AltModifier ? kAltKey : 0);
}

int ButtonsOf(Qt::MouseButtons b) {
  return (b & Qt::LeftButton ? kLeftButton : 0) | (b & Qt::RightButton ? kRightButton : 0) |
         (b & Qt::MiddleButton ? kMiddleButton : 0);
}

} // namespace

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
  canvas_.reset();                                           // ends painting
  overRects_.clear(), overSegs_.clear(), overFeats_.clear(); // the overlay goes with a new map
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
  if (!overFeats_.empty() && !buf_.isNull()) {
    if (overImg_.size() != buf_.size())
      overImg_ = QImage(buf_.size(), QImage::Format_ARGB32_Premultiplied);
    overImg_.fill(Qt::transparent);
    {
      QtCanvas c(overImg_, images_);
      for (const auto& [lyr, rec] : overFeats_)
        if (lyr >= 1 && lyr <= s_.LyrCount) DrawEditFeature(s_, c, lyr, rec, -1, -1);
      c.End();
    }
    p.drawImage(offset, overImg_);
  }
  p.setBrush(Qt::NoBrush);
  p.setPen(QPen(Qt::black, 1, Qt::DashLine));
  for (const QRect& r : overRects_) p.drawRect(r);
  p.setPen(QPen(Qt::red, 1, Qt::DashLine));
  for (const QLineF& l : overSegs_)
    p.drawLine(QPointF(PixX(s_, l.x1()), PixY(s_, l.y1())),
               QPointF(PixX(s_, l.x2()), PixY(s_, l.y2())));
}

void MapWidget::ClearOverlay() {
  overRects_.clear();
  overSegs_.clear();
  overFeats_.clear();
  update();
}

void MapWidget::OverlayRect(int x1, int y1, int x2, int y2) {
  overRects_.push_back(QRect(QPoint(x1, y1), QPoint(x2, y2)).normalized());
  update();
}

void MapWidget::OverlaySegment(double x1, double y1, double x2, double y2) {
  overSegs_.emplace_back(x1, y1, x2, y2);
  update();
}

void MapWidget::OverlayFeature(int lyr, int rec) {
  overFeats_.emplace_back(lyr, rec);
  update();
}

void MapWidget::SetToolCursor(int tool) {
  switch (tool) {
  case kToolZoomIn:
  case kToolZoomOut:
  case kToolMeasure:
  case kToolCreateFeature:
  case kToolRouteStop:
    setCursor(Qt::CrossCursor);
    break;
  case kToolPan:
    setCursor(Qt::OpenHandCursor);
    break;
  case 13: // inside the picked polygon: the whole moves
    setCursor(Qt::SizeAllCursor);
    break;
  case 14: // on a segment
    setCursor(Qt::PointingHandCursor);
    break;
  case 15: // on a vertex
    setCursor(Qt::SizeBDiagCursor);
    break;
  case kToolIdentify:
  case kToolHyperLink:
    setCursor(Qt::WhatsThisCursor);
    break;
  default:
    setCursor(Qt::ArrowCursor);
  }
}

void MapWidget::ShowPopup(const PopupMenu& shown) {
  if (popup_) popup_->close();
  PopupMenu m = shown;
  if (m.Name == "mnuSelection") AddSelectionEntries(s_, m);
  auto* menu = new QMenu(this);
  menu->setObjectName(ToQ(m.Name));
  menu->setAttribute(Qt::WA_DeleteOnClose);
  for (const MenuEntry& e : m.Entries) {
    if (e.Name == "-") {
      menu->addSeparator();
      continue;
    }
    QAction* a = menu->addAction(ToQ(e.Caption));
    a->setObjectName(ToQ(e.Name));
    a->setEnabled(e.Enabled);
    a->setCheckable(e.Checked);
    a->setChecked(e.Checked);
    const std::string name = e.Name;
    connect(a, &QAction::triggered, this, [this, name] {
      if (IsSelectionEntry(name)) {
        s_.Edit.PopupOpen = 0;
        emit SelectionRequested(ToQ(name));
        update();
        return;
      }
      RunMenuEntry(s_, *this, name);
      emit Edited();
      update();
    });
  }
  connect(menu, &QMenu::aboutToHide, this, [this] { s_.Edit.PopupOpen = 0; });
  popup_ = menu;
  menu->popup(QCursor::pos());
}

void MapWidget::OpenDialog(const std::string& name) {
  emit DialogRequested(ToQ(name));
}

void MapWidget::ViewCommand(const std::string& name) {
  emit ViewCommandRequested(ToQ(name));
}

void MapWidget::UpdateCursor() {
  SetToolCursor(s_.MapView.MapTool);
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
  const QPoint at = e->position().toPoint();
  if (e->button() == Qt::RightButton ||
      (e->button() == Qt::LeftButton && EditorTool(s_.MapView.MapTool))) {
    EditPicDown(s_, *this, e->button() == Qt::RightButton ? kRightButton : kLeftButton,
                KeysOf(e->modifiers()), at.x(), at.y());
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
  if (drag_ == Drag::None) {
    if (s_.LyrCount > 0 && EditorTool(s_.MapView.MapTool))
      EditPicMove(s_, *this, ButtonsOf(e->buttons()), KeysOf(e->modifiers()), at.x(), at.y());
    return;
  }
  to_ = at;
  update();
}

void MapWidget::mouseReleaseEvent(QMouseEvent* e) {
  if (drag_ == Drag::None) {
    const QPoint at = e->position().toPoint();
    const int tool = s_.MapView.MapTool;
    if (s_.LyrCount > 0 && (tool == kToolIdentify || tool == kToolHyperLink) &&
        e->button() == Qt::LeftButton)
      emit FeaturePicked(tool, at.x(), at.y());
    if (s_.MapView.MapTool == kToolRouteStop && e->button() == Qt::LeftButton)
      emit RouteStopClicked(at.x(), at.y());
    if (s_.LyrCount > 0 && EditorTool(s_.MapView.MapTool) && e->button() == Qt::LeftButton) {
      const bool box = s_.MapView.MapTool == kToolSelectBox && s_.Edit.MouseDown;
      EditPicUp(s_, *this, kLeftButton, KeysOf(e->modifiers()), at.x(), at.y());
      if (box) SelectBoxRelease(at, KeysOf(e->modifiers()));
      emit Edited();
    }
    return;
  }
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

void MapWidget::SelectBoxRelease(QPoint at, int keys) {
  ClearOverlay();
  QPoint a = from_, b = at;
  if ((a - b).manhattanLength() < 3) b = a; // a click
  SelectByBox(s_, WorldX(s_, a.x()), WorldY(s_, a.y()), WorldX(s_, b.x()), WorldY(s_, b.y()), keys);
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

void MapWidget::mouseDoubleClickEvent(QMouseEvent* e) {
  if (s_.LyrCount == 0 || e->button() != Qt::LeftButton || !EditorTool(s_.MapView.MapTool)) {
    QWidget::mouseDoubleClickEvent(e);
    return;
  }
  EditPicDblClick(s_, *this);
  UpdateCursor();
  emit Edited();
}

void MapWidget::keyPressEvent(QKeyEvent* e) {
  int code = 0;
  switch (e->key()) {
  case Qt::Key_Escape:
    if (!EditPicKeyDown(s_, *this, 27)) QWidget::keyPressEvent(e);
    return;
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
