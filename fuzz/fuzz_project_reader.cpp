// libFuzzer target of the project reader. The input is the project file; whatever the reader
// lets through is written again, so the writer meets it too. Layer paths in the input are
// opened as the program would open them, relative ones in the target's own empty folder.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

#include "model/session.h"
#include "session/layer_life.h"
#include "session/project.h"

namespace {

const std::string& Dir() {
  // Never destroyed: the clean-up at exit still needs it.
  static const std::string& dir = *new std::string([] {
    char shm[] = "/dev/shm/velmora-fuzz-qmt-XXXXXX";
    char tmp[] = "/tmp/velmora-fuzz-qmt-XXXXXX";
    const char* d = ::mkdtemp(shm);
    if (!d) d = ::mkdtemp(tmp);
    std::atexit([] {
      for (const char* f : {"f.qmt", "out.qmt"}) ::unlink((Dir() + f).c_str());
      ::rmdir(Dir().c_str());
    });
    return std::string(d ? d : "/tmp") + "/";
  }());
  return dir;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string in = Dir() + "f.qmt";
  ::unlink(in.c_str());
  if (FILE* f = std::fopen(in.c_str(), "wb")) {
    if (size) std::fwrite(data, 1, size, f);
    std::fclose(f);
  }
  // One session for the whole run: its coordinate table is costly to build.
  static velmora::Session s;
  s.MapView.ViewW = 320, s.MapView.ViewH = 240;
  int w = 0, h = 0;
  double l = 0, t = 0, r = 0, b = 0;
  velmora::ReadLyrs(s, in, w, h, l, t, r, b);
  if (s.LyrErr == 0) velmora::WriteProject(s, Dir() + "out.qmt");
  velmora::CloseAllLyrs(s);
  s.DatumTbl.resize(24);
  return 0;
}
