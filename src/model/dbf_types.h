#pragma once
#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace velmora {

// Entry 0 of a layer's field table is the flag byte seen as a field.
struct DbfField {
  std::array<char, 11> FieldName{};
  char FieldType = 'C';
  int32_t FieldAddress = 0;
  uint8_t FieldLength = 0;
  uint8_t FieldDecimals = 0;
  std::array<uint8_t, 14> FieldReserved{};
  int16_t FieldStart = 0, FieldEnd = 0; // first and last position in DbfBuf
  std::string FieldFormat;              // "0" or "0." and one zero per decimal
};

struct DataUndoItem {
  int32_t Rec = 0; // 1-based record number
  int16_t FieldNo = 0;
  std::string Value;
};

struct DataUndoGroup {
  int32_t ItemCount = 0;
  std::vector<DataUndoItem> Items;
};

struct DataUndoJournal {
  int32_t UndoPos = 0, UndoTop = 0;
  std::vector<DataUndoGroup> UndoGroups{1}; // index 0 stays empty
};

// The attribute block of a layer row.
struct DbfBlock {
  int32_t DbfFile = 0, SwapFile = 0;
  std::string SwapPath;
  uint8_t DbfVersion = 0;
  std::array<uint8_t, 3> DbfDate{};
  int32_t DbfRecCount = 0;
  int16_t DbfHeaderLen = 0, DbfRecLen = 0;
  std::array<uint8_t, 20> DbfReserved{};
  uint8_t DbfFieldCount = 0;
  int32_t DbfCurRec = 0;
  std::vector<DbfField> DbfFields; // 0 .. DbfFieldCount
  std::vector<uint8_t> DbfBuf;     // DbfRecLen + 1 bytes
  std::vector<int32_t> SwapIndex;  // per row: its slot in the swap file, -1 in the dbf
  int32_t SwapTop = -1;
  int16_t DbfBufChanged = 0, DbfChanged = 0, DbfExists = 0, SwapOpen = 0, DbfOpen = 0;
  DataUndoJournal DataUndo;
  int CodePage = 0; // the layer's code page, from its .cpg or language driver; 0 = session's
  std::shared_ptr<struct DbfFiles> Files; // the open dbf and swap files (dbf_files.h)
};

} // namespace velmora
