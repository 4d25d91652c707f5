// The field table as the rest of the system sees it.
#include "model/file_util.h"
#include "store/codepage.h"
#include "store/dbf_internal.h"
#include "store/dbf_store.h"

namespace velmora {

using namespace dbf;

namespace {

const DbfField* FieldOf(const Session& s, int lyr, int f) {
  if (!ValidLyr(s, lyr)) return nullptr;
  const DbfBlock& b = s.Lyr[lyr].Dbf;
  if (f < 0 || f > b.DbfFieldCount || size_t(f) >= b.DbfFields.size()) return nullptr;
  return &b.DbfFields[size_t(f)];
}

} // namespace

std::string GetFieldName(const Session& s, int lyr, int f) {
  const DbfField* fd = FieldOf(s, lyr, f);
  if (!fd || f == 0) return "";
  std::string bytes;
  for (char c : fd->FieldName)
    if (c != '\0') bytes += c;
  return UCase(DecodeText(LayerPage(s, lyr), bytes));
}

int FindField(const Session& s, int lyr, const std::string& name) {
  if (!ValidLyr(s, lyr)) return -1;
  std::string want = UCase(Trim(name));
  for (int f = 1; f <= s.Lyr[lyr].Dbf.DbfFieldCount; ++f)
    if (GetFieldName(s, lyr, f) == want) return f;
  return -1;
}

std::string GetFieldType(const Session& s, int lyr, int f) {
  const DbfField* fd = FieldOf(s, lyr, f);
  if (!fd) return "";
  switch (fd->FieldType) {
  case 'C':
  case 'M':
  case 'T':
    return "Character";
  case 'D':
    return "Date";
  case 'L':
    return "Logical";
  case 'B':
  case 'F':
  case 'G':
  case 'I':
  case 'N':
  case 'Y':
    return "Numeric";
  default:
    return std::to_string(uint8_t(fd->FieldType));
  }
}

int GetFieldWidth(const Session& s, int lyr, int f) {
  const DbfField* fd = FieldOf(s, lyr, f);
  if (!fd) return 0;
  return fd->FieldType == 'D' ? 10 : fd->FieldLength;
}

int GetFieldLength(const Session& s, int lyr, int f) {
  const DbfField* fd = FieldOf(s, lyr, f);
  return fd ? fd->FieldLength : 0;
}

int GetFieldDecimals(const Session& s, int lyr, int f) {
  const DbfField* fd = FieldOf(s, lyr, f);
  return fd ? fd->FieldDecimals : 0;
}

std::string GetFieldFormat(const Session& s, int lyr, int f) {
  const DbfField* fd = FieldOf(s, lyr, f);
  return fd ? fd->FieldFormat : std::string();
}

std::string GetRowText(const Session& s, int lyr) {
  if (!ValidLyr(s, lyr)) return "";
  std::string out;
  for (int f = 1; f <= s.Lyr[lyr].Dbf.DbfFieldCount; ++f)
    out += Trim(GetFieldValue(s, lyr, f)) + " ";
  return out;
}

} // namespace velmora
