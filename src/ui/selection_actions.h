#pragma once
#include <QString>
#include <functional>
#include <string>

#include "model/session.h"

class QMenu;
class QWidget;

namespace velmora {

// The selection entries of the map's popup and of the window's Selection menu: what an entry
// needs is asked (a destination layer, a range of records), then its core operation runs on
// the active layer. "Find by Data..." calls `openFind`.
void RunSelectionAction(QWidget* parent, Session& s, const std::string& name,
                        const std::function<void()>& openFind);
// Fills `m` with the entries, enabled for the active layer each time it opens.
void FillSelectionMenu(QMenu* m, Session& s, const std::function<void(const std::string&)>& run);

} // namespace velmora
