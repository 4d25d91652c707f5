#pragma once
// Layer rows set up by hand around a table, and GDAL as the independent reader.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "model/file_util.h"
#include "model/session.h"
#include "store/dbf_store.h"
#include "test_support.h"

namespace velmora::test {

// Appends a user layer row for the shapefile `path` with `recCount` features.
inline int AddLayerRow(Session& s, const std::string& path, int recCount) {
  int n = s.LyrCount + 1;
  s.Lyr.Resize(n);
  s.LyrCount = n;
  s.Lyr[n].Fsource = path;
  s.Lyr[n].LyrName = FileNameOf(path);
  s.Lyr[n].LyrKind = 1;
  s.Lyr[n].DVisable = 1;
  s.Lyr[n].Shp.RecCount = recCount;
  return n;
}

// The value of row `r` in the "v" field of a SmallTable.
inline std::string QuarterOfRow(int r) {
  return std::to_string(r / 4.0);
}
inline std::string RowNumber(int r) {
  return std::to_string(r);
}

// A layer row with a table of `n` rows made here, in a fresh folder named after `dirName`:
// code C 6 = "r<row>", v N 8.2 = value(row). The log is recorded.
struct SmallTable {
  RecordingHost host;
  Session s{host};
  std::string dir, shp, dbf;
  int lyr = 0;
  explicit SmallTable(const std::string& dirName, int n, int shpType = 3,
                      std::string (*value)(int) = QuarterOfRow)
      : dir(TempDir(dirName)), shp(dir + "roads.shp"), dbf(dir + "roads.dbf") {
    lyr = AddLayerRow(s, shp, n);
    s.Lyr[lyr].Shp.ShpType = shpType;
    InitDbf(s, lyr);
    AddField(s, lyr, "code", 'C', 6, 0);
    AddField(s, lyr, "v", 'N', 8, 2);
    CreateDbf(s, lyr, shp);
    for (int r = 0; r < n; ++r) {
      SetFieldValue(s, lyr, 0, " ");
      SetFieldValue(s, lyr, 1, std::string("r").append(std::to_string(r))); // GCC 12 -Wrestrict
      SetFieldValue(s, lyr, 2, value(r));
      WriteDbfRec(s, lyr, r);
    }
    SetDbfRecCount(s, lyr, n);
    CloseDbf(s, lyr);
    OpenDbf(s, lyr, shp);
    EXPECT_EQ(s.DbfErr, 0);
  }
  DbfBlock& B() { return s.Lyr[lyr].Dbf; }
  // Row `row` with code `code`, through the swap file.
  void Edit(int row, const std::string& code) {
    ReadDbfRec(s, lyr, row);
    SetFieldValue(s, lyr, 1, code);
    s.DbfErr = 0;
    WriteDbfRecSwap(s, lyr, row);
  }
  std::string Code(int row) {
    ReadDbfRec(s, lyr, row);
    return Trim(GetFieldValue(s, lyr, 1));
  }
};

inline std::string Quote(const std::string& s) {
  return "'" + s + "'";
}

// The rows of a table as GDAL reads them; row 0 is the field list (name:type).
inline std::vector<std::vector<std::string>> GdalRows(const std::string& path) {
  int status = 0;
  std::string out =
      RunCmd("/usr/bin/python3 " +
                 Quote(std::string(VELMORA_SOURCE_DIR) + "/tests/store/dbf_gdal_dump.py") + " " +
                 Quote(path) + " 2>&1",
             &status);
  EXPECT_EQ(status, 0) << out;
  std::vector<std::vector<std::string>> rows;
  size_t at = 0;
  while (at < out.size()) {
    size_t nl = out.find('\n', at);
    if (nl == std::string::npos) nl = out.size();
    std::string line = out.substr(at, nl - at);
    std::vector<std::string> cells;
    size_t c = 0;
    while (true) {
      size_t tab = line.find('\t', c);
      cells.push_back(line.substr(c, tab == std::string::npos ? std::string::npos : tab - c));
      if (tab == std::string::npos) break;
      c = tab + 1;
    }
    rows.push_back(cells);
    at = nl + 1;
  }
  return rows;
}

// Makes `dir/name.shp` and its table with ogr2ogr from CSV rows whose types the .csvt gives
// ("String(20)", "Real(12.3)", "Integer(5)", "Date" ...). `lco` adds creation options.
inline std::string MakeGdalTable(const std::string& dir, const std::string& name,
                                 const std::vector<std::string>& names,
                                 const std::vector<std::string>& types,
                                 const std::vector<std::vector<std::string>>& rows,
                                 const std::string& lco = "") {
  std::string csv, csvt;
  for (size_t i = 0; i < names.size(); ++i) {
    csv += names[i] + ",";
    csvt += "\"" + types[i] + "\",";
  }
  csv += "wkt\n";
  csvt += "\"String\"\n";
  int x = 0;
  for (const auto& r : rows) {
    for (const auto& c : r) {
      std::string q;
      for (char ch : c) q += ch == '"' ? std::string("\"\"") : std::string(1, ch);
      csv += "\"" + q + "\",";
    }
    csv += "\"POINT (" + std::to_string(x++) + " 0)\"\n";
  }
  WriteFile(dir + "/" + name + ".csv", csv);
  WriteFile(dir + "/" + name + ".csvt", csvt);
  std::string shp = dir + "/" + name + ".shp";
  int status = 0;
  std::string out =
      RunCmd("ogr2ogr -f 'ESRI Shapefile' " + Quote(shp) + " " + Quote(dir + "/" + name + ".csv") +
                 " -oo GEOM_POSSIBLE_NAMES=wkt -oo KEEP_GEOM_COLUMNS=NO " + lco + " 2>&1",
             &status);
  EXPECT_EQ(status, 0) << out;
  return shp;
}

// The bytes of a table's header words and rows.
struct DbfLayout {
  int HeaderLen = 0, RecLen = 0, RecCount = 0;
};
inline DbfLayout LayoutOf(const std::string& bytes) {
  auto u8 = [&](size_t i) { return int(uint8_t(bytes.at(i))); };
  return {u8(8) | u8(9) << 8, u8(10) | u8(11) << 8, u8(4) | u8(5) << 8 | u8(6) << 16 | u8(7) << 24};
}
inline std::string RowBytes(const std::string& bytes, int row) {
  DbfLayout l = LayoutOf(bytes);
  return bytes.substr(size_t(l.HeaderLen + row * l.RecLen), size_t(l.RecLen));
}

// Files in `dir` whose names start with `prefix`.
inline std::vector<std::string> FilesStartingWith(const std::string& dir,
                                                  const std::string& prefix) {
  std::string out = RunCmd("ls -1 " + Quote(dir));
  std::vector<std::string> r;
  size_t at = 0;
  while (at < out.size()) {
    size_t nl = out.find('\n', at);
    std::string name = out.substr(at, nl - at);
    if (name.rfind(prefix, 0) == 0) r.push_back(name);
    if (nl == std::string::npos) break;
    at = nl + 1;
  }
  return r;
}

} // namespace velmora::test
