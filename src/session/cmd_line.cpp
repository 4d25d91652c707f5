#include "session/cmd_line.h"

#include <cstdio>

namespace velmora {

CmdLineOpts ParseCmdLine(const std::vector<std::string>& argv) {
  CmdLineOpts o;
  bool headless = false, help = false, version = false, ours = true, render = false;
  auto misuse = [&](const std::string& text) {
    o.Mode = RunMode::Misuse;
    o.Error = "velmora: " + text + " (try --help)";
    return o;
  };
  for (size_t i = 0; i < argv.size(); ++i) {
    const std::string& a = argv[i];
    if (ours && a == "--") {
      ours = false;
    } else if (ours && a == "--transform") {
      o.Mode = RunMode::Transform;
      o.TransformArgs.assign(argv.begin() + long(i) + 1, argv.end());
      return o;
    } else if (ours && a == "--render") {
      if (i + 1 >= argv.size() || argv[i + 1].empty()) return misuse("--render needs a file name");
      o.RenderPath = argv[++i];
      render = true;
    } else if (ours && a == "--script") {
      if (i + 1 >= argv.size() || argv[i + 1].empty()) return misuse("--script needs a file name");
      o.ScriptPath = argv[++i];
    } else if (ours && a == "--size") {
      int w = 0, h = 0;
      char x = 0, extra = 0;
      if (i + 1 >= argv.size() ||
          std::sscanf(argv[i + 1].c_str(), "%d%c%d%c", &w, &x, &h, &extra) != 3 ||
          (x != 'x' && x != 'X') || w < 1 || h < 1 || w > 20000 || h > 20000)
        return misuse("--size needs WIDTHxHEIGHT in pixels");
      o.RenderW = w, o.RenderH = h;
      ++i;
    } else if (ours && a.rfind("--", 0) == 0) {
      if (a == "--headless")
        headless = true;
      else if (a == "--help")
        help = true;
      else if (a == "--version")
        version = true;
      else
        return misuse("unknown option " + a);
    } else {
      o.Args.push_back(a);
    }
  }
  o.Mode = help                    ? RunMode::Help
           : version               ? RunMode::Version
           : !o.ScriptPath.empty() ? RunMode::Script
           : render                ? RunMode::Render
           : headless              ? RunMode::Headless
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
         "  velmora --render OUT.png --size WxH [ARGS]\n"
         "                             the same start-up without a window, then the map\n"
         "                             drawn on a W by H view into OUT.png\n"
         "  velmora --transform [--datum N | --prj FILE] [--zone Z] [--south] [--inverse]\n"
         "                             a filter from standard input to standard output:\n"
         "                             \"lat lon\" lines to \"x y\" on record N (default 23,\n"
         "                             WGS 84), or with --inverse \"x y\" to \"lat lon\"\n"
         "  velmora --script FILE.vbs [ARGS]\n"
         "                             the same start-up without a window, then the VBScript\n"
         "                             file run with QMTVBS global; MsgBox prints its prompt;\n"
         "                             exit status 1 after a script error\n"
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
