// Data transfer by location: the cells of the checked fields copied from a reference
// feature's row to the found feature's row.
#include "query/location.h"
#include "store/dbf_store.h"

namespace velmora {

std::vector<std::string> SimilarFieldNames(const Session& s, int from, int to) {
  std::vector<std::string> out;
  if (from < 1 || from > s.LyrCount || to < 1 || to > s.LyrCount) return out;
  for (int f = 1; f <= s.Lyr[from].Dbf.DbfFieldCount; ++f) {
    std::string name = GetFieldName(s, from, f);
    if (!name.empty() && FindField(s, to, name) > 0) out.push_back(name);
  }
  return out;
}

void TransferData(Session& s, int from, int g, int to, int f,
                  const std::vector<std::string>& fields) {
  if (s.Lyr[from].Dbf.DbfFieldCount == 0 || s.Lyr[to].Dbf.DbfFieldCount == 0) return;
  if (g < 1 || g > s.Lyr[from].Dbf.DbfRecCount || f < 1 || f > s.Lyr[to].Dbf.DbfRecCount) return;
  // One record buffer per layer: read the source cells before the target row.
  ReadDbfRec(s, from, g - 1);
  std::vector<std::pair<int, std::string>> cells;
  for (const std::string& name : fields) {
    int src = FindField(s, from, name), dst = FindField(s, to, name);
    if (src > 0 && dst > 0) cells.emplace_back(dst, GetFieldValue(s, from, src));
  }
  if (cells.empty()) return;
  ReadDbfRec(s, to, f - 1);
  for (const auto& [dst, text] : cells) SetFieldValue(s, to, dst, text);
  WriteDbfRecSwap(s, to, f - 1);
}

} // namespace velmora
