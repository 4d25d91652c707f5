#include "ui/script_timer.h"

#include <QTimer>

#include "table/run_script.h"

namespace velmora {

ScriptTimer::ScriptTimer(Session& s, QObject* parent) : QObject(parent), s_(s) {
  auto* t = new QTimer(this);
  t->setObjectName("VbScribtTimerM");
  t->setInterval(60000);
  connect(t, &QTimer::timeout, this, &ScriptTimer::Tick);
  t->start();
}

void ScriptTimer::RunSoon(int lyr, int firstRec, int lastRec, bool selectedOnly) {
  QueueScriptRun(s_, lyr, firstRec, lastRec, selectedOnly);
  QTimer::singleShot(0, this, &ScriptTimer::Tick);
}

void ScriptTimer::Tick() {
  // a script yields to the event loop: a tick meanwhile must not start another run
  if (running_ || s_.Script.Queue.empty()) return;
  running_ = true;
  RunQueuedScripts(s_);
  running_ = false;
}

} // namespace velmora
