#pragma once
// Helpers of the store tests: layers made by GDAL, shapefiles built byte by byte, and a
// session with one open layer.
#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "model/session.h"
#include "store/shp_store.h"
#include "test_support.h"

namespace velmora::test {

// Writes a CSV with a WKT column and turns it into `<dir><name>.shp` with ogr2ogr under
// the given SHPT layer option. Returns the .shp path, "" when ogr2ogr failed.
std::string OgrShp(const std::string& dir, const std::string& name, const std::string& shpt,
                   const std::vector<std::string>& wkts);
// shpdump output without its first line of file name noise.
std::string ShpDump(const std::string& shpPath);

// Opens `path` into row 1 of a fresh layer table, as a shape layer.
void OpenAsLayer(Session& s, const std::string& path, int row = 1);

// A shapefile built by hand, independent of the store's writer.
class ShpBuilder {
public:
  explicit ShpBuilder(int shapeType) : type_(shapeType) {}
  // Appends one record's content (type word included); returns its number.
  int Add(const std::vector<uint8_t>& content);
  // Writes .shp and, when `withShx`, .shx. `stateShxWords` overrides the .shx length.
  void Write(const std::string& shpPath, bool withShx, int32_t stateShxWords = -1) const;
  std::vector<uint8_t> ShpBytes() const;
  std::vector<uint8_t> ShxBytes(int32_t stateShxWords = -1) const;
  std::array<int32_t, 5> unused{};
  int32_t version = 1000;
  double zmin = 0, zmax = 0, mmin = 0, mmax = 0;

private:
  int type_;
  std::vector<std::vector<uint8_t>> recs_;
};

// Little builders of record content.
struct Bytes {
  std::vector<uint8_t> b;
  Bytes& I(int32_t v) {
    uint8_t t[4];
    std::memcpy(t, &v, 4);
    b.insert(b.end(), t, t + 4);
    return *this;
  }
  Bytes& D(double v) {
    uint8_t t[8];
    std::memcpy(t, &v, 8);
    b.insert(b.end(), t, t + 8);
    return *this;
  }
  Bytes& Box(double x0, double y0, double x1, double y1) { return D(x0).D(y0).D(x1).D(y1); }
};

int32_t BE32At(const std::string& bytes, size_t at);
int32_t LE32At(const std::string& bytes, size_t at);
double F64At(const std::string& bytes, size_t at);

} // namespace velmora::test
