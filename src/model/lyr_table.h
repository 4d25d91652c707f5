#pragma once
#include <vector>

#include "model/lyr_record.h"

namespace velmora {

constexpr int kWorkSlots = 100; // rows 0 .. -100 are work slots

// Lyr: rows -100 .. LyrCount. Rows keep their contents when the table grows or shrinks,
// but move in memory: hold layer numbers, never references across a resize.
class LyrTable {
public:
  LyrTable() : rows_(kWorkSlots + 1) {}
  LyrRec& operator[](int i) { return rows_.at(size_t(i + kWorkSlots)); }
  const LyrRec& operator[](int i) const { return rows_.at(size_t(i + kWorkSlots)); }
  int Count() const { return int(rows_.size()) - kWorkSlots - 1; }
  void Resize(int count) { rows_.resize(size_t(count + kWorkSlots + 1)); }

private:
  std::vector<LyrRec> rows_;
};

} // namespace velmora
