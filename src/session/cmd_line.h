#pragma once
#include <string>
#include <vector>

namespace velmora {

// The program's own options, read before anything starts.
enum class RunMode { Window, Headless, Help, Version, Misuse };

struct CmdLineOpts {
  RunMode Mode = RunMode::Window;
  std::vector<std::string> Args; // the start-up command line, our options taken out
  std::string Error;             // for Misuse: one line for standard error
};

// `argv` without the program's name. Words beginning with "--" are ours ("--headless",
// "--help", "--version"); a bare "--" ends them, so that what follows is passed on as is.
CmdLineOpts ParseCmdLine(const std::vector<std::string>& argv);

std::string UsageText();
std::string VersionText();

} // namespace velmora
