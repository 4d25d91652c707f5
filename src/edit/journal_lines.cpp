#include "edit/journal_lines.h"

#include "model/c_numbers.h"

namespace velmora {

namespace {

std::string I(int n) {
  return std::to_string(n);
}

// "<Word> <Word2> '<path>'" followed by the numbers, blank-separated.
std::string Line(const char* words, const std::string& path,
                 std::initializer_list<std::string> nums) {
  std::string l = std::string(words) + " " + QuotedPath(path);
  for (const std::string& n : nums) l += " " + n;
  return l;
}

} // namespace

std::string QuotedPath(const std::string& path) {
  std::string q = "'";
  for (char c : path) {
    if (c == '\'') q += '\'';
    q += c;
  }
  return q + "'";
}

std::string NumText(double v) {
  std::string t = GeneralText(v, 15);
  return t == "-0" ? "0" : t;
}

JournalLines DeleteVertexLines(const std::string& path, int f, int p, int v, double x, double y) {
  return {Line("Delete Vertex", path, {I(f), I(p), I(v)}),
          Line("Insert Vertex", path, {I(f), I(p), I(v), NumText(x), NumText(y)})};
}

JournalLines InsertVertexLines(const std::string& path, int f, int p, int v, double x, double y) {
  JournalLines d = DeleteVertexLines(path, f, p, v, x, y);
  return {d.Undo, d.Redo};
}

JournalLines DeletePartLines(const std::string& path, int f, int p) {
  return {Line("Delete Part", path, {I(f), I(p)}), Line("UnDelete Part", path, {I(f), I(p)})};
}

JournalLines DeleteFeatureLines(const std::string& path, int f) {
  return {Line("Delete Feature", path, {I(f)}), Line("UNDelete Feature", path, {I(f)})};
}

JournalLines AddVertexLines(const std::string& path, int f, int p, double x, double y, int v) {
  // The double blank before x is the drawing code's; the splitter counts it once.
  return {Line("ADD Vertex", path, {I(f), I(p) + " ", NumText(x), NumText(y)}),
          Line("Delete Vertex", path, {I(f), I(p), I(v)})};
}

JournalLines NewFeatureLines(const std::string& path, int f) {
  return {Line("UNDelete Feature", path, {I(f)}), Line("Delete Feature", path, {I(f)})};
}

JournalLines DivideFeatureLines(const std::string& path, int f, int p, int v1, int v2, int n) {
  return {Line("Divide Feature", path, {I(f), I(p), I(v1), I(v2), I(n)}),
          Line("UnDivide Feature", path, {I(f), I(n)})};
}

JournalLines CombineFeatureLines(const std::string& path, int f1, int p1, int v1, int v1b, int lyr2,
                                 int f2, int p2, int v2, int v2b) {
  return {Line("Combine Feature", path,
               {I(f1), I(p1), I(v1), I(v1b), I(lyr2), I(f2), I(p2), I(v2), I(v2b)}),
          Line("UnCombine Feature", path, {I(f2), I(f1)})};
}

JournalLines SendPartFrontLines(const std::string& path, int f, int p) {
  return {Line("SendPart Front", path, {I(f), I(p)}), Line("SendPart Back", path, {I(f), I(p)})};
}

JournalLines SendPartBackLines(const std::string& path, int f, int p) {
  JournalLines l = SendPartFrontLines(path, f, p);
  return {l.Undo, l.Redo};
}

JournalLines InvertPartLines(const std::string& path, int f, int p) {
  std::string l = Line("Invert Part", path, {I(f), I(p)});
  return {l, l};
}

JournalLines MoveToLines(const std::string& path, const std::vector<VertexMove>& moves, int keys,
                         int scope) {
  JournalLines out;
  for (const VertexMove& m : moves) {
    std::string head = out.Redo.empty() ? "" : " ";
    out.Redo +=
        head + Line("MoveTo Vertex", path,
                    {I(m.F), I(m.P), I(m.V), NumText(m.NewX), NumText(m.NewY), I(keys), I(scope)});
    out.Undo +=
        head + Line("MoveTo Vertex", path,
                    {I(m.F), I(m.P), I(m.V), NumText(m.OldX), NumText(m.OldY), I(keys), I(scope)});
  }
  return out;
}

JournalLines MoveLenLines(const std::string& path, int f, int p, double x1, double y1, double x2,
                          double y2, int keys, int scope) {
  auto l = [&](double ax, double ay, double bx, double by) {
    return Line(
        "MoveLen Vertex", path,
        {I(f), I(p), NumText(ax), NumText(ay), NumText(bx), NumText(by), I(keys), I(scope)});
  };
  return {l(x1, y1, x2, y2), l(x2, y2, x1, y1)};
}

JournalLines RotateLines(const std::string& path, int f, int p, double x, double y, double angle,
                         int keys, int scope) {
  auto l = [&](double a) {
    return Line("Rotate Vertex", path,
                {I(f), I(p), "0", NumText(x), NumText(y), NumText(a), I(keys), I(scope)});
  };
  return {l(angle), l(-angle)};
}

JournalLines ScaleLines(const std::string& path, int f, int p, int v, double x, double y, double sx,
                        double sy, int keys, int scope) {
  auto l = [&](double ax, double ay) {
    return Line(
        "Scale Vertex", path,
        {I(f), I(p), I(v), NumText(x), NumText(y), NumText(ax), NumText(ay), I(keys), I(scope)});
  };
  // A factor of 0 has no inverse; it stays 0 rather than dividing by it.
  return {l(sx, sy), l(sx != 0 ? 1 / sx : 0, sy != 0 ? 1 / sy : 0)};
}

} // namespace velmora
