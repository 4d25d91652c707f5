#pragma once
// The 1,000,000-row, 6-field layer of the table benchmarks, made by GDAL's ogr2ogr from a
// CSV in a temporary folder once per process (or taken from VELMORA_BENCH_TABLE).
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <unistd.h>

#include "model/file_util.h"

namespace velmora::bench {

constexpr int kRows = 1000000;
constexpr int kPageRows = 40;

// Resident memory in bytes.
inline long long Rss() {
  std::ifstream f("/proc/self/statm");
  long long pages = 0, rss = 0;
  f >> pages >> rss;
  return rss * ::sysconf(_SC_PAGESIZE);
}

// The layer: ID, NAME, VAL, CNT, DAY, NOTE; point i at (i mod 1000, i / 1000).
inline std::string MakeLayer(const std::string& dir) {
  const std::string csv = dir + "/t.csv";
  {
    std::ofstream o(csv);
    o << "ID,NAME,VAL,CNT,DAY,NOTE,X,Y\n";
    for (int i = 0; i < kRows; ++i)
      o << i + 1 << ",Street " << i % 9973 << "," << (i % 100000) * 1.25 << "," << i % 77777 << ","
        << 1950 + i % 70 << "-" << (i % 12 < 9 ? "0" : "") << 1 + i % 12 << "-"
        << (i % 28 < 9 ? "0" : "") << 1 + i % 28 << ",note " << i % 13 << "," << i % 1000 << ","
        << i / 1000 << "\n";
  }
  std::ofstream(dir + "/t.csvt")
      << "Integer(10),String(24),Real(14.4),Integer(9),Date,String(20),Real,Real\n";
  const std::string shp = dir + "/t.shp";
  const std::string cmd = "ogr2ogr -q -f 'ESRI Shapefile' " + shp + " " + csv +
                          " -oo X_POSSIBLE_NAMES=X -oo Y_POSSIBLE_NAMES=Y"
                          " -oo KEEP_GEOM_COLUMNS=NO -nlt POINT";
  if (std::system(cmd.c_str()) != 0) return "";
  std::remove(csv.c_str());
  return shp;
}

struct Layer {
  std::string dir, shp;
  bool ours = false;
  Layer() {
    if (const char* p = std::getenv("VELMORA_BENCH_TABLE")) {
      shp = p;
      dir = FolderOf(shp);
      return;
    }
    char tmpl[] = "/tmp/velmora-bench-table-XXXXXX";
    dir = ::mkdtemp(tmpl);
    shp = MakeLayer(dir);
    ours = true;
  }
  ~Layer() {
    if (ours) std::system(("rm -rf " + dir).c_str());
  }
};

inline const std::string& Source() {
  static Layer l;
  return l.shp;
}

} // namespace velmora::bench
