#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "model/session.h"

namespace velmora {

// What a command line asks for, read from s.ArgStr before anything is done. Parsing and
// doing are kept apart so that the grammar (bounds, the record test, numbers) can be
// checked on its own.
enum class CmdOp {
  None,        // too few tokens, an unknown word, a layer not in the session, a record out of range
  NoOp,        // SAVE PROJECT, SET VERTEX, SELECT, ZOOM: recognised and without effect
  MakeLayer,   // Path; Text = kind word
  OpenProject, // Path (extension made "qmt")
  OpenLayer,   // Path
  AddField,    // Path; Text = field name; I = type letter, width, decimals
  AddFeature,  // I = part; X = x, y; Pairs
  AddVertex,   // I = rec, part; X = x, y
  LoadRedoUndo,     // I = rec (LOADREDOUNDO and SAVEREDOUNDO alike)
  CombineFeature,   // I = rec1, part1, v1, v1b, lyr2, rec2, part2, v2, v2b
  UncombineFeature, // I = rec, n
  DivideFeature,    // I = rec, part, v1, v2, n
  UndivideFeature,  // I = rec, n
  InvertPart,       // I = rec, part
  SendPartFront,    // I = rec, part
  SendPartBack,     // I = rec, part
  DeleteFeature,    // I = rec
  DeletePart,       // I = rec, part
  DeleteVertex,     // I = rec, part, vertex
  UndeleteFeature,  // I = rec
  UndeletePart,     // I = rec, part
  InsertVertex,     // I = rec, part, vertex; X = x, y
  MoveLen,          // I = rec, part, keys, scope; X = x1, y1, x2, y2
  MoveTo,           // I = rec, part, vertex, keys, scope; X = x, y
  Rotate,           // I = rec, part, vertex, keys, scope; X = px, py, degrees
  Scale,            // I = rec, part, vertex, keys, scope; X = px, py, sx, sy
  SaveLayer,        // Lyr
  SaveLayerAs,      // Lyr; Text = new path
  RemoveLayer,      // Lyr
  SetData,          // Path; I = row (1-based); Pairs
};

struct CmdPair {
  std::string Field, Value;
};

struct CmdCall {
  CmdOp Op = CmdOp::None;
  // The layer the line names as found in the session, 0 for none. Kept also when the
  // command itself is skipped, since the EXIT tail acts on it.
  int Lyr = 0;
  std::string Path; // the layer's path, double quotes removed
  std::string Text;
  std::vector<int32_t> I;
  std::vector<double> X;
  std::vector<CmdPair> Pairs; // <field>=<value> tokens; others are skipped
};

// The calls a line stands for: one, or one per group of ten tokens of a MOVETO line.
// Empty when the line has fewer than two tokens.
std::vector<CmdCall> ParseArgStr(const Session& s);

} // namespace velmora

namespace velmora {

// Does one call; returns the layer it acted on, 0 for none: the number the EXIT tail uses.
int ExecCmd(Session& s, const CmdCall& c);

} // namespace velmora
