#pragma once
#include <cstdint>
#include <vector>

namespace velmora {

// The result of a hit test, copied whole between the editor's slots.
struct HitRec {
  uint8_t HitKind = 0; // 0 nothing, 1 segment, 2 vertex, 3 inside a polygon, 4 inside an image
  uint8_t HitMode = 0; // 1 full test (a vertex may take over a segment), 0 first hit, 2 given
  uint8_t HitMargined = 0;
  int32_t HitLyr = 0;
  int32_t HitType = 0;
  int32_t HitFeature = 0; // 1-based
  int32_t HitPart = 0;
  int32_t HitVertex = 0; // on a segment: the segment's end vertex
  double HitVrtMargin = 0, HitSegMargin = 0;
  double HitX = 0, HitY = 0;
};

// A grid over the record boxes of a large layer, so that a pick looks only at the records
// near the pointer. Valid while the layer's records, their count and BoxGen are unchanged.
struct PickGrid {
  int Lyr = 0;
  const void* Recs = nullptr;
  int32_t RecCount = 0;
  uint32_t Gen = 0;
  double X0 = 0, Y0 = 0, Cell = 1;
  int32_t Nx = 0, Ny = 0;
  std::vector<int32_t> Start; // Nx * Ny + 1 offsets into Items
  std::vector<int32_t> Items; // record numbers by cell, ascending within a cell
  std::vector<int32_t> Wide;  // records over too many cells, always looked at
};

// What the divide and combine entries of the edit menu are waiting for.
enum class PendingPick : uint8_t { None, DividePolygon, CombinePolygon, CombineLine };

// The editor's session state: the hit slots, the drag, the drawing flags and the movement
// settings with their pivot, angle and scales.
struct EditVars {
  HitRec HitNow, EditHit, MenuHit, DrawHit, SnapHit;
  std::vector<HitRec> MoveList; // every vertex that moves together in the present drag
  // Where each entry of MoveList stood when the drag began.
  std::vector<double> MoveFromX, MoveFromY;

  int PanReturnTool = 0;
  int16_t MouseDown = 0, PopupOpen = 0, Drawing = 0, DrawPending = 0, DrawCircle = 0;
  int16_t BlockRotate = 0;
  int16_t ShiftState = 0, ButtonState = 0; // bit 1 Shift, bit 2 Ctrl, bit 4 Alt

  // The press of the drag in hand, in pixels and in world units, and the last pointer.
  int DownX = 0, DownY = 0;
  double DownWX = 0, DownWY = 0, LastWX = 0, LastWY = 0;
  bool Moved = false;

  // Movement settings (frmMoveSettings) and the pivot, angle and scales of rotate and scale.
  int MoveMode = 0;
  bool ApplyMoveSettings = false;
  double PivotX = 0, PivotY = 0, PivotTextX = 0, PivotTextY = 0;
  double ScaleX = 1, ScaleY = 1;
  double RotDegrees = 0, RotRadians = 0;

  // "Start Rotate-Scale" noted this start point; false when no rotate-scale is under way.
  bool RotateStarted = false;
  double RotStartX = 0, RotStartY = 0;

  // Divide and combine: the first pick of a two-step operation.
  PendingPick Pending = PendingPick::None;
  HitRec FirstPick;

  std::vector<PickGrid> PickGrids; // built on demand by the picks of large layers
  std::vector<int> PickScratch;
};

} // namespace velmora
