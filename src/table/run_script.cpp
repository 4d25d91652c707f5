// RunScript: the layer's script over its records, under the busy frame.
#include "table/run_script.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>

#include "edit/move_ops.h"
#include "frame/busy.h"
#include "frame/log.h"
#include "frame/refusal_log.h"
#include "model/file_util.h"
#include "store/dbf_internal.h"
#include "store/dbf_store.h"
#include "table/script_host.h"

namespace velmora {

namespace {

bool IsUrl(const std::string& t) {
  std::string l = vbs::ToLower(t.substr(0, 8));
  return l.rfind("http://", 0) == 0 || l.rfind("https://", 0) == 0;
}

std::string ReadText(const std::string& path) {
  std::ifstream f(path, std::ios::binary);
  if (!f) return "";
  std::stringstream ss;
  ss << f.rdbuf();
  return ss.str();
}

// The number as a literal: whole numbers as digits, others with the fewest digits that
// give the same double back.
std::string FullNumberText(double d) {
  char buf[64];
  if (d == std::floor(d) && std::fabs(d) < 1e15) {
    std::snprintf(buf, sizeof buf, "%.0f", d);
    return buf;
  }
  for (int prec = 15; prec <= 17; ++prec) {
    std::snprintf(buf, sizeof buf, "%.*g", prec, d);
    std::string t = buf;
    for (char& c : t)
      if (c == ',') c = '.';
    vbs::Conv cv;
    double back;
    if (cv.ParseNumber(t, back) && back == d) return t;
  }
  return buf;
}

// A literal's value as the engine reads "x = <literal>".
bool LiteralValue(vbs::Interp& in, const std::string& lit, vbs::Value& out) {
  if (lit.empty()) {
    out = vbs::Value();
    return true;
  }
  if (lit[0] == '"') {
    std::string t;
    for (size_t i = 1; i + 1 < lit.size(); ++i) {
      t += lit[i];
      if (lit[i] == '"') ++i;
    }
    out = vbs::Value::Str(std::move(t));
    return true;
  }
  bool neg = lit[0] == '-';
  vbs::Value v;
  if (vbs::ParseNumberLiteral(neg ? std::string_view(lit).substr(1) : std::string_view(lit), v)) {
    out = neg ? vbs::UnOp(in.Cv(), vbs::Op::Neg, v) : v;
    return true;
  }
  // any other text stands as an expression in the block
  return in.Eval(lit, out);
}

// 0 text, 1 number, 2 date: how a field's literal is made.
enum class Kind : uint8_t { Text, Number, Date };

Kind KindOf(const Session& s, int lyr, int f) {
  std::string t = GetFieldType(s, lyr, f);
  return t == "Numeric" ? Kind::Number : t == "Date" ? Kind::Date : Kind::Text;
}

struct FieldBind {
  int f;
  Kind kind;
  vbs::Value* var;
};

// A whole number as its literal gives it: Integer, Long, else Double; a minus sign in
// front of the literal keeps the type of the positive one.
vbs::Value WholeValue(double d) {
  double a = std::fabs(d);
  if (a <= 32767) return vbs::Value::Int(static_cast<int64_t>(d));
  if (a <= 2147483647.0) return vbs::Value::Lng(static_cast<int64_t>(d));
  return vbs::Value::Dbl(d);
}

// The value ScriptLiteral's text gives as "x = <literal>", without the text where it can.
bool BindValue(vbs::Interp& in, const Session& s, int lyr, const FieldBind& b, vbs::Value& out) {
  std::string cell = GetFieldValue(s, lyr, b.f);
  if (b.kind == Kind::Text) {
    size_t e = cell.find_last_not_of(' ');
    cell.erase(e == std::string::npos ? 0 : e + 1);
    if (out.t == vbs::VT::String) {
      out.s.swap(cell); // keeps the variable's buffer
    } else {
      out = vbs::Value::Str(std::move(cell));
    }
    return true;
  }
  size_t st = cell.find_first_not_of(' '), en = cell.find_last_not_of(' ');
  if (st != std::string::npos) {
    std::string_view t(cell.data() + st, en - st + 1);
    if (b.kind == Kind::Number) {
      double d;
      if (in.Cv().ParseNumber(t, d)) {
        out = d == std::floor(d) && std::fabs(d) < 1e15 ? WholeValue(d) : vbs::Value::Dbl(d);
        return true;
      }
    } else {
      dbf::DateParts dp;
      if (dbf::ParseDateText(std::string(t), s.Locale.ShortDate, dp)) {
        out = WholeValue(vbs::DateFromYmd(dp.Y, dp.M, dp.D));
        return true;
      }
    }
  }
  return LiteralValue(in, cell, out);
}

void ExtendExtent(LyrRec& l, int rec) {
  if (rec < 1 || rec >= int(l.Shp.ShpRecs.size())) return;
  const ShpRecord& r = l.Shp.ShpRecs[size_t(rec)];
  if (r.ShapeType == 0) return;
  LeftExtend(l) = std::min(LeftExtend(l), r.Xmin);
  BottomExtend(l) = std::min(BottomExtend(l), r.Ymin);
  RightExtend(l) = std::max(RightExtend(l), r.Xmax);
  TopExtend(l) = std::max(TopExtend(l), r.Ymax);
}

} // namespace

std::string ScriptErrorText(const vbs::Error& e) {
  if (e.Number == -1) return "The script was terminated";
  std::string src =
      e.Number >= 1000 && e.Number < 1100 ? "VBScript compilation error" : "VBScript runtime error";
  return src + " " + std::to_string(e.Number) + ": " + e.Description +
         (e.Line > 0 ? " (line " + std::to_string(e.Line) + ")" : "");
}

bool BadScriptName(const std::string& name) {
  if (name.empty() || !std::isalpha(static_cast<unsigned char>(name[0]))) return true;
  for (char c : name)
    if (!std::isalnum(static_cast<unsigned char>(c)) && c != '_') return true;
  return vbs::IsReserved(vbs::ToLower(name));
}

std::string LoadLyrScript(Session& s, int lyr) {
  LyrRec& l = s.Lyr[lyr];
  std::string text;
  if (l.VBScriptSRC == 0) {
    text = l.VBScripttext;
  } else {
    std::string file = Trim(l.VBScriptFile);
    if (IsUrl(file)) {
      std::string fetched;
      if (s.host->FetchText(file, fetched)) l.VBScriptDownload = fetched;
      text = l.VBScriptDownload; // the last good fetch serves when the address fails
    } else if (!file.empty()) {
      text = ReadText(file);
    }
  }
  size_t b = text.find_first_not_of(" \t\r\n"), e = text.find_last_not_of(" \t\r\n");
  text = b == std::string::npos ? std::string() : text.substr(b, e - b + 1);
  if (text.empty()) return "";
  return text + "\r\n";
}

std::string ScriptLiteral(const Session& s, int lyr, int f) {
  std::string type = GetFieldType(s, lyr, f);
  std::string cell = GetFieldValue(s, lyr, f);
  if (type == "Numeric") {
    vbs::Conv c;
    c.Dec = s.Locale.DecimalSep;
    std::string t = Trim(cell);
    double d;
    if (!t.empty() && c.ParseNumber(t, d)) return FullNumberText(d);
    return cell;
  }
  if (type == "Date") {
    dbf::DateParts dp;
    std::string t = Trim(cell);
    if (!t.empty() && dbf::ParseDateText(t, s.Locale.ShortDate, dp))
      return FullNumberText(vbs::DateFromYmd(dp.Y, dp.M, dp.D));
    return cell;
  }
  size_t e = cell.find_last_not_of(' ');
  cell.erase(e == std::string::npos ? 0 : e + 1);
  std::string r = "\"";
  for (char ch : cell) {
    r += ch;
    if (ch == '"') r += '"';
  }
  return r + "\"";
}

namespace {
std::string CellText(const Session& s, bool isDate, const vbs::Value& v, const vbs::Conv& c) {
  using vbs::VT;
  if (v.t == VT::Empty || v.t == VT::Null || v.t == VT::Object || v.t == VT::Array ||
      v.t == VT::Error)
    return "";
  if (isDate && v.t != VT::String) {
    double d = c.ToDouble(v);
    if (d > 0) {
      int y, m, dd;
      vbs::YmdFromDate(d, y, m, dd);
      return dbf::FormatShortDate(dbf::DateParts{y, m, dd}, s.Locale.ShortDate);
    }
  }
  return c.ToStr(v);
}
} // namespace

std::string ScriptCellText(const Session& s, int lyr, int f, const vbs::Value& v,
                           const vbs::Conv& c) {
  return CellText(s, GetFieldType(s, lyr, f) == "Date", v, c);
}

bool RunScript(Session& s, int lyr, int firstRec, int lastRec, bool selectedOnly) {
  if (lyr < 1 || lyr > s.LyrCount || s.Lyr[lyr].LyrKind == 0) return false;
  const std::string name = s.Lyr[lyr].LyrName;
  if (s.Lyr[lyr].Dbf.DbfRecCount < 1) {
    LogCanceled(s, "Run VB Script " + name, "the layer has no records");
    return false;
  }
  if (s.Lyr[lyr].TblOpen && s.Script.FlushPage) s.Script.FlushPage(s, lyr);
  RunningFunction rf(s, lyr, "Run VB Script", name);
  if (!rf.Started()) return false;
  std::string text = LoadLyrScript(s, lyr);
  if (text.empty()) return true;

  SessionEngineHost eh(s, lyr);
  vbs::Interp in(&eh, s.Locale.DecimalSep);
  auto q = std::make_shared<QmtVbs>(s);
  in.AddObject("QMTVBS", q, true);
  auto fail = [&](const std::string& why) {
    LogCanceled(s, "Run VB Script " + name, why);
    return false;
  };
  auto prog = in.Compile(text);
  if (!prog) return fail(ScriptErrorText(in.LastError()));

  std::vector<FieldBind> binds;
  int nf = s.Lyr[lyr].Dbf.DbfFieldCount;
  for (int f = 1; f <= nf; ++f) {
    std::string fname = Trim(GetFieldName(s, lyr, f));
    if (BadScriptName(fname)) {
      vbs::Error e;
      e.Number = 1010;
      e.Description = "Expected identifier: Dim " + fname;
      e.Line = 1;
      return fail(ScriptErrorText(e));
    }
    binds.push_back({f, KindOf(s, lyr, f), &in.Global(fname)});
  }

  int n = s.Lyr[lyr].Dbf.DbfRecCount;
  if (firstRec <= 0) firstRec = 1;
  if (lastRec > n || lastRec <= 0) lastRec = n;
  if (firstRec > lastRec) std::swap(firstRec, lastRec);
  long long total = lastRec - firstRec + 1;
  for (int rec = firstRec; rec <= lastRec; ++rec) {
    int L = rf.Layer();
    eh.SetLyr(L);
    if (!selectedOnly || IsSelected(s, L, rec)) {
      ReadDbfRec(s, L, rec - 1);
      q->LayerNo = L;
      q->RecNo = rec;
      for (FieldBind& b : binds) {
        if (!BindValue(in, s, L, b, *b.var)) return fail(ScriptErrorText(in.LastError()));
      }
      const std::string source = s.Lyr[L].Fsource;
      if (!in.Run(prog)) return fail(ScriptErrorText(in.LastError()));
      // the script yields now and then: the row may have moved, or gone
      if (L > s.LyrCount || s.Lyr[L].Fsource != source) {
        if (rf.Step(rec - firstRec, total) || rf.Gone()) break;
        L = rf.Layer();
      }
      // a script that read another row of this layer left that row in the buffer
      if (s.Lyr[L].Dbf.DbfCurRec != rec - 1) ReadDbfRec(s, L, rec - 1);
      for (FieldBind& b : binds)
        SetFieldValue(s, L, b.f, ScriptCellText(s, L, b.f, *b.var, in.Cv()));
      WriteDbfRecSwap(s, L, rec - 1);
      if (s.Lyr[L].LyrKind == 2 && s.Lyr[L].Dbf.DbfFieldCount >= 5 && s.ControlRowWritten)
        s.ControlRowWritten(s, L, rec - 1);
      ExtendExtent(s.Lyr[L], rec);
    }
    if (rf.Step(rec - firstRec + 1, total)) break;
  }
  if (!rf.Gone()) {
    int L = rf.Layer();
    rf.Finish();
    s.host->MapRedraw();
    s.host->TableDataChanged(L);
  }
  return true;
}

int RunScriptText(Session& s, const std::string& text, std::string& err) {
  int lyr = s.ActiveLyr;
  SessionEngineHost eh(s, 0);
  vbs::Interp in(&eh, s.Locale.DecimalSep);
  auto q = std::make_shared<QmtVbs>(s);
  q->LayerNo = lyr;
  q->RecNo = 0;
  in.AddObject("QMTVBS", q, true);
  if (in.ExecuteStatement(text)) return 0;
  err = ScriptErrorText(in.LastError());
  return 1;
}

void QueueScriptRun(Session& s, int lyr, int firstRec, int lastRec, bool selectedOnly) {
  s.Script.Queue.push_back({lyr, firstRec, lastRec, selectedOnly});
}

void RunQueuedScripts(Session& s) {
  std::vector<ScriptRun> q;
  q.swap(s.Script.Queue);
  for (const ScriptRun& r : q) RunScript(s, r.Lyr, r.FirstRec, r.LastRec, r.SelectedOnly);
}

} // namespace velmora
