#include "include_graph.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <regex>

namespace velmora::arch {

namespace fs = std::filesystem;

FolderGraph ReadFolderGraph(const std::string& root) {
  static const std::regex quoted(R"(^\s*#\s*include\s*"([^"]+)\")");
  static const std::regex qt(R"(^\s*#\s*include\s*<Q[A-Za-z_]*[/>])");
  FolderGraph g;
  std::vector<fs::path> files;
  for (const auto& e : fs::recursive_directory_iterator(root)) {
    if (!e.is_regular_file()) continue;
    std::string ext = e.path().extension().string();
    if (ext == ".h" || ext == ".cpp") files.push_back(e.path());
  }
  std::sort(files.begin(), files.end());
  for (const fs::path& p : files) {
    std::string rel = fs::relative(p, root).generic_string();
    std::string from = fs::path(rel).parent_path().generic_string();
    g.folders.insert(from);
    std::ifstream in(p);
    std::string text;
    for (int line = 1; std::getline(in, text); ++line) {
      std::smatch m;
      if (std::regex_search(text, qt)) g.qtIncludes.push_back({from, "", rel, line, text});
      if (!std::regex_search(text, m, quoted)) continue;
      std::string to = fs::path(m[1].str()).parent_path().generic_string();
      if (to.empty()) to = from;
      if (to == from) continue;
      g.edges.try_emplace({from, to}, FolderInclude{from, to, rel, line, text});
    }
  }
  return g;
}

Circle FindCircle(const FolderGraph& g) {
  std::map<std::string, std::vector<const FolderInclude*>> out;
  std::set<std::string> nodes = g.folders;
  for (const auto& [key, inc] : g.edges) {
    out[key.first].push_back(&inc);
    nodes.insert(key.second);
  }
  enum State { Fresh, OnPath, Done };
  std::map<std::string, State> state;
  std::vector<std::string> path;
  Circle found;
  std::function<bool(const std::string&)> visit = [&](const std::string& n) {
    state[n] = OnPath;
    path.push_back(n);
    for (const FolderInclude* inc : out[n]) {
      State s = state[inc->to];
      if (s == OnPath) {
        auto start = std::find(path.begin(), path.end(), inc->to);
        found.folders.assign(start, path.end());
        found.folders.push_back(inc->to);
        found.closing = *inc;
        for (size_t i = 0; i + 1 < found.folders.size(); ++i)
          found.steps.push_back(g.edges.at({found.folders[i], found.folders[i + 1]}));
        return true;
      }
      if (s == Fresh && visit(inc->to)) return true;
    }
    path.pop_back();
    state[n] = Done;
    return false;
  };
  for (const std::string& n : nodes)
    if (state[n] == Fresh && visit(n)) break;
  return found;
}

std::string Describe(const Circle& c) {
  if (c.folders.empty()) return "";
  std::string s;
  for (const std::string& f : c.folders) s += (s.empty() ? "" : " -> ") + f;
  return s + ", closed by " + c.closing.file + ":" + std::to_string(c.closing.line) + ": " +
         c.closing.text;
}

std::string DescribeSteps(const Circle& c) {
  std::string s = Describe(c);
  for (const FolderInclude& i : c.steps)
    s += "\n  " + i.file + ":" + std::to_string(i.line) + ": " + i.text;
  return s;
}

bool IsQtFolder(const std::string& folder) {
  return folder == "platform/qt" || folder == "ui" || folder == "app";
}

} // namespace velmora::arch
