#pragma once
#include <string>

#include "model/session.h"

namespace velmora {

// The world file beside a picture: "tif" gives "tfw", "jpg" "jgw"; a name whose third
// extension letter is "w" is a world file already.
std::string WorldFileName(const std::string& path);
// Reads the extent of a picture of width by height pixels. The sixth line is taken as
// half a pixel above the top edge, and the writer below is its mirror. `found` is set
// to -1 when the file was read; it is left alone when the file is missing.
void ReadWorldFile(const Session& s, const std::string& path, double& left, double& top,
                   double& right, double& bottom, int width, int height, int16_t& found);
bool WriteWorldFile(const std::string& path, double left, double top, double right, double bottom,
                    int width, int height);

} // namespace velmora
