#pragma once
#include "platform/headless_host.h"
#include "platform/qt/qt_image_io.h"
#include "session/cmd_line.h"

namespace velmora {

// The host of a session without a window that still decodes pictures.
struct PictureHeadlessHost : HeadlessHost {
  QtImageIO images;
  ImageIO* Images() override { return &images; }
};

// velmora --render OUT.png --size WxH [ARGS]: the start-up without a window, then the map
// drawn into an image of W by H pixels on white and saved.
int RunRender(int argc, char** argv, const CmdLineOpts& o);
// velmora --transform ...: the coordinate filter from standard input to standard output.
int RunTransform(const CmdLineOpts& o);

} // namespace velmora
