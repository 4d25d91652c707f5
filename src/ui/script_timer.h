#pragma once
#include <QObject>

#include "model/session.h"

namespace velmora {

// VbScribtTimerM: every 60000 ms it runs the RunScript requests that are queued; a request
// also starts it once right after the current event, so that a menu handler never runs a
// script inside itself.
class ScriptTimer : public QObject {
  Q_OBJECT
public:
  ScriptTimer(Session& s, QObject* parent);
  // Queues RunScript over the layer's records and runs it after the current event.
  void RunSoon(int lyr, int firstRec = 0, int lastRec = 0, bool selectedOnly = false);

private:
  Session& s_;
  bool running_ = false;
  void Tick();
};

} // namespace velmora
