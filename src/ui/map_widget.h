#pragma once
#include <QImage>
#include <QLineF>
#include <QMenu>
#include <QPointer>
#include <QWidget>
#include <memory>
#include <utility>
#include <vector>

#include "edit/editor.h"

#include "model/session.h"
#include "platform/qt/qt_canvas.h"

namespace velmora {

// EditPic: the visible map surface. The map is drawn into MapBuf, an image of the view
// size (ViewW by ViewH, fixed from the screen), and shown here in one step; rubber bands
// and the features under edit are drawn over it on this surface only, so a drag never
// redraws the map. The mouse of the editing tools goes to the editor (edit/editor.h).
class MapWidget : public QWidget, public EditSurface {
  Q_OBJECT
public:
  MapWidget(Session& s, QWidget* parent = nullptr);
  ~MapWidget() override;

  // The surface to draw the map on, sized to the present view size.
  Canvas* MapBuf();
  // EditPic takes the image of MapBuf.
  void MapShow();
  const QImage& Image() const { return buf_; }
  // The picture store that image layers are drawn from.
  void SetImages(const QtImageIO* images) { images_ = images; }
  // The cursor of the present tool.
  void UpdateCursor();
  // The popup shown last, while it is open (for the tests).
  QMenu* Popup() const { return popup_; }

  // EditSurface.
  void ClearOverlay() override;
  void OverlayRect(int x1, int y1, int x2, int y2) override;
  void OverlaySegment(double x1, double y1, double x2, double y2) override;
  void OverlayFeature(int lyr, int rec) override;
  void SetToolCursor(int tool) override;
  void ShowPopup(const PopupMenu& menu) override;
  void OpenDialog(const std::string& name) override;
  void ViewCommand(const std::string& name) override;

signals:
  void StatusTextChanged(const QString& text);
  void ViewChanged();
  // A movement dialog ("MoveDistance", "MoveToXY", "frmRotateAngle", "frmMoveSettings").
  void DialogRequested(const QString& name);
  // mnuFullExtent, mnuZoomPrevious, mnuZoomNext of the popups; an edit changed the session.
  void ViewCommandRequested(const QString& name);
  // An entry of the selection popup (mnuSelection), run by the window on the active layer.
  void SelectionRequested(const QString& name);
  void Edited();
  // A click of tool 8 (Identify) or 9 (HyperLink) at pixel (x, y).
  void FeaturePicked(int tool, int x, int y);
  // A click of tool 16 (a stop of the shortest path) at pixel (x, y).
  void RouteStopClicked(int x, int y);

protected:
  void paintEvent(QPaintEvent* e) override;
  void mousePressEvent(QMouseEvent* e) override;
  void mouseMoveEvent(QMouseEvent* e) override;
  void mouseReleaseEvent(QMouseEvent* e) override;
  void wheelEvent(QWheelEvent* e) override;
  void keyPressEvent(QKeyEvent* e) override;
  void mouseDoubleClickEvent(QMouseEvent* e) override;

private:
  // The select box of tool 7 let go at `at`, from the press.
  void SelectBoxRelease(QPoint at, int keys);

  Session& s_;
  QImage buf_;
  std::unique_ptr<QtCanvas> canvas_;
  enum class Drag { None, Box, Pan, MiddlePan } drag_ = Drag::None;
  QPoint from_, to_;
  int panReturnTool_ = 0;
  const QtImageIO* images_ = nullptr;
  // The overlay: rectangles in pixels, segments in world units, features in the edit pen.
  std::vector<QRect> overRects_;
  std::vector<QLineF> overSegs_;
  std::vector<std::pair<int, int>> overFeats_;
  QImage overImg_;
  QPointer<QMenu> popup_;
};

} // namespace velmora
