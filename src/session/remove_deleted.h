#pragma once
#include "model/session.h"

namespace velmora {

// "Remove Deleted Features": the layer's files rewritten without its deleted records (the
// .shp without an index, the table without their rows), the layer read again from them and
// saved once more to bring back the .shx. The selection stays on the same features. False
// when refused or failed, with the status line saying so.
bool RemoveDeleted(Session& s, int lyr);

} // namespace velmora
