#include "edit/edit_menus.h"

#include "edit/divide_ops.h"
#include "store/shp_access.h"
#include "store/shp_bytes.h"
#include "store/shp_store.h"

namespace velmora {

namespace {

bool IsLine(int t) {
  return t == 3 || t == 13 || t == 23;
}
bool IsGon(int t) {
  return t == 5 || t == 15 || t == 25;
}

void Add(PopupMenu& m, const char* name, const std::string& caption, bool enabled = true,
         bool checked = false) {
  m.Entries.push_back({name, caption, enabled, checked});
}
void Separator(PopupMenu& m) {
  m.Entries.push_back({"-", "", true, false});
}

int PartLive(const Session& s, const HitRec& h) {
  const ShpPart* p = shpio::PartAt(shpio::RecAt(s, h.HitLyr, h.HitFeature), h.HitPart);
  return p ? int(shpio::LiveCount(*p)) : 0;
}

bool HitValid(const Session& s, const HitRec& h) {
  return h.HitKind != 0 && h.HitLyr >= 1 && h.HitLyr <= s.LyrCount &&
         shpio::RecAt(s, h.HitLyr, h.HitFeature) != nullptr;
}

// The drawing entries of mnuView.
void DrawingEntries(const Session& s, PopupMenu& m) {
  const EditVars& e = s.Edit;
  bool finish = false, addVertexes = false, addPart = false, circle = true;
  if (e.Drawing) {
    finish = e.DrawHit.HitType != 99 && e.DrawHit.HitType != 100;
  } else {
    const int active = s.ActiveLyr;
    const int at = active >= 1 && active <= s.LyrCount ? s.Lyr[active].Shp.ShpType : 0;
    circle = !shpio::IsPoint(at);
    const HitRec& h = e.EditHit;
    const bool usable = HitValid(s, h) && !IsDeleted(s, h.HitLyr, h.HitFeature) &&
                        !shpio::IsPoint(h.HitType) && PartLive(s, h) > 0;
    addVertexes = usable;
    addPart = usable && !shpio::IsMultiPoint(h.HitType);
  }
  Add(m, "mnuFinishDrawing", "Finish Drawing", finish);
  Add(m, "mnuAddNewVertexEditingPart", "Add New Vertexes in Editing Part", addVertexes);
  Add(m, "mnuAddNewPartEditingFeature", "Add New Part In Editing Feature", addPart);
  Add(m, "mnuAddNewCircleActiveLayer", "Start Drawing Circle in Active Layer", circle,
      e.DrawCircle != 0);
}

void ViewEntries(PopupMenu& m) {
  Add(m, "mnuZoomIn", "Zoom In");
  Add(m, "mnuZoomOut", "Zoom Out");
  Add(m, "mnuPan", "Pan");
  Add(m, "mnuFullExtent", "Full Extent");
  Add(m, "mnuZoomPrevious", "Zoom Previous");
  Add(m, "mnuZoomNext", "Zoom Next");
}

} // namespace

const MenuEntry* PopupMenu::Find(const std::string& name) const {
  for (const MenuEntry& e : Entries)
    if (e.Name == name) return &e;
  return nullptr;
}

PopupMenu ViewMenu(const Session& s) {
  PopupMenu m{"mnuView", {}};
  ViewEntries(m);
  Separator(m);
  DrawingEntries(s, m);
  Separator(m);
  Add(m, "mnuSetPivotPoint", "Set Pivot Point");
  Add(m, "mnuMoveSettings", "Move Settings...");
  return m;
}

PopupMenu SelectionMenu(const Session& s) {
  PopupMenu m{"mnuSelection", {}};
  ViewEntries(m);
  (void)s;
  return m;
}

PopupMenu EditMenu(Session& s) {
  EditVars& e = s.Edit;
  e.MenuHit = e.EditHit;
  const HitRec& h = e.MenuHit;
  const bool valid = HitValid(s, h);
  const int t = valid ? h.HitType : 0;
  const int n = valid ? PartLive(s, h) : 0;
  const ShpRecord* r = valid ? shpio::RecAt(s, h.HitLyr, h.HitFeature) : nullptr;
  const bool lineOrGon = IsLine(t) || IsGon(t);
  PopupMenu m{"mnuEdit", {}};
  Add(m, "mnuInsertVertex", "Insert Vertex", valid && h.HitKind == 1 && lineOrGon);
  Add(m, "mnuDeleteVertex", "Delete Vertex", valid && h.HitKind == 2);
  Add(m, "mnuDeletePart", "Delete Part", valid);
  Add(m, "mnuDeleteFeature", "Delete Feature", valid);
  Separator(m);
  const int parts = r ? r->NumParts : 0;
  Add(m, "mnuBringParttoFront", "Bring Part to Front",
      lineOrGon && parts >= 2 && h.HitPart < parts - 1);
  Add(m, "mnuSendParttoBack", "Send Part to Back", lineOrGon && parts >= 2 && h.HitPart > 0);
  Add(m, "mnuInvertPartDirection", "Invert Part Direction", lineOrGon);
  Separator(m);
  // Divide and combine by type.
  std::string divide = "Divide Feature", combine = "Combine Feature", length = "Length";
  bool divideOn = valid, combineOn = valid, lengthOn = valid, areaOn = false;
  if (shpio::IsPoint(t)) {
    divide = "Can not Divide Point", combine = "Can not Combine Point";
    divideOn = combineOn = lengthOn = false;
  } else if (shpio::IsMultiPoint(t)) {
    divide = "Can not Divide MultiPoints", combine = "Can not Combine MultiPoints";
    divideOn = combineOn = lengthOn = false;
  } else if (IsLine(t)) {
    if (h.HitKind == 2 && h.HitVertex > 0 && h.HitVertex < n - 1) {
      divide = "Divide Polyline";
    } else if (h.HitKind == 2) {
      divide = "Can Not Divide Polyline at Edges";
      divideOn = false;
    }
    combine = "Combine Polyline";
  } else if (IsGon(t)) {
    if (e.Pending == PendingPick::DividePolygon)
      divide = CanCompleteDivide(s, h) ? "Complete Dividing Polygon" : "Stop Dividing Polygon";
    else
      divide = "Start Dividing Polygon";
    if (e.Pending == PendingPick::CombinePolygon)
      combine = CanCompleteCombine(s, h) ? "Complete Combining Polygon" : "Stop Combining Polygon";
    else
      combine = "Start Combining Polygon";
    length = "Perimeter";
    areaOn = valid;
  }
  Add(m, "mnuDivideFeature", divide, divideOn);
  Add(m, "mnuCombineFeatures", combine, combineOn);
  Add(m, "mnuLength", length, lengthOn);
  Add(m, "mnuArea", "Area", areaOn);
  Separator(m);
  Add(m, "mnuRotateScale", e.RotateStarted ? "Complete Rotate-Scale" : "Start Rotate-Scale",
      valid && !shpio::IsPoint(t));
  Add(m, "mnuStopRotateScale", "Stop Rotate-Scale", e.RotateStarted);
  Add(m, "mnuSetPivotPoint", "Set Pivot Point");
  Add(m, "mnuMoveDistance", "Move Distance...", valid);
  Add(m, "mnuMoveToXY", "Move To X,Y...", valid);
  Add(m, "mnuRotateAngle", "Rotate-Scale...", valid);
  Add(m, "mnuMoveSettings", "Move Settings...");
  Separator(m);
  Add(m, "mnuAddNewVertexEditingPart", "Add New Vertexes in Editing Part",
      valid && !shpio::IsPoint(t) && n > 0 && !IsDeleted(s, h.HitLyr, h.HitFeature));
  Add(m, "mnuAddNewPartEditingFeature", "Add New Part In Editing Feature",
      valid && lineOrGon && !IsDeleted(s, h.HitLyr, h.HitFeature));
  return m;
}

PopupMenu PopupForTool(Session& s) {
  switch (s.MapView.MapTool) {
  case 7:
    return SelectionMenu(s);
  case 13:
  case 14:
  case 15:
    return EditMenu(s);
  default:
    return ViewMenu(s);
  }
}

} // namespace velmora
