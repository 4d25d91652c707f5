#include "model/companion_file.h"

#include <cctype>
#include <dirent.h>

#include "model/file_util.h"

namespace velmora {

namespace {

bool AllUpper(const std::string& t) {
  bool letter = false;
  for (unsigned char c : t) {
    if (std::islower(c)) return false;
    letter = letter || std::isupper(c);
  }
  return letter;
}

// The path without the extension of its file name.
std::string Stem(const std::string& path) {
  std::string name = FileNameOf(path);
  size_t dot = name.rfind('.');
  if (dot == std::string::npos) return path;
  return path.substr(0, path.size() - (name.size() - dot));
}

} // namespace

std::string CompanionPath(const std::string& path, const std::string& ext) {
  std::string stem = Stem(path);
  std::string own = path.substr(stem.size());
  std::string wanted = stem + "." + (AllUpper(own) ? UCase(ext) : LCase(ext));
  if (FileExists(wanted)) return wanted;
  for (const std::string& e : {LCase(ext), UCase(ext)})
    if (FileExists(stem + "." + e)) return stem + "." + e;
  // Any other mixture of cases, in the name as well: look through the folder.
  std::string folder = FolderOf(path);
  std::string key = UCase(FileNameOf(stem) + "." + ext);
  if (DIR* d = ::opendir(folder.empty() ? "." : NativePath(folder).c_str())) {
    std::string found;
    while (dirent* e = ::readdir(d)) {
      if (UCase(e->d_name) == key) {
        found = folder + e->d_name;
        break;
      }
    }
    ::closedir(d);
    if (!found.empty()) return found;
  }
  return wanted;
}

} // namespace velmora
