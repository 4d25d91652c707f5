// The tables a layer gets when it has none: one row per feature, filled with defaults.
#include <initializer_list>
#include <string>

#include "model/file_util.h"
#include "store/dbf_internal.h"
#include "store/dbf_store.h"

namespace velmora {

using namespace dbf;

namespace {

struct DefaultField {
  const char* Name;
  char Type;
  int Length;
  int Decimals;
  const char* Value; // the value of every row; nullptr for the record number
};

void MakeDefaultTable(Session& s, int lyr, const std::string& path,
                      std::initializer_list<DefaultField> fields) {
  if (!ValidLyr(s, lyr)) {
    s.DbfErr = 1;
    return;
  }
  InitDbf(s, lyr);
  for (const DefaultField& f : fields) AddField(s, lyr, f.Name, f.Type, f.Length, f.Decimals);
  CreateDbf(s, lyr, path);
  if (s.DbfErr) return;
  int idField = 0, i = 1;
  SetFieldValue(s, lyr, 0, " ");
  for (const DefaultField& f : fields) {
    if (f.Value)
      SetFieldValue(s, lyr, i, f.Value);
    else
      idField = i;
    ++i;
  }
  int n = s.Lyr[lyr].Shp.RecCount;
  for (int row = 0; row < n; ++row) {
    if (idField) SetFieldValue(s, lyr, idField, std::to_string(row + 1));
    WriteDbfRec(s, lyr, row);
    if (s.DbfErr) break;
  }
  if (!s.DbfErr) SetDbfRecCount(s, lyr, n);
  if (s.DbfErr) { // a table cut short would be taken for the user's at the next open
    std::string why = s.DbfErrText;
    CloseDbf(s, lyr);
    KillFile(ReplaceExt(path, "dbf"));
    InitDbf(s, lyr);
    s.DbfErr = 1;
    s.DbfErrText = why;
    return;
  }
  CloseDbf(s, lyr);
  OpenDbf(s, lyr, path);
}

} // namespace

void NewDbfDefault(Session& s, int lyr, const std::string& path) {
  MakeDefaultTable(s, lyr, path, {{"ID", 'C', 10, 0, nullptr}});
}

void NewDbfDem(Session& s, int lyr, const std::string& path) {
  MakeDefaultTable(s, lyr, path,
                   {{"ID", 'C', 10, 0, nullptr},
                    {"LON_X", 'N', 15, 9, "0"},
                    {"LAT_Y", 'N', 15, 9, "0"},
                    {"Z_MTR", 'N', 6, 0, "0"}});
}

void NewDbfTin(Session& s, int lyr, const std::string& path) {
  MakeDefaultTable(s, lyr, path, {{"ID", 'C', 10, 0, nullptr}, {"AverageZ", 'N', 13, 3, "0"}});
}

void NewDbfContour(Session& s, int lyr, const std::string& path) {
  MakeDefaultTable(s, lyr, path, {{"ID", 'C', 10, 0, nullptr}, {"CONTOUR", 'N', 13, 3, "0"}});
}

void NewDbfDxf(Session& s, int lyr, const std::string& path) {
  MakeDefaultTable(s, lyr, path,
                   {{"ID", 'C', 10, 0, nullptr},
                    {"Layer", 'C', 20, 0, " "},
                    {"Entity", 'C', 20, 0, " "},
                    {"Text", 'C', 245, 0, " "}});
}

void NewDbfControl(Session& s, int lyr, const std::string& path) {
  MakeDefaultTable(s, lyr, path,
                   {{"ID", 'C', 10, 0, nullptr},
                    {"SRC_X", 'N', 20, 13, "0"},
                    {"SRC_Y", 'N', 20, 13, "0"},
                    {"DIS_X", 'N', 20, 13, "0"},
                    {"DIS_Y", 'N', 20, 13, "0"}});
}

void NewDbfMask(Session& s, int lyr, const std::string& path) {
  MakeDefaultTable(s, lyr, path,
                   {{"ID", 'C', 10, 0, nullptr},
                    {"Shape", 'C', 10, 0, "PolyLine"},
                    {"Visible", 'L', 1, 0, "Y"},
                    {"ForeColor", 'N', 20, 0, "0"},
                    {"FillColor", 'N', 20, 0, "0"},
                    {"DrawMode", 'N', 5, 0, "0"},
                    {"DrawStyle", 'N', 5, 0, "0"},
                    {"DrawWidth", 'N', 5, 0, "0"},
                    {"FillStyle", 'N', 5, 0, "0"},
                    {"FName", 'C', 50, 0, "Times New Roman"},
                    {"FBold", 'L', 1, 0, "N"},
                    {"FItalic", 'L', 1, 0, "N"},
                    {"FSize", 'N', 5, 2, "10"},
                    {"FForceSize", 'L', 1, 0, "N"},
                    {"SetFScale", 'L', 1, 0, "N"},
                    {"FScale", 'N', 20, 5, "0"},
                    {"LabelText", 'C', 100, 0, "  "}});
}

void NewDbfGps(Session& s, int lyr, const std::string& path) {
  MakeDefaultTable(s, lyr, path,
                   {{"User", 'C', 30, 9, " "},
                    {"GPSDate", 'N', 20, 9, "0"},
                    {"PSW", 'C', 30, 9, " "},
                    {"Lon", 'N', 20, 9, "0"},
                    {"Lat", 'N', 20, 9, "0"},
                    {"Accuracy", 'N', 2, 0, "0"}});
}

} // namespace velmora
