#pragma once
#include <string>
#include <vector>

namespace velmora {

// The redo and undo lines of each geometry edit, as the editing code journals them with
// UndoAdd(redo, undo). Layers are named by their source path in single quotes, so that a
// line stays valid when the layer moves in the list. Numbers are in their plain text form.

struct JournalLines {
  std::string Redo, Undo;
};

// '<path>', a quote inside the path doubled as the splitter reads it.
std::string QuotedPath(const std::string& path);
// The plain text form of a double: up to 15 significant digits, "." as the point.
std::string NumText(double v);

// `x`, `y`: the vertex's coordinates (to put it back).
JournalLines DeleteVertexLines(const std::string& path, int f, int p, int v, double x, double y);
// A vertex inserted at `v` (a double click on a segment).
JournalLines InsertVertexLines(const std::string& path, int f, int p, int v, double x, double y);
JournalLines DeletePartLines(const std::string& path, int f, int p);
JournalLines DeleteFeatureLines(const std::string& path, int f);
// A vertex added at the end of part `p` while drawing; it became vertex `v`.
JournalLines AddVertexLines(const std::string& path, int f, int p, double x, double y, int v);
JournalLines NewFeatureLines(const std::string& path, int f);
// Divides feature `f` at vertex `v1` of part `p` (and `v2` for a polygon, 0 for a line);
// `n` is the new feature's number, RecCount + 1. Journal the feature with UndoPutRec.
JournalLines DivideFeatureLines(const std::string& path, int f, int p, int v1, int v2, int n);
// Combines feature `f1` with feature `f2` of layer number `lyr2`; `v1b`, `v2b` 0 for lines.
// Journal the feature with UndoPutRec.
JournalLines CombineFeatureLines(const std::string& path, int f1, int p1, int v1, int v1b, int lyr2,
                                 int f2, int p2, int v2, int v2b);
JournalLines SendPartFrontLines(const std::string& path, int f, int p);
JournalLines SendPartBackLines(const std::string& path, int f, int p);
JournalLines InvertPartLines(const std::string& path, int f, int p);

// One moved vertex: where it was and where it went.
struct VertexMove {
  int F = 0, P = 0, V = 0;
  double OldX = 0, OldY = 0, NewX = 0, NewY = 0;
};
// A drag: one MOVETO group per moved vertex. For scopes on selections journal them with
// UndoPutSel.
JournalLines MoveToLines(const std::string& path, const std::vector<VertexMove>& moves, int keys,
                         int scope);
JournalLines MoveLenLines(const std::string& path, int f, int p, double x1, double y1, double x2,
                          double y2, int keys, int scope);
JournalLines RotateLines(const std::string& path, int f, int p, double x, double y, double angle,
                         int keys, int scope);
JournalLines ScaleLines(const std::string& path, int f, int p, int v, double x, double y, double sx,
                        double sy, int keys, int scope);

} // namespace velmora
