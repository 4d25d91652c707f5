#pragma once
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace velmora::arch {

// One #include line of a source file, by folder: `from` includes a header of `to`.
struct FolderInclude {
  std::string from, to;
  std::string file; // relative to the scanned root, e.g. "store/shp_read.cpp"
  int line = 0;
  std::string text; // the line as written
};

// The folder graph of a source tree. A folder is a file's directory relative to the root
// ("session", "platform/qt"), so a nested folder is a node of its own. Only quoted includes
// make edges; a name without a folder is the including file's own folder.
struct FolderGraph {
  std::map<std::pair<std::string, std::string>, FolderInclude> edges; // the first include each
  std::vector<FolderInclude> qtIncludes; // <Q...> and <Qt...> lines, by any folder
  std::set<std::string> folders;
};

FolderGraph ReadFolderGraph(const std::string& root);

// The first circle found, as folders from its start back to it ("a", "b", "a"), and the
// include that closes it; empty when the graph has none.
struct Circle {
  std::vector<std::string> folders;
  FolderInclude closing;
  std::vector<FolderInclude> steps; // one include for each step, the closing one last
};
Circle FindCircle(const FolderGraph& g);

// "a -> b -> a, closed by b/x.h:3: #include "a/y.h"", or "" for no circle.
std::string Describe(const Circle& c);
// The same, then one line for each step of the circle.
std::string DescribeSteps(const Circle& c);

// The folders that make up the program's window and the Qt side of the platform; every
// other folder is core and takes no Qt header.
bool IsQtFolder(const std::string& folder);

} // namespace velmora::arch
