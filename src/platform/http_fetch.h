#pragma once
#include <string>

namespace velmora {

// A plain HTTP GET of a text (a script kept at an address): false on any failure, a status
// other than 200, or a body above the limit.
bool HttpGetText(const std::string& url, std::string& text);
inline constexpr size_t kMaxFetchedText = 8u << 20;

} // namespace velmora
