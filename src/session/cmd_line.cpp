#include "session/cmd_line.h"

namespace velmora {

CmdLineOpts ParseCmdLine(const std::vector<std::string>& argv) {
  CmdLineOpts o;
  bool headless = false, help = false, version = false, ours = true;
  for (const std::string& a : argv) {
    if (ours && a == "--") {
      ours = false;
    } else if (ours && a.rfind("--", 0) == 0) {
      if (a == "--headless")
        headless = true;
      else if (a == "--help")
        help = true;
      else if (a == "--version")
        version = true;
      else {
        o.Mode = RunMode::Misuse;
        o.Error = "velmora: unknown option " + a + " (try --help)";
        return o;
      }
    } else {
      o.Args.push_back(a);
    }
  }
  o.Mode = help       ? RunMode::Help
           : version  ? RunMode::Version
           : headless ? RunMode::Headless
                      : RunMode::Window;
  return o;
}

std::string UsageText() {
  return "Usage: velmora [OPTIONS] [ARGS]\n"
         "Velmora GIS, a desktop geographic information system and map editor.\n"
         "\n"
         "  velmora [ARGS]             the window; ARGS is a start-up command line\n"
         "  velmora --headless [ARGS]  the same start-up without a window; the log goes to\n"
         "                             standard output, one line per message\n"
         "  velmora --help             this text\n"
         "  velmora --version          the version\n"
         "  --                         ends the options; what follows is ARGS\n"
         "\n"
         "ARGS is a file to open (a project .qmt, a layer .shp, an image, a .lst command\n"
         "file) or a command of the command language, e.g.\n"
         "  velmora --headless roads.lst EXIT\n"
         "  velmora --headless MAKE LAYER /tmp/p.shp AS POLYGON\n";
}

std::string VersionText() {
  return "velmora " VELMORA_VERSION;
}

} // namespace velmora
