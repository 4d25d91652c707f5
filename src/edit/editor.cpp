#include "edit/editor.h"

#include <exception>

#include "edit/divide_ops.h"
#include "edit/drag_ops.h"
#include "edit/draw_ops.h"
#include "edit/edit_ops.h"
#include "edit/hit_test.h"
#include "edit/measure_ops.h"
#include "edit/rotate_scale.h"
#include "edit/snap_ops.h"
#include "store/shp_access.h"
#include "store/shp_store.h"
#include "view/map_tools.h"

namespace velmora {

namespace {

int& Tool(Session& s) {
  return s.MapView.MapTool;
}

// The features of the drag in hand, or the one under construction, in the overlay.
void OverlayEdited(Session& s, EditSurface& surf) {
  surf.ClearOverlay();
  int lastLyr = 0, lastRec = 0;
  for (const HitRec& h : s.Edit.MoveList) {
    if (h.HitLyr == lastLyr && h.HitFeature == lastRec) continue;
    surf.OverlayFeature(h.HitLyr, h.HitFeature);
    lastLyr = h.HitLyr, lastRec = h.HitFeature;
  }
  if (s.Edit.Drawing) surf.OverlayFeature(s.Edit.DrawHit.HitLyr, s.Edit.DrawHit.HitFeature);
}

void SetTool(Session& s, EditSurface& surf, int tool) {
  if (Tool(s) == tool) return;
  Tool(s) = tool;
  surf.SetToolCursor(tool);
}

// The hover test at a pixel; a change of the tool changes the cursor.
void Hover(Session& s, EditSurface& surf, int x, int y) {
  const int before = Tool(s);
  const int now = HoverTest(s, x, y);
  if (now != before) surf.SetToolCursor(now);
}

// The press of the pick in tool 11 on the release: the dragged box is the pick area.
void PickRelease(Session& s, int shift, int x, int y) {
  EditVars& e = s.Edit;
  if (e.BlockRotate) return;
  SetPickRect(s, e.DownX, e.DownY, x, y);
  if (PickLayers(s, (shift & kShiftKey) != 0)) {
    e.EditHit = e.HitNow;
    s.host->BlockTable(e.EditHit.HitLyr, false);
  } else {
    if (e.EditHit.HitLyr >= 1) s.host->BlockTable(e.EditHit.HitLyr, true);
    e.EditHit = HitRec{};
  }
  ShowEditHit(s);
  s.host->MapRedraw();
}

void Down(Session& s, EditSurface& surf, int button, int shift, int x, int y) {
  EditVars& e = s.Edit;
  e.ShiftState = int16_t(shift);
  e.ButtonState = int16_t(button);
  e.DownX = x, e.DownY = y;
  e.DownWX = e.LastWX = WorldX(s, x), e.DownWY = e.LastWY = WorldY(s, y);
  e.Moved = false;
  if (button == kRightButton) {
    e.MouseDown = 0;
    if (Tool(s) == 13 || Tool(s) == 14 || Tool(s) == 15) HoverTest(s, x, y);
    e.PopupOpen = -1;
    surf.ShowPopup(PopupForTool(s));
    return;
  }
  if (button != kLeftButton) return;
  e.MouseDown = -1;
  const int tool = Tool(s);
  if (tool == 13 || tool == 14 || tool == 15) Hover(s, surf, x, y);
  switch (Tool(s)) {
  case 12:
    if (!DrawClick(s, e.DownWX, e.DownWY, shift)) e.MouseDown = 0;
    OverlayEdited(s, surf);
    break;
  case 15:
    if (!StartVertexDrag(s, x, y, shift)) e.MouseDown = 0;
    break;
  case 13:
  case 14:
    if (!StartFeatureDrag(s, e.DownWX, e.DownWY, shift)) e.MouseDown = 0;
    break;
  default:
    break;
  }
}

void Move(Session& s, EditSurface& surf, int button, int shift, int x, int y) {
  EditVars& e = s.Edit;
  const double wx = WorldX(s, x), wy = WorldY(s, y);
  if (!(button & kLeftButton) || !e.MouseDown) {
    e.LastWX = wx, e.LastWY = wy;
    if (Tool(s) == 12 && e.Drawing) {
      DrawFollow(s, wx, wy);
      OverlayEdited(s, surf);
    } else if (Tool(s) == 11 || Tool(s) == 13 || Tool(s) == 14 || Tool(s) == 15) {
      Hover(s, surf, x, y);
    }
    return;
  }
  e.ShiftState = int16_t(shift);
  switch (Tool(s)) {
  case 10:
    surf.ClearOverlay();
    surf.OverlaySegment(e.DownWX, e.DownWY, wx, wy);
    break;
  case 7:
  case 11:
    surf.ClearOverlay();
    surf.OverlayRect(e.DownX, e.DownY, x, y);
    break;
  case 15:
    if (x == e.DownX && y == e.DownY && !e.Moved) break;
    VertexDragStep(s, wx, wy, shift);
    OverlayEdited(s, surf);
    break;
  case 13:
  case 14:
    FeatureDragStep(s, wx, wy, shift);
    OverlayEdited(s, surf);
    break;
  default:
    break;
  }
  e.LastWX = wx, e.LastWY = wy;
}

void Up(Session& s, EditSurface& surf, int button, int shift, int x, int y) {
  EditVars& e = s.Edit;
  const bool wasDown = e.MouseDown != 0;
  e.MouseDown = 0;
  if (button != kLeftButton) return;
  const double wx = WorldX(s, x), wy = WorldY(s, y);
  switch (Tool(s)) {
  case 10:
    if (wasDown) LogFreeDistance(s, e.DownWX, e.DownWY, wx, wy);
    surf.ClearOverlay();
    break;
  case 11:
    surf.ClearOverlay();
    if (wasDown) PickRelease(s, shift, x, y);
    break;
  case 12:
    DrawRelease(s);
    break;
  case 15:
    if (wasDown) FinishVertexDrag(s, x, y, shift);
    surf.ClearOverlay();
    ShowEditHit(s);
    break;
  case 13:
  case 14:
    if (wasDown) FinishFeatureDrag(s, wx, wy, shift);
    surf.ClearOverlay();
    break;
  default:
    break;
  }
}

void DblClick(Session& s, EditSurface& surf) {
  EditVars& e = s.Edit;
  if (Tool(s) == 12) {
    FinishDrawing(s);
    surf.ClearOverlay();
    ShowEditHit(s);
    return;
  }
  if (Tool(s) != 14 || !ValidHitLyr(s, e.EditHit)) return;
  HitRec h = e.EditHit;
  double x = h.HitX, y = h.HitY;
  SetPickBox(s, PixX(s, x), PixY(s, y));
  SnapRelease(s, 14, h.HitLyr, h.HitFeature, h.HitPart, h.HitVertex, x, y, e.ShiftState, x, y);
  if (!InsertVertexOp(s, h, x, y)) return;
  e.EditHit = h;
  SetTool(s, surf, 15);
  ShowEditHit(s);
}

template <class F> void Guarded(F f) {
  try {
    f();
  } catch (const std::exception&) {
    // The handler ends; the tool and the flags stay as they were.
  }
}

} // namespace

bool EditorTool(int tool) {
  return tool >= 7 && tool <= 16 && tool != 9 && tool != 8;
}

void ShowEditHit(Session& s) {
  const HitRec& h = s.Edit.EditHit;
  if (h.HitKind == 0 || h.HitKind == 4) {
    s.View.EditFeature = 0, s.View.EditHotPart = -1, s.View.EditHotVertex = -1;
    return;
  }
  s.Held.CurFeatureLyr = h.HitLyr;
  s.View.EditFeature = h.HitFeature;
  s.View.EditHotPart = h.HitKind == 2 ? h.HitPart : -1;
  s.View.EditHotVertex = h.HitKind == 2 ? h.HitVertex : -1;
}

void ChooseEditTool(Session& s, int tool) {
  EditVars& e = s.Edit;
  if (e.Drawing && s.View.MapToolKeep == 12 && !e.DrawPending) FinishDrawing(s);
  if (e.Drawing && tool != 12) FinishDrawing(s);
  s.MapView.MapTool = tool;
  s.View.MapToolKeep = tool;
}

void EditPicDown(Session& s, EditSurface& surf, int button, int shift, int x, int y) {
  Guarded([&] { Down(s, surf, button, shift, x, y); });
}

void EditPicMove(Session& s, EditSurface& surf, int button, int shift, int x, int y) {
  Guarded([&] { Move(s, surf, button, shift, x, y); });
}

void EditPicUp(Session& s, EditSurface& surf, int button, int shift, int x, int y) {
  Guarded([&] { Up(s, surf, button, shift, x, y); });
}

void EditPicDblClick(Session& s, EditSurface& surf) {
  Guarded([&] { DblClick(s, surf); });
}

bool EditPicKeyDown(Session& s, EditSurface& surf, int key) {
  if (key != 27) return false;
  bool handled = false;
  Guarded([&] {
    if (DragUnderWay(s)) {
      CancelDrag(s);
      s.Edit.MouseDown = 0;
      surf.ClearOverlay();
      handled = true;
    }
  });
  return handled;
}

void RunMenuEntry(Session& s, EditSurface& surf, const std::string& name) {
  EditVars& e = s.Edit;
  e.PopupOpen = 0;
  Guarded([&] {
    const HitRec h = e.MenuHit;
    auto tool = [&](int t) {
      ChooseEditTool(s, t);
      surf.SetToolCursor(t);
    };
    if (name == "mnuZoomIn") return tool(2);
    if (name == "mnuZoomOut") return tool(3);
    if (name == "mnuPan") return tool(4);
    if (name == "mnuFullExtent" || name == "mnuZoomPrevious" || name == "mnuZoomNext")
      return surf.ViewCommand(name);
    if (name == "mnuFinishDrawing") {
      FinishDrawing(s);
      surf.ClearOverlay();
      return ShowEditHit(s);
    }
    if (name == "mnuAddNewVertexEditingPart" || name == "mnuAddNewPartEditingFeature") {
      if (e.MenuHit.HitKind == 0) e.MenuHit = e.EditHit;
      bool ok = name == "mnuAddNewVertexEditingPart" ? AddNewVertexesInEditingPart(s)
                                                     : AddNewPartInEditingFeature(s);
      if (ok) surf.SetToolCursor(12);
      return;
    }
    if (name == "mnuAddNewCircleActiveLayer") return ToggleDrawCircle(s);
    if (name == "mnuSetPivotPoint") {
      SetPivotPoint(s, ValidHitLyr(s, e.EditHit), e.LastWX, e.LastWY);
      return;
    }
    if (name == "mnuMoveSettings") return surf.OpenDialog("frmMoveSettings");
    if (name == "mnuMoveDistance") return surf.OpenDialog("MoveDistance");
    if (name == "mnuMoveToXY") return surf.OpenDialog("MoveToXY");
    if (name == "mnuRotateAngle") return surf.OpenDialog("frmRotateAngle");
    bool changed = false;
    if (name == "mnuInsertVertex") {
      HitRec at = h;
      double x = h.HitX, y = h.HitY;
      changed = InsertVertexOp(s, at, x, y);
      if (changed) e.EditHit = at, SetTool(s, surf, 15);
    } else if (name == "mnuDeleteVertex") {
      changed = DeleteVertexOp(s, h);
      if (changed) e.EditHit.HitKind = IsDeleted(s, h.HitLyr, h.HitFeature) ? 0 : 1;
    } else if (name == "mnuDeletePart") {
      changed = DeletePartOp(s, h);
    } else if (name == "mnuDeleteFeature") {
      changed = DeleteFeatureOp(s, h);
      if (changed) e.EditHit = HitRec{};
    } else if (name == "mnuBringParttoFront") {
      changed = BringPartToFrontOp(s, h);
    } else if (name == "mnuSendParttoBack") {
      changed = SendPartToBackOp(s, h);
    } else if (name == "mnuInvertPartDirection") {
      changed = InvertPartOp(s, h);
    } else if (name == "mnuLength") {
      LogLength(s, h);
    } else if (name == "mnuArea") {
      LogArea(s, h);
    } else if (name == "mnuRotateScale") {
      changed = e.RotateStarted ? CompleteRotateScale(s, h) : StartRotateScale(s, h);
    } else if (name == "mnuStopRotateScale") {
      StopRotateScale(s);
    } else if (name == "mnuDivideFeature") {
      const int t = h.HitType;
      if (t == 3 || t == 13 || t == 23)
        changed = DivideLineOp(s, h);
      else if (e.Pending == PendingPick::DividePolygon)
        changed = CompleteDividePolygon(s, h);
      else
        StartDividePolygon(s, h);
    } else if (name == "mnuCombineFeatures") {
      const int t = h.HitType;
      if (t == 3 || t == 13 || t == 23)
        changed = CombineLineOp(s, h);
      else if (e.Pending == PendingPick::CombinePolygon)
        changed = CompleteCombinePolygon(s, h);
      else
        StartCombinePolygon(s, h);
    }
    if (changed) ShowEditHit(s);
  });
}

} // namespace velmora
