#include "coords/prj_file.h"

#include <cstdlib>
#include <fstream>

#include "model/datum_table.h"
#include "model/file_util.h"

namespace velmora {

namespace {

constexpr size_t kMaxPrjBytes = 1 << 16; // a .prj is a line or two; more is not one

// A .prj number: always written with "."; a text that is not wholly a number gives its
// leading number, or 0.
double PrjNumber(const std::string& text) {
  std::string t = Trim(text);
  const char* begin = t.c_str();
  char* end = nullptr;
  double v = std::strtod(begin, &end);
  if (end == begin) return 0;
  return v;
}

// The text between the first two double quotes at or after `from`; false when there are
// not two or the text between is empty.
bool QuotedAfter(const std::string& text, size_t from, std::string& out, size_t& closeAt) {
  size_t q1 = text.find('"', from);
  if (q1 == std::string::npos) return false;
  size_t q2 = text.find('"', q1 + 1);
  if (q2 == std::string::npos || q2 == q1 + 1) return false;
  out = text.substr(q1 + 1, q2 - q1 - 1);
  closeAt = q2;
  return true;
}

// The value of a parameter: from the first comma after the keyword to the next "]".
bool ParamAfter(const std::string& text, size_t keyAt, double& out) {
  size_t comma = text.find(',', keyAt);
  if (comma == std::string::npos) return false;
  size_t close = text.find(']', comma + 1);
  if (close == std::string::npos) return false;
  out = PrjNumber(text.substr(comma + 1, close - comma - 1));
  return true;
}

} // namespace

void ParsePrj(Session& s) {
  PrjStageRec& st = s.PrjStage;
  const std::string& text = st.PrjText;
  const std::string upper = UCase(text);
  size_t at;
  std::string name;
  size_t close = 0;

  if ((at = upper.find("PROJCS[")) != std::string::npos && QuotedAfter(text, at, name, close))
    st.CrdName = name;

  if ((at = upper.find("SPHEROID")) != std::string::npos && QuotedAfter(text, at, name, close)) {
    st.SphName = name;
    size_t c1 = text.find(',', close + 1);
    size_t c2 = c1 == std::string::npos ? c1 : text.find(',', c1 + 1);
    if (c2 != std::string::npos) {
      st.SMA = PrjNumber(text.substr(c1 + 1, c2 - c1 - 1));
      size_t end = text.find(']', c2 + 1);
      if (end != std::string::npos) st.Flattining = PrjNumber(text.substr(c2 + 1, end - c2 - 1));
      st.SMB = MinorFromFlat(st.SMA, st.Flattining);
    }
  }

  st.PrjIsTM = upper.find("TRANSVERSE_MERCATOR") != std::string::npos;

  double v;
  if ((at = upper.find("FALSE_EASTING")) != std::string::npos && ParamAfter(text, at, v))
    st.FEast = v;
  if ((at = upper.find("FALSE_NORTHING")) != std::string::npos && ParamAfter(text, at, v))
    st.FNorth = v, st.FNorthS = v;
  if ((at = upper.find("CENTRAL_MERIDIAN")) != std::string::npos && ParamAfter(text, at, v))
    st.CM = v;
  if ((at = upper.find("SCALE_FACTOR")) != std::string::npos && ParamAfter(text, at, v)) st.SF = v;
  if ((at = upper.find("LATITUDE_OF_ORIGIN")) != std::string::npos && ParamAfter(text, at, v))
    st.LatOrg = v;
}

void LoadPrjFile(Session& s, const std::string& path) {
  PrjStageRec& st = s.PrjStage;
  s.LastDir = FolderOf(path);
  std::string prj = ReplaceExt(path, "prj");
  st.PrjText.clear();
  if (!FileExists(prj)) {
    st.PrjLoading = false;
    return;
  }
  st.PrjLoading = true;
  // Lines are joined with nothing between; a file past the limit is read up to it.
  std::ifstream in(NativePath(prj), std::ios::binary);
  std::string buf(kMaxPrjBytes, '\0');
  in.read(buf.data(), std::streamsize(buf.size()));
  buf.resize(size_t(in.gcount()));
  for (char c : buf)
    if (c != '\r' && c != '\n') st.PrjText += c;
  ParsePrj(s);
  if (st.PrjIsTM) AddDatum(s, DatumDefOf(st), DatumTrans{});
  st.PrjLoading = false;
}

} // namespace velmora
