#include "query/find_query.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <map>

#include "frame/busy.h"
#include "frame/log.h"
#include "query/selection.h"
#include "store/dbf_store.h"
#include "store/shp_store.h"
#include "view/navigation.h"

namespace velmora {

namespace {

void RTrim(std::string& t) {
  size_t e = t.find_last_not_of(' ');
  t.erase(e == std::string::npos ? 0 : e + 1);
}

std::string Trim(const std::string& t) {
  size_t b = t.find_first_not_of(' ');
  if (b == std::string::npos) return "";
  size_t e = t.find_last_not_of(' ');
  return t.substr(b, e - b + 1);
}

void Upper(std::string& t) {
  for (char& c : t)
    if (c >= 'a' && c <= 'z') c = char(c - 'a' + 'A');
}

// A term with what can be worked out once: its relation, whether the field is numeric,
// and its value as a number.
struct Ready {
  QueryTerm T;
  bool Numeric = false;
  double Value = 0;
};

std::vector<Ready> Ready_(Session& s, int lyr, const std::vector<QueryTerm>& terms) {
  std::vector<Ready> out;
  for (const QueryTerm& t : terms) {
    if (!TermOn(t)) continue;
    if (t.QLayer != 0 && t.QLayer != lyr) continue;
    Ready r{t, false, 0};
    if (t.QType != kQueryWholeRow) {
      if (t.QField > s.Lyr[lyr].Dbf.DbfFieldCount) continue; // no such field: the term is off
      r.Numeric = GetFieldType(s, lyr, t.QField) == "Numeric";
    }
    if (r.Numeric) r.Value = StrToDbl(s, t.QValue);
    out.push_back(std::move(r));
  }
  return out;
}

bool Compare(int rel, int c) {
  switch (rel) {
  case 2:
    return c == 0;
  case 3:
    return c > 0;
  case 4:
    return c < 0;
  case 5:
    return c >= 0;
  case 6:
    return c <= 0;
  case 7:
    return c != 0;
  default:
    return false;
  }
}

bool MatchReady(Session& s, int lyr, const Ready& r) {
  const QueryTerm& t = r.T;
  std::string cell =
      t.QType == kQueryWholeRow ? GetRowText(s, lyr) : GetFieldValue(s, lyr, t.QField);
  RTrim(cell);
  if (!t.QMatchCase) Upper(cell);
  const int rel = t.QRelation;
  if (rel == 1 || rel == 8 || rel < 1 || rel > 8) {
    if (!t.QValue.empty()) return cell.find(t.QValue) != std::string::npos;
    return cell == t.QValue;
  }
  if (r.Numeric) {
    double v = StrToDbl(s, cell);
    return Compare(rel, v < r.Value ? -1 : v > r.Value ? 1 : 0);
  }
  int c = cell.compare(t.QValue);
  return Compare(rel, c < 0 ? -1 : c > 0 ? 1 : 0);
}

bool AllMatch(Session& s, int lyr, const std::vector<Ready>& terms) {
  for (const Ready& r : terms)
    if (!MatchReady(s, lyr, r)) return false;
  return true;
}

// One of the nine loops: method M and criteria C are settled before the walk, so that no
// test of either stands in a row's evaluation.
template <int M, int C>
bool Walk(Session& s, RunningFunction& rf, const std::vector<Ready>& terms, int& found) {
  const long long max = s.Lyr[rf.Layer()].Dbf.DbfRecCount + 1;
  for (int row = 0; row < s.Lyr[rf.Layer()].Dbf.DbfRecCount; ++row) {
    const int n = rf.Layer(), rec = row + 1;
    const bool sel = C == kAllFeatures ? false : IsSelected(s, n, rec);
    if constexpr (C == kInsideSelected) {
      if (!sel) {
        if (rf.Step(row + 1, max)) return false;
        continue;
      }
    }
    if constexpr (C == kOutsideSelected) {
      if (sel) {
        if constexpr (M == kNewSelection) UnselectRec(s, n, rec);
        if (rf.Step(row + 1, max)) return false;
        continue;
      }
    }
    ReadDbfRec(s, n, row);
    const bool m = AllMatch(s, n, terms);
    if (m) ++found;
    if constexpr (M == kNewSelection) {
      if (m)
        SelectRec(s, n, rec);
      else
        UnselectRec(s, n, rec);
    } else if constexpr (M == kAddToSelection) {
      if (m) SelectRec(s, n, rec);
    } else {
      if (m) UnselectRec(s, n, rec);
    }
    if (rf.Step(row + 1, max)) return false;
  }
  return true;
}

using WalkFn = bool (*)(Session&, RunningFunction&, const std::vector<Ready>&, int&);

WalkFn PickWalk(int method, int criteria) {
  static const WalkFn kWalks[3][3] = {
      {Walk<1, 1>, Walk<1, 2>, Walk<1, 3>},
      {Walk<2, 1>, Walk<2, 2>, Walk<2, 3>},
      {Walk<3, 1>, Walk<3, 2>, Walk<3, 3>},
  };
  return kWalks[method - 1][criteria - 1];
}

bool Usable(const Session& s, int lyr) {
  return lyr >= 1 && lyr <= s.LyrCount && s.Lyr[lyr].LyrKind != 0;
}

// Empties the selection of every user layer but `lyr`.
void ClearOthers(Session& s, int lyr) {
  for (int i = 1; i <= s.LyrCount; ++i) {
    if (i == lyr) continue;
    s.Lyr[i].SelBits.assign(size_t(std::max(s.Lyr[i].Shp.RecCount, 0) + 7) / 8 + 1, 0);
  }
}

// Fixed notation with the shortest digits that give the number back.
std::string Fixed(double v) {
  char buf[400];
  auto [end, ec] = std::to_chars(buf, buf + sizeof buf, v, std::chars_format::fixed);
  if (ec != std::errc()) return "0";
  return std::string(buf, end);
}

bool IsNumericText(const Session& s, const std::string& t) {
  size_t i = 0, n = t.size();
  if (i < n && (t[i] == '-' || t[i] == '+')) ++i;
  bool digits = false, sep = false;
  for (; i < n; ++i) {
    char c = t[i];
    if (c >= '0' && c <= '9') {
      digits = true;
    } else if ((c == s.Locale.DecimalSep || c == '.') && !sep) {
      sep = true;
    } else if ((c == 'e' || c == 'E') && digits) {
      size_t j = i + 1;
      if (j < n && (t[j] == '-' || t[j] == '+')) ++j;
      if (j >= n) return false;
      for (; j < n; ++j)
        if (t[j] < '0' || t[j] > '9') return false;
      return true;
    } else {
      return false;
    }
  }
  return digits;
}

// Day, month and year of a text of three numbers separated by "/", in the order of the
// session's short date format.
bool DateParts3(const Session& s, const std::string& t, int& y, int& m, int& d) {
  int v[3] = {0, 0, 0}, k = 0, len[3] = {0, 0, 0};
  for (char c : t) {
    if (c == '/') {
      if (++k > 2) return false;
    } else if (c >= '0' && c <= '9') {
      if (++len[k] > 4) return false;
      v[k] = v[k] * 10 + (c - '0');
    } else {
      return false;
    }
  }
  if (k != 2 || !len[0] || !len[1] || !len[2]) return false;
  std::string order;
  for (char c : s.Locale.ShortDate) {
    char l = char(c | 0x20);
    if ((l == 'd' || l == 'm' || l == 'y') && order.find(l) == std::string::npos) order += l;
  }
  if (order.size() != 3) order = "dmy";
  for (int i = 0; i < 3; ++i) {
    if (order[size_t(i)] == 'd') d = v[i];
    if (order[size_t(i)] == 'm') m = v[i];
    if (order[size_t(i)] == 'y') y = len[i] <= 2 ? (v[i] < 30 ? 2000 + v[i] : 1900 + v[i]) : v[i];
  }
  static const int kDays[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (m < 1 || m > 12 || d < 1 || d > kDays[m - 1]) return false;
  bool leap = (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
  return !(m == 2 && d == 29 && !leap);
}

} // namespace

const std::vector<std::string>& RelationCaptions() {
  static const std::vector<std::string> kRel = {" Like", "   =", "   >", "   <",
                                                "   >=", "  <=", "  <>"};
  return kRel;
}

void PrepareTerms(std::vector<QueryTerm>& terms) {
  for (QueryTerm& t : terms) {
    RTrim(t.QValue);
    if (!t.QMatchCase) Upper(t.QValue);
  }
}

bool TermOn(const QueryTerm& t) {
  return t.QType == kQueryWholeRow || t.QField > 0;
}

bool QueryMatch(Session& s, int lyr, const QueryTerm& t) {
  if (!Usable(s, lyr) || !TermOn(t)) return true;
  std::vector<Ready> r = Ready_(s, lyr, {t});
  return r.empty() || MatchReady(s, lyr, r[0]);
}

int FindQuery(Session& s, int lyr, int method, int criteria, std::vector<QueryTerm> terms) {
  if (!Usable(s, lyr) || method < 1 || method > 3 || criteria < 1 || criteria > 3) return -1;
  RunningFunction rf(s, lyr, "Find Query", "Find Values in Layer " + s.Lyr[lyr].LyrName);
  if (!rf.Started()) return -1;
  PrepareTerms(terms);
  FitSelBits(s, lyr);
  const std::vector<Ready> ready = Ready_(s, lyr, terms);
  int found = 0;
  const bool whole = PickWalk(method, criteria)(s, rf, ready, found);
  s.Query.FoundCount = found;
  s.Query.SelDirty = -1;
  if (!rf.Gone() && method == kNewSelection) ClearOthers(s, rf.Layer());
  rf.Finish(false);
  return whole && !rf.Gone() ? found : -1;
}

int FindValues(Session& s, int lyr, int method, int criteria, const std::vector<QueryTerm>& terms,
               double scale) {
  if (!Usable(s, lyr)) return -1;
  const std::string name = s.Lyr[lyr].LyrName;
  if (LyrIsBusy(s, lyr)) {
    if (s.host->MsgBox("  Would you like to Terminate " + s.Lyr[lyr].BusyFunc +
                           " Function in layer " + name + " ?   \r\n",
                       name + " : Query Message Box ", MsgButtons::YesNo,
                       MsgAnswer::No) == MsgAnswer::Yes)
      SetLyrTerminate(s, lyr, true);
    return -1;
  }
  const int found = FindQuery(s, lyr, method, criteria, terms);
  if (found < 0) {
    LogMsg(s, " *** Find Values in Layer " + name + " has been canceled *** ");
  } else {
    LogMsg(s, std::to_string(found) + " Features have been Selected in Layer " + name);
    if (scale > 0 && found > 0 && ZoomToSelected(s, lyr)) SetMapScale(s, scale);
  }
  for (int i = 1; i <= s.LyrCount; ++i) s.host->TableDataChanged(i);
  s.host->MapRedraw();
  return found;
}

int NestedFind(Session& s, int lyr, int method, int criteria, std::vector<QueryTerm> terms) {
  if (!Usable(s, lyr) || method < 1 || method > 3 || criteria < 1 || criteria > 3) return -1;
  RunningFunction rf(s, lyr, "Nested Find", "Nested Find in Layer " + s.Lyr[lyr].LyrName);
  if (!rf.Started()) return -1;
  PrepareTerms(terms);
  FitSelBits(s, lyr);
  ClearQryBits(s, lyr);
  const std::vector<Ready> ready = Ready_(s, lyr, terms);
  int marked = 0;
  bool whole = true;
  const int rows = s.Lyr[lyr].Dbf.DbfRecCount;
  // First the marks, each record read once and tested against every term.
  for (int row = 0; row < rows; ++row) {
    const int n = rf.Layer(), rec = row + 1;
    const bool sel = IsSelected(s, n, rec);
    if (!IsDeleted(s, n, rec) && (criteria == 1 || (criteria == 2) == sel)) {
      ReadDbfRec(s, n, row);
      if (AllMatch(s, n, ready)) QrySelectRec(s, n, rec), ++marked;
    }
    if (rf.Step(row + 1, rows + 1)) {
      whole = false;
      break;
    }
  }
  if (whole && !rf.Gone()) {
    const int n = rf.Layer();
    auto& sel = s.Lyr[n].SelBits;
    const auto& q = s.Lyr[n].QryBits;
    const std::vector<uint8_t>& del = DeletedBits(s, n);
    for (size_t i = 0; i < sel.size() && i < q.size(); ++i) {
      uint8_t d = i < del.size() ? del[i] : 0;
      if (method == kNewSelection) {
        // Within the admitted records the marks decide; the others are cleared, except
        // that Inside keeps nothing unmarked and All replaces all.
        sel[i] = q[i];
      } else if (method == kAddToSelection) {
        sel[i] = uint8_t((sel[i] | q[i]) & ~d);
      } else {
        sel[i] = uint8_t(sel[i] & ~q[i]);
      }
    }
    if (method == kNewSelection) ClearOthers(s, n);
    s.Query.FoundCount = marked;
    s.Query.SelDirty = -1;
  }
  const int n = rf.Layer();
  const bool gone = rf.Gone();
  rf.Finish(false);
  if (!whole || gone) {
    if (!gone)
      LogMsg(s, " *** Nested Find in Layer " + s.Lyr[n].LyrName + " has been canceled *** ");
    return -1;
  }
  LogMsg(s, std::to_string(marked) + " Features have been Selected in Layer " + s.Lyr[n].LyrName);
  for (int i = 1; i <= s.LyrCount; ++i) s.host->TableDataChanged(i);
  s.host->MapRedraw();
  return marked;
}

std::string UniqueSortKey(const Session& s, const std::string& vIn) {
  const std::string v = Trim(vIn);
  int y = 0, m = 0, d = 0;
  if (v.find('/') != std::string::npos && v.find(s.Locale.DecimalSep) == std::string::npos &&
      DateParts3(s, v, y, m, d)) {
    char buf[16];
    std::snprintf(buf, sizeof buf, "%04d%02d%02d", y % 10000, m, d);
    return buf;
  }
  if (IsNumericText(s, v)) {
    const double x = StrToDbl(s, v);
    std::string t;
    if (x < 0) {
      t = Fixed(1 / x);
      std::replace(t.begin(), t.end(), '.', s.Locale.DecimalSep);
      return "+" + t;
    }
    t = Fixed(x);
    size_t dot = t.find('.');
    std::string ip = dot == std::string::npos ? t : t.substr(0, dot);
    std::string fp = dot == std::string::npos ? "" : t.substr(dot + 1);
    if (ip.size() < 12) ip.insert(0, 12 - ip.size(), '0');
    return "-" + ip + (fp.empty() ? "" : std::string(1, s.Locale.DecimalSep) + fp);
  }
  return v;
}

std::vector<std::pair<std::string, std::string>> UpdateUnique(Session& s, int lyr, int criteria,
                                                              int field, const std::string& value) {
  std::vector<std::pair<std::string, std::string>> out;
  if (!Usable(s, lyr)) return out;
  if (field <= 0) {
    out.emplace_back("None", "None");
    return out;
  }
  const std::string name = s.Lyr[lyr].LyrName;
  RunningFunction rf(s, lyr, "Update Unique Value", "Update Unique Values in Layer " + name);
  if (!rf.Started()) return out;
  std::string want = value;
  RTrim(want);
  Upper(want);
  std::map<std::string, std::string> byValue; // keyed by the composite key: the dedupe
  const int rows = s.Lyr[lyr].Dbf.DbfRecCount;
  bool whole = true;
  for (int row = 0; row < rows; ++row) {
    const int n = rf.Layer(), rec = row + 1;
    const bool take = criteria == 2   ? IsSelected(s, n, rec)
                      : criteria == 3 ? !IsSelected(s, n, rec)
                                      : !IsDeleted(s, n, rec);
    if (take) {
      ReadDbfRec(s, n, row);
      std::string v = Trim(GetFieldValue(s, n, field));
      std::string up = v;
      Upper(up);
      if (want.empty() || criteria == 2 || up.find(want) != std::string::npos)
        byValue.emplace(v, v);
    }
    if (rf.Step(row + 1, rows + 1)) {
      whole = false;
      break;
    }
  }
  const int n = rf.Layer();
  const bool gone = rf.Gone();
  rf.Finish(false);
  if (gone) return {};
  if (!whole) {
    LogMsg(s, " *** Update Unique Values in Layer " + name + " has been canceled *** ");
    return {};
  }
  for (const auto& [k, v] : byValue) out.emplace_back(UniqueSortKey(s, v), v);
  std::stable_sort(out.begin(), out.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  LogMsg(s, std::to_string(out.size()) + " Features have been updated Unique in Layer " +
                s.Lyr[n].LyrName);
  return out;
}

} // namespace velmora
