#pragma once
#include <QImage>
#include <QPainter>
#include <memory>

#include "platform/canvas.h"

namespace velmora {

// The map's drawing surface over QPainter on a QImage, with GDI's pen and brush numbers.
class QtImageIO;

class QtCanvas : public Canvas {
public:
  explicit QtCanvas(QImage& image, const QtImageIO* images = nullptr);
  ~QtCanvas() override;

  int Width() const override { return image_.width(); }
  int Height() const override { return image_.height(); }
  void Clear(Colour c) override;
  void SetPen(Colour c, int drawMode, int style, int width) override;
  void SetBrush(Colour c, int fillStyle) override;
  void Polyline(const PixPt* pts, size_t n) override;
  void PolyPolygon(const PixPt* pts, const int* counts, size_t rings) override;
  void Rectangle(int x1, int y1, int x2, int y2) override;
  void Text(int x, int y, double angle, const std::string& text, const std::string& font,
            int pointSize, bool bold, bool italic, Colour c) override;
  void StretchImage(int handle, int x1, int y1, int x2, int y2) override;

  // Ends painting so that the image can be read.
  void End();

  static QColor ToQColor(Colour c);

private:
  QImage& image_;
  const QtImageIO* images_;
  std::unique_ptr<QPainter> p_;
  QPainter::CompositionMode mode_ = QPainter::CompositionMode_SourceOver;
  int drawMode_ = 13;
  Colour brushColour_ = 0;
  int brushStyle_ = 1; // hollow until a brush is set
  void Begin();
  QColor ModeColour(Colour c) const;
};

} // namespace velmora
