#pragma once
#include <string>

namespace velmora {

// The file beside `path` with the same name and the extension `ext`, in whatever case it
// has on disk: "UP.SHP" finds "UP.DBF", "mix.shp" finds "mix.DBF". When there is none, the
// name that a new one takes: `ext` in the case of the path's own extension ("UP.DBF",
// "mix.dbf"), so that no second file of another case is ever made beside an old one.
std::string CompanionPath(const std::string& path, const std::string& ext);

} // namespace velmora
