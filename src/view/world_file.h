#pragma once
#include <string>

#include "model/session.h"

namespace velmora {

// The world file beside a picture: "tif" gives "tfw", "jpg" "jgw"; a name whose third
// extension letter is "w" is a world file already.
std::string WorldFileName(const std::string& path);
// Reads the extent of a picture of width by height pixels. The sixth line is taken as
// half a pixel above the top edge, and the writer below is its mirror. `found` is set
// to -1 when the file was read; it is left alone when the file is missing or its numbers
// can't place a picture (not numbers, a pixel size of 0). Numbers are read with "." (or a
// lone ",") as the decimal point, whatever the locale.
void ReadWorldFile(const Session& s, const std::string& path, double& left, double& top,
                   double& right, double& bottom, int width, int height, int16_t& found);
// The six lines of the world file of an extent, each ending in CR LF, numbers with "."
// and 13 decimals whatever the locale.
std::string WorldFileText(double left, double top, double right, double bottom, int width,
                          int height);
// Writes the world file beside `path` in one step: the old file stays whole until the new
// one is complete. False with `why` (when given).
bool WriteWorldFile(const std::string& path, double left, double top, double right, double bottom,
                    int width, int height, std::string* why = nullptr);

} // namespace velmora
