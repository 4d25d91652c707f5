#pragma once
#include <QImage>
#include <QWidget>
#include <memory>

#include "model/session.h"
#include "platform/qt/qt_canvas.h"

namespace velmora {

// EditPic: the visible map surface. The map is drawn into MapBuf, an image of the view
// size (ViewW by ViewH, fixed from the screen), and shown here in one step; rubber bands
// are drawn over it on this surface only.
class MapWidget : public QWidget {
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

signals:
  void StatusTextChanged(const QString& text);
  void ViewChanged();

protected:
  void paintEvent(QPaintEvent* e) override;
  void mousePressEvent(QMouseEvent* e) override;
  void mouseMoveEvent(QMouseEvent* e) override;
  void mouseReleaseEvent(QMouseEvent* e) override;
  void wheelEvent(QWheelEvent* e) override;
  void keyPressEvent(QKeyEvent* e) override;

private:
  Session& s_;
  QImage buf_;
  std::unique_ptr<QtCanvas> canvas_;
  enum class Drag { None, Box, Pan, MiddlePan } drag_ = Drag::None;
  QPoint from_, to_;
  int panReturnTool_ = 0;
  const QtImageIO* images_ = nullptr;
};

} // namespace velmora
