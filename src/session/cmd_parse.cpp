#include "session/cmd_parse.h"

#include <cctype>

#include "frame/lyr_slots.h"
#include "model/companion_file.h"
#include "model/file_util.h"
#include "model/val.h"

namespace velmora {

namespace {

std::string StripDoubleQuotes(const std::string& t) {
  std::string r;
  r.reserve(t.size());
  for (char c : t)
    if (c != '"') r += c;
  return r;
}

// Reads one line; `at` is the first token of the command (MOVETO groups start further on).
struct Reader {
  const Session& s;
  const std::vector<std::string>& a;
  size_t at = 0;

  int Ub() const { return int(a.size()) - 1 - int(at); }
  const std::string& Tok(int i) const { return a[at + size_t(i)]; }
  std::string Word(int i) const { return UCase(Tok(i)); }
  int32_t Int(int i) const { return ValLong(Tok(i)); }
  double Real(int i) const { return Val(Tok(i)); }

  // Path at token 2, and the layer that has it.
  void FindLayer(CmdCall& c) const {
    c.Path = StripDoubleQuotes(Tok(2));
    // A layer's table or index names the layer.
    std::string ext = ExtOf(c.Path);
    if (ext == "dbf" || ext == "shx") c.Path = CompanionPath(c.Path, "shp");
    int n = FindLyrByFile(s, c.Path);
    c.Lyr = n > 0 ? n : 0;
  }
  // The record test of the feature commands: a record outside 1 .. RecCount, or a layer
  // not in the session, makes the whole command do nothing.
  bool RecordOk(const CmdCall& c, int32_t rec) const {
    return c.Lyr > 0 && rec >= 1 && rec <= s.Lyr[c.Lyr].Shp.RecCount;
  }
  void Pairs(CmdCall& c, int from) const {
    for (int i = from; i <= Ub(); ++i) {
      const std::string& t = Tok(i);
      size_t eq = t.find('=');
      if (eq == std::string::npos || eq + 1 == t.size()) continue;
      c.Pairs.push_back({t.substr(0, eq), t.substr(eq + 1)});
    }
  }
  // A feature command: an upper bound of at least `least`, the record at token 3, then one
  // number per letter of `kinds` from token 4 on: 'i' an integer, 'x' a real.
  CmdCall Feature(CmdOp op, int least, const char* kinds) const {
    CmdCall c;
    if (Ub() < least) return c;
    FindLayer(c);
    int32_t rec = Int(3);
    if (!RecordOk(c, rec)) return c;
    c.Op = op;
    c.I.push_back(rec);
    int i = 4;
    for (const char* k = kinds; *k; ++k, ++i) {
      if (*k == 'i')
        c.I.push_back(Int(i));
      else
        c.X.push_back(Real(i));
    }
    return c;
  }
};

CmdCall ParseOne(const Reader& r) {
  CmdCall c;
  const int ub = r.Ub();
  const std::string w0 = r.Word(0);
  const std::string w1 = r.Word(1);

  if (w0 == "MAKE" && w1 == "LAYER" && ub >= 2) {
    r.FindLayer(c);
    if (c.Lyr) return c;
    c.Op = CmdOp::MakeLayer;
    c.Text = (ub >= 4 && r.Word(3) == "AS") ? r.Word(4) : "POINT";
    return c;
  }
  if (w0 == "OPEN" && w1 == "PROJECT" && ub >= 2) {
    c.Op = CmdOp::OpenProject;
    c.Path = ChangeExt(StripDoubleQuotes(r.Tok(2)), "qmt");
    return c;
  }
  if (w0 == "OPEN" && w1 == "LAYER" && ub >= 2) {
    r.FindLayer(c);
    if (!c.Lyr) c.Op = CmdOp::OpenLayer;
    return c;
  }
  if (w0 == "ADD" && w1 == "FIELD" && ub >= 6) {
    r.FindLayer(c);
    const std::string type = r.Tok(4);
    if (type.empty()) return c;
    c.Op = CmdOp::AddField;
    c.Text = r.Tok(3);
    c.I = {std::toupper(static_cast<unsigned char>(type[0])), r.Int(5), r.Int(6)};
    return c;
  }
  if (w0 == "ADD" && w1 == "FEATURE" && ub >= 5) {
    r.FindLayer(c);
    if (!c.Lyr) return c;
    c.Op = CmdOp::AddFeature;
    c.I = {r.Int(3)};
    c.X = {r.Real(4), r.Real(5)};
    r.Pairs(c, 6);
    return c;
  }
  if (w0 == "ADD" && w1 == "VERTEX") return r.Feature(CmdOp::AddVertex, 6, "ixx");
  if ((w0 == "LOADREDOUNDO" || w0 == "SAVEREDOUNDO") && w1 == "FEATURE")
    return r.Feature(CmdOp::LoadRedoUndo, 3, "");
  if (w0 == "COMBINE" && w1 == "FEATURE") return r.Feature(CmdOp::CombineFeature, 11, "iiiiiiii");
  if (w0 == "UNCOMBINE" && w1 == "FEATURE") return r.Feature(CmdOp::UncombineFeature, 4, "i");
  if (w0 == "DIVIDE" && w1 == "FEATURE") return r.Feature(CmdOp::DivideFeature, 7, "iiii");
  if (w0 == "UNDIVIDE" && w1 == "FEATURE") return r.Feature(CmdOp::UndivideFeature, 4, "i");
  if (w0 == "INVERT" && w1 == "PART") return r.Feature(CmdOp::InvertPart, 4, "i");
  if (w0 == "SENDPART" && w1 == "FRONT") return r.Feature(CmdOp::SendPartFront, 4, "i");
  if (w0 == "SENDPART" && w1 == "BACK") return r.Feature(CmdOp::SendPartBack, 4, "i");
  if (w0 == "DELETE" && w1 == "FEATURE") return r.Feature(CmdOp::DeleteFeature, 3, "");
  if (w0 == "DELETE" && w1 == "PART") return r.Feature(CmdOp::DeletePart, 4, "i");
  if (w0 == "DELETE" && w1 == "VERTEX") return r.Feature(CmdOp::DeleteVertex, 5, "ii");
  if (w0 == "UNDELETE" && w1 == "FEATURE") return r.Feature(CmdOp::UndeleteFeature, 3, "");
  if (w0 == "UNDELETE" && w1 == "PART") return r.Feature(CmdOp::UndeletePart, 4, "i");
  if (w0 == "INSERT" && w1 == "VERTEX") return r.Feature(CmdOp::InsertVertex, 7, "iixx");
  if (w1 == "VERTEX") {
    // The movement commands: keys and scope come last, behind the numbers.
    if (w0 == "MOVELEN") return r.Feature(CmdOp::MoveLen, 10, "ixxxxii");
    if (w0 == "MOVETO") return r.Feature(CmdOp::MoveTo, 9, "iixxii");
    if (w0 == "ROTATE") return r.Feature(CmdOp::Rotate, 10, "iixxxii");
    if (w0 == "SCALE") return r.Feature(CmdOp::Scale, 11, "iixxxxii");
  }
  if (w0 == "SAVE" && w1 == "LAYER" && ub >= 2) {
    r.FindLayer(c);
    if (!c.Lyr) return c;
    if (ub >= 4 && r.Word(3) == "AS") {
      c.Op = CmdOp::SaveLayerAs;
      c.Text = StripDoubleQuotes(r.Tok(4));
    } else {
      c.Op = CmdOp::SaveLayer;
    }
    return c;
  }
  if (w0 == "REMOVE" && w1 == "LAYER" && ub == 2) {
    r.FindLayer(c);
    if (c.Lyr) c.Op = CmdOp::RemoveLayer;
    return c;
  }
  if (w0 == "SET" && w1 == "DATA" && ub >= 4) {
    r.FindLayer(c);
    c.Op = CmdOp::SetData;
    c.I = {r.Int(3)};
    r.Pairs(c, 4);
    return c;
  }
  if ((w0 == "SAVE" && w1 == "PROJECT") || (w0 == "SET" && w1 == "VERTEX") || w0 == "SELECT" ||
      w0 == "ZOOM")
    c.Op = CmdOp::NoOp;
  return c;
}

} // namespace

std::vector<CmdCall> ParseArgStr(const Session& s) {
  std::vector<CmdCall> calls;
  if (s.ArgStr.size() < 2) return calls;
  Reader r{s, s.ArgStr, 0};
  calls.push_back(ParseOne(r));
  // One MOVETO line can carry a list of moves: further groups of ten tokens follow as
  // long as the line reaches the last token of the next group.
  if (UCase(s.ArgStr[0]) == "MOVETO" && UCase(s.ArgStr[1]) == "VERTEX") {
    for (size_t at = 10; at + 9 < s.ArgStr.size(); at += 10) {
      Reader g{s, s.ArgStr, at};
      calls.push_back(g.Feature(CmdOp::MoveTo, 9, "iixxii"));
    }
  }
  return calls;
}

} // namespace velmora
