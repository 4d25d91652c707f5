#include "platform/qt/qt_image_io.h"

#include <QImageWriter>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

#include "model/file_util.h"
#include "model/safe_file.h"
#include "platform/gdal/gdal_picture.h"
#include "platform/memory_limit.h"

namespace velmora {

namespace {

// A file as the encoders' device, written straight through: every failed write is kept by
// its errno, where a short write would leave a QFile without an error.
class FdDevice : public QIODevice {
public:
  explicit FdDevice(int fd) : fd_(fd) {}
  bool isSequential() const override { return false; }
  qint64 size() const override {
    struct stat st {};
    return ::fstat(fd_, &st) == 0 ? qint64(st.st_size) : 0;
  }
  int Errno() const { return err_; }

protected:
  qint64 readData(char* data, qint64 max) override {
    ssize_t n = ::pread(fd_, data, size_t(max), off_t(pos()));
    return n < 0 ? -1 : qint64(n);
  }
  qint64 writeData(const char* data, qint64 len) override {
    qint64 done = 0;
    while (done < len) {
      ssize_t n = ::pwrite(fd_, data + done, size_t(len - done), off_t(pos() + done));
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) {
        if (!err_) err_ = n < 0 ? errno : ENOSPC;
        return -1;
      }
      done += n;
    }
    return done;
  }

private:
  int fd_;
  int err_ = 0;
};

// A picture of width by height pixels, or a null image with `why` when memory can't hold it.
QImage NewPicture(int width, int height, std::string& why) {
  uint64_t bytes = DibBytes(width, height);
  why = MemoryRefusal(bytes, width, height);
  if (!why.empty()) return {};
  QImage img(width, height, QImage::Format_RGB888);
  if (img.isNull())
    why = std::to_string(width) + " x " + std::to_string(height) + " pixels needs " +
          std::to_string((bytes + (1u << 20) - 1) >> 20) + " MB";
  return img;
}

} // namespace

bool QtImageIO::CodecsReady() const {
  return GdalCodecsReady();
}

int QtImageIO::Load(const std::string& path, std::string& why) {
  GdalPicture pic;
  if (!pic.Open(NativePath(path), why)) return 0;
  QImage img = NewPicture(pic.Width(), pic.Height(), why);
  if (img.isNull()) return 0;
  if (!pic.ReadRgb(img.bits(), size_t(img.bytesPerLine()), why)) return 0;
  int h = next_++;
  images_[h] = std::move(img);
  return h;
}

int QtImageIO::FromBits(const DibBits& bits) {
  int h = next_++;
  images_[h] = QImage(bits.Width, bits.Height, QImage::Format_RGB888);
  if (!SetBits(h, bits)) {
    images_.erase(h);
    return 0;
  }
  return h;
}

bool QtImageIO::GetBits(int handle, DibBits& out) {
  const QImage* img = Get(handle);
  if (!img ||
      !MemoryRefusal(DibBytes(img->width(), img->height()), img->width(), img->height()).empty())
    return false;
  out.Width = img->width();
  out.Height = img->height();
  int stride = out.Stride();
  out.Bits.assign(size_t(stride) * size_t(out.Height), 0);
  for (int y = 0; y < out.Height; ++y) {
    const uint8_t* src = img->constScanLine(y);
    uint8_t* dst = &out.Bits[size_t(out.Height - 1 - y) * size_t(stride)];
    for (int x = 0; x < out.Width; ++x) {
      dst[x * 3] = src[x * 3 + 2];
      dst[x * 3 + 1] = src[x * 3 + 1];
      dst[x * 3 + 2] = src[x * 3];
    }
  }
  return true;
}

bool QtImageIO::SetBits(int handle, const DibBits& bits) {
  auto it = images_.find(handle);
  if (it == images_.end() || bits.Width <= 0 || bits.Height <= 0 ||
      bits.Bits.size() < size_t(bits.Stride()) * size_t(bits.Height))
    return false;
  QImage& img = it->second;
  if (img.width() != bits.Width || img.height() != bits.Height ||
      img.format() != QImage::Format_RGB888) {
    std::string why;
    img = NewPicture(bits.Width, bits.Height, why);
    if (img.isNull()) return false;
  }
  int stride = bits.Stride();
  for (int y = 0; y < bits.Height; ++y) {
    uint8_t* dst = img.scanLine(y);
    const uint8_t* src = &bits.Bits[size_t(bits.Height - 1 - y) * size_t(stride)];
    for (int x = 0; x < bits.Width; ++x) {
      dst[x * 3] = src[x * 3 + 2];
      dst[x * 3 + 1] = src[x * 3 + 1];
      dst[x * 3 + 2] = src[x * 3];
    }
  }
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

bool QtImageIO::Save(int handle, const std::string& path, const std::string& mime, int quality,
                     std::string& why) {
  const QImage* img = Get(handle);
  if (!img) {
    why = "no picture";
    return false;
  }
  QByteArray format = "bmp";
  if (mime == "image/jpeg")
    format = "jpeg";
  else if (mime == "image/tiff")
    format = "tiff";
  else if (mime == "image/png")
    format = "png";
  else if (mime == "image/gif")
    format = "gif";
  if (!QImageWriter::supportedImageFormats().contains(format)) {
    why = "no " + format.toUpper().toStdString() + " writer";
    return false;
  }
  int fd = ::open(NativePath(path).c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (fd < 0) {
    why = ErrnoText(errno);
    return false;
  }
  FdDevice dev(fd);
  dev.open(QIODevice::ReadWrite | QIODevice::Unbuffered);
  QImageWriter writer(&dev, format);
  if (format == "jpeg") writer.setQuality(quality);
  bool ok = writer.write(*img);
  if (!ok) why = writer.errorString().toStdString();
  // The file's own error (a full disk, a size limit) says more than the encoder's.
  if (dev.Errno()) {
    ok = false;
    why = ErrnoText(dev.Errno());
  }
  dev.close();
  if (::close(fd) != 0 && ok) {
    ok = false;
    why = ErrnoText(errno);
  }
  return ok;
}

void QtImageIO::Free(int handle) {
  images_.erase(handle);
}

const QImage* QtImageIO::Get(int handle) const {
  auto it = images_.find(handle);
  return it == images_.end() ? nullptr : &it->second;
}

} // namespace velmora
