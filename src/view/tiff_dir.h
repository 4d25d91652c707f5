#pragma once
#include <string>

#include "model/session.h"
#include "platform/image_io.h"

namespace velmora {

// The TIFF directory: the first image file directory of a little-endian TIFF read into
// s.Tiff. A file of length 0 sets TiffErr 1; a big-endian file or a directory outside
// the file leaves the defaults.
void ReadTiffTags(Session& s, const std::string& path);
// Reads a single-band integer image (2, 3 or 4 bytes a pixel, uncompressed strips) into
// pixels, with a grey ramp over the value range as the colour lookup. TiffErr 1 on failure.
bool ReadIdlTiffBits(Session& s, const std::string& path, DibBits& out);

} // namespace velmora
