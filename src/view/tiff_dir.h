#pragma once
#include <string>

#include "model/session.h"
#include "platform/image_io.h"

namespace velmora {

// The TIFF directory: the first image file directory of a TIFF, in either byte order or
// BigTIFF, read into s.Tiff. A file of length 0 sets TiffErr 1; a file that is no TIFF or
// a directory outside the file leaves the defaults.
void ReadTiffTags(Session& s, const std::string& path);
// Why the pixels of the TIFF just read can't be had, as far as its directory tells: "empty
// file", "truncated at byte N, ...", "unsupported compression N"; "" when it tells nothing.
std::string TiffProblem(const TiffState& t);
// Reads a single-band integer image (2, 3 or 4 bytes a pixel, uncompressed strips) into
// pixels, with the grey ramp over the value range as the colour lookup. TiffErr 1 on failure.
bool ReadIdlTiffBits(Session& s, const std::string& path, DibBits& out);

} // namespace velmora
