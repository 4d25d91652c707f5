#pragma once

#include "model/session.h"
#include "platform/canvas.h"

namespace velmora {

// The viewport (when `tool` is not 0 and there are layers) and the painting of every
// layer into `canvas`: images first, then vectors from the bottom row up, row 1 on top.
// Target 1 draws into the window's MapBuf (canvas null: the host's) and shows it.
struct DrawArgs {
  double Left = 0, Top = 0, Right = 0, Bottom = 0;
  double X1 = 0, Y1 = 0, X2 = 0, Y2 = 0;
};
void MapDraw(Session& s, int tool, int target, Canvas* canvas, const DrawArgs& a);

void DrawLyr(Session& s, Canvas& c, int n);
void DrawFeature(Session& s, Canvas& c, int n, int f);
void DrawImageLyr(Session& s, Canvas& c, int n);
int ClassOfFeature(Session& s, int n, int f);
bool LyrVisibleAtScale(const Session& s, int n);
// Class 0 of the layer on an icon surface of 16 or 32 pixels.
void DrawLyrIcon(Session& s, Canvas& c, int n, int size);

// The edited feature, with pen kind 3; vertex `hotVertex` (-1 none) of part `hotPart` with kind 4.
void DrawEditFeature(Session& s, Canvas& c, int n, int f, int hotPart, int hotVertex);

} // namespace velmora
