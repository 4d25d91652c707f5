#pragma once
#include <QImage>
#include <map>

#include "platform/image_io.h"

namespace velmora {

// The session's pictures as QImages of three bytes a pixel: decoded by GDAL, encoded and
// drawn by Qt.
class QtImageIO : public ImageIO {
public:
  bool CodecsReady() const override;
  int Load(const std::string& path, std::string& why) override;
  int FromBits(const DibBits& bits) override;
  bool GetBits(int handle, DibBits& out) override;
  bool SetBits(int handle, const DibBits& bits) override;
  int Width(int handle) const override;
  int Height(int handle) const override;
  bool Save(int handle, const std::string& path, const std::string& mime, int quality,
            std::string& why) override;
  void Free(int handle) override;

  const QImage* Get(int handle) const;

private:
  std::map<int, QImage> images_;
  int next_ = 1;
};

} // namespace velmora
