#include "query/selection_menu.h"

#include <array>

#include "frame/log.h"
#include "query/bulk_ops.h"
#include "query/selection.h"

namespace velmora {

namespace {

struct Entry {
  const char* Name;
  const char* Caption;
  bool NeedsSelection;
};

// In the order shown; "-" is a separator.
constexpr std::array<Entry, 18> kEntries = {{
    {"mnuFindByData", "Find by Data...", false},
    {"-", "", false},
    {"mnuSelect", "Select Features...", false},
    {"mnuUnSelect", "UnSelect Features...", false},
    {"mnuInvertSelection", "Invert Selection", false},
    {"mnuClearSelection", "Clear Selection", true},
    {"mnuZoomtoSelected", "Zoom to Selected", true},
    {"-", "", false},
    {"mnuCutSelectedFeaturesTo", "Cut Selected Features To...", true},
    {"mnuCopySelectedFeaturesTo", "Copy Selected Features To...", true},
    {"mnuCombineSelectedFeatures", "Combine Selected Features To...", true},
    {"mnuSeparateSelectedFeatures", "Separate Selected Features To...", true},
    {"mnuCombinePartsOfSelectedFeaturesIntoOnePart", "Combine Parts of Selected Features To...",
     true},
    {"mnuCloseSelectedFeauresEdges", "Close Selected Features Edges", true},
    {"mnuDeleteSelection", "Delete Selected Features", true},
    {"mnuDelete", "Delete Features...", false},
    {"mnuUnDelete", "UnDelete Features...", false},
    {"mnuRemoveDeletedFeatures", "Remove Deleted Features", false},
}};

bool ShapeLyr(const Session& s, int lyr) {
  return lyr >= 1 && lyr <= s.LyrCount && s.Lyr[lyr].LyrKind == 1;
}

} // namespace

void AddSelectionEntries(const Session& s, PopupMenu& m) {
  const int lyr = s.ActiveLyr;
  const bool shape = ShapeLyr(s, lyr);
  const bool any = shape && SelectedCount(s, lyr) > 0;
  m.Entries.push_back({"-", "", true, false});
  for (const Entry& e : kEntries) {
    if (std::string(e.Name) == "-") {
      m.Entries.push_back({"-", "", true, false});
      continue;
    }
    const bool on = std::string(e.Name) == "mnuFindByData" || (shape && (!e.NeedsSelection || any));
    m.Entries.push_back({e.Name, e.Caption, on, false});
  }
}

bool IsSelectionEntry(const std::string& name) {
  if (name == "-") return false;
  for (const Entry& e : kEntries)
    if (name == e.Name) return true;
  return false;
}

bool NeedsDestination(const std::string& name) {
  return name == "mnuCutSelectedFeaturesTo" || name == "mnuCopySelectedFeaturesTo" ||
         name == "mnuCombineSelectedFeatures" || name == "mnuSeparateSelectedFeatures" ||
         name == "mnuCombinePartsOfSelectedFeaturesIntoOnePart";
}

bool NeedsRange(const std::string& name) {
  return name == "mnuSelect" || name == "mnuUnSelect" || name == "mnuDelete" ||
         name == "mnuUnDelete";
}

bool RunSelectionEntry(Session& s, const std::string& name, int lyr, int dst, int first, int last) {
  if (!ShapeLyr(s, lyr)) return false;
  if (name == "mnuSelect" || name == "mnuUnSelect") {
    SelectRange(s, lyr, first, last, name == "mnuSelect");
  } else if (name == "mnuInvertSelection") {
    InvertSelection(s, lyr);
  } else if (name == "mnuClearSelection") {
    ClearSelection(s, lyr);
  } else if (name == "mnuZoomtoSelected") {
    ZoomToSelected(s, lyr);
    return true;
  } else if (name == "mnuCutSelectedFeaturesTo") {
    CutSelected(s, lyr, dst);
  } else if (name == "mnuCopySelectedFeaturesTo") {
    CopySelected(s, lyr, dst);
  } else if (name == "mnuCombineSelectedFeatures") {
    CombineSelected(s, lyr, dst);
  } else if (name == "mnuSeparateSelectedFeatures") {
    SeparateSelected(s, lyr, dst);
  } else if (name == "mnuCombinePartsOfSelectedFeaturesIntoOnePart") {
    CombinePartsSelected(s, lyr, dst);
  } else if (name == "mnuCloseSelectedFeauresEdges") {
    CloseSelectedEdges(s, lyr);
  } else if (name == "mnuDeleteSelection") {
    DeleteSelected(s, lyr);
  } else if (name == "mnuDelete") {
    DeleteRange(s, lyr, first, last);
  } else if (name == "mnuUnDelete") {
    UndeleteRange(s, lyr, first, last);
  } else {
    return false; // mnuRemoveDeletedFeatures reloads the layer: the session's call
  }
  return true;
}

} // namespace velmora
