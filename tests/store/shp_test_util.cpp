#include "shp_test_util.h"

#include <fstream>

#include "model/file_util.h"

namespace velmora::test {

namespace {
void PutBE(std::vector<uint8_t>& v, size_t at, int32_t x) {
  uint32_t u = uint32_t(x);
  v[at] = uint8_t(u >> 24), v[at + 1] = uint8_t(u >> 16), v[at + 2] = uint8_t(u >> 8);
  v[at + 3] = uint8_t(u);
}
void PutLE(std::vector<uint8_t>& v, size_t at, int32_t x) {
  std::memcpy(&v[at], &x, 4);
}
void PutD(std::vector<uint8_t>& v, size_t at, double x) {
  std::memcpy(&v[at], &x, 8);
}
} // namespace

std::string OgrShp(const std::string& dir, const std::string& name, const std::string& shpt,
                   const std::vector<std::string>& wkts) {
  return GdalLayer(dir, name, wkts, "-lco SHPT=" + shpt);
}

std::string ShpDump(const std::string& shpPath) {
  std::string out = RunCmd("shpdump '" + shpPath + "' 2>&1");
  return out;
}

void OpenAsLayer(Session& s, const std::string& path, int row) {
  if (s.LyrCount < row) {
    s.Lyr.Resize(row);
    s.LyrCount = row;
  }
  OpenShp(s, row, path);
  if (s.ShpErr == 0) {
    s.Lyr[row].LyrKind = 1;
    s.Lyr[row].LyrName = FileNameOf(path);
  }
}

int ShpBuilder::Add(const std::vector<uint8_t>& content) {
  recs_.push_back(content);
  return int(recs_.size());
}

std::vector<uint8_t> ShpBuilder::ShpBytes() const {
  std::vector<uint8_t> out(100, 0);
  for (size_t i = 0; i < recs_.size(); ++i) {
    size_t at = out.size();
    out.resize(at + 8);
    PutBE(out, at, int32_t(i + 1));
    PutBE(out, at + 4, int32_t(recs_[i].size() / 2));
    out.insert(out.end(), recs_[i].begin(), recs_[i].end());
  }
  PutBE(out, 0, 9994);
  for (int i = 0; i < 5; ++i) PutBE(out, 4 + 4 * size_t(i), unused[size_t(i)]);
  PutBE(out, 24, int32_t(out.size() / 2));
  PutLE(out, 28, version);
  PutLE(out, 32, type_);
  PutD(out, 68, zmin), PutD(out, 76, zmax), PutD(out, 84, mmin), PutD(out, 92, mmax);
  return out;
}

std::vector<uint8_t> ShpBuilder::ShxBytes(int32_t stateShxWords) const {
  std::vector<uint8_t> out(100 + 8 * recs_.size(), 0);
  size_t off = 100;
  for (size_t i = 0; i < recs_.size(); ++i) {
    PutBE(out, 100 + 8 * i, int32_t(off / 2));
    PutBE(out, 104 + 8 * i, int32_t(recs_[i].size() / 2));
    off += 8 + recs_[i].size();
  }
  PutBE(out, 0, 9994);
  PutBE(out, 24, stateShxWords >= 0 ? stateShxWords : int32_t(out.size() / 2));
  PutLE(out, 28, version);
  PutLE(out, 32, type_);
  return out;
}

void ShpBuilder::Write(const std::string& shpPath, bool withShx, int32_t stateShxWords) const {
  auto shp = ShpBytes();
  WriteFile(shpPath, std::string(shp.begin(), shp.end()));
  std::string shx = ChangeExt(shpPath, "shx");
  KillFile(shx);
  if (withShx) {
    auto x = ShxBytes(stateShxWords);
    WriteFile(shx, std::string(x.begin(), x.end()));
  }
}

int32_t BE32At(const std::string& b, size_t at) {
  return int32_t(uint32_t(uint8_t(b[at])) << 24 | uint32_t(uint8_t(b[at + 1])) << 16 |
                 uint32_t(uint8_t(b[at + 2])) << 8 | uint32_t(uint8_t(b[at + 3])));
}
int32_t LE32At(const std::string& b, size_t at) {
  int32_t v;
  std::memcpy(&v, b.data() + at, 4);
  return v;
}
double F64At(const std::string& b, size_t at) {
  double v;
  std::memcpy(&v, b.data() + at, 8);
  return v;
}

} // namespace velmora::test
