// Placeholders until the store lands; this file goes when it does.
#include "store/dbf_store.h"

namespace velmora {

void OpenDbf(Session& /*s*/, int /*lyr*/, const std::string& /*path*/) {}
void InitDbf(Session& /*s*/, int /*lyr*/) {}
void AddField(Session& /*s*/, int /*lyr*/, const std::string& /*name*/, char /*typeLetter*/,
              int /*length*/, int /*decimals*/) {}
void CreateDbf(Session& /*s*/, int /*lyr*/, const std::string& /*path*/) {}
void SetDbfRecCount(Session& /*s*/, int /*lyr*/, int /*n*/) {}
void ReadDbfRec(Session& /*s*/, int /*lyr*/, int /*row*/) {}
void WriteDbfRec(Session& /*s*/, int /*lyr*/, int /*row*/) {}
void WriteDbfRecSwap(Session& /*s*/, int /*lyr*/, int /*row*/) {}
void AddDbfRec(Session& /*s*/, int /*lyr*/, int /*row*/) {}
void ClearDbfBuf(Session& /*s*/, int /*lyr*/) {}
void SaveDbf(Session& /*s*/, int /*lyr*/) {}
void CloseDbf(Session& /*s*/, int /*lyr*/) {}
void CloseSwap(Session& /*s*/, int /*lyr*/) {}
std::string GetFieldName(const Session& /*s*/, int /*lyr*/, int /*f*/) {
  return {};
}
int FindField(const Session& /*s*/, int /*lyr*/, const std::string& /*name*/) {
  return 0;
}
std::string GetFieldType(const Session& /*s*/, int /*lyr*/, int /*f*/) {
  return {};
}
int GetFieldWidth(const Session& /*s*/, int /*lyr*/, int /*f*/) {
  return 0;
}
int GetFieldLength(const Session& /*s*/, int /*lyr*/, int /*f*/) {
  return 0;
}
int GetFieldDecimals(const Session& /*s*/, int /*lyr*/, int /*f*/) {
  return 0;
}
std::string GetFieldFormat(const Session& /*s*/, int /*lyr*/, int /*f*/) {
  return {};
}
std::string GetFieldValue(const Session& /*s*/, int /*lyr*/, int /*f*/) {
  return {};
}
void SetFieldValue(Session& /*s*/, int /*lyr*/, int /*f*/, const std::string& /*text*/) {}
std::string GetRowText(const Session& /*s*/, int /*lyr*/) {
  return {};
}
void CopyRow(Session& /*s*/, int /*srcLyr*/, int /*srcRow*/, int /*dstLyr*/, int /*dstRow*/,
             bool /*byPosition*/) {}
void AddRow(Session& /*s*/, int /*srcLyr*/, int /*srcRow*/, int /*dstLyr*/, int /*dstRow*/,
            bool /*byPosition*/) {}
void SaveDbfAs(Session& /*s*/, int /*lyr*/, const std::string& /*path*/) {}
void CleanDbf(Session& /*s*/, int /*lyr*/, const std::string& /*path*/) {}
void NewDbfDefault(Session& /*s*/, int /*lyr*/, const std::string& /*path*/) {}
void NewDbfDem(Session& /*s*/, int /*lyr*/, const std::string& /*path*/) {}
void NewDbfTin(Session& /*s*/, int /*lyr*/, const std::string& /*path*/) {}
void NewDbfContour(Session& /*s*/, int /*lyr*/, const std::string& /*path*/) {}
void NewDbfDxf(Session& /*s*/, int /*lyr*/, const std::string& /*path*/) {}
void NewDbfControl(Session& /*s*/, int /*lyr*/, const std::string& /*path*/) {}
void NewDbfMask(Session& /*s*/, int /*lyr*/, const std::string& /*path*/) {}
void NewDbfGps(Session& /*s*/, int /*lyr*/, const std::string& /*path*/) {}
void NewDbfFrom(Session& /*s*/, int /*srcLyr*/, int /*dstLyr*/, const std::string& /*path*/,
                int /*mode*/) {}
void NewDbfMerged(Session& /*s*/, int /*lyr*/, const std::string& /*path*/) {}
void InitDataUndo(Session& /*s*/, int /*lyr*/) {}
void BeginDataUndo(Session& /*s*/, int /*lyr*/) {}
void AddDataUndoItem(Session& /*s*/, int /*lyr*/, int /*rec*/, int /*field*/,
                     const std::string& /*value*/) {}
void NoteDataUndo(Session& /*s*/, int /*lyr*/, int /*rec*/, int /*field*/) {}
void UndoDataEdit(Session& /*s*/, int /*lyr*/, bool /*quiet*/) {}
void RedoDataEdit(Session& /*s*/, int /*lyr*/, bool /*quiet*/) {}
double StrToDbl(const Session& /*s*/, const std::string& /*text*/) {
  return 0;
}
std::string CleanNumText(const Session& /*s*/, const std::string& /*text*/) {
  return {};
}
bool IsNumChar(const Session& /*s*/, char /*c*/) {
  return false;
}
} // namespace velmora
