#pragma once
#include <cstddef>
#include <cstdint>
#include <gdal.h>
#include <string>

namespace velmora {

// Decodes all pixels of an open dataset into red, green, blue rows (top row first, `stride`
// bytes apart), by how its bands are to be seen:
// - one band with a colour table: each index through the table;
// - three or more bands: the red, green and blue bands (else the first three);
// - one band (grey, with an alpha band or not): grey;
// bands of 8 bits are shown as they are (fewer bits stretched to 0..255); wider or
// floating-point samples on the grey ramp from the bands' minimum to their maximum with
// no-data values left out of the range and shown white. An alpha band, or a colour
// table's alpha, lays the picture over white.
// False on a read error (`why` left empty: the caller's GDAL message tells it) or with
// `why` when the bands can't be shown.
bool DecodeRgb(GDALDatasetH ds, uint8_t* dst, size_t stride, std::string& why);

} // namespace velmora
