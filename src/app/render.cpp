#include "app/render.h"

#include <QGuiApplication>
#include <QImage>
#include <cstdio>
#include <cstdlib>
#include <iostream>

#include "coords/transform_filter.h"
#include "platform/headless_host.h"
#include "platform/qt/qt_canvas.h"
#include "platform/qt/qt_image_io.h"
#include "session/layer_life.h"
#include "session/start_session.h"
#include "session/user_locale.h"
#include "view/map_draw.h"
#include "view/map_tools.h"

namespace velmora {

int RunRender(int argc, char** argv, const CmdLineOpts& o) {
  // Fonts and image codecs need the GUI application; no display is needed.
  if (!std::getenv("QT_QPA_PLATFORM")) setenv("QT_QPA_PLATFORM", "offscreen", 1);
  QGuiApplication app(argc, argv);
  PictureHeadlessHost host;
  Session s(host);
  s.Locale = UserLocaleSettings(s.Locale);
  s.ProgramDir = QCoreApplication::applicationDirPath().toStdString() + "/";
  s.GdipReady = host.images.CodecsReady();
  s.MapView.ViewW = o.RenderW;
  s.MapView.ViewH = o.RenderH;
  StartSession(s, o.Args);
  bool project = !s.ProjFile.empty();

  QImage img(o.RenderW, o.RenderH, QImage::Format_RGB32);
  {
    QtCanvas canvas(img, &host.images);
    canvas.Clear(PackRGB(255, 255, 255));
    // Opening a project fitted its window to this view: that window is drawn as it is.
    MapDraw(s, project ? kToolRepaint : kToolFull, 2, &canvas, DrawArgs{});
  }
  CloseAllLyrs(s);
  if (!img.save(QString::fromStdString(o.RenderPath))) {
    std::fprintf(stderr, "velmora: cannot write %s\n", o.RenderPath.c_str());
    return 1;
  }
  return 0;
}

int RunTransform(const CmdLineOpts& o) {
  TransformOptions opt;
  std::string error;
  if (!ParseTransformArgs(o.TransformArgs, opt, error)) {
    std::fprintf(stderr, "velmora: %s\n", error.c_str());
    return 2;
  }
  Session s;
  std::ios::sync_with_stdio(false);
  return RunTransformFilter(s, std::cin, std::cout, std::cerr, opt);
}

} // namespace velmora
