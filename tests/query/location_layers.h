#pragma once
// Test layers made by GDAL's ogr2ogr: a grid of polygons sharing edges, irregular stars
// with holes, points and lines partly on the grid's edges, and multipoints. Each row has
// the fields id, NAME and ZONE.
#include <cmath>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "test_support.h"

namespace velmora::test {

struct LocationFiles {
  std::string Grid, Stars, Points, Lines, Multi;
};

inline std::string WriteRows(const std::string& dir, const std::string& name,
                             const std::vector<std::string>& wkts, const std::string& opts) {
  std::string csv = dir + name + ".csv", shp = dir + name + ".shp";
  {
    std::ofstream f(csv);
    f << "id,NAME,ZONE,WKT\n";
    for (size_t i = 0; i < wkts.size(); ++i)
      f << i + 1 << "," << name << "-" << i + 1 << "," << (i * 7) % 13 << ",\"" << wkts[i]
        << "\"\n";
  }
  int st = 0;
  RunCmd("ogr2ogr -q -f 'ESRI Shapefile' " + opts + " '" + shp + "' '" + csv + "' 2>&1", &st);
  return st == 0 ? shp : "";
}

inline std::string Num(double v) {
  std::ostringstream o;
  o.precision(17);
  o << v;
  return o.str();
}

// `scale` multiplies the number of features.
inline LocationFiles MakeLocationFiles(const std::string& dir, int scale = 1) {
  std::mt19937 rng(20261123);
  std::uniform_real_distribution<double> U(0, 1);
  auto u = [&](double a, double b) { return a + (b - a) * U(rng); };
  LocationFiles out;
  std::vector<std::string> rows;
  const int cells = 15;
  for (int i = 0; i < cells; ++i)
    for (int j = 0; j < cells; ++j) {
      double x = i * 10, y = j * 10;
      rows.push_back("POLYGON ((" + Num(x) + " " + Num(y) + "," + Num(x) + " " + Num(y + 10) + "," +
                     Num(x + 10) + " " + Num(y + 10) + "," + Num(x + 10) + " " + Num(y) + "," +
                     Num(x) + " " + Num(y) + "))");
    }
  out.Grid = WriteRows(dir, "grid", rows, "-lco SHPT=POLYGON");
  rows.clear();
  for (int k = 0; k < 150 * scale; ++k) {
    double cx = u(-5, 155), cy = u(-5, 155), r = u(2, 15);
    int n = 8 + int(u(0, 12));
    std::string ring;
    for (int i = 0; i <= n; ++i) {
      double a = 2 * M_PI * (i % n) / n, rr = r * (i % 2 ? 0.5 : 1);
      ring += (i ? "," : "") + Num(cx + rr * std::cos(a)) + " " + Num(cy + rr * std::sin(a));
    }
    std::string w = "POLYGON ((" + ring + ")";
    if (k % 4 == 0) {
      double h = r * 0.2;
      w += ",(" + Num(cx - h) + " " + Num(cy - h) + "," + Num(cx + h) + " " + Num(cy - h) + "," +
           Num(cx + h) + " " + Num(cy + h) + "," + Num(cx - h) + " " + Num(cy + h) + "," +
           Num(cx - h) + " " + Num(cy - h) + ")";
    }
    rows.push_back(w + ")");
  }
  out.Stars = WriteRows(dir, "stars", rows, "-lco SHPT=POLYGON");
  rows.clear();
  for (int k = 0; k < 2500 * scale; ++k)
    rows.push_back("POINT (" + Num(u(-10, 160)) + " " + Num(u(-10, 160)) + ")");
  for (int k = 0; k < 100; ++k) // on the grid's edges and corners
    rows.push_back("POINT (" + Num(10 * int(u(0, 15))) + " " +
                   Num(k % 5 ? u(0, 150) : 10 * int(u(0, 15))) + ")");
  out.Points = WriteRows(dir, "points", rows, "");
  rows.clear();
  for (int k = 0; k < 1200 * scale; ++k) {
    double x = u(-10, 160), y = u(-10, 160);
    int n = 2 + int(u(0, 5));
    std::string w = "LINESTRING (";
    for (int i = 0; i < n; ++i) {
      w += (i ? "," : "") + Num(x) + " " + Num(y);
      x += u(-8, 8), y += u(-8, 8);
    }
    rows.push_back(w + ")");
  }
  for (int k = 0; k < 60; ++k) { // along the grid's edges, no vertex on a grid corner
    double e = 10 * int(u(0, 15)), a = u(0, 140), b = a + u(1, 9);
    rows.push_back(
        k % 2 ? "LINESTRING (" + Num(e) + " " + Num(a) + "," + Num(e) + " " + Num(b) + ")"
              : "LINESTRING (" + Num(a) + " " + Num(e) + "," + Num(b) + " " + Num(e) + ")");
  }
  out.Lines = WriteRows(dir, "lines", rows, "-lco SHPT=ARC");
  rows.clear();
  for (int k = 0; k < 200 * scale; ++k) {
    double x = u(-10, 160), y = u(-10, 160);
    int n = 2 + int(u(0, 5));
    std::string w = "MULTIPOINT (";
    for (int i = 0; i < n; ++i)
      w += (i ? "," : "") + std::string("(") + Num(x + u(-6, 6)) + " " + Num(y + u(-6, 6)) + ")";
    rows.push_back(w + ")");
  }
  out.Multi = WriteRows(dir, "multi", rows, "-lco SHPT=MULTIPOINT");
  return out;
}

} // namespace velmora::test
