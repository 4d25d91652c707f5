#pragma once
// Layers made through the command language, a map window of 0.1 units a pixel over 0 .. 100,
// and the record comparisons of the editing tests.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "edit/journal_lines.h"
#include "frame/lyr_slots.h"
#include "session/commands.h"
#include "session/layer_life.h"
#include "session/map_init.h"
#include "session/undo.h"
#include "store/shp_store.h"
#include "test_support.h"

namespace velmora::test {

using Ring = std::vector<std::pair<double, double>>;

// A feature as plain values: its type and each part's live vertices (X, Y, Z, M).
struct Shape {
  int Type = 0;
  std::vector<std::vector<std::array<double, 4>>> Parts;
  bool operator==(const Shape&) const = default;
};

inline std::ostream& operator<<(std::ostream& o, const Shape& sh) {
  o << "type " << sh.Type << ":";
  for (const auto& p : sh.Parts) {
    o << " [";
    for (const auto& v : p) o << " (" << v[0] << "," << v[1] << ")";
    o << " ]";
  }
  return o;
}

struct EditFixture : ::testing::Test {
  RecordingHost host;
  Session s{host};
  std::string dir = TempDir("edit");

  void SetUp() override {
    MapInit(s);
    Randomize(s, 5);
    View();
    s.MapView.MapTool = 11;
  }
  // The window of 0.1 units a pixel over 0 .. 100 (opening a layer fits the map to it).
  void View() {
    s.MapView.ViewW = 1000, s.MapView.ViewH = 1000;
    s.MapView.MapLeft = 0, s.MapView.MapRight = 100;
    s.MapView.MapTop = 100, s.MapView.MapBottom = 0;
    s.MapView.MapFactor = 0.1;
  }
  void TearDown() override { CloseAllLyrs(s); }

  void Exec(const std::string& line) {
    ArgStrSplit(s, line);
    ArgStrExecute(s);
  }
  // A layer of `kind` (a MAKE LAYER word) with one feature per entry of `features`, each
  // feature a list of parts.
  int Layer(const std::string& name, const std::string& kind,
            const std::vector<std::vector<Ring>>& features) {
    const std::string path = dir + name + ".shp";
    const std::string q = QuotedPath(path);
    Exec("MAKE LAYER " + q + " AS " + kind);
    Exec("OPEN LAYER " + q);
    const int lyr = FindLyrByFile(s, path);
    EXPECT_GT(lyr, 0);
    for (const auto& parts : features) {
      bool first = true;
      int f = 0;
      for (size_t p = 0; p < parts.size(); ++p) {
        if (p > 0) AddPart(s, lyr, f);
        for (const auto& [x, y] : parts[p]) {
          if (first) {
            Exec("ADD FEATURE " + q + " 0 " + NumText(x) + " " + NumText(y));
            f = s.Lyr[lyr].Shp.RecCount;
            first = false;
          } else {
            Exec("ADD VERTEX " + q + " " + std::to_string(f) + " " + std::to_string(p) + " " +
                 NumText(x) + " " + NumText(y));
          }
        }
      }
    }
    View();
    return lyr;
  }
  std::string Path(int lyr) const { return s.Lyr[lyr].Fsource; }

  Shape Get(int lyr, int f) const {
    Shape sh;
    const ShpRecord& r = s.Lyr[lyr].Shp.ShpRecs.at(size_t(f));
    sh.Type = r.ShapeType;
    for (const ShpPart& p : r.Parts()) {
      std::vector<std::array<double, 4>> v;
      for (size_t i = 0; i < size_t(std::max(p.PartCount, 0)) && i < p.Size(); ++i)
        v.push_back({p.PartPoints()[i].X, p.PartPoints()[i].Y, p.PartZ().empty() ? 0 : p.PartZ()[i],
                     p.PartM().empty() ? 0 : p.PartM()[i]});
      sh.Parts.push_back(v);
    }
    return sh;
  }
  std::vector<Shape> All(int lyr) const {
    std::vector<Shape> v;
    for (int f = 1; f <= s.Lyr[lyr].Shp.RecCount; ++f) v.push_back(Get(lyr, f));
    return v;
  }
  // Equal within a relative 1e-9: the journal's numbers have fifteen digits.
  static bool Near(const std::vector<Shape>& a, const std::vector<Shape>& b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
      if (a[i].Type != b[i].Type || a[i].Parts.size() != b[i].Parts.size()) return false;
      for (size_t p = 0; p < a[i].Parts.size(); ++p) {
        if (a[i].Parts[p].size() != b[i].Parts[p].size()) return false;
        for (size_t k = 0; k < a[i].Parts[p].size(); ++k)
          for (int c = 0; c < 4; ++c)
            if (std::fabs(a[i].Parts[p][k][size_t(c)] - b[i].Parts[p][k][size_t(c)]) >
                1e-9 * (1 + std::fabs(a[i].Parts[p][k][size_t(c)])))
              return false;
      }
    }
    return true;
  }
  XY Vertex(int lyr, int f, int p, int v) const {
    return s.Lyr[lyr].Shp.ShpRecs.at(size_t(f)).Part(p).PartPoints()[size_t(v)];
  }
  // World to the pixel of this window.
  static int Px(double X) { return int(std::lround(X * 10)); }
  static int Py(double Y) { return int(std::lround((100 - Y) * 10)); }
  std::string LastLog() const { return host.logged.empty() ? "" : host.logged.back(); }
};

inline const Ring kSquare = {{10, 10}, {10, 20}, {20, 20}, {20, 10}, {10, 10}};

} // namespace velmora::test
