#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "platform/host.h"

namespace velmora::test {

// A fresh empty folder under the system's temporary folder, removed at exit.
std::string TempDir(const std::string& tag);
// Writes `bytes` to `path`.
void WriteFile(const std::string& path, const std::string& bytes);
std::string ReadFile(const std::string& path);
// A shapefile made by GDAL's ogr2ogr from WKT rows (an "id" field numbering them), with
// `options` such as "-lco SHPT=ARC"; its path, or "" when GDAL failed.
std::string GdalLayer(const std::string& dir, const std::string& name,
                      const std::vector<std::string>& wkts, const std::string& options = "");
// Runs a shell command and returns its standard output; `status` gets the exit code.
std::string RunCmd(const std::string& cmd, int* status = nullptr);

// The comma-decimal German locale that scripts/bootstrap generates, for the life of the
// object; the C locale again afterwards. Ok() is false when the system lacks it.
class GermanLocale {
public:
  static constexpr const char* kName = "de_DE.UTF-8";
  GermanLocale();
  ~GermanLocale();
  GermanLocale(const GermanLocale&) = delete;
  GermanLocale& operator=(const GermanLocale&) = delete;
  bool Ok() const { return ok_; }

private:
  bool ok_ = false;
};

// A host that records what the core told it and answers message boxes from a queue.
class RecordingHost : public Host {
public:
  std::vector<std::string> logged;
  std::vector<std::string> boxes; // "title|text"
  std::vector<MsgAnswer> answers; // taken from the front; the default when empty
  std::vector<std::string> openDialogs;
  int beeps = 0;
  int yields = 0;
  std::vector<std::string> shellOpened;

  MsgAnswer MsgBox(const std::string& text, const std::string& title, MsgButtons,
                   MsgAnswer dflt) override;
  void Beep() override { ++beeps; }
  void Yield() override { ++yields; }
  void LogAppended(const std::string& msg) override { logged.push_back(msg); }
  bool IsDialogOpen(const std::string& caption) override;
  bool ShellOpen(const std::string& path) override {
    shellOpened.push_back(path);
    return true;
  }
};

// Little-endian words written into a file image, for damaging headers on purpose.
void Put16(std::string& b, size_t at, int v);
void Put32(std::string& b, size_t at, uint32_t v);
// A file's modification time in nanoseconds: a reader that wrote to it would move it.
int64_t MtimeNs(const std::string& path);

} // namespace velmora::test
