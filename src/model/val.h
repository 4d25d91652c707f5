#pragma once
#include <cstdint>
#include <string>

namespace velmora {

// The leading numeric part of a text, 0 when there is none. Blanks, tabs and line feeds
// anywhere in the text are passed over; "." is the decimal point whatever the locale;
// "&H" and "&O" introduce hexadecimal and octal integers; "D" stands for "E" in exponents.
double Val(const std::string& text);
// Val rounded half to even into a 32-bit integer, clamped at its ends.
int32_t ValLong(const std::string& text);

} // namespace velmora
