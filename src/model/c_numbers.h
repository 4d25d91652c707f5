#pragma once
#include <string>
#include <string_view>

namespace velmora {

// Numbers that cross a file or the command language: "." is the decimal point and there
// is no grouping, whatever the user's locale. Text shown to the user in the session's own
// separators is made elsewhere (cell text, the status bar).

// Exactly `decimals` decimals, as printf's "%.*f" gives in the C locale.
std::string FixedText(double v, int decimals);
// At most `digits` significant digits, as printf's "%.*G" gives in the C locale ("1E+20").
std::string GeneralText(double v, int digits);
// The number at the start of `text` after blanks, as strtod reads it in the C locale
// (a "+" sign, an exponent; no hexadecimal, infinity or NaN words). False, with `v` left
// alone, when the text does not start with a number; `used` gets the characters read.
bool LeadingNumber(std::string_view text, double& v, size_t* used = nullptr);

} // namespace velmora
