#include "app/script_main.h"

#include <QCoreApplication>
#include <cstdio>
#include <fstream>
#include <sstream>

#include "app/render.h"
#include "platform/qt/qt_host.h"
#include "session/layer_life.h"
#include "session/start_session.h"
#include "session/user_locale.h"
#include "table/run_script.h"

namespace velmora {

namespace {
struct ScriptHeadlessHost : HeadlessHost {
  ScriptHeadlessHost() : HeadlessHost(stderr) {}
  QtImageIO images;
  ImageIO* Images() override { return &images; }
};
} // namespace

int RunScriptMode(int argc, char** argv, const CmdLineOpts& o) {
  std::ifstream f(o.ScriptPath, std::ios::binary);
  if (!f) {
    std::fprintf(stderr, "velmora: cannot read %s\n", o.ScriptPath.c_str());
    return 1;
  }
  std::stringstream ss;
  ss << f.rdbuf();
  QCoreApplication app(argc, argv);
  ScriptHeadlessHost host;
  Session s(host);
  s.Locale = UserLocaleSettings(s.Locale);
  std::string dir = FromQ(QCoreApplication::applicationDirPath());
  if (!dir.empty() && dir.back() != '/') dir += '/';
  s.ProgramDir = dir;
  s.GdipReady = ImageCodecsReady();
  StartSession(s, o.Args);
  std::string err;
  int rc = RunScriptText(s, ss.str(), err);
  if (rc) std::fprintf(stderr, "%s: %s\n", o.ScriptPath.c_str(), err.c_str());
  std::fflush(stdout);
  CloseAllLyrs(s);
  return rc;
}

} // namespace velmora
