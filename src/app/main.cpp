// velmora: the window, or with --headless the same start-up without one.
#include <QApplication>
#include <QCoreApplication>
#include <QTimer>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "app/render.h"
#include "app/script_main.h"
#include "platform/headless_host.h"
#include "platform/qt/qt_host.h"
#include "platform/qt/qt_image_io.h"
#include "session/cmd_line.h"
#include "session/layer_life.h"
#include "session/start_session.h"
#include "session/user_locale.h"
#include "ui/main_window.h"

using namespace velmora;

namespace {

std::string ProgramDir() {
  std::string dir = FromQ(QCoreApplication::applicationDirPath());
  if (!dir.empty() && dir.back() != '/') dir += '/';
  return dir;
}

int RunHeadless(int argc, char** argv, const std::vector<std::string>& args) {
  // No window, but the application object finds the image codecs and the program's folder.
  QCoreApplication app(argc, argv);
  PictureHeadlessHost host;
  Session s(host);
  s.Locale = UserLocaleSettings(s.Locale);
  s.ProgramDir = ProgramDir();
  s.GdipReady = ImageCodecsReady();
  StartSession(s, args);
  CloseAllLyrs(s);
  return 0;
}

int RunWindow(int argc, char** argv) {
  QApplication app(argc, argv); // takes Qt's own options out of argv
  CmdLineOpts o = ParseCmdLine(std::vector<std::string>(argv + 1, argv + argc));
  QtHost host;
  Session s(host);
  s.Locale = UserLocaleSettings(s.Locale);
  s.ProgramDir = ProgramDir();
  s.GdipReady = ImageCodecsReady();
  MainWindow w(s, host);
  w.show();
  // EXIT on the command line leaves by the window's own way out, which asks before unsaved
  // edits are dropped; answered Cancel, the window stays.
  if (w.RunStartLine(o.Args)) return 0;
  w.ShowLog();
  // VELMORA_SCREENSHOT=path: the window saves its picture after the start-up and quits.
  if (const char* shot = std::getenv("VELMORA_SCREENSHOT")) {
    QString path = QString::fromLocal8Bit(shot);
    QTimer::singleShot(1500, &w, [&w, &s, path] {
      if (!w.grab().save(path))
        std::fprintf(stderr, "velmora: cannot write %s\n", qPrintable(path));
      CloseAllLyrs(s);
      QCoreApplication::quit();
    });
  }
  return app.exec();
}

} // namespace

int main(int argc, char** argv) {
  // The user's locale, in every mode: the session takes its decimal separator and short
  // date from it, and every number that crosses a file is written without it.
  std::setlocale(LC_ALL, "");
  // A file-size limit then fails the write that crosses it, and the save says so and
  // cleans up, instead of the process dying with its temporaries left behind.
  std::signal(SIGXFSZ, SIG_IGN);
  CmdLineOpts o = ParseCmdLine(std::vector<std::string>(argv + 1, argv + argc));
  switch (o.Mode) {
  case RunMode::Help:
    std::fputs(UsageText().c_str(), stdout);
    return 0;
  case RunMode::Version:
    std::puts(VersionText().c_str());
    return 0;
  case RunMode::Misuse:
    std::fprintf(stderr, "%s\n", o.Error.c_str());
    return 2;
  case RunMode::Headless:
    return RunHeadless(argc, argv, o.Args);
  case RunMode::Render:
    return RunRender(argc, argv, o);
  case RunMode::Transform:
    return RunTransform(o);
  case RunMode::Script:
    return RunScriptMode(argc, argv, o);
  case RunMode::Window:
    break;
  }
  return RunWindow(argc, argv);
}
