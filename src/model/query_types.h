#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace velmora {

// One term of a find by data. The dialog makes one; the nested find several, all of which
// must hold.
struct QueryTerm {
  int32_t QLayer = 0;
  int32_t QRelation = 1; // 1 " Like", 2 "=", 3 ">", 4 "<", 5 ">=", 6 "<=", 7 "<>", 8 like 1
  int32_t QField = 0;    // 0 or less: the term is off, unless it is a whole-row term
  std::string QValue;
  int16_t QMatchCase = 0;
  int32_t QType = 0; // 8: the term is on the whole row (the field list's "None")
};
constexpr int32_t kQueryWholeRow = 8;

// The deleted records of a layer as bits, kept while the layer's records are unchanged, so
// that an inversion of the selection needs no walk over the records.
struct DeletedBitsCache {
  const void* Recs = nullptr;
  int32_t RecCount = 0;
  uint32_t Gen = 0;
  std::vector<uint8_t> Bits;
};

// The session's state of selection and find by data.
struct QueryVars {
  int16_t SelDirty = 0;   // a selection changed: the map repaints the selected features
  int32_t FoundCount = 0; // matches of the last find
  std::vector<DeletedBitsCache> Deleted; // by layer row, grown on demand
};

} // namespace velmora
