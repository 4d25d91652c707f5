#pragma once
#include <string>
#include <vector>

#include "model/session.h"

namespace velmora {

// The popup menus of the map surface as plain data: each entry with its name, caption and
// enabled and checked states. The window shows them and hands the chosen name back.

struct MenuEntry {
  std::string Name; // mnuFinishDrawing ...; "-" is a separator
  std::string Caption;
  bool Enabled = true;
  bool Checked = false;
};

struct PopupMenu {
  std::string Name; // mnuView, mnuSelection, mnuEdit
  std::vector<MenuEntry> Entries;
  const MenuEntry* Find(const std::string& name) const;
};

// mnuView, with the drawing entries set for the present state.
PopupMenu ViewMenu(const Session& s);
PopupMenu SelectionMenu(const Session& s);
// mnuEdit: snapshots EditHit into MenuHit and fits the entries to the feature's type.
PopupMenu EditMenu(Session& s);
// The menu of the right button in the present tool: 7 mnuSelection, 13 to 15 mnuEdit,
// the others mnuView.
PopupMenu PopupForTool(Session& s);

} // namespace velmora
