#pragma once
#include <string>

#include "edit/edit_menus.h"
#include "model/session.h"

namespace velmora {

// What the map editor needs from the surface it runs on: the overlay (rubber bands and
// the features under edit, drawn over the window image and gone at the next repaint), the
// cursor of each tool, the popup menus and the movement dialogs.
class EditSurface {
public:
  virtual ~EditSurface() = default;
  virtual void ClearOverlay() {}
  // A rubber rectangle in pixels and a rubber segment in world units.
  virtual void OverlayRect(int x1, int y1, int x2, int y2) {
    (void)x1, (void)y1, (void)x2, (void)y2;
  }
  virtual void OverlaySegment(double x1, double y1, double x2, double y2) {
    (void)x1, (void)y1, (void)x2, (void)y2;
  }
  // A feature in the edit pen.
  virtual void OverlayFeature(int lyr, int rec) { (void)lyr, (void)rec; }
  virtual void SetToolCursor(int tool) { (void)tool; }
  // Shows a popup; the choice comes back through RunMenuEntry.
  virtual void ShowPopup(const PopupMenu& menu) { (void)menu; }
  // frmMove ("MoveDistance" or "MoveToXY"), frmRotateAngle, frmMoveSettings.
  virtual void OpenDialog(const std::string& name) { (void)name; }
  // View entries of the menus (mnuFullExtent, mnuZoomPrevious, mnuZoomNext).
  virtual void ViewCommand(const std::string& name) { (void)name; }
};

enum MouseButton { kLeftButton = 1, kRightButton = 2, kMiddleButton = 4 };
enum KeyState { kShiftKey = 1, kCtrlKey = 2, kAltKey = 4 };

// The mouse and keys on the map surface, in pixels. The zoom and pan tools stay with the
// surface; these handle the tools of editing, measuring and creating. A run-time failure
// inside is caught: the handler ends and tool and flags stay as they were.
void EditPicDown(Session& s, EditSurface& surf, int button, int shift, int x, int y);
void EditPicMove(Session& s, EditSurface& surf, int button, int shift, int x, int y);
void EditPicUp(Session& s, EditSurface& surf, int button, int shift, int x, int y);
void EditPicDblClick(Session& s, EditSurface& surf);
// Escape (27) cancels the drag in hand and restores its vertices. True when handled.
bool EditPicKeyDown(Session& s, EditSurface& surf, int key);
// The chosen entry of a popup, by its name.
void RunMenuEntry(Session& s, EditSurface& surf, const std::string& name);
// A toolbar button: MapTool and MapToolKeep together; a drawing in hand is finished first.
void ChooseEditTool(Session& s, int tool);
// Is the tool one whose mouse the editor handles?
bool EditorTool(int tool);
// The picked feature is shown in the edit pen on the map.
void ShowEditHit(Session& s);

} // namespace velmora
