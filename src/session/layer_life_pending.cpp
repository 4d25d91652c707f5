// Placeholders until the store lands; this file goes when it does.
#include "session/layer_life.h"

namespace velmora {

int ShapeTypeOfKind(const std::string& /*kindWord*/) {
  return 0;
}
void AddShape(Session& /*s*/, const std::string& /*path*/, bool /*readOnly*/) {}
void OpenLyrFile(Session& /*s*/, int /*index*/, const std::string& /*path*/) {}
void NewLyrRow(Session& /*s*/, const std::string& /*path*/) {}
void RemoveLyr(Session& /*s*/, int /*index*/, bool /*redraw*/) {}
void SaveLyr(Session& /*s*/, int /*index*/) {}
void SaveLyrAll(Session& /*s*/, int /*index*/) {}
void SaveLyrAs(Session& /*s*/, int /*index*/, const std::string& /*path*/) {}
bool ConfirmRemoveLyr(Session& /*s*/, int /*index*/) {
  return false;
}
bool ConfirmReloadLyr(Session& /*s*/, int /*index*/) {
  return false;
}
bool ConfirmCloseProject(Session& /*s*/) {
  return false;
}
void CheckFirstLyrUnits(Session& /*s*/, int /*index*/) {}
void MakeNewLyr(Session& /*s*/, const std::string& /*path*/, int /*shapeType*/,
                const std::string& /*kindWord*/, bool /*add*/) {}
void ReloadLyr(Session& /*s*/, int /*index*/) {}
void SetLyrDataSource(Session& /*s*/, int /*index*/, const std::string& /*path*/) {}
void CloseLyrFiles(Session& /*s*/, int /*index*/) {}
void CloseAllLyrs(Session& /*s*/) {}
} // namespace velmora
