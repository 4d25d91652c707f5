#pragma once
#include <string>
#include <vector>

namespace velmora {

// The program's own options, read before anything starts.
enum class RunMode { Window, Headless, Render, Transform, Script, Help, Version, Misuse };

struct CmdLineOpts {
  RunMode Mode = RunMode::Window;
  std::vector<std::string> Args;          // the start-up command line, our options taken out
  std::string Error;                      // for Misuse: one line for standard error
  std::string RenderPath;                 // --render OUT.png
  int RenderW = 1024, RenderH = 768;      // --size WxH
  std::vector<std::string> TransformArgs; // everything after --transform
  std::string ScriptPath;                 // --script FILE.vbs
};

// `argv` without the program's name. Words beginning with "--" are ours ("--headless",
// "--render FILE", "--size WxH", "--transform ...", "--help", "--version"); a bare "--" ends
// them, so that what follows is passed on as is. "--transform" takes all that follows.
CmdLineOpts ParseCmdLine(const std::vector<std::string>& argv);

std::string UsageText();
std::string VersionText();

} // namespace velmora
