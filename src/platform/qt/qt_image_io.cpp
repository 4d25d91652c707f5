#include "platform/qt/qt_image_io.h"

#include <QImageReader>
#include <QImageWriter>
#include <cstring>

#include "model/file_util.h"

namespace velmora {

bool QtImageIO::CodecsReady() const {
  auto formats = QImageReader::supportedImageFormats();
  return formats.contains("tiff") && formats.contains("png");
}

int QtImageIO::Load(const std::string& path) {
  QImageReader reader(QString::fromStdString(NativePath(path)));
  reader.setAutoTransform(false);
  QImage img = reader.read();
  if (img.isNull()) return 0;
  int h = next_++;
  images_[h] = img.convertToFormat(QImage::Format_RGB32);
  return h;
}

int QtImageIO::FromBits(const DibBits& bits) {
  int h = next_++;
  images_[h] = QImage(bits.Width, bits.Height, QImage::Format_RGB32);
  if (!SetBits(h, bits)) {
    images_.erase(h);
    return 0;
  }
  return h;
}

bool QtImageIO::GetBits(int handle, DibBits& out) {
  const QImage* img = Get(handle);
  if (!img) return false;
  out.Width = img->width();
  out.Height = img->height();
  int stride = out.Stride();
  out.Bits.assign(size_t(stride) * size_t(out.Height), 0);
  for (int y = 0; y < out.Height; ++y) {
    const QRgb* src = reinterpret_cast<const QRgb*>(img->constScanLine(y));
    uint8_t* dst = &out.Bits[size_t(out.Height - 1 - y) * size_t(stride)];
    for (int x = 0; x < out.Width; ++x) {
      dst[x * 3] = uint8_t(qBlue(src[x]));
      dst[x * 3 + 1] = uint8_t(qGreen(src[x]));
      dst[x * 3 + 2] = uint8_t(qRed(src[x]));
    }
  }
  return true;
}

bool QtImageIO::SetBits(int handle, const DibBits& bits) {
  auto it = images_.find(handle);
  if (it == images_.end() || bits.Width <= 0 || bits.Height <= 0 ||
      bits.Bits.size() < size_t(bits.Stride()) * size_t(bits.Height))
    return false;
  QImage img(bits.Width, bits.Height, QImage::Format_RGB32);
  int stride = bits.Stride();
  for (int y = 0; y < bits.Height; ++y) {
    QRgb* dst = reinterpret_cast<QRgb*>(img.scanLine(y));
    const uint8_t* src = &bits.Bits[size_t(bits.Height - 1 - y) * size_t(stride)];
    for (int x = 0; x < bits.Width; ++x) dst[x] = qRgb(src[x * 3 + 2], src[x * 3 + 1], src[x * 3]);
  }
  it->second = img;
  return true;
}

int QtImageIO::Width(int handle) const {
  const QImage* img = Get(handle);
  return img ? img->width() : 0;
}

int QtImageIO::Height(int handle) const {
  const QImage* img = Get(handle);
  return img ? img->height() : 0;
}

bool QtImageIO::Save(int handle, const std::string& path, const std::string& mime, int quality) {
  const QImage* img = Get(handle);
  if (!img) return false;
  QByteArray format = "bmp";
  if (mime == "image/jpeg")
    format = "jpeg";
  else if (mime == "image/tiff")
    format = "tiff";
  else if (mime == "image/png")
    format = "png";
  else if (mime == "image/gif")
    format = "gif";
  QImageWriter writer(QString::fromStdString(NativePath(path)), format);
  if (format == "jpeg") writer.setQuality(quality);
  return writer.write(img->convertToFormat(QImage::Format_RGB888));
}

void QtImageIO::Free(int handle) {
  images_.erase(handle);
}

const QImage* QtImageIO::Get(int handle) const {
  auto it = images_.find(handle);
  return it == images_.end() ? nullptr : &it->second;
}

} // namespace velmora
