#pragma once
#include <string>

#include "model/safe_file.h"
#include "model/session.h"

namespace velmora {

// The attribute store: header, field table and one record buffer in memory; edited rows
// in a swap file until the save. Rows are 0-based; field 0 is the flag byte, real fields
// 1 .. DbfFieldCount. Errors go to s.DbfErr (0 or 1); nothing here logs.

struct DbfFiles; // the open dbf and swap files of a layer (dbf_files.h)

void OpenDbf(Session& s, int lyr, const std::string& path);
void InitDbf(Session& s, int lyr);
void AddField(Session& s, int lyr, const std::string& name, char typeLetter, int length,
              int decimals);
void CreateDbf(Session& s, int lyr, const std::string& path);
void SetDbfRecCount(Session& s, int lyr, int n);
void ReadDbfRec(Session& s, int lyr, int row);
void WriteDbfRec(Session& s, int lyr, int row);
void WriteDbfRecSwap(Session& s, int lyr, int row);
void AddDbfRec(Session& s, int lyr, int row);
void ClearDbfBuf(Session& s, int lyr);
void SaveDbf(Session& s, int lyr);
void CloseDbf(Session& s, int lyr);
void CloseSwap(Session& s, int lyr);

std::string GetFieldName(const Session& s, int lyr, int f);
int FindField(const Session& s, int lyr, const std::string& name);
std::string GetFieldType(const Session& s, int lyr, int f);
int GetFieldWidth(const Session& s, int lyr, int f);
int GetFieldLength(const Session& s, int lyr, int f);
int GetFieldDecimals(const Session& s, int lyr, int f);
std::string GetFieldFormat(const Session& s, int lyr, int f);
// Cell text of the buffer as UTF-8; the bytes are in the layer's code page (codepage.h).
std::string GetFieldValue(const Session& s, int lyr, int f);
void SetFieldValue(Session& s, int lyr, int f, const std::string& text);
std::string GetRowText(const Session& s, int lyr);
void CopyRow(Session& s, int srcLyr, int srcRow, int dstLyr, int dstRow, bool byPosition);
void AddRow(Session& s, int srcLyr, int srcRow, int dstLyr, int dstRow, bool byPosition);

void SaveDbfAs(Session& s, int lyr, const std::string& path);
void CleanDbf(Session& s, int lyr, const std::string& path);

// Saves as parts of a layer's save, so that its .shx, .shp and .dbf are replaced together:
// each writes its new file into `files` and leaves the layer as it is; after a good commit
// of the set its Apply call tells the layer. False, with the reason in `files`, on failure.
//
// The table with its edited rows (SaveDbf); nothing is written when nothing changed.
bool WriteDbfFile(Session& s, int lyr, SafeFileSet& files);
void ApplyDbfSaved(Session& s, int lyr);
// "Save Dbf As": the table with every row under `path` (and its .cpg when the layer has a
// code page of its own). Nothing is written for a layer without a table.
bool WriteDbfAs(Session& s, int lyr, const std::string& path, SafeFileSet& files);
// "Clean DBF File": the table without the rows of deleted features, over the table of
// `path` (the layer's source when empty), whose path goes to `target`.
bool WriteDbfClean(Session& s, int lyr, const std::string& path, SafeFileSet& files,
                   std::string& target);
void ApplyDbfCleaned(Session& s, int lyr, const std::string& target);

// Default tables: made, filled with RecCount rows, closed and opened again.
void NewDbfDefault(Session& s, int lyr, const std::string& path);
void NewDbfDem(Session& s, int lyr, const std::string& path);
void NewDbfTin(Session& s, int lyr, const std::string& path);
void NewDbfContour(Session& s, int lyr, const std::string& path);
void NewDbfDxf(Session& s, int lyr, const std::string& path);
void NewDbfControl(Session& s, int lyr, const std::string& path);
void NewDbfMask(Session& s, int lyr, const std::string& path);
void NewDbfGps(Session& s, int lyr, const std::string& path);
void NewDbfFrom(Session& s, int srcLyr, int dstLyr, const std::string& path, int mode);
void NewDbfMerged(Session& s, int lyr, const std::string& path);

// The journal of cell edits.
void InitDataUndo(Session& s, int lyr);
void BeginDataUndo(Session& s, int lyr);
void AddDataUndoItem(Session& s, int lyr, int rec, int field, const std::string& value);
void NoteDataUndo(Session& s, int lyr, int rec, int field);
void UndoDataEdit(Session& s, int lyr, bool quiet);
void RedoDataEdit(Session& s, int lyr, bool quiet);

// The one way from cell text to number, with the session's decimal separator.
double StrToDbl(const Session& s, const std::string& text);
std::string CleanNumText(const Session& s, const std::string& text);
bool IsNumChar(const Session& s, char c);

} // namespace velmora
